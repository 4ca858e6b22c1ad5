#include "host/accounts.h"

#include <aclapi.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <set>

namespace host {
namespace {

using Sid = std::vector<unsigned char>;

/// Looking at every file of a large share would keep the administrator waiting; the owners of this many will do.
constexpr int kMostFiles = 5000;

std::wstring ownerKey(const Sid& sid)
{
    return std::wstring(sid.begin(), sid.end());
}

/// The owner of a file; empty when it cannot be read.
Sid ownerOf(const std::wstring& file)
{
    PSID owner = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    if (GetNamedSecurityInfoW(const_cast<wchar_t*>(file.c_str()), SE_FILE_OBJECT, OWNER_SECURITY_INFORMATION,
                              &owner, nullptr, nullptr, nullptr, &descriptor) != ERROR_SUCCESS)
    {
        return {};
    }
    const std::unique_ptr<void, decltype(&LocalFree)> block(descriptor, LocalFree);
    const auto* bytes = static_cast<const unsigned char*>(owner);
    return owner == nullptr ? Sid() : Sid(bytes, bytes + GetLengthSid(owner));
}

/// Shows the wait cursor as long as it lives.
class Waiting {
public:
    Waiting()
        : before_(SetCursor(LoadCursorW(nullptr, MAKEINTRESOURCEW(32514)))) // IDC_WAIT, as a wide name
    {
    }
    ~Waiting() { SetCursor(before_); }
    Waiting(const Waiting&) = delete;
    Waiting& operator=(const Waiting&) = delete;

private:
    HCURSOR before_;
};

/// Who owns files under some folders, each once, in the order of being met.
std::vector<Sid> ownersIn(const std::vector<std::wstring>& folders)
{
    const Waiting waiting;
    std::vector<Sid> owners;
    std::set<std::wstring> known;
    int seen = 0;
    for (const std::wstring& folder : folders) {
        std::error_code error;
        using std::filesystem::directory_options;
        for (std::filesystem::recursive_directory_iterator
                 file(folder, directory_options::skip_permission_denied, error),
             end;
             !error && file != end && seen < kMostFiles; file.increment(error), ++seen)
        {
            Sid owner = ownerOf(file->path().wstring());
            if (!owner.empty() && known.insert(ownerKey(owner)).second) {
                owners.push_back(std::move(owner));
            }
        }
    }
    return owners;
}

struct Free {
    void operator()(void* block) const
    {
        std::free(block);
    } // the shared C runtime's, like the store's malloc
};

/// Takes what the library's chooser gave; a SID is ours then. A chooser that cannot be shown gives its last answer
/// once more, so that one is kept until there is another: it is never released twice, and known again.
AccountChoice taken(void* value)
{
    static std::unique_ptr<void, Free> last;
    if (value == nullptr || value == CORVANE_ANYONE) {
        return {value != nullptr, nullptr};
    }
    if (value == last.get()) {
        return {false, nullptr};
    }
    last.reset(value);
    return {true, value};
}

} // namespace

AccountChoice chooseAccount(HWND owner)
{
    return taken(chooseSidFromUserInput(owner));
}

AccountChoice chooseAccountOwnersFirst(HWND owner, const std::vector<std::wstring>& folders)
{
    std::vector<Sid> owners = ownersIn(folders);
    std::vector<void*> block(1 + owners.size()); // the count in the first slot, the pointers after it
    auto* list = reinterpret_cast<SidList*>(block.data());
    list->count = static_cast<int32_t>(owners.size());
    for (size_t i = 0; i < owners.size(); ++i) {
        block[1 + i] = owners[i].data();
    }
    return taken(chooseSidFromUserInput2(owner, list));
}

} // namespace host
