// A quota rule as a row of the list.
#pragma once

#include "corvane_types.h"
#include "frame/list_ctrl.h"

#include <array>

/// Columns of the quota list, in order.
namespace rule_column {
inline constexpr int kCredentials = 0;
inline constexpr int kHardLimit = 1;
inline constexpr int kSoftLimit = 2;
inline constexpr int kInUse = 3;
inline constexpr int kPercent = 4;
inline constexpr int kFolder = 5;
} // namespace rule_column

/// The platform keeps the first column left-aligned whatever it is told. The fifth heading is two percent
/// signs.
inline constexpr std::array kRuleColumns{ListColumn{L"Credentials", LVCFMT_RIGHT, 100},
                                         ListColumn{L"Quota Limit", LVCFMT_RIGHT, 50},
                                         ListColumn{L"Soft Quota Limit", LVCFMT_RIGHT, 50},
                                         ListColumn{L"In Use", LVCFMT_RIGHT, 50},
                                         ListColumn{L"%%", LVCFMT_RIGHT, 40},
                                         ListColumn{L"Defined in", LVCFMT_RIGHT, 100}};

/// Characters of an account's name or textual SID, with the terminator.
inline constexpr int kAccountNameCapacity = 128;

/// The name shown for an account.
struct AccountName {
    wchar_t text[kAccountNameCapacity] = {};
};

/// "Anyone" for null; empty for an account without a name.
AccountName accountName(const void* sid);

/// As accountName, but an account without a name shows its textual SID.
AccountName accountNameOrSid(const void* sid);

/// Inserts a row, with every cell but the percentage, and the record's handle as item data.
/// @param index  where, in a list without an order of its own.
/// @return the row's index.
int insertRuleRow(const CListCtrl& list, int index, const QuotaRule& rule, const wchar_t* name);

/// Writes the percentage of a rule. A hard limit of 0 faults.
void showPercent(const CListCtrl& list, int row, const QuotaRule& rule);

/// Rewrites limits, use and percentage of a row.
void showNumbers(const CListCtrl& list, int row, const QuotaRule& rule);

/// The record of a row, null when the row carries none.
QuotaRule* ruleOfRow(const CListCtrl& list, int row);
