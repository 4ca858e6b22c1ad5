// The rules that a host wants to have stored.
#pragma once

#include "lornix/rules/index_table.h"
#include "lornix/rules/rule_lines.h"
#include "lornix_host.h"

#include <string>
#include <string_view>
#include <vector>

namespace lornix {

/// Made into lines, by their folders. Keeps its room for the next time, as long as that is some megabytes.
class NewRules {
public:
    /// @param folders  stays until the next ones are taken, and so does the chain.
    /// @return false with a report when something of it cannot be stored.
    bool take(const PathList& folders, const QuotaRule* chain);

    /// Forgets them.
    void clear();

    struct Group {
        const wchar_t* folder; ///< as the host spells it
        std::u16string key;
        std::string_view lines;
    };
    /// In the order of the host's list.
    const std::vector<Group>& groups() const { return m_groups; }

    /// Whether they are more than a file may hold; their lines are not complete then.
    bool areTooMany() const;

private:
    /// Rules of one folder that follow each other.
    struct Run {
        std::uint32_t group;
        std::uint32_t start; ///< of their lines
        std::uint32_t size;
    };
    /// Of a rule of the chain.
    struct Account {
        const void* sid;
        std::uint32_t group;
        std::uint32_t hash; ///< of both
    };

    bool takeFolders(const PathList& folders);
    bool takeRules(const QuotaRule* chain);
    /// @param guess  a group that is tried first.
    std::uint32_t groupOf(const wchar_t* folder, std::uint32_t guess = IndexTable::kNone);
    void gather();
    bool isEachAccountOnce();

    std::vector<Group> m_groups;
    IndexTable m_groupsByKey;
    std::u16string m_key; ///< of the folder looked at last
    RuleLines m_lines;
    std::string m_gathered; ///< the lines once more, when those of a folder did not follow each other
    std::vector<Run> m_runs;
    std::vector<Account> m_accounts; ///< in the order of the chain
    IndexTable m_accountsSeen;
};

} // namespace lornix
