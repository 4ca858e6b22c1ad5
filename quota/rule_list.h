// The quota rule list: what the host's quota page does with its list view.
#pragma once

#include "corvane_types.h"

class CListCtrl;

/// The operations behind the exports of the same meaning; corvane.h tells what each does.
namespace rule_list {

void initialize(const CListCtrl& list, const PathList* paths);
void fill(const CListCtrl& list, const PathList* paths);
bool add(const CListCtrl& list, const void* sid, const PathList* paths);
bool editSelected(const CListCtrl& list);
bool dropSelected(const CListCtrl& list);

/// Links the records of all rows in row order, and dumps the chain.
/// @return the record of the first row, null for an empty list.
QuotaRule* chain(const CListCtrl& list);

} // namespace rule_list
