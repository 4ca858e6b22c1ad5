// The accounts that are listed first, and not again.
#pragma once

#include "corvane_types.h"

#include <string_view>
#include <unordered_map>

/// The membership test of a fill: whether an account is among the preset owners.
class PresetOwners {
public:
    /// @param list  not copied, may be null.
    explicit PresetOwners(const SidList* list)
        : m_list(list)
    {
    }

    /// Whether an account is left out of the user and group rows.
    bool excludes(void* sid) { return m_list != nullptr && contains(sid); }

    /// Whether the list is null, or the account is null, or the store takes one of the entries for its equal.
    /// The store is asked in list order, except where the list is long: there only about an entry with the same
    /// bytes, because all others are unequal to it.
    bool contains(void* sid);

private:
    bool scan(const void* sid) const;
    void makeIndex();

    const SidList* m_list;
    bool m_indexed = false;
    bool m_indexUsable = false; // every entry is a valid SID or null
    std::unordered_map<std::string_view, const void*> m_byBytes;
};
