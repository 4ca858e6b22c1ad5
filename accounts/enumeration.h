// Fills the account list with every user and group that this machine and its domain know.
#pragma once

struct FillContext;

/// Inserts the rows "Please wait until data fetched..." (removed at the end) and "Anyone", the preset owners, then
/// users and groups: from the directory service when the search base is one of its paths, else from the store.
/// Without a search base the registry value "NoLDAP" decides; the directory's path is then in `host` while the
/// fill runs. The servers that the store is asked for are told to the list.
///
/// For the fill thread only; COM is initialised on the thread and stays so. After the first two rows it waits for its
/// turn while another fill runs. When the window goes, no step is begun any more: what was opened is closed, and the
/// fill is over. Never shows anything. Throws when a step that stands under no guard of its own
/// faults; what the fill holds is released all the same.
/// @param context  what to fill; null, or a list without a window, does nothing. Everything it points to must last
///                 until the fill returns: give it a SidListCopy as preset owners, so that the caller's list may go.
void fillTree(FillContext* context);
