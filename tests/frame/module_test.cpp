// What the built library offers and what it needs.
#include "corvane.h"
#include "tests/support/pe_image.h"
#include "tests/support/text.h"

#include "tests/frame/contract_names.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cwchar>

using testing::Contains;
using testing::IsSubsetOf;
using testing::UnorderedElementsAreArray;

namespace {

PeImage library()
{
    static const auto unused = &countItems2; // an import, so that the library is loaded
    (void)unused;
    return PeImage(GetModuleHandleW(L"corvane"));
}

std::string lower(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

} // namespace

TEST(ModuleTest, ExportsExactlyTheListedFunctions)
{
    EXPECT_THAT(library().exportedNames(), UnorderedElementsAreArray(contract_names::kCorvane));
    EXPECT_EQ(library().exportedFunctions(), std::size(contract_names::kCorvane)) << "none by number alone";
}

TEST(ModuleTest, ExportsEverythingThatDealsWithQuotaRules)
{
    const auto names = library().exportedNames();
    for (const char* const name :
         {"initializeListCtrl2", "fillUpListCtrl2",    "addToListCtrl2",    "editFromListCtrl2",
          "dropFromListCtrl2",   "getDataModified2",   "sortListCtrl2",     "countItems2",
          "checkForButtons2",    "initializeListCtrl", "fillUpListCtrl",    "addToListCtrl",
          "editFromListCtrl",    "dropFromListCtrl",   "getDataModified",   "sortListCtrl",
          "countItems",          "checkForButtons",    "hookNotify",        "setButtonIcon",
          "getButtonState",      "setButtonState",     "editQuotaListEntry"})
    {
        EXPECT_THAT(names, Contains(name));
    }
}

TEST(ModuleTest, ExportsNothingThatIsNotTheProducts)
{
    const std::vector<std::string> product = {"initializeListCtrl2",
                                              "fillUpListCtrl2",
                                              "addToListCtrl2",
                                              "editFromListCtrl2",
                                              "dropFromListCtrl2",
                                              "getDataModified2",
                                              "sortListCtrl2",
                                              "countItems2",
                                              "checkForButtons2",
                                              "initializeListCtrl",
                                              "fillUpListCtrl",
                                              "addToListCtrl",
                                              "editFromListCtrl",
                                              "dropFromListCtrl",
                                              "getDataModified",
                                              "sortListCtrl",
                                              "countItems",
                                              "checkForButtons",
                                              "hookNotify",
                                              "setButtonIcon",
                                              "getButtonState",
                                              "setButtonState",
                                              "editQuotaListEntry",
                                              "chooseSidFromUserInput",
                                              "chooseSidFromUserInput2",
                                              "isAdmin",
                                              "editNotifications",
                                              "editExcludes",
                                              "editExcludeExts",
                                              "editMgrAccounts",
                                              "editBackupTools",
                                              "editBackupToolListEntry",
                                              "chooseProcess",
                                              "chooseFileImpl",
                                              "showAboutDialog",
                                              "showHelp"};
    EXPECT_THAT(library().exportedNames(), IsSubsetOf(product));
}

TEST(ModuleTest, NeedsOnlyTheSystemAndTheStore)
{
    wchar_t system[MAX_PATH] = L"";
    GetSystemDirectoryW(system, MAX_PATH);
    for (const ImportedFunction& import : library().imports()) {
        if (lower(import.module) == "lornix.dll") {
            continue;
        }
        wchar_t path[MAX_PATH] = L"";
        GetModuleFileNameW(GetModuleHandleW(wide(import.module).c_str()), path, MAX_PATH);
        EXPECT_EQ(_wcsnicmp(path, system, std::wcslen(system)), 0) << import.module << " is " << utf8(path);
    }
}

TEST(ModuleTest, NeedsOnlyWhatTheStoreHas)
{
    int found = 0;
    for (const ImportedFunction& import : library().imports()) {
        if (lower(import.module) == "lornix.dll") {
            EXPECT_THAT(contract_names::kLornix, Contains(import.name));
            ++found;
        }
    }
    EXPECT_GT(found, 0);
}

TEST(ModuleTest, BringsTheRuntimeOfTheLanguageAlong)
{
    for (const ImportedFunction& import : library().imports()) {
        for (const char* const part :
             {"libstdc++", "libgcc", "libwinpthread", "libc++", "msvcp", "vcruntime"})
        {
            EXPECT_EQ(lower(import.module).find(part), std::string::npos) << import.module;
        }
    }
}

TEST(ModuleTest, CarriesItsVersion)
{
    const HMODULE module = GetModuleHandleW(L"corvane");
    EXPECT_NE(FindResourceW(module, MAKEINTRESOURCEW(VS_VERSION_INFO), RT_VERSION), nullptr);
}

TEST(ModuleTest, IsFor64BitWindows)
{
    const auto* const base = reinterpret_cast<const unsigned char*>(GetModuleHandleW(L"corvane"));
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS64*>(base + dos->e_lfanew);
    EXPECT_EQ(headers->FileHeader.Machine, IMAGE_FILE_MACHINE_AMD64);
    EXPECT_NE(headers->FileHeader.Characteristics & IMAGE_FILE_DLL, 0);
}
