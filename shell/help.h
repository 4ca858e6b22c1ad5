// The help file. Its way in is showHelp in corvane.h.
#pragma once

#include "corvane.h"
