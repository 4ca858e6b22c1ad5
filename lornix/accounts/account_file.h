// The file of accounts, which stands beside the platform. May be asked on any thread.
#pragma once

#include "lornix/accounts/directory.h"

#include <memory>

namespace lornix {

/// What was read last. A hundred thousand names are asked for in a row, too many to look at the file each time.
std::shared_ptr<const AccountDirectory> fileAccounts();

/// The same, read again when the file was changed.
std::shared_ptr<const AccountDirectory> fileAccountsNow();

} // namespace lornix
