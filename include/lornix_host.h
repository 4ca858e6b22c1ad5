/* lornix_host.h - what a host needs of the embedded quota store beside what corvane calls.
 *
 * corvane itself never calls these. Plain C exports of lornix.dll, called on the host's user-interface thread.
 */
#ifndef LORNIX_HOST_H
#define LORNIX_HOST_H

#include "corvane_types.h"

#ifndef LORNIX_API
#ifdef LORNIX_BUILDING
#define LORNIX_API
#else
#define LORNIX_API __declspec(dllimport)
#endif
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** Chooses the folder that the store keeps its files in, and creates it when it is missing.
 *
 * Without this call the folder is the value of the environment variable LORNIX_DATA, or else the folder
 * "Vantrel\lornix" in the platform's folder for application data common to all users.
 * @param folder  absolute path; null goes back to the default.
 * @return 1, or 0 with the reason in lornixLastError; the folder in use is then unchanged.
 */
LORNIX_API int lornixSetDataFolder(const wchar_t* folder);

/** @return the folder in use; valid until the next lornixSetDataFolder. */
LORNIX_API const wchar_t* lornixDataFolder(void);

/** The folders that carry rules, as last stored, so that a host can show them again after a restart.
 * @return a list that the caller releases with lornixFreeFolders; null when there are none, also when the list
 *         cannot be read, which lornixLastError then tells.
 */
LORNIX_API PathList* lornixKnownFolders(void);

/** Releases a list that lornixKnownFolders gave, with its paths. Null is allowed. */
LORNIX_API void lornixFreeFolders(PathList* folders);

/** The stored rules of one folder, for a host that reports them without a list view.
 * @param folder  folder path; not null. Compared without regard to case and to the kind of slash.
 * @return first rule of a chain linked by next, which the caller releases with lornixFreeRules; null when the
 *         folder has none. What could not be read is told by lornixLastError.
 */
LORNIX_API QuotaRule* lornixLoadRules(const wchar_t* folder);

/** Name of a rule's account as a person reads it: DOMAIN\name, or the textual SID of an account without a name,
 * or "Anyone" for null.
 * @param buffer    receives the name; cut when it does not fit.
 * @param capacity  characters that the buffer holds, with the terminator; 1 or more.
 */
LORNIX_API void lornixAccountName(const void* sid, wchar_t* buffer, int capacity);

/** Makes the rules of some folders persistent: the stored rules of every folder in `folders` are replaced by
 * those rules of the chain that are defined in it. Folders are compared without regard to case and to the kind
 * of slash. A folder with no rule in the chain ends up with none. All of it is stored or nothing, also when the
 * process is killed meanwhile.
 * Rules that this process asked for are not replaced when it could not read them, or when another process changed
 * them since: they are to be read again first.
 * The known folders follow: a listed folder that has rules joins them, one that ends up with none leaves them.
 * @param folders  the folders that the host shows; not null.
 * @param chain    first rule, linked by next; null for no rules. Only read.
 * @return 1 when all is stored; 0 with the reason in lornixLastError (a rule outside the listed folders, a rule
 *         with a hard limit of 0 or less or a soft one above it, two rules of a folder for one account, a full or
 *         read-only disk, a file of a newer version): what was stored before is then still there. A damaged file
 *         that had to be set aside is told beside a 1.
 */
LORNIX_API int lornixStoreRules(const PathList* folders, const QuotaRule* chain);

/* What the policy lists of store/lornix.h mean here: storing makes a list persistent in "NAME.txt" of the data folder;
 * applying, "Makes the list active", writes what that file holds then to "active-NAME.txt", for whoever enforces it, so
 * a list that could not be stored changes nothing, and what others stored meanwhile is not undone. storeRulesFromDriver writes the exceptions that are active, exception
 * files and backup tools, together to the file that it is given the name of. */

/** A new rule record, for a host whose C runtime is not the shared one that corvane and the store use: they release
 * what they are given with free.
 * @param folder  copied; not null.
 * @param sid     account, copied; null for a rule for anyone.
 * @return a record of its own with limits of 0, released with lornixFreeRules, or by corvane where a record passes to
 *         it; null when the account is no valid SID, or when there is not enough memory.
 */
LORNIX_API QuotaRule* lornixNewRule(const wchar_t* folder, const void* sid);

/** Releases a block that corvane or the store handed over, a name or a SID say: for such a host. Null is allowed. */
LORNIX_API void lornixFree(void* block);

/** Releases a chain of rules that the host no longer shows, with paths and SIDs. Null is allowed. */
LORNIX_API void lornixFreeRules(QuotaRule* chain);

/** @return one or more lines that say what the last call that failed could not do and why, among them what
 *          getQuotaList met (a damaged file, say); an empty text when the last call did all.
 *          Looking up names and SIDs and writing debug lines leave it alone, so that it can be read after a call
 *          of corvane that loads rules. Valid until the next call of the store that loads or stores something.
 */
LORNIX_API const wchar_t* lornixLastError(void);

/** What could not be done since this function was called last, by all calls of the store together: for after a call
 * of corvane, which calls the store several times, so that a failure is not covered by the success that follows.
 * @return the lines that lornixLastError told meanwhile, the oldest first, each once; after the first hundred a line
 *         that says that there were more. A damaged file is told once for each change of it. An empty text when all was
 *         done. Valid until the next call of this function.
 */
LORNIX_API const wchar_t* lornixTakeErrors(void);

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
