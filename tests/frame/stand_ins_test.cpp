// Numbers that stand for objects: which they are, for how long they stand, and who makes room.
#include "frame/carrying_lists.h"
#include "frame/narrow_handle.h"
#include "frame/stand_ins.h"
#include "tests/support/list_host.h"

#include <commctrl.h>

#include <gmock/gmock.h>

#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

using testing::UnorderedElementsAre;

namespace {

constexpr DWORD kThread = 1;
constexpr DWORD kOtherThread = 2;

/// An address that is never read.
const void* objectAt(UINT_PTR number)
{
    return reinterpret_cast<const void*>((UINT_PTR{5} << 32) + number * 16);
}

} // namespace

TEST(StandInsTest, NoneLooksLikeNothingOrAnError)
{
    constexpr std::uint32_t kMany = (1u << 20) + 1000; // more than one block of them
    StandIns standIns;
    std::vector<bool> seen(UINT_PTR{1} << 32);
    seen[0] = seen[UINT32_MAX] = true;
    std::uint32_t good = 0;
    for (std::uint32_t i = 0; i < kMany; ++i) {
        const std::uint32_t value = standIns.add(objectAt(i), kThread);
        good += !seen[value] && standIns.isOne(value) ? 1 : 0;
        seen[value] = true;
    }
    EXPECT_EQ(good, kMany) << "neither nothing nor an error, and all different";
    for (std::uint32_t i = 0; i < kMany; i += 997) {
        ASSERT_EQ(standIns.object(standIns.known(objectAt(i))), objectAt(i)) << i;
    }
}

TEST(StandInsTest, RoomIsMadeByThoseThatNobodyCarriesOrAsksFor)
{
    StandIns standIns;
    std::vector<std::uint32_t> values;
    for (UINT_PTR i = 0; i < 4; ++i) {
        values.push_back(standIns.add(objectAt(i), kThread));
    }
    standIns.makeRoom({});
    EXPECT_EQ(standIns.size(), 4u) << "all are new";
    EXPECT_EQ(standIns.known(objectAt(1)), values[1]);
    EXPECT_EQ(standIns.object(values[2]), objectAt(2));
    standIns.makeRoom({{values[0], 17}, {kOtherThread}});
    EXPECT_EQ(standIns.size(), 3u);
    EXPECT_EQ(standIns.known(objectAt(3)), 0u);
    EXPECT_EQ(standIns.object(values[3]), nullptr);
    EXPECT_TRUE(standIns.isOne(values[3])) << "it was one, and is no address";
    for (UINT_PTR i = 0; i < 3; ++i) {
        EXPECT_EQ(standIns.known(objectAt(i)), values[i]);
    }
}

TEST(StandInsTest, AThreadWithListsKeepsItsOwn)
{
    StandIns standIns;
    standIns.add(objectAt(0), kThread);
    standIns.add(objectAt(1), kOtherThread);
    standIns.makeRoom({});
    standIns.makeRoom({{}, {kOtherThread}});
    EXPECT_EQ(standIns.known(objectAt(0)), 0u);
    EXPECT_NE(standIns.known(objectAt(1)), 0u);
}

TEST(StandInsTest, ANumberThatWasGivenUpIsTheLastToComeAgain)
{
    constexpr UINT_PTR kAll = (1u << 20) - 1;
    StandIns standIns;
    const std::uint32_t carried = standIns.add(objectAt(0), kThread);
    const std::uint32_t dropped = standIns.add(objectAt(1), kThread);
    UINT_PTR given = 2;
    bool early = false;
    for (; given < kAll; ++given) {
        if (standIns.isFull()) {
            standIns.makeRoom({{carried}, {}});
        }
        const std::uint32_t value = standIns.add(objectAt(given), kThread);
        early = early || value == dropped || value == carried;
    }
    EXPECT_FALSE(early);
    EXPECT_LT(standIns.size(), 10000u) << "of a million";
    EXPECT_EQ(standIns.add(objectAt(given), kThread), dropped) << "that of the carried one is passed over";
    EXPECT_EQ(standIns.object(carried), objectAt(0));
    EXPECT_EQ(standIns.object(dropped), objectAt(given));
}

