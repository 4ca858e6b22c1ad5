#include "tests/files/fake_disk.h"

#include "tests/support/text.h"

#include <commctrl.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <map>
#include <set>
#include <shellapi.h>
#include <utility>

constexpr UINT_PTR kFirstIcon = 0x50000000; // above those of the platform

struct FakeDisk::State {
    struct Drive {
        std::wstring name;
        bool hasMedium;
        DWORD flags;
    };
    struct Search {
        std::vector<Entry> entries;
        size_t next = 0;
    };
    std::vector<Drive> drives;
    std::map<std::wstring, std::vector<Entry>> folders; ///< by path without the backslash at the end
    std::vector<std::string> calls;
    std::map<HANDLE, Search> searches;
    UINT_PTR lastSearch = 0x1000;
    UINT_PTR lastIcon = kFirstIcon;
    std::set<HICON> icons;
    HIMAGELIST images = nullptr;
};

namespace {

FakeDisk* disk = nullptr;
FakeDisk::State* state = nullptr;

void noteCall(std::string call)
{
    state->calls.push_back(std::move(call));
    if (disk->onCall) {
        disk->onCall();
    }
}

std::wstring trimmed(std::wstring path)
{
    while (!path.empty() && path.back() == L'\\') {
        path.pop_back();
    }
    return path;
}

bool endsWith(const std::wstring& text, const wchar_t* end)
{
    return text.ends_with(end);
}

void fill(WIN32_FIND_DATAW& data, const FakeDisk::Entry& entry)
{
    data = {};
    data.dwFileAttributes = entry.attributes;
    lstrcpynW(data.cFileName, entry.name.c_str(), MAX_PATH);
}

HANDLE WINAPI findFirst(const wchar_t* pattern, WIN32_FIND_DATAW* data)
{
    noteCall("find " + utf8(pattern));
    if (disk->searchAnswer != nullptr) {
        return disk->searchAnswer;
    }
    const std::wstring text = pattern;
    FakeDisk::State::Search search;
    if (endsWith(text, L"\\nul") && disk->nulIsADevice) {
        return reinterpret_cast<HANDLE>(UINT_PTR{1});
    }
    if (endsWith(text, L"\\nul")) {
        if (state->folders.contains(trimmed(text.substr(0, text.size() - 4)))) {
            search.entries.push_back({L"nul"});
        }
    } else if (endsWith(text, L"\\*.*")) {
        const auto found = state->folders.find(trimmed(text.substr(0, text.size() - 4)));
        if (found != state->folders.end()) {
            search.entries = found->second;
        }
    } else {
        ADD_FAILURE() << "a search for " << utf8(text);
    }
    if (search.entries.empty()) {
        SetLastError(ERROR_FILE_NOT_FOUND);
        return INVALID_HANDLE_VALUE;
    }
    fill(*data, search.entries[search.next++]);
    auto* const handle = reinterpret_cast<HANDLE>(++state->lastSearch);
    state->searches.emplace(handle, std::move(search));
    return handle;
}

BOOL WINAPI findNext(HANDLE handle, WIN32_FIND_DATAW* data)
{
    const auto found = state->searches.find(handle);
    if (found == state->searches.end()) {
        ADD_FAILURE() << "FindNextFileW on no search";
        return FALSE;
    }
    FakeDisk::State::Search& search = found->second;
    noteCall("next");
    if (search.next == search.entries.size()) {
        SetLastError(ERROR_NO_MORE_FILES);
        return FALSE;
    }
    fill(*data, search.entries[search.next++]);
    return TRUE;
}

BOOL WINAPI findClose(HANDLE handle)
{
    if (state->searches.erase(handle) == 0) {
        ADD_FAILURE() << "FindClose on no search";
        return FALSE;
    }
    return TRUE;
}

DWORD WINAPI fileAttributes(const wchar_t* path)
{
    noteCall("attributes " + utf8(path));
    const std::wstring text = path;
    if (state->folders.contains(trimmed(text))) {
        return FILE_ATTRIBUTE_DIRECTORY;
    }
    const std::size_t end = text.rfind(L'\\');
    const auto parent = state->folders.find(trimmed(text.substr(0, end)));
    if (parent != state->folders.end()) {
        for (const FakeDisk::Entry& entry : parent->second) {
            if (entry.name == text.substr(end + 1)) {
                return entry.attributes;
            }
        }
    }
    SetLastError(ERROR_FILE_NOT_FOUND);
    return INVALID_FILE_ATTRIBUTES;
}

DWORD WINAPI driveStrings(DWORD room, wchar_t* buffer)
{
    noteCall("drives " + std::to_string(room));
    if (disk->failDrives) {
        return 0;
    }
    std::wstring all;
    for (const auto& drive : state->drives) {
        all += drive.name + L'\0';
    }
    all.copy(buffer, all.size());
    buffer[all.size()] = L'\0';
    return static_cast<DWORD>(all.size());
}

BOOL WINAPI volumeInformation(const wchar_t* root, wchar_t* name, DWORD nameRoom, DWORD* serial,
                              DWORD* longest, DWORD* flags, wchar_t* system, DWORD systemRoom)
{
    noteCall("volume " + utf8(root));
    EXPECT_TRUE(name == nullptr && nameRoom == 0 && serial == nullptr && longest == nullptr &&
                system == nullptr && systemRoom == 0);
    for (const auto& drive : state->drives) {
        if (drive.name.starts_with(root) && drive.hasMedium) {
            *flags = drive.flags;
            return TRUE;
        }
    }
    SetLastError(ERROR_NOT_READY);
    return FALSE;
}

DWORD_PTR WINAPI fileInfo(const wchar_t* path, DWORD attributes, SHFILEINFOW* info, UINT size, UINT flags)
{
    char line[32];
    std::snprintf(line, sizeof line, "icon %x ", flags);
    noteCall(line + utf8(path));
    EXPECT_EQ(attributes, 0u);
    EXPECT_EQ(size, sizeof(SHFILEINFOW));
    if (flags == (SHGFI_SYSICONINDEX | SHGFI_SMALLICON)) {
        return disk->failImages ? 0 : reinterpret_cast<DWORD_PTR>(state->images);
    }
    if (disk->failIcons && disk->failIcons(flags)) {
        return 0;
    }
    info->hIcon = reinterpret_cast<HICON>(++state->lastIcon);
    state->icons.insert(info->hIcon);
    info->iIcon = (endsWith(path, L".exe\\") ? 20 : 10) + ((flags & SHGFI_OPENICON) != 0 ? 1 : 0);
    return 1;
}

BOOL WINAPI destroyIcon(HICON icon)
{
    if (reinterpret_cast<UINT_PTR>(icon) < kFirstIcon) {
        return DestroyIcon(icon); // of another dialog
    }
    EXPECT_EQ(state->icons.erase(icon), 1u);
    return TRUE;
}

} // namespace

