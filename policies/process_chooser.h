// The chooser of a running process. Its way in is chooseProcess in corvane.h.
#pragma once

#include "corvane.h"
