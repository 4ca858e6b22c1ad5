// Rules as a store of the host's own C runtime hands them out: on the heap, wherever that lies.
#pragma once

#include "corvane_types.h"

#include <string>

/// @param sid  becomes the record's.
QuotaRule* heapRule(const std::wstring& folder, void* sid, int64_t limit);

/// As the host does with what it no longer needs: the record, or a whole chain of them.
void releaseRule(QuotaRule* rule);
void releaseChain(QuotaRule* first);
