// What the store could not do behind a call of the library, which tells nothing of it itself.
#pragma once

#include "lornix_host.h"

#include <string>

namespace host {

/// Makes calls that may load or store something.
/// @return what the store could not do meanwhile, a line each; empty when it did all.
template <class Call>
std::wstring storeErrorsOf(Call&& call)
{
    lornixTakeErrors(); // what was told elsewhere
    call();
    return lornixTakeErrors();
}

} // namespace host
