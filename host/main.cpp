// The sample control panel: how a host uses corvane and the quota store.
#include "host/command_line.h"
#include "host/console.h"
#include "host/dump.h"
#include "host/folder_name.h"
#include "host/owned.h"
#include "host/panel.h"
#include "host/window/message.h"
#include "host/wine/runtime_gaps.h"

#include "lornix_host.h"

#include <windows.h>

#include <commctrl.h>
#include <objbase.h>
#include <shellapi.h>

#include <algorithm>

namespace {

constexpr int kDone = 0;
constexpr int kFailed = 1;
constexpr int kBadCommandLine = 2;

std::vector<std::wstring> programArguments()
{
    int count = 0;
    wchar_t** words = CommandLineToArgvW(GetCommandLineW(), &count);
    const host::Owned<void, LocalFree> block(static_cast<void*>(words));
    return {words + 1, words + count};
}

/// A program asked to print is run by a script, which reads no boxes.
int fail(const host::CommandLine& line, const std::wstring& problem, int code)
{
    if (line.dump) {
        host::printText(problem + L"\n", true);
    } else {
        host::say(nullptr, MB_ICONERROR, L"Quota Control Panel Cannot Start", problem);
    }
    return code;
}

} // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int)
{
    host::CommandLine line = host::readCommandLine(programArguments());
    if (!line.problem.empty()) {
        return fail(line, line.problem + L"\n\n" + host::kUsage, kBadCommandLine);
    }
    // A folder given by a shell may be meant from where the shell stands.
    std::transform(line.folders.begin(), line.folders.end(), line.folders.begin(), host::fullPath);
    if (!line.dataFolder.empty() && lornixSetDataFolder(host::fullPath(line.dataFolder).c_str()) == 0) {
        return fail(line,
                    L"The data folder \"" + line.dataFolder + L"\" cannot be used.\n\n" + lornixLastError(),
                    kFailed);
    }
    if (line.dump) {
        return host::dumpRules(line.folders) ? kDone : kFailed;
    }

    const INITCOMMONCONTROLSEX controls{sizeof controls, ICC_LISTVIEW_CLASSES | ICC_BAR_CLASSES};
    InitCommonControlsEx(&controls);
    const HRESULT com = OleInitialize(nullptr); // the shell's folder dialog wants it
    int result = kFailed;
    {
        host::fillRuntimeGaps();
        host::Panel panel(line.listObject ? host::quotaListByObject : host::quotaListById);
        if (panel.open(instance, line.folders)) {
            panel.run();
            result = kDone;
        }
    }
    if (SUCCEEDED(com)) {
        OleUninitialize();
    }
    return result;
}