TEST(StandInsTest, NotOnceIsANumberGivenThatARowCarries)
{
    constexpr UINT_PTR kGiven = 2'200'000; // twice round
    constexpr UINT_PTR kKept = 5000;
    StandIns standIns;
    StandIns::Carried rows;
    std::vector<bool> carried(UINT_PTR{1} << 32);
    UINT_PTR wrong = 0;
    for (UINT_PTR i = 0; i < kGiven; ++i) {
        if (standIns.isFull()) {
            standIns.makeRoom(rows);
        }
        const std::uint32_t value = standIns.add(objectAt(i), kThread);
        wrong += carried[value] ? 1 : 0;
        if (i % 7 == 0 && rows.values.size() < kKept) {
            carried[value] = true;
            rows.values.push_back(value);
        }
    }
    EXPECT_EQ(wrong, 0u);
    EXPECT_LT(standIns.size(), 4 * kKept);
    for (const std::uint32_t value : rows.values) {
        ASSERT_NE(standIns.object(value), nullptr);
    }
}

TEST(CarryingListsTest, ReadsWhatTheRowsOfItsThreadCarry)
{
    ListHost host;
    ListHost other;
    ListHost virtualRows(LVS_OWNERDATA);
    host.addRow(11, {L"a"});
    host.addRow(12, {L"b"});
    other.addRow(13, {L"c"});
    ListView_SetItemCount(virtualRows.list(), 1000);
    CarryingLists lists;
    for (HWND list : {host.list(), other.list(), host.list(), virtualRows.list()}) {
        lists.remember(list);
    }
    EXPECT_THAT(lists.read().values, UnorderedElementsAre(11u, 12u, 13u));
    EXPECT_TRUE(lists.read().threads.empty());
}

TEST(CarryingListsTest, DoesNotWaitForAnotherThread)
{
    ListHost host;
    host.addRow(11, {L"a"});
    CarryingLists lists;
    lists.remember(host.list());
    StandIns::Carried carried;
    std::thread([&] { carried = lists.read(); }).join(); // this thread takes no messages meanwhile
    EXPECT_TRUE(carried.values.empty());
    EXPECT_EQ(carried.threads, std::vector{GetCurrentThreadId()});
}

TEST(CarryingListsTest, ForgetsListsThatAreGone)
{
    CarryingLists lists;
    {
        ListHost host;
        host.addRow(11, {L"a"});
        lists.remember(host.list());
        EXPECT_EQ(lists.read().values.size(), 1u);
    }
    EXPECT_TRUE(lists.read().values.empty());
    lists.tidy();
    EXPECT_TRUE(lists.read().values.empty());
}

TEST(NarrowHandleTest, AnObjectKeepsItsStandInWhileARowCarriesIt)
{
    ListHost host;
    const NarrowHandle carried = NarrowHandle::inRow(host.list(), objectAt(1));
    const NarrowHandle other = NarrowHandle::of(objectAt(2));
    host.addRow(carried.carrier(), {L"a"});
    for (UINT_PTR i = 3; i < 20000; ++i) {
        const NarrowHandle next = NarrowHandle::of(objectAt(i));
        ASSERT_NE(next.value(), carried.value());
        ASSERT_EQ(NarrowHandle::fromCarrier(next.signedCarrier()).object(), objectAt(i));
    }
    EXPECT_EQ(carried.object(), objectAt(1));
    EXPECT_EQ(other.object(), nullptr) << "nobody has it any more";
    EXPECT_EQ(NarrowHandle::inRow(host.list(), objectAt(1)).value(), carried.value());
}

TEST(NarrowHandleTest, ThreadsMayAskAtOnce)
{
    std::atomic<int> wrong = 0;
    const auto ask = [&wrong](UINT_PTR from) {
        for (UINT_PTR i = from; i < from + 50000; ++i) {
            const NarrowHandle handle = NarrowHandle::of(objectAt(i));
            const void* const found = handle.object(); // of another thread's thousands nobody knows
            wrong += handle.value() == 0 || (found != nullptr && found != objectAt(i)) ? 1 : 0;
        }
    };
    std::vector<std::thread> threads;
    for (UINT_PTR i = 1; i <= 4; ++i) {
        threads.emplace_back(ask, i * 1'000'000);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, 0);
}
