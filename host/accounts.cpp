#include "host/accounts.h"

#include "host/folder_name.h"
#include "host/owned.h"

#include <aclapi.h>

#include <cstdlib>
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
    const Owned<void, LocalFree> block(descriptor);
    const auto* bytes = static_cast<const unsigned char*>(owner);
    return owner == nullptr ? Sid() : Sid(bytes, bytes + GetLengthSid(owner));
}

/// Shows the wait cursor as long as it lives.
class Waiting {
public:
    Waiting()
        : m_before(SetCursor(LoadCursorW(nullptr, MAKEINTRESOURCEW(32514)))) // IDC_WAIT, as a wide name
    {
    }
    ~Waiting() { SetCursor(m_before); }
    Waiting(const Waiting&) = delete;
    Waiting& operator=(const Waiting&) = delete;

private:
    HCURSOR m_before;
};

/// Looks for those who own files and folders, each once, in the order of being met.
class OwnerSearch {
public:
    /// @param folder  in the form that may have any length.
    void lookAt(const std::wstring& folder)
    {
        std::vector<std::wstring> waiting{folder}; // a stack of its own: folders may be nested deeply
        while (!waiting.empty() && m_seen < kMostFiles) {
            const std::wstring next = std::move(waiting.back());
            waiting.pop_back();
            lookInto(next, waiting);
        }
    }

    std::vector<Sid> owners() && { return std::move(m_owners); }

private:
    void lookInto(const std::wstring& folder, std::vector<std::wstring>& waiting)
    {
        const bool isRoot = folder.ends_with(L'\\');
        const std::wstring start = isRoot ? folder : folder + L'\\';
        WIN32_FIND_DATAW entry{};
        const HANDLE first = FindFirstFileW((start + L'*').c_str(), &entry);
        if (first == INVALID_HANDLE_VALUE) {
            return; // what cannot be read has no owners to offer
        }
        const Owned<void, FindClose> find(first);
        do {
            const std::wstring name = entry.cFileName;
            if (name == L"." || name == L"..") {
                continue;
            }
            ++m_seen;
            note(ownerOf(start + name));
            // A link may lead back to where the search comes from.
            const bool isLink = (entry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
                                IsReparseTagNameSurrogate(entry.dwReserved0);
            if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 && !isLink) {
                waiting.push_back(start + name);
            }
        } while (m_seen < kMostFiles && FindNextFileW(first, &entry));
    }

    void note(Sid owner)
    {
        if (!owner.empty() && m_known.insert(ownerKey(owner)).second) {
            m_owners.push_back(std::move(owner));
        }
    }

    std::vector<Sid> m_owners;
    std::set<std::wstring> m_known;
    int m_seen = 0;
};

/// Who owns what is in some folders.
std::vector<Sid> ownersIn(const std::vector<std::wstring>& folders)
{
    const Waiting waiting;
    OwnerSearch search;
    for (const std::wstring& folder : folders) {
        search.lookAt(longForm(fullPath(folder)));
    }
    return std::move(search).owners();
}

/// Takes what the library's chooser gave; a SID is ours then. A chooser that cannot be shown gives its last answer
/// once more, so that one is kept until there is another: it is never released twice, and known again.
AccountChoice taken(void* value)
{
    static Owned<void, std::free> last; // the shared C runtime's, like the store's malloc
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
