#include "tests/processes/enumeration.h"
#include "tests/processes/run_time_functions.h"

#include <gmock/gmock.h>

#include <cwchar>
#include <map>

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::vector<DWORD> ids;
std::vector<DWORD> idSizesAsked;
bool enumFails = false;
std::map<DWORD, const wchar_t*> files; ///< by id; one with null has a module and no name
std::vector<DWORD> accesses;
OSVERSIONINFOW version{};

BOOL WINAPI enumProcesses(DWORD* buffer, DWORD size, DWORD* filled)
{
    idSizesAsked.push_back(size);
    if (enumFails) {
        SetLastError(1234);
        return FALSE;
    }
    *filled = 0;
    for (const DWORD id : ids) {
        if (*filled + sizeof id > size) {
            break;
        }
        buffer[*filled / sizeof id] = id;
        *filled += sizeof id;
    }
    return TRUE;
}

// The handle of a process is told by its id.
constexpr UINT_PTR kHandle = 0x60000000;

HANDLE WINAPI openProcess(DWORD access, BOOL inherit, DWORD id)
{
    accesses.push_back(access);
    EXPECT_FALSE(inherit);
    return id >= 90 ? nullptr : reinterpret_cast<HANDLE>(kHandle + id);
}

BOOL WINAPI enumModules(HANDLE process, HMODULE* module, DWORD size, DWORD* /*needed*/)
{
    EXPECT_EQ(size, sizeof(HMODULE));
    const auto id = static_cast<DWORD>(reinterpret_cast<UINT_PTR>(process) - kHandle);
    *module = reinterpret_cast<HMODULE>(UINT_PTR{id} + 1);
    return files.contains(id);
}

DWORD WINAPI moduleFileName(HANDLE process, HMODULE module, wchar_t* buffer, DWORD size)
{
    EXPECT_EQ(size, 260u);
    const auto id = static_cast<DWORD>(reinterpret_cast<UINT_PTR>(process) - kHandle);
    EXPECT_EQ(reinterpret_cast<UINT_PTR>(module), id + 1);
    const wchar_t* name = files[id];
    if (name == nullptr) {
        return 0;
    }
    std::wcsncpy(buffer, name, size); // a long one without an end, as older systems did
    return static_cast<DWORD>(std::min<size_t>(std::wcslen(name), size));
}

BOOL WINAPI tellVersion(OSVERSIONINFOW* info)
{
    EXPECT_EQ(info->dwOSVersionInfoSize, sizeof(OSVERSIONINFOEXW));
    info->dwMajorVersion = version.dwMajorVersion;
    info->dwMinorVersion = version.dwMinorVersion;
    return TRUE;
}

struct ModulesTest : testing::Test {
    ModulesTest()
    {
        idSizesAsked.clear();
        accesses.clear();
        enumFails = false;
        version.dwMajorVersion = 6;
        version.dwMinorVersion = 1;
        files = {{20, L"C:\\Windows\\explorer.exe"}, {30, L"bare.exe"}, {40, nullptr}};
        functions.put("EnumProcesses", &enumProcesses);
        functions.put("EnumProcessModules", &enumModules);
        functions.put("GetModuleFileNameExW", &moduleFileName);
        EXPECT_EQ(openPatch.count(), 1);
        EXPECT_EQ(versionPatch.count(), 1);
    }
    RunTimeFunctions functions{thisProgram()};
    HeldThings held{thisProgram()};
    ImportPatch openPatch{thisProgram(), "OpenProcess", &openProcess};
    ImportPatch versionPatch{thisProgram(), "GetVersionExW", &tellVersion};

    void expectNothingHeld() const
    {
        EXPECT_EQ(held.libraries, 0);
        EXPECT_EQ(held.heapBlocks, 0);
    }
};

} // namespace

TEST_F(ModulesTest, TellsEachProcess)
{
    ids = {0, 4, 20, 30, 40, 50, 99};
    const Enumeration seen = Enumeration::of(enumerateProcessModules);
    EXPECT_EQ(seen.result, 1);
    EXPECT_THAT(seen.calls, ElementsAre("0 Idle", "4 System", "20 explorer.exe", "30 bare.exe", "40 null",
                                        "50 null", "99 null"));
    EXPECT_THAT(accesses, ElementsAre(0x410u, 0x410u, 0x410u, 0x410u, 0x410u));
    EXPECT_EQ(held.closedHandles, 5);
    EXPECT_EQ(held.closedNulls, 1); // of the process that could not be opened
    EXPECT_EQ(held.loaded, "psapi.dll ");
    expectNothingHeld();
}

