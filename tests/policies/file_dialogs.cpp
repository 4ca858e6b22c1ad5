#include "tests/policies/file_dialogs.h"

#include "tests/support/text.h"
#include "tests/support/window_text.h"

#include <cwchar>

namespace {

// A workstation: on servers the library has a dialog of its own.
BOOL WINAPI workstation(OSVERSIONINFOW* version)
{
    auto* const extended = reinterpret_cast<OSVERSIONINFOEXW*>(version);
    extended->dwMajorVersion = 6;
    extended->dwMinorVersion = 1;
    extended->wProductType = VER_NT_WORKSTATION;
    return TRUE;
}

} // namespace

FileDialogs* FileDialogs::current = nullptr;

FileDialogs::FileDialogs()
    : m_open(ImportPatch::corvane(), "GetOpenFileNameW", open)
    , m_save(ImportPatch::corvane(), "GetSaveFileNameW", save)
    , m_version(ImportPatch::corvane(), "GetVersionExW", workstation)
{
    current = this;
}

FileDialogs::~FileDialogs()
{
    current = nullptr;
}

BOOL WINAPI FileDialogs::open(OPENFILENAMEW* request)
{
    return current->reply("open", request);
}

BOOL WINAPI FileDialogs::save(OPENFILENAMEW* request)
{
    return current->reply("save", request);
}

BOOL FileDialogs::reply(const char* kind, OPENFILENAMEW* request)
{
    asked = std::string(kind) + ", " + utf8(request->lpstrFilter) + ", " + windowText(request->hwndOwner);
    if (answer.empty()) {
        return FALSE;
    }
    std::wcscpy(request->lpstrFile, answer.c_str());
    return TRUE;
}
