// Rule records at chosen addresses.
#pragma once

#include "corvane_types.h"

/// Records that a host might have anywhere; they last until the program ends.
namespace rule_memory {

/// A zeroed record above 4 GiB, its low half unlike that of the others.
QuotaRule* above4GiB();

/// A zeroed record below 4 GiB.
QuotaRule* below4GiB();

/// A zeroed record below 4 GiB, at an address that is negative as a 32-bit number.
QuotaRule* between2And4GiB();

bool isAbove4GiB(const void* address);

} // namespace rule_memory
