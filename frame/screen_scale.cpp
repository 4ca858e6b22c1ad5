#include "frame/screen_scale.h"

#include "frame/platform.h"

int scaledToScreen(int pixels)
{
    constexpr int kUsual = 96;
    HDC screen = GetDC(nullptr);
    const int dotsPerInch = GetDeviceCaps(screen, LOGPIXELSX);
    ReleaseDC(nullptr, screen);
    return dotsPerInch > 0 ? MulDiv(pixels, dotsPerInch, kUsual) : pixels;
}
