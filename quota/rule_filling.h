// Showing the stored rules of folders.
#pragma once

#include "corvane_types.h"
#include "frame/size_text.h"
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

    /// Makes the texts of a rule's row. It is shown by showRows, or at once in a list with an order of its own.
    void show(const QuotaRule& rule);

    /// Puts the rows into the list, the last on top.
    void showRows();

private:
    /// A row to be put into the list.
    struct Row {
        const QuotaRule* rule;
        std::size_t name; ///< its place among the names
        wchar_t percent[kPercentTextCapacity];
    };

    void keep(const QuotaRule& rule, const wchar_t* name);
    void finishFolder();

    const CListCtrl& m_list;
    bool m_sorts;                        ///< the list puts rows where its own order wants them
    std::span<wchar_t* const> m_folders; ///< those still to come
    QuotaRule* m_rule = nullptr;         ///< the next one of the present folder
    bool m_inFolder = false;
    RuleIndex m_shown;            ///< the records of all rows
    std::size_t m_linked = 0;     ///< how many of those, from the lowest, form the chain
    QuotaRule* m_first = nullptr; ///< first record of that chain
    std::vector<Row> m_waiting;   ///< rows to be put into the list, the lowest first
    std::vector<wchar_t> m_names; ///< of those, one after the other
};
