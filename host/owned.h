// Owners of what the platform and the libraries give and take back by a function of theirs.
#pragma once

#include <memory>

namespace host {

template <auto release>
struct Releases {
    template <class T>
    void operator()(T* what) const
    {
        release(what);
    }
};

/// Gives something back by a function when it goes.
template <class T, auto release>
using Owned = std::unique_ptr<T, Releases<release>>;

} // namespace host
