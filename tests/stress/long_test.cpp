// A quota page that stays open for weeks: it is filled, sorted, edited and emptied again, and holds no more than on its
// first day.
#include "tests/stress/heap_rules.h"
#include "tests/stress/stress.h"
#include "tests/support/leak_count.h"
#include "tests/support/list_host.h"
#include "tests/support/paths.h"
#include "tests/support/recording_store.h"

#include <commctrl.h>

#include <gtest/gtest.h>

#include <malloc.h>

#include <algorithm>
#include <bitset>
#include <cstdio>
#include <string>

namespace {

constexpr int kRulesPerFolder = 20;
constexpr int kWarmUp = 200;

/// Bytes of the C runtime's heap that somebody holds.
long long heapBytes()
{
    const auto heap = reinterpret_cast<HANDLE>(_get_heap_handle());
    long long bytes = 0;
    PROCESS_HEAP_ENTRY entry{};
    HeapLock(heap);
    while (HeapWalk(heap, &entry)) {
        bytes += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0 ? entry.cbData : 0;
    }
    HeapUnlock(heap);
    return bytes;
}

class Long : public testing::Test {
protected:
    Long()
    {
        initializeListCtrl2(m_host.object(), nullptr);
        m_store.answer.getQuotaList = [this](const wchar_t* folder) {
            QuotaRule* first = nullptr;
            for (int i = 0; i < kRulesPerFolder; ++i) {
                void* const sid = i % 2 == 0 ? nullptr : m_store.answer.sidDup(m_alice);
                QuotaRule* const rule = heapRule(folder, sid, 1000 * (++m_made % 977 + 1));
                rule->next = first;
                first = rule;
            }
            return first;
        };
    }

    /// Rules are read, looked at, and let go, some by the library and the others by the host.
    void reload(int number)
    {
        CListCtrl* const list = m_host.object();
        fillUpListCtrl2(Paths{L"C:\\a", L"C:\\b"}, list);
        EXPECT_EQ(countItems2(list), 2 * kRulesPerFolder);
        sortListCtrl2(list, number % 6);
        m_host.selectOnly({1, 5, 2 * kRulesPerFolder - 1});
        checkForButtons2(m_host.window(), list, 1, 2, 0);
        QuotaRule* rule = getDataModified2(list); // all of them
        EXPECT_EQ(chainTexts(rule).size(), static_cast<std::size_t>(2 * kRulesPerFolder));
        std::vector<QuotaRule*> all;
        for (; rule != nullptr; rule = rule->next) {
            all.push_back(rule);
        }
        EXPECT_NE(dropFromListCtrl2(list), 0);
        EXPECT_EQ(countItems2(list), 2 * kRulesPerFolder - 3);
        if (number % 2 == 0) {
            ListView_DeleteAllItems(m_host.list());
        } else {
            initializeListCtrl2(list, nullptr);
        }
        for (QuotaRule* const gone : all) {
            releaseRule(gone);
        }
        m_store.takeCalls();
    }

    RecordingStore m_store;
    ListHost m_host;
    void* m_alice = m_store.account("alice");
    int m_made = 0;
};

} // namespace

TEST_F(Long, ReloadsLeaveNothing)
{
    constexpr int kSeries = 3; // what leaks grows in each
    const auto reloads = std::max(1, static_cast<int>(stress::count()) / kSeries);
    int reloaded = 0;
    const auto several = [&](int times) {
        for (int i = 0; i < times && !HasFailure(); ++i) {
            stress::alive("reload");
            reload(reloaded++);
        }
    };
    several(kWarmUp);
    LeakCount::now(); // finds its functions
    const long long bytesBefore = heapBytes();
    std::bitset<4> growing;
    growing.set();
    testing::Message held;
    for (int series = 0; series < kSeries; ++series) {
        const LeakCount before = LeakCount::now();
        several(reloads);
        const LeakCount after = LeakCount::now();
        growing &= after.above(before);
        held << "\n  before " << before << "\n  after  " << after;
        std::printf("%d: %ld blocks, %lld bytes\n", reloaded, after.heapBlocks, heapBytes());
        std::fflush(stdout);
    }
    EXPECT_TRUE(growing.none()) << held;
    // Tables of the library grow at first, and then no more.
    EXPECT_LT(heapBytes(), bytesBefore + 300'000);
}
