// Vectors and matrices. All of them have room for index 0, which holds nothing: points, rows and columns are
// numbered from 1, in memory as in the files.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

namespace corvinade::fit {

// A column vector, elements 1 to size() - 1.
using Column = std::vector<double>;

// Highest index of an array whose element 0 is unused; -1 for an array that was never sized.
template <class Array>
int UpperBound(const Array& array) {
    return static_cast<int>(array.size()) - 1;
}

// Three numbers, elements 1 to 3.
struct Vec3 {
    std::array<double, 4> Elements{};

    Vec3() = default;
    Vec3(double x, double y, double z) : Elements{0, x, y, z} {}
    double& operator()(int i) { return Elements[static_cast<std::size_t>(i)]; }
    double operator()(int i) const { return Elements[static_cast<std::size_t>(i)]; }
};

// A 3 by 3 matrix, elements (1, 1) to (3, 3).
struct Mat3 {
    std::array<double, 16> Elements{};

    double& operator()(int row, int column) {
        return Elements[4 * static_cast<std::size_t>(row) + static_cast<std::size_t>(column)];
    }
    double operator()(int row, int column) const {
        return Elements[4 * static_cast<std::size_t>(row) + static_cast<std::size_t>(column)];
    }
};

// A matrix with elements (0, 0) to (Rows, Columns), row by row in memory. The part in use may be
// smaller, so operations take the logical size as separate numbers.
struct Matrix {
    int Rows = -1;  // highest index; -1 = never sized
    int Columns = -1;
    std::vector<double> Elements;

    Matrix() = default;
    Matrix(int rows, int columns)
        : Rows(rows),
          Columns(columns),
          Elements(static_cast<std::size_t>(rows + 1) * static_cast<std::size_t>(columns + 1)) {}
    double* Row(int row) { return Elements.data() + Place(row, 0); }
    const double* Row(int row) const { return Elements.data() + Place(row, 0); }
    double& operator()(int row, int column) { return Elements[Place(row, column)]; }
    double operator()(int row, int column) const { return Elements[Place(row, column)]; }

    std::size_t Place(int row, int column) const {
        return static_cast<std::size_t>(row) * static_cast<std::size_t>(Columns + 1) +
               static_cast<std::size_t>(column);
    }
};

}  // namespace corvinade::fit
