// "Choose file..." on drives that the test makes up: what the tests of it have in common.
#pragma once

#include "corvane.h"
#include "res/resource.h"
#include "store/owned.h"
#include "tests/files/fake_disk.h"
#include "tests/files/tree_nodes.h"
#include "tests/support/dialog_script.h"
#include "tests/support/import_patch.h"
#include "tests/support/recording_store.h"
#include "tests/support/window_text.h"

#include <gtest/gtest.h>

#include <cwchar>
#include <optional>

/// What the export gave; no value for null.
inline std::optional<std::string> chosen(DialogScript& script, unsigned foldersOnly = 0, HWND owner = nullptr)
{
    const CBlock<wchar_t> path(script.run([=] { return chooseFileImpl(owner, foldersOnly); }));
    return path ? std::optional(utf8(path.get())) : std::nullopt;
}

inline HWND treeOf(HWND dialog)
{
    return GetDlgItem(dialog, IDC_CHOOSE_FILE_TREE);
}

inline const wchar_t* currentFolder = L"";

inline wchar_t* tellCurrentFolder(wchar_t* buffer, int room)
{
    EXPECT_EQ(room, 260);
    return currentFolder == nullptr ? nullptr : std::wcscpy(buffer, currentFolder);
}

struct ChooseFileTest : testing::Test {
    ChooseFileTest()
    {
        disk.addDrive(L"A:\\", 0);
        disk.addDrive(L"C:\\");
        disk.addDrive(L"Q:\\");
        disk.setFolder(L"C:\\", {folder(L"Windows"), file(L"b.txt"), file(L"A.txt"), file(L"z.txt")});
        disk.setFolder(L"C:\\Windows", {file(L"win.ini")});
        currentFolder = L"C:\\Windows";
        EXPECT_EQ(folderPatch.count(), 1);
    }
    RecordingStore store;
    FakeDisk disk{ImportPatch::corvane()};
    ImportPatch folderPatch{ImportPatch::corvane(), "_wgetcwd", &tellCurrentFolder};
};
