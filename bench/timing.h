// Times and ratios for benches that run peers in turn.
#pragma once

#include <algorithm>
#include <chrono>
#include <vector>

inline double Milliseconds(std::chrono::steady_clock::time_point begin) {
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
}

inline double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values.empty() ? 0 : values[values.size() / 2];
}
