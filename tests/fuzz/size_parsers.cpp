#include "frame/size_text.h"
#include "fuzz_input.h"
#include "tests/support/oracles.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::wstring text = textOf({data, size});
    require(parseSize(text.c_str()) == oracles::parsedSize(text), "the size of a dialog field");
    require(parseCellSize(text.c_str()) == oracles::parsedCellSize(text), "the size of a cell");
    return 0;
}
