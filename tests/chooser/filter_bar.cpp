#include "tests/chooser/filter_bar.h"

#include <cwchar>

FilterBar::FilterBar(HWND list)
    : header_(reinterpret_cast<HWND>(SendMessageW(list, LVM_GETHEADER, 0, 0)))
{
    // Not the platform's subclassing, which costs a look-up at each message: a list sends its header many.
    SetWindowLongPtrW(header_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    before_ = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrW(header_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&procedure)));
}

FilterBar::~FilterBar()
{
    SetWindowLongPtrW(header_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(before_)); // nothing once it is gone
}

void FilterBar::type(int column, const wchar_t* text)
{
    texts_[column] = text;
    if (*text == L'\0') {
        texts_.erase(column);
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
    SendMessageW(header_, HDM_GETITEMRECT, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(&cell));
    HWND field = CreateWindowExW(0, L"EDIT", L"", WS_CHILD | WS_VISIBLE, cell.left, cell.bottom, 50, 16,
                                 header_, nullptr, nullptr, nullptr);
    SetFocus(field);
    return field;
}

LRESULT FilterBar::notify(UINT code, int column) const
{
    NMHEADERW header{}; // the button's record begins alike
    header.hdr.hwndFrom = header_;
    header.hdr.idFrom = static_cast<UINT_PTR>(GetDlgCtrlID(header_));
    header.hdr.code = code;
    header.iItem = column;
    return SendMessageW(GetParent(header_), WM_NOTIFY, header.hdr.idFrom, reinterpret_cast<LPARAM>(&header));
}

LRESULT FilterBar::set(WPARAM column, HDITEMW item)
{
    const int index = static_cast<int>(column);
    if (item.type == HDFT_ISSTRING) {
        const auto& filter = *static_cast<const HD_TEXTFILTERW*>(item.pvFilter);
        texts_[index] = filter.pszText;
        taken_[index] = filter.cchTextMax;
    }
    item.mask &= ~static_cast<UINT>(HDI_FILTER);
    return item.mask == 0
               ? TRUE
               : CallWindowProcW(before_, header_, HDM_SETITEMW, column, reinterpret_cast<LPARAM>(&item));
}

LRESULT FilterBar::get(WPARAM column, HDITEMW& item)
{
    if (item.type == HDFT_ISSTRING) {
        const auto& filter = *static_cast<const HD_TEXTFILTERW*>(item.pvFilter);
        const auto text = texts_.find(static_cast<int>(column));
        std::wcsncpy(filter.pszText, text != texts_.end() ? text->second.c_str() : L"Enter text here",
                     static_cast<size_t>(filter.cchTextMax));
        filter.pszText[filter.cchTextMax - 1] = L'\0';
        item.type |= text != texts_.end() ? 0u : HDFT_HASNOVALUE;
    }
    HDITEMW rest = item;
    rest.mask &= ~static_cast<UINT>(HDI_FILTER);
    if (rest.mask == 0) {
        return TRUE;
    }
    const LRESULT result =
        CallWindowProcW(before_, header_, HDM_GETITEMW, column, reinterpret_cast<LPARAM>(&rest));
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
        wParam == static_cast<WPARAM>(-1) ? bar.texts_.clear()
                                          : static_cast<void>(bar.texts_.erase(static_cast<int>(wParam)));
        return 1;
    case HDM_EDITFILTER:
        bar.opened_ = static_cast<int>(wParam);
        return 1;
    case HDM_SETFILTERCHANGETIMEOUT:
        bar.delay_ = lParam;
        return 0;
    default:
        break;
    }
    return CallWindowProcW(bar.before_, window, message, wParam, lParam);
}
