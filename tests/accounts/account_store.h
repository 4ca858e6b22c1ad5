// A recording store of accounts that go by numbers.
#pragma once

#include "tests/support/recording_store.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

/// The calls tell an account by its number, and a list by the number in which it was made.
class AccountStore : public RecordingStore {
public:
    AccountStore();
    ~AccountStore();
    AccountStore(const AccountStore&) = delete;
    AccountStore& operator=(const AccountStore&) = delete;

    std::map<unsigned, std::wstring> names;
    /// By server; an empty name is this machine.
    std::map<std::wstring, std::vector<unsigned>> users;
    std::map<std::wstring, std::vector<unsigned>> groups;
    std::optional<std::wstring> domainServer;
    std::map<std::wstring, std::wstring> secondServers;
    std::set<std::string> givesNull; ///< calls that give null, as they are written down without their lists
    std::string givenBack; ///< the list that appendToSidList2 gives back itself as the source, as it is told
    const void* sidcmpLies = nullptr; ///< an entry that sidcmp calls unequal to all

    /// Strings that the store handed out and nobody has freed.
    int strings() const;
    /// To be told of each block that is freed.
    static void forgetString(void* block);

private:
    using Accounts = std::map<std::wstring, std::vector<unsigned>>;
    std::function<SidList*(SidList*, SidList*)> m_append; ///< as the store does it by itself
    SidList* enumerate(const char* function, const Accounts& accounts, const wchar_t* server, SidList* list);
};

/// The SID of an account of the store.
void* testSid(unsigned number);
/// The number of a SID's account; 0 when there is none.
unsigned sidNumber(const void* sid);

/// The caller's preset owners, null for 0.
SidList* makePresets(const std::vector<unsigned>& numbers);
/// Numbers of a list's SIDs, 0 for a null one.
std::vector<unsigned> numbersOf(const SidList* list);
