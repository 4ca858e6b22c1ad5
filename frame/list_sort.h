// Sorting of a report list view by one of its columns.
#pragma once

class CListCtrl;

/// Sorts by a column; the first call for a column sorts numbers upwards and texts from Z to A, each further
/// call for it turns the order round. Column and order are remembered module-wide, for all lists together.
void sortRows(const CListCtrl& list, int column);
