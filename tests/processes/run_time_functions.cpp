#include "tests/processes/run_time_functions.h"

#include "tests/support/text.h"

#include <gtest/gtest.h>

#include <set>
#include <utility>

namespace {

RunTimeFunctions* newest = nullptr;
HeldThings* held = nullptr;
std::set<void*> blocks;

template <class Function>
Function* real(const char* name, const wchar_t* library = L"kernel32.dll")
{
    return reinterpret_cast<Function*>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(library), name)));
}

// Taken before anything is replaced.
const auto kRealGetProcAddress = real<decltype(GetProcAddress)>("GetProcAddress");
const auto kRealLoadLibrary = real<decltype(LoadLibraryW)>("LoadLibraryW");
const auto kRealFreeLibrary = real<decltype(FreeLibrary)>("FreeLibrary");
const auto kRealHeapAlloc = real<decltype(HeapAlloc)>("HeapAlloc");
const auto kRealHeapFree = real<decltype(HeapFree)>("HeapFree");
const auto kRealCloseHandle = real<decltype(CloseHandle)>("CloseHandle");

HMODULE WINAPI load(const wchar_t* name)
{
    held->libraries++;
    held->loaded += utf8(name) + " ";
    return kRealLoadLibrary(name);
}

BOOL WINAPI release(HMODULE module)
{
    held->libraries--;
    const BOOL released = kRealFreeLibrary(module);
    SetLastError(ERROR_MOD_NOT_FOUND); // as the platform may
    return released;
}

void* WINAPI allocate(HANDLE heap, DWORD flags, SIZE_T bytes)
{
    if (held->failHeapAfter == 0) {
        return nullptr;
    }
    if (held->failHeapAfter > 0) {
        held->failHeapAfter--;
    }
    void* block = kRealHeapAlloc(heap, flags, bytes);
    blocks.insert(block);
    held->heapBlocks++;
    return block;
}

BOOL WINAPI releaseBlock(HANDLE heap, DWORD flags, void* block)
{
    held->heapBlocks -= static_cast<int>(blocks.erase(block));
    const BOOL freed = kRealHeapFree(heap, flags, block);
    SetLastError(ERROR_INVALID_PARAMETER); // as the platform may
    return freed;
}

BOOL WINAPI closeHandle(HANDLE handle)
{
    held->closedHandles++;
    held->closedNulls += handle == nullptr ? 1 : 0;
    // The handles of the tests are made up.
    SetLastError(ERROR_INVALID_HANDLE);
    return reinterpret_cast<UINT_PTR>(handle) < 0x100000 ? kRealCloseHandle(handle) : FALSE;
}

} // namespace

RunTimeFunctions::RunTimeFunctions(HMODULE module)
    : m_before(std::exchange(newest, this))
    , m_patch(module, "GetProcAddress", &lookUp)
{
    EXPECT_EQ(m_patch.count(), 1);
}

RunTimeFunctions::~RunTimeFunctions()
{
    newest = m_before;
}

FARPROC WINAPI RunTimeFunctions::lookUp(HMODULE module, const char* name)
{
    if (reinterpret_cast<UINT_PTR>(name) > 0xFFFF) { // below, it is a number
        for (const RunTimeFunctions* list = newest; list != nullptr; list = list->m_before) {
            const auto found = list->m_functions.find(std::string_view(name));
            if (found != list->m_functions.end()) {
                return found->second;
            }
        }
    }
    return kRealGetProcAddress(module, name);
}

HeldThings::HeldThings(HMODULE module)
    : m_load(module, "LoadLibraryW", &load)
    , m_free(module, "FreeLibrary", &release)
    , m_allocate(module, "HeapAlloc", &allocate)
    , m_release(module, "HeapFree", &releaseBlock)
    , m_close(module, "CloseHandle", &closeHandle)
{
    held = this;
    blocks.clear();
    EXPECT_GE(m_load.count(), 1);
    EXPECT_GE(m_free.count(), 1);
    EXPECT_GE(m_allocate.count(), 1);
    EXPECT_GE(m_release.count(), 1);
    EXPECT_GE(m_close.count(), 1);
}

HeldThings::~HeldThings() = default;
