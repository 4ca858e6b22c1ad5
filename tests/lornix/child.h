// The test program once more, as another process that uses the store.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace store_test {

/// A running child. Killed at the latest when the object goes.
class Child {
public:
    /// @param role       what it does, see roles.cpp.
    /// @param arguments  without blanks at the end and quotes inside.
    explicit Child(const std::wstring& role, const std::vector<std::wstring>& arguments);
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;
    ~Child();

    /// Ends it at once, as a task manager would.
    void kill();

    /// Waits for its end. @return its exit code.
    DWORD wait();

    bool isRunning() const;

private:
    PROCESS_INFORMATION m_process{};
};

/// Exit code of a child that ended itself where it was told to.
inline constexpr DWORD kEndedItself = 77;

/// What main does when the program is a child.
int playRole(const std::wstring& role, const std::vector<std::wstring>& arguments);

} // namespace store_test
