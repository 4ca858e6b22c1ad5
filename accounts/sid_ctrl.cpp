#include "accounts/sid_ctrl.h"

#include "accounts/account_data.h"
#include "accounts/filter_match.h"
#include "frame/column_keys.h"
#include "frame/crash_guard.h"
#include "frame/dialog_items.h"
#include "frame/domain_servers.h"
#include "frame/ignore_case.h"
#include "frame/list_sort.h"
#include "frame/redraw_off.h"
#include "res/resource.h"
#include "store/lornix.h"

#include <climits>
#include <utility>

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

// The control's own messages: rows wait, or the fill has ended; and go on with those that wait.
constexpr UINT kNotice = WM_APP + 1;
constexpr UINT kGoOn = WM_APP + 2;
constexpr UINT_PTR kTimer = 0x5349;
constexpr UINT_PTR kEndTimer = 0x534A; // a fill that could not be started ends by this one

// Rows are put into the list in batches this far apart, and for this long at once; the dialog takes input and paints
// in between. Together they stay below a tenth of a second.
constexpr UINT kPauseMilliseconds = 20;
constexpr ULONGLONG kTakeMilliseconds = 60;
// With more rows ready and something else to do, the pause is only as long as the platform's shortest timer.
constexpr UINT kShortPauseMilliseconds = USER_TIMER_MINIMUM;

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

void logFillFault()
{
    runGuarded([] { ODS("fillTree => sigsegv\n"); });
}

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
    // Second against first, so that a first click sorts from Z to A. Wanted: it is how this list has always sorted.
    return sorting.sign * compareIgnoringCase(*b, *a);
}

} // namespace

CSidCtrl::~CSidCtrl()
{
    dropFill();
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
    const int row = insertRow(index, image, account, reinterpret_cast<LPARAM>(data));
    if (row != -1) {
        setText(row, kFullName, fullName);
        setText(row, 2, type);
    }
    return row;
}

