#include "bench/support/list_view.h"
#include "frame/sort_key.h"
#include "row_text.h"
#include "side.h"
#include "store/lornix.h"

#include <cwchar>

namespace {

QuotaRule* ruleOf(HWND list, int row)
{
    return reinterpret_cast<QuotaRule*>(list_view::dataOf(list, row));
}

bool sameRule(const QuotaRule& a, const QuotaRule& b)
{
    return a.hardLimit == b.hardLimit && a.softLimit == b.softLimit && std::wcscmp(a.path, b.path) == 0 &&
           (a.sid == b.sid || sidcmp(a.sid, b.sid) == 0);
}

struct Sort {
    HWND list;
    int column;
};

SortKey readKey(const Sort& sort, LPARAM data, wchar_t (&text)[260])
{
    LVFINDINFOW find{};
    find.flags = LVFI_PARAM;
    find.lParam = data;
    const auto row =
        SendMessageW(sort.list, LVM_FINDITEMW, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&find));
    LVITEMW item{};
    item.iSubItem = sort.column;
    item.pszText = text;
    item.cchTextMax = 260;
    SendMessageW(sort.list, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    return sortKey(text);
}

int CALLBACK compareRows(LPARAM first, LPARAM second, LPARAM context)
{
    const Sort& sort = *reinterpret_cast<const Sort*>(context);
    wchar_t firstText[260];
    wchar_t secondText[260];
    const SortKey firstKey = readKey(sort, first, firstText);
    return compareSortKeys(firstKey, readKey(sort, second, secondText), false);
}

// Redrawing is off here as well: what is compared is the way, not the painting.
class RowByRowSide : public Side {
public:
    void fill(HWND list, const PathList& folders) override
    {
        list_view::setRedraw(list, false);
        for (int i = 0; i < folders.count; ++i) {
            for (QuotaRule *rule = getQuotaList(folders.paths[i]), *next = nullptr; rule != nullptr;
                 rule = next)
            {
                next = rule->next;
                if (!isShown(list, *rule)) {
                    RowText text;
                    text.writeName(*rule);
                    text.writeNumbers(*rule);
                    text.insertInto(list, rule->path, reinterpret_cast<LPARAM>(rule));
                }
            }
            chain(list);
        }
        list_view::setRedraw(list, true);
    }

    void refill(HWND list, const PathList& folders) override { fill(list, folders); }

    void sort(HWND list, int column) override
    {
        Sort sort{list, column};
        SendMessageW(list, LVM_SORTITEMS, reinterpret_cast<WPARAM>(&sort),
                     reinterpret_cast<LPARAM>(&compareRows));
    }

    QuotaRule* chain(HWND list) override
    {
        const int rows = list_view::rowCount(list);
        for (int i = 0; i < rows; ++i) {
            QuotaRule* rule = ruleOf(list, i);
            rule->prev = i > 0 ? ruleOf(list, i - 1) : nullptr;
            rule->next = i + 1 < rows ? ruleOf(list, i + 1) : nullptr;
        }
        return rows > 0 ? ruleOf(list, 0) : nullptr;
    }

    void drop(HWND list) override
    {
        const auto nextSelected = [&] {
            return SendMessageW(list, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED);
        };
        list_view::setRedraw(list, false);
        for (auto row = nextSelected(); row >= 0; row = nextSelected()) {
            QuotaRule* rule = ruleOf(list, static_cast<int>(row));
            if (rule->prev != nullptr) {
                rule->prev->next = rule->next;
            }
            if (rule->next != nullptr) {
                rule->next->prev = rule->prev;
            }
            SendMessageW(list, LVM_DELETEITEM, static_cast<WPARAM>(row), 0);
        }
        list_view::setRedraw(list, true);
    }

private:
    static bool isShown(HWND list, const QuotaRule& rule)
    {
        const int rows = list_view::rowCount(list);
        for (int row = 0; row < rows; ++row) {
            if (sameRule(*ruleOf(list, row), rule)) {
                return true;
            }
        }
        return false;
    }
};

} // namespace

std::unique_ptr<Side> rowByRowSide()
{
    return std::make_unique<RowByRowSide>();
}
