// Sizes as the quota list shows them, and limits as they may be typed into its cells.
#pragma once

#include <cstdint>
#include <string>

namespace host {

/// A size in the list's own style: a number up to 1048576 and one unit letter, a blank for bytes.
std::wstring sizeText(int64_t bytes);

/// What a rule has used up of its limit, in the list's own style ("05%").
/// @param hardLimit  bytes; 1 or more.
std::wstring percentText(int64_t inUse, int64_t hardLimit);

/// A limit typed into a cell.
struct CellLimit {
    std::wstring text;    ///< the text to hand on; empty when refused
    std::wstring problem; ///< why it is refused, for people; empty when it is taken
};

/// Checks a text before it goes to hookNotify, which reads a 32-bit number and lets a larger one wrap to a
/// negative limit, takes no T, and reads a blank before the letter as "bytes". Here such texts are refused.
CellLimit checkCellLimit(const std::wstring& typed);

} // namespace host
