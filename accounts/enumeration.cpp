#include "accounts/enumeration.h"

#include "accounts/account_name.h"
#include "accounts/account_resolution.h"
#include "accounts/account_sink.h"
#include "accounts/directory_walk.h"
#include "accounts/fill_turn.h"
#include "accounts/null_session.h"
#include "accounts/preset_owners.h"
#include "frame/c_memory.h"
#include "frame/crash_guard.h"
#include "frame/domain_servers.h"
#include "frame/format_text.h"
#include "frame/registry.h"
#include "store/lornix.h"

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

int countOf(const SidList* list)
{
    return list != nullptr ? list->count : 0;
}

/// What the accounts of one list have in common.
struct AccountKind {
    const wchar_t* type;
    int image;
};

/// How the accounts of this machine are added on the directory's road.
struct LocalAccounts {
    SidList* (*enumerate)(const wchar_t* server, SidList* list);
    AccountKind kind;
    const char* enumerateFault;
    const char* insertFault;
    const char* freeFault;
};

/// A server of the store's road, and whether this fill has a session there.
struct Server {
    CBlock<wchar_t> name;
    bool connected = false;
};

/// One fill. It stands outside of the guards, so that what it holds is released after any fault.
///
/// A step may take as long as a network does, so the window is looked at before each of them, and for each account.
class Fill {
public:
    explicit Fill(FillContext& context)
        : m_context(context)
        , m_sink(*context.sink)
        , m_presetOwners(context.presetOwners)
    {
    }
    Fill(const Fill&) = delete;
    Fill& operator=(const Fill&) = delete;
    ~Fill();

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
    void disconnect(Server& server);
    void enumerateOn(SidList* (*enumerate)(const wchar_t*, SidList*), const char* domainFault,
                     const char* localFault);

    void insertAccounts(const SidList* list, AccountKind kind);
    void insertRow(int image, const wchar_t* account, const wchar_t* fullName, const wchar_t* type,
                   const void* sid);
    void freeTotal();

    FillContext& m_context;
    AccountSink& m_sink;
    PresetOwners m_presetOwners;
    SidList* m_total = nullptr;
    Server m_server;
    Server m_server2;
    int m_nextRow = 0;
    wchar_t m_hostBuffer[2048] = {};
};

Fill::~Fill()
{
    resetHost();
    for (Server* const server : {&m_server, &m_server2}) {
        if (server->connected) {
            guardStep("EstablishNullSession (disconnect) => sigsegv\n", [&] { disconnect(*server); });
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

/// The rows that need no store. They show before the fill waits for its turn.
void insertFirstRows(FillContext& context)
{
    AccountSink& sink = *context.sink;
    sink.insert(0, context.groupImage, L"Please wait until data fetched...", L"", L"", nullptr);
    if (sink.alive()) {
        sink.insert(1, context.groupImage, L"Anyone", L"Anyone", L"System", reinterpret_cast<void*>(1));
    }
    context.counters[0] = 0;
    context.counters[1] = 0;
}

void Fill::run()
{
    m_nextRow = 2;
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
    const SidList* const owners = m_context.presetOwners;
    if (owners == nullptr) {
        return;
    }
    for (int i = 0; i < owners->count && !abandoned(); ++i) {
        const wchar_t* domain = nullptr;
        const wchar_t* name = nullptr;
        const wchar_t* const fullName = resolveAccount(owners->sids[i], domain, name);
        if (fullName != nullptr) {
            insertRow(m_context.userImage, name, fullName, L"File owner", owners->sids[i]);
        }
    }
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
    m_server.name.reset(getDomainServer());
    formatText(m_hostBuffer, L"WinNT://%ls", m_server.name.get());
    m_context.host = m_hostBuffer;
    ODS("wcHost := %ls\n", m_context.host);
    m_server.name.reset();
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
    m_nextRow = m_sink.rowCount();
    SidList* found = nullptr;
    runStep(accounts.enumerateFault, [&] { found = accounts.enumerate(nullptr, nullptr); });
    runStep(accounts.insertFault, [&] { insertAccounts(found, accounts.kind); });
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
              [&] { insertAccounts(m_total, {L"User", m_context.userImage}); });
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
    m_server.name.reset();
    m_server2.name.reset();
    resetHost();
    ODS("Groups = %d\n", countOf(m_total));
    runStep("enumerateGroups => sigsegv at insertion in tree\n",
            [&] { insertAccounts(m_total, {L"Group", m_context.groupImage}); });
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
    m_server.name.reset(m_context.host != nullptr ? _wcsdup(m_context.host) : getDomainServer());
    if (abandoned()) {
        return false;
    }
    if (m_server.name) {
        m_server2.name.reset(getDomainServerByName(m_server.name.get()));
    }
    if (abandoned()) {
        return false;
    }
    m_sink.nameServers(m_server.name.get(), m_server2.name.get());
    wchar_t names[2][kServerNameCapacity];
    formatText(names[0], L"%ls", m_server.name ? m_server.name.get() : L"");
    formatText(names[1], L"%ls", m_server2.name ? m_server2.name.get() : L"");
    ODS("Domain server = %ls/%ls\n", names[0], names[1]);
    return true;
}

void Fill::openNullSessions()
{
    // Without a session the server may still answer, so nobody asks how these went.
    for (Server* const server : {&m_server, &m_server2}) {
        if (server->name && !abandoned()) {
            server->connected = EstablishNullSession(server->name.get(), 1) != 0;
        }
    }
}

/// Closes them whether they could be opened or not, as it always was.
void Fill::closeNullSessions()
{
    m_server2.connected = false; // a fault at the first passes the second over
    for (Server* const server : {&m_server, &m_server2}) {
        if (server->name) {
            disconnect(*server);
        }
    }
}

void Fill::disconnect(Server& server)
{
    server.connected = false;
    EstablishNullSession(server.name.get(), 0);
}

/// Grows the total by the accounts of the servers and of this machine. A call that gives null replaces it, too.
void Fill::enumerateOn(SidList* (*enumerate)(const wchar_t*, SidList*), const char* domainFault,
                       const char* localFault)
{
    guardStep(domainFault, [&] {
        for (const Server* const server : {&m_server, &m_server2}) {
            if (server->name && !abandoned()) {
                m_total = enumerate(server->name.get(), m_total);
            }
        }
    });
    runStep(localFault, [&] { m_total = enumerate(nullptr, m_total); });
}

void Fill::insertAccounts(const SidList* list, AccountKind kind)
{
    for (int i = 0; i < countOf(list); ++i) {
        void* const sid = list->sids[i];
        if (m_presetOwners.excludes(sid)) {
            continue;
        }
        if (abandoned()) {
            return;
        }
        const wchar_t* domain = nullptr;
        const wchar_t* name = nullptr;
        const wchar_t* const fullName = resolveAccount(sid, domain, name);
        if (fullName != nullptr) {
            insertRow(kind.image, name, fullName, kind.type, sid);
        }
    }
}

/// Inserts a row behind those that were inserted before, unless the window is gone.
void Fill::insertRow(int image, const wchar_t* account, const wchar_t* fullName, const wchar_t* type,
                     const void* sid)
{
    if (!abandoned()) {
        m_sink.insert(m_nextRow, image, account, fullName, type, sidDup(sid));
        ++m_nextRow;
    }
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
            insertFirstRows(*context);
            if (turn.take(*context->sink)) {
                fill.run();
            }
        }))
    {
        // A fault would skip the releasing; this does not.
        throw std::runtime_error("account enumeration");
    }
}
