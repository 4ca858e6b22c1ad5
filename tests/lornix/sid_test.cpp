// Security identifiers and the lists that cross the border.
#include "lornix/text/sid_text.h"
#include "store_test.h"

#include "tests/support/leak_count.h"

#include <sddl.h>

namespace {

using namespace store_test;

const wchar_t* const kTexts[] = {L"S-1-1-0",           L"S-1-5-18",
                                 L"S-1-5-32-544",      L"S-1-5-21-1004336348-1177238915-682003330-1105",
                                 L"S-1-16-4294967295", L"S-1-5-1-2-3-4-5-6-7-8-9-10-11-12-13-14-15"};

TEST(SidTest, CopyIsEqualAndItsOwn)
{
    for (const wchar_t* text : kTexts) {
        const Block<void> sid = sidOf(text);
        const Block<void> copy(sidDup(sid.get()));
        ASSERT_NE(copy, nullptr);
        EXPECT_NE(copy.get(), sid.get());
        EXPECT_EQ(sidcmp(sid.get(), copy.get()), 0);
        EXPECT_TRUE(EqualSid(sid.get(), copy.get()));
        EXPECT_EQ(textOf(copy.get()), text);
    }
}

TEST(SidTest, EveryTwoOthersDiffer)
{
    for (const wchar_t* one : kTexts) {
        for (const wchar_t* other : kTexts) {
            EXPECT_EQ(sidcmp(sidOf(one).get(), sidOf(other).get()) == 0, one == other);
        }
    }
}

TEST(SidTest, NullAndInvalidOnesAreNobody)
{
    const Block<void> sid = sidOf(L"S-1-5-18");
    std::uint8_t invalid[] = {9, 1, 0, 0, 0, 0, 0, 5, 18, 0, 0, 0};
    std::uint8_t tooMany[80] = {1, 16};
    EXPECT_EQ(sidDup(nullptr), nullptr);
    EXPECT_EQ(sidDup(invalid), nullptr);
    EXPECT_EQ(sidDup(tooMany), nullptr);
    EXPECT_NE(sidcmp(nullptr, sid.get()), 0);
    EXPECT_NE(sidcmp(sid.get(), nullptr), 0);
    EXPECT_NE(sidcmp(nullptr, nullptr), 0);
    EXPECT_NE(sidcmp(invalid, sid.get()), 0);
    wchar_t text[50] = L"before";
    getTextualSidW(nullptr, text, 50);
    EXPECT_STREQ(text, L"");
    wcscpy(text, L"before");
    getTextualSidW(invalid, text, 50);
    EXPECT_STREQ(text, L"");
}

TEST(SidTest, TextIsWholeOrEmpty)
{
    const Block<void> sid = sidOf(L"S-1-5-18");
    wchar_t text[12] = L"ABCDEFGHIJK";
    getTextualSidW(sid.get(), text, 9);
    EXPECT_STREQ(text, L"S-1-5-18");
    EXPECT_EQ(text[9], L'J');
    getTextualSidW(sid.get(), text, 8);
    EXPECT_STREQ(text, L"");
    wcscpy(text, L"untouched");
    getTextualSidW(sid.get(), text, 0);
    getTextualSidW(sid.get(), text, -1);
    getTextualSidW(sid.get(), nullptr, 10);
    EXPECT_STREQ(text, L"untouched");
}

TEST(SidTest, TheTextInFilesIsThePlatforms)
{
    for (const wchar_t* text : kTexts) {
        const Block<void> sid = sidOf(text);
        std::string line;
        lornix::appendSidText(line, {static_cast<const std::uint8_t*>(sid.get()), GetLengthSid(sid.get())});
        EXPECT_EQ(std::wstring(line.begin(), line.end()), text);
        const auto parsed = lornix::parseSid(line);
        ASSERT_TRUE(parsed);
        EXPECT_TRUE(EqualSid(const_cast<std::uint8_t*>(parsed->bytes().data()), sid.get()));
    }
}

TEST(SidListTest, GrowsInOrder)
{
    constexpr DWORD kCount = 20000;
    SidList* list = createEmptySidList();
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->count, 0);
    int moves = 0;
    for (DWORD i = 0; i < kCount; ++i) {
        alignas(SID) BYTE sid[SECURITY_MAX_SID_SIZE];
        SID_IDENTIFIER_AUTHORITY authority = SECURITY_NT_AUTHORITY;
        InitializeSid(sid, &authority, 1);
        *GetSidSubAuthority(sid, 0) = i;
        SidList* grown = appendToSidList(list, sidDup(sid));
        moves += grown != list;
        list = grown;
    }
    const Sids owner(list);
    ASSERT_EQ(list->count, static_cast<std::int32_t>(kCount));
    void* const* sids = list->sids;
    for (DWORD i = 0; i < kCount; ++i) {
        ASSERT_EQ(*GetSidSubAuthority(sids[i], 0), i);
    }
    EXPECT_LT(moves, 100) << "it is not copied for each one";
}

