#include "accounts/row_pump.h"

#include "accounts/account_data.h"
#include "accounts/fb_list_ctrl.h"
#include "frame/crash_guard.h"
#include "frame/dialog_items.h"
#include "frame/domain_servers.h"
#include "frame/redraw_off.h"
#include "res/resource.h"
#include "store/lornix.h"

#include <climits>
#include <utility>

namespace {

// Messages to the list: rows wait, or the fill has ended; and go on with those that wait.
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

void logFillFault()
{
    runGuarded([] { ODS("fillTree => sigsegv\n"); });
}

} // namespace

void RowPump::start(const wchar_t* host, const SidList* presetOwners, int userImage, int groupImage)
{
    HWND window = m_list.handle();
    KillTimer(window, kEndTimer);
    m_anyInserted = false;
    m_mayLeave = false;
    bool started = false;
    const bool done = runGuarded([&] {
        m_fill = std::make_shared<AccountFill>(
            window, kNotice, host != nullptr && host[0] != L'\0' ? host : nullptr, presetOwners);
        m_fill->context.userImage = userImage;
        m_fill->context.groupImage = groupImage;
        RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
        started = startFillThread(m_fill);
    });
    if (!done) {
        logFillFault(); // as if the thread had met it: the owners are read for the thread
    }
    // Only once the dialog has disabled what it disables for a fill.
    if (!started && SetTimer(window, kEndTimer, USER_TIMER_MINIMUM, nullptr) == 0) {
        PostMessageW(window, WM_TIMER, kEndTimer, 0);
    }
}

bool RowPump::onMessage(UINT message, WPARAM wParam)
{
    if (message == kNotice) {
        onNotice();
    } else if (message == kGoOn) {
        m_goingOn = false;
        takeRowsNow();
    } else if (message == WM_TIMER && wParam == kTimer) {
        KillTimer(m_list.handle(), kTimer);
        m_timerSet = false;
        takeRowsNow();
    } else if (message == WM_TIMER && wParam == kEndTimer) {
        KillTimer(m_list.handle(), kEndTimer);
        onFillEnd();
    } else {
        return false;
    }
    return true;
}

void RowPump::onNotice()
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
void RowPump::goOn()
{
    // A message that is posted comes after all that were posted before, and before everything else. So it will do
    // when nothing else waits; a timer comes last of all.
    const bool othersWait = HIWORD(GetQueueStatus(QS_INPUT | QS_PAINT | QS_TIMER | QS_SENDMESSAGE)) != 0;
    m_goingOn = !othersWait && PostMessageW(m_list.handle(), kGoOn, 0, 0) != FALSE;
    if (!m_goingOn) {
        takeRowsLater(kShortPauseMilliseconds);
    }
}

void RowPump::takeRowsLater(UINT milliseconds)
{
    m_timerSet = SetTimer(m_list.handle(), kTimer, milliseconds, nullptr) != 0;
    if (!m_timerSet && !PostMessageW(m_list.handle(), kNotice, 0, 0)) {
        m_fill->rows.remind();
    }
}

/// Makes m_batch hold a row to put into the list.
/// @param takes  how often rows may still be taken from the fill.
/// @return false when none waits, or none may be taken any more.
bool RowPump::nextBatch(int& takes)
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

/// @return whether rows are left for another time.
bool RowPump::putIntoList(ULONGLONG until, int takes)
{
    QuietRedrawOff off(m_list);
    const CFBListCtrl::Straight straight(m_list);
    const int shown = static_cast<int>(m_list.send(LVM_GETTOPINDEX) + m_list.send(LVM_GETCOUNTPERPAGE)) + 1;
    bool visible = false;
    bool more = true;
    do {
        RowBatch::Entry& entry = m_batch.entries[m_next++];
        visible = visible || entry.removesFirst || entry.index <= shown;
        // Each row on its own: a list that fails at one has the others all the same.
        if (!runGuarded([&] { takeRow(entry); })) {
            logFillFault();
        }
        if (!m_fill) {
            return false; // the window went
        }
        more = nextBatch(takes);
    } while (more && (m_next % 16 != 0 || GetTickCount64() < until));
    // Rows below the visible ones move the scroll bar only.
    visible ? off.restore() : off.restoreUnchanged();
    rowsChanged();
    return more;
}

