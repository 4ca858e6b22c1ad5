// One way to keep a list of quota rules, timed beside the others.
#pragma once

#include "corvane.h"

#include <windows.h>

#include <memory>

/// Columns that are sorted, as they stand in the list.
inline constexpr int kNameColumn = 0;
inline constexpr int kInUseColumn = 3;

/// Each function is one measure. The list was prepared by initializeListCtrl2 and belongs to one side from empty
/// to gone; the functions are called in the order in which they stand here.
class Side {
public:
    virtual ~Side() = default;

    /// Fills the empty list with the rules of all folders.
    virtual void fill(HWND list, const PathList& folders) = 0;
    /// The same once more: every rule is there already.
    virtual void refill(HWND list, const PathList& folders) = 0;
    /// In the order of the first click.
    virtual void sort(HWND list, int column) = 0;
    /// Links the records of all rows. @return the first.
    virtual QuotaRule* chain(HWND list) = 0;
    /// Removes the selected rows, which are every second one.
    virtual void drop(HWND list) = 0;
};

/// corvane.dll through its exports.
std::unique_ptr<Side> corvaneSide();

/// The bare control: the same messages that change or read it, with everything else ready beforehand. What is in a
/// row is known, and so is what a comparison needs.
/// @param folders  of the rules that it will be asked for.
std::unique_ptr<Side> bareSide(const PathList& folders);

/// The straightforward way: every rule is compared with every row, and a comparison looks both rows up and reads
/// both texts.
std::unique_ptr<Side> rowByRowSide();
