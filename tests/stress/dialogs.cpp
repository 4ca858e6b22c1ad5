#include "tests/stress/dialogs.h"

#include "corvane.h"

#include <commdlg.h>

#include <cstdlib>
#include <cwchar>

namespace {

BOOL WINAPI answerFile(OPENFILENAMEW* request)
{
    std::wcscpy(request->lpstrFile, L"C:\\scripts\\mail.vbs");
    return TRUE;
}

BOOL WINAPI version(OSVERSIONINFOW* told)
{
    auto* const extended = reinterpret_cast<OSVERSIONINFOEXW*>(told);
    extended->dwMajorVersion = DialogWorld::ownChooser ? 6 : 10;
    extended->wProductType = VER_NT_SERVER;
    return TRUE;
}

// A text of the library's own, which may stand in a region of its own.
void release(intptr_t text)
{
    auto* const block = reinterpret_cast<void*>(text);
    if (text == 0 || text == -1) {
        return;
    }
    MEMORY_BASIC_INFORMATION region{};
    VirtualQuery(block, &region, sizeof region);
    region.AllocationBase == block ? void(VirtualFree(block, 0, MEM_RELEASE)) : std::free(block);
}

} // namespace

bool DialogWorld::ownChooser = false;

DialogWorld::DialogWorld(int entries)
{
    for (int i = 0; i < entries; ++i) {
        const std::wstring text = L"entry " + std::to_wstring(i * 7919 % 1000);
        store.putNotification(text.c_str(), {L"jane", L"1", L"300", nullptr, L"secret", L"5k"});
        store.putExclude(text.c_str());
        store.putMask(text.c_str(), nullptr);
        store.putAccount(text.c_str());
        store.putTool(text.c_str());
    }
    m_disk.addDrive(L"C:\\");
    m_disk.addDrive(L"D:\\");
    m_disk.setFolder(L"C:\\", {file(L"b.exe"), file(L"a.txt"), folder(L"Windows"), file(L"z")});
    m_disk.setFolder(L"D:\\", {file(L"one"), file(L"two")});
    const auto replace = [this](const char* name, auto* function) {
        m_patches.push_back(std::make_unique<ImportPatch>(ImportPatch::corvane(), name, function));
    };
    replace("GetOpenFileNameW", answerFile);
    replace("GetSaveFileNameW", answerFile);
    replace("GetVersionExW", version);
}

DialogWorld::~DialogWorld() = default;

const std::vector<OpenedDialog>& DialogWorld::dialogs()
{
    static const std::vector<OpenedDialog> all = {
        {"notifications", [] { editNotifications(nullptr); }, "loadNotifications", "freeNotifications"},
        {"excludes", [] { editExcludes(nullptr); }, "loadExcludes", "freeExcludes"},
        {"blocked extensions", [] { editExcludeExts(nullptr); }, "loadExcludeExts", "freeExcludeExts"},
        {"administrative accounts", [] { editMgrAccounts(nullptr); }, "loadMgrAccounts", "freeMgrAccounts"},
        {"backup tools", [] { editBackupTools(nullptr); }, "loadBackupTools", "freeBackupTools"},
        {"backup tool", [] { release(editBackupToolListEntry(nullptr, L"C:\\bk.exe")); }, "", ""},
        {"process", [] { release(reinterpret_cast<intptr_t>(chooseProcess(nullptr))); }, "", ""},
        {"file", [] { std::free(chooseFileImpl(nullptr, 0)); }, "", ""},
        {"folder", [] { std::free(chooseFileImpl(nullptr, 1)); }, "", ""},
        {"about", [] { showAboutDialog(nullptr); }, "", ""},
    };
    return all;
}
