// A list of accounts that outlives the caller's.
#pragma once

#include "corvane_types.h"

#include <cstddef>
#include <vector>

/// A copy of a list of accounts with everything in it, made without the store. The fill thread may outlive the
/// dialog and the caller's list with it, so it works on such a copy.
class SidListCopy {
public:
    SidListCopy() = default;
    SidListCopy(const SidListCopy&) = delete; // entries point into the copy itself
    SidListCopy& operator=(const SidListCopy&) = delete;
    SidListCopy(SidListCopy&&) = default;
    SidListCopy& operator=(SidListCopy&&) = default;
    ~SidListCopy() = default;

    /// @param list  copied; null gives a null list. Entries that are no valid SIDs become null.
    explicit SidListCopy(const SidList* list);

    /// The copy, for reading only; null when the original was. Never to be given to freeSidList, nor to be grown.
    SidList* get() { return m_words.empty() ? nullptr : reinterpret_cast<SidList*>(m_words.data()); }

private:
    std::vector<std::size_t> m_words; // the record, then the SIDs, in pieces that keep both aligned
};
