#include "frame/size_text.h"
#include "fuzz_input.h"
#include "tests/support/oracles.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzInput input(data, size);
    const std::int64_t value = takeNumber(input);
    wchar_t text[kSizeTextCapacity];
    formatSize(text, value);
    require(text == oracles::sizeText(value), "the size text");
    if (value <= std::int64_t{1} << 60) {
        const std::int64_t back = parseSize(text);
        require(back <= value && (value <= 1048576 ? back == value : value - back <= value / 1024),
                "the size read back from its text");
    }
    return 0;
}
