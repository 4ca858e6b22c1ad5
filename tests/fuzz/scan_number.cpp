#include "fuzz_input.h"
#include "tests/support/oracles.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::wstring text = textOf({data, size});
    const ScannedNumber scanned = scanNumber(text.c_str());
    const ScannedNumber expected = oracles::scan(text);
    require(scanned.found == expected.found, "whether there is a number");
    require(scanned.number == expected.number, "the number");
    require(scanned.hasNext == expected.hasNext && scanned.next == expected.next, "the character behind it");
    return 0;
}
