// The residuals of a fit made linear, v + A y, as rows that are never stored: along one axis a row is a
// linear form of [1 p], p the start point. What the exact norms search their optimum in.
#pragma once

#include <array>
#include <vector>

#include "fit/design.h"
#include "fit/gathered_points.h"

namespace corvinade::fit {

inline constexpr int kMostLinearColumns = 13;  // unknowns of the plain model, one scale beside three

using PointForm = std::array<double, 4>;  // of [1 x y z]

// Rows are numbered axis by axis: row = axis Padded + point, axis 0 to 2, point from 0.
struct LinearRows {
    const GatheredPoints* Points = nullptr;
    int Columns = 0;
    std::array<std::array<PointForm, kMostLinearColumns>, 3> Forms{};  // by axis and column
    std::vector<double> v;                                             // residual of each row, mm
    std::vector<unsigned char> InUse;                                  // 0 or 1
    int Used = 0;                                                      // rows in use

    int Count() const { return static_cast<int>(v.size()); }
    // The row's entries.
    void Row(int row, double* a) const;
    // The product of all rows with y.
    void Times(const double* y, std::vector<double>& result) const;
    // v + A y, for the rows out of use as well.
    void Move(const double* y);
    // The rows of other unknowns z, y = Z z; Z by columns of length Columns.
    void TakeColumns(const std::vector<std::vector<double>>& Z);
    // The sum of the rows in use, each with the sign of its residual.
    void SumOfSigns(double* g) const;
};

// The rows of a model at a linearisation, whose residuals are those of the present parameters.
//   T  out: by columns, the centred unknowns 1 to u (places 0 to u - 1) of y: x = T y. The columns of the
//      rows are orthonormal over the rows in use.
// False when the points do not tell all unknowns apart. T then has fewer than u columns, as it has for an
// unknown that moves nothing at this place, which is no matter of the points.
bool MakeLinearRows(const GatheredPoints& points, const FitModel& model, const Linearisation& at,
                    LinearRows& rows, std::vector<std::vector<double>>& T);

// The second half of it, for rows whose forms and residuals are there. The searches and their bounds ask
// for orthonormal columns.
bool MakeOrthonormal(LinearRows& rows, std::vector<std::vector<double>>& T);

double LargestOf(const LinearRows& rows);  // of |v| in use
double SumOf(const LinearRows& rows);      // of |v| in use

// Solves A x = b of n unknowns in place; A row by row. False when A is singular.
bool SolveSquare(std::vector<double> A, int n, double* b);
// The transposed system, likewise.
bool SolveTransposed(const std::vector<double>& A, int n, double* b);

}  // namespace corvinade::fit
