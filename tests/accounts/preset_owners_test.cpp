#include "accounts/preset_owners.h"

#include "account_store.h"
#include "accounts/sid_list_copy.h"
#include "frame/platform.h"

#include <gmock/gmock.h>

#include <numeric>

namespace {

using testing::ElementsAre;

struct PresetOwnersTest : testing::Test {
    static SidList* longList(unsigned count)
    {
        std::vector<unsigned> numbers(count);
        std::iota(numbers.begin(), numbers.end(), 1000);
        return makePresets(numbers);
    }

    AccountStore store;
};

TEST_F(PresetOwnersTest, NullListHoldsAllAndExcludesNone)
{
    PresetOwners none(nullptr);
    EXPECT_TRUE(none.contains(testSid(1)));
    EXPECT_TRUE(none.contains(nullptr));
    EXPECT_FALSE(none.excludes(testSid(1)));
    EXPECT_FALSE(none.excludes(nullptr));
}

TEST_F(PresetOwnersTest, ANullAccountIsAMember)
{
    PresetOwners empty(makePresets({}));
    EXPECT_TRUE(empty.contains(nullptr));
    EXPECT_TRUE(empty.excludes(nullptr));
    EXPECT_FALSE(empty.excludes(testSid(1)));
}

TEST_F(PresetOwnersTest, TheStoreIsAskedInListOrder)
{
    PresetOwners owners(makePresets({3, 0, 2, 1}));
    const std::vector<unsigned char> copy(static_cast<unsigned char*>(testSid(2)),
                                          static_cast<unsigned char*>(testSid(2)) + 28);
    EXPECT_TRUE(owners.contains(const_cast<unsigned char*>(copy.data())));
    EXPECT_THAT(store.calls(), ElementsAre("sidcmp 3 2", "sidcmp null 2", "sidcmp 2 2"));
}

TEST_F(PresetOwnersTest, TheStoreIsNotAskedAboutThePointerItself)
{
    PresetOwners owners(makePresets({3, 2}));
    EXPECT_TRUE(owners.contains(testSid(2)));
    EXPECT_THAT(store.calls(), ElementsAre("sidcmp 3 2"));
}

TEST_F(PresetOwnersTest, LongAndShortListsAgree)
{
    for (const unsigned count : {31u, 32u, 33u, 500u}) {
        SidList* const list = longList(count);
        PresetOwners owners(list);
        for (unsigned number = 990; number < 1510; ++number) {
            unsigned char copy[28];
            CopySid(sizeof(copy), copy, testSid(number));
            EXPECT_EQ(owners.contains(copy), number >= 1000 && number < 1000 + count);
        }
    }
}

TEST_F(PresetOwnersTest, ALongListCostsAtMostOneComparison)
{
    PresetOwners owners(longList(500));
    unsigned char copy[28];
    CopySid(sizeof(copy), copy, testSid(1499));
    EXPECT_TRUE(owners.contains(copy));
    EXPECT_THAT(store.calls(), ElementsAre("sidcmp 1499 1499"));
    EXPECT_FALSE(owners.contains(testSid(7)));
    EXPECT_EQ(store.calls().size(), 1u);
}

TEST_F(PresetOwnersTest, TheStoresWordHoldsInALongListToo)
{
    SidList* const list = longList(500);
    PresetOwners owners(list);
    store.sidcmpLies = list->sids[499];
    unsigned char copy[28];
    CopySid(sizeof(copy), copy, testSid(1499));
    EXPECT_FALSE(owners.contains(copy));
    EXPECT_EQ(store.calls().size(), 501u);
}

TEST_F(PresetOwnersTest, ALongListWithAnInvalidEntryIsScanned)
{
    SidList* const list = longList(40);
    unsigned char broken[28];
    CopySid(sizeof(broken), broken, testSid(1));
    broken[0] = 9; // no such revision
    list->sids[5] = broken;
    PresetOwners owners(list);
    EXPECT_FALSE(owners.contains(testSid(7)));
    EXPECT_EQ(store.calls().size(), 40u);
    EXPECT_TRUE(owners.contains(broken));
}

TEST_F(PresetOwnersTest, NullEntriesOfALongListMatchNobody)
{
    SidList* const list = longList(40);
    list->sids[3] = nullptr;
    PresetOwners owners(list);
    EXPECT_FALSE(owners.contains(testSid(7)));
    EXPECT_TRUE(owners.contains(testSid(1039)));
}

TEST_F(PresetOwnersTest, CopyOutlivesItsOriginal)
{
    std::vector<unsigned char> first(static_cast<unsigned char*>(testSid(5)),
                                     static_cast<unsigned char*>(testSid(5)) + 28);
    unsigned char broken[28] = {};
    SidList* const list = makePresets({1, 0, 2, 3});
    list->sids[0] = first.data();
    list->sids[2] = broken;
    SidListCopy copy(list);
    first.assign(28, 0xEE);
    list->count = -1;
    ASSERT_NE(copy.get(), nullptr);
    EXPECT_NE(static_cast<void*>(copy.get()), list);
    EXPECT_THAT(numbersOf(copy.get()), ElementsAre(5, 0, 0, 3));
    EXPECT_TRUE(EqualSid(copy.get()->sids[0], testSid(5)));
    EXPECT_TRUE(EqualSid(copy.get()->sids[3], testSid(3)));
    EXPECT_TRUE(store.calls().empty()); // made without the store

    SidListCopy moved(std::move(copy));
    EXPECT_THAT(numbersOf(moved.get()), ElementsAre(5, 0, 0, 3));
}

TEST_F(PresetOwnersTest, CopiesOfNoneAndOfEmptyLists)
{
    EXPECT_EQ(SidListCopy().get(), nullptr);
    EXPECT_EQ(SidListCopy(nullptr).get(), nullptr);
    SidListCopy empty(makePresets({}));
    ASSERT_NE(empty.get(), nullptr);
    EXPECT_EQ(empty.get()->count, 0);
}

} // namespace
