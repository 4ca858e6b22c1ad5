// The account chooser's answer, told apart.
#pragma once

#include "accounts/chooser.h"
#include "corvane.h"

/// What was chosen: nothing, all accounts, or one account.
struct AccountChoice {
    bool anyone = false;
    const void* sid = nullptr; ///< null for nothing and for all accounts
};

/// Runs the account chooser. One that cannot be shown has chosen nothing.
///
/// A chosen SID is never released: to a host, the chooser that cannot be shown gives its last answer once more, and that
/// answer must still be there.
inline AccountChoice chooseAccount(HWND owner)
{
    const void* chosen = chooseAccountOfDialog(owner);
    if (chosen == CORVANE_ANYONE) {
        return {.anyone = true};
    }
    return {.sid = chosen};
}