/// Puts waiting rows into the list until a time, or until none waits.
/// @param takes  see nextBatch.
void RowPump::takeRows(ULONGLONG until, int takes)
{
    const bool more = nextBatch(takes) && putIntoList(until, takes);
    if (!m_fill) {
        return;
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

void RowPump::rowsChanged() const
{
    if (m_fill) {
        m_fill->rows.setRowCount(m_list.rowCount() + static_cast<int>(m_batch.entries.size() - m_next));
    }
}

void RowPump::takeRowsNow()
{
    if (m_fill) {
        takeRows(GetTickCount64() + kTakeMilliseconds, INT_MAX);
    }
}

void RowPump::takeAllRows()
{
    if (m_fill) {
        takeRows(~0ull, 1);
    }
}

void RowPump::takeRow(RowBatch::Entry& entry)
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
    // Let go before the insertion, which may fault after the list has taken it: then it may leak, but is never freed twice.
    void* const data = entry.data.release();
    if (m_list.insertWholeRow(entry.index, entry.image, {account, fullName, type},
                              reinterpret_cast<LPARAM>(data)) == -1)
    {
        freeAccount(data);
    }
}

bool RowPump::isFirstInserted(const wchar_t* account, const wchar_t* fullName, const wchar_t* type,
                              LPARAM data) const
{
    return data == m_firstData && m_firstTexts[0] == account && m_firstTexts[1] == fullName &&
           m_firstTexts[2] == type;
}

/// The row may have been sorted to another place, or be hidden by a filter. It is told by all that it has: no
/// account has this name without a full name.
void RowPump::removeFirstInserted()
{
    const wchar_t* const account = m_firstTexts[0].c_str();
    for (int row = m_list.findRowByText(0, account, 0); row != -1;
         row = m_list.findRowByText(row + 1, account, 0))
    {
        if (isFirstInserted(account, m_list.text(row, 1).c_str(), m_list.text(row, 2).c_str(),
                            m_list.data(row)))
        {
            m_list.deleteRow(row);
            return;
        }
    }
    SavedRows& hidden = m_list.hiddenRows();
    for (std::size_t i = 0; i < hidden.rows().size(); ++i) {
        const SavedRow& row = hidden.rows()[i];
        if (isFirstInserted(hidden.text(row, 0), hidden.text(row, 1), hidden.text(row, 2), row.data)) {
            hidden.remove(i);
            return;
        }
    }
}

void RowPump::onFillEnd()
{
    stop();
    enableDialog();
}

/// Gives the dialog back what it disabled for the fill.
void RowPump::enableDialog() const
{
    const bool done = runGuarded([&] {
        HWND dialog = GetParent(m_list.handle());
        enableItem(dialog, IDCANCEL, true);
        enableItem(dialog, IDC_CHOOSER_LIST, true);
        RedrawWindow(m_list.handle(), nullptr, nullptr,
                     RDW_FRAME | RDW_INVALIDATE); // its scroll bar looks disabled
        rescueKeyboard(dialog, m_list.handle());  // to what the person waits for
    });
    if (!done) {
        runGuarded([] { ODS("fillTree => sigsegv at UI mgr\n"); });
    }
}

void RowPump::stop()
{
    if (!m_fill) {
        return;
    }
    m_fill->rows.close();
    m_fill.reset();
    m_batch = {};
    m_next = 0;
    if (std::exchange(m_timerSet, false)) {
        KillTimer(m_list.handle(), kTimer);
    }
}
