#include "child.h"
#include "generations.h"

#include "tests/support/import_patch.h"

#include <atomic>
#include <cstdio>
#include <map>

namespace store_test {
namespace {

int fail(const wchar_t* what)
{
    fwprintf(stderr, L"%ls: %ls\n", what, lornixLastError());
    return 1;
}

bool storeGeneration(std::int64_t number, std::size_t folders = kFewFolders)
{
    return lornixStoreRules(foldersOf(generationFolders(folders)).get(),
                            chainOf(generation(number, folders)).get()) != 0;
}

/// Adds a line to a file in one step: it is in the file even if the process ends right after.
void note(const std::wstring& file, const std::string& line)
{
    const HANDLE out = CreateFileW(file.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                   nullptr, OPEN_ALWAYS, 0, nullptr);
    DWORD written = 0;
    WriteFile(out, line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
    CloseHandle(out);
}

/// DATA NOTES FIRST FOLDERS: stores one generation after the other, for ever, and notes each that is stored.
int storeForEver(const std::vector<std::wstring>& arguments)
{
    const std::size_t folders = std::stoul(arguments.at(3));
    for (std::int64_t number = std::stoll(arguments.at(2));; ++number) {
        if (!storeGeneration(number, folders)) {
            return fail(L"cannot store");
        }
        note(arguments.at(1), std::to_string(number) + "\n");
    }
}

/// DATA FOLDER COUNT: stores rules of one folder COUNT times.
int storeOften(const std::vector<std::wstring>& arguments)
{
    const std::wstring folder = arguments.at(1);
    const std::int64_t count = std::stoll(arguments.at(2));
    for (std::int64_t number = 1; number <= count; ++number) {
        const auto rules = rulesForMany(folder, number, static_cast<std::size_t>(number % 5) + 1);
        if (lornixStoreRules(foldersOf({folder}).get(), chainOf(rules).get()) == 0) {
            return fail(L"cannot store");
        }
    }
    return 0;
}

// ---- ending in the middle of a platform call

std::atomic<int> callsLeft{0};

void countCall()
{
    if (--callsLeft == 0) {
        TerminateProcess(GetCurrentProcess(), kEndedItself);
    }
}

BOOL WINAPI endingWriteFile(HANDLE file, const void* bytes, DWORD size, DWORD* written,
                            OVERLAPPED* overlapped)
{
    if (callsLeft == 1) { // half of it is there then
        WriteFile(file, bytes, size / 2, written, overlapped);
    }
    countCall();
    const BOOL done = WriteFile(file, bytes, size, written, overlapped);
    countCall();
    return done;
}

HANDLE WINAPI endingCreateFile(const wchar_t* name, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security,
                               DWORD disposition, DWORD flags, HANDLE pattern)
{
    if ((access & GENERIC_WRITE) == 0) {
        return CreateFileW(name, access, share, security, disposition, flags, pattern);
    }
    countCall();
    const HANDLE file = CreateFileW(name, access, share, security, disposition, flags, pattern);
    const DWORD error = GetLastError();
    countCall();
    SetLastError(error);
    return file;
}

BOOL WINAPI endingMoveFile(const wchar_t* from, const wchar_t* to, DWORD flags)
{
    countCall();
    const BOOL done = MoveFileExW(from, to, flags);
    const DWORD error = GetLastError();
    countCall();
    SetLastError(error);
    return done;
}

BOOL WINAPI endingFlush(HANDLE file)
{
    countCall();
    const BOOL done = FlushFileBuffers(file);
    countCall();
    return done;
}

BOOL WINAPI endingDelete(const wchar_t* name)
{
    countCall();
    const BOOL done = DeleteFileW(name);
    const DWORD error = GetLastError();
    countCall();
    SetLastError(error);
    return done;
}

/// DATA CALLS ACTION: ends itself before or behind the CALLS-th platform call that changes files, half of what a
/// write was to write being written.
int endInTheMiddle(const std::vector<std::wstring>& arguments)
{
    const ImportPatch patches[] = {{storeModule(), "WriteFile", &endingWriteFile},
                                   {storeModule(), "CreateFileW", &endingCreateFile},
                                   {storeModule(), "MoveFileExW", &endingMoveFile},
                                   {storeModule(), "FlushFileBuffers", &endingFlush},
                                   {storeModule(), "DeleteFileW", &endingDelete}};
    for (const ImportPatch& patch : patches) {
        if (patch.count() != 1) {
            return fail(L"a function to end in is not called");
        }
    }
    callsLeft = std::stoi(arguments.at(1));
    const std::wstring action = arguments.at(2);
    if (!storeGeneration(std::stoll(action))) {
        return fail(L"cannot store");
    }
    return 0;
}

/// DATA: writes debug lines.
int speak(const std::vector<std::wstring>&)
{
    for (int i = 0; i < 50; ++i) {
        ODS("%lu line %d\n", GetCurrentProcessId(), i);
    }
    return 0;
}

} // namespace

int playRole(const std::wstring& role, const std::vector<std::wstring>& arguments)
{
    static const std::map<std::wstring, int (*)(const std::vector<std::wstring>&)> roles{
        {L"store-for-ever", storeForEver},
        {L"store-often", storeOften},
        {L"end-in-the-middle", endInTheMiddle},
        {L"speak", speak},
    };
    if (lornixSetDataFolder(arguments.at(0).c_str()) == 0) {
        return fail(L"cannot use the data folder");
    }
    return roles.at(role)(arguments);
}

} // namespace store_test
