// The lines of rules, as they stand in a file.
#pragma once

#include "lornix/text/sid_text.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace lornix {

/// Writes rules one after the other, a hundred thousand of them and again and again: nothing is made anew that is as
/// it was in the rule before, and the room is kept.
class RuleLines {
public:
    std::string_view text() const { return std::string_view(m_text).substr(0, m_size); }
    std::size_t size() const { return m_size; }
    void clear() { m_size = 0; }

    /// What is appended from now on are rules of a folder that is spelled so.
    void startFolder(std::u16string_view folder);

    /// @param sid  empty for anyone.
    void append(std::int64_t hardLimit, std::int64_t softLimit, std::int64_t inUse,
                std::span<const std::uint8_t> sid);

private:
    std::string m_text; ///< and room behind it
    std::size_t m_size = 0;
    std::int64_t m_hardLimit = 0;
    std::int64_t m_softLimit = 0;
    std::string m_limits; ///< the text of both; empty before the first rule
    SidSpeller m_accounts;
    std::string m_end; ///< of each line
};

} // namespace lornix
