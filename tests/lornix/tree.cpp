#include "tree.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <algorithm>
#include <vector>

namespace store_test {
namespace {

bool isDots(const wchar_t* name)
{
    return wcscmp(name, L".") == 0 || wcscmp(name, L"..") == 0;
}

/// Starts a program of the system below, where there is one.
void runBelow(const std::wstring& program, const std::wstring& arguments, const std::wstring& folder)
{
    std::wstring line = program + L' ' + arguments;
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    if (CreateProcessW((L"Z:\\bin\\" + program).c_str(), line.data(), nullptr, nullptr, FALSE, 0, nullptr,
                       folder.c_str(), &startup, &process))
    {
        CloseHandle(process.hThread);
        CloseHandle(process.hProcess);
    }
}

/// Removes what is not a folder with something in it. Some systems only remove their links from below.
void removeOne(const std::wstring& path)
{
    if (DeleteFileW(path.c_str()) || RemoveDirectoryW(path.c_str())) {
        return;
    }
    const std::size_t slash = path.find_last_of(L'\\');
    runBelow(L"rm", path.substr(slash + 1), path.substr(4, slash - 4));
    for (int i = 0; i < 200 && GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES; ++i) {
        Sleep(10);
    }
}

} // namespace

std::wstring longName(const std::wstring& path)
{
    return path.starts_with(L"\\\\?\\") ? path : L"\\\\?\\" + path;
}

void makeFolder(const std::wstring& path)
{
    EXPECT_TRUE(CreateDirectoryW(longName(path).c_str(), nullptr)) << GetLastError();
}

void makeFile(const std::wstring& path, long long size)
{
    const HANDLE file =
        CreateFileW(longName(path).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr);
    ASSERT_NE(file, INVALID_HANDLE_VALUE) << GetLastError() << testing::PrintToString(path);
    LARGE_INTEGER end{};
    end.QuadPart = size;
    EXPECT_TRUE(SetFilePointerEx(file, end, nullptr, FILE_BEGIN));
    EXPECT_TRUE(SetEndOfFile(file));
    CloseHandle(file);
}

std::wstring makeDeepFolder(const std::wstring& top, const std::wstring& name, int depth)
{
    std::wstring folder = top;
    for (int i = 0; i < depth; ++i) {
        folder += L'\\' + name;
        makeFolder(folder);
    }
    return folder;
}

bool makeLink(const std::wstring& link, const std::wstring& folder)
{
    const auto isLink = [&] {
        const DWORD attributes = GetFileAttributesW(link.c_str());
        return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
    };
    if (CreateSymbolicLinkW(link.c_str(), folder.c_str(), SYMBOLIC_LINK_FLAG_DIRECTORY) && isLink()) {
        return true;
    }
    std::wstring target = folder;
    std::replace(target.begin(), target.end(), L'\\', L'/');
    const std::size_t slash = link.find_last_of(L'\\');
    runBelow(L"ln", L"-s " + target + L' ' + link.substr(slash + 1), link.substr(0, slash));
    for (int i = 0; i < 200 && !isLink(); ++i) {
        Sleep(10); // the program of the system below is not waited for
    }
    return isLink();
}

bool removeTree(const std::wstring& path)
{
    // Every folder is listed before what is in it, so that the list backwards empties before it removes.
    std::vector<std::wstring> folders{longName(path)};
    for (std::size_t i = 0; i < folders.size(); ++i) {
        WIN32_FIND_DATAW found{};
        const std::wstring folder = folders[i];
        const HANDLE search = FindFirstFileW((folder + L"\\*").c_str(), &found);
        if (search == INVALID_HANDLE_VALUE) {
            continue;
        }
        do {
            const std::wstring name = folder + L'\\' + found.cFileName;
            const bool isFolder = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
            const bool isLink = (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
            if (isDots(found.cFileName)) {
                continue;
            }
            if (isFolder && !isLink) {
                folders.push_back(name);
            } else {
                removeOne(name);
            }
        } while (FindNextFileW(search, &found));
        FindClose(search);
    }
    for (auto folder = folders.rbegin(); folder != folders.rend(); ++folder) {
        RemoveDirectoryW(folder->c_str());
    }
    return GetFileAttributesW(longName(path).c_str()) == INVALID_FILE_ATTRIBUTES;
}

} // namespace store_test
