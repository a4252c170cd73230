// Sums and loops over many points run in eight fixed lanes: lane j takes the points j, j + 8, ..., on
// every instruction set, so that results do not depend on the machine. How many lanes one vector holds
// is a matter of the instruction set alone.
#pragma once

#include <array>
#include <cstddef>
#include <new>
#include <vector>

namespace corvinade::fit {

inline constexpr int kLanes = 8;
inline constexpr std::size_t kLaneAlignment = kLanes * sizeof(double);

// Rounds a count up to whole groups of lanes.
constexpr int WholeLanes(int count) {
    return (count + kLanes - 1) / kLanes * kLanes;
}

// How many of the eight lanes one vector of the machine holds.
enum class VectorWidth { Two = 2, Four = 4, Eight = 8 };
VectorWidth WidestVectors();

// The eight partial sums put together, always in this order.
inline double SumOfLanes(const double* lanes) {
    return ((lanes[0] + lanes[4]) + (lanes[2] + lanes[6])) + ((lanes[1] + lanes[5]) + (lanes[3] + lanes[7]));
}

// Memory for vectors. Elements are not set to 0: who sizes such an array fills it.
template <class T>
struct LaneAllocator {
    using value_type = T;
    LaneAllocator() = default;
    template <class Other>
    LaneAllocator(const LaneAllocator<Other>&) {}
    T* allocate(std::size_t n) {
        return static_cast<T*>(::operator new(n * sizeof(T), std::align_val_t(kLaneAlignment)));
    }
    void deallocate(T* p, std::size_t) { ::operator delete(p, std::align_val_t(kLaneAlignment)); }
    template <class U>
    void construct(U*) {}
    template <class U, class Value>
    void construct(U* place, const Value& value) {
        ::new (static_cast<void*>(place)) U(value);
    }
    bool operator==(const LaneAllocator&) const { return true; }
};
using LaneArray = std::vector<double, LaneAllocator<double>>;

}  // namespace corvinade::fit
