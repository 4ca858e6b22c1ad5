#include "accounts/enumeration.h"

#include "accounts/account_name.h"
#include "accounts/account_rows.h"
#include "accounts/account_sink.h"
#include "accounts/directory_walk.h"
#include "accounts/fill_turn.h"
#include "accounts/null_session.h"
#include "frame/crash_guard.h"
#include "frame/domain_servers.h"
#include "frame/format_text.h"
#include "frame/registry.h"
#include "store/lornix.h"
#include "store/owned.h"

#include <objbase.h>

#include <stdexcept>

namespace {

/// Runs a step of the fill, which goes on after a fault with what it has.
/// @param line  for the debug channel after a fault.
/// @return whether the step came to its end.
template <class Step>
bool guardStep(const char* line, Step&& step)
{
    if (runGuarded(step)) {
        return true;
    }
    runGuarded([&] { ODS(line); });
    return false;
}

const wchar_t* orEmpty(const wchar_t* text)
{
    return text != nullptr ? text : L"";
}

int countOf(const SidList* list)
{
    return list != nullptr ? list->count : 0;
}

/// How the accounts of this machine are added beside those of a directory.
struct LocalAccounts {
    SidList* (*enumerate)(const wchar_t* server, SidList* list);
    AccountKind kind;
    const char* enumerateFault;
    const char* insertFault;
    const char* freeFault;
};

/// One fill. It stands outside of the guards, so that what it holds is released after any fault.
///
/// A step may take as long as a network does, so the window is looked at before each of them, and for each account.
class Fill {
public:
    explicit Fill(FillContext& context)
        : m_context(context)
        , m_sink(*context.sink)
        , m_rows(context)
    {
    }
    Fill(const Fill&) = delete;
    Fill& operator=(const Fill&) = delete;
    ~Fill();

    void begin();
    void run();

private:
    bool abandoned() { return !m_sink.alive(); }
    template <class Step>
    void runStep(const char* line, Step&& step);

    void addPresetOwners();
    void mergePresetOwners();
    void chooseHost();
    void resetHost();

    void fillFromDirectory();
    void addFromDirectory(DirectoryKind kind, const char* walkFault, const char* freeFault);
    void addLocalAccounts(const LocalAccounts& accounts);
    void merge(SidList* part, const char* freeFault);

    void fillFromStore();
    bool findServers();
    void openNullSessions();
    void closeNullSessions();
    void enumerateOn(SidList* (*enumerate)(const wchar_t*, SidList*), const char* domainFault,
                     const char* localFault);

    void freeTotal();

