// The Quota Settings dialog. Its way in is editQuotaListEntry in corvane.h.
#pragma once

#include "corvane.h"
