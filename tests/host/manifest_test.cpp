// What the built panel asks of the system it starts on.
#include <windows.h>

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <type_traits>

namespace {

struct Unload {
    void operator()(HMODULE module) const { FreeLibrary(module); }
};
using Module = std::unique_ptr<std::remove_pointer_t<HMODULE>, Unload>;

/// The manifest inside the panel, which stands in the folder of what ships.
std::string manifest()
{
    wchar_t path[MAX_PATH] = L"";
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::wstring folder = path;
    for (int up = 0; up < 3; ++up) {
        folder.resize(folder.rfind(L'\\'));
    }
    const Module panel(
        LoadLibraryExW((folder + L"\\bin\\" PANEL_FILE).c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE));
    const HRSRC found = FindResourceW(panel.get(), MAKEINTRESOURCEW(1), RT_MANIFEST);
    if (found == nullptr) {
        return {};
    }
    const void* const text = LockResource(LoadResource(panel.get(), found));
    return {static_cast<const char*>(text), SizeofResource(panel.get(), found)};
}

} // namespace

TEST(ManifestTest, NamesTheSystemsSoThatTheirVersionIsTold)
{
    for (const char* system :
         {"{35138b9a-5d96-4fbd-8e2d-a2440225f93a}", "{4a2f28e3-53b9-4441-ba9c-d69d4a4a6e38}",
          "{1f676c76-80e1-4239-95bb-83d0f6d0da78}", "{8e0f7a12-bfb3-4fe8-b9a5-48fd50a15a9a}"})
    {
        EXPECT_THAT(manifest(), testing::HasSubstr(system));
    }
}

TEST(ManifestTest, AsksForTheHighestRightsThatTheUserHas)
{
    EXPECT_THAT(manifest(), testing::HasSubstr("level=\"highestAvailable\""));
}
