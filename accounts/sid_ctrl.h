// The account list.
#pragma once

#include "accounts/fb_list_ctrl.h"
#include "accounts/row_pump.h"

/// A report list with one row per account: its name, its full name, its type. A fill thread finds the accounts;
/// their rows reach the list in batches, in the order in which they were found. Rows carry a SID copy or the
/// number 1 for anyone as item data; the list releases the copies when its window goes.
class CSidCtrl : public CFBListCtrl {
public:
    CSidCtrl() = default;
    /// When the window is still there, it is left with its rows and without this object.
    ~CSidCtrl() override;

    // These three take the first slots behind the base's, in this order: hosts that derive from the framework's
    // class number them so.

    /// Sorts by a column: from Z to A the first time, the other way round each further time.
    virtual void onColumnClick(int column);

    /// Chooses a cell's text colour: cells that are what their column's filter says stand out.
    /// @return the answer to the list's custom-draw notification.
    virtual LRESULT colorCell(NMLVCUSTOMDRAW& draw);

    /// Applies the header's filters.
    /// @param column  whose filter changed; rows that come back are sorted by it.
    virtual void applyFilter(int column);

    /// Prepares the columns and starts the fill thread. The list's parent gets its controls for Cancel and for the
    /// list enabled when the fill ends.
    /// @param host  search base; null or empty lets the registry decide.
    /// @return 1.
    int startFill(const wchar_t* host);

    /// @param owners  accounts to list first; read by startFill, not copied before. May be null.
    void setPresetOwners(const SidList* owners) { m_presetOwners = owners; }

    void initColumns();

    /// @param data  item data: a SID copy, which passes to the list, or the number 1.
    /// @return the row's index.
    int insertAccountRow(int index, int image, const wchar_t* account, const wchar_t* fullName,
                         const wchar_t* type, void* data) const;

    /// Puts the selection mark on the row of an account; what is selected and what shows stays as it is.
    /// @return 1 when there is such a row, else 0.
    int selectSid(const void* sid) const;

private:
    static LRESULT CALLBACK windowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT onMessage(UINT message, WPARAM wParam, LPARAM lParam);
    void leaveWindow();
    void loadImages();
    void releaseSids();

    int m_sortColumn = -1;
    int m_sortFlag = 1; ///< 0 from Z to A, 1 from A to Z
    int m_spareImages[2] = {-1, -1};
    int m_userImage = -1;
    int m_groupImage = -1;
    const SidList* m_presetOwners = nullptr;

    RowPump m_pump{*this};
};
