#include "journal.h"

#include <stdexcept>

Journal journal;

void Journal::note(const std::string& line)
{
    if (recording) {
        lines.push_back(line);
    }
}

void Journal::call(const std::string& function, const std::string& arguments)
{
    if (recording) {
        lines.push_back(function + "(" + arguments + ")");
    }
    if (++allCalls == windowGoesAt) {
        windowGone = true;
        linesBefore = lines.size();
    }
    if (!faultFunction.empty() && faultFunction != function) {
        return;
    }
    if (++calls != faultAt) {
        return;
    }
    faulted = function;
    if (faultThrows) {
        throw std::runtime_error("raised by the test");
    }
    volatile int* const nowhere = reinterpret_cast<volatile int*>(16);
    *nowhere = 0;
}

std::vector<std::string> Journal::debugLines() const
{
    std::vector<std::string> result;
    for (const std::string& line : lines) {
        if (line.starts_with("ODS(")) {
            result.push_back(line.substr(4, line.size() - 5));
        }
    }
    return result;
}

int Journal::count(const std::string& start) const
{
    int found = 0;
    for (const std::string& line : lines) {
        found += line.starts_with(start) ? 1 : 0;
    }
    return found;
}

std::string narrow(const wchar_t* text)
{
    if (text == nullptr) {
        return "null";
    }
    std::string result;
    for (; *text != L'\0'; ++text) {
        result += static_cast<char>(*text);
    }
    return result;
}
