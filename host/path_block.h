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
        : folders_(std::move(folders))
        , block_(1 + folders_.size())
    {
        list()->count = static_cast<int32_t>(folders_.size());
        wchar_t** path = list()->paths;
        for (std::wstring& folder : folders_) {
            *path++ = folder.data();
        }
    }
    PathBlock(const PathBlock&) = delete;
    PathBlock& operator=(const PathBlock&) = delete;

    /// Valid as long as this object.
    PathList* list() { return reinterpret_cast<PathList*>(block_.data()); }

private:
    std::vector<std::wstring> folders_;
    std::vector<void*> block_; // the count in the first slot, the pointers after it
};

} // namespace host
