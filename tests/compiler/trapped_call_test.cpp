// Trapped calls, by whichever compiler builds this: a program without a test framework, so that each of them can.
#include "compiler/trapped_call.h"

#include <cstdio>
#include <stdexcept>
#include <string>

namespace {

std::string seen; // what happened, in order
int failures = 0;

void expect(const char* what, const std::string& wanted)
{
    if (seen != wanted) {
        std::printf("%s: \"%s\" and not \"%s\"\n", what, seen.c_str(), wanted.c_str());
        ++failures;
    }
    seen.clear();
}

void note(void* text)
{
    seen += static_cast<const char*>(text);
}

template <class Call>
trapped_call::Step stepOf(Call&)
{
    return [](void* call) {
        (*static_cast<Call*>(call))();
    };
}

LONG take(EXCEPTION_POINTERS* raised, void* code)
{
    *static_cast<DWORD*>(code) = raised->ExceptionRecord->ExceptionCode;
    return EXCEPTION_EXECUTE_HANDLER;
}

LONG seeAndGoOn(EXCEPTION_POINTERS*, void* text)
{
    note(text);
    return EXCEPTION_CONTINUE_SEARCH;
}

/// @return the code of what a call raised, 0 for nothing.
template <class Call>
DWORD codeOf(Call call)
{
    DWORD code = 0;
    if (trapped_call::run(stepOf(call), &call, take, &code) != (code == 0)) {
        seen += "another result;";
    }
    return code;
}

void touchNothing()
{
    volatile int* volatile nowhere = nullptr;
    *nowhere = 1;
}

void divideByZero()
{
    volatile int zero = 0;
    volatile int result = 100 / zero;
    static_cast<void>(result);
}

char first[] = "first;";
char second[] = "second;";
char after[] = "after;";

void whatEndsACall()
{
    seen += std::to_string(codeOf([] {}));
    expect("a call that comes to its end", "0");
    for (int round = 0; round < 1000; ++round) {
        if (codeOf(touchNothing) != EXCEPTION_ACCESS_VIOLATION ||
            codeOf(divideByZero) != EXCEPTION_INT_DIVIDE_BY_ZERO)
        {
            seen = "another code";
        }
    }
    expect("faults of the processor", "");
    seen += std::to_string(codeOf([] { RaiseException(0x1234, 0, 0, nullptr); }));
    expect("what is raised by hand", std::to_string(0x1234));
    // The registers of the caller are what they were: a sum that is kept in one survives.
    volatile int one = 1;
    int sum = 0;
    for (int i = 0; i < 100; ++i) {
        sum += one + (codeOf(touchNothing) != 0 ? one : 0);
    }
    seen += std::to_string(sum);
    expect("the caller's registers", "200");
}

void whoIsAsked()
{
    auto inner = [] {
        trapped_call::run([](void*) { touchNothing(); }, nullptr, seeAndGoOn, first);
    };
    auto middle = [&] {
        trapped_call::run(stepOf(inner), &inner, seeAndGoOn, second);
    };
    seen += std::to_string(codeOf(middle) == EXCEPTION_ACCESS_VIOLATION);
    expect("filters, from within", "first;second;1");

    // A language exception is seen in passing and arrives at who catches it.
    auto throws = [] {
        throw std::runtime_error("thrown;");
    };
    auto passing = [&] {
        trapped_call::run(stepOf(throws), &throws, seeAndGoOn, first);
    };
    try {
        passing();
    } catch (const std::exception& exception) {
        seen += exception.what();
    }
    expect("a language exception", "first;thrown;");

    // One that is caught within never comes as far as the trap.
    seen += std::to_string(codeOf([&] {
        try {
            throws();
        } catch (const std::exception&) {
            seen += "caught;";
        }
    }));
    expect("a language exception that is caught", "caught;0");

    // A fault is no language exception.
    seen += std::to_string(codeOf([] {
                               try {
                                   touchNothing();
                               } catch (...) {
                                   seen += "caught;";
                               }
                           }) == EXCEPTION_ACCESS_VIOLATION);
    expect("a fault below a catch-all", "1");
}

void whatFollowsACall()
{
    auto thenAfter = [](trapped_call::Step call, void* context) {
        trapped_call::runThen(call, context, note, after);
    };
    thenAfter(note, first);
    expect("after the end", "first;after;");
    seen += std::to_string(codeOf([&] { thenAfter([](void*) { touchNothing(); }, nullptr); }) ==
                           EXCEPTION_ACCESS_VIOLATION);
    expect("after a fault", "after;1");
    auto throws = [] {
        throw std::runtime_error("thrown;");
    };
    try {
        thenAfter(stepOf(throws), &throws);
    } catch (const std::exception& exception) {
        seen += exception.what();
    }
    expect("after a language exception", "after;thrown;");
    // What follows is not watched by itself: its own fault is the caller's.
    auto faults = [] {
        trapped_call::runThen(note, first, [](void*) { touchNothing(); }, nullptr);
    };
    seen += std::to_string(codeOf(faults) == EXCEPTION_ACCESS_VIOLATION);
    expect("a fault in what follows", "first;1");
}

} // namespace

int main()
{
    whatEndsACall();
    whoIsAsked();
    whatFollowsACall();
    std::printf("trapped calls: %d failures\n", failures);
    return failures;
}
