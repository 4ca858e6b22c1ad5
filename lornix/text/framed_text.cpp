#include "lornix/text/framed_text.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cstring>
#include <iterator>
#include <utility>

namespace lornix {
namespace {

constexpr std::string_view kBlanks = " \t";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF"; // some editors put one in front
constexpr std::string_view kEnd = "end";
constexpr std::string_view kChecksum = "checksum";
constexpr std::string_view kUnchecked = "-";

std::string firstLine(const FileKind& kind)
{
    return "lornix " + std::string(kind.name) + ' ' + std::to_string(kind.version);
}

/// What a first line says that is not the one expected.
Condition conditionOf(std::string_view line, const FileKind& kind)
{
    const auto isDigit = [](char unit) {
        return unit >= '0' && unit <= '9';
    };
    const std::string_view product = takeWord(line);
    const std::string_view name = takeWord(line);
    const bool isSound = product == "lornix" && !line.empty() && std::ranges::all_of(line, isDigit);
    // No older version was ever given to anybody.
    const bool isOlder = name == kind.name && (line.starts_with('0') || line == std::to_string(kind.version));
    return isSound && !isOlder ? Condition::kOther : Condition::kForeign;
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

std::uint64_t checksumOf(std::string_view bytes)
{
    static_assert(std::endian::native == std::endian::little, "the sum is part of the files");
    constexpr std::size_t kWord = sizeof(std::uint64_t);
    // Each step can be undone, so that no change gets lost.
    const auto add = [](std::uint64_t& sum, std::uint64_t word) {
        sum = (sum ^ word) * 0x9E3779B97F4A7C15u;
        sum ^= sum >> 29;
    };
    const auto wordAt = [&](std::size_t offset, std::size_t size) {
        std::uint64_t word = 0;
        std::memcpy(&word, bytes.data() + offset, size);
        return word;
    };
    // Four sums take turns: none of them waits for the step before.
    std::uint64_t sums[] = {bytes.size(), 0, 0, 0};
    std::size_t offset = 0;
    for (; bytes.size() - offset >= std::size(sums) * kWord; offset += std::size(sums) * kWord) {
        for (std::size_t i = 0; i < std::size(sums); ++i) {
            add(sums[i], wordAt(offset + i * kWord, kWord));
        }
    }
    for (; offset < bytes.size(); offset += kWord) {
        add(sums[0], wordAt(offset, std::min(kWord, bytes.size() - offset)));
    }
    for (std::size_t i = 1; i < std::size(sums); ++i) {
        add(sums[0], sums[i]);
    }
    return sums[0];
}

void appendHex(std::string& line, std::uint64_t number)
{
    char digits[16];
    const auto end = std::to_chars(std::begin(digits), std::end(digits), number, 16).ptr;
    line.append(static_cast<std::size_t>(std::end(digits) - end), '0').append(digits, end);
}

std::string startText(const FileKind& kind)
{
    return firstLine(kind).append(kLineEnd);
}

void appendEnd(std::string& text, const FileKind& kind)
{
    if (kind.isChecked) {
        const std::uint64_t sum = checksumOf(text);
        text += kChecksum;
        text += '\t';
        appendHex(text, sum);
        text += kLineEnd;
    }
    text += kEnd;
    text += kLineEnd;
}

std::string wholeText(const FileKind& kind, std::string_view lines)
{
    std::string text = startText(kind).append(lines);
    appendEnd(text, kind);
    return text;
}

TextReader::TextReader(std::string_view text, const FileKind& kind)
    : m_text(text)
    , m_rest(text)
    , m_isChecked(kind.isChecked)
{
    if (m_rest.starts_with(kByteOrderMark)) {
        m_rest.remove_prefix(kByteOrderMark.size());
    }
    std::string_view line;
    const bool hasLine = takeLine(line);
    m_opening = hasLine && line == firstLine(kind) ? Condition::kGood : conditionOf(line, kind);
    if (m_opening == Condition::kForeign) {
        m_flaws.add(1, "it does not say what the file is");
    }
}

bool TextReader::takeLine(std::string_view& line)
{
    if (m_rest.empty()) {
        return false;
    }
    ++m_lineNumber;
    const std::size_t end = m_rest.find('\n');
    m_isWhole = end != std::string_view::npos;
    line = m_rest.substr(0, end);
    m_rest.remove_prefix(m_isWhole ? end + 1 : m_rest.size());
    if (line.ends_with('\r')) {
        line.remove_suffix(1);
    }
    line = trimmed(line);
    return true;
}

void TextReader::readChecksum(std::string_view line, std::size_t start)
{
    m_hasChecksum = true;
    takeWord(line);
    std::string_view above = m_text.substr(0, start);
    if (above.starts_with(kByteOrderMark)) {
        above.remove_prefix(kByteOrderMark.size());
    }
    std::string expected;
    appendHex(expected, checksumOf(above));
    if (line != kUnchecked && line != expected) {
        reject("the checksum is another, so that something above was changed");
    }
}

void TextReader::expectNothingMore()
{
    for (std::string_view behind; takeLine(behind);) {
        if (!behind.empty()) {
            reject("it stands behind the end");
        }
    }
}

bool TextReader::next(std::string_view& line)
{
    for (std::size_t start = position(); takeLine(line); start = position()) {
        if (line == kEnd) {
            if (m_isChecked && !m_hasChecksum) {
                reject("the checksum is missing");
            }
            expectNothingMore();
            return false;
        }
        if (line.empty() || line.front() == '#') {
            continue;
        }
        if (!m_isChecked) {
            return true;
        }
        if (!m_isWhole) {
            reject("it was cut off"); // half a path is a path too
        } else if (m_hasChecksum) {
            reject("it stands behind the checksum");
        } else if (std::string_view rest = line; takeWord(rest) == kChecksum) {
            readChecksum(line, start);
        } else {
            return true;
        }
    }
    ++m_lineNumber;
    reject("the end is missing");
    return false;
}

Finding TextReader::finding()
{
    const bool isDamaged = isOurs() && m_flaws.count != 0;
    return {isDamaged ? Condition::kDamaged : m_opening, std::move(m_flaws)};
}

std::string_view takeWord(std::string_view& line)
{
    const std::size_t end = line.find_first_of(kBlanks);
    const std::string_view word = line.substr(0, end);
    line = end == std::string_view::npos ? std::string_view() : trimmed(line.substr(end));
    return word;
}

} // namespace lornix
