/* corvane_types.h - the records that a host, corvane.dll and the quota store lornix.dll exchange in memory.
 *
 * Layouts are a binary contract (64-bit, little-endian); nothing here may move. All strings are zero-terminated
 * UTF-16. All blocks come from the shared C runtime (msvcrt.dll): what one module allocates with malloc or
 * _wcsdup, another may release with free.
 */
#ifndef CORVANE_TYPES_H
#define CORVANE_TYPES_H

#include <stddef.h>
#include <stdint.h>

#if UINTPTR_MAX < 0xffffffffffffffffu
#error "corvane is for 64-bit programs: its records and handles are laid out for nothing else."
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** QuotaRule::type of a rule that holds for anyone: it has no account. */
#define QUOTA_RULE_FOR_ANYONE 1u
/** QuotaRule::type of a rule for the one account in QuotaRule::sid. */
#define QUOTA_RULE_FOR_ACCOUNT 2u
/** QuotaRule::inUse that nobody has measured yet. */
#define QUOTA_IN_USE_UNKNOWN ((int64_t)-1)

/** One quota rule: on this folder, for this account or for anyone, allow this much.
 *
 * Rules form doubly linked chains. Whoever makes a record allocates it with malloc(sizeof(QuotaRule)).
 */
typedef struct QuotaRule {
    uint32_t type;     /**< QUOTA_RULE_FOR_ANYONE or QUOTA_RULE_FOR_ACCOUNT */
    uint32_t unused;   /**< padding */
    int64_t inUse;     /**< bytes counted against the rule when it is made; QUOTA_IN_USE_UNKNOWN */
    int64_t hardLimit; /**< hard limit in bytes; 0 or less: not yet set */
    int64_t softLimit; /**< soft (warning) limit in bytes; 0 or less: not yet set */
    void* sid;         /**< binary security identifier, a copy that the record owns; null: anyone */
    wchar_t* path;     /**< folder the rule is defined in, a heap copy that the record owns; never null */
    struct QuotaRule* next; /**< next rule of the chain, null at the end */
    struct QuotaRule* prev; /**< previous rule of the chain, null at the start */
} QuotaRule;

/** Folders: a count, then that many pointers. The declared length of 1 is nominal. A null list means none. */
typedef struct PathList {
    int32_t count;     /**< number of folders */
    wchar_t* paths[1]; /**< `count` folder paths */
} PathList;

/** Accounts: a count, then that many binary security identifiers. The declared length of 1 is nominal. */
typedef struct SidList {
    int32_t count; /**< number of identifiers */
    void* sids[1]; /**< `count` identifiers */
} SidList;

#ifdef __cplusplus
} /* extern "C" */

static_assert(sizeof(QuotaRule) == 64, "binary contract");
static_assert(offsetof(QuotaRule, type) == 0 && offsetof(QuotaRule, inUse) == 8, "binary contract");
static_assert(offsetof(QuotaRule, hardLimit) == 16 && offsetof(QuotaRule, softLimit) == 24,
              "binary contract");
static_assert(offsetof(QuotaRule, sid) == 32 && offsetof(QuotaRule, path) == 40, "binary contract");
static_assert(offsetof(QuotaRule, next) == 48 && offsetof(QuotaRule, prev) == 56, "binary contract");
static_assert(offsetof(PathList, paths) == 8, "binary contract");
static_assert(offsetof(SidList, sids) == 8, "binary contract");
#endif

#endif
