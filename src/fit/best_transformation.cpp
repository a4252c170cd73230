// The best transformation that the sums of a point set allow.
#include "fit/best_transformation.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "fit/chain_search.h"
#include "fit/matrix.h"
#include "fit/small_svd.h"

namespace corvinade::fit {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

// Directions whose share of the spread is below this are rounding.
constexpr double kFlat = 1e-14;

CentredTransformation With(const PointMoments& moments, const Mat3& M) {
    CentredTransformation result{M, BestShift(moments, M), 0};
    result.Gain = GainOf(moments, M, result.Shift);
    return result;
}

Mat3 Scaled(Mat3 M, double factor) {
    for (int row = 1; row <= 3; ++row)
        for (int column = 1; column <= 3; ++column) M(row, column) *= factor;
    return M;
}

// The best rotation or reflection, searched from the rotation on that the moments stand at: what the points
// leave open stays as it is there, and so does the rounding of the gain.
Mat3 NearestFromReference(const PointMoments& moments, int sign, double& trace) {
    double none = 0;
    const Mat3 R0 = NearestRotation(moments.M, 1, none);
    const Mat3 H = CrossProducts(moments);
    Mat3 turned;  // H R0'
    for (int row = 1; row <= 3; ++row)
        for (int column = 1; column <= 3; ++column)
            for (int k = 1; k <= 3; ++k) turned(row, column) += H(row, k) * R0(column, k);
    return MatrixProduct(NearestRotation(turned, sign, trace), R0);
}

void TakeRigid(const PointMoments& moments, BestTransformations& best) {
    double trace = 0;
    best.Proper = With(moments, NearestFromReference(moments, 1, trace));
}

void TakeSimilarity(const PointMoments& moments, BestTransformations& best) {
    const Mat3 C = StartProducts(moments, 1);
    const double spread = C(1, 1) + C(2, 2) + C(3, 3);
    if (!(spread > 0)) return;
    double trace = 0;
    const Mat3 R = NearestFromReference(moments, 1, trace);
    best.Proper = With(moments, Scaled(R, trace / spread));
    double mirroredTrace = 0;
    const Mat3 reflection = NearestFromReference(moments, -1, mirroredTrace);
    if (mirroredTrace > trace * (1 + 1e-12))
        best.Mirrored = With(moments, Scaled(reflection, mirroredTrace / spread));
}

Vec3 Image(const Mat3& M, const Mat3& V, int column) {
    Vec3 image;
    for (int row = 1; row <= 3; ++row)
        for (int k = 1; k <= 3; ++k) image(row) += M(row, k) * V(k, column);
    return image;
}

double Dot(const Vec3& a, const Vec3& b) {
    return a(1) * b(1) + a(2) * b(2) + a(3) * b(3);
}

void TakeAffine(const PointMoments& moments, BestTransformations& best) {
    Mat3 M = moments.M;
    Svd3 spread;
    int known = 3;
    for (int axis = 1; axis <= 3; ++axis) {
        const auto& B = moments.B[At(axis)];
        const Svd3 svd = Decompose3(StartProducts(moments, axis));
        int here = 0;
        for (int k = 1; k <= 3; ++k) {
            if (!(svd.s(k) > kFlat * svd.s(1)) || svd.s(k) == 0) continue;
            ++here;
            double along = 0;
            for (int j = 1; j <= 3; ++j)
                along += (moments.m[At(axis)][At(j)] - moments.m[At(axis)][0] * B[0][At(j)] / B[0][0]) *
                         svd.U(j, k);
            for (int j = 1; j <= 3; ++j) M(axis, j) += along / svd.s(k) * svd.U(j, k);
        }
        if (here < known || axis == 1) {
            known = here;
            spread = svd;
        }
    }
    if (known < 3) {
        if (!WeighAlike(moments)) return;
        // What the points leave open stays as it is at the reference where that is a proper transformation.
        constexpr double kUpright = 1e-3;
        double size = 1;
        for (int k = 1; k <= 3; ++k) {
            const Vec3 image = Image(M, spread.U, k);
            size *= std::sqrt(Dot(image, image));
        }
        const bool stays = Determinant3(M) > kUpright * size;
        best.Proper = With(moments, stays ? M : CompletedFlat(M, spread.U, known));
        return;
    }
    const CentredTransformation result = With(moments, M);
    (Determinant3(M) < 0 ? best.Mirrored : best.Proper) = result;
}

ChainChoice ChoiceOf(PlainModel model) {
    ChainChoice choice;
    for (int k = kTraX; k <= kRotZ; ++k) choice.Floats[At(k)] = true;
    if (model == PlainModel::Similarity) choice.Floats[kScaleXYZ] = true;
    if (model == PlainModel::AxisScales)
        for (int k = kScaleX; k <= kScaleZ; ++k) choice.Floats[At(k)] = true;
    return choice;
}

CentredTransformation Centred(const PointMoments& moments, const ChainResult& result) {
    return With(moments, MatrixOf(result.Values));
}

// For a given rotation each scale has its best value, r h / c with r its column, h that of the cross products
// and c the spread along its axis. The gain of those tells which starts are worth the climb.
std::vector<ChainValues> BestAxisScaleStarts(const PointMoments& moments, std::vector<ChainValues> starts) {
    constexpr std::size_t kClimbed = 8;
    const Mat3 H = CrossProducts(moments), C = StartProducts(moments, 1);
    std::vector<std::pair<double, std::size_t>> order;
    for (std::size_t i = 0; i < starts.size(); ++i) {
        double gain = 0;
        for (int j = 1; j <= 3; ++j) {
            double rh = 0;
            for (int row = 1; row <= 3; ++row) rh += starts[i].R(row, j) * H(row, j);
            const double scale = C(j, j) > 0 ? rh / C(j, j) : 1;
            starts[i].Value[At(kScaleX + j - 1)] = scale != 0 ? scale : 1e-6;
            gain += scale * rh;
        }
        order.emplace_back(-gain, i);
    }
    std::stable_sort(order.begin(), order.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<ChainValues> best;
    for (std::size_t k = 0; k < std::min(kClimbed, order.size()); ++k)
        best.push_back(starts[order[k].second]);
    // The nearest rotation itself, with scales that are no mirror.
    ChainValues plain = starts.front();
    for (int j = kScaleX; j <= kScaleZ; ++j) plain.Value[At(j)] = std::fabs(plain.Value[At(j)]);
    best.push_back(plain);
    return best;
}

void TakeFromStarts(const PointMoments& moments, PlainModel model, bool alike, BestTransformations& best) {
    const ChainChoice choice = ChoiceOf(model);
    std::vector<ChainValues> starts = StartsOf(moments, choice);
    best.Starts = static_cast<int>(starts.size());
    if (model == PlainModel::AxisScales && alike) starts = BestAxisScaleStarts(moments, std::move(starts));
    const ChainSearch search = SearchChain(moments, choice, starts);
    if (search.Proper) best.Proper = Centred(moments, *search.Proper);
    if (search.Mirrored) best.Mirrored = Centred(moments, *search.Mirrored);
}

}  // namespace

bool WeighAlike(const PointMoments& moments) {
    for (std::size_t row = 0; row < 4; ++row)
        for (std::size_t column = 0; column < 4; ++column)
            for (const std::size_t axis : {2, 3})
                if (moments.B[axis][row][column] != moments.B[1][row][column]) return false;
    return true;
}

Mat3 CompletedFlat(const Mat3& M, const Mat3& V, int known) {
    std::array<Vec3, 3> images;
    double size = 0;
    for (int k = 0; k < known; ++k) {
        images[At(k)] = Image(M, V, k + 1);
        size = std::max(size, std::sqrt(Dot(images[At(k)], images[At(k)])));
    }
    if (!(size > 0)) size = 1;
    // Columns across the known ones, by a decomposition that completes what is missing.
    Mat3 known3;
    for (int k = 0; k < known; ++k)
        for (int row = 1; row <= 3; ++row) known3(row, k + 1) = images[At(k)](row);
    const Svd3 svd = Decompose3(known3);
    for (int k = known; k < 3; ++k)
        images[At(k)] = {size * svd.U(1, k + 1), size * svd.U(2, k + 1), size * svd.U(3, k + 1)};
    Mat3 result;
    const auto put = [&] {
        for (int row = 1; row <= 3; ++row)
            for (int column = 1; column <= 3; ++column) {
                result(row, column) = 0;
                for (int k = 0; k < 3; ++k) result(row, column) += images[At(k)](row) * V(column, k + 1);
            }
    };
    put();
    if (Determinant3(result) < 0) {
        images[2] = {-images[2](1), -images[2](2), -images[2](3)};
        put();
    }
    return result;
}

RowChange ChangeOf(const PointMoments& moments, const Mat3& M, const Vec3& Shift, int axis) {
    return {Shift(axis) - moments.Shift(axis), M(axis, 1) - moments.M(axis, 1),
            M(axis, 2) - moments.M(axis, 2), M(axis, 3) - moments.M(axis, 3)};
}

Mat3 CrossProducts(const PointMoments& moments) {
    Mat3 H;
    for (int axis = 1; axis <= 3; ++axis) {
        const auto& B = moments.B[At(axis)];
        if (!(B[0][0] > 0)) continue;
        const Mat3 C = StartProducts(moments, axis);
        for (int j = 1; j <= 3; ++j) {
            // Targets are l + Shift + M p.
            H(axis, j) = moments.m[At(axis)][At(j)] - moments.m[At(axis)][0] * B[0][At(j)] / B[0][0];
            for (int k = 1; k <= 3; ++k) H(axis, j) += moments.M(axis, k) * C(k, j);
        }
    }
    return H;
}

Mat3 StartProducts(const PointMoments& moments, int axis) {
    const auto& B = moments.B[At(axis)];
    Mat3 C;
    if (!(B[0][0] > 0)) return C;
    for (int i = 1; i <= 3; ++i)
        for (int j = 1; j <= 3; ++j) C(i, j) = B[At(i)][At(j)] - B[0][At(i)] * B[0][At(j)] / B[0][0];
    return C;
}

double GainOf(const PointMoments& moments, const Mat3& M, const Vec3& Shift) {
    double gain = 0;
    for (int axis = 1; axis <= 3; ++axis) {
        const auto change = ChangeOf(moments, M, Shift, axis);
        const auto& B = moments.B[At(axis)];
        for (std::size_t i = 0; i < 4; ++i) {
            double Bd = 0;
            for (std::size_t j = 0; j < 4; ++j) Bd += B[i][j] * change[j];
            gain += change[i] * (2 * moments.m[At(axis)][i] - Bd);
        }
    }
    return gain;
}

double RoundingOfGain(const PointMoments& moments, const Mat3& M, const Vec3& Shift) {
    constexpr double kEpsilon = 2.220446049250313e-16;
    double size = 0;
    for (int axis = 1; axis <= 3; ++axis) {
        const auto change = ChangeOf(moments, M, Shift, axis);
        const auto& B = moments.B[At(axis)];
        for (std::size_t i = 0; i < 4; ++i) {
            double Bd = 0;
            for (std::size_t j = 0; j < 4; ++j) Bd += std::fabs(B[i][j] * change[j]);
            size += std::fabs(change[i]) * (2 * std::fabs(moments.m[At(axis)][i]) + Bd);
        }
    }
    return 64 * kEpsilon * size;
}

Vec3 BestShift(const PointMoments& moments, const Mat3& M) {
    Vec3 shift = moments.Shift;
    for (int axis = 1; axis <= 3; ++axis) {
        const auto& B = moments.B[At(axis)];
        if (!(B[0][0] > 0)) continue;
        double sum = moments.m[At(axis)][0];
        for (int j = 1; j <= 3; ++j) sum -= B[0][At(j)] * (M(axis, j) - moments.M(axis, j));
        shift(axis) += sum / B[0][0];
    }
    return shift;
}

BestTransformations BestOfModel(const PointMoments& moments, PlainModel model) {
    BestTransformations best;
    for (int axis = 1; axis <= 3; ++axis)
        if (!(moments.B[At(axis)][0][0] > 0)) return best;
    const bool alike = WeighAlike(moments);
    best.ClosedForm = model == PlainModel::Affine || (model != PlainModel::AxisScales && alike);
    if (!best.ClosedForm) {
        TakeFromStarts(moments, model, alike, best);
    } else if (model == PlainModel::Rigid) {
        TakeRigid(moments, best);
    } else if (model == PlainModel::Similarity) {
        TakeSimilarity(moments, best);
    } else {
        TakeAffine(moments, best);
    }
    return best;
}

namespace {

double SizeOfColumn(const Mat3& M, int column) {
    return std::hypot(M(1, column), M(2, column), M(3, column));
}

// The columns as unit vectors, those without length completed so that all three are a rotation.
Mat3 UnitColumns(const Mat3& M) {
    Mat3 R;
    std::array<bool, 4> known{};
    for (int k = 1; k <= 3; ++k) {
        const double size = SizeOfColumn(M, k);
        known[At(k)] = size > 1e-300;
        if (known[At(k)])
            for (int row = 1; row <= 3; ++row) R(row, k) = M(row, k) / size;
    }
    if (known[1] && known[2] && known[3]) return R;
    double trace = 0;
    return NearestRotation(R, 1, trace);
}

// A unit vector across the columns before the second or third, so that all are a rotation in the end.
void CompleteColumn(Mat3& R, int column) {
    Mat3 before;
    for (int k = 1; k < column; ++k)
        for (int row = 1; row <= 3; ++row) before(row, k) = R(row, k);
    const Svd3 svd = Decompose3(before);
    for (int row = 1; row <= 3; ++row) R(row, column) = svd.U(row, column);
    if (column == 3 && Determinant3(R) < 0)
        for (int row = 1; row <= 3; ++row) R(row, 3) = -R(row, 3);
}

}  // namespace

ChainValues ValuesOf(const Mat3& M, PlainModel model) {
    ChainValues values;
    Mat3 proper = M;
    double handed = Determinant3(M) < 0 ? -1 : 1;
    switch (model) {
        case PlainModel::Rigid:
            values.R = M;
            break;
        case PlainModel::Similarity: {
            double squares = 0;
            for (int k = 1; k <= 3; ++k) squares += SizeOfColumn(M, k) * SizeOfColumn(M, k);
            const double scale = handed * std::sqrt(squares / 3);
            for (int k = kScaleX; k <= kScaleXYZ; ++k) values.Value[At(k)] = scale;
            if (scale != 0) values.R = Scaled(M, 1 / scale);
            break;
        }
        case PlainModel::AxisScales:
            for (int row = 1; row <= 3; ++row) proper(row, 3) *= handed;
            for (int k = 1; k <= 3; ++k) values.Value[At(kScaleX + k - 1)] = SizeOfColumn(proper, k);
            values.R = UnitColumns(proper);
            values.Value[kScaleZ] *= handed;
            break;
        case PlainModel::Affine: {
            // M = R U with U = K S upper triangular: R by Gram and Schmidt, twice for its last digits.
            constexpr double kClosed = 1e-10;  // what is left of a column within those before is rounding
            Mat3 R = UnitColumns(proper);
            for (int pass = 0; pass < 2; ++pass)
                for (int k = 1; k <= 3; ++k) {
                    for (int j = 1; j < k; ++j) {
                        double share = 0;
                        for (int row = 1; row <= 3; ++row) share += R(row, j) * R(row, k);
                        for (int row = 1; row <= 3; ++row) R(row, k) -= share * R(row, j);
                    }
                    const double size = SizeOfColumn(R, k);
                    for (int row = 1; row <= 3 && size > 0; ++row) R(row, k) /= size;
                    if (pass == 0 && !(size > kClosed)) CompleteColumn(R, k);
                }
            // The rotation tells the mirror: the determinant of M cancels where M carries one direction far.
            handed = Determinant3(R) < 0 ? -1 : 1;
            for (int row = 1; row <= 3; ++row) {
                R(row, 3) *= handed;
                proper(row, 3) *= handed;
            }
            Mat3 U;
            for (int j = 1; j <= 3; ++j)
                for (int k = j; k <= 3; ++k)
                    for (int row = 1; row <= 3; ++row) U(j, k) += R(row, j) * proper(row, k);
            values.R = R;
            for (int k = 1; k <= 3; ++k) values.Value[At(kScaleX + k - 1)] = SizeOfColumn(proper, k);
            values.Value[kAngleXY] = std::atan2(U(1, 2), U(2, 2));
            values.Value[kAngleZtoXY] = std::atan2(std::hypot(U(1, 3), U(2, 3)), U(3, 3));
            values.Value[kAzimuth] = std::atan2(U(2, 3), U(1, 3));
            values.Value[kScaleZ] *= handed;
            break;
        }
    }
    const Vec3 angles = AnglesOf(values.R);
    for (int k = 1; k <= 3; ++k) values.Value[At(kRotX + k - 1)] = angles(k);
    return values;
}

}  // namespace corvinade::fit
