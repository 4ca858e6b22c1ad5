// The file with all rules, and what was read of it last: it is taken apart again only after it changed.
#pragma once

#include "lornix/disk/kept_file.h"
#include "lornix/rules/rule_book.h"

#include <utility>

namespace lornix {

/// Used by the host's user-interface thread alone.
class RuleFile {
public:
    explicit RuleFile(const DataFolder& data);

    /// @return null with a report when it cannot be read; valid until it is read again or changed.
    const RuleBook* read(Patience& patience);

    /// Changes the book that was read, and the file. The caller holds the lock.
    /// @return false with a report when the file is as it was.
    template <class Change>
    bool change(Change change, Patience& patience)
    {
        RuleBook book = take(); // what goes wrong midway is forgotten, and the file read again
        change(book);
        return replace(std::move(book), patience);
    }

private:
    /// Whether the file is still the one in memory.
    bool isRemembered(Patience& patience) const;
    RuleBook take();
    bool replace(RuleBook book, Patience& patience);

    KeptFile m_file;
};

} // namespace lornix
