// The search among candidates of rotation and shear for those that make up a given matrix.
//
// A column of R K S depends on few of the parameters: the first on the rotation, the second on xy too, the
// third on the azimuth and zt. Each column is therefore tried once and not for every combination. A single
// element that is off by the limit already rejects all combinations it stands in, since a sum of numbers
// that are not negative is never below any of them, rounded or not. What is left is compared in full, so
// that the accepted combinations and their sums are those of the plain search.
#include "fit/combination_search.h"

#include <cmath>

#include "fit/chain.h"
#include "fit/matrix.h"
#include "fit/require.h"

namespace corvinade::fit {

namespace {

constexpr double kAccepted = 1e-5;
constexpr double kSameColumn = 1e-4;  // rad
constexpr int kMostCandidates = 32;

std::size_t Count(const Column& list) {
    return list.size() - 1;
}

// Column j of R K S for column j of K. The same operations in the same order as MatrixMultiply has them,
// which leaves out factors that are exactly 0.
Vec3 ColumnOfProduct(const Mat3& R, const Vec3& shear, double scale) {
    Vec3 column;
    for (int i = 1; i <= 3; ++i) {
        double sum = 0;
        for (int l = 1; l <= 3; ++l)
            if (R(i, l) != 0 && shear(l) != 0) sum += R(i, l) * shear(l);
        column(i) = sum != 0 && scale != 0 ? sum * scale : 0;
    }
    return column;
}

bool MayBeColumn(const Vec3& column, const Mat3& W, int j) {
    for (int i = 1; i <= 3; ++i)
        if (!(std::fabs(column(i) - W(i, j)) < kAccepted)) return false;
    return true;
}

// A candidate, or a pair of azimuth and zt, with its column.
struct Tried {
    std::size_t First, Second;
    Vec3 Of;
};

// For each candidate of a list those that are no different from it, itself included.
std::vector<std::vector<std::size_t>> Alike(const Column& list) {
    std::vector<std::vector<std::size_t>> alike(list.size());
    for (std::size_t i = 1; i < list.size(); ++i)
        for (std::size_t k = 1; k < list.size(); ++k)
            if (!(std::fabs(list[i] - list[k]) > kSameColumn)) alike[i].push_back(k);
    return alike;
}

// Which combinations a row that was kept stands for. Rows that are kept differ by more than the limit
// from each other, so a combination is marked 64 times at most, however the candidates lie. The seventh
// column needs no look: sums of accepted rows differ by less than 1e-5.
class Thinning {
public:
    explicit Thinning(const Candidates& c)
        : lists_{&c.RotX, &c.RotY, &c.RotZ, &c.AngleXY, &c.Azimuth, &c.AngleZtoXY} {
        std::size_t combinations = 1;
        for (std::size_t k = 0; k < 6; ++k) {
            alike_[k] = Alike(*lists_[k]);
            combinations *= Count(*lists_[k]);
        }
        covered_.assign(combinations, false);
    }

    using Place = std::array<std::size_t, 6>;  // a candidate of each list

    // True when the combination is to be kept; all that are no different from it then are not.
    bool Keep(const Place& place) {
        if (covered_[Index(place)]) return false;
        Mark(place, 0, 0);
        return true;
    }

private:
    std::size_t Index(const Place& place) const {
        std::size_t index = 0;
        for (std::size_t k = 0; k < 6; ++k) index = index * Count(*lists_[k]) + place[k] - 1;
        return index;
    }
    void Mark(const Place& place, std::size_t k, std::size_t index) {
        if (k == 6) {
            covered_[index] = true;
            return;
        }
        for (const std::size_t other : alike_[k][place[k]])
            Mark(place, k + 1, index * Count(*lists_[k]) + other - 1);
    }

