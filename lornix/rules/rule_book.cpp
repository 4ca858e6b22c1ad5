#include "lornix/rules/rule_book.h"

#include "lornix/text/escaped_text.h"
#include "lornix/text/folder_key.h"

#include <algorithm>
#include <charconv>
#include <functional>
#include <iterator>

namespace lornix {
namespace {

constexpr std::string_view kFolderWord = "folder";
constexpr std::string_view kAnyone = "anyone";

void appendField(std::string& line, std::int64_t number)
{
    char digits[24];
    line.append(digits, std::to_chars(std::begin(digits), std::end(digits), number).ptr);
    line += '\t';
}

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
    const std::string_view account = takeWord(line);
    if (account == kAnyone) {
        return nullptr;
    }
    const auto sid = parseSid(account);
    if (!sid) {
        return "the fourth word is no account";
    }
    rule.sid = *sid;
    return nullptr;
}

/// The lines of a text, one after the other, without their ends and the blanks there.
std::string_view takeLine(std::string_view& text)
{
    std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    return line.substr(0, line.find_last_not_of(" \t\r") + 1);
}

/// The folder of a line that is known to be good.
std::u16string folderOf(std::string_view line)
{
    if (takeWord(line) != kFolderWord) {
        takeWord(line);
        takeWord(line);
        takeWord(line);
    }
    return unescape(line).value_or(std::u16string());
}

std::uint64_t hashOf(std::u16string_view key)
{
    return std::hash<std::u16string_view>()(key);
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

void appendRule(std::string& lines, std::int64_t hardLimit, std::int64_t softLimit, std::int64_t inUse,
                std::span<const std::uint8_t> sid, std::string_view escapedFolder)
{
    appendField(lines, hardLimit);
    appendField(lines, softLimit);
    appendField(lines, inUse);
    if (sid.empty()) {
        lines += kAnyone;
    } else {
        appendSidText(lines, sid);
    }
    lines += '\t';
    lines += escapedFolder;
    lines += "\r\n";
}

RuleBook::RuleBook(const FileKind& kind)
    : m_kind(kind)
{
    TextWriter writer(kind);
    writer.comment("hard limit, soft limit, in use (bytes); account; folder");
    m_text = std::move(writer.line());
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
                addBlock({hashOf(key), start, 0, 0});
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
    const std::uint64_t hash = hashOf(key);
    for (std::size_t i = hash; !m_slots.empty(); ++i) {
        const std::uint32_t index = m_slots[i & (m_slots.size() - 1)];
        if (index == kNone) {
            break;
        }
        // Two folders may have one hash: the name counts.
        std::string_view own = lines.substr(m_blocks[index].start);
        if (m_blocks[index].hash == hash && folderKey(folderOf(takeLine(own))) == key) {
            return index;
        }
    }
    return kNone;
}

void RuleBook::addBlock(const Block& block)
{
    const auto enter = [this](std::uint32_t index) {
        std::size_t i = m_blocks[index].hash;
        while (m_slots[i & (m_slots.size() - 1)] != kNone) {
            ++i;
        }
        m_slots[i & (m_slots.size() - 1)] = index;
    };
    m_blocks.push_back(block);
    if (m_blocks.size() * 2 <= m_slots.size()) {
        enter(static_cast<std::uint32_t>(m_blocks.size() - 1));
        return;
    }
    constexpr std::size_t kLeast = 16;
    m_slots.assign(std::max(kLeast, m_slots.size() * 2), kNone);
    for (std::uint32_t index = 0; index < m_blocks.size(); ++index) {
        enter(index);
    }
}

void RuleBook::append(std::uint64_t hash, std::string_view known, std::string_view rules)
{
    if (known.empty() && rules.empty()) {
        return;
    }
    addBlock({hash, static_cast<std::uint32_t>(m_text.size()), static_cast<std::uint32_t>(known.size()),
              static_cast<std::uint32_t>(rules.size())});
    m_text += known;
    m_text += rules;
}

RuleBook::Entry RuleBook::entryOf(std::u16string_view key) const
{
    const std::uint32_t index = find(key, m_text);
    return index == kNone ? Entry() : Entry{ruleLines(m_blocks[index]), m_blocks[index].known != 0};
}

std::vector<StoredRule> RuleBook::rulesOf(std::u16string_view key) const
{
    std::vector<StoredRule> rules;
    for (std::string_view lines = entryOf(key).lines; !lines.empty();) {
        std::string_view line = takeLine(lines);
        bool isKnown = false;
        StoredRule rule;
        takeApart(line, rule, isKnown);
        rule.folder = unescape(line).value_or(std::u16string());
        rules.push_back(std::move(rule));
    }
    return rules;
}

std::vector<std::u16string> RuleBook::knownFolders() const
{
    std::vector<std::u16string> folders;
    for (const Block& block : m_blocks) {
        if (block.known != 0) {
            std::string_view line = knownLine(block);
            folders.push_back(folderOf(takeLine(line)));
        }
    }
    return folders;
}

RuleBook RuleBook::with(const std::vector<Change>& changes) const
{
    std::vector<const Change*> changeOf(m_blocks.size());
    std::vector<const Change*> added;
    std::size_t size = m_text.size();
    for (const Change& change : changes) {
        const std::uint32_t index = find(change.key, m_text);
        (index == kNone ? added.emplace_back() : changeOf[index]) = &change;
        size += change.lines.size();
    }
    RuleBook next(m_kind);
    next.begin();
    next.m_text.reserve(size + size / 8);
    for (std::size_t i = 0; i < m_blocks.size(); ++i) {
        const Block& block = m_blocks[i];
        if (const Change* change = changeOf[i]; change == nullptr) {
            next.append(block.hash, knownLine(block), ruleLines(block));
        } else if (!change->isKnown) {
            next.append(block.hash, {}, change->lines);
        } else {
            const std::string known = block.known == 0 ? knownLineOf(change->folder) : std::string();
            next.append(block.hash, known.empty() ? knownLine(block) : known, change->lines);
        }
    }
    for (const Change* change : added) {
        next.append(hashOf(change->key), change->isKnown ? knownLineOf(change->folder) : std::string(),
                    change->lines);
    }
    next.finish();
    return next;
}

RuleBook RuleBook::withKnown(const std::vector<std::u16string>& folders) const
{
    RuleBook next(m_kind);
    next.begin();
    std::vector<bool> isDone(m_blocks.size());
    for (const std::u16string& folder : folders) {
        const std::u16string key = folderKey(folder);
        const std::uint32_t index = find(key, m_text);
        const bool isHere = index != kNone;
        next.append(hashOf(key), knownLineOf(folder),
                    isHere ? ruleLines(m_blocks[index]) : std::string_view());
        if (isHere) {
            isDone[index] = true;
        }
    }
    for (std::size_t i = 0; i < m_blocks.size(); ++i) {
        if (!isDone[i]) {
            next.append(m_blocks[i].hash, {}, ruleLines(m_blocks[i]));
        }
    }
    next.finish();
    return next;
}

} // namespace lornix