FakeDisk::FakeDisk(HMODULE module)
    : m_state(std::make_unique<State>())
{
    disk = this;
    state = m_state.get();
    state->images = ImageList_Create(16, 16, ILC_COLOR, 1, 1);
    const auto replace = [&](const char* name, auto* function) {
        m_patches.push_back(std::make_unique<ImportPatch>(module, name, function));
        EXPECT_GE(m_patches.back()->count(), 1) << name;
    };
    replace("FindFirstFileW", findFirst);
    replace("FindNextFileW", findNext);
    replace("FindClose", findClose);
    replace("GetFileAttributesW", fileAttributes);
    replace("GetLogicalDriveStringsW", driveStrings);
    replace("GetVolumeInformationW", volumeInformation);
    replace("SHGetFileInfoW", fileInfo);
    replace("DestroyIcon", destroyIcon);
}

FakeDisk::~FakeDisk()
{
    m_patches.clear();
    EXPECT_TRUE(ImageList_Destroy(state->images)) << "the system's images were destroyed";
    disk = nullptr;
    state = nullptr;
}

void FakeDisk::addDrive(const std::wstring& drive, DWORD flags)
{
    m_state->drives.push_back({drive, true, flags});
}

void FakeDisk::addEmptyDrive(const std::wstring& drive)
{
    m_state->drives.push_back({drive, false, 0});
}

void FakeDisk::setFolder(const std::wstring& folder, std::vector<Entry> entries)
{
    entries.insert(entries.begin(), {{L".", FILE_ATTRIBUTE_DIRECTORY}, {L"..", FILE_ATTRIBUTE_DIRECTORY}});
    m_state->folders[trimmed(folder)] = std::move(entries);
}

std::vector<std::string> FakeDisk::takeCalls()
{
    return std::exchange(m_state->calls, {});
}

int FakeDisk::calls(const std::string& beginning) const
{
    int count = 0;
    for (const std::string& call : m_state->calls) {
        count += call.starts_with(beginning) ? 1 : 0;
    }
    return count;
}

int FakeDisk::openSearches() const
{
    return static_cast<int>(m_state->searches.size());
}

int FakeDisk::openIcons() const
{
    return static_cast<int>(m_state->icons.size());
}
