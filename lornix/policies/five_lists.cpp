#include "lornix/policies/five_lists.h"

#include "lornix/last_error.h"

namespace lornix {
namespace {

constexpr PolicyFormat kNotifications{
    .kind = {"notifications", 1}, .word = "notification", .hasAttributes = true};
constexpr PolicyFormat kExcludes{.kind = {"excludes", 1}, .word = "exclude"};
constexpr PolicyFormat kBlockedExtensions{
    .kind = {"blocked-extensions", 1}, .word = "mask", .hasAccount = true};
constexpr PolicyFormat kAdministrativeAccounts{.kind = {"administrative-accounts", 1}, .word = "account"};
constexpr PolicyFormat kBackupTools{.kind = {"backup-tools", 1}, .word = "tool"};

constexpr FileKind kActiveExceptions{"active-exceptions", 1};

bool endsWith(const std::wstring& text, std::wstring_view tail)
{
    return text.size() >= tail.size() &&
           _wcsnicmp(text.c_str() + text.size() - tail.size(), tail.data(), tail.size()) == 0;
}

/// Whether a name is that of a file in the data folder that the store does not keep for itself.
bool isFreeName(const std::wstring& name)
{
    return !name.empty() && name.find_first_of(L"\\/:*?\"<>|") == std::wstring::npos && name.back() != L'.' &&
           name.back() != L' ' && !endsWith(name, L".txt") && !endsWith(name, kTemporary) &&
           !endsWith(name, L".lock") && name.size() < MAX_PATH;
}

} // namespace

PolicyList& notifications()
{
    static PolicyList list(kNotifications, L"notifications.txt", L"The list of notifications");
    return list;
}

PolicyList& excludes()
{
    static PolicyList list(kExcludes, L"excludes.txt", L"The list of exception files");
    return list;
}

PolicyList& blockedExtensions()
{
    static PolicyList list(kBlockedExtensions, L"blocked-extensions.txt", L"The list of blocked extensions");
    return list;
}

PolicyList& administrativeAccounts()
{
    static PolicyList list(kAdministrativeAccounts, L"administrative-accounts.txt",
                           L"The list of administrative accounts");
    return list;
}

PolicyList& backupTools()
{
    static PolicyList list(kBackupTools, L"backup-tools.txt", L"The list of backup tools");
    return list;
}

bool writeActiveExceptions(const std::wstring& fileName)
{
    if (!isFreeName(fileName)) {
        report(L"\"" + fileName + L"\" is no name for a file with the active exceptions.");
        return false;
    }
    const DataFolder data = DataFolder::current();
    if (!data.isKnown()) {
        return false;
    }
    TextWriter writer(kActiveExceptions);
    for (const PolicyList* list : {&excludes(), &backupTools()}) {
        const auto active = list->active(data);
        if (!active) {
            return false;
        }
        for (const PolicyRecord& entry : active->entries) {
            appendRecord(writer, list->format(), entry);
        }
    }
    const KeptFile file{data, data.root() + L'\\' + fileName, L"The file with the active exceptions"};
    const auto lock = openForChange(data, file.title + L" cannot be stored");
    Patience patience;
    return lock && replaceWith(file, writer.finish(), patience);
}

} // namespace lornix
