// The command line of the sample host.
#pragma once

#include <string>
#include <vector>

namespace host {

struct CommandLine {
    std::wstring dataFolder;           ///< where the store keeps its files; empty: the store's own choice
    std::vector<std::wstring> folders; ///< folders to show beside those that the store knows
    bool dump = false;                 ///< print the stored rules instead of opening the window
    bool listObject = false;           ///< use the list functions that take a list-control object
    std::wstring problem;              ///< why the command line cannot be used; empty when it can
};

/// What may stand on the command line, for people.
extern const wchar_t* const kUsage;

/// @param arguments  the words after the program's own name.
CommandLine readCommandLine(const std::vector<std::wstring>& arguments);

} // namespace host
