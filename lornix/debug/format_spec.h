// Taking a printf format apart.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace lornix {

/// One conversion of a format, "%-8.3ls" say, or the plain text in front of it.
struct FormatSpec {
    enum class Kind : std::uint8_t {
        kText,     ///< plain text, no argument
        kPercent,  ///< %%
        kWideText, ///< a wide string
        kWideUnit, ///< a wide character
        kOther     ///< anything else: for the runtime
    };

    Kind kind = Kind::kText;
    std::string_view text;    ///< as it stands in the format
    bool leftAligned = false; ///< of wide conversions, like the two below
    bool widthGiven = false;  ///< as an argument: *
    bool limitGiven = false;  ///< as an argument: .*
    int width = 0;
    int limit = -1; ///< most characters to show; below 0: all
    int stars = 0;  ///< arguments in front of the value
};

/// Takes the next piece off the front of a format. An unfinished conversion at the end counts as text.
FormatSpec takeSpec(std::string_view& format);

} // namespace lornix
