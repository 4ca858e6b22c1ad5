// Painting the headings of a header that has something under them.
#pragma once

#include <windows.h>

namespace host {

/// Paints all of a header control as the platform does, its headings leaving the lower part free.
/// @param lower  height of that part, in pixels.
void paintHeadings(HWND header, HDC dc, int lower);

} // namespace host
