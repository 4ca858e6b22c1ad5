// The account list as the fill thread sees it.
#pragma once

#include "corvane_types.h"

/// Where the fill puts its rows. Every function is called on the fill thread and may be called after the window is
/// gone: it then does nothing.
class AccountSink {
public:
    AccountSink() = default;
    AccountSink(const AccountSink&) = delete;
    AccountSink& operator=(const AccountSink&) = delete;
    virtual ~AccountSink() = default;

    /// Whether the list's window still exists.
    virtual bool alive() = 0;

    /// Rows of the list, with those that were handed over and do not show yet.
    virtual int rowCount() = 0;

    /// Inserts a row. Texts are copied.
    /// @param index  position, counted in the order in which rows are handed over.
    /// @param image  index in the list's image list.
    /// @param data   item data: a SID copy that passes to the list, or the number 1.
    virtual void insert(int index, int image, const wchar_t* account, const wchar_t* fullName,
                        const wchar_t* type, void* data) = 0;

    /// Deletes the row that was inserted first, wherever it stands now.
    virtual void removeFirstInserted() = 0;

    /// Tells that another fill is in the store still, perhaps for ever: this one goes on when that one ends.
    virtual void waitForTurn() = 0;

    /// Tells the servers that the accounts come from, for those who ask them next. Null for none.
    virtual void nameServers(const wchar_t* server, const wchar_t* server2) = 0;
};

/// What a fill works on.
struct FillContext {
    AccountSink* sink = nullptr;
    SidList* presetOwners =
        nullptr; ///< accounts to list first, as "File owner"; the caller's, never released here
    const wchar_t* host = nullptr; ///< search base; null lets the registry decide
    int userImage = 0;
    int groupImage = 0;
    int counters[2] = {}; ///< reset by each fill
};
