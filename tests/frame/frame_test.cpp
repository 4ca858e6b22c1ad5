// What no export reaches yet: the registry reader, and the sites of the crash guard.
#include "frame/crash_guard.h"
#include "frame/registry.h"
#include "tests/support/nothing_left.h"
#include "tests/support/recording_store.h"

#include <gmock/gmock.h>

#include <stdexcept>
#include <string>

using testing::ElementsAre;

namespace {

// One per process: tests run side by side.
const std::wstring kKeyName = L"Software\\CorvaneTests\\Registry" + std::to_wstring(GetCurrentProcessId());
const wchar_t* const kKey = kKeyName.c_str();

class RegistryTest : public testing::Test {
protected:
    void SetUp() override { RegDeleteTreeW(HKEY_CURRENT_USER, kKey); }
    void TearDown() override { RegDeleteTreeW(HKEY_CURRENT_USER, kKey); }

    static void set(const wchar_t* name, const std::wstring& text, DWORD type = REG_SZ)
    {
        const auto size = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
        ASSERT_EQ(RegSetKeyValueW(HKEY_CURRENT_USER, kKey, name, type, text.c_str(), size), ERROR_SUCCESS);
    }

    static bool exists()
    {
        HKEY key = nullptr;
        const bool found = RegOpenKeyExW(HKEY_CURRENT_USER, kKey, 0, KEY_READ, &key) == ERROR_SUCCESS;
        if (found) {
            RegCloseKey(key);
        }
        return found;
    }
};

} // namespace

TEST_F(RegistryTest, ReadsAValue)
{
    set(L"Path", L"C:\\Program Files\\Vantrel");
    EXPECT_STREQ(readRegistryString(HKEY_CURRENT_USER, kKey, L"Path"), L"C:\\Program Files\\Vantrel");
}

TEST_F(RegistryTest, ReadsUpTo129Characters)
{
    const std::wstring longest(129, L'x');
    set(L"Path", longest);
    EXPECT_STREQ(readRegistryString(HKEY_CURRENT_USER, kKey, L"Path"), longest.c_str());
}

TEST_F(RegistryTest, TakesALongerValueAsAbsent)
{
    for (const size_t length : {130u, 131u, 259u, 1000u}) {
        set(L"Path", std::wstring(length, L'x'));
        EXPECT_EQ(readRegistryString(HKEY_CURRENT_USER, kKey, L"Path"), nullptr) << length;
    }
}

TEST_F(RegistryTest, TakesAnEmptyValueAsAbsent)
{
    set(L"Path", L"");
    EXPECT_EQ(readRegistryString(HKEY_CURRENT_USER, kKey, L"Path"), nullptr);
}

TEST_F(RegistryTest, TakesAMissingValueAsAbsent)
{
    set(L"Other", L"x");
    EXPECT_EQ(readRegistryString(HKEY_CURRENT_USER, kKey, L"Path"), nullptr);
}

TEST_F(RegistryTest, MakesAMissingKey)
{
    ASSERT_FALSE(exists());
    EXPECT_EQ(readRegistryString(HKEY_CURRENT_USER, kKey, L"Path"), nullptr);
    EXPECT_TRUE(exists());
}

TEST_F(RegistryTest, AKeyThatCannotBeHadGivesNull)
{
    EXPECT_EQ(readRegistryString(nullptr, kKey, L"Path"), nullptr);
}

TEST_F(RegistryTest, HasOneBuffer)
{
    set(L"Path", L"long first value");
    set(L"NoLDAP", L"Y");
    const wchar_t* const first = readRegistryString(HKEY_CURRENT_USER, kKey, L"Path");
    const wchar_t* const second = readRegistryString(HKEY_CURRENT_USER, kKey, L"NoLDAP");
    EXPECT_EQ(first, second);
    EXPECT_STREQ(first, L"Y");
    EXPECT_EQ(readRegistryString(HKEY_CURRENT_USER, kKey, L"Missing"), nullptr);
    EXPECT_STREQ(first, L"") << "cleared before it is asked for";
}

TEST_F(RegistryTest, DoesNotLookAtTheType)
{
    set(L"Path", L"%windir%", REG_EXPAND_SZ);
    EXPECT_STREQ(readRegistryString(HKEY_CURRENT_USER, kKey, L"Path"), L"%windir%");
}

TEST_F(RegistryTest, ClosesTheKey)
{
    set(L"Path", L"x");
    expectNothingLeft([] {
        readRegistryString(HKEY_CURRENT_USER, kKey, L"Path");
        readRegistryString(HKEY_CURRENT_USER, kKey, L"Missing");
    });
}

TEST_F(RegistryTest, TheProductsKeyIsThis)
{
    EXPECT_STREQ(kSettingsKey, L"SOFTWARE\\Vantrel LLC\\Vantrel");
}

TEST(CrashGuardTest, EachSiteHasItsLine)
{
    RecordingStore store;
    using namespace crash_sites;
    for (const CrashSite& site :
         {kQuotaSettings, kNotificationEntry, kNotifications, kAbout, kExcludeEntry, kExcludes,
          kBlockedExtensionEntry, kBlockedExtensions, kAdministrativeAccounts, kBackupToolEntry, kBackupTools,
          kProcessChooser, kProcessChooserRow})
    {
        EXPECT_EQ(guardProcedure(site, []() -> INT_PTR { throw std::runtime_error("in a handler"); }), FALSE);
    }
    EXPECT_THAT(store.lines(),
                ElementsAre("UI CRASH: qleDlg, MyDlgProc, 265\n", "UI CRASH: nleDlg, MyDlgProc, 193\n",
                            "UI CRASH: notflDlg, MyDlgProc, 245\n", "UI CRASH: about, MyAboutDlgProc, 70\n",
                            "UI CRASH: eleDlg, MyDlgProc, 56\n", "UI CRASH: exclDlg, MyDlgProc, 178\n",
                            "UI CRASH: eleextDlg, MyDlgProc, 80\n", "UI CRASH: exclextDlg, MyDlgProc, 191\n",
                            "UI CRASH: mgrDlg, MyDlgProc, 177\n", "UI CRASH: elpDlg, MyDlgProc, 74\n",
                            "UI CRASH: excpDlg, MyDlgProc, 178\n", "UI CRASH: lprocDlg, MyDlgProc, 110\n",
                            "UI CRASH: lprocDlg, myCallBack, 49\n"));
}

TEST(CrashGuardTest, AGuardInsideAGuardReportsFirstAndAlone)
{
    RecordingStore store;
    const INT_PTR result = guardProcedure(crash_sites::kNotifications, [] {
        guardProcedure(crash_sites::kQuotaSettings, []() -> INT_PTR { throw 1; });
        return INT_PTR{TRUE};
    });
    EXPECT_EQ(result, TRUE);
    EXPECT_THAT(store.lines(), ElementsAre("UI CRASH: qleDlg, MyDlgProc, 265\n"));
}
