#include "lornix/sizes/owner_sums.h"

#include "lornix/faults.h"
#include "lornix/sid.h"

#include <algorithm>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace lornix {
namespace {

constexpr std::size_t kBatch = 256;
/// Most threads beside the caller's. They mostly wait, for a disk, a server or their turn, so that four pay off on two
/// processors too; eight were no quicker than four there.
std::size_t mostHelpers()
{
    return std::clamp(std::thread::hardware_concurrency(), 4U, 8U) - 1;
}

/// A security descriptor with the owner alone, and room for the longest identifier.
struct Descriptor {
    alignas(SECURITY_DESCRIPTOR) BYTE bytes[sizeof(SECURITY_DESCRIPTOR) + SECURITY_MAX_SID_SIZE];
};

/// The longer way, for who may read more than his account: a name alone does not say that this is wanted.
DWORD readForBackup(const wchar_t* file, Descriptor& descriptor)
{
    const Handle open(CreateFileW(file, READ_CONTROL, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                  nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    DWORD needed = 0;
    return open && GetKernelObjectSecurity(open.get(), OWNER_SECURITY_INFORMATION, descriptor.bytes,
                                           sizeof descriptor, &needed)
               ? ERROR_SUCCESS
               : GetLastError();
}

/// @return 0 or a platform error.
DWORD read(const wchar_t* file, Descriptor& descriptor)
{
    DWORD needed = 0;
    if (GetFileSecurityW(file, OWNER_SECURITY_INFORMATION, descriptor.bytes, sizeof descriptor, &needed)) {
        return ERROR_SUCCESS;
    }
    const DWORD error = GetLastError();
    return error == ERROR_ACCESS_DENIED ? readForBackup(file, descriptor) : error;
}

struct File {
    std::wstring path;
    std::int64_t size;
};
using Batch = std::vector<File>;

void sumUp(const Batch& batch, OwnedBytes& sums)
{
    for (const File& file : batch) {
        Descriptor descriptor;
        const DWORD error = read(file.path.c_str(), descriptor);
        if (error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND) {
            continue; // gone meanwhile
        }
        if (error != ERROR_SUCCESS) {
            sums.unread.add(file.path, file.size, error);
            continue;
        }
        PSID owner = nullptr;
        BOOL isDefault = FALSE;
        if (GetSecurityDescriptorOwner(descriptor.bytes, &owner, &isDefault) && isSid(owner)) {
            auto found = sums.bySid.find(sidKey(owner));
            if (found == sums.bySid.end()) {
                found = sums.bySid.emplace(sidKey(owner), 0).first;
            }
            addSize(found->second, file.size);
        }
    }
}

/// Threads that take batches of files from a walk in turn.
class Work {
public:
    explicit Work(TreeWalk& walk)
        : m_walk(walk)
    {
        // The one that may read for backups: others would see another tree.
        if (!OpenThreadToken(GetCurrentThread(), TOKEN_IMPERSONATE, TRUE, m_token.put())) {
            m_token.reset();
        }
    }

    OwnedBytes run()
    {
        runThen([&] { share(); }, [&] { stop(); });
        if (m_exception != nullptr) {
            std::rethrow_exception(m_exception);
        }
        if (m_fault != 0) {
            RaiseException(m_fault, EXCEPTION_NONCONTINUABLE, 0, nullptr);
        }
        return std::move(m_sums);
    }

private:
    bool takeBatch(Batch& batch)
    {
        batch.clear();
        m_guard.lock();
        runThen(
            [&] {
                while (!m_isEnd && batch.size() < kBatch) {
                    m_isEnd = !m_walk.next();
                    if (!m_isEnd && m_walk.size() != 0) { // otherwise it does not matter whose it is
                        batch.push_back({m_walk.path(), m_walk.size()});
                    }
                }
                if (!m_isEnd && m_helpers.size() < m_mostHelpers) {
                    startHelper();
                }
            },
            [&] { m_guard.unlock(); });
        return !batch.empty();
    }

    void startHelper()
    {
        try {
            m_helpers.emplace_back([this] { help(); });
        } catch (const std::system_error&) {
            m_mostHelpers = m_helpers.size(); // those that there are will do
        }
    }

    void share()
    {
        OwnedBytes sums;
        for (Batch batch; takeBatch(batch);) {
            sumUp(batch, sums);
        }
        const std::lock_guard lock(m_guard);
        m_sums.add(sums);
    }

    void help()
    {
        std::exception_ptr exception;
        const DWORD fault = faultOf([&] {
            try {
                SetThreadToken(nullptr, m_token.get());
                share();
            } catch (...) {
                exception = std::current_exception();
            }
        });
        if (fault != 0 || exception != nullptr) {
            const std::lock_guard lock(m_guard);
            m_isEnd = true;
            m_fault = fault;
            m_exception = exception;
        }
    }

    void stop()
    {
        {
            const std::lock_guard lock(m_guard);
            m_isEnd = true;
        }
        for (std::thread& helper : m_helpers) {
            helper.join();
        }
        m_token.reset();
    }

    Owned<HANDLE, CloseHandle> m_token;
    std::mutex m_guard; // of all below
    TreeWalk& m_walk;
    bool m_isEnd = false;
    std::size_t m_mostHelpers = mostHelpers();
    std::vector<std::thread> m_helpers;
    OwnedBytes m_sums;
    DWORD m_fault = 0;
    std::exception_ptr m_exception;
};

} // namespace

void OwnedBytes::add(const OwnedBytes& others)
{
    for (const auto& [sid, bytes] : others.bySid) {
        addSize(bySid[sid], bytes);
    }
    unread.add(others.unread);
}

std::int64_t OwnedBytes::of(const std::vector<std::string>& owners) const
{
    std::int64_t sum = 0;
    for (const std::string& owner : owners) {
        const auto found = bySid.find(owner);
        addSize(sum, found == bySid.end() ? 0 : found->second);
    }
    return sum;
}

OwnedBytes sumOwners(TreeWalk& walk)
{
    return Work(walk).run();
}

} // namespace lornix
