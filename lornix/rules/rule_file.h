// The text of the files that the store keeps: the rules of one folder, the known folders, the tracked rules.
#pragma once

#include "lornix/text/framed_text.h"
#include "lornix/text/sid_text.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace lornix {

/// A rule as a file keeps it.
struct StoredRule {
    std::int64_t hardLimit = 0; ///< above 0 in a good file
    std::int64_t softLimit = 0;
    std::int64_t inUse = 0;
    Sid sid;               ///< empty: for anyone
    std::u16string folder; ///< as the rule spells it
};

/// What a file held that could be used, and what could not.
struct FolderRules {
    Condition condition = Condition::kForeign;
    std::u16string folder;
    std::vector<StoredRule> rules;
    std::vector<Flaw> flaws;
};

struct TrackedRules {
    Condition condition = Condition::kForeign;
    std::vector<StoredRule> rules;
    std::vector<Flaw> flaws;
};

struct KnownFolders {
    Condition condition = Condition::kForeign;
    std::vector<std::u16string> folders;
    std::vector<Flaw> flaws;
};

/// Writes the rules of one folder.
class FolderRulesWriter {
public:
    explicit FolderRulesWriter(std::u16string_view folder);

    /// @param sid     empty for anyone.
    /// @param folder  as the rule spells it.
    void add(std::int64_t hardLimit, std::int64_t softLimit, std::int64_t inUse,
             std::span<const std::uint8_t> sid, std::u16string_view folder);

    std::string finish() { return writer_.finish(); }

private:
    std::u16string_view folder_;
    TextWriter writer_;
};

FolderRules readFolderRules(std::string_view text);
std::string writeFolderRules(std::u16string_view folder, const std::vector<StoredRule>& rules);

TrackedRules readTrackedRules(std::string_view text);
std::string writeTrackedRules(const std::vector<StoredRule>& rules);

KnownFolders readKnownFolders(std::string_view text);
std::string writeKnownFolders(const std::vector<std::u16string>& folders);

} // namespace lornix
