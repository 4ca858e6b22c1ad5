// The chooser of a running process: what the tests of it have in common.
#pragma once

#include "corvane.h"
#include "res/resource.h"
#include "store/owned.h"
#include "tests/processes/run_time_functions.h"
#include "tests/support/dialog_script.h"
#include "tests/support/list_view.h"
#include "tests/support/recording_store.h"
#include "tests/support/text.h"
#include "tests/support/window_text.h"

#include <gtest/gtest.h>

#include <cwchar>
#include <optional>
#include <tlhelp32.h>

inline std::optional<std::string> chosen(DialogScript& script)
{
    const CBlock<wchar_t> name(script.run([] { return chooseProcess(nullptr); }));
    return name ? std::optional(utf8(name.get())) : std::nullopt;
}

inline ListView listOf(HWND dialog)
{
    return ListView(dialog, IDC_PROCESS_LIST);
}

inline std::vector<std::string> rowsOf(HWND dialog)
{
    const ListView list = listOf(dialog);
    std::vector<std::string> rows;
    for (int row = 0; row < list.rowCount(); ++row) {
        rows.push_back(list.text(row, 0) + ' ' + std::to_string(list.data(row)));
    }
    return rows;
}

/// The processes that the snapshot tells.
inline std::vector<std::wstring> processes;
inline size_t nextProcess = 0;

inline HANDLE WINAPI create(DWORD, DWORD)
{
    nextProcess = 0;
    return CreateEventW(nullptr, FALSE, FALSE, nullptr); // something to close
}

inline BOOL WINAPI nextEntry(HANDLE, PROCESSENTRY32W* entry)
{
    if (nextProcess == processes.size()) {
        return FALSE;
    }
    // Without an end where the name fills the field.
    std::wcsncpy(entry->szExeFile, processes[nextProcess++].c_str(), std::size(entry->szExeFile));
    return TRUE;
}

struct ProcessChooserTest : testing::Test {
    ProcessChooserTest()
    {
        processes = {L"services.exe", L"Explorer.exe", L"notepad.exe", L"services.exe", L"a.exe"};
        functions.put("CreateToolhelp32Snapshot", &create);
        functions.put("Process32FirstW", &nextEntry);
        functions.put("Process32NextW", &nextEntry);
    }
    RecordingStore store;
    RunTimeFunctions functions{ImportPatch::corvane()};
};
