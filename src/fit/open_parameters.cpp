// The rank of a fit's design matrix, and what is open where it is not full.
#include "fit/open_parameters.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "fit/normal_equations.h"
#include "fit/small_svd.h"

namespace corvinade::fit {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

// Each row of the design matrix is made of a few numbers of its point, [1 x y z] for instance, by the same
// coefficients for all points. So the triangle that is left of all those numbers stands for all rows. It is
// found by rotations (Givens), not from sums of products, which would lose half of the digits.
class Triangle {
public:
    explicit Triangle(int columns) : n_(columns), R_(At(columns * columns)) {}

    void Add(std::vector<double> row) {
        for (int k = 0; k < n_; ++k) {
            const double below = row[At(k)];
            if (below == 0) continue;
            double& diagonal = R_[At(k * n_ + k)];
            const double size = std::hypot(diagonal, below);
            const double c = diagonal / size, s = below / size;
            for (int j = k; j < n_; ++j) {
                double& above = R_[At(k * n_ + j)];
                const double before = above;
                above = c * before + s * row[At(j)];
                row[At(j)] = c * row[At(j)] - s * before;
            }
        }
    }
    double operator()(int row, int column) const { return R_[At(row * n_ + column)]; }
    int Columns() const { return n_; }

private:
    int n_;
    std::vector<double> R_;
};

// What a point's equations consist of, and how its numbers make the columns of the unknowns.
struct Group {
    Triangle Numbers;
    std::vector<std::vector<double>> Coefficients;  // by unknown 1 to u (place 0 unused)
};

struct Cloud {
    const GatheredPoints& Points;
    const FitModel& Model;
    const Linearisation& At_;
    const std::function<bool(std::size_t)>& Uses;

    double Start(int axis, int i) const { return Points.Start[At(axis - 1)][At(i)]; }
    double Image(int axis, int i) const {
        double image = At_.Shift(axis);
        for (int j = 1; j <= 3; ++j) image += At_.M(axis, j) * Start(j, i);
        return image;
    }
    bool InUse(int axis, int i) const { return Uses(At(3 * i + axis)); }
};

int UnknownOfTool(const FitModel& model, int j) {
    return model.UnknownOf[At(kRvecX + j)];
}

// One axis of the plain and the tool model: [1 x y z], and the row of the pose's matrix behind.
Group AxisGroup(const Cloud& cloud, int axis, const std::vector<int>& chosen) {
    const bool tool = cloud.Model.Mode == FitMode::Tool && cloud.Model.ToolFloats;
    Group group{Triangle(tool ? 7 : 4), {}};
    group.Coefficients.assign(At(cloud.Model.Unknowns + 1), std::vector<double>(At(group.Numbers.Columns())));
    for (const int i : chosen) {
        if (!cloud.InUse(axis, i)) continue;
        std::vector<double> row = {1, cloud.Start(1, i), cloud.Start(2, i), cloud.Start(3, i)};
        for (int j = 0; j < 3 && tool; ++j) row.push_back(cloud.Points.Pose[At(3 * (axis - 1) + j)][At(i)]);
        group.Numbers.Add(std::move(row));
    }
    for (int k = 0; k < cloud.At_.InnerCount; ++k) {
        const InnerDerivative& inner = cloud.At_.Inner[At(k)];
        auto& form = group.Coefficients[At(inner.Unknown)];
        form[0] = cloud.At_.Held(inner, axis);
        for (int j = 1; j <= 3; ++j) form[At(j)] = inner.D(axis, j);
    }
    if (const int unknown = cloud.Model.UnknownOf[At(kTraX + axis - 1)]; unknown != 0)
        group.Coefficients[At(unknown)][0] = 1;
    for (int j = 0; j < 3 && tool; ++j) group.Coefficients[At(UnknownOfTool(cloud.Model, j))][At(4 + j)] = 1;
    return group;
}

// The distance model: the direction from the target to the image times [1 x y z], axis by axis, and 1.
Group DistanceGroup(const Cloud& cloud, const std::vector<int>& chosen) {
    Group group{Triangle(13), {}};
    group.Coefficients.assign(At(cloud.Model.Unknowns + 1), std::vector<double>(13));
    for (const int i : chosen) {
        if (!cloud.InUse(3, i)) continue;
        std::array<double, 4> way{};
        for (int axis = 1; axis <= 3; ++axis)
            way[At(axis)] = cloud.Image(axis, i) - cloud.Points.Target[At(axis - 1)][At(i)];
        const double length = std::hypot(way[1], way[2], way[3]);
        if (!(length > 0)) continue;
        std::vector<double> row;
        for (int axis = 1; axis <= 3; ++axis)
            for (int j = 0; j <= 3; ++j)
                row.push_back(way[At(axis)] / length * (j == 0 ? 1 : cloud.Start(j, i)));
        row.push_back(1);
        group.Numbers.Add(std::move(row));
    }
    for (int axis = 1; axis <= 3; ++axis) {
        const int first = 4 * (axis - 1);
        for (int k = 0; k < cloud.At_.InnerCount; ++k) {
            const InnerDerivative& inner = cloud.At_.Inner[At(k)];
            auto& form = group.Coefficients[At(inner.Unknown)];
            form[At(first)] = cloud.At_.Held(inner, axis);
            for (int j = 1; j <= 3; ++j) form[At(first + j)] = inner.D(axis, j);
        }
        if (const int unknown = cloud.Model.UnknownOf[At(kTraX + axis - 1)]; unknown != 0)
            group.Coefficients[At(unknown)][At(first)] = 1;
    }
    if (const int unknown = cloud.Model.UnknownOf[kRDist]; unknown != 0)
        group.Coefficients[At(unknown)][12] = 1;
    return group;
}

std::vector<Group> GroupsOf(const Cloud& cloud, const std::vector<int>& chosen) {
    std::vector<Group> groups;
    if (cloud.Model.Mode == FitMode::Distance) {
        groups.push_back(DistanceGroup(cloud, chosen));
    } else {
        for (int axis = 1; axis <= 3; ++axis) groups.push_back(AxisGroup(cloud, axis, chosen));
    }
    return groups;
}

// Up to `most` pairs spread over all of them. What these tell apart all of them do.
std::vector<int> Spread(int count, int most) {
    std::vector<int> chosen;
    const int step = std::max(1, count / most);
    for (int i = 0; i < count; i += step) chosen.push_back(i);
    return chosen;
}

// How large the points' images are, and how large the coordinates that they were read as, mm.
struct Sizes {
    double Extent = 0, Coordinate = 0;

