// One fill of the account list, on a thread of its own.
#pragma once

#include "accounts/account_sink.h"
#include "accounts/row_queue.h"
#include "accounts/sid_list_copy.h"

#include <memory>
#include <string>

/// All that a fill uses. The list and the fill thread hold it together, so that neither needs the other to last.
struct AccountFill {
    /// @param host          search base; null lets the registry decide.
    /// @param presetOwners  copied; may be null.
    AccountFill(HWND list, UINT notice, const wchar_t* host, const SidList* presetOwners);

    RowQueue rows;
    std::wstring host;
    SidListCopy presetOwners;
    FillContext context; ///< points to the three above; the images are to be filled in

    Lock starting;           ///< held until `thread` is known
    HANDLE thread = nullptr; ///< closed by the thread itself
};

/// Starts the fill thread. It keeps this module loaded until it ends: a store that is slow to answer may hold it long
/// after its window went.
/// @return false when no thread can be started.
bool startFillThread(const std::shared_ptr<AccountFill>& fill);
