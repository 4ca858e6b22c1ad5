#include "host/command_line.h"

namespace host {

const wchar_t* const kUsage = L"corvane_host [options]\n"
                              L"\n"
                              L"--data FOLDER\n"
                              L"    where the quota store keeps its files\n"
                              L"--folder PATH\n"
                              L"    show this folder too; may be repeated\n"
                              L"--dump\n"
                              L"    print the stored rules of these folders,\n"
                              L"    or else of all known ones, and end\n"
                              L"--list-object\n"
                              L"    use the library's list functions that take\n"
                              L"    a list-control object, not a dialog and an id";

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
        if (word == L"--list-object") {
            line.listObject = true;
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
