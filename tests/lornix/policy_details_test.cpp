// What only one of the policy lists has: attributes and a password, accounts, the file of active exceptions; and
// what a kill leaves behind.
#include "debug_lines.h"
#include "start_process.h"
#include "store_test.h"

#include <wincrypt.h>

#include <cstring>
#include <random>

namespace {

using namespace store_test;

constexpr std::uint32_t kNone = 0xFFFFFFFF;
constexpr const wchar_t* kPassword = L"Tr0ub4dor&3 \x00C4\x4E2D";

wchar_t* copy(const wchar_t* text)
{
    return _wcsdup(text);
}

std::wstring attribute(std::uint32_t index, std::uint32_t number)
{
    const wchar_t* text = getNAttr(index, number);
    return text == nullptr ? L"(null)" : text;
}

/// A text as bytes of UTF-8.
std::string narrow(const std::wstring& text)
{
    std::string bytes(
        static_cast<std::size_t>(WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()),
                                                     nullptr, 0, nullptr, nullptr)),
        '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), bytes.data(),
                        static_cast<int>(bytes.size()), nullptr, nullptr);
    return bytes;
}

std::string hex(std::string_view bytes)
{
    std::string digits;
    for (const char each : bytes) {
        constexpr const char* kDigits = "0123456789abcdef";
        digits += kDigits[static_cast<unsigned char>(each) >> 4];
        digits += kDigits[static_cast<unsigned char>(each) & 15];
    }
    return digits;
}

std::string unitBytes(std::wstring_view text)
{
    return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t)};
}

/// Every form in which a careless writer would leave the password.
std::vector<std::string> clearForms()
{
    const std::wstring password = kPassword;
    std::vector<std::string> forms{narrow(password), unitBytes(password), "Tr0ub4dor"};
    for (std::size_t i = 0; i < 3; ++i) {
        forms.push_back(hex(forms[i]));
    }
    forms.push_back(unitBytes(L"Tr0ub4dor"));
    forms.push_back(hex(unitBytes(L"Tr0ub4dor")));
    return forms;
}

class NotificationsTest : public StoreTest {
protected:
    void TearDown() override
    {
        freeNotifications();
        SetEnvironmentVariableW(L"LORNIX_LOG", nullptr);
        StoreTest::TearDown();
    }
    std::filesystem::path file() const { return data() / L"notifications.txt"; }

    static void reload()
    {
        freeNotifications();
        ASSERT_NE(loadNotifications(), 0);
    }

    /// One stored notification with a password.
    static void storeOne()
    {
        loadNotifications();
        const std::uint32_t index = addToNotifications(copy(L"C:\\warn.cmd"));
        setNAttr(index, NOTIFICATION_RUN_AS, copy(L"EXAMPLE\\runner"));
        setNAttr(index, NOTIFICATION_PASSWORD, copy(kPassword));
        storeNotifications();
        ASSERT_STREQ(lornixLastError(), L"");
        freeNotifications();
    }
};

TEST_F(NotificationsTest, AttributesComeBack)
{
    loadNotifications();
    const std::uint32_t index = addToNotifications(copy(L"C:\\warn.cmd"));
    for (std::uint32_t i = 0; i < NOTIFICATION_ATTRIBUTE_COUNT; ++i) {
        EXPECT_EQ(getNAttr(index, i), nullptr);
        EXPECT_EQ(getINAttr(index, i), 0);
    }
    setNAttr(index, 0, copy(L" EXAMPLE\\alice "));
    setNAttr(index, 1, copy(L"1"));
    setNAttr(index, 2, copy(L"300"));
    setNAttr(index, 3, copy(L""));
    setNAttr(index, 5, copy(L"10k"));
    addToNotifications(copy(L"C:\\bare.cmd"));
    storeNotifications();
    reload();
    EXPECT_EQ(getNotificationsCount(), 2u);
    EXPECT_EQ(attribute(0, 0), L" EXAMPLE\\alice ");
    EXPECT_EQ(attribute(0, 1), L"1");
    EXPECT_EQ(attribute(0, 2), L"300");
    EXPECT_EQ(attribute(0, 3), L"");
    EXPECT_EQ(attribute(0, 4), L"(null)");
    EXPECT_EQ(attribute(0, 5), L"10k");
    for (std::uint32_t i = 0; i < NOTIFICATION_ATTRIBUTE_COUNT; ++i) {
        EXPECT_EQ(attribute(1, i), L"(null)");
    }
    setNAttr(0, 0, nullptr);
    storeNotifications();
    reload();
    EXPECT_EQ(attribute(0, 0), L"(null)");
}

