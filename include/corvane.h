/* corvane.h - the dialog library of the disk-quota control panel.
 *
 * Link with the import library of corvane.dll or take the functions by name: exports are plain, undecorated C
 * functions of the x86-64 Windows calling convention. The library must be loaded under the module name
 * "corvane" (file name corvane.dll): it finds its dialog templates under that name, and under another name no
 * dialog opens.
 *
 * Threads     All functions are called on the thread that owns the windows passed in, and return when their
 *             work, or their modal dialog, is done. State such as the sort column is module-wide and unlocked:
 *             one thread at a time. Dialogs keep their state to themselves: two windows of a thread may each have
 *             one of a kind open; only the account chooser keeps its last choice for all.
 *             A thread that shows a dialog or changes many rows keeps back 128 KiB of its stack for whoever handles
 *             a stack overflow (SetThreadStackGuarantee), unless it keeps as much already. The platform has no
 *             way to give that back.
 *             A thread without COM gets a single-threaded apartment while the shell is asked for icons or opens
 *             the help, and has none again afterwards; the apartment that a thread has chosen is left alone.
 * Text        UTF-16, zero-terminated. Message boxes are shown with MessageBoxA.
 * Errors      Results, not exceptions. A function that has no result reports nothing; the store's results are
 *             mostly not checked. A fault inside a dialog is caught, one line is written to the store's debug
 *             channel, and the dialog stays open. The list functions outside a dialog have no such guard: what
 *             the store throws there, the host sees.
 * Memory      Blocks come from the shared C runtime msvcrt.dll: release with its free.
 *
 * Records     A row of the quota list carries its record as item data, and a dialog gives its record as end code,
 *             in 32 bits. On today's Windows records lie above 4 GiB, and the 32-bit value is then a stand-in that
 *             is no valid address: take records from the chain that getDataModified gives, never from the item
 *             data. It stands for its record while a row of a list carries it that these functions have had to do
 *             with, and for some thousand other records after that; a row that comes back later has no record. Only where a record lies below 4 GiB, as in a host that is not aware of large addresses, is the
 *             value its address.
 */
#ifndef CORVANE_H
#define CORVANE_H

#include "corvane_types.h"
#include "corvane_version.h"

#include <windows.h>

#ifdef CORVANE_BUILDING
#define CORVANE_API
#else
#define CORVANE_API __declspec(dllimport)
#endif

/** The platform framework's list-control object, as its shared 64-bit library lays it out: a polymorphic object
 * whose window handle stands at byte offset 64. Nothing but the handle is read, and no virtual is called.
 * A host without the framework passes the address of a CorvaneListObject instead.
 */
#ifdef __cplusplus
class CListCtrl;
#else
typedef struct CListCtrl CListCtrl;
#endif

/** What the functions ending in 2 read of a list-control object, for hosts that have no framework:
 * `CorvaneListObject list = { {0}, hwnd }; sortListCtrl2((CListCtrl*)&list, 0);`
 */
typedef struct CorvaneListObject {
    void* reserved[8]; /**< never read */
    HWND window;       /**< a list view in report view */
} CorvaneListObject;

/** The account argument that means anyone, beside null. */
#define CORVANE_ANYONE ((void*)1)

#ifdef __cplusplus
static_assert(sizeof(CorvaneListObject) == 72 && offsetof(CorvaneListObject, window) == 64,
              "binary contract");
