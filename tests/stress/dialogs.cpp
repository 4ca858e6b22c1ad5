#include "tests/stress/dialogs.h"

#include "corvane.h"
#include "tests/stress/directory.h"
#include "tests/stress/heap_rules.h"
#include "tests/stress/quota_panel.h"

#include <commdlg.h>

#include <cstdlib>
#include <cwchar>
#include <utility>

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

DialogWorld::DialogWorld(int entries, std::function<int(int)> below, std::function<int()> raised)
    : m_below(std::move(below))
    , m_raised(std::move(raised))
{
    fillStore(entries);
    listDialogs();
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
    serveDirectory(ImportPatch::corvane(), [] {});
}

DialogWorld::~DialogWorld() = default;

void DialogWorld::fillStore(int entries)
{
    for (int i = 0; i < entries; ++i) {
        const std::wstring text = L"entry " + std::to_wstring(i * 7919 % 1000);
        store.putNotification(text.c_str(), {L"jane", L"1", L"300", nullptr, L"secret", L"5k"});
        store.putExclude(text.c_str());
        store.putMask(text.c_str(), nullptr);
        store.putAccount(text.c_str());
        store.putTool(text.c_str());
        m_users.push_back(store.account("DOM\\user" + std::to_string(i)));
    }
    m_ruled = {store.account("staff"), store.account("alice")};
    store.answer.enumerateUsers = [this](const wchar_t*, SidList* list) {
        for (const void* const user : m_users) {
            list = store.answer.appendToSidList(list, store.answer.sidDup(user));
        }
        return list;
    };
}

void DialogWorld::listDialogs()
{
    m_dialogs = {
        {"notifications", [] { editNotifications(nullptr); }, "loadNotifications", "freeNotifications"},
        {"excludes", [] { editExcludes(nullptr); }, "loadExcludes", "freeExcludes"},
        {"blocked extensions", [] { editExcludeExts(nullptr); }, "loadExcludeExts", "freeExcludeExts"},
        {"administrative accounts", [] { editMgrAccounts(nullptr); }, "loadMgrAccounts", "freeMgrAccounts"},
        {"backup tools", [] { editBackupTools(nullptr); }, "loadBackupTools", "freeBackupTools"},
        {"backup tool",
         [] {
             release(editBackupToolListEntry(nullptr, L"C:\\bk.exe"));
         }},
        {"process",
         [] {
             release(reinterpret_cast<intptr_t>(chooseProcess(nullptr)));
         }},
        {"file",
         [] {
             std::free(chooseFileImpl(nullptr, 0));
         }},
        {"folder",
         [] {
             std::free(chooseFileImpl(nullptr, 1));
         }},
        {"about",
         [] {
             showAboutDialog(nullptr);
         }},
        {"account",
         [this] {
             openChooser(false);
         }},
        {"account, owners first",
         [this] {
             openChooser(true);
         }},
        {"settings of a new rule for anyone",
         [this] {
             openSettings(1, false);
         }},
        {"settings of a new rule for a group",
         [this] {
             openSettings(1, true);
         }},
        {"settings of a rule",
         [this] {
             openSettings(0, true);
         }},
        {"quota page",
         [this] {
             openPanel(false);
         }},
        {"quota page that goes on under its dialogs", [this] { openPanel(true); }, "", "", true},
    };
}

void DialogWorld::openPanel(bool timer)
{
    QuotaPanel panel(store, m_ruled, m_below, m_raised, timer);
    panel.show();
}

void DialogWorld::openSettings(int mode, bool forAccount)
{
    const auto& answer = store.answer;
    QuotaRule* const rule = heapRule(L"C:\\data", forAccount ? answer.sidDup(m_ruled[0]) : nullptr, -1);
    rule->inUse = QUOTA_IN_USE_UNKNOWN;
    store.answer.enumerateGroupUsers = [this](const wchar_t*, const wchar_t*, SidList* members) {
        return store.answer.appendToSidList(members, store.answer.sidDup(m_ruled[1]));
    };
    editQuotaListEntry(nullptr, rule, mode);
    releaseChain(rule);
}

void DialogWorld::openChooser(bool withOwners)
{
    const auto& answer = store.answer;
    SidList* const owners = RecordingStore::makeSidList(
        withOwners && m_users.size() > 1 ? std::vector{m_users[0], m_users[1]} : std::vector<const void*>{});
    void* const sid = withOwners ? chooseSidFromUserInput2(nullptr, owners) : chooseSidFromUserInput(nullptr);
    if (sid != CORVANE_ANYONE) {
        std::free(sid);
    }
    answer.freeSidList(owners);
}
