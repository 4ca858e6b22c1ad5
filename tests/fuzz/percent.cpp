#include "frame/size_text.h"
#include "fuzz_input.h"
#include "tests/support/oracles.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzInput input(data, size);
    const std::int64_t inUse = takeNumber(input);
    const std::int64_t hardLimit = takeNumber(input);
    if (!oracles::divides(inUse, hardLimit)) {
        return 0; // faults, as it must
    }
    wchar_t text[kPercentTextCapacity];
    formatPercent(text, inUse, hardLimit);

    const auto hundredfold = static_cast<std::int64_t>(static_cast<std::uint64_t>(inUse) * 100u);
    char expected[kPercentTextCapacity];
    std::snprintf(expected, sizeof expected, "%2.2d%%", static_cast<int>(hundredfold / hardLimit));
    const std::string_view narrow = expected;
    require(text == std::wstring(narrow.begin(), narrow.end()), "the percent text");
    return 0;
}
