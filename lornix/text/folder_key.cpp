#include "lornix/text/folder_key.h"

#include "lornix/text/lower_case.h"

namespace lornix {

std::u16string folderKey(std::u16string_view folder)
{
    std::u16string key(folder);
    for (char16_t& unit : key) {
        unit = unit == u'/' ? u'\\' : lowerCase(unit);
    }
    while (key.size() > 1 && key.back() == u'\\') {
        key.pop_back();
    }
    return key;
}

} // namespace lornix
