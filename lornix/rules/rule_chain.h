// Rules as they cross the border: records in a chain.
#pragma once

#include "lornix_host.h"
#include "store/owned.h"

#include <string_view>

namespace lornix {

using Chain = Owned<QuotaRule*, lornixFreeRules>;

/// @param lines  of a book, see RuleBook.
Chain chainOf(std::string_view lines);

} // namespace lornix
