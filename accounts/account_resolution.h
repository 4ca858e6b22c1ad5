// Names of accounts.
#pragma once

/// Finds the name of an account. The texts lie in module-wide buffers and last until the next call; only the
/// fill thread may call this while a fill runs.
/// @param domain  receives the text before the first backslash, null when there is none.
/// @param name    receives the text after it, or the whole text.
/// @return DOMAIN\name; null, with both others null, when the account is unknown.
const wchar_t* resolveAccount(const void* sid, const wchar_t*& domain, const wchar_t*& name);
