#include "tests/policies/list_in_dialog.h"

#include "tests/support/text.h"

std::wstring ListInDialog::cell(int row, int column) const
{
    std::wstring text(20000, L'\0');
    LVITEMW item{};
    item.iSubItem = column;
    item.pszText = text.data();
    item.cchTextMax = static_cast<int>(text.size());
    const LRESULT length =
        SendMessageW(m_list, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    text.resize(static_cast<size_t>(length));
    return text;
}

std::vector<std::string> ListInDialog::rows() const
{
    const int columns = Header_GetItemCount(ListView_GetHeader(m_list));
    std::vector<std::string> texts;
    for (int row = 0; row < rowCount(); ++row) {
        std::string text;
        for (int column = 0; column < columns; ++column) {
            text += (column == 0 ? "" : "|") + utf8(cell(row, column));
        }
        texts.push_back(std::move(text));
    }
    return texts;
}

LPARAM ListInDialog::data(int row) const
{
    LVITEMW item{};
    item.mask = LVIF_PARAM;
    item.iItem = row;
    return SendMessageW(m_list, LVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item)) ? item.lParam : -1;
}

std::vector<LPARAM> ListInDialog::allData() const
{
    std::vector<LPARAM> all;
    for (int row = 0; row < rowCount(); ++row) {
        all.push_back(data(row));
    }
    return all;
}

void ListInDialog::select(int row, bool selected) const
{
    ListView_SetItemState(m_list, row, selected ? LVIS_SELECTED : 0u, LVIS_SELECTED);
}

void ListInDialog::selectOnly(int row) const
{
    select(-1, false);
    select(row);
}

void ListInDialog::notify(NMHDR& notification, UINT code) const
{
    notification.hwndFrom = m_list;
    notification.idFrom = static_cast<UINT_PTR>(GetDlgCtrlID(m_list));
    notification.code = code;
    SendMessageW(m_dialog, WM_NOTIFY, notification.idFrom, reinterpret_cast<LPARAM>(&notification));
}

void ListInDialog::doubleClick() const
{
    NMITEMACTIVATE activation{};
    activation.iItem = ListView_GetNextItem(m_list, -1, LVNI_SELECTED);
    notify(activation.hdr, static_cast<UINT>(NM_DBLCLK));
}

void ListInDialog::clickColumn(int column) const
{
    NMLISTVIEW click{};
    click.iItem = -1;
    click.iSubItem = column;
    notify(click.hdr, static_cast<UINT>(LVN_COLUMNCLICK));
}
