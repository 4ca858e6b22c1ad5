// A list of folders as a host hands it in.
#pragma once

#include "corvane_types.h"

#include <cstdlib>
#include <initializer_list>
#include <string>
#include <vector>

/// The strings are the list's own and may be rewritten in place.
class Paths {
public:
    Paths(std::initializer_list<std::wstring> folders)
        : folders_(folders)
    {
        list_ = static_cast<PathList*>(std::malloc(sizeof(PathList) + folders_.size() * sizeof(wchar_t*)));
        list_->count = static_cast<int32_t>(folders_.size());
        for (size_t i = 0; i < folders_.size(); ++i) {
            list_->paths[i] = folders_[i].data();
        }
    }
    ~Paths() { std::free(list_); }
    Paths(const Paths&) = delete;
    Paths& operator=(const Paths&) = delete;

    // NOLINTNEXTLINE: stands for a literal argument
    operator const PathList*() const { return list_; }

    const std::wstring& operator[](size_t index) const { return folders_[index]; }

private:
    std::vector<std::wstring> folders_;
    PathList* list_;
};
