// What was measured before.
#pragma once

#include "lornix/sizes/owner_sums.h"

#include <list>
#include <optional>

namespace lornix {

/// A walk that a size was just told from, for the bytes of its owners that are asked for next: a dialog asks for both,
/// one right after the other, and shows them side by side.
struct LastWalk {
    std::uint64_t folderTime; ///< when the folder itself was changed, before the walk
    std::uint64_t ticks;      ///< when it ended
    Walked walked;
};

/// The owners' bytes of a tree, good as long as a walk finds it as it was then.
struct MeasuredTree {
    std::u16string folder; ///< its key
    Walked walked;
    OwnedBytes owned;
    std::optional<LastWalk> last{};
};

/// Those that were measured last.
class MeasuredTrees {
public:
    /// @return null unless the tree was measured; valid until another one is kept.
    MeasuredTree* find(const std::u16string& folder);

    const OwnedBytes& keep(MeasuredTree tree);

private:
    std::list<MeasuredTree> m_trees; ///< the one used last in front
};

} // namespace lornix
