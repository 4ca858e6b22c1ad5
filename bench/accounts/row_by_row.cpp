#include "row_by_row.h"

#include "accounts/enumeration.h"
#include "accounts/sid_ctrl.h"

#include <process.h>

namespace {

class SendingSink : public AccountSink {
public:
    explicit SendingSink(HWND list) { m_list.attach(list); }
    ~SendingSink() override { m_list.detach(); }
    bool alive() override { return IsWindow(m_list.handle()) != FALSE; }
    int rowCount() override { return m_list.rowCount(); }
    void insert(int index, int image, const wchar_t* account, const wchar_t* fullName, const wchar_t* type,
                void* data) override
    {
        m_list.insertAccountRow(index, image, account, fullName, type, data);
    }
    void removeFirstInserted() override { m_list.deleteRow(0); }
    void waitForTurn() override {} // it comes
    void nameServers(const wchar_t*, const wchar_t*) override {}

private:
    CSidCtrl m_list;
};

struct Fill {
    HWND list;
    Source source;
};

unsigned __stdcall run(void* argument)
{
    const Fill& fill = *static_cast<const Fill*>(argument);
    SendingSink sink(fill.list);
    FillContext context;
    context.sink = &sink;
    context.host = searchBase(fill.source);
    fillTree(&context);
    return 0;
}

} // namespace

void fillRowByRow(const ListWindow& window, Source source)
{
    Fill fill{window.list(), source};
    auto* const thread = reinterpret_cast<HANDLE>(_beginthreadex(nullptr, 0, run, &fill, 0, nullptr));
    window.waitFor(thread);
    CloseHandle(thread);
}
