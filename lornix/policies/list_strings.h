// The strings of a policy list.
#pragma once

#include "lornix/policies/sealed_text.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace lornix {

/// Those that were read from a file stand in a few blocks, one behind the other; those that a host handed over in blocks
/// of their own. None of them moves.
class ListStrings {
public:
    const wchar_t* copy(std::u16string_view text);
    std::string_view copy(std::string_view bytes);

    /// @param text  a malloc block, which passes to the list.
    const wchar_t* keep(OwnedText text);

    bool own(const wchar_t* text) const;

    /// The string is not needed any more. What stands among others stays until all go.
    void drop(const wchar_t* text) { m_handed.erase(text); }

private:
    std::byte* place(std::size_t size);

    std::map<const std::byte*, std::vector<std::byte>> m_blocks; ///< by where they start
    std::span<std::byte> m_free;                                 ///< of the one made last
    std::unordered_map<const wchar_t*, OwnedText> m_handed;
};

} // namespace lornix
