#include "accounts/enumeration.h"

#include "accounts/account_name.h"
#include "accounts/account_resolution.h"
#include "accounts/account_sink.h"
#include "accounts/directory_walk.h"
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

void keepServerName(wchar_t (&buffer)[kServerNameCapacity], const wchar_t* server)
{
    formatText(buffer, L"%ls", server != nullptr ? server : L"");
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

/// One fill. It stands outside of the guards, so that what it holds is released after any fault.
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
    bool addPresetOwners();
    void mergePresetOwners();
    void chooseHost();
    void resetHost();

    void fillFromDirectory();
    void addFromDirectory(DirectoryKind kind, const char* walkFault, const char* freeFault);
    void addLocalAccounts(const LocalAccounts& accounts);
    void merge(SidList* part, const char* freeFault);

    void fillFromStore();
    void nameServers();
    void openNullSessions();
    void closeNullSessions();
    void enumerateOn(SidList* (*enumerate)(const wchar_t*, SidList*), const char* domainFault,
                     const char* localFault);

    bool insertAccounts(const SidList* list, AccountKind kind);
    bool insertRow(int index, int image, const wchar_t* account, const wchar_t* fullName, const wchar_t* type,
                   const void* sid);
    void freeTotal();

    FillContext& m_context;
    AccountSink& m_sink;
    PresetOwners m_presetOwners;
    SidList* m_total = nullptr;
    CBlock<wchar_t> m_server;
    CBlock<wchar_t> m_server2;
    int m_nextRow = 0;
    wchar_t m_hostBuffer[2048] = {};
};

Fill::~Fill()
{
    resetHost();
    if (m_total != nullptr) {
        runGuarded([&] { freeTotal(); });
    }
}

void Fill::run()
{
    m_sink.insert(0, m_context.groupImage, L"Please wait until data fetched...", L"", L"", nullptr);
    if (m_sink.alive()) {
        m_sink.insert(1, m_context.groupImage, L"Anyone", L"Anyone", L"System", reinterpret_cast<void*>(1));
    }
    m_nextRow = 2;
    m_context.counters[0] = 0;
    m_context.counters[1] = 0;
    m_total = createEmptySidList();
    if (!addPresetOwners()) {
        return;
    }
    chooseHost();
    if (m_context.host != nullptr && isDirectoryPath(m_context.host)) {
        fillFromDirectory();
    } else {
        fillFromStore();
    }
}

/// @return false when the window is gone.
bool Fill::addPresetOwners()
{
    const SidList* const owners = m_context.presetOwners;
    if (owners == nullptr) {
        return true;
    }
    for (int i = 0; i < owners->count; ++i) {
        const wchar_t* domain = nullptr;
        const wchar_t* name = nullptr;
        const wchar_t* const fullName = resolveAccount(owners->sids[i], domain, name);
        if (fullName == nullptr) {
            continue;
        }
        if (!insertRow(m_nextRow, m_context.userImage, name, fullName, L"File owner", owners->sids[i])) {
            return false;
        }
        ++m_nextRow;
    }
    mergePresetOwners();
    return true;
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
    const wchar_t* const noDirectory = readRegistryString(HKEY_LOCAL_MACHINE, kSettingsKey, L"NoLDAP");
    if (m_context.host != nullptr || (noDirectory != nullptr ? noDirectory : L"N")[0] == L'Y') {
        return;
    }
    m_server.reset(getDomainServer());
    formatText(m_hostBuffer, L"WinNT://%ls", m_server.get());
    m_context.host = m_hostBuffer;
    ODS("wcHost := %ls\n", m_context.host);
    m_server.reset();
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
    m_sink.removeFirstInserted();
    resetHost();
    ODS("Total items = %d\n", countOf(m_total));
    guardStep("Total list => sigsegv at freeSidList\n", [&] { freeTotal(); });
}

void Fill::addFromDirectory(DirectoryKind kind, const char* walkFault, const char* freeFault)
{
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
    guardStep(accounts.enumerateFault, [&] { found = accounts.enumerate(nullptr, nullptr); });
    guardStep(accounts.insertFault, [&] { insertAccounts(found, accounts.kind); });
    merge(found, accounts.freeFault);
}

