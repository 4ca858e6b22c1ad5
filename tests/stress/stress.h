// What all stress programs have: a number of rounds, a seed that is told, and an end to what hangs.
#pragma once

#include <cstdint>

namespace stress {

/// From the command line: PROGRAM [COUNT [SEED]].
long long count();
std::uint32_t seed();

/// To be called while there is progress. Without any for two minutes the program ends as failed, with what it did last.
void alive(const char* doing);

} // namespace stress
