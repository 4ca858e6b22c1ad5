// Any UTF-16 text comes back from its line; any line that is understood gives a text that does.
#include "lornix/text/escaped_text.h"
#include "tests/fuzz/fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::u16string text(size / 2, u'\0');
    std::copy_n(data, text.size() * 2, reinterpret_cast<std::uint8_t*>(text.data()));
    std::string line;
    lornix::appendEscaped(line, text);
    require(lornix::unescape(line) == text, "the text read back");
    require(line.find_first_of("\r\n\t") == std::string::npos, "one line without tabs");

    if (const auto read = lornix::unescape({reinterpret_cast<const char*>(data), size})) {
        line.clear();
        lornix::appendEscaped(line, *read);
        require(lornix::unescape(line) == *read, "the line read back");
    }
    return 0;
}
