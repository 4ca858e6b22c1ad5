// A store of accounts that a test writes, linked in place of the store library.
#pragma once

#include "corvane_types.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

/// The accounts that the store knows. An account is named by the last number of its SID.
struct AccountStore {
    std::map<unsigned, std::wstring> names;
    /// By server; an empty name is this machine.
    std::map<std::wstring, std::vector<unsigned>> users;
    std::map<std::wstring, std::vector<unsigned>> groups;
    std::optional<std::wstring> domainServer;
    std::map<std::wstring, std::wstring> secondServers;
    std::set<std::string> givesNull; ///< calls that give null, as the journal names them without their lists
    const SidList* givenBack = nullptr; ///< the source that appendToSidList2 gives back itself
    int givenBackNumber = -1;           ///< likewise, by the number that the journal shows
    const void* sidcmpLies = nullptr;   ///< an entry that sidcmp calls unequal to all

    // What the code under test holds now.
    int lists = 0;
    int sids = 0;
    int strings() const; ///< of those that the store handed out
};

extern AccountStore store;

/// Forgets everything and starts the accounting anew.
void resetStore();
/// Numbers the next lists from 1 again.
void resetStoreNumbers();

/// The SID with a last number, S-1-5-21-1-2-3-NUMBER. Stays the test's.
void* testSid(unsigned number);
/// The last number of a SID; 0 for null.
unsigned sidNumber(const void* sid);
/// Releases a copy that sidDup gave.
void releaseSid(void* sid);

/// A list that belongs to the test and is in no account: the caller's preset owners. Called "presets" in the
/// journal.
SidList* makePresets(const std::vector<unsigned>& numbers);
/// Numbers of a list's SIDs, 0 for a null one.
std::vector<unsigned> numbersOf(const SidList* list);