extern "C" {
#endif

/* ---- quota list, by list-control object ----------------------------------------------------------------- */

/** Prepares a list view for quota rules: removes all rows and columns, adds the six columns (Credentials, Quota
 * Limit, Soft Quota Limit, In Use, %%, Defined in) and the extended styles full-row select, grid lines, header
 * drag-and-drop and label tips.
 * @param list   list view in report view; without a sorting style, rows stand where the functions put them.
 * @param paths  folders to fill the list with at once (see fillUpListCtrl2), or null.
 */
CORVANE_API void initializeListCtrl2(CListCtrl* list, const PathList* paths);

/** Adds the stored rules of some folders to the list.
 *
 * The rules come from the store, folder by folder; each new row is put on top. A rule that equals one already
 * shown (limits, path letter by letter, account) is not added again; the slashes count, and adding rewrites them
 * (see addToListCtrl2), so that a later fill of the same folders doubles rows unless the host has turned them back.
 * An account without a name shows its textual SID. A record's path is never null. A hard limit of 0 faults the fill,
 * as the percentage divides by it; the host sees the fault.
 * After each folder that has rules the records of all rows form one chain in row order, and the list window is
 * enabled; where no folder has any, the chain and the window stay as they are.
 * @param paths  folders, in order; null is none. Note that this argument comes first.
 * @param list   prepared list view. The records of the store become the rows' item data and pass to the list.
 */
CORVANE_API void fillUpListCtrl2(const PathList* paths, CListCtrl* list);

/** Adds a rule for one account, or for anyone, on each of some folders, through the Quota Settings dialog.
 *
 * A folder that already has a rule for the account gets a message and is passed over. For a single folder the
 * dialog proposes limits from the folder's size; for several folders each rule starts at 100 MiB (hard) and
 * 95 MiB (soft). A group's rule may come back with a rule for each member. New rows are put on top.
 * The row is there while its dialog is open, and goes away on Cancel; with a single folder it then reads "-1 ", "-1 ",
 * "-1 " and "00%". A host that fills or sorts the list meanwhile finds the rule in its row all the same; a row that it
 * has taken away stays away, and its rule is not in the chain.
 * Comparing folder paths rewrites backslashes as forward slashes, in place, in the caller's paths as well as in
 * the compared records.
 * @param list   prepared list view.
 * @param sid    account; null or CORVANE_ANYONE for anyone. Copied.
 * @param paths  folders, in order; null is none. The strings may be rewritten, see above.
 * @return non-zero; 0 when the dialog was cancelled, or could not be shown, for any of the folders.
 */
CORVANE_API unsigned char addToListCtrl2(CListCtrl* list, void* sid, const PathList* paths);

/** Opens the Quota Settings dialog on the first selected row, and rewrites the row after OK.
 * @param list  prepared list view; its topmost child window, the header, becomes the dialog's owner. A list
 *              view with no child window is a fault.
 * @return 0 when the list is empty or the dialog was cancelled; otherwise non-zero, also with nothing selected.
 */
CORVANE_API unsigned char editFromListCtrl2(CListCtrl* list);

/** Removes all selected rows and takes their records out of the chain. Nothing is asked, and the records are
 * not released.
 * @return 0 when nothing was selected, or there is no list view; otherwise non-zero.
 */
CORVANE_API unsigned char dropFromListCtrl2(CListCtrl* list);

/** Relinks the records of all rows into one chain in row order.
 * @return the record of row 0, or null when the list is empty. The chain stays the list's: the host reads and
 *         stores it while the rows are there.
 */
CORVANE_API QuotaRule* getDataModified2(CListCtrl* list);

/** Sorts a list view by a column. The first call for a column sorts numbers (size texts, percentages) from
 * small to large and texts from Z to A without regard to case; each further call for it turns the order round.
 * Works on any report list view whose rows have distinct item data. The remembered column and order are shared
 * by all lists of the process. Numbers are compared by the low 32 bits of their difference, so that sizes
 * 2 GiB or more apart may come out wrong. The chain is not linked anew: getDataModified2 does it.
 * @param column  zero-based column.
 */
CORVANE_API void sortListCtrl2(CListCtrl* list, int column);

/** @return the number of rows. */
CORVANE_API int countItems2(CListCtrl* list);

/** Enables some controls of a dialog while a row is selected, and disables them otherwise.
 * @param dialog  parent of the controls.
 * @param list    list view.
 * @param ...     control ids (int), ended by 0. A missing control is passed over.
 */
CORVANE_API void checkForButtons2(HWND dialog, CListCtrl* list, ...);

/* ---- quota list, by dialog and control id --------------------------------------------------------------- */
/* Each looks up the control with GetDlgItem and does what the function of the same name ending in 2 does. */

/** See initializeListCtrl2. */
CORVANE_API void initializeListCtrl(HWND dialog, int listId, const PathList* paths);

/** See fillUpListCtrl2. Note that the folders come first. */
CORVANE_API void fillUpListCtrl(const PathList* paths, HWND dialog, int listId);

/** See addToListCtrl2. When that gives non-zero, the folders are also added to the store's
 * known folders, which are stored. */
CORVANE_API unsigned char addToListCtrl(HWND dialog, int listId, void* sid, const PathList* paths);

/** See editFromListCtrl2. */
CORVANE_API unsigned char editFromListCtrl(HWND dialog, int listId);

/** See dropFromListCtrl2. */
CORVANE_API unsigned char dropFromListCtrl(HWND dialog, int listId);

/** See getDataModified2. */
CORVANE_API QuotaRule* getDataModified(HWND dialog, int listId);

/** See sortListCtrl2; the remembered column and order are the same. */
CORVANE_API void sortListCtrl(HWND dialog, int listId, int column);

/** See countItems2. */
CORVANE_API int countItems(HWND dialog, int listId);

/** See checkForButtons2.
 * @param ...  control ids (int), ended by 0.
 */
CORVANE_API void checkForButtons(HWND dialog, int listId, ...);

/** In-place editing of the "Soft Quota Limit" cell. The host forwards the list's notifications.
 *
 * Accepting a text sets both limits of the row's record to it, read as a 32-bit number with an optional unit
 * letter K, M or G; a larger value wraps: "4G" is 0, like "0". A hard limit of 0, once stored, faults the next fill
 * that meets it, and a text without a number stores -1: a host looks at the text before it forwards it. The row's
 * texts are left alone.
 * @param notification  an NMLVDISPINFOW; read are the code, the item, the sub-item and the text. The platform's
 *                      own label editing always says sub-item 0, which is refused: a host that edits a cell fills
 *                      in the sub-item.
 * @return LVN_BEGINLABELEDITW: 0 to allow editing (sub-item 2), 1 to refuse.
 *         LVN_ENDLABELEDITW: 1 when the text was taken, 0 when it was not (another sub-item, or a null text).
 *         Any other code: 0.
 */
CORVANE_API int hookNotify(HWND dialog, int listId, const NMHDR* notification);

/** Shows an icon on a button (BM_SETIMAGE). The icon stays the caller's. */
CORVANE_API void setButtonIcon(HWND dialog, int buttonId, HICON icon);

/** @return the check state of a button (BM_GETCHECK); 0 for a button that does not exist. */
CORVANE_API int getButtonState(HWND dialog, int buttonId);

/** Sets the check state of a button (BM_SETCHECK).
 * @param state  BST_CHECKED, BST_UNCHECKED or BST_INDETERMINATE, passed on as it is.
 */
CORVANE_API void setButtonState(HWND dialog, int buttonId, int state);

/* ---- dialogs -------------------------------------------------------------------------------------------- */

/** The modal Quota Settings dialog for one rule.
 *
 * Measures the folder through the store, proposes limits that are not yet set, and writes what the administrator
 * accepts into the record. What was written into the record before Cancel stays: a measured inUse, proposed
 * limits, and limits corrected by a refused OK.
 * @param owner   owner window, may be null.
 * @param record  the rule; edited in place, not null.
 * @param mode    non-zero to add a rule (with the choices for existing files and group members), 0 to edit one.
 * @return the record's 32-bit value after OK (see the top of this file; a record below 4 GiB is its own value):
 *         with the settings applied to all members of a group, a new record per member is chained after it.
 *         0 after Cancel, -1 when the dialog could not be shown.
 */
CORVANE_API intptr_t editQuotaListEntry(HWND owner, QuotaRule* record, int mode);

/* ---- files, processes, the product ---------------------------------------------------------------------- */

/** The modal dialog "Choose file...": the drives of this machine that keep named streams, and the plain files in
 * their root folders. Sub-folders are not listed.
 * @param owner        owner window, may be null.
 * @param foldersOnly  0 to show files; any other value hides them, and then only drives can be chosen.
 * @return the chosen path without a backslash at the end (C: for a drive), empty when nothing was selected; a copy
 *         that the caller owns and releases with free. Null after Cancel and when the dialog could not be shown.
 */
CORVANE_API wchar_t* chooseFileImpl(HWND owner, unsigned foldersOnly);

/** The modal dialog "Select program from list of running processes": one row per process, by name.
 * @param owner  owner window, may be null.
 * @return the chosen process's image name, at most 259 characters, a copy that the caller owns and releases with
 *         free; where the platform tells a full path it begins with the path's last backslash. Null after Cancel.
 *         (wchar_t*)-1, no string and not to be released, when the dialog could not be shown.
 */
CORVANE_API wchar_t* chooseProcess(HWND owner);

/** Shows the About box and returns when it is closed.
 * @param owner  owner window, may be null.
 */
CORVANE_API void showAboutDialog(HWND owner);

/** Opens the help file, doc\vantrel40.chm below the installation folder ("Path" in the registry), with the shell.
 * Nothing is reported when there is none.
 * @param owner  owner window for the shell's messages, may be null.
 */
CORVANE_API void showHelp(HWND owner);

/* ---- accounts ------------------------------------------------------------------------------------------- */

/** The modal dialog "Choose subject": one user or group, picked from a list of all that this machine and its domain
 * know, or typed by name. The list is filled on a thread of the library's own, with the store's help; the thread
 * keeps the library loaded until it ends, also when the dialog is destroyed before.
 * When the dialog cannot be shown, the result of the last call comes again; a SID has been handed out then already,
 * so release no value twice.
 * @param parent  owner window, may be null.
 * @return null for nothing chosen, CORVANE_ANYONE, or a copy of a SID made by the store's sidDup, which is the
 *         caller's and is released with free.
 */
CORVANE_API void* chooseSidFromUserInput(HWND parent);

/** The same with accounts that are listed first, as "File owner", and not again as users or groups.
 * @param presetOwners  stays the caller's; only read, and not after the call. May be null.
 */
CORVANE_API void* chooseSidFromUserInput2(HWND parent, SidList* presetOwners);

/** Whether the calling thread's user has the rights of the local Administrators group, so that a host can offer
 * or withhold the editing of rules. A member whose group is disabled in the token, as in a session that is not
 * elevated, has not. Shows nothing; what went wrong goes to the store's debug channel.
 * The thread impersonates itself during the check and is reverted to the process's identity after it; after a
 * check that failed it stays impersonating itself.
 * @return non-zero when it has; 0 when it has not, and for every failure.
 */
CORVANE_API int isAdmin(void);

/* ---- policies ------------------------------------------------------------------------------------------- */
/* Each editor loads its list from the store, changes it there in memory, and on OK stores it and, where the store
 * has a call for it, applies it; Cancel and the close box drop the changes. The caller learns nothing of them.
 * One editor of a kind at a time.
 * @param owner  owner window, may be null.
 * @return 0 after OK and after Cancel, -1 when the dialog could not be shown.
 */

/** The modal Notifications dialog: scripts that run when a limit is reached. Stored, not applied. */
CORVANE_API intptr_t editNotifications(HWND owner);

/** The modal editor of the exception files, which accounting leaves out. OK also has the store write
 * "excludes.cnf". */
CORVANE_API intptr_t editExcludes(HWND owner);

/** The modal editor of the blocked file masks, each for one account or for all. */
CORVANE_API intptr_t editExcludeExts(HWND owner);

/** The modal editor of the accounts that may administer quotas. */
CORVANE_API intptr_t editMgrAccounts(HWND owner);

/** The modal editor of the backup tools, whose activity is not charged. OK also has the store write
 * "excludes.cnf". */
CORVANE_API intptr_t editBackupTools(HWND owner);

/** The modal dialog on one backup tool: a program's image name, typed, or picked from the running processes or
 * from disk.
 *
 * The string's address is always below 4 GiB, as hosts have kept it in 32 bits. A string at the start of its
 * VirtualQuery region (AllocationBase is its own address) stands in a region of its own, which free must not
 * get: release it with VirtualFree(string, 0, MEM_RELEASE). No heap block ever looks like that. Any other is a
 * block of the C runtime, for free; and so is every string in a host whose heap lies below 4 GiB, as in one
 * linked without high-entropy address randomisation.
 * @param owner  owner window, may be null.
 * @param name   text to start with, null for none.
 * @return 0 after Cancel, -1 when the dialog could not be shown; otherwise the address of a string that passes
 *         to the caller: what follows the last backslash of the edit's text, at most 259 characters, perhaps
 *         none. 0 too when there is no memory below 4 GiB left.
 */
CORVANE_API intptr_t editBackupToolListEntry(HWND owner, const wchar_t* name);

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
