// How much memory a piece of work takes.
#pragma once

#include <cstddef>

// Is this the program whose rooms are compiled with the sanitizers, which take ten times as long?
bool UnderSanitizers();

// From its construction on it counts what this thread of tests asks for.
class MemoryUse {
public:
    MemoryUse();
    std::size_t Peak() const;         // bytes, the most at any time above what was there at the beginning
    std::size_t Allocations() const;  // how often memory was asked for

private:
    std::size_t before_;
    std::size_t allocationsBefore_;
};