void Fill::merge(SidList* part, const char* freeFault)
{
    if (part == nullptr) {
        return;
    }
    guardStep(freeFault, [&] {
        m_total = appendToSidList2(m_total, part);
        if (m_total != part) {
            freeSidList(part);
        }
    });
}

void Fill::fillFromStore()
{
    nameServers();
    guardStep("EstablishNullSession => sigsegv\n", [&] { openNullSessions(); });
    enumerateOn(enumerateUsers, "enumerateUsers(domain) => sigsegv\n", "enumerateUsers(local) => sigsegv\n");
    ODS("Users = %d\n", countOf(m_total));
    bool windowThere = true;
    guardStep("Adding users => sigsegv in tree insertion\n",
              [&] { windowThere = insertAccounts(m_total, {L"User", m_context.userImage}); });
    if (!windowThere) {
        freeTotal();
        return;
    }
    guardStep("enumerateUsers => sigsegv at freeSidList\n", [&] { freeTotal(); });
    enumerateOn(enumerateGroups, "enumerateGroups(domain) => sigsegv\n",
                "enumerateGroups(local) => sigsegv\n");
    guardStep("EstablishNullSession (disconnect) => sigsegv\n", [&] { closeNullSessions(); });
    m_server.reset();
    m_server2.reset();
    resetHost();
    ODS("Groups = %d\n", countOf(m_total));
    guardStep("enumerateGroups => sigsegv at insertion in tree\n",
              [&] { insertAccounts(m_total, {L"Group", m_context.groupImage}); });
    m_context.host = nullptr;
    m_sink.removeFirstInserted();
    guardStep("enumerateGroups => sigsegv at freeSidList\n", [&] { freeTotal(); });
}

void Fill::nameServers()
{
    m_server.reset(m_context.host != nullptr ? _wcsdup(m_context.host) : getDomainServer());
    if (m_server) {
        m_server2.reset(getDomainServerByName(m_server.get()));
    }
    keepServerName(lastDomainServer, m_server.get());
    keepServerName(lastDomainServer2, m_server2.get());
    ODS("Domain server = %ls/%ls\n", lastDomainServer, lastDomainServer2);
}

void Fill::openNullSessions()
{
    // Without a session the server may still answer, so nobody asks how these went.
    if (m_server) {
        EstablishNullSession(m_server.get(), 1);
    }
    if (m_server2) {
        EstablishNullSession(m_server2.get(), 1);
    }
}

void Fill::closeNullSessions()
{
    if (m_server) {
        EstablishNullSession(m_server.get(), 0);
    }
    if (m_server2) {
        EstablishNullSession(m_server2.get(), 0);
    }
}

/// Grows the total by the accounts of the servers and of this machine. A call that gives null replaces it, too.
void Fill::enumerateOn(SidList* (*enumerate)(const wchar_t*, SidList*), const char* domainFault,
                       const char* localFault)
{
    guardStep(domainFault, [&] {
        if (m_server) {
            m_total = enumerate(m_server.get(), m_total);
        }
        if (m_server2) {
            m_total = enumerate(m_server2.get(), m_total);
        }
    });
    guardStep(localFault, [&] { m_total = enumerate(nullptr, m_total); });
}

/// @return false when the window is gone.
bool Fill::insertAccounts(const SidList* list, AccountKind kind)
{
    for (int i = 0; i < countOf(list); ++i) {
        void* const sid = list->sids[i];
        if (m_presetOwners.excludes(sid)) {
            continue;
        }
        const wchar_t* domain = nullptr;
        const wchar_t* name = nullptr;
        const wchar_t* const fullName = resolveAccount(sid, domain, name);
        if (fullName == nullptr) {
            continue;
        }
        if (!insertRow(m_nextRow, kind.image, name, fullName, kind.type, sid)) {
            return false;
        }
        ++m_nextRow;
    }
    return true;
}

/// @return false when the window is gone: nothing is inserted then.
bool Fill::insertRow(int index, int image, const wchar_t* account, const wchar_t* fullName,
                     const wchar_t* type, const void* sid)
{
    if (!m_sink.alive()) {
        return false;
    }
    m_sink.insert(index, image, account, fullName, type, sidDup(sid));
    return true;
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
    Fill fill(*context);
    if (!runGuarded([&] { fill.run(); })) {
        // A fault would skip the releasing; this does not.
        throw std::runtime_error("account enumeration");
    }
}
