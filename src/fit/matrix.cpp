// General matrix operations.
#include "fit/matrix.h"

#include <algorithm>
#include <cmath>

#include "fit/require.h"
#include "fit/sweep.h"

namespace corvinade::fit {

namespace {

constexpr int kLargestSize = 32767;

void RequireSize(const ConstMatrixView& A, int rows, int columns) {
    Require(rows >= 0 && rows <= kLargestSize && rows <= A.Rows);
    Require(columns >= 0 && columns <= kLargestSize && columns <= A.Columns);
}

double* Row(const MatrixView& A, int row) {
    return &A(row, 0);
}
const double* Row(const ConstMatrixView& A, int row) {
    return A.Data + static_cast<std::ptrdiff_t>(static_cast<std::size_t>(row) * A.Step) + A.Offset;
}

template <class Operation>
void ElementWise(ConstMatrixView A, int n, int m, ConstMatrixView B, MatrixView C, Operation operation) {
    RequireSize(A, n, m);
    RequireSize(B, n, m);
    RequireSize(C, n, m);
    for (int i = 1; i <= n; ++i)
        for (int j = 1; j <= m; ++j) C(i, j) = operation(A(i, j), B(i, j));
}

}  // namespace

void MatrixMultiply(ConstMatrixView A, int n, int k, ConstMatrixView B, int m, MatrixView C, int& outRows,
                    int& outColumns) {
    RequireSize(A, n, k);
    RequireSize(B, k, m);
    RequireSize(C, n, m);
    Require(C.Data != A.Data && C.Data != B.Data);
    for (int i = 1; i <= n; ++i) {
        if (m == 1) {
            // A column: the same sums without a loop over its width.
            double sum = 0;
            for (int l = 1; l <= k; ++l) sum = A(i, l) != 0 && B(l, 1) != 0 ? sum + A(i, l) * B(l, 1) : sum;
            C(i, 1) = sum;
            continue;
        }
        double* const c = Row(C, i);
        for (int j = 1; j <= m; ++j) c[j] = 0;
        for (int l = 1; l <= k; ++l) {
            const double a = A(i, l);
            if (a == 0) continue;
            const double* const b = Row(B, l);
            for (int j = 1; j <= m; ++j) c[j] = b[j] != 0 ? c[j] + a * b[j] : c[j];
        }
    }
    outRows = n;
    outColumns = m;
}

Mat3 MatrixProduct(const Mat3& A, const Mat3& B) {
    Mat3 C;
    for (int i = 1; i <= 3; ++i)
        for (int j = 1; j <= 3; ++j) {
            double sum = 0;
            for (int l = 1; l <= 3; ++l) sum = A(i, l) != 0 && B(l, j) != 0 ? sum + A(i, l) * B(l, j) : sum;
            C(i, j) = sum;
        }
    return C;
}

void MatrixAdd(ConstMatrixView A, int n, int m, ConstMatrixView B, MatrixView C) {
    ElementWise(A, n, m, B, C, [](double a, double b) { return a + b; });
}

void MatrixSub(ConstMatrixView A, int n, int m, ConstMatrixView B, MatrixView C) {
    ElementWise(A, n, m, B, C, [](double a, double b) { return a - b; });
}

void MatrixTranspose(ConstMatrixView A, int n, int m, MatrixView T) {
    RequireSize(A, n, m);
    RequireSize(T, m, n);
    Require(T.Data != A.Data);
    for (int i = 1; i <= n; ++i)
        for (int j = 1; j <= m; ++j) T(j, i) = A(i, j);
}

void MatrixTimesDiagonal(ConstMatrixView A, int n, int m, const Column& d, MatrixView C) {
    RequireSize(A, n, m);
    RequireSize(C, n, m);
    Require(m <= UpperBound(d));
    for (int i = 1; i <= n; ++i)
        for (int j = 1; j <= m; ++j) C(i, j) = A(i, j) * d[static_cast<std::size_t>(j)];
}

namespace {

// The plain sweep, row by row.
void PlainSweep(MatrixView B, int n) {
    for (int k = 1; k <= n; ++k) {
        double* const rowK = Row(B, k);
        const double pivot = 1 / (1e-12 + rowK[k]);
        for (int j = 1; j <= n; ++j) rowK[j] = -rowK[j] * pivot;
        rowK[k] = pivot;
        for (int i = 1; i <= n; ++i) {
            if (i == k) continue;
            // Column k goes along, to keep the loop whole, and is put right behind it.
            double* __restrict const row = Row(B, i);
            const double factor = row[k];
            for (int j = 1; j <= n; ++j) row[j] += factor * rowK[j];
            row[k] = factor * pivot;
        }
    }
}

bool Invert(ConstMatrixView A, int n, int m, MatrixView B, const std::function<bool()>* goOn) {
    RequireSize(A, std::max(n, m), n);
    RequireSize(B, std::max(n, m), n);
    if (B.Data != A.Data)
        for (int i = 1; i <= m; ++i) std::copy_n(Row(A, i) + 1, n, Row(B, i) + 1);
    if (n >= kBlockedFrom) return BlockedSweep(B, n, WidestVectors(), goOn);
    PlainSweep(B, n);
    return true;
}

}  // namespace

void MatrixInverse(ConstMatrixView A, int n, int m, MatrixView B) {
    Invert(A, n, m, B, nullptr);
}

bool MatrixInverse(ConstMatrixView A, int n, int m, MatrixView B, const std::function<bool()>& goOn) {
    return Invert(A, n, m, B, &goOn);
}

void MatrixCompare(ConstMatrixView A, ConstMatrixView B, double tolerance, double& sum, bool& equal) {
    sum = 0;
    equal = true;
    if (A.Rows != B.Rows || A.Columns != B.Columns) return;
    for (int i = 1; i <= A.Rows; ++i)
        for (int j = 1; j <= A.Columns; ++j) {
            const double difference = std::fabs(A(i, j) - B(i, j));
            sum += difference;
            if (difference > tolerance) equal = false;
        }
}

bool IsFinite(const Mat3& M) {
    for (int i = 1; i <= 3; ++i)
        for (int j = 1; j <= 3; ++j)
            if (!std::isfinite(M(i, j))) return false;
    return true;
}

void MatrixDeleteRowOrColumn(ConstMatrixView A, int rows, int columns, MatrixView B, int& newRows,
                             int& newColumns, bool row, int index) {
    RequireSize(A, rows, columns);
    Require(index >= 1 && index <= (row ? rows : columns));
    newRows = row ? rows - 1 : rows;
    newColumns = row ? columns : columns - 1;
    RequireSize(B, newRows, newColumns);
    for (int i = 1; i <= newRows; ++i)
        for (int j = 1; j <= newColumns; ++j)
            B(i, j) = row ? A(i < index ? i : i + 1, j) : A(i, j < index ? j : j + 1);
}

void ArrayRemoveElement(Column& array, int k) {
    Require(k >= 1 && k <= UpperBound(array));
    array.erase(array.begin() + k);
}

void ArrayRemoveNearDuplicates(Column& array) {
    for (std::size_t i = 1; i < array.size(); ++i) {
        const double kept = array[i];
        const auto later = array.begin() + static_cast<std::ptrdiff_t>(i) + 1;
        array.erase(
            std::remove_if(later, array.end(), [kept](double x) { return std::fabs(x - kept) < 1e-8; }),
            array.end());
    }
}

}  // namespace corvinade::fit
