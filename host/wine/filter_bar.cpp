#include "host/wine/filter_bar.h"

#include "host/window/window_text.h"
#include "host/wine/filter_edit.h"
#include "host/wine/heading_paint.h"

#include <commctrl.h>

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace host {
namespace {

constexpr UINT_PTR kSubclass = 1;
constexpr wchar_t kHasBar[] = L"FilterBar"; // a property of the header
constexpr UINT_PTR kChangeTimer = 0x46;
constexpr int kRowHeight = 19; // pixels: an edit in the dialogs' font

/// What belongs to one header: its filters, one per column, and their edits.
class FilterBar {
public:
    explicit FilterBar(HWND header)
        : m_header(header)
    {
    }

    LRESULT handle(UINT message, WPARAM wParam, LPARAM lParam);

    /// One edit per column, each under its cell.
    void arrange();

private:
    struct Filter {
        HWND edit = nullptr;
        std::wstring text;
        bool changed = false;
    };

    LRESULT pass(UINT message, WPARAM wParam, LPARAM lParam)
    {
        return DefSubclassProc(m_header, message, wParam, lParam);
    }
    LRESULT setItem(WPARAM column, const HDITEMW& item);
    LRESULT getItem(WPARAM column, HDITEMW& item);
    void clear(int column);
    void typed(HWND edit);
    void notify();
    void paint();

    HWND m_header;
    std::vector<Filter> m_filters;
    UINT m_timeout = 1000; // milliseconds between typing and telling, until the owner says otherwise
    bool m_setting = false;
};

LRESULT FilterBar::handle(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case HDM_LAYOUT: {
        const LRESULT result = pass(message, wParam, lParam);
        const auto* layout = reinterpret_cast<const HDLAYOUT*>(lParam);
        layout->pwpos->cy += kRowHeight;
        layout->prc->top += kRowHeight;
        return result;
    }
    case HDM_SETITEMW:
        return setItem(wParam, *reinterpret_cast<const HDITEMW*>(lParam));
    case HDM_GETITEMW:
        return getItem(wParam, *reinterpret_cast<HDITEMW*>(lParam));
    case HDM_SETFILTERCHANGETIMEOUT:
        return static_cast<LRESULT>(std::exchange(m_timeout, static_cast<UINT>(lParam)));
    case HDM_CLEARFILTER:
        clear(static_cast<int>(wParam));
        return 1;
    case HDM_INSERTITEMW:
    case HDM_DELETEITEM:
    case HDM_SETORDERARRAY:
    case WM_SIZE:
    case WM_LBUTTONUP: {
        const LRESULT result = pass(message, wParam, lParam);
        arrange();
        return result;
    }
    case WM_MOUSEMOVE: {
        const LRESULT result = pass(message, wParam, lParam);
        if (GetCapture() == m_header) {
            arrange(); // a divider is being dragged
        }
        return result;
    }
    case WM_COMMAND:
        if (HIWORD(wParam) == EN_CHANGE && !m_setting) {
            typed(reinterpret_cast<HWND>(lParam));
        }
        return 0;
    case kFilterEntered:
        notify();
        return 0;
    case WM_TIMER:
        if (wParam == kChangeTimer) {
            notify();
            return 0;
        }
        return pass(message, wParam, lParam);
    case WM_ERASEBKGND:
        return 1;
    case WM_PAINT:
        paint();
        return 0;
    default:
        return pass(message, wParam, lParam);
    }
}

void FilterBar::arrange()
{
    const auto columns =
        static_cast<size_t>(std::max<LRESULT>(SendMessageW(m_header, HDM_GETITEMCOUNT, 0, 0), 0));
    while (m_filters.size() > columns) {
        DestroyWindow(m_filters.back().edit);
        m_filters.pop_back();
    }
    while (m_filters.size() < columns) {
        m_filters.push_back({newFilterEdit(m_header), {}, false});
    }
    RECT client{};
    GetClientRect(m_header, &client);
    for (size_t column = 0; column < columns; ++column) {
        RECT cell{};
        SendMessageW(m_header, HDM_GETITEMRECT, column, reinterpret_cast<LPARAM>(&cell));
        MoveWindow(m_filters[column].edit, cell.left, client.bottom - kRowHeight, cell.right - cell.left,
                   kRowHeight, TRUE);
    }
}

LRESULT FilterBar::setItem(WPARAM column, const HDITEMW& item)
{
    if ((item.mask & HDI_FILTER) != 0 && column < m_filters.size() && item.pvFilter != nullptr &&
        (item.type & ~static_cast<UINT>(HDFT_HASNOVALUE)) == HDFT_ISSTRING)
    {
        const bool none = (item.type & HDFT_HASNOVALUE) != 0;
        const wchar_t* text = static_cast<const HD_TEXTFILTERW*>(item.pvFilter)->pszText;
        m_filters[column].text = none || text == nullptr ? L"" : text;
        m_setting = true;
        SetWindowTextW(m_filters[column].edit, m_filters[column].text.c_str());
        m_setting = false;
    }
    HDITEMW rest = item;
    rest.mask &= ~static_cast<UINT>(HDI_FILTER);
    const LRESULT result =
        rest.mask == 0 ? TRUE : pass(HDM_SETITEMW, column, reinterpret_cast<LPARAM>(&rest));
    arrange();
    return result;
}

LRESULT FilterBar::getItem(WPARAM column, HDITEMW& item)
{
    HDITEMW rest = item;
    rest.mask &= ~static_cast<UINT>(HDI_FILTER);
    const LRESULT result =
        rest.mask == 0 ? TRUE : pass(HDM_GETITEMW, column, reinterpret_cast<LPARAM>(&rest));
    const UINT mask = item.mask;
    const UINT type = item.type;
    void* const filter = item.pvFilter;
    item = rest;
    item.mask = mask;
    item.type = type;
    item.pvFilter = filter;
    if ((mask & HDI_FILTER) != 0 && column < m_filters.size()) {
        const std::wstring& text = m_filters[column].text;
        item.type = HDFT_ISSTRING | (text.empty() ? static_cast<UINT>(HDFT_HASNOVALUE) : 0u);
        auto* target = static_cast<HD_TEXTFILTERW*>(filter);
        if (target != nullptr && target->pszText != nullptr && target->cchTextMax > 0) {
            const size_t length = text.copy(target->pszText, static_cast<size_t>(target->cchTextMax) - 1);
            target->pszText[length] = L'\0';
        }
    }
    return result;
}

void FilterBar::clear(int column)
{
    for (size_t i = 0; i < m_filters.size(); ++i) {
        if (column == -1 || static_cast<size_t>(column) == i) {
            SetWindowTextW(m_filters[i].edit, L""); // its change goes the way of a typed one
        }
    }
}

void FilterBar::typed(HWND edit)
{
    for (Filter& filter : m_filters) {
        if (filter.edit == edit) {
            filter.text = windowText(edit);
            filter.changed = true;
            SetTimer(m_header, kChangeTimer, m_timeout, nullptr);
        }
    }
}

void FilterBar::notify()
{
    KillTimer(m_header, kChangeTimer);
    // The runtime's list view keeps this notification to itself: it goes straight to the list's own parent.
    const HWND listener = GetParent(GetParent(m_header));
    for (size_t column = 0; column < m_filters.size(); ++column) {
        if (std::exchange(m_filters[column].changed, false)) {
            NMHEADERW change{};
            change.hdr = {m_header, static_cast<UINT_PTR>(GetDlgCtrlID(m_header)),
                          static_cast<UINT>(HDN_FILTERCHANGE)};
            change.iItem = static_cast<int>(column);
            SendMessageW(listener, WM_NOTIFY, change.hdr.idFrom, reinterpret_cast<LPARAM>(&change));
        }
    }
}

// The control would centre its headings in the whole height, under the edits.
void FilterBar::paint()
{
    PAINTSTRUCT paint{};
    const HDC dc = BeginPaint(m_header, &paint);
    paintHeadings(m_header, dc, kRowHeight);
    EndPaint(m_header, &paint);
}

LRESULT CALLBACK subclass(HWND header, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                          DWORD_PTR data)
{
    auto* bar = reinterpret_cast<FilterBar*>(data);
    if (message == WM_NCDESTROY) {
        RemovePropW(header, kHasBar);
        RemoveWindowSubclass(header, subclass, id);
        const std::unique_ptr<FilterBar> end(bar);
        return DefSubclassProc(header, message, wParam, lParam);
    }
    return bar->handle(message, wParam, lParam);
}

} // namespace

void addFilterBar(HWND header)
{
    if (GetPropW(header, kHasBar) != nullptr) {
        return;
    }
    auto bar = std::make_unique<FilterBar>(header);
    if (!SetWindowSubclass(header, subclass, kSubclass, reinterpret_cast<DWORD_PTR>(bar.get()))) {
        return;
    }
    SetPropW(header, kHasBar, header);
    bar.release()->arrange(); // the header's own from here on, until it is destroyed

    const HWND list = GetParent(header);
    RECT client{};
    GetClientRect(list, &client);
    SendMessageW(list, WM_SIZE, SIZE_RESTORED,
                 MAKELPARAM(client.right, client.bottom)); // makes room for the row
}

} // namespace host
