#include "accounts/row_queue.h"

#include "accounts/fill_turn.h"

#include <mutex>
#include <utility>

namespace {

// A list that does not take rows for a while, under a message box of the host, is not flooded meanwhile.
constexpr std::size_t kMostWaiting = 16384;
// How often a fill thread that waits for room makes sure that the window is still there.
constexpr DWORD kLookMilliseconds = 500;

} // namespace

bool RowQueue::alive()
{
    const std::lock_guard lock(m_lock);
    return m_list != nullptr;
}

int RowQueue::rowCount()
{
    const std::lock_guard lock(m_lock);
    return m_rowCount;
}

void RowQueue::insert(int index, int image, const wchar_t* account, const wchar_t* fullName,
                      const wchar_t* type, void* data)
{
    RowBatch::Entry entry{false, index, image, 0, AccountData(data)};
    m_texts.clear();
    for (const wchar_t* text : {account, fullName, type}) {
        m_texts += text != nullptr ? text : L"";
        m_texts += L'\0';
    }
    append(std::move(entry), m_texts);
}

void RowQueue::removeFirstInserted()
{
    append({true, 0, 0, 0, nullptr}, {});
}

void RowQueue::waitForTurn()
{
    const std::lock_guard lock(m_lock);
    m_waitsForTurn = true;
    notify();
}

void RowQueue::nameServers(const wchar_t* server, const wchar_t* server2)
{
    RowBatch::Servers servers{server != nullptr ? server : L"", server2 != nullptr ? server2 : L""};
    const std::lock_guard lock(m_lock);
    m_servers = std::move(servers);
}

void RowQueue::append(RowBatch::Entry entry, const std::wstring& texts)
{
    const std::lock_guard lock(m_lock);
    while (m_list != nullptr && m_waiting.entries.size() >= kMostWaiting) {
        waitForList();
    }
    if (m_list == nullptr) {
        return;
    }
    m_rowCount += entry.removesFirst ? -1 : 1;
    entry.texts = m_waiting.texts.size();
    m_waiting.texts += texts;
    m_waiting.entries.push_back(std::move(entry));
    if (!m_noticed) {
        notify();
    }
}

void RowQueue::end()
{
    const std::lock_guard lock(m_lock);
    m_ended = true;
    notify();
    while (m_list != nullptr) {
        waitForList();
    }
}

void RowQueue::waitForList()
{
    m_lock.wait(m_taken, kLookMilliseconds);
    if (m_owesNotice || (m_list != nullptr && !IsWindow(m_list))) {
        notify();
    }
}

// Under the lock, as is the closing: no notice goes to a window that is gone, or to the next one of that number.
void RowQueue::notify()
{
    m_noticed = m_list != nullptr && PostMessageW(m_list, m_notice, 0, 0);
    if (!m_noticed && !IsWindow(m_list)) {
        m_list = nullptr; // it went with its thread, without a word
    }
    m_owesNotice = !m_noticed;
}

RowBatch RowQueue::take()
{
    const std::lock_guard lock(m_lock);
    m_noticed = false;
    WakeAllConditionVariable(&m_taken);
    RowBatch batch = std::exchange(m_waiting, {});
    if (!batch.entries.empty()) {
        batch.servers = std::exchange(m_servers, std::nullopt);
    }
    return batch;
}

bool RowQueue::ended()
{
    const std::lock_guard lock(m_lock);
    return m_ended && m_waiting.entries.empty();
}

bool RowQueue::waitsForTurn()
{
    const std::lock_guard lock(m_lock);
    return m_waitsForTurn;
}

void RowQueue::remind()
{
    const std::lock_guard lock(m_lock);
    m_noticed = false;
    m_owesNotice = true;
}

void RowQueue::setRowCount(int rows)
{
    const std::lock_guard lock(m_lock);
    m_rowCount = rows;
    for (const RowBatch::Entry& entry : m_waiting.entries) {
        m_rowCount += entry.removesFirst ? -1 : 1;
    }
}

void RowQueue::close()
{
    RowBatch dropped;
    {
        const std::lock_guard lock(m_lock);
        m_list = nullptr;
        std::swap(dropped, m_waiting);
        WakeAllConditionVariable(&m_taken);
    }
    FillTurn::lookAgain();
}