TEST_F(ModulesTest, KnowsTheSystemProcessByTheVersion)
{
    struct Case {
        DWORD major, minor, id;
    };
    for (const Case known : {Case{4, 0, 8}, Case{4, 10, 8}, Case{5, 0, 2}, Case{5, 1, 4}, Case{6, 0, 2},
                             Case{6, 1, 4}, Case{10, 0, 2}})
    {
        version.dwMajorVersion = known.major;
        version.dwMinorVersion = known.minor;
        ids = {2, 4, 8};
        std::vector<std::string> expected;
        for (const DWORD id : ids) {
            expected.push_back(std::to_string(id) + (id == known.id ? " System" : " null"));
        }
        EXPECT_EQ(Enumeration::of(enumerateProcessModules).calls, expected)
            << known.major << "." << known.minor;
    }
}

TEST_F(ModulesTest, AsksAgainWithTwiceTheRoomWhenTheBufferIsFull)
{
    ids.assign(200, 0);
    EXPECT_EQ(Enumeration::of(enumerateProcessModules).calls.size(), 200u);
    EXPECT_THAT(idSizesAsked, ElementsAre(256u, 512u, 1024u));
    expectNothingHeld();

    // A list that just fits may have been cut.
    idSizesAsked.clear();
    ids.assign(64, 0);
    EXPECT_EQ(Enumeration::of(enumerateProcessModules).calls.size(), 64u);
    EXPECT_THAT(idSizesAsked, ElementsAre(256u, 512u));
}

TEST_F(ModulesTest, StopsWhenTheCallbackSaysSo)
{
    ids = {0, 20, 30};
    const Enumeration seen = Enumeration::of(enumerateProcessModules, 2);
    EXPECT_EQ(seen.result, 1);
    EXPECT_THAT(seen.calls, ElementsAre("0 Idle", "20 explorer.exe"));
    expectNothingHeld();
}

TEST_F(ModulesTest, FailsWithTheErrorOfTheList)
{
    enumFails = true;
    const Enumeration seen = Enumeration::of(enumerateProcessModules);
    EXPECT_EQ(seen.result, 0);
    EXPECT_EQ(seen.error, 1234u);
    EXPECT_THAT(seen.calls, IsEmpty());
    expectNothingHeld();
}

TEST_F(ModulesTest, FailsWithoutMemory)
{
    ids.assign(100, 0);
    for (const int after : {0, 1}) {
        held.failHeapAfter = after;
        const Enumeration seen = Enumeration::of(enumerateProcessModules);
        EXPECT_EQ(seen.result, 0) << after;
        EXPECT_EQ(seen.error, 8u) << after;
        EXPECT_THAT(seen.calls, IsEmpty()) << after;
        expectNothingHeld();
    }
    held.failHeapAfter = -1;
}

TEST_F(ModulesTest, NeedsEachFunction)
{
    ids = {0};
    for (const char* name : {"EnumProcesses", "EnumProcessModules", "GetModuleFileNameExW"}) {
        RunTimeFunctions without(thisProgram());
        without.remove(name);
        const Enumeration seen = Enumeration::of(enumerateProcessModules);
        EXPECT_EQ(seen.result, 0) << name;
        EXPECT_EQ(seen.error, 127u) << name;
        EXPECT_THAT(seen.calls, IsEmpty()) << name;
        expectNothingHeld();
    }
}

TEST_F(ModulesTest, NeedsTheLibrary)
{
    const ImportPatch none(
        thisProgram(), "LoadLibraryW", +[](const wchar_t*) -> HMODULE {
            SetLastError(ERROR_MOD_NOT_FOUND);
            return nullptr;
        });
    const Enumeration seen = Enumeration::of(enumerateProcessModules);
    EXPECT_EQ(seen.result, 0);
    EXPECT_EQ(seen.error, 127u);
}

TEST_F(ModulesTest, EndsALongNameThatThePlatformLeftOpen)
{
    const std::wstring longName = L"C:\\" + std::wstring(300, L'x');
    files[20] = longName.c_str();
    ids = {20};
    EXPECT_THAT(Enumeration::of(enumerateProcessModules).calls, ElementsAre("20 " + std::string(257, 'x')));
}

TEST(ModulesSystemTest, FindsThisProcess)
{
    const Enumeration seen = Enumeration::of(enumerateProcessModules);
    EXPECT_EQ(seen.result, 1);
    EXPECT_THAT(seen.calls, Contains(std::to_string(GetCurrentProcessId()) + " " + ownImageName()));
}
