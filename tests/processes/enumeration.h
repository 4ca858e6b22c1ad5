// Running an enumerator and keeping what it tells.
#pragma once

#include "processes/enumerators.h"
#include "tests/support/text.h"

#include <string>
#include <vector>

struct Enumeration {
    int result = 0;
    DWORD error = 0;                ///< the last error right after
    std::vector<std::string> calls; ///< "1234 name"; a null name is "null"

    using Enumerator = int (*)(const wchar_t*, ProcessCallback, void*);

    /// @param stopAfter  the callback stops the walk at this call; 0: never.
    static Enumeration of(Enumerator enumerate, size_t stopAfter = 0, const wchar_t* machine = nullptr)
    {
        struct Context {
            Enumeration seen;
            size_t stopAfter;
        } context{{}, stopAfter};
        SetLastError(4711);
        const int result = enumerate(
            machine,
            [](DWORD id, const wchar_t* name, void* given) {
                auto& here = *static_cast<Context*>(given);
                here.seen.calls.push_back(std::to_string(id) + " " + (name != nullptr ? utf8(name) : "null"));
                return here.seen.calls.size() == here.stopAfter ? 0 : 7;
            },
            &context);
        context.seen.error = GetLastError();
        context.seen.result = result;
        return context.seen;
    }
};

inline HMODULE thisProgram()
{
    return GetModuleHandleW(nullptr);
}

/// The file name of this program, as the platform lists it.
inline std::string ownImageName()
{
    wchar_t path[MAX_PATH] = L"";
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    const std::string text = utf8(path);
    return text.substr(text.rfind('\\') + 1);
}
