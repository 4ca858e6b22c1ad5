// Adding rules, one folder after the other, each through the Quota Settings dialog.
#pragma once

#include "corvane_types.h"

#include <unordered_set>
#include <vector>

class CListCtrl;

/// One request to add rules for an account.
class Adding {
public:
    /// @param sid  account, null for anyone.
    Adding(const CListCtrl& list, const void* sid);

    /// Adds a rule on a folder, unless one in the chain speaks for it already, or the dialog is cancelled.
    /// @param amongSeveral  whether the request names more folders than one, or none: the rule then starts with
    ///                      limits of its own.
    void add(wchar_t* path, bool amongSeveral);

    /// Whether every dialog so far was accepted.
    bool accepted() const { return m_accepted; }

    /// First record of the chain.
    QuotaRule* chain() const { return m_chain; }

private:
    bool refusedAsUsed(wchar_t* path) const;
    QuotaRule* makeRule(const wchar_t* path) const;
    void accept(int row, QuotaRule* accepted, bool rowsMoved);
    void showMembers(const std::vector<QuotaRule*>& rules) const;
    void cancel(int row);
    QuotaRule* linkByRows() const;

    const CListCtrl& m_list;
    const void* m_sid;
    QuotaRule* m_chain;
    bool m_accepted = true;
    std::unordered_set<const QuotaRule*> m_sinceCancel; ///< all that the chain holds after a Cancel
};
