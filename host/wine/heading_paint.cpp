#include "host/wine/heading_paint.h"

#include <commctrl.h>
#include <uxtheme.h>
#include <vssym32.h>

#include <iterator>

namespace host {
namespace {

constexpr int kHeadingMargin = 6; // pixels beside a heading

/// How headings look in the present theme; without one they have the old raised edges.
class HeadingLook {
public:
    explicit HeadingLook(HWND header)
        : m_theme(OpenThemeData(header, L"HEADER"))
    {
    }
    ~HeadingLook()
    {
        if (m_theme != nullptr) {
            CloseThemeData(m_theme);
        }
    }
    HeadingLook(const HeadingLook&) = delete;
    HeadingLook& operator=(const HeadingLook&) = delete;

    void paint(HDC dc, RECT area) const
    {
        if (m_theme != nullptr) {
            DrawThemeBackground(m_theme, dc, HP_HEADERITEM, HIS_NORMAL, &area, nullptr);
        } else {
            DrawEdge(dc, &area, EDGE_RAISED, BF_RECT | BF_SOFT | BF_MIDDLE);
        }
    }

    void paintRest(HDC dc, const RECT& area) const
    {
        if (m_theme == nullptr || FAILED(DrawThemeBackground(m_theme, dc, 0, 0, &area, nullptr))) {
            FillRect(dc, &area, GetSysColorBrush(COLOR_3DFACE));
        }
    }

private:
    HTHEME m_theme;
};

void paintHeading(HWND header, HDC dc, int column, int lower, const HeadingLook& look)
{
    wchar_t heading[128] = {};
    HDITEMW item{};
    item.mask = HDI_TEXT | HDI_FORMAT;
    item.pszText = heading;
    item.cchTextMax = static_cast<int>(std::size(heading));
    SendMessageW(header, HDM_GETITEMW, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(&item));
    RECT cell{};
    SendMessageW(header, HDM_GETITEMRECT, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(&cell));
    cell.bottom -= lower;
    look.paint(dc, cell);
    InflateRect(&cell, -kHeadingMargin, 0);
    const int justify = item.fmt & HDF_JUSTIFYMASK;
    const UINT side = justify == HDF_RIGHT ? DT_RIGHT : justify == HDF_CENTER ? DT_CENTER : DT_LEFT;
    DrawTextW(dc, heading, -1, &cell, DT_SINGLELINE | DT_VCENTER | DT_END_ELLIPSIS | DT_NOPREFIX | side);
}

} // namespace

void paintHeadings(HWND header, HDC dc, int lower)
{
    const HeadingLook look(header);
    RECT client{};
    GetClientRect(header, &client);
    look.paintRest(dc, client);
    const HGDIOBJ font = SelectObject(dc, reinterpret_cast<HFONT>(SendMessageW(header, WM_GETFONT, 0, 0)));
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, GetSysColor(COLOR_BTNTEXT));
    const auto columns = static_cast<int>(SendMessageW(header, HDM_GETITEMCOUNT, 0, 0));
    for (int column = 0; column < columns; ++column) {
        paintHeading(header, dc, column, lower, look);
    }
    SelectObject(dc, font);
}

} // namespace host