    std::array<const Column*, 6> lists_;
    std::array<std::vector<std::vector<std::size_t>>, 6> alike_;
    std::vector<bool> covered_;
};

using FoundRow = std::array<double, 7>;

class Search {
public:
    Search(const Mat3& W, const Candidates& c) : W_(W), c_(c), thinning_(c) {
        Mat3 K;
        for (std::size_t xy = 1; xy < c.AngleXY.size(); ++xy) {
            BuildShearMatrix(c.AngleXY[xy], 0, 0, K);
            second_.push_back({xy, 0, {K(1, 2), K(2, 2), K(3, 2)}});
        }
        for (std::size_t az = 1; az < c.Azimuth.size(); ++az)
            for (std::size_t zt = 1; zt < c.AngleZtoXY.size(); ++zt) {
                BuildShearMatrix(0, c.Azimuth[az], c.AngleZtoXY[zt], K);
                third_.push_back({az, zt, {K(1, 3), K(2, 3), K(3, 3)}});
            }
    }

    void TryRotation(std::size_t x, std::size_t y, std::size_t z) {
        Mat3 R, V;
        RotMatrixXYZ(c_.RotX[x], c_.RotY[y], c_.RotZ[z], R);
        const Vec3 first = ColumnOfProduct(R, {1, 0, 0}, c_.Scale(1));
        if (!MayBeColumn(first, W_, 1)) return;
        SetColumn(V, 1, first);
        const std::vector<Tried> left = Passing(R, second_, 2);
        if (left.empty()) return;
        const std::vector<Tried> right = Passing(R, third_, 3);
        for (const Tried& xy : left) {
            SetColumn(V, 2, xy.Of);
            for (const Tried& pair : right) {
                SetColumn(V, 3, pair.Of);
                double sum = 0;
                bool equal = false;
                MatrixCompare(V, W_, 1e-10, sum, equal);
                if (sum < kAccepted && thinning_.Keep({x, y, z, xy.First, pair.First, pair.Second}))
                    Found.push_back({c_.RotX[x], c_.RotY[y], c_.RotZ[z], c_.AngleXY[xy.First],
                                     c_.Azimuth[pair.First], c_.AngleZtoXY[pair.Second], sum});
            }
        }
    }

    std::vector<FoundRow> Found;

private:
    static void SetColumn(Mat3& V, int j, const Vec3& column) {
        for (int i = 1; i <= 3; ++i) V(i, j) = column(i);
    }
    std::vector<Tried> Passing(const Mat3& R, const std::vector<Tried>& shears, int j) const {
        std::vector<Tried> passing;
        for (const Tried& shear : shears) {
            const Vec3 column = ColumnOfProduct(R, shear.Of, c_.Scale(j));
            if (MayBeColumn(column, W_, j)) passing.push_back({shear.First, shear.Second, column});
        }
        return passing;
    }

    const Mat3& W_;
    const Candidates& c_;
    Thinning thinning_;
    std::vector<Tried> second_, third_;  // with the columns of K
};

}  // namespace

void SearchCombinations(const Mat3& W, Candidates candidates, Matrix& rows) {
    for (Column* list : {&candidates.RotX, &candidates.RotY, &candidates.RotZ, &candidates.AngleXY,
                         &candidates.Azimuth, &candidates.AngleZtoXY}) {
        Require(UpperBound(*list) >= 0 && UpperBound(*list) <= kMostCandidates);
        std::erase_if(*list, [](double angle) { return !std::isfinite(angle); });
    }
    const Candidates& c = candidates;
    Require(Count(c.RotX) * Count(c.RotY) * Count(c.RotZ) <= 16);
    Search search(W, c);
    for (std::size_t x = 1; x < c.RotX.size(); ++x)
        for (std::size_t y = 1; y < c.RotY.size(); ++y)
            for (std::size_t z = 1; z < c.RotZ.size(); ++z) search.TryRotation(x, y, z);
    rows = Matrix();
    if (search.Found.empty()) return;
    rows = Matrix(static_cast<int>(search.Found.size()), 7);
    for (int row = 1; row <= rows.Rows; ++row)
        for (int k = 1; k <= 7; ++k)
            rows(row, k) = search.Found[static_cast<std::size_t>(row - 1)][static_cast<std::size_t>(k - 1)];
}

}  // namespace corvinade::fit
