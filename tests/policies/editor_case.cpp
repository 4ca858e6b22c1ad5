#include "tests/policies/editor_case.h"
#include "res/resource.h"

#include <ostream>

namespace {

using Calls = std::vector<std::string>;

std::string at(const char* call, int index)
{
    return std::string(call) + ' ' + std::to_string(index);
}

} // namespace

std::ostream& operator<<(std::ostream& out, const EditorCase& editor)
{
    return out << editor.name;
}

std::vector<std::string> EditorCase::opening(int count) const
{
    Calls calls{load};
    const auto append = [&calls](const Calls& more) {
        calls.insert(calls.end(), more.begin(), more.end());
    };
    for (int i = 0; i < count; ++i) {
        append(readEntry(i));
    }
    append(readEnd(count));
    return calls;
}

const std::vector<EditorCase> kEditors = {
    {
        .name = "Notifications",
        .open = editNotifications,
        .caption = "Notifications",
        .listId = IDC_NOTIFICATIONS_LIST,
        .removeButton = "Remove",
        .hasEditButton = true,
        .sorted = false,
        .columns = {"Scripts 300", "For whom started 100", "How often 80 right", "Impersonate to 100",
                    "Min increment 80 right"},
        .crashLine = "UI CRASH: notflDlg, MyDlgProc, 245\n",
        .put =
            [](PolicyStore& store, const wchar_t* text) {
                store.putNotification(text, {nullptr, L"0", L"0", nullptr, nullptr, L"0"});
            },
        .moreCells = "|Anyone|1day(s)|IUSR_VANTREL|0 ",
        .load = "loadNotifications",
        .readEntry =
            [](int i) {
                return Calls{"getNotificationsCount",   at("getNotifications", i), at("getINAttr", i) + " 1",
                             at("getINAttr", i) + " 2", at("getNAttr", i) + " 3",  at("getINAttr", i) + " 5"};
            },
        .readEnd = [](int) { return Calls{"getNotificationsCount"}; },
        .removeCall = "removeNotifications",
        .storing = {"storeNotifications", "freeNotifications"},
        .free = "freeNotifications",
    },
    {
        .name = "Excludes",
        .open = editExcludes,
        .caption = "Manage exception files",
        .listId = IDC_POLICY_LIST,
        .removeButton = "Delete",
        .hasEditButton = true,
        .sorted = false,
        .columns = {"Excludes 400"},
        .crashLine = "UI CRASH: exclDlg, MyDlgProc, 178\n",
        .put = [](PolicyStore& store, const wchar_t* text) { store.putExclude(text); },
        .moreCells = "",
        .load = "loadExcludes",
        .readEntry = [](int i) { return Calls{at("getExcludes", i)}; },
        .readEnd = [](int count) { return Calls{at("getExcludes", count)}; },
        .removeCall = "removeExcludes",
        .storing = {"storeExcludes", "applyExcludes", "storeRulesFromDriver excludes.cnf", "freeExcludes"},
        .free = "freeExcludes",
    },
    {
        .name = "BlockedExtensions",
        .open = editExcludeExts,
        .caption = "Manage blocked extensions",
        .listId = IDC_POLICY_LIST,
        .removeButton = "Delete",
        .hasEditButton = true,
        .sorted = false,
        .columns = {"Blocked masks 300", "Applicable to 100"},
        .crashLine = "UI CRASH: exclextDlg, MyDlgProc, 191\n",
        .put = [](PolicyStore& store, const wchar_t* text) { store.putMask(text, nullptr); },
        .moreCells = "|(All)",
        .load = "loadExcludeExts",
        .readEntry = [](int i) { return Calls{at("getExcludeExtsPath", i), at("getExcludeExtsSid", i)}; },
        .readEnd = [](int count) { return Calls{at("getExcludeExtsPath", count)}; },
        .removeCall = "removeExcludeExts",
        .storing = {"storeExcludeExts", "applyExcludeExts", "freeExcludeExts"},
        .free = "freeExcludeExts",
    },
    {
        .name = "AdministrativeAccounts",
        .open = editMgrAccounts,
        .caption = "Manage Administrative Accounts",
        .listId = IDC_POLICY_LIST,
        .removeButton = "Delete",
        .hasEditButton = false,
        .sorted = false,
        .columns = {"Accounts 400"},
        .crashLine = "UI CRASH: mgrDlg, MyDlgProc, 177\n",
        .put = [](PolicyStore& store, const wchar_t* text) { store.putAccount(text); },
        .moreCells = "",
        .load = "loadMgrAccounts",
        .readEntry = [](int i) { return Calls{at("getMgrAccounts", i)}; },
        .readEnd = [](int count) { return Calls{at("getMgrAccounts", count)}; },
        .removeCall = "removeMgrAccounts",
        .storing = {"storeMgrAccounts", "applyMgrAccounts", "freeMgrAccounts"},
        .free = "freeMgrAccounts",
    },
    {
        .name = "BackupTools",
        .open = editBackupTools,
        .caption = "Manage backup tools",
        .listId = IDC_POLICY_LIST,
        .removeButton = "Delete",
        .hasEditButton = true,
        .sorted = true,
        .columns = {"Backup Tools 400"},
        .crashLine = "UI CRASH: excpDlg, MyDlgProc, 178\n",
        .put = [](PolicyStore& store, const wchar_t* text) { store.putTool(text); },
        .moreCells = "",
        .load = "loadBackupTools",
        .readEntry = [](int i) { return Calls{at("getBackupTools", i)}; },
        .readEnd = [](int count) { return Calls{at("getBackupTools", count)}; },
        .removeCall = "removeBackupTools",
        .storing = {"storeBackupTools", "applyBackupTools", "storeRulesFromDriver excludes.cnf",
                    "freeBackupTools"},
        .free = "freeBackupTools",
    },
};
