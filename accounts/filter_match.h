// How a cell compares with the filter of its column.
#pragma once

/// Whether a row passes for this column: the text begins with the filter, in any case. An empty filter lets
/// everything pass.
bool passesFilter(const wchar_t* text, const wchar_t* filter);

/// Whether the text is all that the filter says: the same characters in any case, white space apart.
bool equalsFilter(const wchar_t* text, const wchar_t* filter);
