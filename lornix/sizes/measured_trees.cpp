#include "lornix/sizes/measured_trees.h"

#include <algorithm>

namespace lornix {

MeasuredTree* MeasuredTrees::find(const std::u16string& folder)
{
    const auto tree = std::ranges::find(m_trees, folder, &MeasuredTree::folder);
    if (tree == m_trees.end()) {
        return nullptr;
    }
    m_trees.splice(m_trees.begin(), m_trees, tree);
    return &*tree;
}

const OwnedBytes& MeasuredTrees::keep(MeasuredTree tree)
{
    constexpr std::size_t kMost = 64;
    std::erase_if(m_trees, [&](const MeasuredTree& other) { return other.folder == tree.folder; });
    m_trees.push_front(std::move(tree));
    if (m_trees.size() > kMost) {
        m_trees.pop_back();
    }
    return m_trees.front().owned;
}

} // namespace lornix
