// The walk through a container of the directory service.
#pragma once

#include "accounts/com_owners.h"
#include "accounts/preset_owners.h"
#include "corvane_types.h"

#include <iads.h>

#include <adshlp.h>

#include <cstdint>
#include <vector>

struct FillContext;

/// The objects that a walk lists, by their class.
enum class DirectoryKind : std::uint8_t {
    kUsersAndGroups = 0,
    kUsers = 1,
    kGroups = 2,
};

/// What a walk holds while it runs. It stands outside of the guard that the walk runs in: a processor fault skips
/// the walk's own destructors, and all is released here.
class DirectoryWalk {
public:
    DirectoryWalk() = default;
    DirectoryWalk(const DirectoryWalk&) = delete;
    DirectoryWalk& operator=(const DirectoryWalk&) = delete;
    ~DirectoryWalk();

private:
    friend class Walker;

    void freeList();

    PresetOwners m_presetOwners{nullptr};
    SidList* m_list =
        nullptr; // null while the store has it in hand: after a fault there it is not to be trusted
    ComPtr<IADsContainer> m_container;
    OwnedVariant m_filter;
    Owned<IEnumVARIANT*, ADsFreeEnumerator> m_enumerator;
    OwnedVariants<100> m_batch;
    ComPtr<IADs> m_object;
    OwnedBstr m_name;
    OwnedBstr m_className;
    OwnedBstr m_sidAttribute;
    OwnedVariant m_sidValue;
    SafeArrayAccess m_sidBytes;
    std::vector<unsigned char> m_sidBuffer;
};

/// Lists the users or groups, or both, of a container and inserts a row for each.
/// @param path     path of the container, with its provider.
/// @param context  what to fill; null inserts no rows.
/// @param walk     a new one, standing outside of any guard around this call.
/// @return a list of the SIDs found, for the caller; null on failure.
SidList* DoList(const wchar_t* path, DirectoryKind kind, FillContext* context, DirectoryWalk& walk);
