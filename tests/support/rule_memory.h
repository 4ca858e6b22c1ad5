// Rule records at chosen addresses.
#pragma once

#include "tests/support/import_patch.h"

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

/// While it lives, the library gets its rule records from one of the functions above, wherever the heap lies: below
/// 4 GiB a row's item data is the record's address, above it is a stand-in.
class LibraryRecords {
public:
    explicit LibraryRecords(QuotaRule* (*make)());
    ~LibraryRecords();
    LibraryRecords(const LibraryRecords&) = delete;
    LibraryRecords& operator=(const LibraryRecords&) = delete;

private:
    ImportPatch m_take;
    ImportPatch m_give;
};

} // namespace rule_memory