TEST(SidListTest, NullArguments)
{
    freeSidList(nullptr);
    const Sids made(appendToSidList(nullptr, sidOf(L"S-1-5-18").release()));
    EXPECT_EQ(textsOf(made.get()), std::vector<std::wstring>{L"S-1-5-18"});
    EXPECT_EQ(appendToSidList(made.get(), nullptr), made.get());
    EXPECT_EQ(made->count, 1);
    EXPECT_EQ(appendToSidList2(made.get(), nullptr), made.get());
    EXPECT_EQ(appendToSidList2(nullptr, nullptr), nullptr);
}

TEST(SidListTest, MergingCopies)
{
    SidList* source = nullptr;
    for (const wchar_t* text : kTexts) {
        source = appendToSidList(source, sidOf(text).release());
    }
    SidList* list = appendToSidList(nullptr, sidOf(L"S-1-5-19").release());
    list = appendToSidList2(list, source);
    ASSERT_NE(list, source);
    freeSidList(source); // as a caller does when the result is another list
    const Sids owner(list);
    std::vector<std::wstring> expected{L"S-1-5-19"};
    expected.insert(expected.end(), std::begin(kTexts), std::end(kTexts));
    EXPECT_EQ(textsOf(list), expected);
}

TEST(SidListTest, AListThatTheCallerMadeMaySupplyOthers)
{
    const Block<void> sid = sidOf(L"S-1-5-18");
    SidList mine{1, {sid.get()}};
    const Sids list(appendToSidList2(createEmptySidList(), &mine));
    EXPECT_EQ(textsOf(list.get()), std::vector<std::wstring>{L"S-1-5-18"});
    EXPECT_EQ(mine.count, 1);
    EXPECT_EQ(mine.sids[0], sid.get());
}

TEST(SidListTest, AnExactBlockOfMallocMayGrow)
{
    auto* block = static_cast<SidList*>(malloc(offsetof(SidList, sids) + sizeof(void*)));
    block->count = 1;
    block->sids[0] = sidOf(L"S-1-5-18").release();
    const Sids list(appendToSidList(block, sidOf(L"S-1-5-19").release()));
    EXPECT_EQ(textsOf(list.get()), (std::vector<std::wstring>{L"S-1-5-18", L"S-1-5-19"}));
}

TEST(PathListTest, GrowsInOrderAndCopies)
{
    PathList* list = nullptr;
    std::wstring name = L"D:\\0";
    for (int i = 0; i < 5000; ++i) {
        name = L"D:\\" + std::to_wstring(i);
        list = appendToPaths(list, name.c_str());
    }
    const Folders owner(list);
    ASSERT_EQ(list->count, 5000);
    EXPECT_STREQ(list->paths[0], L"D:\\0");
    EXPECT_EQ(namesOf(list)[4321], L"D:\\4321");
    EXPECT_EQ(appendToPaths(list, nullptr), list);
    EXPECT_EQ(list->count, 5000);
    freePathList(nullptr);
}

TEST(LeakTest, RecordsAndListsAreReleasedWhole)
{
    const auto work = [] {
        Sids list(appendToSidList2(appendToSidList(nullptr, sidOf(L"S-1-5-18").release()), nullptr));
        for (int i = 0; i < 50; ++i) {
            list.reset(appendToSidList2(list.release(),
                                        Sids(appendToSidList(nullptr, sidOf(L"S-1-5-19").release())).get()));
        }
        const Folders folders = foldersOf({L"D:\\A", L"D:\\B", L"D:\\C"});
    };
    work();
    const LeakCount before = LeakCount::now();
    for (int i = 0; i < 20; ++i) {
        work();
    }
    EXPECT_EQ(LeakCount::now().heapBlocks, before.heapBlocks);
}

} // namespace
