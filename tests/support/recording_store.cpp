#include "tests/support/recording_store.h"

#include "tests/support/describe.h"
#include "tests/support/rule_memory.h"
#include "tests/support/stack_overflow.h"
#include "tests/support/store_table.h"
#include "tests/support/text.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <sddl.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <set>
#include <stdexcept>

struct RecordingStore::State {
    struct Account {
        std::string name;
        std::vector<unsigned char> sid;
    };
    struct Rule {
        std::wstring path;
        const void* sid;
        int64_t hardLimit, softLimit, inUse;
    };
    struct Plan {
        std::string function;
        Fault fault;
        int left;
    };

    // The worker thread that fills account lists calls the store as well.
    mutable std::mutex mutex;
    std::vector<std::string> calls;
    std::vector<Plan> plans;
    std::vector<std::unique_ptr<Account>> accounts;
    std::vector<Rule> rules;
    std::set<const void*> sidLists;
    std::set<const void*> pathLists;
};

namespace {

RecordingStore* current = nullptr;
RecordingStore::State* currentState = nullptr;

constexpr const char* kFunctionNames[] = {
#define STORE_NAME(result, name, parameters, arguments) #name,
    STORE_FUNCTIONS(STORE_NAME)
#undef STORE_NAME
        "ODS",
};

/// Writes a call down.
/// @return what it is to raise.
Fault note(const char* function, std::string line)
{
    const std::lock_guard lock(currentState->mutex);
    currentState->calls.push_back(std::move(line));
    Fault fault = Fault::None;
    for (auto& plan : currentState->plans) {
        if (plan.function == function && plan.left > 0 && --plan.left == 0) {
            fault = plan.fault;
        }
    }
    if (fault == Fault::None && current->faultFor) {
        fault = current->faultFor(function);
    }
    return fault;
}

int* volatile nowhere = nullptr;
volatile int many = 7;
volatile int zero = 0;
volatile int sink = 0;

constexpr DWORD kForeignCode = 0xE0000001; // of no language runtime at all
constexpr DWORD kOtherCppCode = 0xE06D7363;
constexpr DWORD kManagedCode = 0xE0434352;
constexpr DWORD kHeapCorruptionCode = 0xC0000374;

/// Like a thrown object of the runtime that comes with the system's own compiler: the object, and where in its
/// module its type is described. It has no type that anybody could catch.
void raiseOtherCppException()
{
    static const int object = 0;
    static const int types = 0;
    static int description[4] = {};
    const auto module = reinterpret_cast<ULONG_PTR>(GetModuleHandleW(nullptr));
    description[3] = static_cast<int>(reinterpret_cast<ULONG_PTR>(&types) - module);
    constexpr ULONG_PTR kVersion = 0x19930520;
    const ULONG_PTR parameters[] = {kVersion, reinterpret_cast<ULONG_PTR>(&object),
                                    reinterpret_cast<ULONG_PTR>(description), module};
    RaiseException(kOtherCppCode, EXCEPTION_NONCONTINUABLE, 4, parameters);
}

void raiseManagedException()
{
    constexpr ULONG_PTR kFailure = 0x80131500;
    const ULONG_PTR parameters[] = {kFailure, 0, 0, 0, 0};
    RaiseException(kManagedCode, EXCEPTION_NONCONTINUABLE, 5, parameters);
}

// Holds nothing, since processor faults run no destructors.
void raiseNow(Fault fault)
{
    switch (fault) {
    case Fault::None:
        break;
    case Fault::AccessViolation:
        *nowhere = 1;
        break;
    case Fault::DivideByZero:
        sink = many / zero;
        break;
    case Fault::CppException:
        throw std::runtime_error("raised by the recording store");
    case Fault::ForeignException:
        RaiseException(kForeignCode, 0, 0, nullptr);
        break;
    case Fault::OtherCppException:
        raiseOtherCppException();
        break;
    case Fault::ManagedException:
        raiseManagedException();
        break;
    case Fault::Breakpoint:
        __debugbreak();
        break;
    case Fault::HeapCorruption:
        RaiseException(kHeapCorruptionCode, EXCEPTION_NONCONTINUABLE, 0, nullptr);
        break;
    case Fault::StackOverflow:
        overflowStack();
        break;
    }
}

#define STORE_RECORD(result, name, parameters, arguments)                                                    \
    template <class... Arguments>                                                                            \
    Fault m_note##name(const Arguments&... given)                                                            \
    {                                                                                                        \
        return note(#name, describeCall(#name, given...));                                                   \
    }                                                                                                        \
    result m_record##name parameters                                                                         \
    {                                                                                                        \
        raiseNow(m_note##name arguments);                                                                    \
        return current->answer.name ? current->answer.name arguments : noAnswer<result>();                   \
    }
STORE_FUNCTIONS(STORE_RECORD)
#undef STORE_RECORD

void recordLine(const char* line)
{
    raiseNow(note("ODS", std::string("ODS ") + line));
}

constexpr StoreTable kTable = {
#define STORE_ENTRY(result, name, parameters, arguments) m_record##name,
    STORE_FUNCTIONS(STORE_ENTRY)
#undef STORE_ENTRY
        recordLine,
};

void* copySid(const void* sid)
{
    if (sid == nullptr || !IsValidSid(const_cast<void*>(sid))) {
        return nullptr;
    }
    const DWORD size = GetLengthSid(const_cast<void*>(sid));
    void* const copy = std::malloc(size);
    std::memcpy(copy, sid, size);
    return copy;
}

SidList* growSidList(SidList* list)
{
    const auto count = list == nullptr ? 0 : static_cast<size_t>(list->count);
    // Moved each time, so that a pointer used after a call that grows the list does not go unnoticed.
    auto* const grown = static_cast<SidList*>(std::malloc(sizeof(SidList) + count * sizeof(void*)));
    grown->count = static_cast<int32_t>(count) + 1;
    if (list != nullptr) {
        std::memcpy(grown->sids, list->sids, count * sizeof(void*));
        std::memset(list->sids, 0xDD, count * sizeof(void*));
        std::free(list);
        currentState->sidLists.erase(list);
    }
    currentState->sidLists.insert(grown);
    return grown;
}

SidList* appendSid(SidList* list, void* sid)
{
    SidList* const grown = growSidList(list);
    grown->sids[grown->count - 1] = sid;
    return grown;
}

SidList* emptySidList()
{
    auto* const list = static_cast<SidList*>(std::malloc(sizeof(SidList)));
    list->count = 0;
    list->sids[0] = nullptr;
    currentState->sidLists.insert(list);
    return list;
}

void releaseSidList(SidList* list)
{
    if (list == nullptr) {
        return;
    }
    if (currentState->sidLists.erase(list) == 0) {
        ADD_FAILURE() << "freeSidList with a list that is not the store's, or no longer";
        return;
    }
    for (int i = 0; i < list->count; ++i) {
        std::free(list->sids[i]);
    }
    std::free(list);
}

PathList* appendPath(PathList* list, const wchar_t* folder)
{
    const auto count = list == nullptr ? 0 : static_cast<size_t>(list->count);
    auto* const grown = static_cast<PathList*>(std::malloc(sizeof(PathList) + count * sizeof(wchar_t*)));
    grown->count = static_cast<int32_t>(count) + 1;
    if (list != nullptr) {
        std::memcpy(grown->paths, list->paths, count * sizeof(wchar_t*));
        std::free(list);
        currentState->pathLists.erase(list);
    }
    grown->paths[count] = _wcsdup(folder);
    currentState->pathLists.insert(grown);
    return grown;
}

void releasePathList(PathList* list)
{
    if (list == nullptr) {
        return;
    }
    if (currentState->pathLists.erase(list) == 0) {
        ADD_FAILURE() << "freePathList with a list that is not the store's, or no longer";
        return;
    }
    for (int i = 0; i < list->count; ++i) {
        std::free(list->paths[i]);
    }
    std::free(list);
}

wchar_t* put(const std::wstring& text, wchar_t* buffer, int capacity)
{
    if (static_cast<int>(text.size()) >= capacity) {
        ADD_FAILURE() << "\"" << utf8(text) << "\" does not fit into " << capacity << " characters";
        return nullptr;
    }
    return std::wcscpy(buffer, text.c_str());
}

wchar_t* accountName(const void* sid, wchar_t* buffer, int capacity)
{
    const std::string name = sid == nullptr ? std::string() : RecordingStore::nameOf(sid);
    return name.empty() ? nullptr : put(wide(name), buffer, capacity);
}

void textualSid(const void* sid, wchar_t* buffer, int capacity)
{
    LPWSTR text = nullptr;
    if (sid != nullptr && ConvertSidToStringSidW(const_cast<void*>(sid), &text)) {
        put(text, buffer, capacity);
        LocalFree(text);
    } else {
        buffer[0] = L'\0';
    }
}

int compareSids(const void* a, const void* b)
{
    EXPECT_NE(a, b) << "sidcmp is not for equal pointers";
    if (a == nullptr || b == nullptr) {
        return 1;
    }
    return EqualSid(const_cast<void*>(a), const_cast<void*>(b)) ? 0 : 1;
}

} // namespace

const char* faultName(Fault fault)
{
    switch (fault) {
    case Fault::AccessViolation:
        return "AccessViolation";
    case Fault::DivideByZero:
        return "DivideByZero";
    case Fault::CppException:
        return "CppException";
    case Fault::ForeignException:
        return "ForeignException";
    case Fault::OtherCppException:
        return "OtherCppException";
    case Fault::ManagedException:
        return "ManagedException";
    case Fault::Breakpoint:
        return "Breakpoint";
    case Fault::HeapCorruption:
        return "HeapCorruption";
    case Fault::StackOverflow:
        return "StackOverflow";
    case Fault::None:
        break;
    }
    return "None";
}

RecordingStore::RecordingStore()
    : m_state(std::make_unique<State>())
{
    if (current != nullptr) {
        throw std::logic_error("there is a recording store already");
    }
    current = this;
    currentState = m_state.get();
    answerAsUsual();
    installStore(&kTable);
}

RecordingStore::~RecordingStore()
{
    installStore(nullptr);
    for (const auto& plan : m_state->plans) {
        EXPECT_LE(plan.left, 0) << "the fault planned for " << plan.function << " was never raised";
    }
    current = nullptr;
    currentState = nullptr;
}

void RecordingStore::answerAsUsual()
{
    answer.getQuotaList = [this](const wchar_t* folder) {
        QuotaRule* first = nullptr;
        QuotaRule* last = nullptr;
        for (const auto& rule : m_state->rules) {
            if (rule.path != folder) {
                continue;
            }
            QuotaRule* const made =
                makeRule(rule.path.c_str(), rule.sid, rule.hardLimit, rule.softLimit, rule.inUse);
            made->prev = last;
            (last == nullptr ? first : last->next) = made;
            last = made;
        }
        return first;
    };
    answer.appendToPaths = appendPath;
    answer.freePathList = releasePathList;
    answer.enumerateGroupUsers = [](const wchar_t*, const wchar_t*, SidList* list) {
        return list;
    };
    answer.enumerateUsers = [](const wchar_t*, SidList* list) {
        return list;
    };
    answer.enumerateGroups = answer.enumerateUsers;
    answer.createEmptySidList = emptySidList;
    answer.appendToSidList = appendSid;
    answer.appendToSidList2 = [](SidList* destination, SidList* source) {
        for (int i = 0; source != nullptr && i < source->count; ++i) {
            destination = appendSid(destination, copySid(source->sids[i]));
        }
        return destination;
    };
    answer.freeSidList = releaseSidList;
    answer.sidDup = copySid;
    answer.sidcmp = compareSids;
    answer.getAccountBySidW = accountName;
    answer.getTextualSidW = textualSid;
}

void* RecordingStore::account(std::string_view name)
{
    SID_IDENTIFIER_AUTHORITY authority = SECURITY_NT_AUTHORITY;
    PSID sid = nullptr;
    constexpr DWORD kFirstRid = 1001;
    if (!AllocateAndInitializeSid(&authority, 5, SECURITY_NT_NON_UNIQUE, 1, 2, 3,
                                  kFirstRid + static_cast<DWORD>(m_state->accounts.size()), 0, 0, 0, &sid))
    {
        throw std::runtime_error("no SID");
    }
    const auto* const bytes = static_cast<const unsigned char*>(sid);
    auto made = std::make_unique<State::Account>();
    made->name = name;
    made->sid.assign(bytes, bytes + GetLengthSid(sid));
    FreeSid(sid);
    void* const address = made->sid.data();
    m_state->accounts.push_back(std::move(made));
    return address;
}

void* RecordingStore::unknownAccount()
{
    return account({});
}

QuotaRule* RecordingStore::makeRule(const wchar_t* path, const void* sid, int64_t hardLimit,
                                    int64_t softLimit, int64_t inUse)
{
    QuotaRule* const rule = rule_memory::below4GiB();
    rule->type = sid == nullptr ? QUOTA_RULE_FOR_ANYONE : QUOTA_RULE_FOR_ACCOUNT;
    rule->inUse = inUse;
    rule->hardLimit = hardLimit;
    rule->softLimit = softLimit;
    rule->sid = copySid(sid);
    rule->path = _wcsdup(path);
    return rule;
}

void RecordingStore::put(const wchar_t* path, const void* sid, int64_t hardLimit, int64_t softLimit,
                         int64_t inUse)
{
    m_state->rules.push_back({path, sid, hardLimit, softLimit, inUse});
}

SidList* RecordingStore::makeSidList(const std::vector<const void*>& sids)
{
    SidList* list = emptySidList();
    for (const void* const sid : sids) {
        list = appendSid(list, copySid(sid));
    }
    return list;
}

void RecordingStore::raise(std::string_view function, Fault fault, int nth)
{
    if (std::find(std::begin(kFunctionNames), std::end(kFunctionNames), function) == std::end(kFunctionNames))
    {
        throw std::invalid_argument("the store has no function " + std::string(function));
    }
    const std::lock_guard lock(m_state->mutex);
    m_state->plans.push_back({std::string(function), fault, nth});
}

std::vector<std::string> RecordingStore::calls() const
{
    const std::lock_guard lock(m_state->mutex);
    return m_state->calls;
}

std::vector<std::string> RecordingStore::takeCalls()
{
    const std::lock_guard lock(m_state->mutex);
    return std::exchange(m_state->calls, {});
}

std::vector<std::string> RecordingStore::lines() const
{
    constexpr std::string_view kMark = "ODS ";
    std::vector<std::string> lines;
    for (const std::string& call : calls()) {
        if (call.starts_with(kMark)) {
            lines.push_back(call.substr(kMark.size()));
        }
    }
    return lines;
}

int RecordingStore::openSidLists() const
{
    return static_cast<int>(m_state->sidLists.size());
}

int RecordingStore::openPathLists() const
{
    return static_cast<int>(m_state->pathLists.size());
}

std::string RecordingStore::nameOf(const void* sid)
{
    if (currentState == nullptr || !IsValidSid(const_cast<void*>(sid))) {
        return {};
    }
    for (const auto& account : currentState->accounts) {
        if (EqualSid(const_cast<void*>(sid), account->sid.data())) {
            return account->name;
        }
    }
    return {};
}
