#include "lornix/policies/list_strings.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace lornix {

std::byte* ListStrings::place(std::size_t size)
{
    constexpr std::size_t kBlock = 1 << 16;
    constexpr std::size_t kAlignment = 4;
    size = (size + kAlignment - 1) / kAlignment * kAlignment;
    if (size > m_free.size()) {
        std::vector<std::byte> block(std::max(kBlock, size));
        const std::span<std::byte> room = block;
        m_blocks.emplace(room.data(), std::move(block));
        m_free = room;
    }
    std::byte* const start = m_free.data();
    m_free = m_free.subspan(size);
    return start;
}

const wchar_t* ListStrings::copy(std::u16string_view text)
{
    auto* copy = reinterpret_cast<wchar_t*>(place((text.size() + 1) * sizeof(wchar_t)));
    *std::ranges::copy(text, copy).out = L'\0';
    return copy;
}

std::string_view ListStrings::copy(std::string_view bytes)
{
    auto* copy = reinterpret_cast<char*>(place(bytes.size()));
    std::ranges::copy(bytes, copy);
    return {copy, bytes.size()};
}

const wchar_t* ListStrings::keep(OwnedText text)
{
    const wchar_t* const kept = text.get();
    m_handed.emplace(kept, std::move(text));
    return kept;
}

bool ListStrings::own(const wchar_t* text) const
{
    if (m_handed.contains(text)) {
        return true;
    }
    const auto* const byte = reinterpret_cast<const std::byte*>(text);
    const auto behind = m_blocks.upper_bound(byte);
    return behind != m_blocks.begin() && byte < std::prev(behind)->first + std::prev(behind)->second.size();
}

} // namespace lornix
