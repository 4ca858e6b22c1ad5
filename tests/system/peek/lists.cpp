#include "lists.h"

#include "remote_block.h"
#include "tree.h"
#include "window.h"

#include <commctrl.h>

#include <algorithm>

namespace peek {
namespace {

std::wstring cell(HWND list, const RemoteBlock& block, RemoteBlock& request, int row, int column)
{
    LVITEMW item{};
    item.iSubItem = column;
    item.pszText = block.textAddress();
    item.cchTextMax = RemoteBlock::kTextRoom;
    request.put(item);
    send(list, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), request.address());
    return request.text();
}

/// A column heading and its place in the header.
struct Heading {
    Heading(HWND list, int column)
        : header(reinterpret_cast<HWND>(send(list, LVM_GETHEADER)))
    {
        RemoteBlock block(header);
        if (send(header, HDM_GETITEMRECT, static_cast<WPARAM>(column), block.address()) == 0) {
            throw Missing{"column " + std::to_string(column)};
        }
        area = block.get<RECT>();
    }
    HWND header;
    RECT area{};
};

} // namespace

void printList(HWND list)
{
    RemoteBlock block(list);
    const auto header = reinterpret_cast<HWND>(send(list, LVM_GETHEADER));
    const auto columns = static_cast<int>(send(header, HDM_GETITEMCOUNT));
    const auto rows = static_cast<int>(send(list, LVM_GETITEMCOUNT));
    for (int row = 0; row < rows; ++row) {
        std::wstring line;
        for (int column = 0; column < columns; ++column) {
            line += column == 0 ? L"" : L"\t";
            line += cell(list, block, block, row, column);
        }
        print(line);
    }
}

void printCount(HWND list)
{
    print(static_cast<int>(send(list, LVM_GETITEMCOUNT)));
}

void printChosen(HWND control)
{
    if (isA(control, WC_LISTVIEWW)) {
        for (LRESULT row = -1;
             (row = send(control, LVM_GETNEXTITEM, static_cast<WPARAM>(row), LVNI_SELECTED)) != -1;)
        {
            print(static_cast<int>(row));
        }
        return;
    }
    if (isA(control, WC_TREEVIEWW)) {
        printChosenNode(control);
        return;
    }
    const LRESULT count = send(control, LB_GETCOUNT);
    for (LRESULT entry = 0; entry < count; ++entry) {
        if (send(control, LB_GETSEL, static_cast<WPARAM>(entry)) > 0) {
            print(static_cast<int>(entry));
        }
    }
}

void printEntries(HWND box)
{
    const LRESULT count = send(box, LB_GETCOUNT);
    for (LRESULT entry = 0; entry < count; ++entry) {
        std::wstring text(static_cast<size_t>(send(box, LB_GETTEXTLEN, static_cast<WPARAM>(entry))) + 1,
                          L'\0');
        send(box, LB_GETTEXT, static_cast<WPARAM>(entry), reinterpret_cast<LPARAM>(text.data()));
        text.pop_back();
        print(text);
    }
}

void printParts(HWND bar)
{
    const RemoteBlock block(bar);
    const LRESULT parts = send(bar, SB_GETPARTS);
    for (LRESULT part = 0; part < parts; ++part) {
        send(bar, SB_GETTEXTW, static_cast<WPARAM>(part), reinterpret_cast<LPARAM>(block.textAddress()));
        print(block.text());
    }
}

void printCell(HWND list, int row, int column)
{
    RemoteBlock block(list);
    RECT request{};
    request.left = column == 0 ? LVIR_LABEL : LVIR_BOUNDS;
    request.top = column;
    block.put(request);
    const UINT message = column == 0 ? LVM_GETITEMRECT : LVM_GETSUBITEMRECT;
    if (send(list, message, static_cast<WPARAM>(row), block.address()) == 0) {
        throw Missing{"row " + std::to_string(row)};
    }
    printMiddle(list, block.get<RECT>());
}

void printHeader(HWND list, int column)
{
    // Below the heading there may be a filter.
    constexpr LONG kHeadingHeight = 16;
    const Heading heading(list, column);
    RECT area = heading.area;
    area.bottom = std::min(area.bottom, area.top + kHeadingHeight);
    printMiddle(heading.header, area);
}

void printFilter(HWND list, int column)
{
    const Heading heading(list, column);
    RECT area = heading.area;
    RECT client{};
    GetClientRect(heading.header, &client);
    area.top = client.bottom * 3 / 4;
    area.bottom = client.bottom;
    printMiddle(heading.header, area);
}

void printEntry(HWND box, int entry)
{
    // The system itself carries the pointers of list box messages from one program to the other.
    RECT area{};
    if (send(box, LB_GETITEMRECT, static_cast<WPARAM>(entry), reinterpret_cast<LPARAM>(&area)) == LB_ERR) {
        throw Missing{"entry " + std::to_string(entry)};
    }
    printMiddle(box, area);
}

} // namespace peek
