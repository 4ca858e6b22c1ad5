// Folder trees on the disk, also deeper than the 260 characters that most functions take.
#pragma once

#include <string>
#include <string_view>

namespace store_test {

/// The form of a full path that knows no limit.
std::wstring longName(const std::wstring& path);

void makeFolder(const std::wstring& path);

/// Makes a file of a size.
void makeFile(const std::wstring& path, long long size);

/// Makes folders of one name, one inside the other. @return the innermost.
std::wstring makeDeepFolder(const std::wstring& top, const std::wstring& name, int depth);

/// Makes a link to a folder, by the system's function or, where that one only pretends, by the tools of the
/// system below.
/// @param folder  from where the link stands.
/// @return whether there is a link then.
bool makeLink(const std::wstring& link, const std::wstring& folder);

/// Removes a folder with all that is in it, links but not what they lead to. Fine when there is none.
/// @return whether it is gone.
bool removeTree(const std::wstring& path);

} // namespace store_test
