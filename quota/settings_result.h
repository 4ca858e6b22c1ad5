// The Quota Settings dialog as the list uses it.
#pragma once

#include "corvane.h"
#include "frame/narrow_handle.h"

/// Shows the dialog on a record.
/// @return the record after OK; null when cancelled, not shown, or ended by somebody else with a code of his own.
inline QuotaRule* runSettings(HWND owner, QuotaRule* rule, int mode)
{
    const INT_PTR code = editQuotaListEntry(owner, rule, mode);
    return code != 0 && code == NarrowHandle::of(rule).carrier() ? rule : nullptr;
}
