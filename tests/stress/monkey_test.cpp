// Random acts on all dialogs and what opens from them; in half of the rounds the store faults at random.
#include "tests/stress/dialogs.h"
#include "tests/stress/directory.h"
#include "tests/stress/monkey.h"
#include "tests/stress/stress.h"
#include "tests/support/dialog_script.h"
#include "tests/support/faulting_call.h"
#include "tests/support/window_text.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <random>

namespace {

constexpr int kRoundsPerStore = 50;
constexpr int kActsPerRound = 150;
constexpr Fault kFaults[] = {Fault::kAccessViolation, Fault::kDivideByZero, Fault::kCppException,
                             Fault::kForeignException};

/// Raises something at one in so many calls.
class RandomFaults {
public:
    RandomFaults(RecordingStore& store, std::uint32_t seed)
        : m_store(store)
        , m_random(seed)
    {
        store.faultFor = [this](const char*) {
            if (m_random() % 30 != 0) {
                return Fault::kNone;
            }
            ++m_raised;
            ++all;
            return kFaults[m_random() % std::size(kFaults)];
        };
    }
    RandomFaults(const RandomFaults&) = delete;
    RandomFaults& operator=(const RandomFaults&) = delete;
    ~RandomFaults() { m_store.faultFor = nullptr; }

    /// In all rounds.
    static inline std::atomic<int> all = 0;

    int raised() const { return m_raised; }

private:
    RecordingStore& m_store;
    std::mt19937 m_random;
    int m_raised = 0;
};

/// Lines that only a fault explains.
int toldOf(const std::vector<std::string>& calls)
{
    static const char* const kParts[] = {"UI CRASH", "sigsegv", "SIGSEGV", "FAIL in comparison",
                                         "No CU selected"};
    return static_cast<int>(std::count_if(calls.begin(), calls.end(), [](const std::string& call) {
        return std::any_of(std::begin(kParts), std::end(kParts),
                           [&](const char* part) { return call.find(part) != std::string::npos; });
    }));
}

/// The top-level windows of this thread, but those that the system makes for each thread.
std::vector<std::string> windowsLeft()
{
    std::vector<std::string> left;
    EnumThreadWindows(
        GetCurrentThreadId(),
        [](HWND window, LPARAM list) -> BOOL {
            const std::string kind = className(window);
            // Newer runtimes, freshly started, have a nameless window for a moment; the library makes none of its class.
            const bool isNameless = kind == "Static" && windowText(window).empty();
            if (kind != "IME" && kind != "MSCTFIME UI" && !isNameless) {
                reinterpret_cast<std::vector<std::string>*>(list)->push_back(kind + ' ' + windowText(window));
            }
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&left));
    return left;
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

TEST(Monkey, IsSurvived)
{
    Monkey monkey(stress::seed());
    std::unique_ptr<DialogWorld> world;
    int faults = 0;
    int crashes = 0;
    for (int round = 0; monkey.acts() < stress::count() && !HasFailure(); ++round) {
        if (round % kRoundsPerStore == 0) {
            world.reset();
            world = std::make_unique<DialogWorld>(
                monkey.below(60), [&monkey](int bound) { return monkey.below(bound); },
                [] { return RandomFaults::all.load(); });
        }
        RecordingStore& store = world->store;
        store.takeCalls();
        DialogWorld::ownChooser = monkey.below(2) == 0;
        const auto& dialogs = world->dialogs();
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
        EXPECT_THAT(windowsLeft(), testing::IsEmpty()) << "after " << monkey.last();
        const std::vector<std::string> calls = store.takeCalls();
        const int told = toldOf(calls);
        EXPECT_LE(told, raised) << "after " << monkey.last();
        if (!faulty) {
            expectListGivenBack(dialog, calls);
        }
        faults += raised;
        crashes += told;
    }
    EXPECT_EQ(directoryReferences(), 0) << "of objects and sessions";
    std::printf("%lld acts, %d faults raised, %d of them told\n", monkey.acts(), faults, crashes);
}
