// All dialogs of the library, each on what it needs to open.
#pragma once

#include "tests/accounts/chooser_fixture.h"
#include "tests/files/fake_disk.h"
#include "tests/support/import_patch.h"
#include "tests/support/policy_store.h"

#include <array>
#include <functional>
#include <memory>
#include <string>
#include <vector>

struct OpenedDialog {
    std::string name;
    std::function<void()> open;
    std::string load{}; ///< the store's call that takes the list, empty for a dialog without one
    std::string free{};
    bool leavesRecords = false; ///< of rules that were cancelled, which nobody releases
};

/// A store with entries in each list, drives with files, and file dialogs of the platform that answer at once.
class DialogWorld {
public:
    /// @param below   gives a random number below a bound.
    /// @param raised  how many faults the store has raised.
    DialogWorld(int entries, std::function<int(int)> below, std::function<int()> raised);
    ~DialogWorld();

    /// All the dialogs. The entry dialogs, and what is chosen for them, open from these.
    const std::vector<OpenedDialog>& dialogs() const { return m_dialogs; }

    /// Whether "Browse..." opens the library's own chooser.
    static bool ownChooser;

    PolicyStore store;
    FillThreads fills; ///< of the account choosers

private:
    void fillStore(int entries);
    void listDialogs();
    void openPanel(bool timer);
    void openSettings(int mode, bool forAccount);
    void openChooser(bool withOwners);

    std::function<int(int)> m_below;
    std::function<int()> m_raised;
    std::vector<const void*> m_users;
    std::array<const void*, 2> m_ruled{}; ///< a group and its member
    std::vector<OpenedDialog> m_dialogs;
    FakeDisk m_disk{ImportPatch::corvane()};
    std::vector<std::unique_ptr<ImportPatch>> m_patches;
};
