// What a file of rules holds: a rule a line, with its folder, and the folders that are known.
#pragma once

#include "lornix/rules/index_table.h"
#include "lornix/text/framed_text.h"
#include "lornix/text/sid_text.h"

#include <cstdint>
#include <deque>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace lornix {

/// The stored rules, and those made for groups, for accounts that join the groups later.
inline constexpr FileKind kRules{"rules", 1, true};
inline constexpr FileKind kTrackedRules{"tracked-rules", 1, true};

/// A rule as a file keeps it.
struct StoredRule {
    std::int64_t hardLimit = 0; ///< above 0
    std::int64_t softLimit = 0; ///< not above the hard one
    std::int64_t inUse = 0;
    Sid sid;               ///< empty: for anyone
    std::u16string folder; ///< as the rule spells it
};

/// @return what keeps limits from being stored, or null.
const char* flawOfLimits(std::int64_t hardLimit, std::int64_t softLimit);

/// Takes the first rule off lines of a book. They are known to be good.
StoredRule takeRule(std::string_view& lines);

/// The lines of a file by their folders, without what they say: 100,000 rules of 5,000 folders are then little more
/// than their text, and storing those of one folder takes the others over as they are. What is read is put in order by
/// folders; the whole text of the file stands in memory once.
class RuleBook : public Finding {
public:
    explicit RuleBook(const FileKind& kind = kRules);

    /// What a file holds.
    RuleBook(const FileKind& kind, std::string_view file);

    /// The text of a file that holds it.
    const std::string& text() const { return m_text; }

    static constexpr std::uint32_t kNone = IndexTable::kNone;

    /// What there is of a folder. Good until the book is changed.
    struct Entry {
        std::uint64_t hash; ///< of its key
        std::uint32_t block = kNone;
        bool isKnown = false;
        std::string_view lines{}; ///< of its rules
    };
    /// @param key  of a folder, see folderKey.
    Entry entryOf(std::u16string_view key) const;
    std::vector<StoredRule> rulesOf(std::u16string_view key) const;

    /// In their order.
    std::vector<std::u16string> knownFolders() const;

    /// A folder whose rules are replaced.
    struct Change {
        Entry before;
        std::u16string_view folder; ///< as a folder that gets to be known is spelled
        bool isKnown;
        std::string_view rules; ///< its new lines
    };

    /// Replaces the rules of some folders. None may stand there twice.
    void change(std::span<const Change> changes);

    /// Replaces the known folders. None may stand there twice.
    void changeKnown(const std::vector<std::u16string>& folders);

private:
    /// The lines of a folder: the one that makes it known, if there is one, and its rules.
    struct Block {
        std::uint64_t hash; ///< of the folder's key
        std::uint32_t start;
        std::uint32_t known; ///< length of the first line
        std::uint32_t rules;
    };
    struct Piece;

    /// @param lines  the text that the blocks are of.
    std::uint32_t find(std::u16string_view key, std::string_view lines) const;
    void append(std::uint64_t hash, std::string_view known, std::string_view rules);
    void addBlock(const Block& block);
    void enterAll();
    void gather(std::string_view file, const std::deque<Piece>& pieces);
    void makeRoomFor(std::size_t size);
    void begin() { m_text.resize(m_head); }
    void finish() { appendEnd(m_text, m_kind); }
    std::string_view knownLine(const Block& block) const
    {
        return {m_text.data() + block.start, block.known};
    }
    std::string_view ruleLines(const Block& block) const
    {
        return {m_text.data() + block.start + block.known, block.rules};
    }

    FileKind m_kind;
    std::size_t m_head = 0;     ///< length of what stands above the lines
    std::string m_text;         ///< the lines of all blocks, in their order, and what stands around them
    std::deque<Block> m_blocks; ///< which needs no room for two of them while it grows
    IndexTable m_table;         ///< of the blocks
};

} // namespace lornix
