#include "lornix/rule_file.h"

#include "lornix/escaped_text.h"
#include "lornix/folder_key.h"

#include <charconv>
#include <iterator>

namespace lornix {
namespace {

constexpr FileKind kRules{"rules", 1};
constexpr FileKind kTracked{"tracked-rules", 1};
constexpr FileKind kFolders{"known-folders", 1};

constexpr std::string_view kFolderWord = "folder";
constexpr std::string_view kAnyone = "anyone";
constexpr const char* kNoText = "the folder is not readable text";

void appendField(std::string& line, std::int64_t number)
{
    char digits[24];
    const auto end = std::to_chars(std::begin(digits), std::end(digits), number).ptr;
    line.append(digits, end);
    line += '\t';
}

void appendRule(std::string& line, std::int64_t hardLimit, std::int64_t softLimit, std::int64_t inUse,
                std::span<const std::uint8_t> sid)
{
    appendField(line, hardLimit);
    appendField(line, softLimit);
    appendField(line, inUse);
    if (sid.empty()) {
        line += kAnyone;
    } else {
        appendSidText(line, sid);
    }
}

bool readNumber(std::string_view word, std::int64_t& number)
{
    const char* end = word.data() + word.size();
    const auto [stopped, error] = std::from_chars(word.data(), end, number);
    return error == std::errc() && stopped == end;
}

/// Reads the folder that is the rest of a line.
bool readFolder(std::string_view rest, std::u16string& folder)
{
    auto text = unescape(rest);
    if (!text || text->empty() || text->find(u'\0') != std::u16string::npos) {
        return false;
    }
    folder = std::move(*text);
    return true;
}

/// Reads a rule up to its account; what is left of the line is its folder.
/// @return what is wrong with it, or null.
const char* readRule(std::string_view& line, StoredRule& rule)
{
    for (std::int64_t* number : {&rule.hardLimit, &rule.softLimit, &rule.inUse}) {
        if (!readNumber(takeWord(line), *number)) {
            return "three numbers are expected first";
        }
    }
    if (rule.hardLimit <= 0) {
        return "its hard limit is 0 or less";
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

Condition conditionOf(const std::vector<Flaw>& flaws)
{
    return flaws.empty() ? Condition::kGood : Condition::kDamaged;
}

} // namespace

FolderRulesWriter::FolderRulesWriter(std::u16string_view folder)
    : folder_(folder)
    , writer_(kRules)
{
    writer_.line() += kFolderWord;
    writer_.line() += '\t';
    appendEscaped(writer_.line(), folder);
    writer_.endLine();
    writer_.comment(
        "hard limit, soft limit, in use (bytes); account; the folder where the rule spells it otherwise");
}

void FolderRulesWriter::add(std::int64_t hardLimit, std::int64_t softLimit, std::int64_t inUse,
                            std::span<const std::uint8_t> sid, std::u16string_view folder)
{
    std::string& line = writer_.line();
    appendRule(line, hardLimit, softLimit, inUse, sid);
    if (folder != folder_) {
        line += '\t';
        appendEscaped(line, folder);
    }
    writer_.endLine();
}

std::string writeFolderRules(std::u16string_view folder, const std::vector<StoredRule>& rules)
{
    FolderRulesWriter writer(folder);
    for (const StoredRule& rule : rules) {
        writer.add(rule.hardLimit, rule.softLimit, rule.inUse, rule.sid.bytes(), rule.folder);
    }
    return writer.finish();
}

FolderRules readFolderRules(std::string_view text)
{
    FolderRules result;
    TextReader reader(text, kRules);
    std::string_view line;
    if (!reader.isOurs() || !reader.next(line) || takeWord(line) != kFolderWord ||
        !readFolder(line, result.folder))
    {
        return result;
    }
    const std::u16string key = folderKey(result.folder);
    while (reader.next(line)) {
        StoredRule rule;
        const char* flaw = readRule(line, rule);
        if (flaw == nullptr && line.empty()) {
            rule.folder = result.folder;
        } else if (flaw == nullptr && !readFolder(line, rule.folder)) {
            flaw = kNoText;
        } else if (flaw == nullptr && folderKey(rule.folder) != key) {
            flaw = "it belongs to another folder";
        }
        if (flaw != nullptr) {
            reader.reject(flaw);
        } else {
            result.rules.push_back(std::move(rule));
        }
    }
    result.flaws = std::move(reader.flaws());
    result.condition = conditionOf(result.flaws);
    return result;
}

std::string writeTrackedRules(const std::vector<StoredRule>& rules)
{
    TextWriter writer(kTracked);
    writer.comment("hard limit, soft limit, in use (bytes); account of the group; folder");
    for (const StoredRule& rule : rules) {
        appendRule(writer.line(), rule.hardLimit, rule.softLimit, rule.inUse, rule.sid.bytes());
        writer.line() += '\t';
        appendEscaped(writer.line(), rule.folder);
        writer.endLine();
    }
    return writer.finish();
}

TrackedRules readTrackedRules(std::string_view text)
{
    TrackedRules result;
    TextReader reader(text, kTracked);
    if (!reader.isOurs()) {
        return result;
    }
    for (std::string_view line; reader.next(line);) {
        StoredRule rule;
        const char* flaw = readRule(line, rule);
        if (flaw == nullptr && !readFolder(line, rule.folder)) {
            flaw = kNoText;
        }
        if (flaw != nullptr) {
            reader.reject(flaw);
        } else {
            result.rules.push_back(std::move(rule));
        }
    }
    result.flaws = std::move(reader.flaws());
    result.condition = conditionOf(result.flaws);
    return result;
}

std::string writeKnownFolders(const std::vector<std::u16string>& folders)
{
    TextWriter writer(kFolders);
    for (const std::u16string& folder : folders) {
        // Marked by a word, because a folder may be called "end" or start with "#".
        writer.line() += kFolderWord;
        writer.line() += '\t';
        appendEscaped(writer.line(), folder);
        writer.endLine();
    }
    return writer.finish();
}

KnownFolders readKnownFolders(std::string_view text)
{
    KnownFolders result;
    TextReader reader(text, kFolders);
    if (!reader.isOurs()) {
        return result;
    }
    for (std::string_view line; reader.next(line);) {
        std::u16string folder;
        if (takeWord(line) != kFolderWord) {
            reader.reject("a folder is expected");
        } else if (!readFolder(line, folder)) {
            reader.reject(kNoText);
        } else {
            result.folders.push_back(std::move(folder));
        }
    }
    result.flaws = std::move(reader.flaws());
    result.condition = conditionOf(result.flaws);
    return result;
}

} // namespace lornix
