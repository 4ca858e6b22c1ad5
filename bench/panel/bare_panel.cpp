#include "bench/rules/bench_store.h"
#include "bench/rules/row_text.h"
#include "bench/support/list_view.h"
#include "bench/support/opening.h"
#include "corvane.h"
#include "frame/sort_key.h"
#include "host/resource.h"
#include "lornix_host.h"
#include "res/resource.h"
#include "side.h"
#include "store/lornix.h"

#include <commctrl.h>

#include <cwchar>
#include <iterator>
#include <vector>

namespace {

constexpr UINT kRowsSelected = WM_APP + 1;

/// A row's item data leads here.
struct Row {
    QuotaRule* rule;
    SortKey inUse;
};

int CALLBACK byUse(LPARAM first, LPARAM second, LPARAM descending)
{
    return compareSortKeys(reinterpret_cast<const Row*>(first)->inUse,
                           reinterpret_cast<const Row*>(second)->inUse, descending != 0);
}

/// The library turns the order round with each sort, in all lists of a process together.
bool descending = true;

void CALLBACK cancelDialog(HWND, UINT, UINT_PTR, DWORD)
{
    if (HWND dialog = windowOfThread(kSettingsCaption)) {
        SendMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
    }
}

class BarePanel : public PanelSide {
public:
    void open() override
    {
        m_window =
            CreateDialogParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDD_PANEL), nullptr, procedure, 0);
        SetWindowLongPtrW(m_window, DWLP_USER, reinterpret_cast<LONG_PTR>(this));
        m_list = GetDlgItem(m_window, IDC_RULES);
        CorvaneListObject object{};
        object.window = list();
        initializeListCtrl2(reinterpret_cast<CListCtrl*>(&object), nullptr); // the columns
        layOut();
        ShowWindow(m_window, SW_SHOWDEFAULT);
        UpdateWindow(m_window);
        PathList* folders = lornixKnownFolders();
        for (int i = 0; i < folders->count; ++i) {
            SendDlgItemMessageW(m_window, IDC_FOLDERS, LB_ADDSTRING, 0,
                                reinterpret_cast<LPARAM>(folders->paths[i]));
        }
        fill(*folders);
        lornixFreeFolders(folders);
        enable(true, true);
        tell(false);
        settle(m_window);
    }

    void selectAll() override
    {
        list_view::select(list(), -1, true);
        settle(m_window);
    }

    void clickOne() override
    {
        list_view::selectOnly(list(), 0);
        settle(m_window);
    }

    void sort() override
    {
        descending = !descending;
        SendMessageW(list(), LVM_SORTITEMS, descending ? 1 : 0, reinterpret_cast<LPARAM>(&byUse));
        settle(m_window);
    }

    void edit() override
    {
        const UINT_PTR timer = SetTimer(nullptr, 0, USER_TIMER_MINIMUM, cancelDialog);
        const int row =
            static_cast<int>(SendMessageW(list(), LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED));
        const QuotaRule& rule = *reinterpret_cast<const Row*>(list_view::dataOf(list(), row))->rule;
        RowText text;
        openBareDialog(IDD_QUOTA_SETTINGS_EDIT, [&](HWND dialog) {
            text.writeNumbers(rule);
            text.writeName(rule);
            SetDlgItemTextW(dialog, IDC_QUOTA_APPLIED_TO, rule.path);
            SetDlgItemTextW(dialog, IDC_QUOTA_CREDENTIALS, text.name);
            SetDlgItemTextW(dialog, IDC_QUOTA_SOFT_LIMIT, text.softLimit);
            SetDlgItemTextW(dialog, IDC_QUOTA_HARD_LIMIT, text.hardLimit);
        });
        KillTimer(nullptr, timer);
        wchar_t* const cells[] = {text.hardLimit, text.softLimit, text.inUse, text.percent};
        for (int column = 0; column < 4; ++column) {
            ListView_SetItemText(list(), row, column + 1, cells[column]);
        }
        enable(true, true);
        tell(true);
        settle(m_window);
    }

    void drop() override
    {
        list_view::setRedraw(list(), false);
        for (int row = list_view::rowCount(list()) - 1; row >= 0; --row) {
            if (SendMessageW(list(), LVM_GETITEMSTATE, static_cast<WPARAM>(row), LVIS_SELECTED) != 0) {
                SendMessageW(list(), LVM_DELETEITEM, static_cast<WPARAM>(row), 0);
            }
        }
        list_view::setRedraw(list(), true);
        enable(false, true);
        tell(true);
        settle(m_window);
    }

    void apply() override
    {
        QuotaRule* first = nullptr;
        QuotaRule* last = nullptr;
        const int rows = list_view::rowCount(list());
        for (int i = 0; i < rows; ++i) {
            QuotaRule* rule = reinterpret_cast<const Row*>(list_view::dataOf(list(), i))->rule;
            rule->prev = last;
            rule->next = nullptr;
            (last != nullptr ? last->next : first) = rule;
            last = rule;
        }
        lornixStoreRules(nullptr, first);
        enable(false, false);
        tell(false);
        settle(m_window);
    }

    void close() override
    {
        DestroyWindow(m_window);
        m_rows.clear();
        m_texts.clear();
    }

    HWND list() const override { return m_list; }

