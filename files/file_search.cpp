#include "files/file_search.h"

std::wstring withBackslash(std::wstring path)
{
    if (path.empty() || path.back() != L'\\') {
        path += L'\\';
    }
    return path;
}

FileSearch::FileSearch(const std::wstring& pattern)
    : m_search(FindFirstFileW(pattern.c_str(), &m_entry))
{
}

FileSearch::~FileSearch()
{
    if (started()) {
        FindClose(m_search);
    }
}

bool FileSearch::started() const
{
    // Old redirectors answer with a small error number in place of a handle.
    return reinterpret_cast<UINT_PTR>(m_search) > 32 && m_search != INVALID_HANDLE_VALUE;
}

bool FileSearch::next()
{
    return FindNextFileW(m_search, &m_entry) != 0;
}
