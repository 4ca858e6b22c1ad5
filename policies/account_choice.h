// The account chooser's answer, told apart.
#pragma once

#include "corvane.h"

/// What was chosen: nothing, all accounts, or one account.
struct AccountChoice {
    bool anyone = false;
    const void* sid = nullptr; ///< null for nothing and for all accounts
};

/// Runs the account chooser.
///
/// A chosen SID is never released: the chooser that cannot be shown gives its last answer once more, and that
/// answer must still be there.
inline AccountChoice chooseAccount(HWND owner)
{
    const void* chosen = chooseSidFromUserInput(owner);
    if (chosen == CORVANE_ANYONE) {
        return {.anyone = true};
    }
    return {.sid = chosen};
}
