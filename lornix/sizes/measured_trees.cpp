#include "lornix/sizes/measured_trees.h"

#include <algorithm>
#include <utility>

namespace lornix {
namespace {

constexpr std::size_t kMostTrees = 64;
constexpr ULONGLONG kMoment = 1000; // milliseconds

} // namespace

std::list<MeasuredTrees::Tree>::iterator MeasuredTrees::treeOf(const std::u16string& folder)
{
    return std::find_if(m_trees.begin(), m_trees.end(),
                        [&](const Tree& tree) { return tree.folder == folder; });
}

bool MeasuredTrees::knows(const std::u16string& folder)
{
    const std::lock_guard lock(m_guard);
    return treeOf(folder) != m_trees.end();
}

std::shared_ptr<const OwnedBytes> MeasuredTrees::find(const std::u16string& folder, const TreeLook& look)
{
    const std::lock_guard lock(m_guard);
    const auto tree = treeOf(folder);
    if (tree == m_trees.end() || tree->look != look) {
        return nullptr;
    }
    m_trees.splice(m_trees.begin(), m_trees, tree);
    return tree->bytes;
}

void MeasuredTrees::keep(const std::u16string& folder, const TreeLook& look,
                         std::shared_ptr<const OwnedBytes> bytes)
{
    const std::lock_guard lock(m_guard);
    if (const auto tree = treeOf(folder); tree != m_trees.end()) {
        m_trees.erase(tree);
    }
    m_trees.push_front({folder, look, std::move(bytes)});
    if (m_trees.size() > kMostTrees) {
        m_trees.pop_back();
    }
}

void LastWalk::keep(const std::u16string& folder, std::uint64_t folderTime, const Walked& walked)
{
    const std::lock_guard lock(m_guard);
    m_kept = {folder, folderTime, GetTickCount64(), walked};
}

std::optional<Walked> LastWalk::take(const std::u16string& folder, std::uint64_t folderTime)
{
    const std::lock_guard lock(m_guard);
    const auto kept = std::exchange(m_kept, std::nullopt);
    if (!kept || kept->folder != folder || kept->folderTime != folderTime ||
        GetTickCount64() - kept->ticks > kMoment)
    {
        return std::nullopt;
    }
    return kept->walked;
}

} // namespace lornix
