// Random acts on the editors, their entry dialogs and the choosers; in half of the rounds the store faults at random.
#include "tests/stress/dialogs.h"
#include "tests/stress/monkey.h"
#include "tests/stress/stress.h"
#include "tests/support/dialog_script.h"
#include "tests/support/faulting_call.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <memory>
#include <random>

namespace {

constexpr int kRoundsPerStore = 50;
constexpr int kActsPerRound = 60;
constexpr Fault kFaults[] = {Fault::AccessViolation, Fault::DivideByZero, Fault::CppException,
                             Fault::ForeignException};

/// Raises something at one in so many calls.
class RandomFaults {
public:
    RandomFaults(RecordingStore& store, std::uint32_t seed)
        : m_store(store)
        , m_random(seed)
    {
        store.faultFor = [this](const char*) {
            if (m_random() % 30 != 0) {
                return Fault::None;
            }
            ++m_raised;
            return kFaults[m_random() % std::size(kFaults)];
        };
    }
    RandomFaults(const RandomFaults&) = delete;
    RandomFaults& operator=(const RandomFaults&) = delete;
    ~RandomFaults() { m_store.faultFor = nullptr; }

    int raised() const { return m_raised; }

private:
    RecordingStore& m_store;
    std::mt19937 m_random;
    int m_raised = 0;
};

int countOf(const std::vector<std::string>& calls, const std::string& part)
{
    return static_cast<int>(std::count_if(calls.begin(), calls.end(), [&](const std::string& call) {
        return call.find(part) != std::string::npos;
    }));
}

/// What the calls of an editor without faults must come to.
void expectListGivenBack(const OpenedDialog& dialog, const std::vector<std::string>& calls)
{
    if (dialog.load.empty()) {
        return;
    }
    EXPECT_EQ(std::count(calls.begin(), calls.end(), dialog.load), 1);
    EXPECT_EQ(std::count(calls.begin(), calls.end(), dialog.free), 1);
}

} // namespace

TEST(EditorsMonkey, Survives)
{
    Monkey monkey(stress::seed());
    std::unique_ptr<DialogWorld> world;
    int faults = 0;
    int crashes = 0;
    for (int round = 0; monkey.acts() < stress::count() && !HasFailure(); ++round) {
        if (round % kRoundsPerStore == 0) {
            world.reset();
            world = std::make_unique<DialogWorld>(monkey.below(60));
        }
        RecordingStore& store = world->store;
        store.takeCalls();
        DialogWorld::ownChooser = monkey.below(2) == 0;
        const auto& dialogs = DialogWorld::dialogs();
        const OpenedDialog& dialog =
            dialogs[static_cast<std::size_t>(monkey.below(static_cast<int>(dialogs.size())))];
        const bool faulty = round % 2 == 1;
        SCOPED_TRACE("round " + std::to_string(round) + ", " + dialog.name + (faulty ? ", faulty" : ""));

        int raised = 0;
        DWORD escaped = 0;
        {
            std::unique_ptr<RandomFaults> random;
            if (faulty) {
                random =
                    std::make_unique<RandomFaults>(store, stress::seed() + static_cast<std::uint32_t>(round));
            }
            escaped = faultOf([&] { monkey.play({}, kActsPerRound, dialog.open); });
            world->fills.forget();
            if (faulty) {
                raised = random->raised();
            }
        }
        EXPECT_EQ(escaped, 0u) << "after " << monkey.last();
        EXPECT_TRUE(DialogScript::dialogs().empty());
        const std::vector<std::string> calls = store.takeCalls();
        const int told = countOf(calls, "UI CRASH") + countOf(calls, "sigsegv");
        EXPECT_LE(told, raised) << "after " << monkey.last();
        if (!faulty) {
            expectListGivenBack(dialog, calls);
        }
        faults += raised;
        crashes += told;
    }
    std::printf("%lld acts, %d faults raised, %d of them told\n", monkey.acts(), faults, crashes);
}
