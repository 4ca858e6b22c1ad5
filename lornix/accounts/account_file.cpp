#include "lornix/accounts/account_file.h"

#include "lornix/disk/data_folder.h"
#include "lornix/disk/environment.h"
#include "lornix/last_error.h"
#include "store/lornix.h"

#include <mutex>

namespace lornix {
namespace {

constexpr const wchar_t* kVariable = L"LORNIX_ACCOUNTS";
constexpr const wchar_t* kFileName = L"accounts.txt";
constexpr ULONGLONG kPause =
    1000; // milliseconds: a hundred thousand names do not wait for a held file in turn

using Directory = std::shared_ptr<const AccountDirectory>;

std::mutex fileGuard;   // of all below
std::wstring lastNamed; // what the environment said
std::uint32_t lastChoice = 0;
std::wstring lastPath;
Directory lastRead = std::make_shared<const AccountDirectory>();
FileStamp lastStamp;
bool isRead = false;    // whether what was read is what the file held at the time of the stamp
ULONGLONG nextLook = 0; // when a file that could not be read is tried again, in ticks

/// When a file was last changed, and its size; all zero for one that is not there. It is not opened for that.
FileStamp stampOf(const std::wstring& path)
{
    FileStamp stamp;
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (GetFileAttributesExW(longPath(path).c_str(), GetFileExInfoStandard, &data)) {
        stamp.changed = joined(data.ftLastWriteTime);
        stamp.size = joined(data.nFileSizeHigh, data.nFileSizeLow);
    }
    return stamp;
}

void tell(const std::wstring& path, const AccountDirectory& directory)
{
    if (directory.condition == Condition::kForeign) {
        ODS("lornix: accounts: \"%ls\" is no file of accounts\n", path.c_str());
    }
    for (const Flaw& flaw : directory.flaws.first) {
        ODS("lornix: accounts: line %lu of \"%ls\" is left out: %s\n", static_cast<unsigned long>(flaw.line),
            path.c_str(), flaw.reason);
    }
    if (const std::size_t more = directory.flaws.count - directory.flaws.first.size(); more != 0) {
        ODS("lornix: accounts: %lu more lines of \"%ls\" are left out\n", static_cast<unsigned long>(more),
            path.c_str());
    }
}

/// @param mayRead     whether there can be a file.
/// @param isExpected  whether a missing one is worth a line.
/// @return null for a file that is there and cannot be read now.
Directory load(const std::wstring& path, bool mayRead, bool isExpected)
{
    std::string bytes;
    Patience patience = Patience::toRead();
    const DWORD error = mayRead ? readFile(path, bytes, patience) : static_cast<DWORD>(ERROR_FILE_NOT_FOUND);
    if (error != ERROR_SUCCESS) {
        const bool isMissing = error == ERROR_FILE_NOT_FOUND;
        if (!isMissing || isExpected) {
            ODS("lornix: accounts: \"%ls\" cannot be read: %ls\n", path.c_str(), reasonOf(error).c_str());
        }
        return isMissing ? std::make_shared<const AccountDirectory>() : nullptr;
    }
    auto directory = std::make_shared<const AccountDirectory>(bytes);
    tell(path, *directory);
    return directory;
}

Directory accounts(bool lookForChanges)
{
    const std::wstring named = environmentValue(kVariable);
    const std::uint32_t choice = DataFolder::timesChosen();
    const std::lock_guard lock(fileGuard);
    const bool isSame = named == lastNamed && choice == lastChoice;
    if (isSame && (isRead ? !lookForChanges : GetTickCount64() < nextLook)) {
        return lastRead; // the data folder is not looked at either, which takes longer than all else
    }
    // Held until the file is read, so that it is the folder that was looked at.
    const DataFolder folder = named.empty() ? DataFolder::currentQuietly() : DataFolder();
    const std::wstring path = folder.isKnown() ? folder.path(kFileName) : named;
    if (path != lastPath) {
        lastRead = std::make_shared<const AccountDirectory>(); // none of another file's accounts
        lastPath = path;
        isRead = false;
    }
    lastNamed = named;
    lastChoice = choice;
    const FileStamp stamp = stampOf(path); // before it is read: a change meanwhile is seen next time
    if (isRead && stamp == lastStamp) {
        return lastRead;
    }
    Directory read = load(path, !path.empty() && folder.mayHoldFiles(), !named.empty());
    isRead = read != nullptr;
    if (isRead) {
        lastRead = std::move(read);
        lastStamp = stamp;
    } else {
        // Who has the file lets it go again. What was read before counts until then.
        nextLook = GetTickCount64() + kPause;
    }
    return lastRead;
}

} // namespace

Directory fileAccounts()
{
    return accounts(false);
}

Directory fileAccountsNow()
{
    return accounts(true);
}

} // namespace lornix
