#include "files/file_search.h"

std::wstring withBackslash(std::wstring path)
{
    if (path.empty() || path.back() != L'\\') {
        path += L'\\';
    }
    return path;
}

FileSearch::FileSearch(const std::wstring& pattern)
{
    const HANDLE answer = FindFirstFileW(pattern.c_str(), &m_entry);
    const auto number = reinterpret_cast<UINT_PTR>(answer);
    m_foundDevice = number == 1;
    // Old redirectors answer with a small error number in place of a handle.
    if (number > 32 && answer != INVALID_HANDLE_VALUE) {
        m_search.reset(answer);
    }
}

bool FileSearch::next()
{
    return FindNextFileW(m_search.get(), &m_entry) != 0;
}
