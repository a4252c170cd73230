// Ctrl-C during work that other threads of Python may run beside.
#pragma once

#include <pybind11/pybind11.h>

#include <chrono>

// Python hears Ctrl-C only where it is asked to. The error stays with the thread until the work has ended.
class Interruption {
public:
    bool Wanted() {
        const auto now = std::chrono::steady_clock::now();
        if (now - asked_ < std::chrono::milliseconds(20)) return false;
        asked_ = now;
        const pybind11::gil_scoped_acquire held;
        return Came = PyErr_CheckSignals() != 0;
    }
    bool Came = false;

private:
    std::chrono::steady_clock::time_point asked_ = std::chrono::steady_clock::now();
};
