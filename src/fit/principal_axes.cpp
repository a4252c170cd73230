// The axes of a set of points.
#include "fit/principal_axes.h"

#include "fit/matrix.h"
#include "fit/small_svd.h"

namespace corvinade::fit {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

// A rotation whose columns turn positive products onto their axes.
Mat3 Turning(const Mat3& products) {
    Mat3 V = DecomposeToLastDigits(products).V;
    if (Determinant3(V) < 0)
        for (int row = 1; row <= 3; ++row) V(row, 3) = -V(row, 3);
    return V;
}

}  // namespace

PrincipalAxes AxesOf(const std::array<LaneArray, 3>& set, const std::vector<int>& pairs) {
    PrincipalAxes result;
    for (int k = 1; k <= 3; ++k) result.Axes(k, k) = 1;
    const auto n = static_cast<double>(pairs.size());
    for (const int i : pairs)
        for (int k = 1; k <= 3; ++k) result.Middle(k) += set[At(k - 1)][At(i)] / n;
    // About the axes of the coordinates first; then about those found, in which the small sums are exact.
    constexpr int kPasses = 3;
    for (int pass = 0; pass < kPasses; ++pass) {
        Mat3 products;
        for (const int i : pairs) {
            Vec3 p;
            for (int k = 1; k <= 3; ++k)
                for (int j = 1; j <= 3; ++j)
                    p(k) += result.Axes(j, k) * (set[At(j - 1)][At(i)] - result.Middle(j));
            for (int j = 1; j <= 3; ++j)
                for (int k = 1; k <= 3; ++k) products(j, k) += p(j) * p(k);
        }
        for (int k = 1; k <= 3; ++k) result.Squares(k) = products(k, k);
        if (pass + 1 < kPasses) result.Axes = MatrixProduct(result.Axes, Turning(products));
    }
    return result;
}

}  // namespace corvinade::fit
