// What the runtime used on Linux lacks, supplied for this program alone.
#pragma once

namespace host {

/// Fills the gaps; does nothing on Windows. Headers that the library gives a filter bar get one, and drives say that
/// they keep named streams, as every drive of a quota server does.
void fillRuntimeGaps();

} // namespace host
