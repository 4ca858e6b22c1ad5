// Accounts that cost next to nothing to find: what a fill takes is then the library's own.
#pragma once

#include <cstdint>
#include <string>

/// Where a fill has its accounts from.
enum class Source : std::uint8_t { kStore, kDirectory };

/// Serves as many users from a source, and nothing from the other. Names stand in no order; every tenth begins with "b",
/// every thousandth with "bq", the others with "a".
void serveAccounts(int users, Source source);

/// Users that the directory has.
extern int directoryUsers;

/// The search base for a source.
const wchar_t* searchBase(Source source);

/// Name and full name of the account with a number, as a fill finds them.
std::wstring accountName(int number);
std::wstring accountFullName(int number);
/// The same of an account that is served.
const wchar_t* servedFullName(int number);

/// Puts the bench's own directory and network in place of the platform's, for good.
void replacePlatform();
