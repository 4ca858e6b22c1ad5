#include "accounts/sid_ctrl.h"

#include "accounts/account_data.h"
#include "accounts/filter_match.h"
#include "frame/column_reader.h"
#include "frame/crash_guard.h"
#include "frame/ignore_case.h"
#include "frame/list_sort.h"
#include "res/resource.h"
#include "store/lornix.h"

#include <iterator>

namespace {

constexpr ListColumn kColumns[] = {
    {L"Account", LVCFMT_LEFT, 200},
    {L"Full Name", LVCFMT_LEFT, 200},
    {L"Type", LVCFMT_LEFT, 50},
};
constexpr int kFullName = 1;

constexpr int kImageSize = 16;
constexpr int kImageGrowth = 4;

constexpr COLORREF kMatchColor = RGB(255, 0, 127);
constexpr COLORREF kOtherColor = RGB(127, 127, 127);

int addIcon(HIMAGELIST images, int id)
{
    auto* const icon = static_cast<HICON>(LoadImageW(GetModuleHandleW(L"corvane"), MAKEINTRESOURCEW(id),
                                                     IMAGE_ICON, kImageSize, kImageSize, LR_DEFAULTCOLOR));
    const int index = ImageList_ReplaceIcon(images, -1, icon);
    DestroyIcon(icon);
    return index;
}

struct Sorting {
    ColumnKeys<const wchar_t*> texts;
    int sign;
};

int CALLBACK compareRows(LPARAM first, LPARAM second, LPARAM context)
{
    const auto& sorting = *reinterpret_cast<const Sorting*>(context);
    const wchar_t* const* const a = sorting.texts.of(first);
    const wchar_t* const* const b = sorting.texts.of(second);
    if (a == nullptr || b == nullptr) {
        runGuarded([&] {
            ODS("*** FAIL in comparison: %d vs %d ***\n", static_cast<int>(first), static_cast<int>(second));
        });
        return 0;
    }
    // QUIRK: second against first, so that a first click sorts from Z to A.
    // AccountListTest.AHeaderClickSortsFromZToAAndTheNextTurnsItRound
    return sorting.sign * compareIgnoringCase(*b, *a);
}

} // namespace

CSidCtrl::~CSidCtrl()
{
    m_pump.stop();
    leaveWindow();
}

// ---- columns, images, rows ----

void CSidCtrl::initColumns()
{
    const LONG_PTR style = GetWindowLongPtrW(handle(), GWL_STYLE);
    if ((style & LVS_EDITLABELS) != 0) {
        SetWindowLongPtrW(handle(), GWL_STYLE, style & ~static_cast<LONG_PTR>(LVS_EDITLABELS));
    }
    addExtendedStyle(LVS_EX_GRIDLINES | LVS_EX_FULLROWSELECT | LVS_EX_LABELTIP);
    for (int index = 0; const ListColumn& column : kColumns) {
        insertColumn(index++, column);
    }
    addFilterBar();
    loadImages();
}

void CSidCtrl::loadImages()
{
    HIMAGELIST images = ImageList_Create(kImageSize, kImageSize, ILC_COLOR32 | ILC_MASK, 0, kImageGrowth);
    m_groupImage = addIcon(images, IDI_GROUP);
    m_userImage = addIcon(images, IDI_USER);
    m_spareImages[0] = addIcon(images, IDI_COMPUTER);
    m_spareImages[1] = addIcon(images, IDI_DOMAIN);
    send(LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(images)); // the list's from now on
}

int CSidCtrl::insertAccountRow(int index, int image, const wchar_t* account, const wchar_t* fullName,
                               const wchar_t* type, void* data) const
{
    return insertWholeRow(index, image, {account, fullName, type}, reinterpret_cast<LPARAM>(data));
}

