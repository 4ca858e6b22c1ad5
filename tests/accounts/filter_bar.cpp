#include "tests/accounts/filter_bar.h"

#include <cwchar>

FilterBar::FilterBar(HWND list)
    : m_header(reinterpret_cast<HWND>(SendMessageW(list, LVM_GETHEADER, 0, 0)))
{
    // Not the platform's subclassing, which costs a look-up at each message: a list sends its header many.
    SetWindowLongPtrW(m_header, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    m_before = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrW(m_header, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&procedure)));
}

FilterBar::~FilterBar()
{
    SetWindowLongPtrW(m_header, GWLP_WNDPROC,
                      reinterpret_cast<LONG_PTR>(m_before)); // nothing once it is gone
}

void FilterBar::type(int column, const wchar_t* text)
{
    m_texts[column] = text;
    if (*text == L'\0') {
        m_texts.erase(column);
    }
    notify(HDN_FILTERCHANGE, column);
}

void FilterBar::clickButton(int column)
{
    if (notify(HDN_FILTERBTNCLICK, column)) {
        notify(HDN_FILTERCHANGE, column);
    }
}

HWND FilterBar::openField(int column)
{
    RECT cell{};
    SendMessageW(m_header, HDM_GETITEMRECT, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(&cell));
    HWND field = CreateWindowExW(0, L"EDIT", L"", WS_CHILD | WS_VISIBLE, cell.left, cell.bottom, 50, 16,
                                 m_header, nullptr, nullptr, nullptr);
    SetFocus(field);
    return field;
}

LRESULT FilterBar::notify(UINT code, int column) const
{
    NMHEADERW header{}; // the button's record begins alike
    header.hdr.hwndFrom = m_header;
    header.hdr.idFrom = static_cast<UINT_PTR>(GetDlgCtrlID(m_header));
    header.hdr.code = code;
    header.iItem = column;
    return SendMessageW(GetParent(m_header), WM_NOTIFY, header.hdr.idFrom, reinterpret_cast<LPARAM>(&header));
}

LRESULT FilterBar::set(WPARAM column, HDITEMW item)
{
    const int index = static_cast<int>(column);
    if (item.type == HDFT_ISSTRING) {
        const auto& filter = *static_cast<const HD_TEXTFILTERW*>(item.pvFilter);
        m_texts[index] = filter.pszText;
        m_taken[index] = filter.cchTextMax;
    }
    item.mask &= ~static_cast<UINT>(HDI_FILTER);
    return item.mask == 0
               ? TRUE
               : CallWindowProcW(m_before, m_header, HDM_SETITEMW, column, reinterpret_cast<LPARAM>(&item));
}

LRESULT FilterBar::get(WPARAM column, HDITEMW& item)
{
    if (item.type == HDFT_ISSTRING) {
        const auto& filter = *static_cast<const HD_TEXTFILTERW*>(item.pvFilter);
        const auto text = m_texts.find(static_cast<int>(column));
        std::wcsncpy(filter.pszText, text != m_texts.end() ? text->second.c_str() : L"Enter text here",
                     static_cast<size_t>(filter.cchTextMax));
        filter.pszText[filter.cchTextMax - 1] = L'\0';
        item.type |= text != m_texts.end() ? 0u : HDFT_HASNOVALUE;
    }
    HDITEMW rest = item;
    rest.mask &= ~static_cast<UINT>(HDI_FILTER);
    if (rest.mask == 0) {
        return TRUE;
    }
    const LRESULT result =
        CallWindowProcW(m_before, m_header, HDM_GETITEMW, column, reinterpret_cast<LPARAM>(&rest));
    rest.mask = item.mask;
    item = rest;
    return result;
}

LRESULT CALLBACK FilterBar::procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    auto& bar = *reinterpret_cast<FilterBar*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    switch (message) {
    case HDM_SETITEMW:
        if ((reinterpret_cast<const HDITEMW*>(lParam)->mask & HDI_FILTER) != 0) {
            return bar.set(wParam, *reinterpret_cast<const HDITEMW*>(lParam));
        }
        break;
    case HDM_GETITEMW:
        if ((reinterpret_cast<const HDITEMW*>(lParam)->mask & HDI_FILTER) != 0) {
            return bar.get(wParam, *reinterpret_cast<HDITEMW*>(lParam));
        }
        break;
    case HDM_CLEARFILTER:
        wParam == static_cast<WPARAM>(-1) ? bar.m_texts.clear()
                                          : static_cast<void>(bar.m_texts.erase(static_cast<int>(wParam)));
        return 1;
    case HDM_EDITFILTER:
        bar.m_opened = static_cast<int>(wParam);
        return 1;
    case HDM_SETFILTERCHANGETIMEOUT:
        bar.m_delay = lParam;
        return 0;
    default:
        break;
    }
    return CallWindowProcW(bar.m_before, window, message, wParam, lParam);
}
