#include "host/command_line.h"

namespace host {

const wchar_t* const kUsage =
    L"corvane_host [--data FOLDER] [--folder PATH]... [--dump]\n"
    L"\n"
    L"--data FOLDER   keep the quota store's files in this folder\n"
    L"--folder PATH   show this folder too; may be given more than once\n"
    L"--dump          print the stored rules of the folders given with --folder, or of\n"
    L"                all known folders, and end";

CommandLine readCommandLine(const std::vector<std::wstring>& arguments)
{
    CommandLine line;
    const auto complain = [&line](const std::wstring& problem) {
        line.problem = line.problem.empty() ? problem : line.problem;
    };
    for (size_t i = 0; i < arguments.size(); ++i) {
        const std::wstring& word = arguments[i];
        if (word == L"--dump") {
            line.dump = true;
            continue;
        }
        if (word != L"--data" && word != L"--folder") {
            complain(L"\"" + word + L"\" is not an option of this program.");
            continue;
        }
        // A forgotten folder must not swallow the option that follows.
        if (i + 1 == arguments.size() || arguments[i + 1].empty() || arguments[i + 1].starts_with(L"--")) {
            complain(word + L" needs a folder after it.");
            continue;
        }
        const std::wstring& folder = arguments[++i];
        if (word == L"--folder") {
            line.folders.push_back(folder);
        } else if (line.dataFolder.empty()) {
            line.dataFolder = folder;
        } else {
            complain(L"--data may be given once only.");
        }
    }
    return line;
}

} // namespace host
