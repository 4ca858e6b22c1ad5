// Accounts that are collected for a list of the border.
#pragma once

#include "lornix/sid.h"
#include "store/lornix.h"
#include "store/owned.h"

#include <string>
#include <unordered_set>

namespace lornix {

using SidBlock = CBlock<void>;

class SidSink {
public:
    /// @param list  to grow, or null.
    explicit SidSink(SidList* list)
        : m_list(list)
    {
    }

    /// Null is left out.
    void adopt(SidBlock sid)
    {
        if (sid != nullptr && (m_known.empty() || !m_known.contains(std::string(sidKey(sid.get()))))) {
            m_list = appendToSidList(m_list, sid.release());
        }
    }

    /// Copies a valid identifier; others are left out.
    void add(const void* sid) { adopt(SidBlock(sidDup(sid))); }

    /// From here on, the accounts that stand in the list behind the first so many are left out.
    void skipListed(std::int32_t first)
    {
        for (std::int32_t i = first; i < count(); ++i) {
            m_known.emplace(sidKey(at(i)));
        }
    }

    std::int32_t count() const { return m_list == nullptr ? 0 : m_list->count; }
    const void* at(std::int32_t index) const { return static_cast<void* const*>(m_list->sids)[index]; }
    SidList* list() const { return m_list; }

private:
    SidList* m_list;
    std::unordered_set<std::string> m_known;
};

} // namespace lornix
