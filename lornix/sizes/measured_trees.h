// What was measured before.
#pragma once

#include "lornix/sizes/owner_sums.h"

#include <list>
#include <memory>
#include <mutex>
#include <optional>

namespace lornix {

/// Remembers the owners' bytes of the trees that were measured last, each as long as a look at the tree finds it as it
/// was then. May be used on any thread.
class MeasuredTrees {
public:
    /// Whether a tree was measured at all: otherwise a look at it is of no use.
    bool knows(const std::u16string& folder);

    /// @return nothing unless the tree was measured and is unchanged.
    std::shared_ptr<const OwnedBytes> find(const std::u16string& folder, const TreeLook& look);

    void keep(const std::u16string& folder, const TreeLook& look, std::shared_ptr<const OwnedBytes> bytes);

private:
    struct Tree {
        std::u16string folder;
        TreeLook look;
        std::shared_ptr<const OwnedBytes> bytes;
    };
    std::list<Tree>::iterator treeOf(const std::u16string& folder);

    std::mutex m_guard;
    std::list<Tree> m_trees; ///< the last one used in front
};

/// A walk that a size was just told from, for the bytes of its owners that are asked for next: a dialog asks for both,
/// one right after the other, and shows them side by side.
class LastWalk {
public:
    /// @param folderTime  when the folder itself was changed, before the walk.
    void keep(const std::u16string& folder, std::uint64_t folderTime, const Walked& walked);

    /// @return the walk, once, unless it is of another tree, older than a moment, or the folder was changed since.
    std::optional<Walked> take(const std::u16string& folder, std::uint64_t folderTime);

private:
    struct Kept {
        std::u16string folder;
        std::uint64_t folderTime;
        std::uint64_t ticks;
        Walked walked;
    };
    std::mutex m_guard;
    std::optional<Kept> m_kept;
};

} // namespace lornix
