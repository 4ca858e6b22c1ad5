#include "lornix/disk/folder_walk.h"

#include "lornix/disk/file.h"

#include <cwchar>

namespace lornix {
namespace {

bool isDots(const wchar_t* name)
{
    return std::wcscmp(name, L".") == 0 || std::wcscmp(name, L"..") == 0;
}

} // namespace

FolderWalk::FolderWalk(const std::wstring& folder)
    : path_(longPath(folder))
{
    while (path_.ends_with(L'\\')) {
        path_.pop_back();
    }
    folderLength_ = path_.size();
    if (!open()) {
        error_ = GetLastError();
    }
}

FolderWalk::~FolderWalk()
{
    if (search_ != INVALID_HANDLE_VALUE) {
        FindClose(search_);
    }
}

bool FolderWalk::open()
{
    path_ += L"\\*";
    search_ = FindFirstFileExW(path_.c_str(), FindExInfoBasic, &found_, FindExSearchNameMatch, nullptr,
                               FIND_FIRST_EX_LARGE_FETCH);
    path_.resize(folderLength_);
    foundIsNew_ = search_ != INVALID_HANDLE_VALUE;
    return foundIsNew_;
}

bool FolderWalk::openPending()
{
    while (!pending_.empty()) {
        const Pending folder = pending_.back();
        pending_.pop_back();
        path_.resize(folder.parentLength);
        path_ += L'\\';
        path_.append(names_, folder.nameStart);
        names_.resize(folder.nameStart);
        folderLength_ = path_.size();
        if (open()) {
            return true;
        }
    }
    return false;
}

bool FolderWalk::next()
{
    while (search_ != INVALID_HANDLE_VALUE || openPending()) {
        while (foundIsNew_ || FindNextFileW(search_, &found_)) {
            foundIsNew_ = false;
            if ((found_.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
                return true;
            }
            if ((found_.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0 && !isDots(found_.cFileName)) {
                pending_.push_back({folderLength_, names_.size()});
                names_ += found_.cFileName;
            }
        }
        FindClose(search_);
        search_ = INVALID_HANDLE_VALUE;
    }
    return false;
}

LONGLONG FolderWalk::size() const
{
    return static_cast<LONGLONG>(static_cast<ULONGLONG>(found_.nFileSizeHigh) << 32 | found_.nFileSizeLow);
}

const std::wstring& FolderWalk::path()
{
    path_.resize(folderLength_);
    path_ += L'\\';
    path_ += found_.cFileName;
    return path_;
}

} // namespace lornix
