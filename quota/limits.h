// The arithmetic of quota limits: what is proposed for a folder, and how typed limits are corrected.
#pragma once

#include <cstdint>

/// Limits of a rule, in bytes.
struct Limits {
    std::int64_t hard = 0;
    std::int64_t soft = 0;
};

/// 100 MiB: the hard limit of a rule whose folder gives no reason for another.
inline constexpr std::int64_t kDefaultHardLimit = 104857600;
/// The smallest hard limit that a rule may have, in bytes.
inline constexpr std::int64_t kSmallestHardLimit = 1024;

/// Limits for each of several folders at once: 100 MiB, and 95 % of it.
Limits limitsForSeveralFolders();

/// Fills in limits that are 0 or less: hard is five times the folder's size above 1 MiB, else 100 MiB; soft
/// is 95 % of hard.
/// @param objectSize  bytes under the folder.
Limits proposeLimits(Limits present, std::int64_t objectSize);

/// What typed limits are held against.
struct LimitRules {
    bool forAnyone = false;      ///< the rule has no account
    std::int64_t objectSize = 0; ///< bytes under the folder
    std::int64_t ownedSize = 0;  ///< bytes of the rule's account under the folder
    bool ownedCounts = false;    ///< the files of the account are part of the quota
    bool allCounts = false;      ///< all existing files are part of the quota
    bool allowBelow = false;     ///< a hard limit below the present size is wanted
};

/// Limits after correction.
struct CorrectedLimits {
    Limits limits;
    int errors = 0; ///< corrections that the administrator must be told of
};

/// Corrects typed limits. A hard limit of -1, no number typed, silently becomes the folder's size and 5 %.
CorrectedLimits correctLimits(Limits typed, const LimitRules& rules);
