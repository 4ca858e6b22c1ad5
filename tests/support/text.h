// Text for comparing and for failure messages.
#pragma once

#include <string>
#include <string_view>

std::string utf8(std::wstring_view text);
std::wstring wide(std::string_view text);
