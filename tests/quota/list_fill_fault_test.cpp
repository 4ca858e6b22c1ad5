// Faults while the quota list is filled: there is no guard, the host sees them.
#include "tests/quota/list_fill_test.h"

#include "tests/support/faulting_call.h"
#include "tests/support/leak_count.h"
#include "tests/support/message_watch.h"

#include <malloc.h>

#include <gmock/gmock.h>

using testing::ElementsAre;

TEST_F(ListFillTest, FaultsOnAHardLimitOfZero)
{
    store.answer.getQuotaList = [](const wchar_t* folder) {
        return RecordingStore::makeRule(folder, nullptr, 0, 90, 5);
    };
    const Paths paths{L"C:\\a"};
    EXPECT_EQ(faultOf([&] { fill(paths); }), EXCEPTION_INT_DIVIDE_BY_ZERO);
}

TEST_F(ListFillTest, AFaultLeavesTheRowsThatWereGiven)
{
    store.put(L"C:\\a", alice, 100, 90, 5);
    store.put(L"C:\\a", bob, 100, 91, 6);
    store.put(L"C:\\b", alice, 100, 92, 7);
    store.put(L"C:\\b", bob, 100, 93, 8);
    const Paths paths{L"C:\\a", L"C:\\b"};
    for (const Fault fault : kEveryFault) {
        prepare();
        EnableWindow(host.list(), FALSE);
        store.raise("getTextualSidW", fault, 4);
        EXPECT_NE(faultOf([&] { fill(paths); }), 0u);
        EXPECT_THAT(host.rows(),
                    ElementsAre("SALES\\alice|100 |92 |7 |07%|C:\\b", "SALES\\bob|100 |91 |6 |06%|C:\\a",
                                "SALES\\alice|100 |90 |5 |05%|C:\\a"))
            << fault;
        EXPECT_THAT(chainTexts(host.record(1)), ElementsAre("SALES\\bob C:\\a", "SALES\\alice C:\\a"));
        EXPECT_TRUE(IsWindowEnabled(host.list())) << "the first folder is done";
    }
}

TEST_F(ListFillTest, ARowWhosePercentageFaultsIsThereWithoutIt)
{
    store.put(L"C:\\a", alice, 100, 90, 5);
    store.put(L"C:\\a", bob, 0, 91, 6);
    store.put(L"C:\\a", alice, 100, 92, 7);
    const Paths paths{L"C:\\a"};
    EXPECT_EQ(faultOf([&] { fill(paths); }), EXCEPTION_INT_DIVIDE_BY_ZERO);
    EXPECT_THAT(host.rows(),
                ElementsAre("SALES\\bob|0 |91 |6 ||C:\\a", "SALES\\alice|100 |90 |5 |05%|C:\\a"));
}

TEST_F(ListFillTest, AFaultLeavesNoDrawingObjectsBehind)
{
    store.put(L"C:\\a", alice, 100, 90, 0);
    const Paths paths{L"C:\\a"};
    const auto fillInVain = [&] {
        prepare();
        store.raise("getTextualSidW", Fault::kAccessViolation);
        EXPECT_NE(faultOf([&] { fill(paths); }), 0u);
    };
    fillInVain();
    const long before = LeakCount::now().gdiObjects;
    for (int i = 0; i < 20; ++i) {
        fillInVain();
    }
    EXPECT_EQ(LeakCount::now().gdiObjects, before);
}

TEST_F(ListFillTest, StillWorksAfterAFault)
{
    store.put(L"C:\\a", alice, 100, 90, 0);
    const Paths paths{L"C:\\a"};
    for (const Fault fault : kEveryFault) {
        for (const char* const function : {"getQuotaList", "getTextualSidW", "getAccountBySidW"}) {
            prepare();
            store.raise(function, fault);
            EXPECT_NE(faultOf([&] { fill(paths); }), 0u)
                << function << ": there is no guard around the list functions";
            fill(paths);
            EXPECT_EQ(host.rows().at(0), "SALES\\alice|100 |90 |0 |00%|C:\\a") << function << fault;
        }
    }
}

namespace {

/// What a host has on its stack while it answers a message, or writes a report.
LONG useSixtyFourKilobytes()
{
    constexpr int kSize = 64 * 1024;
    volatile char room[kSize];
    for (int i = 0; i < kSize; i += 256) {
        room[i] = static_cast<char>(i);
    }
    return room[256] == 0 ? EXCEPTION_EXECUTE_HANDLER : EXCEPTION_CONTINUE_SEARCH;
}

DWORD faultOfReporting(void (*call)(void*), void* context)
{
    DWORD code = 0;
    __try
    {
        call(context);
    } __except (code = GetExceptionCode(), useSixtyFourKilobytes())
    {
        _resetstkoflw();
    }
    return code;
}

} // namespace

TEST_F(ListFillTest, AStackOverflowLeavesTheHostRoomToHandleIt)
{
    store.put(L"C:\\a", alice, 100, 90, 0);
    const Paths paths{L"C:\\a"};
    bool drawing = true;
    const MessageWatch watch(host.list(), [&](UINT message, WPARAM wParam, LPARAM) {
        if (message == WM_SETREDRAW) {
            drawing = wParam != 0;
            useSixtyFourKilobytes();
        }
    });
    for (int round = 0; round < 2; ++round) { // the next overflow is raised, too
        store.raise("getTextualSidW", Fault::kStackOverflow);
        auto call = [&] {
            fill(paths);
        };
        EXPECT_EQ(faultOfReporting([](void* context) { (*static_cast<decltype(call)*>(context))(); }, &call),
                  EXCEPTION_STACK_OVERFLOW);
        EXPECT_TRUE(drawing);
    }
    fill(paths);
    EXPECT_EQ(host.rowCount(), 1);
}
