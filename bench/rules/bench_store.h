// What the recording store answers here: rules made up by the number.
#pragma once

#include "corvane_types.h"

/// What getQuotaList serves from now on.
/// @param rules      all rules together; at most 1,000,000.
/// @param folders    they are spread over this many folders evenly, each for another account.
/// @param sameLimit  whether all rules have one and the same limit.
void benchStoreServe(int rules, int folders, bool sameLimit);

/// How many members every group has from now on.
void benchStoreServeMembers(int members);

/// What getQuotaList gives.
QuotaRule* benchStoreRules(const wchar_t* folder);

/// Releases every record that was given so far.
void benchStoreReleaseAll();

/// How many folders have rules.
int benchStoreFolders();
