#include "lornix/rules/rule_book.h"

#include "lornix/text/escaped_text.h"
#include "lornix/text/folder_key.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <iterator>
#include <utility>

namespace lornix {
namespace {

constexpr std::string_view kFolderWord = "folder";
constexpr std::size_t kRoomForEnd = 64; // more than the last lines take

bool readNumber(std::string_view word, std::int64_t& number)
{
    const char* end = word.data() + word.size();
    const auto [stopped, error] = std::from_chars(word.data(), end, number);
    return error == std::errc() && stopped == end;
}

/// Reads a line up to its folder, which is left.
/// @param isKnown  receives whether it makes a folder known; else it is a rule.
/// @return what is wrong with it, or null.
const char* takeApart(std::string_view& line, StoredRule& rule, bool& isKnown)
{
    const std::string_view word = takeWord(line);
    isKnown = word == kFolderWord;
    if (isKnown) {
        return nullptr;
    }
    if (!readNumber(word, rule.hardLimit) || !readNumber(takeWord(line), rule.softLimit) ||
        !readNumber(takeWord(line), rule.inUse))
    {
        return "three numbers are expected first";
    }
    if (const char* flaw = flawOfLimits(rule.hardLimit, rule.softLimit)) {
        return flaw;
    }
    const auto sid = parseAccount(takeWord(line));
    if (!sid) {
        return "the fourth word is no account";
    }
    rule.sid = *sid;
    return nullptr;
}

/// The lines of a text, one after the other, without their ends and the blanks there: what the reader takes for a line.
std::string_view takeLine(std::string_view& text)
{
    std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    line.remove_suffix(line.ends_with('\r') ? 1 : 0); // another one is the folder's
    return line.substr(0, line.find_last_not_of(" \t") + 1);
}

/// The folder of a line that is known to be good, as it stands there.
std::string_view folderOf(std::string_view line)
{
    if (takeWord(line) != kFolderWord) {
        takeWord(line);
        takeWord(line);
        takeWord(line);
    }
    return line;
}

std::u16string unescaped(std::string_view folder)
{
    return unescape(folder).value_or(std::u16string());
}

/// Whether a folder, as it stands in a line, has a key.
bool isFolder(std::string_view folder, std::u16string_view key)
{
    const bool isPlain = std::ranges::all_of(
        folder, [](char unit) { return unit != '%' && static_cast<signed char>(unit) > 0; });
    return isPlain ? hasFolderKey(folder, key) : folderKey(unescaped(folder)) == key;
}

std::string knownLineOf(std::u16string_view folder)
{
    // Marked by a word, because a folder may be called "end" or start with "#".
    std::string line(kFolderWord);
    line += '\t';
    appendEscaped(line, folder);
    return line + "\r\n";
}

} // namespace

/// Lines of one kind and one folder that follow each other in a file.
struct RuleBook::Piece {
    std::uint32_t block;
    std::uint32_t start;
    std::uint32_t length;
    bool isKnown;
};

const char* flawOfLimits(std::int64_t hardLimit, std::int64_t softLimit)
{
    return hardLimit <= 0          ? "its hard limit is 0 or less"
           : softLimit > hardLimit ? "its soft limit is above the hard one"
                                   : nullptr;
}

StoredRule takeRule(std::string_view& lines)
{
    std::string_view line = takeLine(lines);
    bool isKnown = false;
    StoredRule rule;
    takeApart(line, rule, isKnown);
    rule.folder = unescaped(line);
    return rule;
}

RuleBook::RuleBook(const FileKind& kind)
    : m_kind(kind)
    , m_text(startText(kind).append("# hard limit, soft limit, in use (bytes); account; folder\r\n"))
{
    m_head = m_text.size();
    finish();
}

RuleBook::RuleBook(const FileKind& kind, std::string_view file)
    : RuleBook(kind)
{
    TextReader reader(file, kind);
    std::deque<Piece> pieces;
    std::string_view lastFolder;
    std::uint32_t block = kNone;
    for (std::string_view line; reader.isOurs() && reader.next(line);) {
        StoredRule rule;
        bool isKnown = false;
        std::string_view folder = line;
        if (const char* flaw = takeApart(folder, rule, isKnown)) {
            reader.reject(flaw);
            continue;
        }
        const auto start = static_cast<std::uint32_t>(line.data() - file.data());
        // Rules of one folder mostly follow each other and spell it alike.
        if (block == kNone || folder != lastFolder) {
            const auto name = unescape(folder);
            if (!name || name->empty() || name->find(u'\0') != std::u16string::npos) {
                reader.reject("the folder is not readable text");
                continue;
            }
            const std::u16string key = folderKey(*name);
            block = find(key, file);
            if (block == kNone) {
                block = static_cast<std::uint32_t>(m_blocks.size());
                addBlock({hashOfKey(key), start, 0, 0});
            }
            lastFolder = folder;
        }
        const auto length = static_cast<std::uint32_t>(reader.position() - start);
        std::uint32_t& size = isKnown ? m_blocks[block].known : m_blocks[block].rules;
        if (isKnown && size != 0) {
            continue; // said twice
        }
        size += length;
        if (!isKnown && !pieces.empty() && pieces.back().block == block && !pieces.back().isKnown &&
            pieces.back().start + pieces.back().length == start)
        {
            pieces.back().length += length;
        } else {
            pieces.push_back({block, start, length, isKnown});
        }
    }
    static_cast<Finding&>(*this) = reader.finding();
    gather(file, pieces);
}

void RuleBook::gather(std::string_view file, const std::deque<Piece>& pieces)
{
    begin();
    auto size = static_cast<std::uint32_t>(m_text.size());
    for (Block& block : m_blocks) {
        block.start = size;
        size += block.known + block.rules;
        block.rules = 0; // counted once more
    }
    m_text.reserve(size + kRoomForEnd);
    m_text.resize(size);
    for (const Piece& piece : pieces) {
        Block& block = m_blocks[piece.block];
        const std::uint32_t behind = piece.isKnown ? 0 : block.known + block.rules;
        file.copy(m_text.data() + block.start + behind, piece.length, piece.start);
        block.rules += piece.isKnown ? 0 : piece.length;
    }
    finish();
}

std::uint32_t RuleBook::find(std::u16string_view key, std::string_view lines) const
{
    const std::uint64_t hash = hashOfKey(key);
    return m_table.find(hash, [&](std::uint32_t index) {
        // Two folders may have one hash: the name counts.
        std::string_view own = lines.substr(m_blocks[index].start);
        return m_blocks[index].hash == hash && isFolder(folderOf(takeLine(own)), key);
    });
}

void RuleBook::addBlock(const Block& block)
{
    m_blocks.push_back(block);
    if (m_blocks.size() > m_table.room()) {
        enterAll();
    } else {
        m_table.enter(block.hash, static_cast<std::uint32_t>(m_blocks.size() - 1));
    }
}

void RuleBook::enterAll()
{
    m_table.reset(m_blocks.size());
    for (std::uint32_t index = 0; index < m_blocks.size(); ++index) {
        m_table.enter(m_blocks[index].hash, index);
    }
}

void RuleBook::append(std::uint64_t hash, std::string_view known, std::string_view rules)
{
    if (!known.empty() || !rules.empty()) {
        addBlock({hash, static_cast<std::uint32_t>(m_text.size()), static_cast<std::uint32_t>(known.size()),
                  static_cast<std::uint32_t>(rules.size())});
        m_text += known;
        m_text += rules;
    }
}

RuleBook::Entry RuleBook::entryOf(std::u16string_view key) const
{
    const std::uint32_t index = find(key, m_text);
    return index == kNone
               ? Entry{hashOfKey(key)}
               : Entry{m_blocks[index].hash, index, m_blocks[index].known != 0, ruleLines(m_blocks[index])};
}

std::vector<StoredRule> RuleBook::rulesOf(std::u16string_view key) const
{
    std::vector<StoredRule> rules;
    for (std::string_view lines = entryOf(key).lines; !lines.empty();) {
        rules.push_back(takeRule(lines));
    }
    return rules;
}

std::vector<std::u16string> RuleBook::knownFolders() const
{
    std::vector<std::u16string> folders;
    for (const Block& block : m_blocks) {
        if (block.known != 0) {
            std::string_view line = knownLine(block);
            folders.push_back(unescaped(folderOf(takeLine(line))));
        }
    }
    return folders;
}

void RuleBook::makeRoomFor(std::size_t size)
{
    if (m_text.capacity() < size + kRoomForEnd) {
        std::string larger; // an old one would get twice its room
        larger.reserve(size + size / 8 + kRoomForEnd);
        larger += m_text;
        m_text = std::move(larger);
    }
}

void RuleBook::change(std::span<const Change> changes)
{
    std::deque<Block> next = m_blocks;
    std::vector<bool> isChanged(m_blocks.size());
    std::vector<std::uint32_t> blockOf;
    std::vector<std::string> newlyKnown(changes.size());
    for (std::size_t i = 0; i < changes.size(); ++i) {
        const Change& change = changes[i];
        if (change.before.block == kNone) {
            blockOf.push_back(static_cast<std::uint32_t>(next.size()));
            next.push_back({change.before.hash, 0, 0, 0});
        } else {
            blockOf.push_back(change.before.block);
            isChanged[change.before.block] = true;
        }
        Block& block = next[blockOf.back()];
        block.rules = static_cast<std::uint32_t>(change.rules.size());
        if (!change.isKnown) {
            block.known = 0;
        } else if (block.known == 0) {
            newlyKnown[i] = knownLineOf(change.folder);
            block.known = static_cast<std::uint32_t>(newlyKnown[i].size());
        }
    }
    auto size = static_cast<std::uint32_t>(m_head);
    for (Block& block : next) {
        block.start = size;
        size += block.known + block.rules;
    }
    makeRoomFor(size);
    m_text.resize(std::max<std::size_t>(m_text.size(), size));
    // What stays of each block goes to its place in the same text: up from the last, down from the first, so that none
    // comes to stand on another that is still to go.
    const auto place = [&](std::size_t i) {
        const Block& old = m_blocks[i];
        const std::size_t stays = isChanged[i] ? std::min(old.known, next[i].known) : old.known + old.rules;
        std::memmove(m_text.data() + next[i].start, m_text.data() + old.start, stays);
    };
    for (std::size_t i = m_blocks.size(); i-- > 0;) {
        if (next[i].start > m_blocks[i].start) {
            place(i);
        }
    }
    for (std::size_t i = 0; i < m_blocks.size(); ++i) {
        if (next[i].start < m_blocks[i].start) {
            place(i);
        }
    }
    for (std::size_t i = 0; i < changes.size(); ++i) {
        const Block& block = next[blockOf[i]];
        newlyKnown[i].copy(m_text.data() + block.start, std::string::npos);
        changes[i].rules.copy(m_text.data() + block.start + block.known, std::string_view::npos);
    }
    std::erase_if(next, [](const Block& block) { return block.known == 0 && block.rules == 0; });
    m_blocks = std::move(next);
    enterAll();
    m_text.resize(size);
    finish();
}

void RuleBook::changeKnown(const std::vector<std::u16string>& folders)
{
    RuleBook next(m_kind);
    next.begin();
    std::vector<bool> isDone(m_blocks.size());
    for (const std::u16string& folder : folders) {
        const Entry entry = entryOf(folderKey(folder));
        next.append(entry.hash, knownLineOf(folder), entry.lines);
        if (entry.block != kNone) {
            isDone[entry.block] = true;
        }
    }
    for (std::size_t i = 0; i < m_blocks.size(); ++i) {
        if (!isDone[i]) {
            next.append(m_blocks[i].hash, {}, ruleLines(m_blocks[i]));
        }
    }
    next.finish();
    static_cast<Finding&>(next) = std::move(*this);
    *this = std::move(next);
}

} // namespace lornix
