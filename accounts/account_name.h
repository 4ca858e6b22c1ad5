// The parts of an account's text, and of the search base it was found under.
#pragma once

#include <string_view>

/// Cuts DOMAIN\name at its first backslash, in place.
/// @param domain  receives the text before the backslash, null when there is none.
/// @return the text after it, or the whole text.
const wchar_t* splitAccountName(wchar_t* text, const wchar_t*& domain);

/// What stands after the first backslash; empty when there is none.
const wchar_t* afterBackslash(const wchar_t* text);

/// The domain that a directory path names: the text between "://" and the next slash.
/// @param domain  receives it; left alone when the path has no "://".
/// @return whether it has one.
bool directoryDomain(const wchar_t* path, std::wstring_view& domain);

/// Whether a search base is a path of the directory service and not the name of a server.
bool isDirectoryPath(const wchar_t* host);
