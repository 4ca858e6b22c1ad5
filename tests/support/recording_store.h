// A quota store that writes down what is asked of it, and answers as the test says.
#pragma once

#include "corvane_types.h"
#include "tests/support/fault.h"
#include "tests/support/store_functions.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// The answer to each function, if it is not the usual one.
struct StoreAnswers {
#define STORE_ANSWER(result, name, parameters, arguments) std::function<result parameters> name;
    STORE_FUNCTIONS(STORE_ANSWER)
#undef STORE_ANSWER
};

/// The store that the code under test calls while this object lives; there is one at a time. AccountStore and
/// PolicyStore are such stores that keep accounts and policy lists.
///
/// The usual answers: folders have no rules and no size; SIDs and the lists of SIDs and paths are real ones; the
/// accounts that the test made known have names, and all others have none; groups have no members.
class RecordingStore {
public:
    RecordingStore();
    ~RecordingStore();
    RecordingStore(const RecordingStore&) = delete;
    RecordingStore& operator=(const RecordingStore&) = delete;

    /// Other answers: `store.answer.getRealSize = [](const wchar_t*) { return 42; };`
    StoreAnswers answer;

    /// Makes an account known.
    /// @return its SID, which is the store's.
    void* account(std::string_view name);

    /// A SID that no account has.
    void* unknownAccount();

    /// A new rule as the store hands them out: path and SID are copies of its own. The record lies below 4 GiB.
    static QuotaRule* makeRule(const wchar_t* path, const void* sid, int64_t hardLimit, int64_t softLimit,
                               int64_t inUse);

    /// Links rules in their order.
    /// @return the first, null when there is none.
    static QuotaRule* linked(const std::vector<QuotaRule*>& rules);

    /// Lets getQuotaList give a rule for its folder, in the order in which rules are put in. Each call gives
    /// fresh records.
    void put(const wchar_t* path, const void* sid, int64_t hardLimit, int64_t softLimit, int64_t inUse);

    /// A list of SIDs for an answer: copies of the given ones, for freeSidList to release.
    static SidList* makeSidList(const std::vector<const void*>& sids);

    /// A list of the caller's own with just these SIDs: it fails the test when it is made to grow or released. Lasts as
    /// long as the store.
    SidList* callersSidList(const std::vector<void*>& sids);

    /// Releases a SID as the code under test would.
    static void release(void* sid);

    /// Writes down what something beside the store was asked for, in one sequence with the store's calls, and raises
    /// what is planned for it.
    static void note(const char* function, const std::string& arguments);

    /// Plans a fault for the nth call of a function, or of all with an empty name, counted from here on. A fault that
    /// is not raised before the store's end fails the test.
    void raise(std::string_view function, Fault fault, int nth = 1);

    /// The function that raised the last fault, empty when none did since the last time.
    std::string takeRaised();

    /// Asked at each call for what it is to raise, beside what is planned; one thread at a time.
    std::function<Fault(const char* function)> faultFor;

    /// Whether calls are written down. To describe each of very many takes its time.
    bool writing = true;

    /// The calls so far, each as "name argument argument". Debug lines stand among them as "ODS text".
    std::vector<std::string> calls() const;

    /// The calls since the last time, leaving the record empty.
    std::vector<std::string> takeCalls();

    /// Those of the calls that have this in them.
    std::vector<std::string> callsWith(std::string_view part) const;

    /// How many of the calls start so.
    int count(std::string_view start) const;

    /// The debug lines alone.
    std::vector<std::string> lines() const;

    /// From now on the calls tell lists of SIDs by the numbers in which they were made, "L1", and the caller's own as
    /// "presets".
    void tellListsByNumber();

    /// Lists of SIDs, and of paths, that were made and not yet released.
    int openSidLists() const;
    int openPathLists() const;

    /// SIDs that the store gave, alone and in lists, less those that came back in lists or by release.
    int openSids() const;

    /// The name that the test gave to a SID or to the account that it is a copy of; empty when there is none.
    static std::string nameOf(const void* sid);

    /// What the calls tell of a list when they tell it by number, empty when they do not.
    static std::string listNumber(const SidList* list);

    struct State;

private:
    void answerAsUsual();
    std::unique_ptr<State> m_state;
};
