#include "lornix/sizes/owner_sums.h"

#include "lornix/disk/file.h"
#include "lornix/sid.h"
#include "lornix/sizes/backup_right.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace lornix {
namespace {

constexpr std::size_t kBatch = 256;
constexpr std::size_t kMostWaiting = 64; // batches

/// Most threads beside the caller's. They mostly wait, for a disk, a server or their turn, so that four pay off on two
/// processors too; eight were no quicker than four there.
std::size_t helpers()
{
    return std::clamp(std::thread::hardware_concurrency(), 4U, 8U) - 1;
}

/// A file's security descriptor with the owner alone, and room for the longest identifier.
class Descriptor {
public:
    /// @return 0 or a platform error.
    DWORD read(const wchar_t* file)
    {
        DWORD needed = 0;
        if (GetFileSecurityW(file, OWNER_SECURITY_INFORMATION, m_bytes, sizeof m_bytes, &needed)) {
            return ERROR_SUCCESS;
        }
        const DWORD error = GetLastError();
        return error == ERROR_ACCESS_DENIED ? readForBackup(file) : error;
    }

    /// @return null when the file has none.
    PSID owner()
    {
        PSID sid = nullptr;
        BOOL isDefault = FALSE;
        return GetSecurityDescriptorOwner(m_bytes, &sid, &isDefault) && isSid(sid) ? sid : nullptr;
    }

private:
    /// The longer way, for who may read more than his account: a name alone does not say that this is wanted.
    DWORD readForBackup(const wchar_t* file)
    {
        const Handle open(CreateFileW(file, READ_CONTROL,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                      OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
        DWORD needed = 0;
        if (open &&
            GetKernelObjectSecurity(open.get(), OWNER_SECURITY_INFORMATION, m_bytes, sizeof m_bytes, &needed))
        {
            return ERROR_SUCCESS;
        }
        return GetLastError();
    }

    alignas(SECURITY_DESCRIPTOR) BYTE m_bytes[sizeof(SECURITY_DESCRIPTOR) + SECURITY_MAX_SID_SIZE];
};

} // namespace

OwnerSums::OwnerSums()
    : m_mostThreads(helpers())
{
}

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

void OwnerSums::add(const std::wstring& file, std::int64_t size)
{
    if (size == 0) {
        return; // whoever owns it
    }
    m_next.push_back({file, size});
    if (m_next.size() == kBatch) {
        hand(std::exchange(m_next, {}));
    }
}

void OwnerSums::hand(Batch batch)
{
    std::size_t waiting = 0;
    {
        const std::lock_guard lock(m_guard);
        m_waiting.push_back(std::move(batch));
        waiting = m_waiting.size();
    }
    m_changed.notify_one();
    if (waiting > 1 && m_threads.size() < m_mostThreads) {
        startThread();
    }
    if (waiting > kMostWaiting && takeBatch(batch, false)) {
        sumUp(batch, m_sums);
    }
    rethrow();
}

void OwnerSums::startThread()
{
    try {
        m_threads.emplace_back([this] { work(); });
    } catch (const std::system_error&) {
        m_mostThreads = m_threads.size(); // those that there are will do
    }
}

bool OwnerSums::takeBatch(Batch& batch, bool wait)
{
    std::unique_lock lock(m_guard);
    if (wait) {
        m_changed.wait(lock, [this] { return m_isEnd || !m_waiting.empty(); });
    }
    if (m_waiting.empty()) {
        return false;
    }
    batch = std::move(m_waiting.front());
    m_waiting.pop_front();
    return true;
}

void OwnerSums::work()
{
    OwnedBytes sums;
    std::exception_ptr exception;
    const DWORD fault = faultOf([&] {
        try {
            withBackupRight([&] {
                for (Batch batch; takeBatch(batch, true);) {
                    sumUp(batch, sums);
                }
            });
        } catch (...) {
            exception = std::current_exception();
        }
    });
    const std::lock_guard lock(m_guard);
    if (fault != 0 || exception != nullptr) {
        m_fault = fault;
        m_exception = exception;
        m_waiting.clear();
        return;
    }
    try {
        m_others.add(sums);
    } catch (...) {
        m_exception = std::current_exception();
    }
}

void OwnerSums::sumUp(const Batch& batch, OwnedBytes& sums)
{
    for (const File& file : batch) {
        Descriptor descriptor;
        const DWORD error = descriptor.read(file.path.c_str());
        if (error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND) {
            continue; // gone meanwhile
        }
        if (error != ERROR_SUCCESS) {
            sums.unread.add(file.path, file.size, error);
        } else if (const PSID owner = descriptor.owner()) {
            const std::string_view key = sidKey(owner);
            auto found = sums.bySid.find(key);
            if (found == sums.bySid.end()) {
                found = sums.bySid.emplace(key, 0).first;
            }
            addSize(found->second, file.size);
        }
    }
}

OwnedBytes OwnerSums::finish()
{
    for (Batch batch; takeBatch(batch, false);) {
        sumUp(batch, m_sums);
    }
    sumUp(m_next, m_sums);
    m_next.clear();
    stop();
    rethrow();
    m_sums.add(m_others);
    return std::move(m_sums);
}

void OwnerSums::stop()
{
    {
        const std::lock_guard lock(m_guard);
        m_isEnd = true;
        m_waiting.clear(); // nobody asks for the sums of what was broken off
    }
    m_changed.notify_all();
    for (std::thread& thread : m_threads) {
        thread.join();
    }
    m_threads.clear();
}

void OwnerSums::rethrow()
{
    std::unique_lock lock(m_guard);
    if (const std::exception_ptr exception = m_exception) {
        lock.unlock();
        std::rethrow_exception(exception);
    }
    if (const DWORD fault = m_fault; fault != 0) {
        lock.unlock();
        RaiseException(fault, EXCEPTION_NONCONTINUABLE, 0, nullptr);
    }
}

} // namespace lornix
