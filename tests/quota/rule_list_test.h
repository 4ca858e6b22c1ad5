// A list of rules on a recording store, and what a host has done with it.
#pragma once

#include "tests/quota/quota_settings.h"
#include "tests/support/list_host.h"
#include "tests/support/paths.h"

#include <gtest/gtest.h>

#include <vector>

struct RuleListTest : testing::Test {
    RecordingStore store;
    ListHost host;

    /// Prepares the list, with the rules of the folders if there are any.
    void prepare() { initializeListCtrl2(host.object(), nullptr); }
    void prepare(const Paths& folders) { initializeListCtrl2(host.object(), folders); }

    void fill(const Paths& folders) { fillUpListCtrl2(folders, host.object()); }

    /// Has the store give a rule, and shows it.
    void show(const wchar_t* folder, const void* sid, int64_t hardLimit = 2048, int64_t softLimit = 1024,
              int64_t inUse = 0)
    {
        store.put(folder, sid, hardLimit, softLimit, inUse);
        fill({folder});
    }

    bool add(void* sid, const Paths& folders, DialogScript& script)
    {
        return script.run([&] { return addToListCtrl2(host.object(), sid, folders); }) != 0;
    }

    /// The same when no dialog is to come.
    bool add(void* sid, const Paths& folders)
    {
        quota_settings::Visit none;
        return add(sid, folders, none);
    }

    /// Adds and accepts the dialog of each folder as it comes.
    bool addWithOk(void* sid, const Paths& folders)
    {
        quota_settings::Visit visit;
        for (size_t i = 0; i < folders.size(); ++i) {
            visit.ok();
        }
        return add(sid, folders, visit);
    }

    /// Edits the first selected row.
    bool edit(DialogScript& script)
    {
        return script.run([this] { return editFromListCtrl2(host.object()); }) != 0;
    }

    bool edit()
    {
        quota_settings::Visit none;
        return edit(none);
    }

    /// Drops the selected rows, or these.
    bool drop() { return dropFromListCtrl2(host.object()) != 0; }
    bool drop(const std::vector<int>& rows)
    {
        host.selectOnly(rows);
        return drop();
    }

    void sort(int column) { sortListCtrl2(host.object(), column); }

    /// The rules as they are handed back.
    QuotaRule* chain() { return getDataModified2(host.object()); }
    std::vector<std::string> chained() { return chainTexts(chain()); }
};
