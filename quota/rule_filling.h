// Showing the stored rules of folders.
#pragma once

#include "corvane_types.h"
#include "quota/rule_index.h"

#include <cstddef>
#include <span>
#include <vector>

class CListCtrl;

/// The folders of a list; none for null.
std::span<wchar_t* const> foldersOf(const PathList* paths);

/// One fill of a list: goes through the rules of all folders, in order, and stops at each that is not shown yet.
class Filling {
public:
    Filling(const CListCtrl& list, const PathList* paths);

    /// @return the next rule, which is to be shown on top of the others; null at the end.
    QuotaRule* nextNew();

    void show(const QuotaRule& rule) const;

private:
    void finishFolder();

    const CListCtrl& m_list;
    std::span<wchar_t* const> m_folders; ///< those still to come
    QuotaRule* m_rule = nullptr;         ///< the next one of the present folder
    bool m_inFolder = false;
    RuleIndex m_shown;
    std::vector<QuotaRule*> m_rows; ///< the records of all rows, the lowest first
    std::size_t m_linked = 0;       ///< how many of them, from the lowest, form the chain
    QuotaRule* m_first = nullptr;   ///< first record of that chain
};
