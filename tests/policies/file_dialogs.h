// The platform's file dialogs, answering as the test says.
#pragma once

#include "tests/support/import_patch.h"

#include <commdlg.h>

#include <string>

class FileDialogs {
public:
    FileDialogs();
    ~FileDialogs();

    /// The path that is chosen; empty: cancelled.
    std::wstring answer;

    /// What was asked for last: "open" or "save", the first filter, and the owner's caption.
    std::string asked;

private:
    static BOOL WINAPI open(OPENFILENAMEW* request);
    static BOOL WINAPI save(OPENFILENAMEW* request);
    BOOL reply(const char* kind, OPENFILENAMEW* request);

    static FileDialogs* current;
    ImportPatch m_open;
    ImportPatch m_save;
    ImportPatch m_version;
};
