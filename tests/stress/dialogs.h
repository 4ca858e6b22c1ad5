// The dialogs of policies, files, processes and the product, each on what it needs to open.
#pragma once

#include "tests/accounts/chooser_fixture.h"
#include "tests/files/fake_disk.h"
#include "tests/support/import_patch.h"
#include "tests/support/policy_store.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

struct OpenedDialog {
    std::string name;
    std::function<void()> open;
    std::string load; ///< the store's call that takes the list, empty for a dialog without one
    std::string free;
};

/// A store with entries in each list, drives with files, and file dialogs of the platform that answer at once.
class DialogWorld {
public:
    explicit DialogWorld(int entries);
    ~DialogWorld();

    /// All the dialogs, in the order of the part that they belong to.
    static const std::vector<OpenedDialog>& dialogs();

    /// Whether "Browse..." opens the library's own chooser.
    static bool ownChooser;

    PolicyStore store;
    FillThreads fills; ///< of the account choosers

private:
    FakeDisk m_disk{ImportPatch::corvane()};
    std::vector<std::unique_ptr<ImportPatch>> m_patches;
};
