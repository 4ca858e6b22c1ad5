#include "lornix/disk/kept_file.h"

#include "lornix/last_error.h"

#include <map>

namespace lornix {
namespace {

constexpr std::size_t kFlawsTold = 3;

std::wstring describe(const Flaws& flaws)
{
    std::wstring text;
    for (std::size_t i = 0; i < std::min(kFlawsTold, flaws.first.size()); ++i) {
        const std::string reason = flaws.first[i].reason;
        text += (text.empty() ? L"line " : L"; line ") + std::to_wstring(flaws.first[i].line) + L": " +
                std::wstring(reason.begin(), reason.end());
    }
    return flaws.count <= kFlawsTold
               ? text
               : text + L"; and " + std::to_wstring(flaws.count - kFlawsTold) + L" more";
}

/// "name.txt" becomes "name.1.txt", "name.2.txt" ... in the folder for what is set aside.
std::wstring nameAside(const KeptFile& file, unsigned number)
{
    const std::wstring name = file.path.substr(file.path.find_last_of(L'\\') + 1);
    const std::size_t dot = std::min(name.find_last_of(L'.'), name.size());
    return file.folder.setAsideFolder() + L'\\' + name.substr(0, dot) + L'.' + std::to_wstring(number) +
           name.substr(dot);
}

/// Security for a file that is made in the place of one.
SECURITY_ATTRIBUTES* securityOf(const KeptFile& file, Readers readers, Protection& protection)
{
    return file.folder.isGuarded() && readers == Readers::kAdministrators ? protection.get() : nullptr;
}

/// Copies a file under a name that is free.
/// @return 0 or a platform error.
DWORD copyAside(KeptFile& file, std::wstring& name, Patience& patience)
{
    constexpr unsigned kMost = 100000;
    DWORD error = file.folder.make(true);
    std::string bytes;
    if (error == ERROR_SUCCESS) {
        error = readFile(file.path, bytes, patience);
    }
    Protection protection(Readers::kAdministrators);
    for (unsigned number = 1; error == ERROR_SUCCESS && number <= kMost; ++number) {
        name = nameAside(file, number);
        error = writeFile(name, bytes, securityOf(file, Readers::kAdministrators, protection));
        if (error != ERROR_FILE_EXISTS && error != ERROR_ALREADY_EXISTS) {
            break;
        }
        error = ERROR_SUCCESS;
    }
    return error;
}

} // namespace

Reading readBytes(const KeptFile& file, std::string& bytes, Patience& patience, FileStamp& stamp)
{
    bytes.clear();
    const DWORD error = file.folder.mayHoldFiles() ? readFile(file.path, bytes, patience, &stamp)
                                                   : static_cast<DWORD>(ERROR_FILE_NOT_FOUND);
    if (error == ERROR_SUCCESS) {
        return Reading::kDone;
    }
    bytes.clear();
    if (error == ERROR_FILE_NOT_FOUND) {
        return Reading::kMissing;
    }
    report(file.title + L" cannot be read from " + quoted(file.path) + L": " + reasonOf(error));
    return Reading::kFailed;
}

bool judge(const KeptFile& file, const FileStamp& stamp, const Finding& finding)
{
    // A host that takes errors after each of its actions is not told the same of the same file each time.
    static std::map<std::wstring, FileStamp> told;
    std::wstring problem;
    switch (finding.condition) {
    case Condition::kGood:
        told.erase(file.path);
        return true;
    case Condition::kOther:
        problem =
            L", " + quoted(file.path) + L", is of a newer version or of another kind. It is left alone.";
        break;
    case Condition::kForeign:
        problem = L" is not readable as such: " + quoted(file.path) + L'.';
        break;
    case Condition::kDamaged:
        problem = L" is damaged (" + describe(finding.flaws) + L"): " + quoted(file.path) +
                  L". What is surely good in it is used.";
        break;
    }
    const auto [last, isFirst] = told.try_emplace(file.path, stamp);
    const bool isNews = isFirst || last->second != stamp;
    last->second = stamp;
    (isNews ? report : reportAgain)(file.title + problem);
    return finding.condition != Condition::kOther;
}

std::unique_ptr<const StoreLock> openForChange(DataFolder& data, const std::wstring& doing)
{
    if (!data.isKnown()) {
        return nullptr;
    }
    if (const DWORD error = data.make(); error != ERROR_SUCCESS) {
        report(doing + L": the data folder " + quoted(data.root()) + L" cannot be made: " + reasonOf(error));
        return nullptr;
    }
    auto lock = std::make_unique<const StoreLock>(data);
    if (lock->error() != ERROR_SUCCESS) {
        report(doing + L": the data folder " + quoted(data.root()) +
               L" cannot be locked against other processes: " + reasonOf(lock->error()));
        return nullptr;
    }
    return lock;
}

bool replaceKept(KeptFile& file, Condition before, std::string_view text, Patience& patience,
                 FileStamp* stamp)
{
    std::wstring aside;
    if (before != Condition::kGood) {
        // First the copy, then the replacement: a kill in between leaves a copy too many and nothing lost.
        if (const DWORD error = copyAside(file, aside, patience); error != ERROR_SUCCESS) {
            report(file.title + L" is damaged and cannot be set aside, so that " + quoted(file.path) +
                   L" stays as it is: " + reasonOf(error));
            return false;
        }
    }
    Protection protection(file.readers);
    const DWORD error = replaceFile(file.path, temporaryFor(file.path), text,
                                    securityOf(file, file.readers, protection), patience, stamp);
    if (error != ERROR_SUCCESS) {
        report(file.title + L" cannot be written to " + quoted(file.path) + L", which stays as it was: " +
               reasonOf(error));
        if (!aside.empty()) {
            removeFile(aside, patience); // else each attempt would leave one more
        }
        return false;
    }
    if (!aside.empty()) {
        report(file.title + L" was damaged. It is kept as " + quoted(aside) +
               L"; what was surely good in it goes on.");
    }
    return true;
}

} // namespace lornix
