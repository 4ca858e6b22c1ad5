// The SIDs of the recording store: accounts, copies and lists.
#pragma once

#include "corvane_types.h"

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

/// Accounts with real SIDs, and an account of all that was given out and has not come back.
class StoreSids {
public:
    /// @return the new account's SID, which stays here.
    void* account(std::string_view name);
    std::string nameOf(const void* sid) const;

    /// A copy; null for what is no SID.
    void* copy(const void* sid);
    void release(void* sid);
    int open() const { return m_open; }

    SidList* emptyList();
    SidList* append(SidList* list, void* sid);
    SidList* appendAll(SidList* destination, const SidList* source);
    void releaseList(SidList* list);
    int openLists() const { return static_cast<int>(m_lists.size() - m_callersLists.size()); }

    /// A list that stays the caller's.
    SidList* callersList(const std::vector<void*>& sids);

    /// Lists are numbered from 1 again, and told by their numbers.
    void tellByNumber();
    /// Empty when they are told by what is in them.
    std::string numberOf(const SidList* list) const;

private:
    struct Account {
        std::string name;
        std::string sid; ///< its bytes
    };

    SidList* newList(int count, int number);
    SidList* grow(SidList* list, int more);
    bool isStores(SidList* list, const char* what) const;

    std::vector<std::unique_ptr<Account>> m_accounts;
    std::unordered_map<std::string, const Account*> m_accountsBySid;
    std::unordered_map<const SidList*, int> m_lists; ///< with their numbers; 0 for the caller's own
    std::vector<std::unique_ptr<unsigned char[]>> m_callersLists;
    bool m_toldByNumber = false;
    int m_lastNumber = 0;
    int m_open = 0;
};

/// A SID by itself, in memory of its own; null for what is no SID.
void* copySid(const void* sid);
