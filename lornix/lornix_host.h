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

/** Makes the rules of some folders persistent: the stored rules of every folder in `folders` are replaced by
 * those rules of the chain that are defined in it. Folders are compared without regard to case and to the kind
 * of slash. A folder with no rule in the chain ends up with none. Nothing is changed for folders that fail.
 * @param folders  the folders that the host shows; not null.
 * @param chain    first rule, linked by next; null for no rules. Only read.
 * @return 1 when all is stored; 0 with the reason in lornixLastError (a rule outside the listed folders, a rule
 *         with a hard limit of 0 or less, a full or read-only disk, a damaged file in the way): what was stored
 *         before is then still there.
 */
LORNIX_API int lornixStoreRules(const PathList* folders, const QuotaRule* chain);

/** Releases a chain of rules that the host no longer shows, with paths and SIDs. Null is allowed. */
LORNIX_API void lornixFreeRules(QuotaRule* chain);

/** @return one or more lines that say what the last call that failed could not do and why, among them what
 *          getQuotaList met (a damaged file that it set aside, say); an empty text when the last call did all.
 *          Valid until the next call of the store.
 */
LORNIX_API const wchar_t* lornixLastError(void);

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
