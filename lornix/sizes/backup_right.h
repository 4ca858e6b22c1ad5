// The right to read what one has no access to, which those have who make backups.
#pragma once

#include "lornix/faults.h"

namespace lornix {

namespace backup_right_detail {
/// What to undo.
struct Held {
    HANDLE token = nullptr;
    TOKEN_PRIVILEGES before{};
    bool isOwnToken = false; ///< the thread acts as somebody only for this
};
Held take();
void giveBack(const Held& held);
} // namespace backup_right_detail

/// Runs a call with this thread's right to read for backups switched on, where its account has it: folders that deny
/// administrators are often those that quotas are for. Opening must ask for it, with FILE_FLAG_BACKUP_SEMANTICS.
/// Afterwards the thread is as it was before, whatever ended the call.
template <class Call>
void withBackupRight(Call call)
{
    const backup_right_detail::Held held = backup_right_detail::take();
    runThen(call, [&] { backup_right_detail::giveBack(held); });
}

} // namespace lornix
