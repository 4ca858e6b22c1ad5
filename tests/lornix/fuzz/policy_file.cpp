// Whatever the bytes are: no fault, and what was understood is written and read again as the same.
#include "lornix/policies/policy_file.h"
#include "tests/fuzz/fuzz_input.h"

#include <algorithm>

using namespace lornix;

namespace {

bool same(const PolicyRecord& a, const PolicyRecord& b)
{
    return a.text == b.text && std::ranges::equal(a.account.bytes(), b.account.bytes()) &&
           a.attributes == b.attributes && a.sealedPassword == b.sealedPassword;
}

Finding readInto(std::vector<PolicyRecord>& entries, const PolicyFormat& format, std::string_view text)
{
    return readPolicy(format, text, [&](const PolicyRecord& entry) { entries.push_back(entry); });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const PolicyFormat formats[] = {
        {.kind = {"notifications", 1, true}, .word = "notification", .hasAttributes = true},
        {.kind = {"blocked-extensions", 1, true}, .word = "mask", .hasAccount = true},
        {.kind = {"excludes", 1, true}, .word = "exclude"},
    };
    for (const PolicyFormat& format : formats) {
        std::vector<PolicyRecord> entries;
        const Finding found = readInto(entries, format, text);
        if (found.condition == Condition::kForeign || found.condition == Condition::kOther) {
            require(entries.empty(), "entries of a foreign file");
            continue;
        }
        require((found.condition == Condition::kGood) == (found.flaws.count == 0),
                "the condition and the flaws");
        for (const PolicyRecord& entry : entries) {
            require(!entry.attributes[kPasswordAttribute], "a password in clear");
        }
        std::vector<PolicyRecord> again;
        const std::string whole = wholeText(format.kind, readPolicy(format, text).lines);
        require(readInto(again, format, whole).condition == Condition::kGood &&
                    std::ranges::equal(again, entries, same),
                "entries written and read again");
    }
    std::u16string units;
    for (std::size_t i = 0; i + 1 < size; i += 2) {
        units += static_cast<char16_t>(data[i] | data[i + 1] << 8);
    }
    attributeNumber(units);
    return 0;
}
