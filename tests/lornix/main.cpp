#include "child.h"

#include <gtest/gtest.h>

#include <shellapi.h>

#include <memory>

int main(int argc, char** argv)
{
    int count = 0;
    const std::unique_ptr<wchar_t*, decltype(&LocalFree)> words(CommandLineToArgvW(GetCommandLineW(), &count),
                                                                LocalFree);
    const std::vector<std::wstring> arguments(words.get(), words.get() + count);
    if (arguments.size() > 2 && arguments[1] == L"--role") {
        return store_test::playRole(arguments[2], {arguments.begin() + 3, arguments.end()});
    }
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
