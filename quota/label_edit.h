// In-place editing of the soft-limit cell of the quota list.
#pragma once

#include "frame/list_ctrl.h"

/// Answers the list's label-edit notifications; see hookNotify in corvane.h.
int answerLabelEdit(const CListCtrl& list, const NMLVDISPINFOW& notification);
