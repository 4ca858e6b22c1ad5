#include "accounts/fill_turn.h"

#include "accounts/account_sink.h"
#include "frame/lock.h"

#include <mutex>

namespace {

Lock turns;
CONDITION_VARIABLE changed = CONDITION_VARIABLE_INIT;
bool someoneHasIt = false;

// How often a list that waits is told so: it may have missed it, or have gone with its thread without a word.
constexpr DWORD kLookMilliseconds = 500;

} // namespace

FillTurn::~FillTurn()
{
    if (m_taken) {
        {
            const std::lock_guard lock(turns);
            someoneHasIt = false;
        }
        WakeAllConditionVariable(&changed);
    }
}

bool FillTurn::take(AccountSink& sink)
{
    for (bool told = false;; told = true) {
        {
            const std::lock_guard lock(turns);
            if (told && someoneHasIt && sink.alive()) {
                turns.wait(changed, kLookMilliseconds);
            }
            if (!someoneHasIt) {
                someoneHasIt = m_taken = true;
                return true;
            }
        }
        if (!sink.alive()) {
            return false;
        }
        sink.waitForTurn();
    }
}

void FillTurn::lookAgain()
{
    {
        const std::lock_guard lock(turns); // not between a look and the waiting
    }
    WakeAllConditionVariable(&changed);
}
