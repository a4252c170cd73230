// General matrix operations. Logical sizes are passed apart from the arrays, since a work array may be
// larger than the part in use; all indices run from 1. Nothing here allocates: the caller sizes the out
// arrays. Sizes up to 32767; a larger one, or one beyond an array, is a broken promise of the caller.
#pragma once

#include <functional>

#include "fit/arrays.h"

namespace corvinade::fit {

// One matrix for all operations: a Matrix, a Mat3, or a Column as a matrix of one column.
struct ConstMatrixView {
    const double* Data;
    int Rows, Columns;  // highest indices
    std::size_t Step;   // from row to row
    std::ptrdiff_t Offset = 0;

    ConstMatrixView(const double* data, int rows, int columns, std::size_t step, std::ptrdiff_t offset = 0)
        : Data(data), Rows(rows), Columns(columns), Step(step), Offset(offset) {}
    ConstMatrixView(const Matrix& m)
        : ConstMatrixView(m.Elements.data(), m.Rows, m.Columns, static_cast<std::size_t>(m.Columns + 1)) {}
    ConstMatrixView(const Mat3& m) : ConstMatrixView(m.Elements.data(), 3, 3, 4) {}
    ConstMatrixView(const Column& c) : ConstMatrixView(c.data(), UpperBound(c), 1, 1, -1) {}
    double operator()(int row, int column) const {
        return Data[static_cast<std::ptrdiff_t>(static_cast<std::size_t>(row) * Step) + column + Offset];
    }
};

struct MatrixView {
    double* Data;
    int Rows, Columns;
    std::size_t Step;
    std::ptrdiff_t Offset = 0;

    MatrixView(double* data, int rows, int columns, std::size_t step, std::ptrdiff_t offset = 0)
        : Data(data), Rows(rows), Columns(columns), Step(step), Offset(offset) {}
    MatrixView(Matrix& m)
        : MatrixView(m.Elements.data(), m.Rows, m.Columns, static_cast<std::size_t>(m.Columns + 1)) {}
    MatrixView(Mat3& m) : MatrixView(m.Elements.data(), 3, 3, 4) {}
    MatrixView(Column& c) : MatrixView(c.data(), UpperBound(c), 1, 1, -1) {}
    double& operator()(int row, int column) const {
        return Data[static_cast<std::ptrdiff_t>(static_cast<std::size_t>(row) * Step) + column + Offset];
    }
    operator ConstMatrixView() const { return {Data, Rows, Columns, Step, Offset}; }
};

// C = A B for A of n rows and k columns and B of m columns. The sum over l runs upwards, and a term
// whose factor A(i,l) or B(l,j) is exactly 0 is left out. C must be neither A nor B.
void MatrixMultiply(ConstMatrixView A, int n, int k, ConstMatrixView B, int m, MatrixView C, int& outRows,
                    int& outColumns);
inline void MatrixMultiply(ConstMatrixView A, int n, int k, ConstMatrixView B, int m, MatrixView C) {
    int rows = 0, columns = 0;
    MatrixMultiply(A, n, k, B, m, C, rows, columns);
}
Mat3 MatrixProduct(const Mat3& A, const Mat3& B);  // the same for 3 by 3

void MatrixAdd(ConstMatrixView A, int n, int m, ConstMatrixView B, MatrixView C);  // C = A + B
void MatrixSub(ConstMatrixView A, int n, int m, ConstMatrixView B, MatrixView C);  // C = A - B
void MatrixTranspose(ConstMatrixView A, int n, int m, MatrixView T);               // T must not be A

// C(i,j) = A(i,j) d(j): A times a diagonal matrix held as a vector.
void MatrixTimesDiagonal(ConstMatrixView A, int n, int m, const Column& d, MatrixView C);

// Inverse of the first n rows and columns of A by a Gauss-Jordan sweep in place, without pivot search.
// The copy has n columns and m rows. 1e-12 is added to each pivot as it stands, whatever its sign: a
// zero pivot gives 1e12 and no failure, so a singular matrix gives huge elements. B may be A.
void MatrixInverse(ConstMatrixView A, int n, int m, MatrixView B);

// The same, asking `goOn` again and again while it works on a large matrix; false ends it, and B is nothing
// then. Gives false where it was ended.
bool MatrixInverse(ConstMatrixView A, int n, int m, MatrixView B, const std::function<bool()>& goOn);

// Sum of all |A - B|, and whether none of them is above the tolerance. Arrays of different size give
// sum 0 and equal true.
void MatrixCompare(ConstMatrixView A, ConstMatrixView B, double tolerance, double& sum, bool& equal);

// Whether every element is a number, neither infinite nor undefined.
bool IsFinite(const Mat3& M);

// Copies A without one row (`row` true) or without one column; what stands behind `index` moves up.
void MatrixDeleteRowOrColumn(ConstMatrixView A, int rows, int columns, MatrixView B, int& newRows,
                             int& newColumns, bool row, int index);

// Arrays of numbers with an unused element 0: removes element k; removes for each element in turn
// every later one that lies nearer to it than 1e-8.
void ArrayRemoveElement(Column& array, int k);
void ArrayRemoveNearDuplicates(Column& array);

}  // namespace corvinade::fit
