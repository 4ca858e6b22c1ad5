#include "lornix/policies/policy_file.h"

#include "lornix/text/escaped_text.h"

#include <algorithm>
#include <charconv>

namespace lornix {
namespace {

// In the order of the attributes' numbers.
constexpr std::array<std::string_view, kAttributeCount> kAttributeWords = {
    "for-account", "for-whom", "rate", "run-as", "password-sealed", "min-increment"};

constexpr const char* kNotText = "it is not readable text";
constexpr const char* kUnknownWord = "its first word is none that is known here";

constexpr char kDigits[] = "0123456789abcdef";

void appendHex(std::string& line, std::string_view bytes)
{
    for (const char each : bytes) {
        const auto byte = static_cast<unsigned char>(each);
        line += kDigits[byte >> 4];
        line += kDigits[byte & 15];
    }
}

bool readHex(std::string_view text, std::string& bytes)
{
    if (text.empty() || text.size() % 2 != 0) {
        return false;
    }
    bytes.clear();
    for (; !text.empty(); text.remove_prefix(2)) {
        unsigned byte = 0;
        const std::string_view pair = text.substr(0, 2);
        const auto [end, error] = std::from_chars(pair.data(), pair.data() + pair.size(), byte, 16);
        if (error != std::errc() || end != pair.data() + pair.size()) {
            return false;
        }
        bytes += static_cast<char>(byte);
    }
    return true;
}

std::optional<std::u16string> readable(std::string_view rest)
{
    auto text = unescape(rest);
    return text && text->find(u'\0') == std::u16string::npos ? text : std::nullopt;
}

/// @return what is wrong with the line, or null.
const char* readEntry(const PolicyFormat& format, std::string_view line, PolicyRecord& entry)
{
    if (format.hasAccount) {
        const auto account = parseAccount(takeWord(line));
        if (!account) {
            return "the second word is no account";
        }
        entry.account = *account;
    }
    auto text = readable(line);
    entry.text = text.value_or(std::u16string());
    return text ? nullptr : kNotText;
}

const char* readAttribute(std::string_view word, std::string_view rest, PolicyRecord& entry)
{
    const auto place = std::ranges::find(kAttributeWords, word);
    if (place == kAttributeWords.end()) {
        return kUnknownWord;
    }
    const auto index = static_cast<std::size_t>(place - kAttributeWords.begin());
    if (index == kPasswordAttribute) {
        return readHex(rest, entry.sealedPassword) ? nullptr : "it is not a row of hexadecimal digits";
    }
    auto text = readable(rest);
    if (!text) {
        return kNotText;
    }
    entry.attributes[index] = std::move(text);
    return nullptr;
}

void appendRecord(std::string& lines, const PolicyFormat& format, const PolicyRecord& entry)
{
    lines += format.word;
    lines += '\t';
    if (format.hasAccount) {
        appendAccount(lines, entry.account.bytes());
        lines += '\t';
    }
    appendEscaped(lines, entry.text);
    lines += kLineEnd;
    for (std::size_t i = 0; i < kAttributeCount; ++i) {
        const bool isPassword = i == kPasswordAttribute; // never in clear
        if (isPassword ? entry.sealedPassword.empty() : !entry.attributes[i]) {
            continue;
        }
        lines += kAttributeWords[i];
        lines += '\t';
        if (isPassword) {
            appendHex(lines, entry.sealedPassword);
        } else {
            appendEscaped(lines, *entry.attributes[i]);
        }
        lines += kLineEnd;
    }
}

} // namespace

void PolicyLines::append(const PolicyFormat& format, const PolicyRecord& entry)
{
    const std::size_t start = lines.size();
    appendRecord(lines, format, entry);
    constexpr std::uint64_t kSpread = 0x9E3779B97F4A7C15u;
    mark = mark * kSpread + checksumOf(std::string_view(lines).substr(start));
}

PolicyLines readPolicy(const PolicyFormat& format, std::string_view text,
                       const std::function<void(const PolicyRecord&)>& take)
{
    TextReader reader(text, format.kind);
    PolicyLines result;
    std::optional<PolicyRecord> entry; // attributes of one that was left out belong to none
    std::size_t count = 0;
    const auto finish = [&] {
        if (!entry) {
            return;
        }
        result.append(format, *entry);
        if (take) {
            take(*entry);
            result.lines.clear();
        }
        ++count;
        entry.reset();
    };
    for (std::string_view line; reader.isOurs() && reader.next(line);) {
        const std::string_view word = takeWord(line);
        const char* flaw = nullptr;
        if (word == format.word) {
            finish();
            flaw = count < kMostEntries ? readEntry(format, line, entry.emplace())
                                        : "there are too many before it";
            if (flaw != nullptr) {
                entry.reset();
            }
        } else if (!format.hasAttributes) {
            flaw = kUnknownWord;
        } else {
            flaw = entry ? readAttribute(word, line, *entry) : "it stands under no entry";
        }
        if (flaw != nullptr) {
            reader.reject(flaw);
        }
    }
    finish();
    static_cast<Finding&>(result) = reader.finding();
    return result;
}

std::int32_t attributeNumber(std::u16string_view text)
{
    const std::size_t first = text.find_first_not_of(u" \t\r\n\v\f");
    text.remove_prefix(first == std::u16string_view::npos ? text.size() : first);
    const bool isNegative = text.starts_with(u'-');
    if (isNegative || text.starts_with(u'+')) {
        text.remove_prefix(1);
    }
    // Without a sign, so that a number too large wraps round and does nothing worse.
    std::uint64_t number = 0;
    while (!text.empty() && text.front() >= u'0' && text.front() <= u'9') {
        number = number * 10 + static_cast<std::uint64_t>(text.front() - u'0');
        text.remove_prefix(1);
    }
    constexpr std::u16string_view kUnits = u"kmgt";
    if (!text.empty()) {
        const std::size_t unit = kUnits.find(static_cast<char16_t>(text.front() | 0x20));
        if (unit != std::u16string_view::npos) {
            number <<= 10 * (unit + 1);
        }
    }
    return static_cast<std::int32_t>(isNegative ? 0 - number : number);
}

} // namespace lornix
