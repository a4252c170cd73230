// The axes that the floating angles of a result turn about.
#include "fit/turn_axes.h"

#include <algorithm>
#include <cmath>

#include "fit/chain.h"
#include "fit/small_svd.h"
#include "fit/vector.h"

namespace corvinade::fit {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

double Dot(const Vec3& a, const Vec3& b) {
    return a(1) * b(1) + a(2) * b(2) + a(3) * b(3);
}

}  // namespace

TurnAxes::TurnAxes(const FitModel& model, const fit::Parameters& result) {
    Mat3 afterZ, afterYZ;  // R = Rz(-c) Ry(-b) Rx(-a)
    RotMatrixXYZ(0, 0, result[kRotZ], afterZ);
    RotMatrixXYZ(0, result[kRotY], result[kRotZ], afterYZ);
    const std::array<Vec3, 3> axes = {Vec3(-afterYZ(1, 1), -afterYZ(2, 1), -afterYZ(3, 1)),
                                      Vec3(-afterZ(1, 2), -afterZ(2, 2), -afterZ(3, 2)), Vec3(0, 0, -1)};
    for (int k = kRotX; k <= kRotZ; ++k) {
        if (model.UnknownOf[At(k)] == 0) continue;
        Parameters.push_back(k);
        Of.push_back(axes[At(k - kRotX)]);
    }
}

std::vector<Vec3> TurnAxes::Span() const {
    if (Of.size() == 3) return {Vec3(1, 0, 0), Vec3(0, 1, 0), Vec3(0, 0, 1)};
    std::vector<Vec3> span;
    constexpr double kSame = 1e-6;
    for (Vec3 axis : Of) {
        for (const Vec3& before : span) {
            const double share = Dot(axis, before);
            for (int k = 1; k <= 3; ++k) axis(k) -= share * before(k);
        }
        if (std::sqrt(Dot(axis, axis)) < kSame) continue;
        VecNormalize(axis, axis);
        span.push_back(axis);
    }
    return span;
}

std::array<bool, kParameterEnd> TurnAxes::Marked(const Vec3& w, double least) const {
    std::array<bool, kParameterEnd> marked{};
    const int m = static_cast<int>(Of.size());
    std::vector<double> A(At(3 * m));
    for (int axis = 1; axis <= 3; ++axis)
        for (int k = 0; k < m; ++k) A[At((axis - 1) * m + k)] = Of[At(k)](axis);
    const SmallSvd svd = DecomposeSmall(A, 3, m);
    std::vector<double> shares(At(m));
    Vec3 reached;
    constexpr double kLocked = 1e-4, kReached = 0.1;
    for (int j = 0; j < m; ++j) {
        if (!(svd.s[At(j)] > kLocked)) continue;
        double along = 0;
        for (int axis = 1; axis <= 3; ++axis) along += svd.U[At((axis - 1) * m + j)] * w(axis);
        for (int axis = 1; axis <= 3; ++axis) reached(axis) += svd.U[At((axis - 1) * m + j)] * along;
        for (int k = 0; k < m; ++k) shares[At(k)] += svd.V[At(k * m + j)] * along / svd.s[At(j)];
    }
    Vec3 missing;
    VecSub(w, reached, missing);
    double largest = 0;
    for (const double share : shares) largest = std::max(largest, std::fabs(share));
    for (int k = 0; k < m; ++k)
        marked[At(Parameters[At(k)])] =
            std::sqrt(Dot(missing, missing)) > kReached || std::fabs(shares[At(k)]) > least * largest;
    return marked;
}

void AddAxes(const std::vector<Vec3>& span, const Mat3& form, std::vector<Vec3>& axes) {
    const int m = static_cast<int>(span.size());
    std::vector<double> within(At(m * m));
    for (int r = 0; r < m; ++r)
        for (int c = 0; c < m; ++c)
            for (int j = 1; j <= 3; ++j)
                for (int k = 1; k <= 3; ++k)
                    within[At(r * m + c)] += span[At(r)](j) * form(j, k) * span[At(c)](k);
    const SmallSvd svd = DecomposeSmall(within, m, m);
    for (int k = 0; k < m; ++k) {
        Vec3 axis;
        for (int r = 0; r < m; ++r)
            for (int i = 1; i <= 3; ++i) axis(i) += svd.V[At(r * m + k)] * span[At(r)](i);
        axes.push_back(axis);
    }
}

}  // namespace corvinade::fit
