// Whatever the bytes are: no fault, no rule that must not be handed out, and what was understood is written and
// read again as the same.
#include "lornix/rules/rule_book.h"
#include "lornix/text/folder_key.h"
#include "tests/fuzz/fuzz_input.h"

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
    for (const FileKind& kind : {kRules, kTrackedRules}) {
        const RuleBook book(kind, text);
        const auto known = book.knownFolders();
        require((book.condition == Condition::kGood) ==
                    (book.flaws.count == 0 && book.condition != Condition::kOther),
                "the condition and the flaws");
        require(book.condition == Condition::kGood || book.condition == Condition::kDamaged || known.empty(),
                "folders of a file that is none");
        const RuleBook again(kind, book.text());
        require(again.condition == Condition::kGood && again.knownFolders() == known &&
                    again.text() == book.text(),
                "what was understood, written and read again");
        auto folders = known;
        folders.insert(folders.end(), {u"D:\\A", u"\0", u"end"});
        for (const std::u16string& folder : folders) {
            const std::u16string key = folderKey(folder);
            const auto rules = book.rulesOf(key);
            for (const StoredRule& rule : rules) {
                require(rule.hardLimit > 0 && rule.softLimit <= rule.hardLimit, "the limits");
                require(folderKey(rule.folder) == key, "a rule of another folder");
            }
            require(same(again.rulesOf(key), rules), "rules written and read again");
            RuleBook without = book;
            const RuleBook::Change change{without.entryOf(key), folder, false, {}};
            without.change({&change, 1});
            require(without.rulesOf(key).empty(), "rules that were taken out");
        }
        RuleBook forgotten = book;
        forgotten.changeKnown({});
        require(forgotten.knownFolders().empty(), "known folders taken out");
        forgotten.changeKnown(known);
        require(forgotten.knownFolders() == known, "known folders in again");
    }
    return 0;
}
