// A fill over the small world of the tests: two domain servers, this machine, a directory.
#pragma once

#include "account_store.h"
#include "accounts/account_sink.h"
#include "directory.h"
#include "imports.h"
#include "list_sink.h"

#include <gtest/gtest.h>

#include <lmcons.h>

#include <memory>
#include <optional>

/// What opening a session with a server gives.
extern NET_API_STATUS networkStatus;

/// Settings of the registry that only this process sees.
class OwnRegistry {
public:
    OwnRegistry();
    ~OwnRegistry();
    OwnRegistry(const OwnRegistry&) = delete;
    OwnRegistry& operator=(const OwnRegistry&) = delete;

    /// Sets the value "NoLDAP".
    void set(const std::wstring& value);

private:
    std::wstring m_path;
    HKEY m_root = nullptr;
};

/// The rows that come first.
inline constexpr char kWait[] = "Please wait until data fetched...|||null";
inline constexpr char kAnyone[] = "Anyone|Anyone|System|ONE";

struct FillTest : testing::Test {
    static constexpr int kUser = 7;
    static constexpr int kGroup = 5;

    FillTest();
    ~FillTest() override;

    /// Runs fillTree with a new list, and forgets the calls before.
    /// @return false when it threw.
    bool fill();

    /// Runs it on a new list whose window is gone when so many rows have been inserted, and forgets the calls before.
    void fillUntilRows(int rows);

    /// What it did, but for its looks at the window.
    std::vector<std::string> steps() const;

    /// Everything handed out has come back, but for the SIDs in the rows.
    void expectNothingHeld() const;

    /// Rows as "account|full name|type|number of the SID".
    std::vector<std::string> rows() const;

    AccountStore store;
    std::unique_ptr<ListSink> sink;
    FillContext context;
    std::optional<DirectoryPatch> directoryPatch{std::in_place};
    OwnRegistry registry;

private:
    Imports m_network;
};
