#include "host/console.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <string>

namespace {

/// Another standard output, as long as it lives.
class StandardOutput {
public:
    explicit StandardOutput(HANDLE output) { SetStdHandle(STD_OUTPUT_HANDLE, output); }
    ~StandardOutput() { SetStdHandle(STD_OUTPUT_HANDLE, m_before); }
    StandardOutput(const StandardOutput&) = delete;
    StandardOutput& operator=(const StandardOutput&) = delete;

private:
    HANDLE m_before = GetStdHandle(STD_OUTPUT_HANDLE);
};

const std::wstring kText = L"J\u00F6rg \u03A9";

HANDLE newScreen()
{
    return CreateConsoleScreenBuffer(GENERIC_READ | GENERIC_WRITE, 0, nullptr, CONSOLE_TEXTMODE_BUFFER,
                                     nullptr);
}

} // namespace

TEST(PrintText, WritesUtf8BytesToAPipe)
{
    HANDLE read = nullptr;
    HANDLE write = nullptr;
    ASSERT_TRUE(CreatePipe(&read, &write, nullptr, 0));
    {
        const StandardOutput output(write);
        host::printText(kText);
    }
    CloseHandle(write);
    char bytes[64] = "";
    DWORD count = 0;
    ASSERT_TRUE(ReadFile(read, bytes, sizeof bytes - 1, &count, nullptr));
    CloseHandle(read);
    EXPECT_EQ(std::string(bytes, count), "J\xC3\xB6rg \xCE\xA9");
}

TEST(PrintText, WritesCharactersToAConsole)
{
    const StandardOutput kept(GetStdHandle(STD_OUTPUT_HANDLE)); // a new console brings its own
    HANDLE screen = newScreen();
    if (screen == INVALID_HANDLE_VALUE) { // started without a console that has a screen
        FreeConsole();
        ASSERT_TRUE(AllocConsole()) << GetLastError();
        screen = newScreen();
    }
    ASSERT_NE(screen, INVALID_HANDLE_VALUE) << GetLastError();
    {
        const StandardOutput output(screen);
        host::printText(kText);
    }
    std::wstring shown(kText.size(), L'\0');
    DWORD count = 0;
    EXPECT_TRUE(ReadConsoleOutputCharacterW(screen, shown.data(), static_cast<DWORD>(shown.size()),
                                            COORD{0, 0}, &count));
    EXPECT_EQ(shown, kText);
    CloseHandle(screen);
}
