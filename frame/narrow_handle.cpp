#include "frame/narrow_handle.h"

#include "frame/carrying_lists.h"
#include "frame/crash_guard.h"
#include "frame/lock.h"
#include "frame/low_memory.h"
#include "frame/stand_ins.h"

#include <atomic>
#include <mutex>
#include <optional>

namespace {

/// The stand-ins of all threads, and the lists that carry them.
class SharedStandIns {
public:
    /// @param list  that is to carry it; null for an end code.
    std::uint32_t of(const void* object, HWND list)
    {
        const DWORD thread = list != nullptr ? GetWindowThreadProcessId(list, nullptr) : GetCurrentThreadId();
        CarryingLists lists;
        {
            const std::lock_guard lock(m_lock);
            m_any = true;
            if (list != nullptr) {
                m_lists.remember(list);
            }
            if (const std::uint32_t value = m_standIns.known(object)) {
                return value;
            }
            if (!m_standIns.isFull()) {
                return m_standIns.add(object, thread);
            }
            m_standIns.putOff(); // for those who come meanwhile
            lists = m_lists;
        }
        // Not under the lock: a list asks its host, who may ask us.
        std::optional<StandIns::Carried> carried;
        runGuarded([&] { carried = lists.read(); });

        const std::lock_guard lock(m_lock);
        if (carried) {
            m_standIns.makeRoom(*carried);
            m_lists.tidy();
        }
        const std::uint32_t value = m_standIns.known(object);
        return value != 0 ? value : m_standIns.add(object, thread);
    }

    /// @param list  whose row carries it, null when none does.
    /// @return null for what is no stand-in, or no longer.
    const void* object(std::uint32_t value, HWND list, bool& isOne)
    {
        if (!m_any) {
            isOne = false;
            return nullptr;
        }
        const std::lock_guard lock(m_lock);
        isOne = m_standIns.isOne(value);
        if (isOne && list != nullptr) {
            m_lists.remember(list);
        }
        return isOne ? m_standIns.object(value) : nullptr;
    }

private:
    std::atomic<bool> m_any = false;
    Lock m_lock;
    StandIns m_standIns;
    CarryingLists m_lists;
};

SharedStandIns& standIns()
{
    static SharedStandIns all;
    return all;
}

} // namespace

NarrowHandle NarrowHandle::of(const void* object)
{
    return inRow(nullptr, object);
}

NarrowHandle NarrowHandle::inRow(HWND list, const void* object)
{
    return NarrowHandle(isBelowFourGiB(object)
                            ? static_cast<std::uint32_t>(reinterpret_cast<UINT_PTR>(object))
                            : standIns().of(object, list));
}

void* NarrowHandle::object(HWND list) const
{
    bool isStandIn = false;
    const void* const high = standIns().object(m_value, list, isStandIn);
    return isStandIn ? const_cast<void*>(high) : reinterpret_cast<void*>(static_cast<UINT_PTR>(m_value));
}
