// What holds for all five policy lists.
#include "debug_lines.h"
#include "store_test.h"
#include "tests/support/leak_count.h"

#include <malloc.h>

namespace {

using namespace store_test;

constexpr std::uint32_t kNone = 0xFFFFFFFF;

/// The functions of one list.
struct List {
    const char* name;
    const wchar_t* file;
    const char* firstLine;
    const char* word; ///< what an entry's line starts with, with the blank behind it
    int (*load)();
    const wchar_t* (*get)(std::uint32_t);
    std::uint32_t (*addText)(const wchar_t*);
    void (*updateText)(std::uint32_t, const wchar_t*);
    void (*remove)(std::uint32_t);
    void (*store)();
    void (*apply)(); ///< null for notifications
    void (*free)();

    std::uint32_t add(const std::wstring& text) const { return addText(_wcsdup(text.c_str())); }
    void update(std::uint32_t index, const std::wstring& text) const
    {
        updateText(index, _wcsdup(text.c_str()));
    }
};

const List kLists[] = {
    {"Notifications", L"notifications.txt", "lornix notifications 1", "notification ", loadNotifications,
     getNotifications, addToNotifications, updateNotifications, removeNotifications, storeNotifications,
     nullptr, freeNotifications},
    {"Excludes", L"excludes.txt", "lornix excludes 1", "exclude ", loadExcludes, getExcludes, addToExcludes,
     updateExcludes, removeExcludes, storeExcludes, applyExcludes, freeExcludes},
    {"ExcludeExts", L"blocked-extensions.txt", "lornix blocked-extensions 1", "mask anyone ", loadExcludeExts,
     getExcludeExtsPath, [](const wchar_t* text) { return addToExcludeExts(text, nullptr); },
     [](std::uint32_t index, const wchar_t* text) { updateExcludeExts(index, text, nullptr); },
     removeExcludeExts, storeExcludeExts, applyExcludeExts, freeExcludeExts},
    {"MgrAccounts", L"administrative-accounts.txt", "lornix administrative-accounts 1", "account ",
     loadMgrAccounts, getMgrAccounts, addToMgrAccounts, updateMgrAccounts, removeMgrAccounts,
     storeMgrAccounts, applyMgrAccounts, freeMgrAccounts},
    {"BackupTools", L"backup-tools.txt", "lornix backup-tools 1", "tool ", loadBackupTools, getBackupTools,
     addToBackupTools, updateBackupTools, removeBackupTools, storeBackupTools, applyBackupTools,
     freeBackupTools},
};

using Texts = std::vector<std::wstring>;

class PolicyListsTest : public StoreTest, public testing::WithParamInterface<List> {
protected:
    void TearDown() override
    {
        list().free();
        StoreTest::TearDown();
    }

    static const List& list() { return GetParam(); }
    std::filesystem::path file() const { return data() / list().file; }
    std::filesystem::path activeFile() const { return data() / (std::wstring(L"active-") + list().file); }

    /// The loaded entries up to the first that is none.
    static Texts texts()
    {
        Texts all;
        for (std::uint32_t i = 0; list().get(i) != nullptr; ++i) {
            all.emplace_back(list().get(i));
        }
        return all;
    }

    /// What a fresh load gives.
    static Texts storedTexts()
    {
        list().free();
        EXPECT_NE(list().load(), 0);
        return texts();
    }

    static void storeTexts(const Texts& all)
    {
        list().free();
        ASSERT_NE(list().load(), 0);
        while (!texts().empty()) {
            for (std::uint32_t i = 0, count = static_cast<std::uint32_t>(texts().size()); i < count; ++i) {
                list().remove(i);
            }
        }
        for (const std::wstring& text : all) {
            ASSERT_NE(list().add(text), kNone);
        }
        list().store();
        ASSERT_STREQ(lornixLastError(), L"");
        list().free();
    }

    void writeFile(const std::string& lines) const
    {
        std::filesystem::create_directories(data());
        writeBytes(file(), list().firstLine + std::string("\r\n") + lines);
    }

