// The records of a list's rows as one chain.
#pragma once

#include "corvane_types.h"

class CListCtrl;

/// Whether the list puts rows where its own order wants them.
bool sortsByItself(const CListCtrl& list);

/// Links the records of all rows in row order. @return the first, null for an empty list.
QuotaRule* relinkRows(const CListCtrl& list);
