// What the distances of a network leave open.
#include "fit/bundle_open.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>
#include <vector>

namespace corvinade::fit {

namespace {

constexpr double kNothingLeft = 1e-11;  // of the observations of a direction; rounding leaves about 1e-15
constexpr double kPartOfMove = 1e-6;    // what a coordinate must share in an open move to be open

constexpr std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

using Block = std::array<std::array<double, 3>, 3>;
using Triple = std::array<double, 3>;

Block Product(const Block& a, const Block& b) {
    Block c{};
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j)
            for (std::size_t k = 0; k < 3; ++k) c[i][j] += a[i][k] * b[k][j];
    return c;
}

// Eigenvalues and, in the columns of the second, eigenvectors of a symmetric block by Jacobi's turns.
std::pair<Triple, Block> Eigen(Block a) {
    Block v = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
    for (int sweep = 0; sweep < 30; ++sweep)
        for (const auto& [p, q] : {std::pair<std::size_t, std::size_t>{0, 1}, {0, 2}, {1, 2}}) {
            if (a[p][q] == 0) continue;
            const double angle = std::atan2(2 * a[p][q], a[p][p] - a[q][q]) / 2;
            const double c = std::cos(angle), s = std::sin(angle);
            const auto turn = [c, s](double& x, double& y) {
                const double first = c * x + s * y;
                y = c * y - s * x;
                x = first;
            };
            for (std::size_t k = 0; k < 3; ++k) turn(a[k][p], a[k][q]);
            for (std::size_t k = 0; k < 3; ++k) turn(a[p][k], a[q][k]);
            for (std::size_t k = 0; k < 3; ++k) turn(v[k][p], v[k][q]);
        }
    return {{a[0][0], a[1][1], a[2][2]}, v};
}

// An object point: what the stations say of it.
struct ObjectBlock {
    std::vector<std::pair<int, Block>> Stations;  // from 1, with the sums of direction by direction
    Block Inverse{};                              // pseudo-inverse of all their sums
    std::vector<Triple> OpenMoves;                // of length 1, that no distance feels
};

std::vector<ObjectBlock> ObjectBlocks(const BundleWork& work) {
    std::vector<ObjectBlock> objects(work.UsedObject.size());
    for (std::size_t k = 1; k < work.A.size(); ++k) {
        const DistanceRow& row = work.A[k];
        if (row.Station == 0) continue;
        auto& stations = objects[At(row.Object)].Stations;
        auto found = std::find_if(stations.begin(), stations.end(),
                                  [&row](const auto& entry) { return entry.first == row.Station; });
        if (found == stations.end()) found = stations.insert(found, {row.Station, Block{}});
        for (std::size_t i = 0; i < 3; ++i)
            for (std::size_t j = 0; j < 3; ++j) found->second[i][j] += row.Direction[i] * row.Direction[j];
    }
    for (ObjectBlock& object : objects) {
        Block sum{};
        for (const auto& [station, block] : object.Stations)
            for (std::size_t i = 0; i < 3; ++i)
                for (std::size_t j = 0; j < 3; ++j) sum[i][j] += block[i][j];
        const auto [values, vectors] = Eigen(sum);
        const double largest = *std::max_element(values.begin(), values.end());
        for (std::size_t e = 0; e < 3; ++e) {
            const Triple vector = {vectors[0][e], vectors[1][e], vectors[2][e]};
            if (!(values[e] > kNothingLeft * largest)) {
                object.OpenMoves.push_back(vector);
                continue;
            }
            for (std::size_t i = 0; i < 3; ++i)
                for (std::size_t j = 0; j < 3; ++j) object.Inverse[i][j] += vector[i] * vector[j] / values[e];
        }
    }
    return objects;
}

// The stations' free coordinates, whose unknowns are the first ones, with the object points taken out.
class StationPart {
public:
    StationPart(int stations, const BundleWork& work, const std::vector<ObjectBlock>& objects)
        : work_(work), order_{0}, scale_{0} {
        for (int column = 1; column <= 3 * stations; ++column)
            size_ = std::max(size_, work.Unknown[At(column)]);
        S_ = Matrix(size_, size_);
        std::vector<double> own(At(size_) + 1);
        for (const ObjectBlock& object : objects)
            for (const auto& [s, block] : object.Stations) {
                Add(s, s, block, 1);
                for (int i = 1; i <= 3; ++i)
                    if (const int k = Unknown(s, i); k != 0) own[At(k)] += block[At(i - 1)][At(i - 1)];
                const Block left = Product(block, object.Inverse);
                for (const auto& [t, other] : object.Stations) Add(s, t, Product(left, other), -1);
            }
        for (int k = 1; k <= size_; ++k) {
            order_.push_back(k);
            scale_.push_back(own[At(k)] > 0 ? 1 / std::sqrt(own[At(k)]) : 0);
        }
        for (int i = 1; i <= size_; ++i)
            for (int j = 1; j <= size_; ++j) S_(i, j) *= scale_[At(i)] * scale_[At(j)];
    }

