// The help file, through its export.
#include "corvane.h"
#include "tests/support/import_patch.h"
#include "tests/support/recording_store.h"
#include "tests/support/text.h"

#include <gmock/gmock.h>

#include <cstring>
#include <objbase.h>
#include <optional>
#include <shellapi.h>

namespace {

std::optional<std::wstring> path; ///< the value "Path"; none: there is no such value
std::string openedKey;
std::vector<std::string> executed;
HWND executedFor = nullptr;
HRESULT apartmentAsked = E_FAIL; ///< what the shell found on its thread
APTTYPE apartmentFound = APTTYPE_CURRENT;

HRESULT apartment(APTTYPE& type)
{
    APTTYPEQUALIFIER more;
    return CoGetApartmentType(&type, &more);
}

LSTATUS WINAPI openKey(HKEY root, const wchar_t* name, HKEY* key)
{
    openedKey = (root == HKEY_LOCAL_MACHINE ? "HKLM\\" : "?\\") + utf8(name);
    *key = nullptr;
    return ERROR_SUCCESS;
}

// As the platform answers, with the room that it is given in bytes.
LSTATUS WINAPI queryValue(HKEY, const wchar_t* name, DWORD*, DWORD* type, BYTE* data, DWORD* size)
{
    if (!path || std::wcscmp(name, L"Path") != 0) {
        return ERROR_FILE_NOT_FOUND;
    }
    const auto needed = static_cast<DWORD>((path->size() + 1) * sizeof(wchar_t));
    const bool fits = needed <= *size;
    *type = REG_SZ;
    *size = needed;
    if (!fits) {
        return ERROR_MORE_DATA;
    }
    std::memcpy(data, path->c_str(), needed);
    return ERROR_SUCCESS;
}

std::string orNull(const wchar_t* text)
{
    return text != nullptr ? utf8(text) : "null";
}

HINSTANCE WINAPI execute(HWND owner, const wchar_t* verb, const wchar_t* file, const wchar_t* parameters,
                         const wchar_t* directory, INT show)
{
    executedFor = owner;
    apartmentAsked = apartment(apartmentFound);
    executed = {orNull(verb), orNull(file), orNull(parameters), orNull(directory), std::to_string(show)};
    return reinterpret_cast<HINSTANCE>(UINT_PTR{SE_ERR_FNF});
}

struct HelpTest : testing::Test {
    HelpTest()
    {
        executed.clear();
        path.reset();
        EXPECT_EQ(keyPatch.count(), 1);
        EXPECT_EQ(valuePatch.count(), 1);
        EXPECT_EQ(shellPatch.count(), 1);
    }
    RecordingStore store;
    ImportPatch keyPatch{ImportPatch::corvane(), "RegCreateKeyW", &openKey};
    ImportPatch valuePatch{ImportPatch::corvane(), "RegQueryValueExW", &queryValue};
    ImportPatch shellPatch{ImportPatch::corvane(), "ShellExecuteW", &execute};

    static void expectFile(const std::string& file)
    {
        showHelp(nullptr);
        EXPECT_THAT(executed, testing::ElementsAre("open", file, "null", ".", std::to_string(SW_SHOW)));
    }
};

} // namespace

TEST_F(HelpTest, OpensTheFileBelowTheInstallationFolder)
{
    path = L"C:\\Program Files\\Vantrel";
    expectFile("C:\\Program Files\\Vantrel\\doc\\vantrel40.chm");
    EXPECT_EQ(openedKey, "HKLM\\SOFTWARE\\Vantrel LLC\\Vantrel");
    showHelp(GetDesktopWindow());
    EXPECT_EQ(executedFor, GetDesktopWindow());
    EXPECT_THAT(store.calls(), testing::IsEmpty());
}

TEST_F(HelpTest, TakesTheLongestFolderThatCanBeRead)
{
    path = std::wstring(129, L'p');
    expectFile(std::string(129, 'p') + "\\doc\\vantrel40.chm");
}

TEST_F(HelpTest, WithoutAFolderTheFormatterHasItsOwnText)
{
    expectFile("(null)\\doc\\vantrel40.chm");
    path = L"";
    expectFile("(null)\\doc\\vantrel40.chm");
    path = std::wstring(130, L'p');
    expectFile("(null)\\doc\\vantrel40.chm");
}

TEST(HelpSystemTest, AMissingFileIsNotReported)
{
    // With the shell itself: it comes back at once and shows nothing.
    path.reset();
    const ImportPatch value(ImportPatch::corvane(), "RegQueryValueExW", &queryValue);
    showHelp(nullptr);
    int dialogs = 0;
    EnumThreadWindows(
        GetCurrentThreadId(),
        [](HWND window, LPARAM count) -> BOOL {
            *reinterpret_cast<int*>(count) += IsWindowVisible(window) ? 1 : 0;
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&dialogs));
    EXPECT_EQ(dialogs, 0);
}

TEST_F(HelpTest, TheShellFindsComAlsoOnAThreadThatHasNone)
{
    APTTYPE type;
    ASSERT_EQ(apartment(type), CO_E_NOTINITIALIZED);
    showHelp(nullptr);
    EXPECT_EQ(apartmentAsked, S_OK);
    EXPECT_TRUE(apartmentFound == APTTYPE_STA || apartmentFound == APTTYPE_MAINSTA);
    EXPECT_EQ(apartment(type), CO_E_NOTINITIALIZED);
}

TEST_F(HelpTest, AThreadThatHasChosenItsApartmentKeepsIt)
{
    for (const DWORD kind : {COINIT_MULTITHREADED, COINIT_APARTMENTTHREADED}) {
        ASSERT_EQ(CoInitializeEx(nullptr, kind), S_OK);
        APTTYPE before;
        ASSERT_EQ(apartment(before), S_OK);
        showHelp(nullptr);
        EXPECT_EQ(apartmentFound, before);
        APTTYPE after;
        EXPECT_EQ(apartment(after), S_OK);
        EXPECT_EQ(after, before);
        CoUninitialize();
        EXPECT_EQ(apartment(after), CO_E_NOTINITIALIZED); // counted neither once more nor once less
    }
}
