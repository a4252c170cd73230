// The adjustment of a network by distances.
#include "fit/bundle_iteration.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

#include "fit/bundle_open.h"
#include "fit/matrix.h"
#include "fit/require.h"
#include "fit/vector.h"

namespace corvinade::fit {

namespace {

constexpr std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

// The coordinate of a column.
double& Coordinate(BundleNetwork& network, const BundleWork& work, int column) {
    const int point = (column - 1) / 3 + 1, axis = (column - 1) % 3 + 1;
    if (point <= network.Stations()) return network.StationXYZ(point, axis);
    return network.ObjectXYZ(work.UsedObject[At(point - network.Stations())], axis);
}

// First columns of the two points of a row, less 1.
struct Columns {
    int Station, Object;
};
Columns ColumnsOf(const DistanceRow& row, int stations) {
    return {3 * (row.Station - 1), 3 * (stations + row.Object - 1)};
}

Vec3 StationPlace(const BundleNetwork& network, int station) {
    return {network.StationXYZ(station, 1), network.StationXYZ(station, 2), network.StationXYZ(station, 3)};
}

// The axis along which a vector is longest; of equal ones the first.
int LongestAxis(const Vec3& a) {
    int axis = 1;
    for (int k = 2; k <= 3; ++k)
        if (std::fabs(a(k)) > std::fabs(a(axis))) axis = k;
    return axis;
}

double LargestComponent(const Vec3& a) {
    return std::fabs(a(LongestAxis(a)));
}

struct DatumStations {
    int Second = 0, Third = 0;
    Vec3 Line, Normal;  // from the first to the second station, and across the plane of the three
};

// Walks over the stations. Third stays 0 when there is no station off the line.
DatumStations FindDatumStations(const BundleNetwork& network) {
    DatumStations found;
    if (network.Stations() < 1) return found;
    const Vec3 first = StationPlace(network, 1);
    for (int i = 2; i <= network.Stations(); ++i) {
        const Vec3 place = StationPlace(network, i);
        Vec3 b, normal;
        VecSub(place, first, b);
        if (found.Second == 0) {
            if (LargestComponent(b) == 0) continue;
            found.Second = i;
            found.Line = b;
            continue;
        }
        VecCross(found.Line, b, normal);
        // Coordinates carry their last bit's rounding, which the products make longer: a station on the line
        // has a cross product of that size.
        const double coordinates = std::max({LargestComponent(first), LargestComponent(place),
                                             LargestComponent(StationPlace(network, found.Second))});
        const double noise = 8 * std::numeric_limits<double>::epsilon() * coordinates *
                             (LargestComponent(found.Line) + LargestComponent(b));
        if (LargestComponent(normal) <= noise) continue;
        found.Third = i;
        found.Normal = normal;
        return found;
    }
    return found;
}

// Qxx x n, each sum in the order of the unknowns.
void Unknowns(const Column& n, BundleWork& work) {
    MatrixMultiply(work.Qxx, work.nUnknown, work.nUnknown, n, 1, work.x);
}

// n = A' P l, each sum in the order of the distances.
Column RightSide(int stations, const BundleWork& work) {
    Column n(At(work.nUnknown) + 1);
    for (std::size_t k = 1; k < work.A.size(); ++k) {
        const DistanceRow& row = work.A[k];
        if (row.Station == 0) continue;
        const Columns columns = ColumnsOf(row, stations);
        for (int axis = 1; axis <= 3; ++axis) {
            const double term = row.Direction[axis - 1] * work.l[k];
            const int a = work.Unknown[At(columns.Station + axis)],
                      b = work.Unknown[At(columns.Object + axis)];
            if (a != 0) n[At(a)] += term;
            if (b != 0) n[At(b)] -= term;
        }
    }
    return n;
}

// v = A x - l
void Residuals(int stations, BundleWork& work) {
    work.SumV = work.SumVV = 0;
    for (std::size_t k = 1; k < work.A.size(); ++k) {
        const DistanceRow& row = work.A[k];
        double sum = 0;
        if (row.Station != 0) {
            const Columns columns = ColumnsOf(row, stations);
            for (int axis = 1; axis <= 3; ++axis)
                if (const int a = work.Unknown[At(columns.Station + axis)]; a != 0)
                    sum += row.Direction[axis - 1] * work.x[At(a)];
            for (int axis = 1; axis <= 3; ++axis)
                if (const int b = work.Unknown[At(columns.Object + axis)]; b != 0)
                    sum -= row.Direction[axis - 1] * work.x[At(b)];
        }
        work.v[k] = sum - work.l[k];
        work.SumV += std::fabs(work.v[k]);
        work.SumVV += work.v[k] * work.v[k];
    }
}

// Every sum of coordinate and unknown is a number; only then is the network changed.
bool AddUnknowns(BundleNetwork& network, BundleWork& work) {
    const int columns = UpperBound(work.Unknown);
    for (const bool add : {false, true})
        for (int column = 1; column <= columns; ++column) {
            const int unknown = work.Unknown[At(column)];
            if (unknown == 0) continue;
            double& coordinate = Coordinate(network, work, column);
            const double sum = coordinate + work.x[At(unknown)];
            // Squares of differences are still to be taken of them.
            if (!(std::fabs(sum) < 1e150)) return false;
            if (add) coordinate = sum;
        }
    return true;
}

void KeepCofactors(BundleWork& work) {
    for (std::size_t column = 1; column < work.Unknown.size(); ++column) {
        const int unknown = work.Unknown[column];
        work.Cofactor[column] =
            unknown == 0 ? std::nullopt : std::optional<double>(work.Qxx(unknown, unknown));
    }
}

}  // namespace

BundleWork BeginBundle(int stations, BundleChoice choice) {
    Require(choice.StationOf.size() == choice.ObjectOf.size());
    BundleWork work;
    const std::size_t distances = choice.StationOf.size();
    const int points = stations + UpperBound(choice.UsedObject);
    work.A.resize(distances);
    work.l.resize(distances);
    work.v.resize(distances);
    work.UsedObject = std::move(choice.UsedObject);
    work.StationOf = std::move(choice.StationOf);
    work.ObjectOf = std::move(choice.ObjectOf);
    work.Unknown.resize(3 * At(points) + 1);
    work.Cofactor.resize(3 * At(points) + 1);
    work.nUnknown = std::max(0, 3 * points - 6);
    work.x.resize(At(work.nUnknown) + 1);
    return work;
}

void AMatrix(const BundleNetwork& network, BundleWork& work) {
    for (std::size_t k = 1; k < work.A.size(); ++k) {
        DistanceRow& row = work.A[k];
        row = {};
        work.l[k] = 0;
        const int station = work.StationOf[k], object = work.ObjectOf[k];
        if (station == 0) continue;
        const int number = work.UsedObject[At(object)];
        const double dx = network.StationXYZ(station, 1) - network.ObjectXYZ(number, 1);
        const double dy = network.StationXYZ(station, 2) - network.ObjectXYZ(number, 2);
        const double dz = network.StationXYZ(station, 3) - network.ObjectXYZ(number, 3);
        const double s0 = std::sqrt(dx * dx + dy * dy + dz * dz);
        if (s0 == 0) continue;
        row = {station, object, {dx / s0, dy / s0, dz / s0}};
        work.l[k] = network.DistanceValue[k] - s0;
    }
}

bool HoldDatum(const BundleNetwork& network, BundleWork& work) {
    const DatumStations stations = FindDatumStations(network);
    if (stations.Third == 0) return false;
    std::fill(work.Unknown.begin(), work.Unknown.end(), 1);
    const int freeOfSecond = LongestAxis(stations.Line);
    for (int axis = 1; axis <= 3; ++axis) {
        work.Unknown[At(axis)] = 0;
        if (axis != freeOfSecond) work.Unknown[At(3 * (stations.Second - 1) + axis)] = 0;
    }
    work.Unknown[At(3 * (stations.Third - 1) + LongestAxis(stations.Normal))] = 0;
    int number = 0;
    for (std::size_t column = 1; column < work.Unknown.size(); ++column)
        if (work.Unknown[column] != 0) work.Unknown[column] = ++number;
    Require(number == work.nUnknown);
    return true;
}

void NormalMatrix(int stations, BundleWork& work) {
    if (work.Qxx.Rows != work.nUnknown) work.Qxx = Matrix(work.nUnknown, work.nUnknown);
    std::fill(work.Qxx.Elements.begin(), work.Qxx.Elements.end(), 0.0);
    for (std::size_t k = 1; k < work.A.size(); ++k) {
        const DistanceRow& row = work.A[k];
        if (row.Station == 0) continue;
        const Columns columns = ColumnsOf(row, stations);
        std::array<int, 6> unknown{};
        std::array<double, 6> element{};
        int count = 0;
        const auto add = [&](int column, double value) {
            if (work.Unknown[At(column)] == 0) return;
            unknown[At(count)] = work.Unknown[At(column)];
            element[At(count++)] = value;
        };
        for (int axis = 1; axis <= 3; ++axis) add(columns.Station + axis, row.Direction[axis - 1]);
        for (int axis = 1; axis <= 3; ++axis) add(columns.Object + axis, -row.Direction[axis - 1]);
        for (int i = 0; i < count; ++i) {
            double* const out = work.Qxx.Row(unknown[At(i)]);
            for (int j = 0; j < count; ++j) out[unknown[At(j)]] += element[At(i)] * element[At(j)];
        }
    }
}

BundleStep BundleIteration(BundleNetwork& network, BundleWork& work, const BundleStepListener& listener) {
    const auto tell = [&listener](BundleStage stage) {
        if (listener.Heard) listener.Heard(stage);
    };
    const auto goOn = [&listener] { return !listener.GoOn || listener.GoOn(); };
    tell(BundleStage::Rows);
    AMatrix(network, work);
    if (!HoldDatum(network, work)) return BundleStep::OnALine;
    // The rows hold A and, all weights being 1, its transpose and their product with P as well.
    tell(BundleStage::Transposed);
    tell(BundleStage::Weighted);
    NormalMatrix(network.Stations(), work);
    tell(BundleStage::Normal);
    if (!MatrixInverse(work.Qxx, work.nUnknown, work.nUnknown, work.Qxx, goOn)) return BundleStep::Ended;
    tell(BundleStage::Inverted);
    const Column n = RightSide(network.Stations(), work);
    tell(BundleStage::RightSide);
    Unknowns(n, work);
    tell(BundleStage::Solved);
    Residuals(network.Stations(), work);
    tell(BundleStage::Residuals);
    if (!AddUnknowns(network, work)) return BundleStep::NotFinite;
    tell(BundleStage::Added);
    work.BiggestX = 0;
    for (int i = 1; i <= work.nUnknown; ++i)
        work.BiggestX = std::max(work.BiggestX, std::fabs(work.x[At(i)]));
    KeepCofactors(work);
    ++work.Iterations;
    return BundleStep::Whole;
}

double BundleS0(const BundleWork& work) {
    const int distances = UpperBound(work.v);
    return distances < 2 ? 0 : std::sqrt(work.SumVV / (distances - 1));
}

std::optional<double> BundleAccuracy(const BundleWork& work, int column) {
    const std::optional<double>& cofactor = work.Cofactor[At(column)];
    if (!cofactor || IsOpenCoordinate(work, column)) return std::nullopt;
    // A network that its distances hardly determine has cofactors of any sign.
    return BundleS0(work) * std::sqrt(std::fabs(*cofactor));
}

}  // namespace corvinade::fit
