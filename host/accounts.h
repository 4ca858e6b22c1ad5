// Choosing the account that a new rule is for.
#pragma once

#include "corvane.h"

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace host {

/// What the administrator chose.
class AccountChoice {
public:
    /// @param value  what the library's chooser gave; a SID in it passes to this object.
    explicit AccountChoice(void* value)
        : made_(value != nullptr)
        , sid_(value == CORVANE_ANYONE ? nullptr : value)
    {
    }

    /// Whether anything was chosen at all.
    bool made() const { return made_; }

    /// As the library takes it: null for anyone. Valid as long as this object.
    void* sid() const { return sid_.get(); }

private:
    struct Free {
        void operator()(void* block) const
        {
            std::free(block);
        } // the shared C runtime's, like the store's malloc
    };
    bool made_;
    std::unique_ptr<void, Free> sid_;
};

/// Lets the administrator choose an account.
AccountChoice chooseAccount(HWND owner);

/// The same, with those listed first to whom files in some folders belong.
AccountChoice chooseAccountOwnersFirst(HWND owner, const std::vector<std::wstring>& folders);

} // namespace host
