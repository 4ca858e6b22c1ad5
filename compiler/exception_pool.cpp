// The GNU C++ runtime keeps 73 KiB for exceptions that are thrown when memory is short. Linked into a library, it leaves
// them behind each time the library goes, and a host may load it anew with each of its panels.
#include <cstddef> // says which runtime it is

#ifdef __GLIBCXX__
namespace __gnu_cxx {
void __freeres() noexcept; // NOLINT: the runtime's own name
}

namespace {

struct PoolRelease {
    PoolRelease() = default;
    PoolRelease(const PoolRelease&) = delete;
    PoolRelease& operator=(const PoolRelease&) = delete;
    ~PoolRelease() { __gnu_cxx::__freeres(); }
};
const PoolRelease kAtTheEnd;

} // namespace
#endif
