// What the library shows to the outside.
#include "store_functions.h"
#include "store_test.h"

#include "tests/support/pe_image.h"

#include <algorithm>
#include <set>

namespace {

using namespace store_test;

TEST(ExportsTest, EveryFunctionOfTheContractAndOfTheHostHeader)
{
    const HMODULE lornix = storeModule();
    ASSERT_NE(lornix, nullptr);
    for (const char* name : kContractFunctions) {
        EXPECT_NE(GetProcAddress(lornix, name), nullptr) << name;
    }
    for (const char* name : kHostFunctions) {
        EXPECT_NE(GetProcAddress(lornix, name), nullptr) << name;
    }
}

TEST(ExportsTest, OnlySystemLibrariesAreImported)
{
    std::set<std::string> modules;
    for (const ImportedFunction& import : PeImage(storeModule()).imports()) {
        std::string name = import.module;
        std::transform(name.begin(), name.end(), name.begin(),
                       [](char c) { return static_cast<char>(tolower(c)); });
        modules.insert(name);
    }
    EXPECT_EQ(modules, (std::set<std::string>{"advapi32.dll", "crypt32.dll", "kernel32.dll", "msvcrt.dll",
                                              "netapi32.dll", "shell32.dll"}));
}

TEST(ExportsTest, TheLibraryHasAVersion)
{
    const HMODULE lornix = storeModule();
    EXPECT_NE(FindResourceW(lornix, MAKEINTRESOURCEW(1), RT_VERSION), nullptr);
}

} // namespace
