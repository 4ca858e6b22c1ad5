#include "lornix/text/framed_text.h"

#include <utility>

namespace lornix {
namespace {

// The line end of the platform's plain text files.
constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kBlanks = " \t";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF"; // some editors put one in front
constexpr std::string_view kEnd = "end";

std::string firstLine(const FileKind& kind)
{
    return "lornix " + std::string(kind.name) + ' ' + std::to_string(kind.version);
}

std::string_view trimmed(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

} // namespace

TextWriter::TextWriter(const FileKind& kind)
    : text_(firstLine(kind))
{
    endLine();
}

void TextWriter::endLine()
{
    text_ += kLineEnd;
}

void TextWriter::comment(std::string_view text)
{
    text_ += "# ";
    text_ += text;
    endLine();
}

std::string TextWriter::finish()
{
    text_ += kEnd;
    endLine();
    return std::exchange(text_, {});
}

TextReader::TextReader(std::string_view text, const FileKind& kind)
    : rest_(text)
{
    if (rest_.starts_with(kByteOrderMark)) {
        rest_.remove_prefix(kByteOrderMark.size());
    }
    std::string_view line;
    isOurs_ = takeLine(line) && line == firstLine(kind);
}

bool TextReader::takeLine(std::string_view& line)
{
    if (rest_.empty()) {
        return false;
    }
    ++lineNumber_;
    const std::size_t end = rest_.find('\n');
    line = rest_.substr(0, end);
    rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + 1);
    if (line.ends_with('\r')) {
        line.remove_suffix(1);
    }
    line = trimmed(line);
    return true;
}

bool TextReader::next(std::string_view& line)
{
    while (takeLine(line)) {
        if (line == kEnd) {
            std::string_view behind;
            while (takeLine(behind)) {
                if (!behind.empty()) {
                    reject("it stands behind the end");
                }
            }
            return false;
        }
        if (!line.empty() && line.front() != '#') {
            return true;
        }
    }
    ++lineNumber_;
    reject("the end is missing");
    return false;
}

void TextReader::reject(const char* reason)
{
    flaws_.push_back({lineNumber_, reason});
}

std::string_view takeWord(std::string_view& line)
{
    const std::size_t end = line.find_first_of(kBlanks);
    const std::string_view word = line.substr(0, end);
    line = end == std::string_view::npos ? std::string_view() : trimmed(line.substr(end));
    return word;
}

} // namespace lornix
