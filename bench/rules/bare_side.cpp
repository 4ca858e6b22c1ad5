#include "bench/support/list_view.h"
#include "bench_store.h"
#include "frame/sort_key.h"
#include "row_text.h"
#include "side.h"
#include "store/lornix.h"

#include <array>
#include <cwchar>
#include <vector>

namespace {

/// What is known of a row beforehand; the row's item data leads here. Small, as it is all that a comparison touches.
struct Row {
    QuotaRule* rule = nullptr;
    SortKey name;
    SortKey inUse;
};

template <SortKey Row::* key>
int CALLBACK compareRows(LPARAM first, LPARAM second, LPARAM)
{
    return compareSortKeys(reinterpret_cast<const Row*>(first)->*key,
                           reinterpret_cast<const Row*>(second)->*key, false);
}

class BareSide : public Side {
public:
    explicit BareSide(const PathList& folders)
    {
        for (int i = 0; i < folders.count; ++i) {
            for (const QuotaRule* rule = getQuotaList(folders.paths[i]); rule != nullptr; rule = rule->next) {
                RowText& text = m_texts.emplace_back();
                text.writeNumbers(*rule);
                text.writeName(*rule);
            }
        }
        m_rows.resize(m_texts.size());
        m_names.reserve(m_texts.size());
        for (std::size_t i = 0; i < m_rows.size(); ++i) {
            std::wcscpy(m_names.emplace_back().data(), m_texts[i].name);
            m_rows[i].name = sortKey(m_names[i].data());
            m_rows[i].inUse = sortKey(m_texts[i].inUse);
        }
        benchStoreReleaseAll();
    }

    // The store is asked as every fill must ask it; the texts of the numbers are there.
    void fill(HWND list, const PathList& folders) override
    {
        list_view::setRedraw(list, false);
        QuotaRule* last = nullptr;
        Row* row = m_rows.data();
        RowText* text = m_texts.data();
        for (int i = 0; i < folders.count; ++i) {
            for (QuotaRule* rule = getQuotaList(folders.paths[i]); rule != nullptr; ++row, ++text) {
                QuotaRule* const next = rule->next;
                text->writeName(*rule);
                row->rule = rule;
                text->insertInto(list, rule->path, reinterpret_cast<LPARAM>(row));
                rule->next = last;
                rule->prev = nullptr;
                if (last != nullptr) {
                    last->prev = rule;
                }
                last = rule;
                rule = next;
            }
        }
        list_view::setRedraw(list, true);
    }

    // Nothing is inserted: the rules are fetched, and each row is read once.
    void refill(HWND list, const PathList& folders) override
    {
        for (int i = 0; i < folders.count; ++i) {
            getQuotaList(folders.paths[i]);
        }
        chain(list);
    }

    void sort(HWND list, int column) override
    {
        const PFNLVCOMPARE comparison =
            column == kNameColumn ? compareRows<&Row::name> : compareRows<&Row::inUse>;
        SendMessageW(list, LVM_SORTITEMS, 0, reinterpret_cast<LPARAM>(comparison));
    }

    QuotaRule* chain(HWND list) override
    {
        QuotaRule* first = nullptr;
        QuotaRule* last = nullptr;
        const int rows = list_view::rowCount(list);
        for (int i = 0; i < rows; ++i) {
            QuotaRule* rule = reinterpret_cast<const Row*>(list_view::dataOf(list, i))->rule;
            rule->prev = last;
            rule->next = nullptr;
            (last != nullptr ? last->next : first) = rule;
            last = rule;
        }
        return first;
    }

    // The deletions alone: which rows they are is known.
    void drop(HWND list) override
    {
        list_view::setRedraw(list, false);
        const int rows = list_view::rowCount(list);
        for (int deleted = 0; 2 * deleted + 1 < rows; ++deleted) {
            SendMessageW(list, LVM_DELETEITEM, static_cast<WPARAM>(deleted + 1), 0);
        }
        list_view::setRedraw(list, true);
    }

private:
    std::vector<Row> m_rows;
    std::vector<RowText> m_texts;
    std::vector<std::array<wchar_t, 24>> m_names; ///< side by side, for the comparisons
};

} // namespace

std::unique_ptr<Side> bareSide(const PathList& folders)
{
    return std::make_unique<BareSide>(folders);
}
