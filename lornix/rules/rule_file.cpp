#include "lornix/rules/rule_file.h"

#include "lornix/text/escaped_text.h"
#include "lornix/text/folder_key.h"

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

/// Reads what is left of a file into `result`: an entry from each line, or the flaw that keeps it from being one.
/// @param readEntry  reads a line into an entry. Gives what is wrong with it, or null.
template <class Result, class Entry, class ReadEntry>
void readLines(TextReader& reader, Result& result, std::vector<Entry>& entries, ReadEntry readEntry)
{
    for (std::string_view line; reader.next(line);) {
        Entry entry;
        if (const char* flaw = readEntry(line, entry)) {
            reader.reject(flaw);
        } else {
            entries.push_back(std::move(entry));
        }
    }
    result.flaws = std::move(reader.flaws());
    result.condition = result.flaws.empty() ? Condition::kGood : Condition::kDamaged;
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
    readLines(reader, result, result.rules, [&](std::string_view rest, StoredRule& rule) -> const char* {
        if (const char* flaw = readRule(rest, rule)) {
            return flaw;
        }
        if (rest.empty()) {
            rule.folder = result.folder;
            return nullptr;
        }
        if (!readFolder(rest, rule.folder)) {
            return kNoText;
        }
        return folderKey(rule.folder) == key ? nullptr : "it belongs to another folder";
    });
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
    readLines(reader, result, result.rules, [](std::string_view rest, StoredRule& rule) -> const char* {
        if (const char* flaw = readRule(rest, rule)) {
            return flaw;
        }
        return readFolder(rest, rule.folder) ? nullptr : kNoText;
    });
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
    readLines(reader, result, result.folders,
              [](std::string_view rest, std::u16string& folder) -> const char* {
                  if (takeWord(rest) != kFolderWord) {
                      return "a folder is expected";
                  }
                  return readFolder(rest, folder) ? nullptr : kNoText;
              });
    return result;
}

} // namespace lornix
