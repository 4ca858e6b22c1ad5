#include "processes/enumerators.h"
#include "processes/loaded_library.h"
#include "processes/process_heap.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <winternl.h>

namespace {

using QuerySystemInformation = NTSTATUS NTAPI(ULONG what, void* buffer, ULONG bytes, ULONG* needed);

constexpr ULONG kProcessInformation = 5;
constexpr DWORD kLengthMismatch = 0xC0000004;

// Places in a record.
constexpr std::size_t kNextRecord = 0;     ///< 32-bit offset from this record, 0 in the last one
constexpr std::size_t kImageNameText = 64; ///< pointer
// QUIRK: of a 64-bit record this is not the place of the process id but the gap before it, and hosts get what stands
// there. RecordsTest.TellsEachProcess
constexpr std::size_t kProcessId = 76; ///< 32-bit

static_assert(offsetof(SYSTEM_PROCESS_INFORMATION, NextEntryOffset) == kNextRecord);

template <class T>
T at(const std::byte* record, std::size_t offset)
{
    T value;
    std::memcpy(static_cast<void*>(&value), record + offset, sizeof value);
    return value;
}

bool isError(NTSTATUS status)
{
    return status < 0;
}

// @return null on failure; the last error tells which.
ProcessHeapBlock processRecords(QuerySystemInformation* query)
{
    for (ULONG size = 32768; size != 0; size *= 2) {
        ProcessHeapBlock records = allocateFromProcessHeap(size);
        if (!records) {
            return nullptr;
        }
        const NTSTATUS status = query(kProcessInformation, records.get(), size, nullptr);
        if (static_cast<DWORD>(status) == kLengthMismatch) {
            continue; // processes have started meanwhile
        }
        if (isError(status)) {
            SetLastError(static_cast<DWORD>(status)); // raw, as it is
            return nullptr;
        }
        return records;
    }
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
}

} // namespace

int enumerateProcessRecords(const wchar_t* /*machine*/, ProcessCallback callback, void* context)
{
    QuerySystemInformation* query = nullptr;
    if (!lookUp(GetModuleHandleW(L"ntdll.dll"), "ZwQuerySystemInformation", query)) {
        SetLastError(ERROR_PROC_NOT_FOUND);
        return 0;
    }
    const ProcessHeapBlock records = processRecords(query);
    if (!records) {
        return 0;
    }
    const auto* record = static_cast<const std::byte*>(records.get());
    for (;;) {
        const auto* name = at<const wchar_t*>(record, kImageNameText);
        if (callback(at<DWORD>(record, kProcessId), name != nullptr ? name : L"Idle", context) == 0) {
            break;
        }
        const auto next = at<std::uint32_t>(record, kNextRecord);
        if (next == 0) {
            break;
        }
        record += next;
    }
    return 1;
}
