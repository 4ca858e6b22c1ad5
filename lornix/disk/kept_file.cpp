#include "lornix/disk/kept_file.h"

#include "lornix/last_error.h"

namespace lornix {
namespace {

constexpr std::size_t kFlawsTold = 3;

std::wstring quoted(const std::wstring& path)
{
    return L'"' + path + L'"';
}

std::wstring describe(const std::vector<Flaw>& flaws)
{
    std::wstring text;
    for (const Flaw& flaw : flaws) {
        const std::string reason = flaw.reason;
        text += (text.empty() ? L"line " : L"; line ") + std::to_wstring(flaw.line) + L": " +
                std::wstring(reason.begin(), reason.end());
        if (&flaw - flaws.data() + 1u == kFlawsTold && flaws.size() > kFlawsTold) {
            return text + L"; and " + std::to_wstring(flaws.size() - kFlawsTold) + L" more";
        }
    }
    return text;
}

/// "name.txt" becomes "name.1.txt", "name.2.txt" ... in the folder for what is set aside.
std::wstring nameAside(const KeptFile& file, unsigned number)
{
    const std::wstring name = file.path.substr(file.path.find_last_of(L'\\') + 1);
    const std::size_t dot = name.find_last_of(L'.');
    return file.folder.setAsideFolder() + L'\\' + name.substr(0, dot) + L'.' + std::to_wstring(number) +
           name.substr(dot);
}

/// Tries names until one is free.
/// @param place  puts the file under a name, gives 0 or a platform error.
template <class Place>
DWORD underFreeName(const KeptFile& file, std::wstring& name, Place place)
{
    constexpr unsigned kMost = 100000;
    DWORD error = makeFolder(file.folder.setAsideFolder());
    if (error != ERROR_SUCCESS) {
        return error;
    }
    for (unsigned number = 1; number <= kMost; ++number) {
        name = nameAside(file, number);
        error = place(name);
        if (error != ERROR_FILE_EXISTS && error != ERROR_ALREADY_EXISTS) {
            break;
        }
    }
    return error;
}

/// @return 0 or a platform error.
DWORD replaceText(const std::wstring& path, std::string_view text, Patience& patience)
{
    const std::wstring temporary = temporaryFor(path);
    DWORD error = writeFile(temporary, text, CREATE_ALWAYS);
    if (error == ERROR_SUCCESS) {
        error = replaceFile(temporary, path, patience);
        if (error != ERROR_SUCCESS) {
            removeFile(temporary, patience);
        }
    }
    return error;
}

} // namespace

Reading readBytes(const KeptFile& file, std::string& bytes, Patience& patience)
{
    const DWORD error = readFile(file.path, bytes, patience);
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

bool replaceWith(const KeptFile& file, std::string_view text, Patience& patience)
{
    const DWORD error = replaceText(file.path, text, patience);
    if (error != ERROR_SUCCESS) {
        report(file.title + L" cannot be written to " + quoted(file.path) + L", which stays as it was: " +
               reasonOf(error));
    }
    return error == ERROR_SUCCESS;
}

std::unique_ptr<const StoreLock> openForChange(const DataFolder& data, const std::wstring& doing)
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

namespace kept_file_detail {

void reportLockFailure(const KeptFile& file, DWORD error)
{
    report(file.title + L" is damaged, and " + quoted(file.path) +
           L" cannot be set aside, because the data folder cannot be locked: " + reasonOf(error));
}

bool setAside(const KeptFile& file, std::string_view bytes, const std::vector<Flaw>& flaws,
              const std::string* replacement, Patience& patience)
{
    std::wstring name;
    DWORD error = ERROR_SUCCESS;
    if (replacement == nullptr) {
        error = underFreeName(file, name,
                              [&](const std::wstring& to) { return renameFile(file.path, to, patience); });
    } else {
        // First the copy, then the replacement: a kill in between leaves a copy too many and nothing lost.
        error = underFreeName(file, name,
                              [&](const std::wstring& to) { return writeFile(to, bytes, CREATE_NEW); });
        if (error == ERROR_SUCCESS) {
            error = replaceText(file.path, *replacement, patience);
            if (error != ERROR_SUCCESS) {
                removeFile(name, patience); // else each attempt would leave one more
            }
        }
    }
    const std::wstring what =
        replacement == nullptr ? L" is not readable as such" : L" is damaged (" + describe(flaws) + L")";
    if (error != ERROR_SUCCESS) {
        report(file.title + what + L", and " + quoted(file.path) + L" cannot be set aside: " +
               reasonOf(error));
        return false;
    }
    report(file.title + what + L". It is kept as " + quoted(name) +
           (replacement == nullptr ? L"." : L"; all that could be read goes on."));
    return true;
}

} // namespace kept_file_detail
} // namespace lornix
