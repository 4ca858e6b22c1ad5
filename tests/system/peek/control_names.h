// The controls by their names in res/resource.h and host/resource.h.
#pragma once

#include <string>

namespace peek {

/// The number of a control: IDC_QUOTA_HARD_LIMIT, IDOK; IDC_BOX_TEXT is the text of a message box; of a window that is not
/// ours, the number itself. Throws when nothing has this name.
int controlNumber(const std::wstring& name);

} // namespace peek