    FillContext& m_context;
    AccountSink& m_sink;
    AccountRows m_rows;
    SidList* m_total = nullptr;
    ServerSession m_server;
    ServerSession m_server2;
    wchar_t m_hostBuffer[2048] = {};
};

Fill::~Fill()
{
    resetHost();
    for (ServerSession* const server : {&m_server, &m_server2}) {
        if (server->isOpen()) {
            guardStep("EstablishNullSession (disconnect) => sigsegv\n", [&] { server->close(); });
        }
    }
    if (m_total != nullptr) {
        runGuarded([&] { freeTotal(); });
    }
}

template <class Step>
void Fill::runStep(const char* line, Step&& step)
{
    if (!abandoned()) {
        guardStep(line, step);
    }
}

/// What needs no store: it shows before the fill waits for its turn.
void Fill::begin()
{
    m_rows.insertFirst();
    m_context.counters[0] = 0;
    m_context.counters[1] = 0;
}

void Fill::run()
{
    if (abandoned()) {
        return;
    }
    m_total = createEmptySidList();
    addPresetOwners();
    if (abandoned()) {
        return;
    }
    chooseHost();
    if (abandoned()) {
        return;
    }
    if (m_context.host != nullptr && isDirectoryPath(m_context.host)) {
        fillFromDirectory();
    } else {
        fillFromStore();
    }
}

void Fill::addPresetOwners()
{
    if (m_context.presetOwners == nullptr) {
        return;
    }
    m_rows.insertPresetOwners();
    if (!abandoned()) {
        mergePresetOwners();
    }
}

void Fill::mergePresetOwners()
{
    SidList* const owners = m_context.presetOwners;
    m_total = appendToSidList2(std::exchange(m_total, nullptr), owners);
    if (m_total != owners) {
        return;
    }
    // The store gave the preset owners themselves back. They are the caller's and must neither grow nor be
    // released, so the total becomes a list of its own.
    m_total = createEmptySidList();
    for (int i = 0; i < owners->count; ++i) {
        if (void* const copy = sidDup(owners->sids[i])) {
            m_total = appendToSidList(std::exchange(m_total, nullptr), copy);
        }
    }
}

void Fill::chooseHost()
{
    RegistryText text;
    const wchar_t* const noDirectory = readRegistryString(HKEY_LOCAL_MACHINE, kSettingsKey, L"NoLDAP", text);
    if (m_context.host != nullptr || (noDirectory != nullptr ? noDirectory : L"N")[0] == L'Y') {
        return;
    }
    m_server.setName(getDomainServer());
    formatText(m_hostBuffer, L"WinNT://%ls", m_server.name());
    m_context.host = m_hostBuffer;
    ODS("wcHost := %ls\n", m_context.host);
    m_server.setName(nullptr);
}

void Fill::resetHost()
{
    if (m_context.host == m_hostBuffer) {
        m_context.host = nullptr;
    }
}

void Fill::fillFromDirectory()
{
    CoInitialize(nullptr); // never balanced: the thread ends with the fill
    addFromDirectory(DirectoryKind::kUsers, "DoList(Users) => sigsegv\n",
                     "DoList(Users) made list with => sigsegv at freeSidList\n");
    addLocalAccounts({enumerateUsers,
                      {L"User", m_context.userImage},
                      "enumerateUsers => sigsegv\n",
                      "enumerateUsers made list with => sigsegv at insertion in tree\n",
                      "enumerateUsers made list with => sigsegv at freeSidList\n"});
    addFromDirectory(DirectoryKind::kGroups, "DoList(Groups) => sigsegv\n",
                     "DoList(Groups) made list with => sigsegv at freeSidList\n");
    addLocalAccounts({enumerateGroups,
                      {L"Group", m_context.groupImage},
                      "enumerateGroups => sigsegv\n",
                      "enumerateGroups made list with => sigsegv at insertion in tree\n",
                      "enumerateGroups made list with => sigsegv at freeSidList\n"});
    if (abandoned()) {
        return;
    }
    m_sink.removeFirstInserted();
    resetHost();
    ODS("Total items = %d\n", countOf(m_total));
    guardStep("Total list => sigsegv at freeSidList\n", [&] { freeTotal(); });
}

void Fill::addFromDirectory(DirectoryKind kind, const char* walkFault, const char* freeFault)
{
    if (abandoned()) {
        return;
    }
    SidList* found = nullptr;
    {
        DirectoryWalk walk;
        if (!guardStep(walkFault, [&] { found = DoList(m_context.host, kind, &m_context, walk); })) {
            found = nullptr;
        }
    }
    merge(found, freeFault);
}

void Fill::addLocalAccounts(const LocalAccounts& accounts)
{
    m_rows.countOn();
    SidList* found = nullptr;
    runStep(accounts.enumerateFault, [&] { found = accounts.enumerate(nullptr, nullptr); });
    runStep(accounts.insertFault, [&] { m_rows.insert(found, accounts.kind); });
    merge(found, accounts.freeFault);
}

void Fill::merge(SidList* part, const char* freeFault)
{
    if (part == nullptr) {
        return;
    }
    guardStep(freeFault, [&] {
        if (!abandoned()) {
            m_total = appendToSidList2(m_total, part);
        }
        if (m_total != part) {
            freeSidList(part);
        }
    });
}

void Fill::fillFromStore()
{
    if (!findServers()) {
        return;
    }
    guardStep("EstablishNullSession => sigsegv\n", [&] { openNullSessions(); });
    enumerateOn(enumerateUsers, "enumerateUsers(domain) => sigsegv\n", "enumerateUsers(local) => sigsegv\n");
    if (abandoned()) {
        return;
    }
    ODS("Users = %d\n", countOf(m_total));
    guardStep("Adding users => sigsegv in tree insertion\n",
              [&] { m_rows.insert(m_total, {L"User", m_context.userImage}); });
    if (abandoned()) {
        return;
    }
    guardStep("enumerateUsers => sigsegv at freeSidList\n", [&] { freeTotal(); });
    enumerateOn(enumerateGroups, "enumerateGroups(domain) => sigsegv\n",
                "enumerateGroups(local) => sigsegv\n");
    if (abandoned()) {
        return;
    }
    guardStep("EstablishNullSession (disconnect) => sigsegv\n", [&] { closeNullSessions(); });
    m_server.setName(nullptr);
    m_server2.setName(nullptr);
    resetHost();
    ODS("Groups = %d\n", countOf(m_total));
    runStep("enumerateGroups => sigsegv at insertion in tree\n",
            [&] { m_rows.insert(m_total, {L"Group", m_context.groupImage}); });
    m_context.host = nullptr;
    if (abandoned()) {
        return;
    }
    m_sink.removeFirstInserted();
    guardStep("enumerateGroups => sigsegv at freeSidList\n", [&] { freeTotal(); });
}

/// @return false when the window is gone.
bool Fill::findServers()
{
    m_server.setName(m_context.host != nullptr ? _wcsdup(m_context.host) : getDomainServer());
    if (abandoned()) {
        return false;
    }
    if (m_server.name() != nullptr) {
        m_server2.setName(getDomainServerByName(m_server.name()));
    }
    if (abandoned()) {
        return false;
    }
    m_sink.nameServers(m_server.name(), m_server2.name());
    wchar_t names[2][kServerNameCapacity];
    formatText(names[0], L"%ls", orEmpty(m_server.name()));
    formatText(names[1], L"%ls", orEmpty(m_server2.name()));
    ODS("Domain server = %ls/%ls\n", names[0], names[1]);
    return true;
}

void Fill::openNullSessions()
{
    for (ServerSession* const server : {&m_server, &m_server2}) {
        if (server->name() != nullptr && !abandoned()) {
            server->open();
        }
    }
}

void Fill::closeNullSessions()
{
    m_server2.leaveOpen(); // a fault at the first passes the second over
    for (ServerSession* const server : {&m_server, &m_server2}) {
        if (server->name() != nullptr) {
            server->close();
        }
    }
}

/// Grows the total by the accounts of the servers and of this machine. A call that gives null replaces it, too.
void Fill::enumerateOn(SidList* (*enumerate)(const wchar_t*, SidList*), const char* domainFault,
                       const char* localFault)
{
    guardStep(domainFault, [&] {
        for (const ServerSession* const server : {&m_server, &m_server2}) {
            if (server->name() != nullptr && !abandoned()) {
                m_total = enumerate(server->name(), m_total);
            }
        }
    });
    runStep(localFault, [&] { m_total = enumerate(nullptr, m_total); });
}

void Fill::freeTotal()
{
    freeSidList(std::exchange(m_total, nullptr));
}

} // namespace

void fillTree(FillContext* context)
{
    if (context == nullptr || context->sink == nullptr || !context->sink->alive()) {
        return;
    }
    FillTurn turn; // before the fill, which releases what it holds by the store
    Fill fill(*context);
    if (!runGuarded([&] {
            fill.begin();
            if (turn.take(*context->sink)) {
                fill.run();
            }
        }))
    {
        // A fault would skip the releasing; this does not.
        throw std::runtime_error("account enumeration");
    }
}
