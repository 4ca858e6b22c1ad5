#include "tests/stress/stress.h"

#include <gmock/gmock.h>

#include <windows.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace stress {
namespace {

long long counted = 300;
std::uint32_t seeded = 0;
std::string_view onlyNamed;
std::atomic<unsigned> progress = 0;
char last[300] = "start";

DWORD WINAPI watch(void*)
{
    constexpr DWORD kSecond = 1000;
    constexpr int kPatience = 120;
    unsigned before = progress;
    for (int still = 0; still < kPatience; Sleep(kSecond)) {
        still = progress == before ? still + 1 : 0;
        before = progress;
    }
    std::printf("nothing has happened for %d s after: %s\n", kPatience, last);
    std::fflush(stdout);
    TerminateProcess(GetCurrentProcess(), 3);
    return 0;
}

} // namespace

long long count()
{
    return counted;
}

std::uint32_t seed()
{
    return seeded;
}

bool wanted(std::string_view name)
{
    return name.find(onlyNamed) != std::string_view::npos;
}

void alive(const char* doing)
{
    std::snprintf(last, sizeof last, "%s", doing);
    ++progress;
}

} // namespace stress

int main(int argc, char** argv)
{
    testing::InitGoogleMock(&argc, argv);
    stress::seeded =
        argc > 2 ? static_cast<std::uint32_t>(std::strtoul(argv[2], nullptr, 10)) : GetTickCount();
    if (argc > 1) {
        stress::counted = std::strtoll(argv[1], nullptr, 10);
    }
    if (argc > 3) {
        stress::onlyNamed = argv[3];
    }
    std::printf("seed %u, count %lld\n", stress::seeded, stress::counted);
    std::fflush(stdout);
    CloseHandle(CreateThread(nullptr, 0, stress::watch, nullptr, 0, nullptr));
    return RUN_ALL_TESTS();
}
