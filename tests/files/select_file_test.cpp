#include "corvane.h"
#include "files/select_file.h"
#include "res/resource.h"
#include "tests/files/fake_disk.h"
#include "tests/files/tree_nodes.h"
#include "tests/support/dialog_script.h"
#include "tests/support/hidden_dialog.h"
#include "tests/support/import_patch.h"
#include "tests/support/owner_window.h"
#include "tests/support/recording_store.h"
#include "tests/support/window_text.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <commdlg.h>
#include <cstring>
#include <cwchar>
#include <filesystem>
#include <fstream>
#include <optional>

using namespace tree_nodes;

namespace {

constexpr DWORD kCommonFlags =
    OFN_HIDEREADONLY | OFN_NOREADONLYRETURN | OFN_EXPLORER | OFN_ENABLESIZING | OFN_DONTADDTORECENT;

struct Version {
    DWORD major;
    BYTE product;
};
Version version{};
bool versionKnown = true;

BOOL WINAPI tellVersion(OSVERSIONINFOW* info)
{
    EXPECT_EQ(info->dwOSVersionInfoSize, sizeof(OSVERSIONINFOEXW));
    info->dwMajorVersion = version.major;
    reinterpret_cast<OSVERSIONINFOEXW*>(info)->wProductType = version.product;
    return versionKnown;
}

struct Asked {
    std::string which;
    std::vector<std::wstring> filter;
    OPENFILENAMEW request;
    std::wstring before; ///< what stood in the buffer
    bool cleared = false;
};
std::optional<Asked> asked;
const wchar_t* answer = nullptr;

BOOL note(const char* which, OPENFILENAMEW* request)
{
    asked.emplace();
    asked->which = which;
    asked->request = *request;
    for (const wchar_t* part = request->lpstrFilter; *part != L'\0'; part += std::wcslen(part) + 1) {
        asked->filter.emplace_back(part);
    }
    asked->cleared = std::all_of(request->lpstrFile, request->lpstrFile + request->nMaxFile,
                                 [](wchar_t unit) { return unit == L'\0'; });
    if (answer == nullptr) {
        return FALSE;
    }
    std::wcscpy(request->lpstrFile, answer);
    return TRUE;
}

BOOL WINAPI openFile(OPENFILENAMEW* request)
{
    return note("open", request);
}

BOOL WINAPI saveFile(OPENFILENAMEW* request)
{
    return note("save", request);
}

HMODULE self()
{
    return GetModuleHandleW(nullptr);
}

template <class Function>
Function* runtimeFunction(const char* name)
{
    return reinterpret_cast<Function*>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"msvcrt.dll"), name)));
}

struct SelectFileTest : testing::Test {
    SelectFileTest()
    {
        // The own chooser takes its template from there.
        EXPECT_NE(LoadLibraryW(L"corvane.dll"), nullptr);
        version = {10, VER_NT_WORKSTATION};
        versionKnown = true;
        asked.reset();
        answer = L"C:\\chosen.exe";
        EXPECT_EQ(versionPatch.count(), 1);
        EXPECT_EQ(openPatch.count(), 1);
        EXPECT_EQ(savePatch.count(), 1);
    }
    ImportPatch versionPatch{self(), "GetVersionExW", &tellVersion};
    ImportPatch openPatch{self(), "GetOpenFileNameW", &openFile};
    ImportPatch savePatch{self(), "GetSaveFileNameW", &saveFile};
};

} // namespace

TEST_F(SelectFileTest, AsksForAnExecutable)
{
    HWND owner = GetDesktopWindow();
    EXPECT_STREQ(selectFile(owner, 1), L"C:\\chosen.exe");
    ASSERT_TRUE(asked);
    EXPECT_EQ(asked->which, "open");
    EXPECT_THAT(asked->filter,
                testing::ElementsAre(L"Executable Files", L"*.exe;*.vbs", L"All files", L"*.*"));
    EXPECT_STREQ(asked->request.lpstrDefExt, L"exe");
    EXPECT_EQ(asked->request.Flags, kCommonFlags | OFN_OVERWRITEPROMPT);
    EXPECT_EQ(asked->request.hwndOwner, owner);
    EXPECT_EQ(asked->request.lStructSize, sizeof(OPENFILENAMEW));
    EXPECT_EQ(asked->request.nFilterIndex, 1u);
    EXPECT_EQ(asked->request.nMaxFile, 260u);
    EXPECT_STREQ(asked->request.lpstrTitle, L"Select file");
    EXPECT_EQ(asked->request.lpstrInitialDir, nullptr);
    EXPECT_EQ(asked->request.lpfnHook, nullptr);
}

