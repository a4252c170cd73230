// Points as the caller has them.
#pragma once

#include <cstddef>
#include <span>

#include "corvinade/api.h"

namespace corvinade {

// Points in memory that is the caller's: coordinate k (0 to 2) of point i is Data[i * PointStep + k *
// AxisStep]. Rows x y z without gaps have steps 3 and 1. They are read while a fit runs and not kept.
struct Points {
    const double* Data = nullptr;
    std::size_t Count = 0;
    std::ptrdiff_t PointStep = 3, AxisStep = 1;

    Points() = default;
    Points(const double* data, std::size_t count, std::ptrdiff_t pointStep = 3, std::ptrdiff_t axisStep = 1)
        : Data(data), Count(count), PointStep(pointStep), AxisStep(axisStep) {}
    // Rows x y z. Throws InvalidInput where the length is no multiple of three.
    CORVINADE_API explicit Points(std::span<const double> rows);
};

}  // namespace corvinade
