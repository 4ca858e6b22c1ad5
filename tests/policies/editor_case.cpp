#include "tests/policies/editor_case.h"
#include "res/resource.h"

#include <ostream>

namespace {

std::string numbered(std::string call, int index)
{
    const size_t place = call.find('#');
    return place == std::string::npos ? call : call.replace(place, 1, std::to_string(index));
}

} // namespace

std::ostream& operator<<(std::ostream& out, const EditorCase& editor)
{
    return out << editor.name;
}

std::vector<std::string> EditorCase::opening(int count) const
{
    std::vector<std::string> calls{call("load")};
    for (int i = 0; i < count; ++i) {
        for (const std::string& read : readEntry) {
            calls.push_back(numbered(read, i));
        }
    }
    calls.push_back(numbered(readEnd, count));
    return calls;
}

std::vector<std::string> EditorCase::storing() const
{
    std::vector<std::string> calls{call("store")};
    calls.insert(calls.end(), afterStoring.begin(), afterStoring.end());
    calls.push_back(call("free"));
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
        .functions = "Notifications",
        .readEntry = {"getNotificationsCount", "getNotifications #", "getINAttr # 1", "getINAttr # 2",
                      "getNAttr # 3", "getINAttr # 5"},
        .readEnd = "getNotificationsCount",
        .afterStoring = {},
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
        .functions = "Excludes",
        .readEntry = {"getExcludes #"},
        .readEnd = "getExcludes #",
        .afterStoring = {"applyExcludes", "storeRulesFromDriver excludes.cnf"},
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
        .functions = "ExcludeExts",
        .readEntry = {"getExcludeExtsPath #", "getExcludeExtsSid #"},
        .readEnd = "getExcludeExtsPath #",
        .afterStoring = {"applyExcludeExts"},
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
        .functions = "MgrAccounts",
        .readEntry = {"getMgrAccounts #"},
        .readEnd = "getMgrAccounts #",
        .afterStoring = {"applyMgrAccounts"},
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
        .functions = "BackupTools",
        .readEntry = {"getBackupTools #"},
        .readEnd = "getBackupTools #",
        .afterStoring = {"applyBackupTools", "storeRulesFromDriver excludes.cnf"},
    },
};