private:
    static INT_PTR CALLBACK procedure(HWND window, UINT message, WPARAM, LPARAM lParam)
    {
        auto* self = reinterpret_cast<BarePanel*>(GetWindowLongPtrW(window, DWLP_USER));
        if (message == WM_NOTIFY && self != nullptr) {
            const auto& header = *reinterpret_cast<const NMHDR*>(lParam);
            if (header.code == LVN_ITEMCHANGED && !self->m_waiting) {
                self->m_waiting = PostMessageW(window, kRowsSelected, 0, 0) != FALSE;
            }
        } else if (message == kRowsSelected) {
            self->m_waiting = false;
            self->enable(SendMessageW(self->list(), LVM_GETSELECTEDCOUNT, 0, 0) > 0, true);
        }
        return message == WM_INITDIALOG ? TRUE : FALSE;
    }

    void enable(bool forRow, bool apply)
    {
        EnableWindow(GetDlgItem(m_window, IDC_EDIT), forRow);
        EnableWindow(GetDlgItem(m_window, IDC_DROP), forRow);
        EnableWindow(GetDlgItem(m_window, IDC_APPLY), apply);
    }

    /// The caption and the line at the foot tell of it.
    void tell(bool modified)
    {
        SetWindowTextW(m_window, modified ? L"Bare - unsaved changes" : L"Bare");
        wchar_t text[64];
        swprintf(text, std::size(text), L"%d rules", list_view::rowCount(m_list));
        const wchar_t* const parts[] = {text, modified ? L"unsaved changes" : L""};
        for (WPARAM part = 0; part < std::size(parts); ++part) {
            SendDlgItemMessageW(m_window, IDC_STATUS, SB_SETTEXTW, part,
                                reinterpret_cast<LPARAM>(parts[part]));
        }
    }

    // Where the sample panel has its two lists.
    void layOut()
    {
        RECT client;
        GetClientRect(m_window, &client);
        MoveWindow(GetDlgItem(m_window, IDC_FOLDERS), 10, 60, client.right - 150, 90, FALSE);
        MoveWindow(list(), 10, 190, client.right - 20, client.bottom - 260, FALSE);
        int left = 10;
        for (const int id :
             {IDC_ADD_FOR_ACCOUNT, IDC_ADD_FOR_ANYONE, IDC_EDIT, IDC_DROP, IDC_RELOAD, IDC_APPLY})
        {
            MoveWindow(GetDlgItem(m_window, id), left, client.bottom - 60, 75, 23, FALSE);
            left += 80;
        }
    }

    void fill(const PathList& folders)
    {
        for (int i = 0; i < folders.count; ++i) {
            for (QuotaRule* rule = getQuotaList(folders.paths[i]); rule != nullptr; rule = rule->next) {
                m_texts.emplace_back().writeNumbers(*rule);
                m_rows.push_back({rule, {}});
            }
        }
        list_view::setRedraw(list(), false);
        for (std::size_t i = 0; i < m_rows.size(); ++i) {
            m_rows[i].inUse = sortKey(m_texts[i].inUse);
            m_texts[i].writeName(*m_rows[i].rule);
            m_texts[i].insertInto(list(), m_rows[i].rule->path, reinterpret_cast<LPARAM>(&m_rows[i]));
        }
        list_view::setRedraw(list(), true);
    }

    HWND m_window = nullptr;
    HWND m_list = nullptr; // looking for it costs more than a row
    bool m_waiting = false;
    std::vector<Row> m_rows;
    std::vector<RowText> m_texts;
};

} // namespace

std::unique_ptr<PanelSide> barePanel()
{
    return std::make_unique<BarePanel>();
}