int CSidCtrl::findRowByText(int startRow, const wchar_t* wanted, int column) const
{
    const int rows = wanted != nullptr ? rowCount() : 0;
    for (int row = startRow; row < rows; ++row) {
        if (text(row, column) == wanted) {
            return row;
        }
    }
    return -1;
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
    takeAllRows();
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
    takeAllRows();
    if (filterRows()) {
        sortRows(*this, column);
    }
    if (m_fill) {
        m_fill->rows.setRowCount(rowCount());
    }
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

// ---- the fill, on the list's own thread ----

int CSidCtrl::startFill(const wchar_t* host)
{
    dropFill();
    KillTimer(handle(), kEndTimer);
    takeOverWindow();
    initColumns();
    m_anyInserted = false;
    m_mayLeave = false;
    bool started = false;
    const bool done = runGuarded([&] {
        m_fill = std::make_shared<AccountFill>(
            handle(), kNotice, host != nullptr && host[0] != L'\0' ? host : nullptr, m_presetOwners);
        m_fill->context.userImage = m_userImage;
        m_fill->context.groupImage = m_groupImage;
        RedrawWindow(handle(), nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
        started = startFillThread(m_fill);
    });
    if (!done) {
        logFillFault(); // as if the thread had met it: the owners are read for the thread
    }
    // Only once the dialog has disabled what it disables for a fill.
    if (!started && SetTimer(handle(), kEndTimer, USER_TIMER_MINIMUM, nullptr) == 0) {
        PostMessageW(handle(), WM_TIMER, kEndTimer, 0);
    }
    return 1;
}

void CSidCtrl::onNotice()
{
    if (!m_fill || m_timerSet || m_goingOn) {
        return;
    }
    const ULONGLONG now = GetTickCount64();
    if (m_fill->rows.ended() || now - m_lastTaken >= kPauseMilliseconds) {
        takeRowsNow();
    } else {
        takeRowsLater(kPauseMilliseconds);
    }
}

/// Goes on with the rows that wait, once the dialog has done what waits for it.
void CSidCtrl::goOn()
{
    // A message that is posted comes after all that were posted before, and before everything else. So it will do
    // when nothing else waits; a timer comes last of all.
    const bool othersWait = HIWORD(GetQueueStatus(QS_INPUT | QS_PAINT | QS_TIMER | QS_SENDMESSAGE)) != 0;
    m_goingOn = !othersWait && PostMessageW(handle(), kGoOn, 0, 0) != FALSE;
    if (!m_goingOn) {
        takeRowsLater(kShortPauseMilliseconds);
    }
}

void CSidCtrl::takeRowsLater(UINT milliseconds)
{
    m_timerSet = SetTimer(handle(), kTimer, milliseconds, nullptr) != 0;
    if (!m_timerSet && !PostMessageW(handle(), kNotice, 0, 0)) {
        m_fill->rows.remind();
    }
}

/// Makes m_batch hold a row to put into the list.
/// @param takes  how often rows may still be taken from the fill.
/// @return false when none waits, or none may be taken any more.
bool CSidCtrl::nextBatch(int& takes)
{
    if (m_next == m_batch.entries.size()) {
        m_next = 0;
        m_batch = takes-- > 0 ? m_fill->rows.take() : RowBatch();
        if (m_batch.servers) {
            setLastDomainServers(m_batch.servers->first.c_str(), m_batch.servers->second.c_str());
        }
    }
    return !m_batch.entries.empty();
}

/// Puts waiting rows into the list until a time, or until none waits.
/// @param takes  see nextBatch.
void CSidCtrl::takeRows(ULONGLONG until, int takes)
{
    bool more = false;
    if (nextBatch(takes)) {
        QuietRedrawOff off(*this);
        const int shown = static_cast<int>(send(LVM_GETTOPINDEX) + send(LVM_GETCOUNTPERPAGE)) + 1;
        bool visible = false;
        do {
            RowBatch::Entry& entry = m_batch.entries[m_next++];
            visible = visible || entry.removesFirst || entry.index <= shown;
            // Each row on its own: a list that fails at one has the others all the same.
            if (!runGuarded([&] { takeRow(entry); })) {
                logFillFault();
            }
            if (!m_fill) {
                return; // the window went
            }
            more = nextBatch(takes);
        } while (more && (m_next % 16 != 0 || GetTickCount64() < until));
        // Rows below the visible ones move the scroll bar only.
        visible ? off.restore() : off.restoreUnchanged();
        m_fill->rows.setRowCount(rowCount() + static_cast<int>(m_batch.entries.size() - m_next));
    }
    m_lastTaken = GetTickCount64();
    if (more) {
        goOn();
    } else if (m_fill->rows.ended()) {
        onFillEnd();
    } else if (!m_mayLeave && m_fill->rows.waitsForTurn()) {
        m_mayLeave = true;
        enableDialog();
    }
}

void CSidCtrl::takeRowsNow()
{
    if (m_fill) {
        takeRows(GetTickCount64() + kTakeMilliseconds, INT_MAX);
    }
}

/// A sort or a filter finds every row that was handed over before it, as if rows came one by one. Those that come
/// while it takes them do not keep the dialog waiting.
void CSidCtrl::takeAllRows()
{
    if (m_fill) {
        takeRows(~0ull, 1);
    }
}

void CSidCtrl::takeRow(RowBatch::Entry& entry)
{
    if (entry.removesFirst) {
        removeFirstInserted();
        return;
    }
    const wchar_t* const account = &m_batch.texts[entry.texts];
    const wchar_t* const fullName = account + wcslen(account) + 1;
    const wchar_t* const type = fullName + wcslen(fullName) + 1;
    if (!m_anyInserted) {
        m_anyInserted = true;
        m_firstTexts[0] = account;
        m_firstTexts[1] = fullName;
        m_firstTexts[2] = type;
        m_firstData = reinterpret_cast<LPARAM>(entry.data.get());
    }
    void* const data =
        entry.data.release(); // whatever comes: a copy too many is better than one that goes twice
    if (insertAccountRow(entry.index, entry.image, account, fullName, type, data) == -1) {
        AccountFree()(data);
    }
}

bool CSidCtrl::isFirstInserted(const wchar_t* account, const wchar_t* fullName, const wchar_t* type,
                               LPARAM data) const
{
    return data == m_firstData && m_firstTexts[0] == account && m_firstTexts[1] == fullName &&
           m_firstTexts[2] == type;
}

/// The row may have been sorted to another place, or be hidden by a filter. It is told by all that it has: no
/// account has this name without a full name.
void CSidCtrl::removeFirstInserted()
{
    const wchar_t* const account = m_firstTexts[0].c_str();
    for (int row = findRowByText(0, account, 0); row != -1; row = findRowByText(row + 1, account, 0)) {
        if (isFirstInserted(account, text(row, 1).c_str(), text(row, 2).c_str(), data(row))) {
            deleteRow(row);
            return;
        }
    }
    std::vector<SavedRow>& hidden = hiddenRows();
    for (auto row = hidden.begin(); row != hidden.end(); ++row) {
        if (isFirstInserted(row->text(0), row->text(1), row->text(2), row->data)) {
            hidden.erase(row);
            return;
        }
    }
}

void CSidCtrl::onFillEnd()
{
    dropFill();
    enableDialog();
}

/// Gives the dialog back what it disabled for the fill.
void CSidCtrl::enableDialog()
{
    const bool done = runGuarded([&] {
        HWND dialog = GetParent(handle());
        enableItem(dialog, IDCANCEL, true);
        enableItem(dialog, IDC_CHOOSER_LIST, true);
        RedrawWindow(handle(), nullptr, nullptr, RDW_FRAME | RDW_INVALIDATE); // its scroll bar looks disabled
        rescueKeyboard(dialog, handle());                                     // to what the person waits for
    });
    if (!done) {
        runGuarded([] { ODS("fillTree => sigsegv at UI mgr\n"); });
    }
}

/// Lets the fill thread go its own way: it stops at the next row, and what it still hands over is dropped.
void CSidCtrl::dropFill()
{
    if (!m_fill) {
        return;
    }
    m_fill->rows.close();
    m_fill.reset();
    m_batch = {};
    m_next = 0;
    if (std::exchange(m_timerSet, false)) {
        KillTimer(handle(), kTimer);
    }
}

// ---- the window ----

void CSidCtrl::takeOverWindow()
{
    if (m_windowProcedure != nullptr) {
        return;
    }
    SetWindowLongPtrW(handle(), GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    m_windowProcedure = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrW(handle(), GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&windowProcedure)));
}

void CSidCtrl::leaveWindow()
{
    if (m_windowProcedure == nullptr) {
        return;
    }
    SetWindowLongPtrW(handle(), GWLP_WNDPROC,
                      reinterpret_cast<LONG_PTR>(std::exchange(m_windowProcedure, nullptr)));
    SetWindowLongPtrW(handle(), GWLP_USERDATA, 0);
    detach();
}

LRESULT CALLBACK CSidCtrl::windowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    auto* const list = reinterpret_cast<CSidCtrl*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    return list->onMessage(message, wParam, lParam);
}

