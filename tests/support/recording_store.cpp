#include "tests/support/recording_store.h"

#include "tests/support/describe.h"
#include "tests/support/rule_memory.h"
#include "tests/support/store_sids.h"
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
    std::string raised;
    std::vector<Rule> rules;
    StoreSids sids;
    std::set<const void*> pathLists;
};

namespace {

RecordingStore* current = nullptr;
RecordingStore::State* currentState = nullptr;

/// Writes a call down.
/// @return what it is to raise.
template <class Describe>
Fault noted(const char* function, const Describe& describe)
{
    std::string line = current->writing ? describe() : std::string();
    const std::lock_guard lock(currentState->mutex);
    if (current->writing) {
        currentState->calls.push_back(std::move(line));
    }
    Fault fault = Fault::kNone;
    for (auto& plan : currentState->plans) {
        const bool counts = plan.function.empty() || plan.function == function;
        if (counts && plan.left > 0 && --plan.left == 0) {
            fault = plan.fault;
        }
    }
    if (fault == Fault::kNone && current->faultFor) {
        fault = current->faultFor(function);
    }
    if (fault != Fault::kNone) {
        currentState->raised = function;
    }
    return fault;
}

Fault notedText(const char* function, const char* space, const char* text)
{
    return noted(function, [&] { return std::string(function) + space + text; });
}

#define STORE_RECORD(result, name, parameters, arguments)                                                    \
    template <class... Arguments>                                                                            \
    Fault noted_##name(const Arguments&... given)                                                            \
    {                                                                                                        \
        return noted(#name, [&] { return describeCall(#name, given...); });                                  \
    }                                                                                                        \
    result call_##name parameters                                                                            \
    {                                                                                                        \
        raiseNow(noted_##name arguments);                                                                    \
        return current->answer.name ? current->answer.name arguments : noAnswer<result>();                   \
    }
STORE_FUNCTIONS(STORE_RECORD)
#undef STORE_RECORD

constexpr StoreTable kTable = {
#define STORE_ENTRY(result, name, parameters, arguments) call_##name,
    STORE_FUNCTIONS(STORE_ENTRY)
#undef STORE_ENTRY
        [](const char* line){raiseNow(notedText("ODS", " ", line));
} // namespace
,
}
;

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
        std::vector<QuotaRule*> made;
        for (const auto& rule : m_state->rules) {
            if (rule.path == folder) {
                made.push_back(makeRule(folder, rule.sid, rule.hardLimit, rule.softLimit, rule.inUse));
            }
        }
        return linked(made);
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
    StoreSids& sids = m_state->sids;
    answer.createEmptySidList = [&sids] {
        return sids.emptyList();
    };
    answer.appendToSidList = [&sids](SidList* list, void* sid) {
        return sids.append(list, sid);
    };
    answer.appendToSidList2 = [&sids](SidList* destination, SidList* source) {
        return sids.appendAll(destination, source);
    };
    answer.freeSidList = [&sids](SidList* list) {
        sids.releaseList(list);
    };
    answer.sidDup = [&sids](const void* sid) {
        return sids.copy(sid);
    };
    answer.sidcmp = compareSids;
    answer.getAccountBySidW = accountName;
    answer.getTextualSidW = textualSid;
}

void* RecordingStore::account(std::string_view name)
{
    return m_state->sids.account(name);
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

QuotaRule* RecordingStore::linked(const std::vector<QuotaRule*>& rules)
{
    for (size_t i = 1; i < rules.size(); ++i) {
        rules[i - 1]->next = rules[i];
        rules[i]->prev = rules[i - 1];
    }
    return rules.empty() ? nullptr : rules.front();
}

void RecordingStore::put(const wchar_t* path, const void* sid, int64_t hardLimit, int64_t softLimit,
                         int64_t inUse)
{
    m_state->rules.push_back({path, sid, hardLimit, softLimit, inUse});
}

SidList* RecordingStore::makeSidList(const std::vector<const void*>& sids)
{
    StoreSids& ours = currentState->sids;
    SidList* list = ours.emptyList();
    for (const void* const sid : sids) {
        list = ours.append(list, ours.copy(sid));
    }
    return list;
}

SidList* RecordingStore::callersSidList(const std::vector<void*>& sids)
{
    return m_state->sids.callersList(sids);
}

void RecordingStore::release(void* sid)
{
    currentState->sids.release(sid);
}

void RecordingStore::note(const char* function, const std::string& arguments)
{
    raiseNow(notedText(function, arguments.empty() ? "" : " ", arguments.c_str()));
}

void RecordingStore::raise(std::string_view function, Fault fault, int nth)
{
    const std::lock_guard lock(m_state->mutex);
    m_state->plans.push_back({std::string(function), fault, nth});
}

std::string RecordingStore::takeRaised()
{
    const std::lock_guard lock(m_state->mutex);
    return std::exchange(m_state->raised, {});
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

std::vector<std::string> RecordingStore::callsWith(std::string_view part) const
{
    std::vector<std::string> all = calls();
    std::erase_if(all, [part](const std::string& call) { return call.find(part) == std::string::npos; });
    return all;
}

int RecordingStore::count(std::string_view start) const
{
    const std::vector<std::string> all = calls();
    return static_cast<int>(std::count_if(
        all.begin(), all.end(), [start](const std::string& call) { return call.starts_with(start); }));
}

void RecordingStore::tellListsByNumber()
{
    m_state->sids.tellByNumber();
}

int RecordingStore::openSidLists() const
{
    return m_state->sids.openLists();
}

int RecordingStore::openSids() const
{
    return m_state->sids.open();
}

int RecordingStore::openPathLists() const
{
    return static_cast<int>(m_state->pathLists.size());
}

std::string RecordingStore::nameOf(const void* sid)
{
    return currentState == nullptr ? std::string() : currentState->sids.nameOf(sid);
}

std::string RecordingStore::listNumber(const SidList* list)
{
    return currentState == nullptr ? std::string() : currentState->sids.numberOf(list);
}
