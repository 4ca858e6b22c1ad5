// The file with all rules, and what was read of it last: it is taken apart again only after it changed.
#pragma once

#include "lornix/disk/kept_file.h"
#include "lornix/rules/rule_book.h"

namespace lornix {

/// Used by the host's user-interface thread alone.
class RuleFile {
public:
    explicit RuleFile(const DataFolder& data);

    /// @return null with a report when it cannot be read; valid until it is read or replaced again.
    const RuleBook* read(Patience& patience);

    /// Puts a book in the place of the one that was read. The caller holds the lock.
    /// @return the book, as for read; null with a report when the file is as it was.
    const RuleBook* replace(RuleBook book, Patience& patience);

private:
    /// Whether the file is still the one in memory.
    bool isRemembered(Patience& patience) const;

    KeptFile m_file;
};

} // namespace lornix