LRESULT CSidCtrl::onMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case kNotice:
        onNotice();
        return 0;
    case kGoOn:
        m_goingOn = false;
        takeRowsNow();
        return 0;
    case WM_TIMER:
        if (wParam == kTimer) {
            KillTimer(handle(), kTimer);
            m_timerSet = false;
            takeRowsNow();
            return 0;
        }
        if (wParam == kEndTimer) {
            KillTimer(handle(), kEndTimer);
            onFillEnd();
            return 0;
        }
        break;
    case WM_NOTIFY:
        // Some platforms' lists keep these of their header to themselves.
        if (const UINT code = reinterpret_cast<const NMHDR*>(lParam)->code;
            code == HDN_FILTERCHANGE || code == HDN_FILTERBTNCLICK)
        {
            return SendMessageW(GetParent(handle()), message, wParam, lParam);
        }
        break;
    case WM_DESTROY:
        dropFill();
        releaseSids();
        break;
    case WM_NCDESTROY: {
        HWND window = handle();
        const WNDPROC procedure = m_windowProcedure;
        leaveWindow();
        return CallWindowProcW(procedure, window, message, wParam, lParam);
    }
    default:
        break;
    }
    return CallWindowProcW(m_windowProcedure, handle(), message, wParam, lParam);
}

void CSidCtrl::releaseSids()
{
    const int rows = rowCount();
    for (int row = 0; row < rows; ++row) {
        AccountFree()(reinterpret_cast<void*>(data(row)));
    }
    for (const SavedRow& row : hiddenRows()) {
        AccountFree()(reinterpret_cast<void*>(row.data));
    }
    hiddenRows().clear();
}
