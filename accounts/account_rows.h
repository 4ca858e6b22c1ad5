// The rows that a fill makes of accounts.
#pragma once

#include "accounts/preset_owners.h"
#include "corvane_types.h"

struct FillContext;

/// What the accounts of one list have in common.
struct AccountKind {
    const wchar_t* type;
    int image;
};

/// Names accounts and hands their rows over, one behind the other. The window is looked at before each of them: a name
/// may take as long as a network does.
class AccountRows {
public:
    explicit AccountRows(FillContext& context);

    /// The two rows that need no store.
    void insertFirst() const;

    /// The accounts to list first.
    void insertPresetOwners();

    /// The accounts of a list, without those that stand first.
    void insert(const SidList* list, AccountKind kind);

    /// Goes on behind the rows that the list has by now.
    void countOn();

private:
    void insertNamed(void* sid, AccountKind kind);

    FillContext& m_context;
    PresetOwners m_presetOwners;
    int m_next = 2;
};