    Sizes(const Cloud& cloud, const std::vector<int>& chosen) {
        double squares = 0;
        for (const int i : chosen)
            for (int axis = 1; axis <= 3; ++axis) {
                double image = 0, coordinate = 0;
                for (int j = 1; j <= 3; ++j) {
                    const double p = cloud.Start(j, i);
                    image += cloud.At_.M(axis, j) * p;
                    coordinate +=
                        std::fabs(cloud.At_.M(axis, j)) * std::fabs(p + cloud.Points.StartCentre(j));
                }
                squares += image * image;
                Coordinate = std::max(Coordinate, coordinate);
            }
        Extent = chosen.empty() ? 0 : std::sqrt(squares / static_cast<double>(chosen.size()));
    }
    static constexpr double kDigits = 64 * 2.220446049250313e-16;

    // All points are at one place, but for the last digits.
    bool OnePlace() const { return Extent <= kDigits * Coordinate; }
    // The share of a column that is rounding.
    double Rounding() const {
        constexpr double kLeast = 1e-10;
        return OnePlace() ? kLeast : std::max(kLeast, kDigits * Coordinate / Extent);
    }
};

// The ways to change the unknowns without an effect, as columns of the centred unknowns 1 to u.
std::vector<Column> NullSpace(const Cloud& cloud, const std::vector<int>& chosen, OpenBy by) {
    const int u = cloud.Model.Unknowns;
    const std::vector<Group> groups = GroupsOf(cloud, chosen);
    int rows = 0;
    for (const Group& group : groups) rows += group.Numbers.Columns();
    std::vector<double> A(At(rows * u));
    int first = 0;
    for (const Group& group : groups) {
        const int n = group.Numbers.Columns();
        for (int unknown = 1; unknown <= u; ++unknown)
            for (int row = 0; row < n; ++row)
                for (int k = row; k < n; ++k)
                    A[At((first + row) * u + unknown - 1)] +=
                        group.Numbers(row, k) * group.Coefficients[At(unknown)][At(k)];
        first += n;
    }
    // Each unknown by what it moves; one that moves next to nothing is a way of its own.
    const Sizes sizes(cloud, chosen);
    const double rounding = sizes.Rounding();
    const double size = sizes.Extent * std::sqrt(static_cast<double>(chosen.size()));
    std::vector<Column> ways;
    std::vector<int> moving;
    std::vector<double> norms(At(u));
    for (int k = 0; k < u; ++k) {
        double squares = 0;
        for (int row = 0; row < rows; ++row) squares += A[At(row * u + k)] * A[At(row * u + k)];
        norms[At(k)] = std::sqrt(squares);
        const bool inner = std::any_of(&cloud.At_.Inner[0], &cloud.At_.Inner[0] + cloud.At_.InnerCount,
                                       [k](const InnerDerivative& each) { return each.Unknown == k + 1; });
        if (inner ? norms[At(k)] > 1e-10 * size && !sizes.OnePlace() : norms[At(k)] > 0) {
            moving.push_back(k);
            continue;
        }
        Column way(At(u) + 1);
        way[At(k + 1)] = 1;
        ways.push_back(std::move(way));
    }
    const int m = static_cast<int>(moving.size());
    std::vector<double> scaled(At(rows * m));
    for (int row = 0; row < rows; ++row)
        for (int k = 0; k < m; ++k)
            scaled[At(row * m + k)] = A[At(row * u + moving[At(k)])] / norms[At(moving[At(k)])];
    const SmallSvd svd = DecomposeSmall(scaled, rows, m);
    double limit = rounding;
    if (by == OpenBy::LeastKnown && ways.empty() && m > 0)
        limit = std::max(limit, *std::min_element(svd.s.begin(), svd.s.begin() + m));
    for (int k = 0; k < m; ++k) {
        if (svd.s[At(k)] > limit) continue;
        Column way(At(u) + 1);
        for (int j = 0; j < m; ++j)
            way[At(moving[At(j)] + 1)] = svd.V[At(j * m + k)] / norms[At(moving[At(j)])];
        ways.push_back(std::move(way));
    }
    return ways;
}

// Marks the parameters that take part in a way, by the share that each has in moving the points.
void Mark(const Cloud& cloud, Column way, const Sizes& sizes, OpenParameters& open) {
    constexpr double kTakesPart = 1e-6;
    if (sizes.OnePlace()) {  // what turns and stretches about that place is open, and the place is not
        const Column centred = way;
        FromCentre(cloud.Model, cloud.At_, way);
        for (int k = kTraX; k < kParameterEnd; ++k) {
            const int unknown = cloud.Model.UnknownOf[At(k)];
            if (unknown == 0) continue;
            // Away from the origin, however, it takes the translation along.
            const bool along = k <= kTraZ && std::fabs(way[At(unknown)]) > kTakesPart * sizes.Coordinate;
            if (centred[At(unknown)] != 0 || along) open.Open[At(k)] = true;
        }
        return;
    }
    FromCentre(cloud.Model, cloud.At_, way);
    std::array<double, kParameterEnd> share{};
    double largest = 0;
    for (int k = kTraX; k < kParameterEnd; ++k) {
        const int unknown = cloud.Model.UnknownOf[At(k)];
        if (unknown == 0) continue;
        const bool inner = k >= kRotX && k <= kAngleZtoXY;
        share[At(k)] = std::fabs(way[At(unknown)]) * (inner ? sizes.Extent : 1);
        largest = std::max(largest, share[At(k)]);
    }
    for (int k = kTraX; k < kParameterEnd; ++k)
        if (largest > 0 && share[At(k)] > kTakesPart * largest) open.Open[At(k)] = true;
}

// The way that turns Rot x against Rot z, and the azimuth along while z to xy is all but 0: a lean that is
// nothing but rounding can make up for the rounding of a lock.
bool IsLockWithAzimuth(const OpenParameters& marked, const Parameters& result) {
    if (std::fabs(std::cos(result[kRotY])) > 1e-6 || std::fabs(std::sin(result[kAngleZtoXY])) > 1e-6)
        return false;
    for (int k = kTraX; k < kParameterEnd; ++k)
        if (marked.Open[At(k)] != (k == kRotX || k == kRotZ || k == kAzimuth)) return false;
    return true;
}

// The one way that turns Rot x against Rot z alone.
bool IsGimbalLock(const OpenParameters& marked, const Parameters& result) {
    if (std::fabs(std::cos(result[kRotY])) > 1e-6) return false;
    for (int k = kTraX; k < kParameterEnd; ++k)
        if (marked.Open[At(k)] && k != kRotX && k != kRotZ) return false;
    return marked.Open[kRotX] && marked.Open[kRotZ];
}

bool IsAzimuthAlone(const OpenParameters& marked, const Parameters& result) {
    if (std::fabs(std::sin(result[kAngleZtoXY])) > 1e-6) return false;
    for (int k = kTraX; k < kParameterEnd; ++k)
        if (marked.Open[At(k)] != (k == kAzimuth)) return false;
    return true;
}

}  // namespace

