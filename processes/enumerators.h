// The processes that run now: four enumerators of one contract.
#pragma once

#include "frame/platform.h"

/// Called for each process.
/// @param imageName  may be null, and lives only during the call.
/// @param context    as given to the enumerator.
/// @return non-zero to go on, zero to stop at once.
using ProcessCallback = int (*)(DWORD processId, const wchar_t* imageName, void* context);

// Each takes a machine name, null for this machine, that only the counters can use. Each returns non-zero when the
// walk ran, also when the callback stopped it; zero on failure, with the thread's last error telling why. What the
// platform must offer is looked up by name at each call: without it the last error is ERROR_PROC_NOT_FOUND. None
// shows a message.

/// From a snapshot; the one that the process chooser uses. Where the platform tells a full path, the name begins
/// with the path's last backslash.
int enumerateProcessSnapshot(const wchar_t* machine, ProcessCallback callback, void* context);

/// From the processes' first modules: the last part of the file name, null for a process that cannot be opened.
int enumerateProcessModules(const wchar_t* machine, ProcessCallback callback, void* context);

/// From the kernel's process records.
int enumerateProcessRecords(const wchar_t* machine, ProcessCallback callback, void* context);

/// From the performance counters, also of another machine.
int enumerateProcessCounters(const wchar_t* machine, ProcessCallback callback, void* context);
