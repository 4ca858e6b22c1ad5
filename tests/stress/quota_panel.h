// The quota page of a host, as a dialog of its own.
#pragma once

#include "corvane.h"
#include "tests/support/recording_store.h"

#include <windows.h>

#include <array>
#include <functional>
#include <vector>

/// A modal dialog with the list of rules, and a button for each thing that a host does with it. What it does is picked by
/// somebody else, mostly at random; while a dialog stands over it, a timer may go on with the list.
class QuotaPanel {
public:
    static constexpr int kListId = 1011; ///< as in the editors
    static constexpr int kPrepare = 3;
    static constexpr int kFill = 4;
    static constexpr int kAdd = 5;
    static constexpr int kAddSeveral = 6;
    static constexpr int kDrop = 7;
    static constexpr int kEdit = 8; ///< the first selected row
    static constexpr int kSort = 9;
    static constexpr int kTakeData = 10;
    static constexpr int kEditCell = 11;
    static constexpr int kOwnDeletion = 12; ///< a row that the host deletes by itself
    static constexpr int kOwnExchange = 13; ///< two rows whose item data the host exchanges
    static constexpr int kLast = kOwnExchange;

    /// @param accounts  two that the rules may be for; the second is the only member of the first.
    /// @param below     gives a random number below a bound.
    /// @param raised    how many faults the store has raised.
    /// @param timer     whether the list is worked on while a dialog is open.
    QuotaPanel(RecordingStore& store, std::array<const void*, 2> accounts, std::function<int(int)> below,
               std::function<int()> raised, bool timer);
    ~QuotaPanel();
    QuotaPanel(const QuotaPanel&) = delete;
    QuotaPanel& operator=(const QuotaPanel&) = delete;

    void show();

private:
    static INT_PTR CALLBACK procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void onInit();
    bool onCommand(int id);
    INT_PTR onNotify(const NMHDR& header);
    void onTimer();
    void guarded(int id);
    void act(int id);
    void editCell();
    void exchange();
    void checkChain();

    const void* account() const;
    HWND list() const { return GetDlgItem(m_window, kListId); }
    int rows() const;

    std::function<int(int)> m_below;
    std::function<int()> m_raised;
    bool m_timer;
    const void* m_group;
    const void* m_member;
    std::vector<QuotaRule*> m_stored; ///< what the store has given; a host's to release
    HWND m_window = nullptr;
    int m_depth = 0; ///< of what is being done
};
