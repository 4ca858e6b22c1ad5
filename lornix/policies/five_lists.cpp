#include "lornix/policies/five_lists.h"

#include "lornix/last_error.h"

namespace lornix {
namespace {

constexpr PolicyFormat kNotifications{
    .kind = {"notifications", 1, true}, .word = "notification", .hasAttributes = true};
constexpr PolicyFormat kExcludes{.kind = {"excludes", 1, true}, .word = "exclude"};
constexpr PolicyFormat kBlockedExtensions{
    .kind = {"blocked-extensions", 1, true}, .word = "mask", .hasAccount = true};
constexpr PolicyFormat kAdministrativeAccounts{.kind = {"administrative-accounts", 1, true},
                                               .word = "account"};
constexpr PolicyFormat kBackupTools{.kind = {"backup-tools", 1, true}, .word = "tool"};

constexpr FileKind kActiveExceptions{"active-exceptions", 1, true};

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

/// Of a file with active exceptions, whatever they are.
Finding findingOf(std::string_view text)
{
    TextReader reader(text, kActiveExceptions);
    for (std::string_view line; reader.isOurs() && reader.next(line);) {
    }
    return reader.finding();
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
    DataFolder data = DataFolder::current();
    if (!data.isKnown()) {
        return false;
    }
    std::string lines;
    Patience patience;
    for (const PolicyList* list : {&excludes(), &backupTools()}) {
        const auto active = list->active(data, patience);
        if (!active) {
            return false;
        }
        lines += active->lines;
    }
    KeptFile file{data, data.path(fileName), L"The file with the active exceptions"};
    const auto lock = openForChange(data, file.title + L" cannot be stored");
    const auto present = lock ? readKept<Finding>(file, patience, findingOf) : std::nullopt;
    return present && replaceKept(file, present->condition, wholeText(kActiveExceptions, lines), patience);
}

} // namespace lornix
