// What only blocked extensions have, accounts, and only exceptions, the file of those that are active; and what a kill
// leaves behind.
#include "policy_list_test.h"
#include "start_process.h"

#include <cstring>
#include <random>

namespace {

using namespace store_test;

class BlockedExtensionsTest : public StoreTest {
protected:
    void TearDown() override
    {
        freeExcludeExts();
        StoreTest::TearDown();
    }
    static std::wstring account(std::uint32_t index)
    {
        const void* sid = getExcludeExtsSid(index);
        return sid == nullptr ? L"(all)" : textOf(sid);
    }
};

constexpr const wchar_t* kAlice = L"S-1-5-21-1-2-3-1001";
constexpr const wchar_t* kBob = L"S-1-5-21-1-2-3-1002";

TEST_F(BlockedExtensionsTest, AccountsAreCopied)
{
    loadExcludeExts();
    Block<void> sid = sidOf(kAlice);
    addToExcludeExts(copy(L"*.mp3"), sid.get());
    addToExcludeExts(copy(L"*.avi"), nullptr);
    std::memcpy(sid.get(), sidOf(kBob).get(), GetLengthSid(sid.get())); // the editor uses its buffer again
    EXPECT_EQ(account(0), kAlice);
    EXPECT_NE(getExcludeExtsSid(0), sid.get());
    EXPECT_EQ(account(1), L"(all)");
    updateExcludeExts(1, copy(L"*.mov"), sid.get());
    storeExcludeExts();
    freeExcludeExts();
    loadExcludeExts();
    EXPECT_STREQ(getExcludeExtsPath(0), L"*.mp3");
    EXPECT_EQ(account(0), kAlice);
    EXPECT_STREQ(getExcludeExtsPath(1), L"*.mov");
    EXPECT_EQ(account(1), kBob);
    updateExcludeExts(0, getExcludeExtsPath(0), nullptr);
    EXPECT_EQ(account(0), L"(all)");
    EXPECT_EQ(getExcludeExtsSid(2), nullptr);
    EXPECT_EQ(getExcludeExtsSid(kNone), nullptr);
}

TEST_F(BlockedExtensionsTest, ItsOwnAccountMayBeHandedBack)
{
    loadExcludeExts();
    addToExcludeExts(copy(L"*.mp3"), sidOf(kAlice).get());
    updateExcludeExts(0, getExcludeExtsPath(0), getExcludeExtsSid(0));
    EXPECT_EQ(addToExcludeExts(copy(L"*.avi"), getExcludeExtsSid(0)), 1u);
    EXPECT_EQ(account(0), kAlice);
    EXPECT_EQ(account(1), kAlice);
}

TEST_F(BlockedExtensionsTest, AnAccountThatIsNoneDoesNotMeanEverybody)
{
    loadExcludeExts();
    unsigned char rubbish[SECURITY_MAX_SID_SIZE] = {77, 200};
    EXPECT_EQ(addToExcludeExts(copy(L"*.mp3"), rubbish), kNone);
    EXPECT_TRUE(reported(L"no valid SID"));
    addToExcludeExts(copy(L"*.avi"), sidOf(kAlice).get());
    updateExcludeExts(0, copy(L"*.mov"), rubbish);
    EXPECT_STREQ(getExcludeExtsPath(0), L"*.avi");
    EXPECT_EQ(account(0), kAlice);
}

TEST_F(BlockedExtensionsTest, ALineWithoutAnAccountIsLeftOut)
{
    std::filesystem::create_directories(data());
    writeBytes(data() / L"blocked-extensions.txt",
               "lornix blocked-extensions 1\nmask *.mp3\nmask S-1-5-21-1-2-3-1001 *.a b\nchecksum -\nend\n");
    loadExcludeExts();
    EXPECT_TRUE(reported(L"line 2"));
    EXPECT_STREQ(getExcludeExtsPath(0), L"*.a b");
    EXPECT_EQ(account(0), kAlice);
    EXPECT_EQ(getExcludeExtsPath(1), nullptr);
}

class ActiveExceptionsTest : public StoreTest {
protected:
    void TearDown() override
    {
        freeExcludes();
        freeBackupTools();
        StoreTest::TearDown();
    }
};

TEST_F(ActiveExceptionsTest, TheFileHoldsWhatIsActive)
{
    storeRulesFromDriver(L"excludes.cnf");
    EXPECT_EQ(bytesOf(data() / L"excludes.cnf"), checked("lornix active-exceptions 1\r\n"));
    loadExcludes();
    addToExcludes(copy(L"C:\\pagefile.sys"));
    addToExcludes(copy(L"C:\\50%"));
    storeExcludes();
    storeRulesFromDriver(L"excludes.cnf");
    EXPECT_EQ(bytesOf(data() / L"excludes.cnf"),
              checked("lornix active-exceptions 1\r\n")); // stored, not active
    applyExcludes();
    loadBackupTools();
    addToBackupTools(copy(L"bk.exe"));
    storeBackupTools();
    applyBackupTools();
    storeRulesFromDriver(L"excludes.cnf");
    EXPECT_STREQ(lornixLastError(), L"");
    EXPECT_EQ(bytesOf(data() / L"excludes.cnf"), checked("lornix active-exceptions 1\r\n"
                                                         "exclude\tC:\\pagefile.sys\r\n"
                                                         "exclude\tC:\\50%u0025\r\n"
                                                         "tool\tbk.exe\r\n"));
}

TEST_F(ActiveExceptionsTest, NamesThatWouldLeadElsewhere)
{
    loadExcludes();
    addToExcludes(copy(L"kept"));
    storeExcludes();
    const auto names = namesIn(data());
    for (const wchar_t* name :
         {L"", L".", L"..", L"..\\x.cnf", L"C:x.cnf", L"a/b", L"excludes.txt", L"EXCLUDES.TXT",
          L"lornix.lock", L"x.lornix-new", L"x.txt.", L"x.txt ", L"x.cnf:stream"})
    {
        storeRulesFromDriver(name);
        EXPECT_TRUE(reported(L"is no name for a file")) << testing::PrintToString(name);
    }
    storeRulesFromDriver(nullptr);
    EXPECT_EQ(namesIn(data()), names);
}

TEST_F(ActiveExceptionsTest, AListHasAHundredThousandEntriesAtMost)
{
    constexpr std::uint32_t kMost = 100000;
    loadExcludes();
    for (std::uint32_t i = 0; i <= kMost; ++i) {
        addToExcludes(copy((L"C:\\" + std::to_wstring(i)).c_str()));
    }
    storeExcludes();
    EXPECT_TRUE(reported(L"too many entries"));
    EXPECT_FALSE(std::filesystem::exists(data() / L"excludes.txt"));
    removeExcludes(7);
    storeExcludes();
    EXPECT_STREQ(lornixLastError(), L"");
    loadExcludes();
    EXPECT_STREQ(lornixLastError(), L"");
    EXPECT_STREQ(getExcludes(kMost - 1), L"C:\\100000");
    EXPECT_EQ(getExcludes(kMost), nullptr);

    // What somebody wrote behind them is told and stays in the file.
    std::string text = bytesOf(data() / L"excludes.txt");
    text.replace(text.find("checksum"), std::string::npos, "exclude one more\r\nchecksum -\r\nend\r\n");
    writeBytes(data() / L"excludes.txt", text);
    loadExcludes();
    EXPECT_TRUE(reported(L"line 100002: there are too many before it"));
    EXPECT_NE(getExcludes(kMost - 1), nullptr);
    EXPECT_EQ(getExcludes(kMost), nullptr);
    EXPECT_EQ(bytesOf(data() / L"excludes.txt"), text);
}

/// The program that is killed, as far as its first round.
class Writer {
public:
    explicit Writer(int number)
    {
        const std::wstring event =
            L"lornix-writer-" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(number);
        m_started = CreateEventW(nullptr, TRUE, FALSE, event.c_str());
        wchar_t self[MAX_PATH];
        GetModuleFileNameW(nullptr, self, MAX_PATH);
        const auto program = std::filesystem::path(self).replace_filename(L"policy_writer.exe");
        m_process = startProcess(program.wstring(), event);
        const HANDLE either[] = {m_started, m_process.hProcess};
        EXPECT_EQ(WaitForMultipleObjects(2, either, FALSE, 60000), WAIT_OBJECT_0);
    }
    ~Writer()
    {
        EXPECT_TRUE(TerminateProcess(m_process.hProcess, 9));
        WaitForSingleObject(m_process.hProcess, INFINITE);
        CloseHandle(m_process.hThread);
        CloseHandle(m_process.hProcess);
        CloseHandle(m_started);
    }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

private:
    HANDLE m_started = nullptr;
    PROCESS_INFORMATION m_process{};
};

TEST_F(ActiveExceptionsTest, AKillLeavesOneListOrTheOther)
{
    constexpr std::uint32_t kEntries = 3000;
    loadExcludes();
    for (std::uint32_t i = 0; i < kEntries; ++i) {
        addToExcludes(copy((L"first " + std::to_wstring(i)).c_str()));
    }
    storeExcludes();
    freeExcludes();
    SetEnvironmentVariableW(L"LORNIX_DATA", data().c_str());
    std::mt19937 random(4711);
    for (int round = 0; round < 12; ++round) {
        {
            const Writer writer(round);
            Sleep(random() % 40); // into some other moment of the next rounds
        }
        ASSERT_NE(loadExcludes(), 0);
        EXPECT_STREQ(lornixLastError(), L"");
        const wchar_t* const top = getExcludes(0);
        ASSERT_NE(top, nullptr);
        const std::wstring prefix = std::wstring(top).substr(0, std::wstring(top).find(L' ') + 1);
        EXPECT_TRUE(prefix == L"first " || prefix == L"second ");
        std::uint32_t count = 0;
        for (; getExcludes(count) != nullptr; ++count) {
            ASSERT_EQ(getExcludes(count), prefix + std::to_wstring(count));
        }
        EXPECT_EQ(count, kEntries);
        storeExcludes(); // clears away what was half written
        EXPECT_STREQ(lornixLastError(), L"");
        for (const std::wstring& name : namesIn(data())) {
            EXPECT_FALSE(name.ends_with(L".lornix-new")) << testing::PrintToString(name);
        }
        freeExcludes();
    }
    SetEnvironmentVariableW(L"LORNIX_DATA", nullptr);
}

} // namespace
