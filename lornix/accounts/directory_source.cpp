// Accounts that a file lists beside those of the platform.
#include "lornix/accounts/directory.h"
#include "lornix/accounts/source.h"
#include "lornix/disk/data_folder.h"
#include "lornix/disk/environment.h"
#include "lornix/last_error.h"
#include "lornix/sid.h"
#include "lornix/text/wide_text.h"

#include <memory>
#include <mutex>

namespace lornix {
namespace {

constexpr const wchar_t* kVariable = L"LORNIX_ACCOUNTS";
constexpr const wchar_t* kFileName = L"\\accounts.txt";

/// When a file was last changed; all zero for one that is not there.
struct Stamp {
    ULONGLONG time = 0;
    ULONGLONG size = 0;
    friend bool operator==(const Stamp&, const Stamp&) = default;
};

Stamp stampOf(const std::wstring& path)
{
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (!GetFileAttributesExW(longPath(path).c_str(), GetFileExInfoStandard, &data)) {
        return {};
    }
    return {joined(data.ftLastWriteTime), joined(data.nFileSizeHigh, data.nFileSizeLow)};
}

void tell(const std::wstring& path, const AccountDirectory& directory)
{
    if (directory.condition == Condition::kForeign) {
        ODS("lornix: accounts: \"%ls\" is no file of accounts\n", path.c_str());
    }
    for (const Flaw& flaw : directory.flaws.first) {
        ODS("lornix: accounts: line %lu of \"%ls\" is left out: %s\n", static_cast<unsigned long>(flaw.line),
            path.c_str(), flaw.reason);
    }
    if (const std::size_t more = directory.flaws.count - directory.flaws.first.size(); more != 0) {
        ODS("lornix: accounts: %lu more lines of \"%ls\" are left out\n", static_cast<unsigned long>(more),
            path.c_str());
    }
}

/// @param isExpected  whether a missing file is worth a line.
/// @return null for a file that is there and cannot be read now.
std::shared_ptr<const AccountDirectory> load(const std::wstring& path, bool isExpected)
{
    std::string bytes;
    Patience patience = Patience::toRead();
    const DWORD error = readFile(path, bytes, patience);
    if (error != ERROR_SUCCESS) {
        const bool isMissing = error == ERROR_FILE_NOT_FOUND;
        if (!isMissing || isExpected) {
            ODS("lornix: accounts: \"%ls\" cannot be read: %ls\n", path.c_str(), reasonOf(error).c_str());
        }
        return isMissing ? std::make_shared<const AccountDirectory>() : nullptr;
    }
    auto directory = std::make_shared<const AccountDirectory>(bytes);
    tell(path, *directory);
    return directory;
}

std::u16string serverName(const wchar_t* server)
{
    return server == nullptr ? std::u16string() : fromWide(server);
}

class FileAccounts final : public AccountSource {
public:
    bool answersAlone(const wchar_t* server) override
    {
        return server != nullptr && loaded()->hasServer(fromWide(server));
    }

    void addUsers(const wchar_t* server, SidSink& sink) override { add(server, AccountKind::kUser, sink); }
    void addGroups(const wchar_t* server, SidSink& sink) override { add(server, AccountKind::kGroup, sink); }

    void addMembers(const wchar_t* server, const std::wstring& group, SidSink& sink) override
    {
        // Whoever has not asked a server yet asks this machine, and it knows the groups of its domain too.
        const auto directory = fresh();
        if (server == nullptr || directory->hasServer(fromWide(server))) {
            std::vector<Sid> users;
            directory->usersOfGroup(fromWide(group), users);
            addAll(users, sink);
        }
    }

    std::wstring nameOf(const void* sid) override
    {
        const auto directory = loaded();
        const std::u16string* name = directory->nameOf(sidBytes(sid));
        return name == nullptr ? std::wstring() : toWide(*name);
    }

    void* sidOf(const std::wstring& name) override
    {
        const auto directory = loaded();
        return copyOf(directory->sidOf(fromWide(name)));
    }

    std::wstring domainServer() override
    {
        const auto directory = fresh();
        const std::u16string* server = directory->firstServer();
        return server == nullptr ? std::wstring() : toWide(*server);
    }

    std::wstring secondServer(const std::wstring& server) override
    {
        const auto directory = loaded();
        const std::u16string* second = directory->serverBehind(fromWide(server));
        return second == nullptr ? std::wstring() : toWide(*second);
    }

    void* domainSid() override { return copyOf(fresh()->domainSid()); }

private:
    using Directory = std::shared_ptr<const AccountDirectory>;

    static void* copyOf(const Sid* sid) { return sid == nullptr ? nullptr : sidDup(sid->bytes().data()); }

    static void addAll(const std::vector<Sid>& sids, SidSink& sink)
    {
        for (const Sid& sid : sids) {
            sink.add(sid.bytes().data());
        }
    }

    void add(const wchar_t* server, AccountKind kind, SidSink& sink)
    {
        addAll(fresh()->accountsOf(serverName(server), kind), sink);
    }

    /// What was read last. A hundred thousand names are asked for in a row, too many to look at the file each time.
    Directory loaded() { return get(false); }

    /// The same, read again when the file was changed.
    Directory fresh() { return get(true); }

    Directory get(bool lookForChanges)
    {
        std::wstring path = environmentValue(kVariable);
        const bool isNamed = !path.empty();
        if (!isNamed) {
            const std::wstring root = DataFolder::currentRoot();
            path = root.empty() ? root : root + kFileName;
        }
        const std::lock_guard lock(m_guard);
        if (path != m_path) {
            m_directory = std::make_shared<const AccountDirectory>(); // none of another file's accounts
            m_path = path;
            m_nextLook = 0;
            m_isRead = false;
        }
        if (m_isRead ? lookForChanges && stampOf(path) != m_stamp : GetTickCount64() >= m_nextLook) {
            const Stamp stamp = stampOf(path); // before it is read: a change meanwhile is seen next time
            if (Directory read = load(path, isNamed)) {
                m_directory = std::move(read);
                m_stamp = stamp;
                m_isRead = true;
            } else {
                // Who has the file lets it go again. What was read before counts until then.
                constexpr ULONGLONG kPause =
                    1000; // milliseconds: a hundred thousand names do not wait for it in turn
                m_nextLook = GetTickCount64() + kPause;
                m_isRead = false;
            }
        }
        return m_directory;
    }

    std::mutex m_guard;
    std::wstring m_path;
    Directory m_directory = std::make_shared<const AccountDirectory>();
    Stamp m_stamp;
    bool m_isRead = false;    ///< whether the directory is what the file held at the time of the stamp
    ULONGLONG m_nextLook = 0; ///< when a file that could not be read is tried again, in ticks
};

} // namespace

AccountSource& fileAccounts()
{
    static FileAccounts accounts;
    return accounts;
}

} // namespace lornix
