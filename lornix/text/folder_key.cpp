#include "lornix/text/folder_key.h"

#include "lornix/text/lower_case.h"

#include <algorithm>
#include <functional>

namespace lornix {

namespace {

char16_t folded(char16_t unit)
{
    return unit == u'/' ? u'\\' : lowerCase(unit);
}

} // namespace

std::u16string folderKey(std::u16string_view folder)
{
    std::u16string key(folder);
    turnIntoFolderKey(key);
    return key;
}

void turnIntoFolderKey(std::u16string& folder)
{
    for (char16_t& unit : folder) {
        unit = folded(unit);
    }
    while (folder.size() > 1 && folder.back() == u'\\') {
        folder.pop_back();
    }
}

std::uint64_t hashOfKey(std::u16string_view key)
{
    return std::hash<std::u16string_view>()(key);
}

bool hasFolderKey(std::string_view plain, std::u16string_view key)
{
    while (plain.size() > 1 && (plain.back() == '\\' || plain.back() == '/')) {
        plain.remove_suffix(1);
    }
    return std::ranges::equal(plain, key, {}, [](char unit) { return folded(static_cast<char16_t>(unit)); });
}

} // namespace lornix
