// Puts the rows of a fill into the list, a batch at a time.
#pragma once

#include "accounts/account_fill.h"

#include <memory>
#include <string>

class CFBListCtrl;

/// Puts the rows of a fill into the list, on the list's thread. It takes them in batches, so that the dialog takes input
/// and paints in between.
class RowPump {
public:
    explicit RowPump(CFBListCtrl& list)
        : m_list(list)
    {
    }

    /// Starts a fill, which takes the place of the one before. The list's parent gets its controls for Cancel and for
    /// the list enabled when the fill ends, or when it has to wait for another one.
    /// @param host  search base; null or empty lets the registry decide.
    void start(const wchar_t* host, const SidList* presetOwners, int userImage, int groupImage);

    /// @return whether a message to the list was the pump's.
    bool onMessage(UINT message, WPARAM wParam);

    /// A sort or a filter finds every row that was handed over before it, as if rows came one by one. Those that come
    /// while it takes them do not keep the dialog waiting.
    void takeAllRows();

    /// The list has taken rows out, or back, by itself.
    void rowsChanged() const;

    /// Abandons the fill: its thread begins no step any more, and what it still hands over is dropped.
    void stop();

private:
    void onNotice();
    void goOn();
    void takeRowsLater(UINT milliseconds);
    void takeRowsNow();
    void takeRows(ULONGLONG until, int takes);
    bool nextBatch(int& takes);
    bool putIntoList(ULONGLONG until, int takes);
    void takeRow(RowBatch::Entry& entry);
    bool isFirstInserted(const wchar_t* account, const wchar_t* fullName, const wchar_t* type,
                         LPARAM data) const;
    void removeFirstInserted();
    void onFillEnd();
    void enableDialog() const;

    CFBListCtrl& m_list;
    std::shared_ptr<AccountFill> m_fill; ///< null when no fill runs
    RowBatch m_batch;                    ///< taken from the fill, and in the list up to m_next
    std::size_t m_next = 0;
    ULONGLONG m_lastTaken = 0; ///< when rows were last put into the list
    bool m_timerSet = false;
    bool m_goingOn = false;       ///< a message to go on is under way
    bool m_mayLeave = false;      ///< the fill waits for another: the dialog may go, or take what there is
    std::wstring m_firstTexts[3]; ///< of the row that was inserted first
    LPARAM m_firstData = 0;
    bool m_anyInserted = false;
};
