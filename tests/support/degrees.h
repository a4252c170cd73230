// Angles of the tests.
#pragma once

#include <numbers>

inline constexpr double kDegree = std::numbers::pi / 180;
