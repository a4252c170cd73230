// Places to look for an exact norm's optimum from.
#include "fit/exact_starts.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <tuple>

#include "fit/best_transformation.h"
#include "fit/chain_search.h"
#include "fit/matrix.h"
#include "fit/moments.h"
#include "fit/small_svd.h"

namespace corvinade::fit {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

bool Floats(const FitModel& model, int parameter) {
    return model.UnknownOf[At(parameter)] != 0;
}

bool MovesFreely(const FitModel& model) {
    for (int k = kTraX; k <= kRotZ; ++k)
        if (!Floats(model, k)) return false;
    return true;
}

bool Scales(const FitModel& model) {
    bool any = false;
    for (int k = kScaleX; k <= kScaleXYZ; ++k) any = any || Floats(model, k);
    return any;
}

// Parameters with those that float taken from a transformation; held ones stay.
Parameters ParametersAt(Parameters parameters, const FitModel& model, const GatheredPoints& points,
                        const CentredTransformation& found, PlainModel plain) {
    constexpr double kSomeLean = 1e-3;  // rad; of none the azimuth would mean nothing
    const ChainValues values = ValuesOf(found.M, plain);
    for (int k = kTraX; k <= kAngleZtoXY; ++k) {
        if (!Floats(model, k)) continue;
        double& value = parameters[At(k)];
        value = values.Value[At(k)];
        if (k == kAngleZtoXY) value = kSomeLean;
        if (k <= kTraZ) {
            const int axis = k - kTraX + 1;
            value = found.Shift(axis) + points.TargetCentre(axis);
            for (int j = 1; j <= 3; ++j) value -= found.M(axis, j) * points.StartCentre(j);
        }
        if (k == kScaleXYZ) parameters[kScaleX] = parameters[kScaleY] = parameters[kScaleZ] = value;
    }
    return parameters;
}

Mat3 TimesScalar(Mat3 M, double factor) {
    for (int row = 1; row <= 3; ++row)
        for (int column = 1; column <= 3; ++column) M(row, column) *= factor;
    return M;
}

// Both sides of the mirror for the points in use by weights, for a similarity or a movement.
class Solutions {
public:
    Solutions(const FitRun& run, const FitModel& model, const GatheredPoints& points,
              std::vector<Parameters>& starts)
        : held_(run.Now), chain_(run.Chain), model_(model), points_(points), starts_(starts) {}

    void OfWeights(const Column& P, bool turned) {
        SetWeights(P, points_);
        PointMoments moments;
        const Linearisation at = Linearise(model_, held_, points_, chain_);
        SumMoments(points_, at, moments);
        const bool scales = Scales(model_);
        const Mat3 H = CrossProducts(moments);
        double spread = 0;
        for (int axis = 1; axis <= 3; ++axis) {
            const Mat3 C = StartProducts(moments, axis);
            spread += (C(1, 1) + C(2, 2) + C(3, 3)) / 3;
        }
        if (!(spread > 0)) return;
        for (const int sign : {1, -1}) {
            if (sign < 0 && !scales) break;
            double trace = 0;
            const Mat3 R = NearestRotation(H, sign, trace);
            // A start need not be the best size; that of the other side will do where this one has none.
            const double scale = scales && trace > 0 ? trace / spread : 1;
            Take(moments, TimesScalar(R, scale));
            if (!turned) continue;
            for (const Mat3& turn : CubeRotations())
                Take(moments, TimesScalar(MatrixProduct(R, turn), scale));
        }
    }

private:
    void Take(const PointMoments& moments, const Mat3& M) {
        const PlainModel plain = Scales(model_) ? PlainModel::Similarity : PlainModel::Rigid;
        starts_.push_back(ParametersAt(held_, model_, points_, {M, BestShift(moments, M), 0}, plain));
    }

    const Parameters held_;
    ChainRecord chain_;
    const FitModel& model_;
    GatheredPoints points_;
    std::vector<Parameters>& starts_;
};

// Points whose three coordinates are in use, by where they are and not by where they stand in the list.
std::vector<int> WholePoints(const NormRun& fit) {
    std::vector<int> whole;
    for (int k = 0; k < fit.Points.Count; ++k)
        if (fit.P[At(3 * k + 1)] * fit.P[At(3 * k + 2)] * fit.P[At(3 * k + 3)] != 0) whole.push_back(k);
    std::sort(whole.begin(), whole.end(), [&fit](int a, int b) {
        const auto key = [&fit](int k) {
            const auto &p = fit.Points.Start, &q = fit.Points.Target;
            const std::size_t i = At(k);
            return std::tuple(p[0][i], p[1][i], p[2][i], q[0][i], q[1][i], q[2][i]);
        };
        return key(a) < key(b);
    });
    return whole;
}

}  // namespace

std::vector<Parameters> StartsByPoints(const NormRun& fit, const ExactPlace& place, int most) {
    std::vector<Parameters> starts;
    const std::vector<int> whole = WholePoints(fit);
    if (most < 1 || !MovesFreely(place.Model) || whole.size() < 3) return starts;
    Solutions solutions(fit.Run, place.Model, fit.Points, starts);
    Column all(At(fit.Rows()) + 1);
    for (int i = 1; i <= fit.Rows(); ++i) all[At(i)] = fit.P[At(i)] != 0 ? 1 : 0;
    solutions.OfWeights(all, true);
    const auto triple = [&](int a, int b, int c) {
        Column P(all.size());
        for (const int k : {a, b, c}) P[At(3 * k + 1)] = P[At(3 * k + 2)] = P[At(3 * k + 3)] = 1;
        solutions.OfWeights(P, false);
    };
    const int n = static_cast<int>(whole.size()), left = most - static_cast<int>(starts.size());
    const int each = Scales(place.Model) ? 2 : 1;
    if (n <= 50 && each * (n * (n - 1) * (n - 2) / 6) <= left) {
        for (int a = 0; a < n; ++a)
            for (int b = a + 1; b < n; ++b)
                for (int c = b + 1; c < n; ++c) triple(whole[At(a)], whole[At(b)], whole[At(c)]);
    } else {
        std::uint64_t seed = 1;
        const auto any = [&] {
            seed = seed * 6364136223846793005ULL + 1442695040888963407ULL;
            return whole[(seed >> 33U) % whole.size()];
        };
        for (int trial = 0; trial < left / each; ++trial) {
            const int a = any(), b = any(), c = any();
            if (a != b && b != c && a != c) triple(a, b, c);
        }
    }
    if (static_cast<int>(starts.size()) > most) starts.resize(At(most));
    return starts;
}

}  // namespace corvinade::fit
