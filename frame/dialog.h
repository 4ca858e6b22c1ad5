// Opening of modal dialogs.
#pragma once

#include "frame/platform.h"

/// Shows a dialog template of this library modally.
///
/// The template is looked up in the module that is loaded as "corvane"; under any other name none is found.
/// @param templateId  number of the template.
/// @param owner       owner window, may be null.
/// @param parameter   reaches the procedure as the lParam of WM_INITDIALOG.
/// @return the end code, or -1 when the dialog could not be created.
INT_PTR openDialog(int templateId, HWND owner, DLGPROC procedure, LPARAM parameter);
