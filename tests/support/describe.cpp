#include "tests/support/describe.h"

#include "tests/support/recording_store.h"
#include "tests/support/text.h"

#include <windows.h>

#include <sddl.h>

namespace {
// A chain that runs in a circle must fail a test, not hang it.
constexpr int kLongestChain = 1000;
} // namespace

std::string describe(const wchar_t* text)
{
    return text == nullptr ? "null" : utf8(text);
}

std::string describe(wchar_t* /*buffer*/)
{
    return {};
}

std::string describe(int number)
{
    return std::to_string(number);
}

std::string describe(int64_t number)
{
    return std::to_string(number);
}

std::string describe(uint32_t number)
{
    return std::to_string(number);
}

std::string describe(const void* sid)
{
    if (sid == nullptr) {
        return "null";
    }
    if (const std::string name = RecordingStore::nameOf(sid); !name.empty()) {
        return name;
    }
    LPWSTR text = nullptr;
    if (!ConvertSidToStringSidW(const_cast<void*>(sid), &text)) {
        return "invalid SID";
    }
    std::string result = utf8(text);
    LocalFree(text);
    return result;
}

std::string describe(const SidList* accounts)
{
    if (accounts == nullptr) {
        return "null";
    }
    if (std::string number = RecordingStore::listNumber(accounts); !number.empty()) {
        return number;
    }
    std::string text = "[";
    for (int i = 0; i < accounts->count; ++i) {
        text += (i == 0 ? "" : ", ") + describe(static_cast<const void*>(accounts->sids[i]));
    }
    return text + "]";
}

std::string describe(const PathList* folders)
{
    if (folders == nullptr) {
        return "null";
    }
    std::string text = "[";
    for (int i = 0; i < folders->count; ++i) {
        text += (i == 0 ? "" : ", ") + utf8(folders->paths[i]);
    }
    return text + "]";
}

std::string describe(const QuotaRule* rule)
{
    if (rule == nullptr) {
        return "null";
    }
    std::string text = "{";
    int length = 0;
    for (const QuotaRule* each = rule; each != nullptr; each = each->next) {
        if (++length > kLongestChain) {
            return text + " ... endless}";
        }
        text += each == rule ? "" : ", ";
        text += each->sid == nullptr ? "Anyone" : describe(static_cast<const void*>(each->sid));
        text += ' ';
        text += describe(static_cast<const wchar_t*>(each->path));
    }
    return text + "}";
}
