// Filling the quota list from the store.
#include "tests/support/faulting_call.h"
#include "tests/support/import_patch.h"
#include "tests/support/leak_count.h"
#include "tests/support/list_host.h"
#include "tests/support/message_watch.h"
#include "tests/support/paths.h"
#include "tests/support/recording_store.h"

#include <malloc.h>

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

struct ListFillTest : testing::Test {
    RecordingStore store;
    ListHost host;
    void* const alice = store.account("SALES\\alice");
    void* const bob = store.account("SALES\\bob");

    void SetUp() override { initializeListCtrl2(host.object(), nullptr); }

    /// The percent text of a rule.
    std::string percentOf(int64_t inUse, int64_t hardLimit)
    {
        initializeListCtrl2(host.object(), nullptr);
        store.answer.getQuotaList = [=](const wchar_t* folder) {
            return RecordingStore::makeRule(folder, nullptr, hardLimit, 1, inUse);
        };
        fillUpListCtrl2(Paths{L"C:\\data"}, host.object());
        return host.column(4).at(0);
    }
};

} // namespace

TEST_F(ListFillTest, PutsEachRuleOnTop)
{
    store.put(L"C:\\a", nullptr, 104857600, 99614720, 3145728);
    store.put(L"C:\\a", alice, 1048576, 1048577, 52428);
    store.put(L"C:\\b", bob, int64_t{5} << 30, int64_t{2} << 40, 0);
    fillUpListCtrl2(Paths{L"C:\\a", L"C:\\b"}, host.object());
    EXPECT_THAT(host.rows(), ElementsAre("SALES\\bob|5120M|2048G|0 |00%|C:\\b",
                                         "SALES\\alice|1048576 |1024K|52428 |04%|C:\\a",
                                         "Anyone|102400K|97280K|3072K|03%|C:\\a"));
}

TEST_F(ListFillTest, AsksTheStoreInThisOrder)
{
    store.put(L"C:\\a", nullptr, 100, 90, 0);
    store.put(L"C:\\a", alice, 100, 91, 0);
    store.put(L"C:\\c", bob, 100, 92, 0);
    fillUpListCtrl2(Paths{L"C:\\a", L"C:\\b", L"C:\\c"}, host.object());
    EXPECT_THAT(store.calls(),
                ElementsAre("getQuotaList C:\\a", "getTextualSidW SALES\\alice 128",
                            "getAccountBySidW SALES\\alice 128", "getQuotaList C:\\b", "getQuotaList C:\\c",
                            "getTextualSidW SALES\\bob 128", "getAccountBySidW SALES\\bob 128"));
}

TEST_F(ListFillTest, ShowsTheTextualSidOfAnUnknownAccount)
{
    store.put(L"C:\\a", store.unknownAccount(), 100, 90, 0);
    fillUpListCtrl2(Paths{L"C:\\a"}, host.object());
    EXPECT_THAT(host.column(0), ElementsAre("S-1-5-21-1-2-3-1003"));
}

TEST_F(ListFillTest, CutsANameThatFillsItsBuffer)
{
    store.put(L"C:\\a", alice, 100, 90, 0);
    store.answer.getAccountBySidW = [](const void*, wchar_t* buffer, int capacity) {
        return std::wmemset(buffer, L'n', static_cast<size_t>(capacity));
    };
    fillUpListCtrl2(Paths{L"C:\\a"}, host.object());
    EXPECT_EQ(host.column(0).at(0), std::string(127, 'n'));
    store.answer.getAccountBySidW = nullptr;
    store.answer.getTextualSidW = [](const void*, wchar_t* buffer, int capacity) {
        std::wmemset(buffer, L's', static_cast<size_t>(capacity));
    };
    initializeListCtrl2(host.object(), Paths{L"C:\\a"});
    EXPECT_EQ(host.column(0).at(0), std::string(127, 's'));
}

TEST_F(ListFillTest, TheStoresRecordsAreTheItemData)
{
    store.put(L"C:\\a", nullptr, 100, 90, 0);
    QuotaRule* given = nullptr;
    const auto usual = store.answer.getQuotaList;
    store.answer.getQuotaList = [&](const wchar_t* folder) {
        return given = usual(folder);
    };
    fillUpListCtrl2(Paths{L"C:\\a"}, host.object());
    EXPECT_NE(given, nullptr);
    EXPECT_EQ(host.record(0), given);
}

