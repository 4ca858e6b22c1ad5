// Whether something that is done again and again leaves anything behind.
#pragma once

#include <functional>

/// Does something often, and fails the test when the process holds more and more. The first rounds are not counted:
/// they fill caches of the system. Some of those fill later, whenever they like, but only once; so what grows in
/// each of several series of rounds is a leak.
void expectNothingLeft(const std::function<void()>& round);
