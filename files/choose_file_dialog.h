// The "Choose file..." dialog. Its way in is chooseFileImpl in corvane.h.
#pragma once

#include "corvane.h"
