// Whatever the bytes are: no fault, no rule that must not be handed out, and what was understood is written and
// read again as the same.
#include "lornix/rules/rule_file.h"
#include "lornix/text/folder_key.h"
#include "tests/unit/fuzz/fuzz_input.h"

using namespace lornix;

namespace {

bool same(const std::vector<StoredRule>& a, const std::vector<StoredRule>& b)
{
    return std::ranges::equal(a, b, [](const StoredRule& x, const StoredRule& y) {
        return x.hardLimit == y.hardLimit && x.softLimit == y.softLimit && x.inUse == y.inUse &&
               x.folder == y.folder && std::ranges::equal(x.sid.bytes(), y.sid.bytes());
    });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);

    const FolderRules rules = readFolderRules(text);
    if (rules.condition != Condition::kForeign) {
        require((rules.condition == Condition::kGood) == rules.flaws.empty(), "the condition and the flaws");
        for (const StoredRule& rule : rules.rules) {
            require(rule.hardLimit > 0, "a hard limit");
            require(folderKey(rule.folder) == folderKey(rules.folder), "a rule of another folder");
        }
        const FolderRules again = readFolderRules(writeFolderRules(rules.folder, rules.rules));
        require(again.condition == Condition::kGood && again.folder == rules.folder &&
                    same(again.rules, rules.rules),
                "rules written and read again");
    } else {
        require(rules.rules.empty(), "rules of a foreign file");
    }

    const TrackedRules tracked = readTrackedRules(text);
    if (tracked.condition != Condition::kForeign) {
        const TrackedRules again = readTrackedRules(writeTrackedRules(tracked.rules));
        require(again.condition == Condition::kGood && same(again.rules, tracked.rules),
                "tracked rules written and read again");
    }

    const KnownFolders known = readKnownFolders(text);
    if (known.condition != Condition::kForeign) {
        const KnownFolders again = readKnownFolders(writeKnownFolders(known.folders));
        require(again.condition == Condition::kGood && again.folders == known.folders,
                "known folders written and read again");
    }
    return 0;
}
