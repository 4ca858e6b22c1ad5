// What the settings dialog asks the servers about the members of a group.
#pragma once

#include "tests/quota/quota_settings.h"

/// Opens the settings of a new rule for a group. @return what the store was asked about its members.
inline std::vector<std::string> membersAsked(RecordingStore& store)
{
    store.takeCalls();
    quota_settings::whileOpen(quota_settings::newRule(store.account("DOM\\staff")), quota_settings::kAdd,
                              [](HWND) {});
    std::vector<std::string> asked = store.calls();
    std::erase_if(asked, [](const std::string& call) { return !call.starts_with("enumerateGroupUsers"); });
    return asked;
}
