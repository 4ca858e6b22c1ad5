// The Quota Settings dialog as the list uses it.
#pragma once

#include "corvane.h"
#include "frame/narrow_handle.h"

/// Shows the dialog on a record. @return the record handed back, null when cancelled or not shown.
inline QuotaRule* runSettings(HWND owner, QuotaRule* rule, int mode)
{
    const INT_PTR code = editQuotaListEntry(owner, rule, mode);
    return code == 0 || code == -1 ? nullptr : NarrowHandle::fromCarrier(code).as<QuotaRule>();
}