    // Number of a station's coordinate among the unknowns; 0 for one that is held.
    int Unknown(int station, int axis) const { return work_.Unknown[At(3 * (station - 1) + axis)]; }
    // So that a step of the search takes a while.
    bool IsLarge() const { return size_ > 300; }

    // S = L L' on its first `Rank` pivots; L takes the place of S below the diagonal.
    void Decompose(const std::function<void()>& goOn) {
        for (rank_ = 0; rank_ < size_; ++rank_) {
            if (IsLarge()) goOn();
            const int k = rank_ + 1;
            int pivot = k;
            for (int i = k + 1; i <= size_; ++i)
                if (S_(i, i) > S_(pivot, pivot)) pivot = i;
            if (!(S_(pivot, pivot) > kNothingLeft)) return;
            Swap(k, pivot);
            const double root = std::sqrt(S_(k, k));
            S_(k, k) = root;
            for (int i = k + 1; i <= size_; ++i) S_(i, k) /= root;
            for (int i = k + 1; i <= size_; ++i) {
                const double factor = S_(i, k);
                for (int j = k + 1; j <= i; ++j) S_(i, j) -= factor * S_(j, k);
            }
        }
    }

    // The moves of the free coordinates, by unknown, that no distance feels; the largest part of each is 1.
    std::vector<Column> OpenMoves() const {
        std::vector<Column> moves;
        for (int open = rank_ + 1; open <= size_; ++open) {
            Column z(At(size_) + 1);
            for (int i = rank_; i >= 1; --i) {
                double sum = -S_(open, i);
                for (int j = i + 1; j <= rank_; ++j) sum -= S_(j, i) * z[At(j)];
                z[At(i)] = sum / S_(i, i);
            }
            z[At(open)] = 1;
            Column move(z.size());
            double largest = 0;
            for (int i = 1; i <= size_; ++i) {
                const int k = order_[At(i)];
                // One that no distance leads to has no scale and moves alone.
                move[At(k)] = z[At(i)] * (scale_[At(k)] > 0 ? scale_[At(k)] : 1);
                largest = std::max(largest, std::fabs(move[At(k)]));
            }
            for (double& part : move) part /= largest;
            moves.push_back(std::move(move));
        }
        return moves;
    }

    // A generalized inverse by unknown: the open coordinates beyond the rank are held for it.
    Matrix Inverse(const std::function<void()>& goOn) const {
        Matrix inverse(size_, size_);
        Matrix lower(rank_, rank_);  // of L
        for (int j = 1; j <= rank_; ++j) {
            if (IsLarge()) goOn();
            lower(j, j) = 1 / S_(j, j);
            for (int i = j + 1; i <= rank_; ++i) {
                double sum = 0;
                for (int k = j; k < i; ++k) sum -= S_(i, k) * lower(k, j);
                lower(i, j) = sum / S_(i, i);
            }
        }
        for (int i = 1; i <= rank_; ++i) {
            if (IsLarge()) goOn();
            for (int j = 1; j <= rank_; ++j) {
                double sum = 0;
                for (int k = std::max(i, j); k <= rank_; ++k) sum += lower(k, i) * lower(k, j);
                const int a = order_[At(i)], b = order_[At(j)];
                inverse(a, b) = sum * scale_[At(a)] * scale_[At(b)];
            }
        }
        return inverse;
    }

private:
    void Add(int s, int t, const Block& block, double factor) {
        for (int i = 1; i <= 3; ++i)
            for (int j = 1; j <= 3; ++j)
                if (const int a = Unknown(s, i), b = Unknown(t, j); a != 0 && b != 0)
                    S_(a, b) += factor * block[At(i - 1)][At(j - 1)];
    }
    // Rows and columns of the lower triangle; what is above the diagonal is not read any more.
    void Swap(int k, int pivot) {
        if (k == pivot) return;
        for (int j = 1; j < k; ++j) std::swap(S_(k, j), S_(pivot, j));
        for (int i = k + 1; i < pivot; ++i) std::swap(S_(i, k), S_(pivot, i));
        for (int i = pivot + 1; i <= size_; ++i) std::swap(S_(i, k), S_(i, pivot));
        std::swap(S_(k, k), S_(pivot, pivot));
        std::swap(order_[At(k)], order_[At(pivot)]);
    }