TEST_F(NotificationsTest, CountAndAttributesAfterARemoval)
{
    loadNotifications();
    for (const wchar_t* script : {L"a", L"b", L"c"}) {
        setNAttr(addToNotifications(copy(script)), 1, copy(script));
    }
    removeNotifications(1);
    EXPECT_EQ(getNotificationsCount(), 2u);
    EXPECT_EQ(attribute(1, 1), L"(null)");
    EXPECT_EQ(attribute(2, 1), L"c");
    storeNotifications();
    reload();
    EXPECT_EQ(attribute(1, 1), L"c");
}

TEST_F(NotificationsTest, AttributesThatAreNone)
{
    loadNotifications();
    addToNotifications(copy(L"a"));
    EXPECT_EQ(getNAttr(0, 6), nullptr);
    EXPECT_EQ(getNAttr(0, kNone), nullptr);
    EXPECT_EQ(getNAttr(1, 0), nullptr);
    EXPECT_EQ(getINAttr(0, 6), 0);
    setNAttr(0, 6, copy(L"x"));
    setNAttr(1, 0, copy(L"x"));
    setNAttr(0, 6, nullptr);
    setNAttr(0, 0, copy(L"x"));
    setNAttr(0, 0, getNAttr(0, 0)); // its own string
    setNAttr(0, 1, getNAttr(0, 0));
    setNAttr(0, 0, copy(L"y"));
    EXPECT_EQ(attribute(0, 0), L"y");
    EXPECT_EQ(attribute(0, 1), L"x");
}

TEST_F(NotificationsTest, AttributesAsNumbers)
{
    struct Case {
        const wchar_t* text;
        std::int32_t number;
    };
    const Case cases[] = {{L"", 0},
                          {L"0", 0},
                          {L"300", 300},
                          {L"-1", -1},
                          {L" 7", 7},
                          {L"+7", 7},
                          {L"5m", 5242880},
                          {L"5M", 5242880},
                          {L"1k", 1024},
                          {L"1K", 1024},
                          {L"-1k", -1024},
                          {L"-1x", -1},
                          {L"1g", 1 << 30},
                          {L"4g", 0},
                          {L"1t", 0},
                          {L"12x", 12},
                          {L"x", 0},
                          {L"-", 0},
                          {L"2147483648", INT32_MIN}};
    loadNotifications();
    addToNotifications(copy(L"a"));
    for (const Case& each : cases) {
        setNAttr(0, 5, copy(each.text));
        EXPECT_EQ(getINAttr(0, 5), each.number) << testing::PrintToString(each.text);
    }
}

TEST_F(NotificationsTest, ThePasswordComesBackAndIsNowhereInClear)
{
    const DebugLines debug;
    const auto log = root() / L"log.txt";
    SetEnvironmentVariableW(L"LORNIX_LOG", log.c_str());
    ODS("the log is written\n");
    storeOne();
    reload();
    EXPECT_EQ(attribute(0, NOTIFICATION_PASSWORD), kPassword);
    // Every other way through: an update, a damaged file, a second store.
    updateNotifications(0, copy(L"C:\\other.cmd"));
    storeNotifications();
    freeNotifications();
    const std::string good = bytesOf(file());
    writeBytes(file(), good.substr(0, good.rfind("end")) + "rubbish\r\n");
    loadNotifications();
    EXPECT_EQ(attribute(0, NOTIFICATION_PASSWORD), kPassword);
    storeNotifications();
    EXPECT_EQ(std::wstring(lornixLastError()).find(kPassword), std::wstring::npos);

    int files = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root())) {
        if (!entry.is_regular_file()) {
            continue;
        }
        ++files;
        const std::string bytes = bytesOf(entry.path());
        for (const std::string& form : clearForms()) {
            EXPECT_EQ(bytes.find(form), std::string::npos) << entry.path() << " has " << form;
        }
    }
    EXPECT_GE(files, 3); // the list, the log, what was set aside
    EXPECT_NE(bytesOf(log).find("the log is written"), std::string::npos);
    for (const std::string& line : DebugLines::lines()) {
        EXPECT_EQ(line.find("Tr0ub4dor"), std::string::npos);
    }
}

TEST_F(NotificationsTest, ThePasswordIsProtectedByThePlatform)
{
    storeOne();
    // What stands in the file is a block that the platform's own function opens.
    const std::string text = bytesOf(file());
    const std::string word = "password-sealed\t";
    const std::size_t at = text.find(word);
    ASSERT_NE(at, std::string::npos);
    const std::string digits = text.substr(at + word.size(), text.find('\r', at) - at - word.size());
    std::string bytes;
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
        bytes += static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16));
    }
    DATA_BLOB sealed{static_cast<DWORD>(bytes.size()), reinterpret_cast<BYTE*>(bytes.data())};
    DATA_BLOB plain{};
    ASSERT_TRUE(
        CryptUnprotectData(&sealed, nullptr, nullptr, nullptr, nullptr, CRYPTPROTECT_UI_FORBIDDEN, &plain));
    EXPECT_STREQ(reinterpret_cast<const wchar_t*>(plain.pbData), kPassword);
    LocalFree(plain.pbData);
}

