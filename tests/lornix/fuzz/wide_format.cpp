// Whatever the format is: what it became says all sizes, so that it stays as it is, and no conversion is left open.
#include "lornix/debug/wide_format.h"
#include "tests/fuzz/fuzz_input.h"

#include <algorithm>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string format(reinterpret_cast<const char*>(data), size);
    const std::string wide = lornix::wideFormat(format);
    require(lornix::wideFormat(wide) == wide, "a format that changes again");
    require(wide.size() <= 2 * format.size(), "a format that grows");
    require(std::ranges::count(wide, '\n') <= std::ranges::count(format, '\n'), "lines that were none");
    return 0;
}