    std::string line(const std::string& text) const { return list().word + text + "\r\n"; }
};

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

TEST_P(PolicyListsTest, ADamagedFileGivesItsGoodLinesAndIsSetAsideByStoring)
{
    const std::string before = list().firstLine + std::string("\r\n") + line("good") + "nonsense here\r\n" +
                               line("bad %u12") + line("better") + "checksum\t-\r\nend\r\n";
    std::filesystem::create_directories(data());
    writeBytes(file(), before);
    for (int round = 0; round < 2; ++round) {
        EXPECT_NE(list().load(), 0);
        EXPECT_EQ(texts(), (Texts{L"good", L"better"}));
        EXPECT_TRUE(reported(L"line 3"));
        EXPECT_TRUE(reported(L"line 4"));
        EXPECT_TRUE(namesIn(setAside()).empty());
        EXPECT_EQ(bytesOf(file()), before);
    }
    list().store();
    const auto aside = namesIn(setAside());
    ASSERT_EQ(aside.size(), 1u);
    EXPECT_EQ(bytesOf(setAside() / aside[0]), before);
    EXPECT_EQ(storedTexts(), (Texts{L"good", L"better"}));
    EXPECT_STREQ(lornixLastError(), L"");
    EXPECT_EQ(namesIn(setAside()).size(), 1u);
}

TEST_P(PolicyListsTest, AFileThatWasCutOffGivesItsWholeLines)
{
    writeFile(line("one") + list().word + "tw");
    EXPECT_NE(list().load(), 0);
    EXPECT_EQ(texts(), Texts{L"one"});
    EXPECT_TRUE(reported(L"the end is missing"));
    EXPECT_TRUE(namesIn(setAside()).empty());
}

TEST_P(PolicyListsTest, AForeignFileIsSetAsideByStoring)
{
    const std::string before("\0\1\2 something else", 18);
    std::filesystem::create_directories(data());
    writeBytes(file(), before);
    EXPECT_NE(list().load(), 0);
    EXPECT_EQ(texts(), Texts());
    EXPECT_TRUE(reported(L"is not readable as such"));
    EXPECT_EQ(bytesOf(file()), before);
    EXPECT_TRUE(namesIn(setAside()).empty());
    list().add(L"new");
    list().store();
    EXPECT_EQ(storedTexts(), Texts{L"new"});
    ASSERT_EQ(namesIn(setAside()).size(), 1u);
    EXPECT_EQ(bytesOf(setAside() / namesIn(setAside())[0]), before);
}

TEST_P(PolicyListsTest, AFileOfANewerVersionIsNeverTouched)
{
    std::string newer = list().firstLine;
    newer.back() = '2';
    for (const std::string& before : {newer + "\r\n" + line("kept") + "end\r\n", newer,
                                      std::string("lornix rules 1\r\nchecksum\t-\r\nend\r\n")})
    {
        std::filesystem::create_directories(data());
        writeBytes(file(), before);
        EXPECT_EQ(list().load(), 0);
        EXPECT_TRUE(reported(L"is of a newer version or of another kind"));
        EXPECT_EQ(list().get(0), nullptr);
        EXPECT_EQ(list().add(L"new"), kNone);
        list().store();
        EXPECT_TRUE(reported(L"not loaded"));
        EXPECT_EQ(bytesOf(file()), before);
        // Also when it comes while the list is loaded.
        std::filesystem::remove(file());
        EXPECT_NE(list().load(), 0);
        list().add(L"new");
        writeBytes(file(), before);
        list().store();
        EXPECT_TRUE(reported(L"is of a newer version or of another kind"));
        EXPECT_EQ(bytesOf(file()), before);
        if (list().apply != nullptr) {
            list().apply();
            EXPECT_TRUE(reported(L"is of a newer version or of another kind"));
            EXPECT_FALSE(std::filesystem::exists(activeFile()));
        }
    }
    EXPECT_TRUE(namesIn(setAside()).empty());
}

TEST_P(PolicyListsTest, ApplyingAfterARefusedStoreMeansWhatIsStored)
{
    if (list().apply == nullptr) {
        EXPECT_STREQ(list().name, "Notifications");
        return;
    }
    storeTexts({L"dismissed", L"stays"});
    list().load();
    list().apply();
    // Somebody else takes one out meanwhile, and makes it so.
    const std::string both = bytesOf(file());
    storeTexts({L"stays"});
    const std::string one = bytesOf(file());
    writeBytes(file(), both);
    list().load();
    writeBytes(file(), one);
    writeBytes(activeFile(), one);
    list().add(L"new");
    list().store();
    EXPECT_TRUE(reported(L"was changed by somebody else"));
    list().apply();
    EXPECT_EQ(bytesOf(activeFile()), one) << "whoever was dismissed does not come back";
}

TEST_P(PolicyListsTest, WhatIsNotWholeIsNotMadeActive)
{
    if (list().apply == nullptr) {
        EXPECT_STREQ(list().name, "Notifications");
        return;
    }
    storeTexts({L"a", L"b"});
    list().load();
    list().apply();
    const std::string before = bytesOf(activeFile());
    writeBytes(file(), list().firstLine + std::string("\r\n") + line("a"));
    list().apply();
    EXPECT_TRUE(reported(L"is not made active"));
    EXPECT_EQ(bytesOf(activeFile()), before);
}

TEST_P(PolicyListsTest, AFileDamagedBehindItsBackIsNotOverwritten)
{
    storeTexts({L"a"});
    list().load();
    writeBytes(file(), "precious");
    list().add(L"b");
    list().store();
    ASSERT_EQ(namesIn(setAside()).size(), 1u);
    EXPECT_EQ(bytesOf(setAside() / namesIn(setAside())[0]), "precious");
    EXPECT_EQ(storedTexts(), (Texts{L"a", L"b"}));
}

TEST_P(PolicyListsTest, AFileThatCannotBeReadIsLeftAlone)
{
    storeTexts({L"a"});
    const std::string before = bytesOf(file());
    HANDLE held =
        CreateFileW(file().c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(held, INVALID_HANDLE_VALUE);
    EXPECT_EQ(list().load(), 0);
    EXPECT_TRUE(reported(L"cannot be read"));
    EXPECT_EQ(list().add(L"b"), kNone);
    list().store();
    EXPECT_TRUE(reported(L"not loaded"));
    CloseHandle(held);
    EXPECT_EQ(bytesOf(file()), before);
}

BOOL WINAPI diskFull(HANDLE, LPCVOID, DWORD, LPDWORD, LPOVERLAPPED)
{
    SetLastError(ERROR_DISK_FULL);
    return FALSE;
}

BOOL WINAPI noMove(LPCWSTR, LPCWSTR, DWORD)
{
    SetLastError(ERROR_WRITE_PROTECT);
    return FALSE;
}

TEST_P(PolicyListsTest, WhatCannotBeStoredLeavesTheFormerList)
{
    storeTexts({L"a"});
    const std::string before = bytesOf(file());
    list().load();
    list().add(L"b");
    const HMODULE store = GetModuleHandleW(L"lornix.dll");
    {
        const ImportPatch patch(store, "WriteFile", &diskFull);
        ASSERT_GE(patch.count(), 1);
        list().store();
        EXPECT_TRUE(reported(L"112"));
    }
    {
        const ImportPatch patch(store, "MoveFileExW", &noMove);
        ASSERT_EQ(patch.count(), 1);
        list().store();
        EXPECT_TRUE(reported(L"19"));
    }
    EXPECT_EQ(bytesOf(file()), before);
    if (list().apply != nullptr) {
        list().apply(); // what is persistent becomes active, not what is not
        EXPECT_EQ(bytesOf(activeFile()), before);
    }
    for (const std::wstring& name : namesIn(data())) {
        EXPECT_FALSE(name.ends_with(L".lornix-new")) << testing::PrintToString(name);
    }
    EXPECT_EQ(texts(), (Texts{L"a", L"b"}));
    EXPECT_EQ(storedTexts(), Texts{L"a"});
}

TEST_P(PolicyListsTest, ApplyingWritesWhatIsPersistent)
{
    if (list().apply == nullptr) {
        EXPECT_STREQ(list().name, "Notifications");
        return;
    }
    storeTexts({L"a"});
    EXPECT_FALSE(std::filesystem::exists(activeFile()));
    list().load();
    list().add(L"b");
    list().apply();
    EXPECT_STREQ(lornixLastError(), L"");
    EXPECT_EQ(bytesOf(activeFile()), bytesOf(file()));
    list().store();
    EXPECT_NE(bytesOf(activeFile()), bytesOf(file()));
    list().apply();
    EXPECT_EQ(bytesOf(activeFile()), bytesOf(file()));
}

void PrintTo(const List& list, std::ostream* out)
{
    *out << list.name;
}

INSTANTIATE_TEST_SUITE_P(Each, PolicyListsTest, testing::ValuesIn(kLists),
                         [](const testing::TestParamInfo<List>& info) {
                             return std::string(info.param.name);
                         });

} // namespace
