#include "tests/support/list_host.h"

#include "tests/support/describe.h"
#include "tests/support/text.h"

#include <commctrl.h>

#include <stdexcept>

namespace {

HWND makeWindow(const wchar_t* windowClass, DWORD style, HWND parent, int id)
{
    const HWND window = CreateWindowExW(0, windowClass, L"", style, 0, 0, 600, 300, parent,
                                        reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
                                        GetModuleHandleW(nullptr), nullptr);
    if (window == nullptr) {
        throw std::runtime_error("no window of class " + utf8(windowClass));
    }
    return window;
}

} // namespace

ListHost::ListHost(DWORD moreListStyles)
{
    const INITCOMMONCONTROLSEX controls = {sizeof controls, ICC_LISTVIEW_CLASSES};
    InitCommonControlsEx(&controls);
    m_window = makeWindow(L"STATIC", WS_POPUP, nullptr, 0);
    m_object.window = makeWindow(WC_LISTVIEWW, WS_CHILD | LVS_REPORT | LVS_SHOWSELALWAYS | moreListStyles,
                                 m_window, kListId);
    // Never to be read by the library.
    for (auto& word : m_object.reserved) {
        word = reinterpret_cast<void*>(UINT_PTR{0xDEADDEADDEADDEAD});
    }
}

ListHost::~ListHost()
{
    DestroyWindow(m_window);
}

HWND ListHost::header() const
{
    return ListView_GetHeader(list());
}

int ListHost::rowCount() const
{
    return ListView_GetItemCount(list());
}

std::wstring ListHost::cell(int row, int column) const
{
    wchar_t text[1024] = L"";
    LVITEMW item{};
    item.iSubItem = column;
    item.pszText = text;
    item.cchTextMax = static_cast<int>(std::size(text));
    SendMessageW(list(), LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    return text;
}

std::string ListHost::row(int row, int columns) const
{
    const int count = columns != 0 ? columns : Header_GetItemCount(header());
    std::string text;
    for (int i = 0; i < count; ++i) {
        text += (i == 0 ? "" : "|") + utf8(cell(row, i));
    }
    return text;
}

std::vector<std::string> ListHost::rows(int columns) const
{
    std::vector<std::string> texts;
    for (int i = 0; i < rowCount(); ++i) {
        texts.push_back(row(i, columns));
    }
    return texts;
}

std::vector<std::string> ListHost::column(int column) const
{
    std::vector<std::string> texts;
    for (int i = 0; i < rowCount(); ++i) {
        texts.push_back(utf8(cell(i, column)));
    }
    return texts;
}

LPARAM ListHost::data(int row) const
{
    LVITEMW item{};
    item.mask = LVIF_PARAM;
    item.iItem = row;
    if (!SendMessageW(list(), LVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item))) {
        throw std::out_of_range("the list has no row " + std::to_string(row));
    }
    return item.lParam;
}

void ListHost::setCell(int row, int column, const wchar_t* text)
{
    LVITEMW item{};
    item.iSubItem = column;
    item.pszText = const_cast<wchar_t*>(text);
    SendMessageW(list(), LVM_SETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
}

void ListHost::addRow(LPARAM data, const std::vector<std::wstring>& cells)
{
    LVITEMW item{};
    item.mask = LVIF_PARAM;
    item.iItem = rowCount();
    item.lParam = data;
    const auto row =
        static_cast<int>(SendMessageW(list(), LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item)));
    for (size_t i = 0; i < cells.size(); ++i) {
        setCell(row, static_cast<int>(i), cells[i].c_str());
    }
}

void ListHost::select(int row, bool selected)
{
    ListView_SetItemState(list(), row, selected ? LVIS_SELECTED : 0u, LVIS_SELECTED);
}

void ListHost::selectOnly(const std::vector<int>& rows)
{
    select(-1, false);
    for (const int row : rows) {
        select(row);
    }
}

HWND ListHost::addControl(int id, const wchar_t* controlClass, DWORD style)
{
    return makeWindow(controlClass, WS_CHILD | style, m_window, id);
}

std::vector<std::string> chainTexts(const QuotaRule* first)
{
    constexpr size_t kLongest = 100000;
    std::vector<std::string> texts;
    const QuotaRule* before = nullptr;
    for (const QuotaRule* rule = first; rule != nullptr && texts.size() < kLongest; rule = rule->next) {
        std::string text = rule->sid == nullptr ? "Anyone" : describe(static_cast<const void*>(rule->sid));
        text += ' ' + describe(static_cast<const wchar_t*>(rule->path));
        if (rule->prev != before) {
            text += " (the link back is wrong)";
        }
        texts.push_back(std::move(text));
        before = rule;
    }
    return texts;
}
