// The right to read what one has no access to, which those have who make backups.
#pragma once

#include <functional>

namespace lornix {

/// Runs a call with this thread's right to read for backups switched on, where its account has it: folders that deny
/// administrators are often those that quotas are for. Opening must ask for it, with FILE_FLAG_BACKUP_SEMANTICS.
/// Afterwards the thread is as it was before, whatever ended the call.
void withBackupRight(const std::function<void()>& call);

} // namespace lornix
