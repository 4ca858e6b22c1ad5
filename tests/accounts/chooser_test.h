// The chooser in both of its modes: what the tests of it have in common.
#pragma once

#include "store/lornix.h"
#include "tests/accounts/chooser_fixture.h"
#include "tests/support/text.h"

#include <functional>

class ChooserTest : public ChooserFixture {
protected:
    ChooserTest()
    {
        store.answer.getSidByNameW = [this](const wchar_t* name) -> void* {
            return utf8(name) == "alice" ? sidDup(m_alice) : nullptr;
        };
    }

    void typeName(const wchar_t* name)
    {
        then("type a name", [name](HWND dialog) {
            click(dialog, IDC_CHOOSER_TYPE);
            type(dialog, IDC_CHOOSER_NAME, name);
            clickLater(dialog, IDOK);
        });
    }
    void pick(const char* account)
    {
        then("pick", [account](HWND dialog) {
            select(dialog, list(dialog).rowOf(account));
            EXPECT_TRUE(isEnabled(dialog, IDOK));
            click(dialog, IDOK);
        });
    }

    void* const m_alice = store.account("DOM\\alice");
};
