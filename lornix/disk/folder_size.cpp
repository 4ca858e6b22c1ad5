// Bytes under a folder, of all files and of the files of some accounts.
#include "lornix/disk/folder_walk.h"
#include "lornix/last_error.h"
#include "lornix/sid.h"
#include "store/lornix.h"

#include <limits>
#include <string_view>
#include <unordered_set>

namespace lornix {
namespace {

/// Adds sizes; the sum stays at the largest number instead of turning negative.
class Sum {
public:
    void add(LONGLONG size)
    {
        constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
        total_ = size > kMost - total_ ? kMost : total_ + size;
    }
    std::int64_t total() const { return total_; }

private:
    std::int64_t total_ = 0;
};

std::string_view bytesOf(const void* sid)
{
    const auto bytes = sidBytes(sid);
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

class Accounts {
public:
    explicit Accounts(const SidList& list)
    {
        void* const* sids = list.sids;
        for (std::int32_t i = 0; i < list.count; ++i) {
            if (isSid(sids[i])) {
                accounts_.insert(bytesOf(sids[i])); // the list outlives the walk
            }
        }
    }
    bool areNone() const { return accounts_.empty(); }

    bool own(const std::wstring& file) const
    {
        // Asked by name and for the owner alone: the shortest way to it, with room for the longest identifier.
        alignas(SECURITY_DESCRIPTOR) BYTE descriptor[sizeof(SECURITY_DESCRIPTOR) + SECURITY_MAX_SID_SIZE];
        DWORD needed = 0;
        PSID owner = nullptr;
        BOOL isDefault = FALSE;
        return GetFileSecurityW(file.c_str(), OWNER_SECURITY_INFORMATION, descriptor, sizeof descriptor,
                                &needed) &&
               GetSecurityDescriptorOwner(descriptor, &owner, &isDefault) && isSid(owner) &&
               accounts_.contains(bytesOf(owner));
    }

private:
    std::unordered_set<std::string_view> accounts_;
};

/// @param counts  tells of each file whether it counts.
template <class Counts>
std::int64_t measure(const wchar_t* folder, Counts counts)
{
    return reporting<std::int64_t>(0, [&] {
        Sum sum;
        if (folder == nullptr || *folder == L'\0') {
            report(L"No folder was given to measure.");
            return sum.total();
        }
        FolderWalk walk(folder);
        if (walk.error() != ERROR_SUCCESS) {
            report(L"The folder \"" + std::wstring(folder) + L"\" cannot be measured: " +
                   reasonOf(walk.error()));
        }
        while (walk.next()) {
            if (counts(walk)) {
                sum.add(walk.size());
            }
        }
        return sum.total();
    });
}

} // namespace
} // namespace lornix

int64_t getRealSize(const wchar_t* folder)
{
    return lornix::measure(folder, [](const lornix::FolderWalk&) { return true; });
}

int64_t getRealSizeByOwner(const wchar_t* folder, const SidList* accounts)
{
    if (accounts == nullptr) {
        return 0;
    }
    return lornix::reporting<int64_t>(0, [&] {
        const lornix::Accounts owners(*accounts);
        return owners.areNone() ? 0 : lornix::measure(folder, [&](lornix::FolderWalk& walk) {
            return walk.size() != 0 && owners.own(walk.path());
        });
    });
}
