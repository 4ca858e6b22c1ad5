// A lock between threads.
#pragma once

#include "frame/platform.h"

/// For std::lock_guard. The C++ runtime's own mutex may leave a system handle behind with each one that two threads
/// ever met at; this one has none. Hold no memory of others under it: a fault would leave it locked.
class Lock {
public:
    Lock() = default;
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

    void lock() { AcquireSRWLockExclusive(&m_lock); }
    void unlock() { ReleaseSRWLockExclusive(&m_lock); }

    /// Unlocks, waits to be woken or for the time to pass, and locks again. May also wake for no reason.
    void wait(CONDITION_VARIABLE& woken, DWORD milliseconds)
    {
        SleepConditionVariableSRW(&woken, &m_lock, milliseconds, 0);
    }

private:
    SRWLOCK m_lock = SRWLOCK_INIT;
};