TEST_F(SelectFileTest, AsksForAnyNameWithoutAskingToOverwrite)
{
    EXPECT_STREQ(selectFile(nullptr, 2), L"C:\\chosen.exe");
    ASSERT_TRUE(asked);
    EXPECT_EQ(asked->which, "save");
    EXPECT_THAT(asked->filter, testing::ElementsAre(L"All files", L"*.*"));
    EXPECT_STREQ(asked->request.lpstrDefExt, L"*");
    EXPECT_EQ(asked->request.Flags, kCommonFlags);
    EXPECT_EQ(asked->request.hwndOwner, nullptr);
    EXPECT_STREQ(asked->request.lpstrTitle, L"Select file");
}

TEST_F(SelectFileTest, AsksForAnyFileOtherwise)
{
    for (const unsigned mode : {0u, 3u, 0xFFFFFFFFu}) {
        asked.reset();
        EXPECT_STREQ(selectFile(nullptr, mode), L"C:\\chosen.exe");
        ASSERT_TRUE(asked) << mode;
        EXPECT_EQ(asked->which, "open");
        EXPECT_THAT(asked->filter, testing::ElementsAre(L"All files", L"*.*"));
        EXPECT_STREQ(asked->request.lpstrDefExt, L"*");
        EXPECT_EQ(asked->request.Flags, kCommonFlags | OFN_OVERWRITEPROMPT);
    }
}

TEST_F(SelectFileTest, GivesNullWhenTheDialogDoes)
{
    answer = nullptr;
    for (const unsigned mode : {0u, 1u, 2u}) {
        EXPECT_EQ(selectFile(nullptr, mode), nullptr) << mode;
    }
}

TEST_F(SelectFileTest, HasOneBufferThatEachCallClears)
{
    answer = L"C:\\a long first answer.exe";
    const wchar_t* first = selectFile(nullptr, 1);
    answer = L"C:\\b";
    const wchar_t* second = selectFile(nullptr, 2);
    EXPECT_EQ(first, second);
    EXPECT_STREQ(first, L"C:\\b");
    EXPECT_TRUE(asked->cleared);
}

TEST_F(SelectFileTest, ShowsTheOwnChooserOnlyOnServersOfVersionSix)
{
    const auto shown = [](DWORD major, BYTE product) {
        version = {major, product};
        asked.reset();
        DialogScript script;
        if (major == 6 && product != VER_NT_WORKSTATION) {
            script.onDialog("cancel", [](HWND dialog) {
                EXPECT_EQ(windowText(dialog), "Choose file...");
                clickLater(dialog, IDCANCEL);
            });
        }
        const wchar_t* chosen = script.run([] { return selectFile(nullptr, 1); });
        EXPECT_EQ(chosen == nullptr, !asked);
        return asked ? "common" : "own";
    };
    RecordingStore store;
    EXPECT_STREQ(shown(6, VER_NT_SERVER), "own");
    EXPECT_STREQ(shown(6, VER_NT_DOMAIN_CONTROLLER), "own");
    EXPECT_STREQ(shown(6, VER_NT_WORKSTATION), "common");
    EXPECT_STREQ(shown(5, VER_NT_SERVER), "common");
    EXPECT_STREQ(shown(10, VER_NT_SERVER), "common");
}

TEST_F(SelectFileTest, CopiesWhatTheOwnChooserGives)
{
    version = {6, VER_NT_SERVER};
    RecordingStore store;
    const ImportPatch drives(
        self(), "GetLogicalDriveStringsW", +[](DWORD, wchar_t* buffer) -> DWORD {
            std::memcpy(buffer, L"C:\\\0", 5 * sizeof(wchar_t));
            return 4;
        });
    const ImportPatch volume(
        self(), "GetVolumeInformationW",
        +[](const wchar_t*, wchar_t*, DWORD, DWORD*, DWORD*, DWORD* flags, wchar_t*, DWORD) -> BOOL {
            *flags = FILE_NAMED_STREAMS;
            return TRUE;
        });
    for (const char* expected : {"C:", ""}) {
        DialogScript script;
        script.onDialog("select and press OK", [&](HWND dialog) {
            HWND tree = GetDlgItem(dialog, IDC_CHOOSE_FILE_TREE);
            select(tree, *expected != '\0' ? next(tree, TVGN_ROOT) : nullptr);
            clickLater(dialog, IDOK);
        });
        const wchar_t* chosen = script.run([] { return selectFile(nullptr, 2); });
        ASSERT_NE(chosen, nullptr);
        EXPECT_EQ(std::wstring(chosen), std::wstring(expected, expected + std::strlen(expected)));
    }
    EXPECT_FALSE(asked);
}

