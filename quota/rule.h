// The quota rule record: making one, telling rules apart.
#pragma once

#include "corvane_types.h"
#include "store/owned.h"

/// Memory for a record, with nothing in it yet; null when memory is short.
CBlock<QuotaRule> ruleMemory();

/// Makes a record with a copy of the folder and of the account; limits and use are unknown (-1), the links
/// null.
/// @param memory  where, from ruleMemory; null gives null.
/// @param sid     account, null for anyone; copied through the store.
/// @return the record, a malloc block that passes to the caller; null when memory is short.
QuotaRule* newRule(CBlock<QuotaRule> memory, const wchar_t* path, const void* sid);

/// Whether two accounts are the same; the store compares them unless the pointers are equal.
bool sameAccount(const void* a, const void* b);

/// Whether two records agree in limits and path, letter by letter. QUIRK: a fill after a rule was added, whose path has
/// other slashes since, shows the rule once more. ListFillTest.KnowsFoldersLetterByLetter
bool sameLimitsAndFolder(const QuotaRule& a, const QuotaRule& b);

/// Whether two records tell the same rule: limits, path, account, in that order.
bool sameRule(const QuotaRule& a, const QuotaRule& b);

/// Whether a rule for this account on this folder would contradict an existing one.
///
/// When the accounts are equal, backslashes of both paths become forward slashes, in place and for good,
/// before the paths are compared without regard to case. QUIRK: hosts store the paths in the form that the
/// comparison leaves behind. ListAddTest.SlashesAreRewrittenInPlaceWhenAccountsAreEqual
bool conflicts(const void* sid, wchar_t* path, QuotaRule& existing);