TEST_F(ListFillTest, LinksTheRecordsInRowOrder)
{
    for (int i = 0; i < 3; ++i) {
        store.put(L"C:\\a", alice, 100 + i, 90, 0);
        store.put(L"C:\\b", bob, 100 + i, 90, 0);
    }
    fillUpListCtrl2(Paths{L"C:\\a", L"C:\\b"}, host.object());
    EXPECT_THAT(chainTexts(host.record(0)),
                ElementsAre("SALES\\bob C:\\b", "SALES\\bob C:\\b", "SALES\\bob C:\\b", "SALES\\alice C:\\a",
                            "SALES\\alice C:\\a", "SALES\\alice C:\\a"));
    for (int row = 0; row < 6; ++row) {
        EXPECT_EQ(host.record(row)->next, row == 5 ? nullptr : host.record(row + 1));
        EXPECT_EQ(host.record(row)->prev, row == 0 ? nullptr : host.record(row - 1));
    }
}

TEST_F(ListFillTest, LinksTheRecordsThatWereThereBeforeAsWell)
{
    store.put(L"C:\\a", alice, 100, 90, 0);
    store.put(L"C:\\b", bob, 100, 90, 0);
    fillUpListCtrl2(Paths{L"C:\\a"}, host.object());
    fillUpListCtrl2(Paths{L"C:\\b"}, host.object());
    EXPECT_THAT(chainTexts(host.record(0)), ElementsAre("SALES\\bob C:\\b", "SALES\\alice C:\\a"));
}

TEST_F(ListFillTest, AddsNothingTwice)
{
    store.put(L"C:\\a", nullptr, 100, 90, 0);
    store.put(L"C:\\a", alice, 100, 90, 0);
    fillUpListCtrl2(Paths{L"C:\\a"}, host.object());
    QuotaRule* const first = host.record(0);
    fillUpListCtrl2(Paths{L"C:\\a"}, host.object());
    fillUpListCtrl2(Paths{L"C:\\a", L"C:\\a"}, host.object());
    EXPECT_EQ(host.rowCount(), 2);
    EXPECT_EQ(host.record(0), first);
    EXPECT_THAT(chainTexts(host.record(0)), ElementsAre("SALES\\alice C:\\a", "Anyone C:\\a"));
}

TEST_F(ListFillTest, AddsNothingTwiceOutOfOneChain)
{
    store.put(L"C:\\a", alice, 100, 90, 0);
    store.put(L"C:\\a", alice, 100, 90, 0);
    fillUpListCtrl2(Paths{L"C:\\a"}, host.object());
    EXPECT_EQ(host.rowCount(), 1);
}

TEST_F(ListFillTest, KnowsRulesByLimitsFolderAndAccount)
{
    store.put(L"C:\\a", alice, 100, 90, 0);
    store.put(L"C:\\a", alice, 101, 90, 0); // another hard limit
    store.put(L"C:\\a", alice, 100, 91, 0); // another soft limit
    store.put(L"C:\\a", bob, 100, 90, 0);   // another account
    store.put(L"C:\\a", nullptr, 100, 90, 0);
    fillUpListCtrl2(Paths{L"C:\\a"}, host.object());
    EXPECT_EQ(host.rowCount(), 5);
}

TEST_F(ListFillTest, KnowsFoldersLetterByLetter)
{
    store.answer.getQuotaList = [](const wchar_t* folder) {
        return RecordingStore::makeRule(folder, nullptr, 100, 90, 0);
    };
    fillUpListCtrl2(Paths{L"C:\\a", L"C:\\A", L"C:/a", L"C:\\a"}, host.object());
    EXPECT_THAT(host.column(5), ElementsAre("C:/a", "C:\\A", "C:\\a"));
}

TEST_F(ListFillTest, DoesNotKnowRulesByWhatIsInUse)
{
    store.put(L"C:\\a", alice, 100, 90, 0);
    store.put(L"C:\\a", alice, 100, 90, 55);
    fillUpListCtrl2(Paths{L"C:\\a"}, host.object());
    EXPECT_THAT(host.column(3), ElementsAre("0 "));
}

TEST_F(ListFillTest, ComparesAccountsLast)
{
    store.put(L"C:\\a", alice, 100, 90, 0);
    store.put(L"C:\\a", bob, 101, 90, 0);
    store.put(L"C:\\a", bob, 100, 91, 0);
    store.put(L"C:\\b", bob, 100, 90, 0);
    fillUpListCtrl2(Paths{L"C:\\a", L"C:\\b"}, host.object());
    for (const std::string& call : store.calls()) {
        EXPECT_THAT(call, testing::Not(HasSubstr("sidcmp")));
    }
    store.put(L"C:\\b", alice, 100, 90, 0);
    store.takeCalls();
    fillUpListCtrl2(Paths{L"C:\\b"}, host.object());
    EXPECT_THAT(store.calls(), testing::Contains(HasSubstr("sidcmp")));
}

