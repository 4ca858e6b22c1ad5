/* Read before all else where the mingw-w64 headers stand in for the Microsoft runtime's: what those would have had. */
#include <_mingw.h>
#ifndef __MINGW_IMPORT
#define __MINGW_IMPORT extern __declspec(dllimport)
#endif

#include <locale.h>
#include <stdlib.h>
#ifdef __cplusplus
extern "C" {
float _strtof_l(const char*, char**, _locale_t);
long double _strtold_l(const char*, char**, _locale_t);
}
extern "C++" {
bool isnan(double) noexcept;
bool isinf(double) noexcept;
bool isfinite(double) noexcept;
bool signbit(double) noexcept;
}
#endif
