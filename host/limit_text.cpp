#include "host/limit_text.h"

#include <cwctype>

namespace host {
namespace {

constexpr int64_t kSmallest = 1024;
constexpr int64_t kLargest = INT32_MAX;

constexpr const wchar_t* kWhatIsPossible =
    L"Type a whole number, directly followed by K, M or G for a limit in KiB, MiB or GiB: 500M, for "
    L"example.\n"
    L"In the list a limit can be from 1K to 2047M. Use Edit for a larger one.";

} // namespace

std::wstring sizeText(int64_t bytes)
{
    constexpr wchar_t kUnits[] = L" KMGT";
    constexpr int64_t kMostShown = 1LL << 20;
    constexpr int kSteps = 5;
    int unit = 0;
    for (int step = 0; step < kSteps; ++step) {
        if (bytes > kMostShown) {
            bytes /= 1024;
            ++unit;
        }
    }
    std::wstring text = std::to_wstring(bytes);
    if (kUnits[unit] != 0) {
        text += kUnits[unit];
    }
    return text;
}

std::wstring percentText(int64_t inUse, int64_t hardLimit)
{
    const int64_t percent = inUse * 100 / hardLimit;
    const std::wstring digits = std::to_wstring(percent < 0 ? -percent : percent);
    std::wstring text = (percent < 0 ? L"-" : L"") + (digits.size() < 2 ? L"0" + digits : digits) + L"%";
    constexpr size_t kCellWidth = 5;
    return text.substr(0, kCellWidth);
}

CellLimit checkCellLimit(const std::wstring& typed)
{
    const size_t first = typed.find_first_not_of(L" \t");
    if (first == std::wstring::npos) {
        return {{}, std::wstring(L"No limit was typed.\n\n") + kWhatIsPossible};
    }
    const std::wstring text = typed.substr(first, typed.find_last_not_of(L" \t") - first + 1);
    CellLimit notALimit{{}, L"\"" + text + L"\" is not a limit.\n\n" + kWhatIsPossible};

    size_t digits = 0;
    int64_t value = 0;
    while (digits < text.size() && text[digits] >= L'0' && text[digits] <= L'9') {
        // Once too large, a number stays too large: no need to go on and overflow.
        value = value > kLargest ? value : value * 10 + (text[digits] - L'0');
        ++digits;
    }
    if (digits == 0 || text.size() > digits + 1) {
        return notALimit;
    }
    if (digits < text.size()) {
        switch (towupper(text[digits])) {
        case L'K':
            value *= 1LL << 10;
            break;
        case L'M':
            value *= 1LL << 20;
            break;
        case L'G':
            value *= 1LL << 30;
            break;
        default:
            return notALimit;
        }
    }
    if (value > kLargest) {
        return {{}, text + L" is too large to be typed into the list.\n\n" + kWhatIsPossible};
    }
    if (value < kSmallest) {
        return {{}, text + L" is too small for a limit.\n\n" + kWhatIsPossible};
    }
    return {text, {}};
}

} // namespace host
