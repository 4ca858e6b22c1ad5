// Folders in the form that the exports of corvane and lornix take.
#pragma once

#include "corvane_types.h"

#include <string>
#include <vector>

namespace host {

/// A PathList over its own copies of some folder names. addToListCtrl rewrites the slashes of the strings it
/// is given, so it must never get the host's own.
class PathBlock {
public:
    explicit PathBlock(std::vector<std::wstring> folders)
        : m_folders(std::move(folders))
        , m_block(1 + m_folders.size())
    {
        list()->count = static_cast<int32_t>(m_folders.size());
        wchar_t** path = list()->paths;
        for (std::wstring& folder : m_folders) {
            *path++ = folder.data();
        }
    }
    PathBlock(const PathBlock&) = delete;
    PathBlock& operator=(const PathBlock&) = delete;

    /// Valid as long as this object.
    PathList* list() { return reinterpret_cast<PathList*>(m_block.data()); }

private:
    std::vector<std::wstring> m_folders;
    std::vector<void*> m_block; // the count in the first slot, the pointers after it
};

} // namespace host
