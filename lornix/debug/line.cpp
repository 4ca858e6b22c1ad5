#include "lornix/debug/line.h"

#include "lornix/debug/format_spec.h"

#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <limits>

namespace lornix {
namespace {

// 64-bit Windows passes every variable argument in 8 bytes, whatever its type, and a va_list points at the next.
using Slot = std::uint64_t;
static_assert(sizeof(va_list) == sizeof(char*));

template <class Value>
Value valueOf(const char* slot)
{
    Slot bits = 0;
    std::memcpy(&bits, slot, sizeof bits);
    Value value{};
    std::memcpy(static_cast<void*>(&value), &bits, sizeof value);
    return value;
}

void appendNarrow(std::wstring& line, std::string_view text)
{
    if (text.empty()) {
        return;
    }
    const auto length = static_cast<int>(std::min<std::size_t>(text.size(), std::numeric_limits<int>::max()));
    const int room = MultiByteToWideChar(CP_ACP, 0, text.data(), length, nullptr, 0);
    const std::size_t before = line.size();
    line.resize(before + static_cast<std::size_t>(room));
    MultiByteToWideChar(CP_ACP, 0, text.data(), length, line.data() + before, room);
}

void appendPadded(std::wstring& line, std::wstring_view text, const FormatSpec& spec)
{
    const std::size_t width = static_cast<std::size_t>(spec.width);
    const std::size_t blanks = width > text.size() ? width - text.size() : 0;
    line.append(spec.leftAligned ? 0 : blanks, L' ');
    line += text;
    line.append(spec.leftAligned ? blanks : 0, L' ');
}

/// Reads what stands in front of the value: a width, a limit.
void takeStars(FormatSpec& spec, const char*& slot)
{
    if (spec.widthGiven) {
        spec.width = valueOf<int>(slot);
        slot += sizeof(Slot);
        if (spec.width < 0) { // as the runtime has it: a negative width aligns to the left
            spec.leftAligned = true;
            spec.width = -spec.width;
        }
    }
    if (spec.limitGiven) {
        spec.limit = valueOf<int>(slot);
        slot += sizeof(Slot);
    }
}

void appendWide(std::wstring& line, FormatSpec& spec, const char*& slot)
{
    takeStars(spec, slot);
    if (spec.kind == FormatSpec::Kind::kWideUnit) {
        const auto unit = valueOf<wchar_t>(slot);
        appendPadded(line, std::wstring_view(&unit, 1), spec);
    } else {
        const auto* text = valueOf<const wchar_t*>(slot);
        if (text == nullptr) {
            text = L"(null)";
        }
        const std::size_t length =
            spec.limit < 0 ? std::wcslen(text) : wcsnlen(text, static_cast<size_t>(spec.limit));
        appendPadded(line, std::wstring_view(text, length), spec);
    }
    slot += sizeof(Slot);
}

/// Leaves a conversion to the runtime.
void appendByRuntime(std::wstring& line, const FormatSpec& spec, const char*& slot)
{
    const std::string format(spec.text);
    char* arguments = const_cast<char*>(slot);
    const int length = _vscprintf(format.c_str(), arguments);
    if (length >= 0) {
        std::string text(static_cast<std::size_t>(length) + 1, '\0');
        _vsnprintf(text.data(), text.size(), format.c_str(), arguments);
        text.pop_back();
        appendNarrow(line, text);
    } else {
        line += L'?'; // what cannot be shown must not take the rest of the line with it
    }
    slot += (static_cast<std::size_t>(spec.stars) + 1) * sizeof(Slot);
}

} // namespace

std::wstring formatLine(const char* format, va_list arguments)
{
    std::wstring line;
    const char* slot = arguments;
    for (std::string_view rest = format; !rest.empty();) {
        FormatSpec spec = takeSpec(rest);
        switch (spec.kind) {
        case FormatSpec::Kind::kText:
            appendNarrow(line, spec.text);
            break;
        case FormatSpec::Kind::kPercent:
            line += L'%';
            break;
        case FormatSpec::Kind::kWideText:
        case FormatSpec::Kind::kWideUnit:
            appendWide(line, spec, slot);
            break;
        case FormatSpec::Kind::kOther:
            appendByRuntime(line, spec, slot);
            break;
        }
    }
    return line;
}

} // namespace lornix
