// The About box. Its way in is showAboutDialog in corvane.h.
#pragma once

#include "corvane.h"