    const BundleWork& work_;
    int size_ = 0, rank_ = 0;
    Matrix S_;
    std::vector<int> order_;     // by place its unknown
    std::vector<double> scale_;  // by unknown, so that its own observations add up to 1
};

// How an object point goes along with a move of the stations so that no distance changes.
Triple Follow(const ObjectBlock& object, const StationPart& part, const Column& move) {
    Triple sum{}, follow{};
    for (const auto& [station, block] : object.Stations)
        for (int j = 1; j <= 3; ++j)
            if (const int k = part.Unknown(station, j); k != 0)
                for (std::size_t i = 0; i < 3; ++i) sum[i] += block[i][At(j - 1)] * move[At(k)];
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j) follow[i] += object.Inverse[i][j] * sum[j];
    return follow;
}

// The cofactors of an object point: its own, and what those of its stations make of it.
Triple CofactorsOf(const ObjectBlock& object, const StationPart& part, const Matrix& Q) {
    Triple cofactors{};
    std::vector<std::pair<int, Block>> ways;  // from the station's coordinates to those of the point
    for (const auto& [station, block] : object.Stations)
        ways.emplace_back(station, Product(object.Inverse, block));
    for (std::size_t i = 0; i < 3; ++i) {
        cofactors[i] = object.Inverse[i][i];
        for (const auto& [s, way] : ways)
            for (const auto& [t, other] : ways)
                for (int a = 1; a <= 3; ++a)
                    for (int b = 1; b <= 3; ++b)
                        if (const int k = part.Unknown(s, a), l = part.Unknown(t, b); k != 0 && l != 0)
                            cofactors[i] += way[i][At(a - 1)] * Q(k, l) * other[i][At(b - 1)];
    }
    return cofactors;
}

}  // namespace

void FindOpenCoordinates(int stations, BundleWork& work, const std::function<void()>& goOn) {
    const std::vector<ObjectBlock> objects = ObjectBlocks(work);
    StationPart part(stations, work, objects);
    part.Decompose(goOn);
    const std::vector<Column> moves = part.OpenMoves();
    work.Open.assign(work.Unknown.size(), false);
    work.OpenMoves = static_cast<int>(moves.size());
    for (std::size_t o = 1; o < objects.size(); ++o)
        work.OpenMoves += static_cast<int>(objects[o].OpenMoves.size());
    bool any = false;
    const auto open = [&](int column, double share) {
        if (!(std::fabs(share) > kPartOfMove)) return;
        any = work.Open[At(column)] = true;
    };
    for (int column = 1; column <= 3 * stations; ++column)
        if (const int k = work.Unknown[At(column)]; k != 0)
            for (const Column& move : moves) open(column, move[At(k)]);
    for (std::size_t o = 1; o < objects.size(); ++o) {
        const int before = 3 * (stations + static_cast<int>(o) - 1);
        std::vector<Triple> own = objects[o].OpenMoves;
        for (const Column& move : moves) own.push_back(Follow(objects[o], part, move));
        for (const Triple& move : own)
            for (int axis = 1; axis <= 3; ++axis) open(before + axis, move[At(axis - 1)]);
    }
    if (!any) return;
    const Matrix Q = part.Inverse(goOn);
    for (int column = 1; column <= 3 * stations; ++column)
        if (const int k = work.Unknown[At(column)]; k != 0) work.Cofactor[At(column)] = Q(k, k);
    for (std::size_t o = 1; o < objects.size(); ++o) {
        if (part.IsLarge()) goOn();
        const Triple cofactors = CofactorsOf(objects[o], part, Q);
        for (int axis = 1; axis <= 3; ++axis)
            work.Cofactor[At(3 * (stations + static_cast<int>(o) - 1) + axis)] = cofactors[At(axis - 1)];
    }
}

bool IsOpenCoordinate(const BundleWork& work, int column) {
    return At(column) < work.Open.size() && work.Open[At(column)];
}

}  // namespace corvinade::fit
