// Arguments of store calls as text. A new kind of record gets a function of its own here.
#pragma once

#include "corvane_types.h"

#include <string>

std::string describe(const wchar_t* text);
std::string describe(int number);
std::string describe(int64_t number);
std::string describe(uint32_t number);

/// A buffer that the call fills: nothing to tell.
std::string describe(wchar_t* buffer);

/// A SID: the name that the test gave it, or its textual form.
std::string describe(const void* sid);

/// "[alice, bob]"
std::string describe(const SidList* accounts);

/// "[C:\a, C:\b]"
std::string describe(const PathList* folders);

/// The chain from a rule on: "{Anyone C:\a, alice C:\b}".
std::string describe(const QuotaRule* rule);

/// The call as one line: "getRealSizeByOwner C:\a [alice]".
template <class... Arguments>
std::string describeCall(const char* name, const Arguments&... arguments)
{
    std::string line = name;
    const auto add = [&line](const std::string& argument) {
        if (!argument.empty()) {
            line += ' ';
            line += argument;
        }
    };
    (add(describe(arguments)), ...);
    return line;
}
