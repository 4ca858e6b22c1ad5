// The bytes of every owner of some files.
#pragma once

#include "lornix/sizes/tree_walk.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace lornix {

/// Bytes by owner, and the files whose owner could not be read.
struct OwnedBytes {
    std::map<std::string, std::int64_t, std::less<>> bySid; ///< by the bytes of the SID
    Unread unread;

    void add(const OwnedBytes& others);

    /// @param owners  binary SIDs, each once.
    std::int64_t of(const std::vector<std::string>& owners) const;
};

/// Goes to the end of a walk and adds up its files, several at a time: asking for an owner opens the file, which is
/// mostly waiting. The caller's thread helps, and does all by itself where there are few files; the others act for whom
/// it acts. A fault or an exception of any of the threads ends the work, and goes on in the caller's.
OwnedBytes sumOwners(TreeWalk& walk);

} // namespace lornix
