// What holds for all five policy lists, while they are loaded and from one time to the next.
#include "policy_list_test.h"
#include "tests/support/leak_count.h"

#include <malloc.h>

namespace {

using namespace store_test;

class PolicyListsTest : public PolicyListTest {};

TEST_P(PolicyListsTest, AFreshStoreHasAnEmptyList)
{
    EXPECT_NE(list().load(), 0);
    EXPECT_EQ(list().get(0), nullptr);
    EXPECT_STREQ(lornixLastError(), L"");
}

TEST_P(PolicyListsTest, StoredTextsComeBackInOrder)
{
    const Texts all{L"C:\\pagefile.sys",
                    L"",
                    L" blanks ",
                    L"50% of\tit\r\n# end",
                    L"end",
                    L"\x00C4\x4E2D\xD83D\xDE00 \xD800 alone",
                    std::wstring(259, L'x'),
                    std::wstring(260, L'y'),
                    std::wstring(10000, L'z')};
    list().load();
    for (std::uint32_t i = 0; i < all.size(); ++i) {
        EXPECT_EQ(list().add(all[i]), i);
    }
    EXPECT_EQ(texts(), all);
    list().store();
    EXPECT_STREQ(lornixLastError(), L"");
    EXPECT_EQ(storedTexts(), all);
}

TEST_P(PolicyListsTest, TenThousandEntries)
{
    Texts all;
    for (int i = 0; i < 10000; ++i) {
        all.push_back(L"entry " + std::to_wstring(i));
    }
    list().load();
    for (const std::wstring& text : all) {
        list().add(text);
    }
    list().store();
    EXPECT_EQ(storedTexts(), all);
}

TEST_P(PolicyListsTest, ReleasingWithoutStoringKeepsWhatWasStored)
{
    list().load();
    list().add(L"dropped");
    list().free();
    EXPECT_FALSE(std::filesystem::exists(file()));
    storeTexts({L"a", L"b"});
    list().load();
    list().update(0, L"changed");
    list().remove(1);
    list().add(L"c");
    EXPECT_EQ(storedTexts(), (Texts{L"a", L"b"}));
}

TEST_P(PolicyListsTest, IndexesStayWhileTheListIsLoaded)
{
    storeTexts({L"0", L"1", L"2", L"3", L"4"});
    list().load();
    list().remove(1);
    list().remove(3);
    list().remove(3);
    EXPECT_EQ(list().get(1), nullptr);
    EXPECT_EQ(list().get(3), nullptr);
    EXPECT_STREQ(list().get(2), L"2");
    EXPECT_STREQ(list().get(4), L"4");
    EXPECT_EQ(list().add(L"5"), 5u);
    list().update(4, L"four");
    list().update(1, L"back from the dead");
    EXPECT_EQ(list().get(1), nullptr);
    list().store();
    EXPECT_EQ(list().get(1), nullptr); // the list is still loaded
    EXPECT_STREQ(list().get(5), L"5");
    EXPECT_EQ(storedTexts(), (Texts{L"0", L"2", L"four", L"5"}));
}

TEST_P(PolicyListsTest, StringsStayWhereTheyAreWhileOthersChange)
{
    list().load();
    list().add(L"first");
    const wchar_t* first = list().get(0);
    for (int i = 0; i < 2000; ++i) {
        list().add(L"more");
    }
    list().remove(1);
    list().update(2, L"other");
    list().store();
    EXPECT_EQ(list().get(0), first);
    EXPECT_STREQ(first, L"first");
}

TEST_P(PolicyListsTest, ItsOwnStringsMayBeHandedBack)
{
    storeTexts({L"a", L"b"});
    list().load();
    for (int round = 0; round < 3; ++round) {
        list().updateText(0, list().get(0));
    }
    EXPECT_STREQ(list().get(0), L"a");
    EXPECT_EQ(list().addText(list().get(0)), 2u);
    list().updateText(1, list().get(0));
    list().updateText(99, list().get(0)); // refused, and still the list's
    EXPECT_EQ(texts(), (Texts{L"a", L"a", L"a"}));
    const wchar_t* strings[] = {list().get(0), list().get(1), list().get(2)};
    EXPECT_NE(strings[0], strings[1]);
    EXPECT_NE(strings[0], strings[2]);
    EXPECT_NE(strings[1], strings[2]);
    list().update(0, L"changed");
    EXPECT_EQ(texts(), (Texts{L"changed", L"a", L"a"}));
    list().store();
    EXPECT_EQ(storedTexts(), (Texts{L"changed", L"a", L"a"}));
    list().free();
    EXPECT_EQ(_heapchk(), _HEAPOK);
}

TEST_P(PolicyListsTest, StringsHandedInAreReleasedByTheList)
{
    const auto round = [] {
        list().load();
        for (int i = 0; i < 100; ++i) {
            list().add(L"text " + std::to_wstring(i));
        }
        for (std::uint32_t i = 0; i < 100; ++i) {
            list().update(i, L"other");
        }
        list().remove(7);
        list().update(7, L"refused");
        list().update(1000, L"refused");
        list().store();
        list().free();
        list().add(L"refused");
        list().update(0, L"refused");
    };
    round();
    const long before = LeakCount::now().heapBlocks;
    round(); // the same again: as many entries are loaded at its start as it stores
    list().free();
    EXPECT_LE(LeakCount::now().heapBlocks, before + 2);
}

TEST_P(PolicyListsTest, WithoutLoadingNothingHappens)
{
    storeTexts({L"kept"});
    EXPECT_EQ(list().get(0), nullptr);
    EXPECT_EQ(list().add(L"lost"), kNone);
    list().update(0, L"lost");
    list().remove(0);
    list().store();
    EXPECT_TRUE(reported(L"not loaded"));
    if (list().apply != nullptr) {
        list().apply();
        EXPECT_TRUE(reported(L"not loaded"));
    }
    EXPECT_EQ(storedTexts(), Texts{L"kept"});
}

TEST_P(PolicyListsTest, IndexesThatAreNone)
{
    storeTexts({L"a"});
    list().load();
    for (const std::uint32_t index : {1u, 2u, 0x7FFFFFFFu, 0x80000000u, kNone}) {
        EXPECT_EQ(list().get(index), nullptr);
        list().update(index, L"x");
        list().remove(index);
    }
    EXPECT_EQ(list().addText(nullptr), kNone);
    list().updateText(0, nullptr);
    EXPECT_EQ(texts(), Texts{L"a"});
}

TEST_P(PolicyListsTest, LoadingAgainDropsWhatWasNotStored)
{
    storeTexts({L"a"});
    list().load();
    list().add(L"b");
    list().load();
    EXPECT_EQ(texts(), Texts{L"a"});
}

INSTANTIATE_TEST_SUITE_P(Each, PolicyListsTest, eachList(), nameOf);

} // namespace