TEST_F(SelectFileTest, TheOwnChooserShowsFilesAndBelongsToTheOwner)
{
    version = {6, VER_NT_SERVER};
    RecordingStore store;
    FakeDisk disk(self());
    disk.addDrive(L"C:\\");
    const std::wstring longName(259, L'n'); // with its drive no longer a text that fits into the buffer
    disk.setFolder(L"C:\\", {file(longName), file(L"z")});
    // This program's own calls are replaced as well, so the runtime is called where it lies.
    static const auto duplicate = runtimeFunction<wchar_t*(const wchar_t*)>("_wcsdup");
    static const auto release = runtimeFunction<void(void*)>("free");
    static wchar_t* copy = nullptr;
    static int released = 0;
    copy = nullptr;
    released = 0;
    const ImportPatch copies(self(), "_wcsdup", +[](const wchar_t* text) { return copy = duplicate(text); });
    const ImportPatch releases(
        self(), "free", +[](void* block) {
            if (block != nullptr && block == copy) {
                ++released;
                copy = nullptr; // its place may be given to another
            }
            release(block);
        });
    ASSERT_EQ(copies.count(), 1);
    ASSERT_GE(releases.count(), 1);
    const OwnerWindow owner;
    DialogScript script;
    script.onDialog("select a file and press OK", [&](HWND dialog) {
        EXPECT_EQ(GetWindow(dialog, GW_OWNER), owner.window());
        HWND tree = GetDlgItem(dialog, IDC_CHOOSE_FILE_TREE);
        const HTREEITEM drive = next(tree, TVGN_ROOT);
        expand(tree, drive);
        select(tree, next(tree, TVGN_CHILD, drive));
        clickLater(dialog, IDOK);
    });
    const wchar_t* chosen = script.run([&] { return selectFile(owner.window(), 1); });
    ASSERT_NE(chosen, nullptr);
    EXPECT_EQ(std::wstring(chosen), (L"C:\\" + longName).substr(0, 259));
    EXPECT_EQ(released, 1);
}

TEST_F(SelectFileTest, ShowsTheCommonDialogWhenTheVersionIsUnknown)
{
    version = {6, VER_NT_SERVER};
    versionKnown = false;
    EXPECT_STREQ(selectFile(nullptr, 1), L"C:\\chosen.exe");
}

TEST_F(SelectFileTest, AServerWhoseChooserCannotOpenGivesNull)
{
    version = {6, VER_NT_SERVER};
    const HiddenDialog all(HiddenDialog::kAll, self());
    EXPECT_EQ(selectFile(nullptr, 1), nullptr);
    EXPECT_FALSE(asked);
}

// ---- the platform's own dialogs ---------------------------------------------------------------------------

namespace {

constexpr int kNameField = 0x47c; ///< of the platform's file dialogs

struct CommonDialogTest : testing::Test {
    CommonDialogTest()
    {
        version = {10, VER_NT_WORKSTATION};
        versionKnown = true;
        std::filesystem::create_directories(folder);
        std::ofstream(folder / L"tool.exe").put('x');
    }
    ~CommonDialogTest() override
    {
        std::filesystem::current_path(before);
        // The dialogs of tests beside this one start in the folder that was last used, this one, and hold it.
        std::error_code held;
        for (int tries = 0; std::filesystem::remove_all(folder, held), held && tries < 1000; ++tries) {
            Sleep(10);
        }
    }

    /// Types a name as a person does, and presses a button.
    static DialogScript typing(const std::wstring& name, int button)
    {
        DialogScript script;
        script.onDialog("type a name", [=](HWND dialog) {
            EXPECT_EQ(windowText(dialog), "Select file");
            SendDlgItemMessageW(dialog, kNameField, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(name.c_str()));
            PostMessageW(dialog, WM_COMMAND, static_cast<WPARAM>(button), 0);
        });
        return script;
    }

    ImportPatch versionPatch{self(), "GetVersionExW", &tellVersion};
    const std::filesystem::path before = std::filesystem::current_path();
    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / (L"select-file-" + std::to_wstring(GetCurrentProcessId()));
};

} // namespace

TEST_F(CommonDialogTest, OpensAnExistingFile)
{
    const std::wstring path = (folder / L"tool.exe").native();
    for (const unsigned mode : {1u, 0u}) {
        const wchar_t* chosen = typing(path, IDOK).run([=] { return selectFile(nullptr, mode); });
        ASSERT_NE(chosen, nullptr) << mode;
        EXPECT_EQ(chosen, path);
    }
}

TEST_F(CommonDialogTest, TakesANameThatDoesNotExistYet)
{
    const std::wstring path = (folder / L"new.log").native();
    const wchar_t* chosen = typing(path, IDOK).run([] { return selectFile(nullptr, 2); });
    ASSERT_NE(chosen, nullptr);
    EXPECT_EQ(chosen, path);
}

TEST_F(CommonDialogTest, TakesAnExistingNameWithoutAsking)
{
    const std::wstring path = (folder / L"tool.exe").native();
    const wchar_t* chosen = typing(path, IDOK).run([] { return selectFile(nullptr, 2); });
    ASSERT_NE(chosen, nullptr);
    EXPECT_EQ(chosen, path);
}

TEST_F(CommonDialogTest, CancelGivesNull)
{
    for (const unsigned mode : {1u, 2u}) {
        EXPECT_EQ(typing(L"x", IDCANCEL).run([=] { return selectFile(nullptr, mode); }), nullptr) << mode;
    }
}
