// What all stress programs have: a number of rounds, a seed that is told, and an end to what hangs.
#pragma once

#include <cstdint>
#include <string_view>

namespace stress {

/// From the command line: PROGRAM [COUNT [SEED [NAME]]].
long long count();
std::uint32_t seed();
/// Whether something is to be done: all is, without a name, and otherwise what has it in its own.
bool wanted(std::string_view name);

/// To be called while there is progress. Without any for two minutes the program ends as failed, with what it did last.
void alive(const char* doing);

} // namespace stress
