// What only notifications have: attributes, and a password that stands nowhere in clear.
#include "debug_lines.h"
#include "policy_list_test.h"

#include <wincrypt.h>

namespace {

using namespace store_test;

constexpr const wchar_t* kPassword = L"Tr0ub4dor&3 \x00C4\x4E2D";

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

} // namespace
