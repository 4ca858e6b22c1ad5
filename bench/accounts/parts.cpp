#include "parts.h"

#include "accounts/account_data.h"
#include "accounts/account_sink.h"
#include "accounts/enumeration.h"
#include "accounts/sid_ctrl.h"
#include "bench/support/list_view.h"
#include "bench/support/memory.h"
#include "list_window.h"

namespace {

class NoList : public AccountSink {
public:
    bool alive() override { return true; }
    int rowCount() override { return m_rows; }
    void insert(int, int, const wchar_t*, const wchar_t*, const wchar_t*, void* data) override
    {
        ++m_rows;
        freeAccount(data);
    }
    void removeFirstInserted() override { --m_rows; }
    void waitForTurn() override {}
    void nameServers(const wchar_t*, const wchar_t*) override {}

private:
    int m_rows = 0;
};

} // namespace

void findAccounts(Source source)
{
    NoList sink;
    FillContext context;
    context.sink = &sink;
    context.host = searchBase(source);
    fillTree(&context);
}

void printMemory(int users)
{
    serveAccounts(users, Source::kStore);
    CSidCtrl list;
    ListWindow window;
    list.attach(window.list());
    MemoryInUse memory("accounts", users);
    list.startFill(searchBase(Source::kStore));
    window.waitForFill();
    memory.print("fill from the store");
    for (int twice = 0; twice < 2; ++twice)
    { // all lists of the process share one order: it is to be as it was
        window.filters().type(0, L"b");
        list.applyFilter(0);
        memory.print("filter, one in 10 stays");
        window.filters().type(0, L"");
        list.applyFilter(0);
        memory.print("filter, the others come back");
    }
    list.onColumnClick(0);
    memory.print("sort by account");
}
