// The pieces of a format are the format again, whatever it is.
#include "lornix/debug/format_spec.h"
#include "tests/unit/fuzz/fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string format(reinterpret_cast<const char*>(data), size);
    std::string joined;
    for (std::string_view rest = format; !rest.empty();) {
        const lornix::FormatSpec spec = lornix::takeSpec(rest);
        require(!spec.text.empty(), "a piece without an end");
        require(spec.width >= 0 && spec.stars <= 2, "the numbers of a conversion");
        joined += spec.text;
    }
    require(joined == format, "the pieces together");
    return 0;
}