OpenParameters FindOpenParameters(const GatheredPoints& points, const FitModel& model,
                                  const std::function<bool(std::size_t)>& inUse, const Parameters& result,
                                  const Linearisation& at, OpenBy by) {
    constexpr int kSample = 64;
    const Cloud cloud{points, model, at, inUse};
    OpenParameters open;
    if (model.Unknowns == 0) return open;
    std::vector<int> chosen = Spread(points.Count, kSample);
    std::vector<Column> ways = NullSpace(cloud, chosen, by);
    if (!ways.empty() && static_cast<int>(chosen.size()) < points.Count) {
        chosen = Spread(points.Count, points.Count);
        ways = NullSpace(cloud, chosen, by);
    }
    const Sizes sizes(cloud, chosen);
    open.Count = static_cast<int>(ways.size());
    int withAzimuth = 0;
    for (const Column& way : ways) {
        OpenParameters one;
        Mark(cloud, way, sizes, one);
        for (int k = kTraX; k < kParameterEnd; ++k)
            if (one.Open[At(k)]) open.Open[At(k)] = true;
        if (IsGimbalLock(one, result)) open.GimbalLock = true;
        if (IsAzimuthAlone(one, result)) open.AzimuthWithoutEffect = true;
        withAzimuth += IsLockWithAzimuth(one, result) ? 1 : 0;
    }
    // Each of the two is a way of its own, mixed as they are.
    if (withAzimuth > 0) {
        const int apart = withAzimuth + (open.GimbalLock ? 1 : 0) + (open.AzimuthWithoutEffect ? 1 : 0);
        open.GimbalLock = open.AzimuthWithoutEffect = true;
        open.Count += std::max(0, 2 - apart);
    }
    return open;
}

}  // namespace corvinade::fit
