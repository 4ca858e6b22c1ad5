// Sizes of trees with links, of trees that refuse, that change meanwhile, that are as deep as a path can be.
#include "tree_test.h"

#include "tests/support/import_patch.h"

#include <algorithm>

namespace {

using namespace store_test;

using OddTreeTest = TreeTest;

// ---- things that a tree does only now and then

std::wstring changedName;
DWORD changedAttributes = 0;

void change(WIN32_FIND_DATAW* found)
{
    if (found->cFileName == changedName) {
        found->dwFileAttributes |= changedAttributes;
    }
}

HANDLE WINAPI findFirstChanged(const wchar_t* name, FINDEX_INFO_LEVELS level, void* found,
                               FINDEX_SEARCH_OPS search, void* filter, DWORD flags)
{
    const HANDLE handle = FindFirstFileExW(name, level, found, search, filter, flags);
    if (handle != INVALID_HANDLE_VALUE) {
        change(static_cast<WIN32_FIND_DATAW*>(found));
    }
    return handle;
}

BOOL WINAPI findNextChanged(HANDLE handle, WIN32_FIND_DATAW* found)
{
    const BOOL done = FindNextFileW(handle, found);
    if (done) {
        change(found);
    }
    return done;
}

TEST_F(OddTreeTest, LinksAreNotFollowed)
{
    makeFolder(in(L"real"));
    makeFile(in(L"real\\a"), 5);
    makeFolder(in(L"link"));
    makeFile(in(L"link\\far away"), 1000);
    EXPECT_EQ(getRealSize(top_.c_str()), 1005);

    // What a folder shows of a link or a mount point is this attribute.
    const ImportPatch first(storeModule(), "FindFirstFileExW", &findFirstChanged);
    const ImportPatch next(storeModule(), "FindNextFileW", &findNextChanged);
    ASSERT_EQ(first.count() + next.count(), 2);
    changedName = L"link";
    changedAttributes = FILE_ATTRIBUTE_REPARSE_POINT;
    EXPECT_EQ(getRealSize(top_.c_str()), 5);
    EXPECT_EQ(getRealSize(in(L"link").c_str()), 1000) << "a link that is named itself is meant";
}

TEST_F(OddTreeTest, RealLinksAreNotFollowed)
{
    makeFolder(in(L"real"));
    makeFile(in(L"real\\a"), 5);
    makeFile(in(L"b"), 70);
    if (!makeLink(in(L"link"), L"real") || !makeLink(in(L"real\\loop"), L"..\\real")) {
        GTEST_SKIP() << "this system makes no links";
    }
    EXPECT_EQ(getRealSize(top_.c_str()), 75);
    EXPECT_EQ(getRealSize(in(L"link").c_str()), 5);
}

TEST_F(OddTreeTest, FilesThatOnlyLookLikeLinksCount)
{
    makeFile(in(L"deduplicated"), 5);
    const ImportPatch first(storeModule(), "FindFirstFileExW", &findFirstChanged);
    const ImportPatch next(storeModule(), "FindNextFileW", &findNextChanged);
    changedName = L"deduplicated";
    changedAttributes = FILE_ATTRIBUTE_REPARSE_POINT;
    EXPECT_EQ(getRealSize(top_.c_str()), 5);
}

std::wstring deniedName;

HANDLE WINAPI findFirstDenied(const wchar_t* name, FINDEX_INFO_LEVELS level, void* found,
                              FINDEX_SEARCH_OPS search, void* filter, DWORD flags)
{
    if (std::wstring_view(name).ends_with(deniedName + L"\\*")) {
        SetLastError(ERROR_ACCESS_DENIED);
        return INVALID_HANDLE_VALUE;
    }
    return FindFirstFileExW(name, level, found, search, filter, flags);
}

TEST_F(OddTreeTest, FoldersThatDenyAccessCountAsEmpty)
{
    makeFile(in(L"a"), 5);
    makeFolder(in(L"denied"));
    makeFile(in(L"denied\\b"), 1000);
    makeFolder(in(L"open"));
    makeFile(in(L"open\\c"), 70);
    const ImportPatch first(storeModule(), "FindFirstFileExW", &findFirstDenied);
    ASSERT_EQ(first.count(), 1);
    deniedName = L"denied";
    EXPECT_EQ(getRealSize(top_.c_str()), 75);
    EXPECT_STREQ(lornixLastError(), L"");
    EXPECT_EQ(getRealSize(in(L"denied").c_str()), 0);
    EXPECT_TRUE(reported(L"(error 5)"));
}

std::wstring vanishing;
int steps = 0;

BOOL WINAPI findNextVanishing(HANDLE handle, WIN32_FIND_DATAW* found)
{
    if (++steps == 4) {
        EXPECT_TRUE(removeTree(vanishing));
    }
    return FindNextFileW(handle, found);
}

TEST_F(OddTreeTest, FoldersThatVanishMeanwhileAreLeftOut)
{
    for (const wchar_t* name : {L"1", L"2", L"3", L"4", L"5", L"6"}) {
        makeFolder(in(name));
        makeFile(in(name) + L"\\a", 10);
        makeFolder(in(name) + L"\\below");
        makeFile(in(name) + L"\\below\\b", 10);
    }
    vanishing = in(L"3");
    steps = 0;
    const ImportPatch next(storeModule(), "FindNextFileW", &findNextVanishing);
    ASSERT_EQ(next.count(), 1);
    EXPECT_EQ(getRealSize(top_.c_str()), 100);
    EXPECT_STREQ(lornixLastError(), L"");
}

// ---- a tree as deep as a path can be, which no disk has to hold

constexpr std::size_t kLongestPath = 32767;
int stepsLeft = 0; // of the folder that is open: a file, then the next folder
int openSearches = 0;
int mostOpenSearches = 0;

void describeStep(WIN32_FIND_DATAW* found)
{
    *found = {};
    const bool isFile = stepsLeft-- == 2;
    wcscpy(found->cFileName, isFile ? L"f" : L"d");
    found->dwFileAttributes = isFile ? FILE_ATTRIBUTE_NORMAL : FILE_ATTRIBUTE_DIRECTORY;
    found->nFileSizeLow = isFile ? 1 : 0;
}

HANDLE WINAPI findFirstDeep(const wchar_t* name, FINDEX_INFO_LEVELS, void* found, FINDEX_SEARCH_OPS, void*,
                            DWORD)
{
    if (wcslen(name) > kLongestPath) {
        SetLastError(ERROR_FILENAME_EXCED_RANGE);
        return INVALID_HANDLE_VALUE;
    }
    stepsLeft = 2;
    mostOpenSearches = std::max(mostOpenSearches, ++openSearches);
    describeStep(static_cast<WIN32_FIND_DATAW*>(found));
    return &openSearches;
}

BOOL WINAPI findNextDeep(HANDLE, WIN32_FIND_DATAW* found)
{
    if (stepsLeft == 0) {
        return FALSE;
    }
    describeStep(found);
    return TRUE;
}

BOOL WINAPI closeDeep(HANDLE)
{
    --openSearches;
    return TRUE;
}

TEST_F(OddTreeTest, NoDepthIsTooDeep)
{
    const ImportPatch first(storeModule(), "FindFirstFileExW", &findFirstDeep);
    const ImportPatch next(storeModule(), "FindNextFileW", &findNextDeep);
    const ImportPatch close(storeModule(), "FindClose", &closeDeep);
    ASSERT_EQ(first.count() + next.count() + close.count(), 3);
    const std::size_t prefix = std::wstring(L"\\\\?\\D:").size();
    EXPECT_EQ(getRealSize(L"D:\\"), static_cast<std::int64_t>((kLongestPath - prefix) / 2));
    EXPECT_EQ(openSearches, 0);
    EXPECT_EQ(mostOpenSearches, 1);
}

} // namespace