TEST_F(NotificationsTest, ThePasswordChangesAndGoes)
{
    storeOne();
    loadNotifications();
    setNAttr(0, NOTIFICATION_PASSWORD, getNAttr(0, NOTIFICATION_PASSWORD)); // handed back
    storeNotifications();
    reload();
    EXPECT_EQ(attribute(0, NOTIFICATION_PASSWORD), kPassword);
    setNAttr(0, NOTIFICATION_PASSWORD, copy(L"second"));
    storeNotifications();
    reload();
    EXPECT_EQ(attribute(0, NOTIFICATION_PASSWORD), L"second");
    setNAttr(0, NOTIFICATION_PASSWORD, copy(L""));
    storeNotifications();
    reload();
    EXPECT_EQ(attribute(0, NOTIFICATION_PASSWORD), L"");
    setNAttr(0, NOTIFICATION_PASSWORD, nullptr);
    storeNotifications();
    reload();
    EXPECT_EQ(attribute(0, NOTIFICATION_PASSWORD), L"(null)");
    EXPECT_EQ(bytesOf(file()).find("password"), std::string::npos);
}

TEST_F(NotificationsTest, APasswordOfSomebodyElseIsKept)
{
    storeOne();
    // A block that does not open here, as one from another account would not.
    const std::string before = bytesOf(file());
    const std::string word = "password-sealed\t";
    const std::size_t at = before.find(word) + word.size();
    const std::string foreign = checked(before.substr(0, at) + "00112233445566778899\r\n");
    writeBytes(file(), foreign);
    ASSERT_NE(loadNotifications(), 0);
    EXPECT_TRUE(reported(L"1 passwords that this account cannot read"));
    EXPECT_EQ(attribute(0, NOTIFICATION_PASSWORD), L"(null)");
    EXPECT_EQ(attribute(0, NOTIFICATION_RUN_AS), L"EXAMPLE\\runner");
    setNAttr(0, NOTIFICATION_PASSWORD, nullptr); // an editor that showed none gives none back
    storeNotifications();
    EXPECT_EQ(bytesOf(file()), foreign);
    setNAttr(0, NOTIFICATION_PASSWORD, copy(L"mine"));
    storeNotifications();
    reload();
    EXPECT_STREQ(lornixLastError(), L"");
    EXPECT_EQ(attribute(0, NOTIFICATION_PASSWORD), L"mine");
}

BOOL WINAPI noProtection(DATA_BLOB*, LPCWSTR, DATA_BLOB*, PVOID, CRYPTPROTECT_PROMPTSTRUCT*, DWORD,
                         DATA_BLOB*)
{
    SetLastError(ERROR_NOT_SUPPORTED);
    return FALSE;
}

TEST_F(NotificationsTest, WithoutProtectionNothingIsStored)
{
    storeOne();
    const std::string before = bytesOf(file());
    loadNotifications();
    setNAttr(0, NOTIFICATION_PASSWORD, copy(L"second"));
    {
        const ImportPatch patch(GetModuleHandleW(L"lornix.dll"), "CryptProtectData", &noProtection);
        ASSERT_EQ(patch.count(), 1);
        storeNotifications();
        EXPECT_TRUE(reported(L"a password cannot be protected"));
        EXPECT_EQ(bytesOf(file()), before);
    }
    storeNotifications();
    reload();
    EXPECT_EQ(attribute(0, NOTIFICATION_PASSWORD), L"second");
}

TEST_F(NotificationsTest, DamagedAttributesAreLeftOut)
{
    std::filesystem::create_directories(data());
    writeBytes(file(), "lornix notifications 1\n"
                       "rate 5\n"               // 2: under no entry
                       "notification a\n"       // 3
                       "rate 60\n"              // 4
                       "shape round\n"          // 5
                       "password-sealed 12x4\n" // 6
                       "notification %u00\n"    // 7
                       "rate 70\n"              // 8: its entry is left out
                       "notification b\n"       // 9
                       "checksum -\n"
                       "end\n");
    ASSERT_NE(loadNotifications(), 0);
    EXPECT_EQ(getNotificationsCount(), 2u);
    EXPECT_EQ(attribute(0, NOTIFICATION_RATE), L"60");
    EXPECT_EQ(attribute(1, NOTIFICATION_RATE), L"(null)");
    for (const wchar_t* line : {L"line 2", L"line 5", L"line 6", L"2 more"}) {
        EXPECT_TRUE(reported(line));
    }
    EXPECT_TRUE(namesIn(setAside()).empty());
}

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
