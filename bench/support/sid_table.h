// The part of a bench's store that is the same for all of them.
#pragma once

#include "tests/support/store_table.h"

/// A table for the recording store that answers for AccountSids and lists of them at next to no cost, and 0 for the rest.
StoreTable sidTable();

/// A list as the table's own functions make them: AccountSids numbered from the first on.
SidList* listOfAccounts(unsigned first, int count);

/// Releases a list; null is allowed.
void releaseAccounts(SidList* list);