int CSidCtrl::selectSid(const void* sid) const
{
    int found = 0;
    const bool done = runGuarded([&] {
        wchar_t fullName[512];
        if (getAccountBySidW(sid, fullName, static_cast<int>(std::size(fullName))) == nullptr) {
            return;
        }
        const int row = findRowByText(0, fullName, kFullName);
        if (row != -1) {
            found = 1;
            send(LVM_SETSELECTIONMARK, 0, row);
        }
    });
    if (!done) {
        runGuarded([] { ODS("No CU selected\n"); });
    }
    return found;
}

// ---- sorting, filtering, colours ----

void CSidCtrl::onColumnClick(int column)
{
    m_pump.takeAllRows();
    m_sortFlag = column != m_sortColumn ? 0 : 1 - m_sortFlag;
    m_sortColumn = column;
    const Sorting sorting{{*this, column,
                           [](const wchar_t* text) {
                               return text;
                           }},
                          m_sortFlag == 1 ? -1 : 1};
    send(LVM_SORTITEMS, reinterpret_cast<WPARAM>(&sorting), reinterpret_cast<LPARAM>(&compareRows));
}

void CSidCtrl::applyFilter(int column)
{
    m_pump.takeAllRows();
    if (filterRows()) {
        sortRows(*this, column);
    }
    m_pump.rowsChanged();
}

LRESULT CSidCtrl::colorCell(NMLVCUSTOMDRAW& draw)
{
    switch (draw.nmcd.dwDrawStage) {
    case CDDS_PREPAINT:
    case CDDS_ITEMPREPAINT:
        return CDRF_NOTIFYITEMDRAW; // for a row: CDRF_NOTIFYSUBITEMDRAW, which is the same number
    case CDDS_ITEMPREPAINT | CDDS_SUBITEM: {
        const std::wstring cell = text(static_cast<int>(draw.nmcd.dwItemSpec), draw.iSubItem);
        draw.clrText = equalsFilter(cell.c_str(), filter(draw.iSubItem)) ? kMatchColor : kOtherColor;
        break;
    }
    default:
        break;
    }
    return CDRF_DODEFAULT;
}

int CSidCtrl::startFill(const wchar_t* host)
{
    m_pump.stop();
    if (!takenWindow().isTaken()) {
        takenWindow().take(handle(), &windowProcedure, this);
    }
    initColumns();
    m_pump.start(host, m_presetOwners, m_userImage, m_groupImage);
    return 1;
}

// ---- the window ----

void CSidCtrl::leaveWindow()
{
    if (takenWindow().isTaken()) {
        takenWindow().giveBack();
        detach();
    }
}

LRESULT CALLBACK CSidCtrl::windowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    auto* const list = reinterpret_cast<CSidCtrl*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    return list->onMessage(message, wParam, lParam);
}

LRESULT CSidCtrl::onMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    if (m_pump.onMessage(message, wParam)) {
        return 0;
    }
    switch (message) {
    case WM_NOTIFY:
        // Some platforms' lists keep these of their header to themselves.
        if (const UINT code = reinterpret_cast<const NMHDR*>(lParam)->code;
            code == HDN_FILTERCHANGE || code == HDN_FILTERBTNCLICK)
        {
            return SendMessageW(GetParent(handle()), message, wParam, lParam);
        }
        break;
    case WM_DESTROY:
        m_pump.stop();
        releaseSids();
        break;
    case WM_NCDESTROY: {
        HWND gone = handle();
        const WNDPROC procedure = takenWindow().giveBack();
        detach();
        return CallWindowProcW(procedure, gone, message, wParam, lParam);
    }
    default:
        break;
    }
    return takenWindow().pass(message, wParam, lParam);
}

void CSidCtrl::releaseSids()
{
    const int rows = rowCount();
    for (int row = 0; row < rows; ++row) {
        freeAccount(reinterpret_cast<void*>(data(row)));
    }
    for (const SavedRow& row : hiddenRows().rows()) {
        freeAccount(reinterpret_cast<void*>(row.data));
    }
    hiddenRows().clear();
}
