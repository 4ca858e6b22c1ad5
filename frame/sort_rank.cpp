#include "frame/sort_rank.h"

#include "frame/ignore_case.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace {

constexpr std::uint32_t kLastAscii = 0x7F;
constexpr int kStartLength = 8;

// A character has a sign on some systems and none on others.
bool isAscii(wchar_t letter)
{
    return static_cast<std::uint32_t>(letter) <= kLastAscii;
}

// The runtime folds these letters alike in all its locales.
wchar_t folded(wchar_t letter)
{
    return letter >= L'A' && letter <= L'Z' ? static_cast<wchar_t>(letter - L'A' + L'a') : letter;
}

/// How many characters all texts begin with, in any case.
std::size_t commonStart(std::span<const SortKey> keys)
{
    const wchar_t* const first = keys.front().text;
    std::size_t length = 0;
    while (first[length] != L'\0' && isAscii(first[length])) {
        ++length;
    }
    for (const SortKey& key : keys) {
        std::size_t same = 0;
        while (same < length && folded(key.text[same]) == folded(first[same])) {
            ++same;
        }
        length = same;
    }
    return length;
}

/// Some characters as a number that orders texts as they do.
/// @return false when one of them is beyond those that are known to fold alike everywhere.
bool packStart(const wchar_t* text, std::uint64_t& start)
{
    start = 0;
    for (int i = 0; i < kStartLength; ++i) {
        const wchar_t letter = *text;
        if (!isAscii(letter)) {
            return false;
        }
        start = start << 8 | static_cast<std::uint64_t>(folded(letter));
        text += letter != L'\0' ? 1 : 0;
    }
    return true;
}

struct Entry {
    std::uint64_t start;
    const wchar_t* text; ///< from where the texts begin to differ
    std::size_t key;
};

int compare(const Entry& a, const Entry& b)
{
    if (a.start != b.start) {
        return a.start < b.start ? -1 : 1;
    }
    return compareIgnoringCase(a.text, b.text);
}

/// Texts run from Z to A.
void rankTexts(std::span<const SortKey> keys, std::span<std::uint32_t> ranks)
{
    const std::size_t skipped = commonStart(keys);
    std::vector<Entry> entries;
    entries.reserve(keys.size());
    bool packed = true;
    for (const SortKey& key : keys) {
        Entry& entry = entries.emplace_back(Entry{0, key.text + skipped, entries.size()});
        packed = packStart(entry.text, entry.start) && packed;
    }
    if (!packed) {
        for (Entry& entry : entries) {
            entry.start = 0;
        }
    }
    std::sort(entries.begin(), entries.end(),
              [](const Entry& a, const Entry& b) { return compare(a, b) > 0; });
    std::uint32_t rank = 0;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (i > 0 && compare(entries[i - 1], entries[i]) != 0) {
            ++rank;
        }
        ranks[entries[i].key] = rank;
    }
}

} // namespace

bool rankKeys(std::span<const SortKey> keys, std::span<std::uint32_t> ranks)
{
    const auto numbers =
        std::count_if(keys.begin(), keys.end(), [](const SortKey& key) { return key.isNumber; });
    if (static_cast<std::size_t>(numbers) == keys.size()) {
        std::transform(keys.begin(), keys.end(), ranks.begin(),
                       [](const SortKey& key) { return static_cast<std::uint32_t>(key.number); });
        return true;
    }
    if (numbers != 0) {
        return false;
    }
    rankTexts(keys, ranks);
    return true;
}
