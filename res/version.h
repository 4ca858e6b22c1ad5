/* The version as resource scripts need it: as numbers, and in the middle of a text. */
#include "corvane_version.h"

#define PRODUCT_VERSION CORVANE_VERSION_MAJOR.CORVANE_VERSION_MINOR.CORVANE_VERSION_PATCH.0
#define PRODUCT_VERSION_NUMBERS CORVANE_VERSION_MAJOR, CORVANE_VERSION_MINOR, CORVANE_VERSION_PATCH, 0

#define QUOTED(words) #words
#define TEXT_OF(words) QUOTED(words)
