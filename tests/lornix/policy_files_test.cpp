// The files of all five policy lists: damaged, of others, held, on a full disk; and what is made active.
#include "policy_list_test.h"

#include "tests/support/import_patch.h"

namespace {

using namespace store_test;

class PolicyFilesTest : public PolicyListTest {};

TEST_P(PolicyFilesTest, ADamagedFileGivesItsGoodLinesAndIsSetAsideByStoring)
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

TEST_P(PolicyFilesTest, ADamagedFileIsToldOncePerChangeToWhoeverTakesErrors)
{
    for (const char* lines : {"nonsense\r\n", "other nonsense\r\n"}) {
        writeFile(lines);
        lornixTakeErrors();
        list().load();
        EXPECT_NE(std::wstring(lornixTakeErrors()).find(L"is damaged"), std::wstring::npos);
        list().load();
        EXPECT_TRUE(reported(L"is damaged"));
        EXPECT_STREQ(lornixTakeErrors(), L"");
    }
}

TEST_P(PolicyFilesTest, AFileThatWasCutOffGivesItsWholeLines)
{
    writeFile(line("one") + list().word + "tw");
    EXPECT_NE(list().load(), 0);
    EXPECT_EQ(texts(), Texts{L"one"});
    EXPECT_TRUE(reported(L"the end is missing"));
    EXPECT_TRUE(namesIn(setAside()).empty());
}

TEST_P(PolicyFilesTest, AForeignFileIsSetAsideByStoring)
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

TEST_P(PolicyFilesTest, AFileOfANewerVersionIsNeverTouched)
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

TEST_P(PolicyFilesTest, ApplyingAfterARefusedStoreMeansWhatIsStored)
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

TEST_P(PolicyFilesTest, WhatIsNotWholeIsNotMadeActive)
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

TEST_P(PolicyFilesTest, AFileDamagedBehindItsBackIsNotOverwritten)
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

TEST_P(PolicyFilesTest, AFileThatCannotBeReadIsLeftAlone)
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

TEST_P(PolicyFilesTest, WhatCannotBeStoredLeavesTheFormerList)
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

TEST_P(PolicyFilesTest, ApplyingWritesWhatIsPersistent)
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

INSTANTIATE_TEST_SUITE_P(Each, PolicyFilesTest, eachList(), nameOf);

} // namespace
