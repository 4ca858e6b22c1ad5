// Choosing the account that a new rule is for.
#pragma once

#include "corvane.h"

#include <string>
#include <vector>

namespace host {

/// What the administrator chose.
struct AccountChoice {
    bool made; ///< whether anything was chosen at all
    void* sid; ///< null for anyone; valid until the next choice
};

/// Lets the administrator choose an account.
AccountChoice chooseAccount(HWND owner);

/// The same, with those listed first to whom files in some folders belong.
AccountChoice chooseAccountOwnersFirst(HWND owner, const std::vector<std::wstring>& folders);

} // namespace host