TEST_F(ListFillTest, EnablesTheList)
{
    store.put(L"C:\\a", alice, 100, 90, 0);
    EnableWindow(host.list(), FALSE);
    fillUpListCtrl2(Paths{L"C:\\a"}, host.object());
    EXPECT_TRUE(IsWindowEnabled(host.list()));
    EnableWindow(host.list(), FALSE);
    fillUpListCtrl2(Paths{L"C:\\a"}, host.object());
    EXPECT_TRUE(IsWindowEnabled(host.list())) << "though there was nothing new";
}

TEST_F(ListFillTest, DoesNothingForAFolderWithoutRules)
{
    EnableWindow(host.list(), FALSE);
    fillUpListCtrl2(Paths{L"C:\\a"}, host.object());
    EXPECT_FALSE(IsWindowEnabled(host.list()));
    EXPECT_EQ(host.rowCount(), 0);
    EXPECT_THAT(store.calls(), ElementsAre("getQuotaList C:\\a"));
}

TEST_F(ListFillTest, DoesNothingWithoutFolders)
{
    fillUpListCtrl2(Paths{}, host.object());
    EXPECT_EQ(host.rowCount(), 0);
    EXPECT_THAT(store.calls(), IsEmpty());
}

TEST_F(ListFillTest, LetsTheListBeDrawnAgain)
{
    store.put(L"C:\\a", alice, 100, 90, 0);
    ShowWindow(host.window(), SW_SHOWNA);
    ShowWindow(host.list(), SW_SHOWNA);
    fillUpListCtrl2(Paths{L"C:\\a"}, host.object());
    EXPECT_TRUE(IsWindowVisible(host.list()));
}

TEST_F(ListFillTest, ShowsPercents)
{
    EXPECT_EQ(percentOf(5, 100), "05%");
    EXPECT_EQ(percentOf(0, 100), "00%");
    EXPECT_EQ(percentOf(99, 1000), "09%");
    EXPECT_EQ(percentOf(100, 100), "100%");
    EXPECT_EQ(percentOf(9999, 100), "9999%");
    EXPECT_EQ(percentOf(-5, 100), "-05%");
    EXPECT_EQ(percentOf(-1, 104857600), "00%");
}

TEST_F(ListFillTest, CutsPercentsThatDoNotFit)
{
    EXPECT_EQ(percentOf(10000, 100), "10000");
    EXPECT_EQ(percentOf(1234567, 100), "12345");
    EXPECT_EQ(percentOf(-1234567, 100), "-1234");
}

TEST_F(ListFillTest, TakesPercentsAs32BitNumbers)
{
    EXPECT_EQ(percentOf(42949673, 1), "04%"); // 4294967300
}

TEST_F(ListFillTest, FaultsOnAHardLimitOfZero)
{
    store.answer.getQuotaList = [](const wchar_t* folder) {
        return RecordingStore::makeRule(folder, nullptr, 0, 90, 5);
    };
    const Paths paths{L"C:\\a"};
    EXPECT_EQ(faultOf([&] { fillUpListCtrl2(paths, host.object()); }), EXCEPTION_INT_DIVIDE_BY_ZERO);
}

TEST_F(ListFillTest, AFaultLeavesTheRowsThatWereGiven)
{
    store.put(L"C:\\a", alice, 100, 90, 5);
    store.put(L"C:\\a", bob, 100, 91, 6);
    store.put(L"C:\\b", alice, 100, 92, 7);
    store.put(L"C:\\b", bob, 100, 93, 8);
    const Paths paths{L"C:\\a", L"C:\\b"};
    for (const Fault fault : kEveryFault) {
        initializeListCtrl2(host.object(), nullptr);
        EnableWindow(host.list(), FALSE);
        store.raise("getTextualSidW", fault, 4);
        EXPECT_NE(faultOf([&] { fillUpListCtrl2(paths, host.object()); }), 0u);
        EXPECT_THAT(host.rows(),
                    ElementsAre("SALES\\alice|100 |92 |7 |07%|C:\\b", "SALES\\bob|100 |91 |6 |06%|C:\\a",
                                "SALES\\alice|100 |90 |5 |05%|C:\\a"))
            << faultName(fault);
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
    EXPECT_EQ(faultOf([&] { fillUpListCtrl2(paths, host.object()); }), EXCEPTION_INT_DIVIDE_BY_ZERO);
    EXPECT_THAT(host.rows(),
                ElementsAre("SALES\\bob|0 |91 |6 ||C:\\a", "SALES\\alice|100 |90 |5 |05%|C:\\a"));
}

TEST_F(ListFillTest, NoRowMovesAnother)
{
    for (int i = 0; i < 5; ++i) {
        store.put(L"C:\\a", alice, 100 + i, 90, 0);
        store.put(L"C:\\b", bob, 100 + i, 90, 0);
    }
    int moved = 0;
    const MessageWatch watch(host.list(), [&](UINT message, WPARAM, LPARAM item) {
        if (message == LVM_INSERTITEMW) {
            moved += host.rowCount() - reinterpret_cast<const LVITEMW*>(item)->iItem;
        }
    });
    fillUpListCtrl2(Paths{L"C:\\a"}, host.object());
    EXPECT_EQ(moved, 0);
    fillUpListCtrl2(Paths{L"C:\\b"}, host.object());
    EXPECT_EQ(moved, 25) << "five times those that were there";
    EXPECT_THAT(host.column(1),
                ElementsAre("104 ", "103 ", "102 ", "101 ", "100 ", "104 ", "103 ", "102 ", "101 ", "100 "));
}

TEST_F(ListFillTest, AFaultLeavesNoDrawingObjectsBehind)
{
    store.put(L"C:\\a", alice, 100, 90, 0);
    const Paths paths{L"C:\\a"};
    const auto fillInVain = [&] {
        initializeListCtrl2(host.object(), nullptr);
        store.raise("getTextualSidW", Fault::AccessViolation);
        EXPECT_NE(faultOf([&] { fillUpListCtrl2(paths, host.object()); }), 0u);
    };
    fillInVain();
    const long before = LeakCount::now().gdiObjects;
    for (int i = 0; i < 20; ++i) {
        fillInVain();
    }
    EXPECT_EQ(LeakCount::now().gdiObjects, before);
}

namespace {

std::vector<HWND> repainted;

BOOL WINAPI noteRepaint(HWND window, const RECT*, BOOL)
{
    repainted.push_back(window);
    return TRUE;
}

} // namespace

TEST_F(ListFillTest, WithoutAListTheDesktopIsNotRepainted)
{
    store.put(L"C:\\a", alice, 100, 90, 0);
    const ImportPatch repaint(ImportPatch::corvane(), "InvalidateRect", noteRepaint);
    ASSERT_EQ(repaint.count(), 1);
    repainted.clear();
    fillUpListCtrl2(Paths{L"C:\\a"}, host.object());
    EXPECT_THAT(repainted, ElementsAre(host.list()));
    repainted.clear();
    fillUpListCtrl(Paths{L"C:\\a"}, host.window(), 500);
    EXPECT_THAT(repainted, IsEmpty());
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
        store.raise("getTextualSidW", Fault::StackOverflow);
        auto call = [&] {
            fillUpListCtrl2(paths, host.object());
        };
        EXPECT_EQ(faultOfReporting([](void* context) { (*static_cast<decltype(call)*>(context))(); }, &call),
                  EXCEPTION_STACK_OVERFLOW);
        EXPECT_TRUE(drawing);
    }
    fillUpListCtrl2(paths, host.object());
    EXPECT_EQ(host.rowCount(), 1);
}

TEST_F(ListFillTest, StillWorksAfterAFault)
{
    store.put(L"C:\\a", alice, 100, 90, 0);
    const Paths paths{L"C:\\a"};
    for (const Fault fault : kEveryFault) {
        for (const char* const function : {"getQuotaList", "getTextualSidW", "getAccountBySidW"}) {
            initializeListCtrl2(host.object(), nullptr);
            store.raise(function, fault);
            EXPECT_NE(faultOf([&] { fillUpListCtrl2(paths, host.object()); }), 0u)
                << function << ": there is no guard around the list functions";
            fillUpListCtrl2(paths, host.object());
            EXPECT_EQ(host.rows().at(0), "SALES\\alice|100 |90 |0 |00%|C:\\a")
                << function << faultName(fault);
        }
    }
}

TEST_F(ListFillTest, FillsThousandsOfRules)
{
    constexpr int kMany = 3000;
    store.answer.getQuotaList = [this](const wchar_t* folder) {
        QuotaRule* first = nullptr;
        for (int i = kMany; i > 0; --i) {
            QuotaRule* const rule = RecordingStore::makeRule(folder, i % 2 == 0 ? alice : bob, i, 1, 0);
            rule->next = first;
            first = rule;
        }
        return first;
    };
    fillUpListCtrl2(Paths{L"C:\\a"}, host.object());
    fillUpListCtrl2(Paths{L"C:\\a"}, host.object());
    ASSERT_EQ(host.rowCount(), kMany);
    EXPECT_EQ(host.row(0, 2), "SALES\\alice|3000 ");
    EXPECT_EQ(host.row(kMany - 1, 2), "SALES\\bob|1 ");
    EXPECT_EQ(chainTexts(host.record(0)).size(), static_cast<size_t>(kMany));
}
