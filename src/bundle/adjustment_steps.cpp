// The adjustment of a network by distances.
#include "bundle/adjustment_steps.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string_view>
#include <unordered_map>

#include "core/numbers.h"
#include "core/platform.h"
#include "fit/matrix.h"
#include "fit/require.h"
#include "fit/vector.h"

namespace corvinade::bundle {

namespace {

constexpr std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

// The coordinate of a column.
double& Coordinate(BundleRecord& network, const BundleWork& work, int column) {
    const int point = (column - 1) / 3 + 1, axis = (column - 1) % 3 + 1;
    if (point <= network.nStations) return network.StationXYZ(point, axis);
    return network.ObjectXYZ(work.UsedObject[At(point - network.nStations)], axis);
}

// First columns of the two points of a row, less 1.
struct Columns {
    int Station, Object;
};
Columns ColumnsOf(const DistanceRow& row, int stations) {
    return {3 * (row.Station - 1), 3 * (stations + row.Object - 1)};
}

// Numbers of names; of several equal ones the first counts.
using Numbers = std::unordered_map<std::string_view, int>;

Vec3 StationPlace(const BundleRecord& network, int station) {
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
DatumStations FindDatumStations(const BundleRecord& network) {
    DatumStations found;
    if (network.nStations < 1) return found;
    const Vec3 first = StationPlace(network, 1);
    for (int i = 2; i <= network.nStations; ++i) {
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
bool AddUnknowns(BundleRecord& network, BundleWork& work) {
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
        work.Cofactor[column] = unknown == 0 ? TaggedValue{} : work.Qxx(unknown, unknown);
    }
}

}  // namespace

BundleWork PrepareBundle(const BundleRecord& network, double percent) {
    Require(percent >= 1 && percent <= 100);
    BundleWork work;
    work.step = static_cast<int>(Int(100 / percent));
    const int used = static_cast<int>(Int(percent * network.nObjectPoints / 100));
    const int points = network.nStations + used;
    if (3 * points - 6 > kMostUnknowns)
        throw PlatformError{"The network has " + std::to_string(3 * points - 6) +
                            " unknown coordinates; there is room for " + std::to_string(kMostUnknowns) +
                            ". Take a smaller percentage of the object points."};
    Numbers stations, objects;
    for (int i = 1; i <= network.nStations; ++i) stations.emplace(network.StationName[At(i)], i);
    for (int i = 1; i <= used; ++i) {
        work.UsedObject.push_back(1 + (i - 1) * work.step);
        objects.emplace(network.ObjectName[At(work.UsedObject.back())], i);
    }
    const std::size_t distances = At(network.nDistances) + 1;
    work.A.resize(distances);
    work.l.resize(distances);
    work.v.resize(distances);
    work.StationOf.resize(distances);
    work.ObjectOf.resize(distances);
    for (std::size_t k = 1; k < distances; ++k) {
        const auto station = stations.find(network.DistancePair[1][k]);
        const auto object = objects.find(network.DistancePair[2][k]);
        if (station == stations.end() || object == objects.end()) continue;
        work.StationOf[k] = station->second;
        work.ObjectOf[k] = object->second;
    }
    work.Unknown.resize(3 * At(points) + 1);
    work.Cofactor.resize(3 * At(points) + 1);
    work.nUnknown = std::max(0, 3 * points - 6);
    work.x.resize(At(work.nUnknown) + 1);
    return work;
}

void AMatrix(const BundleRecord& network, BundleWork& work) {
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

bool HoldDatum(const BundleRecord& network, BundleWork& work) {
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

BundleStep BundleIteration(BundleRecord& network, BundleWork& work, const BundleListener& listener) {
    const auto log = [&listener](const char* text) {
        if (listener.Log) listener.Log(text);
    };
    const auto goOn = [&listener] { return !listener.GoOn || listener.GoOn(); };
    log("calculationg A Matrix");
    AMatrix(network, work);
    if (!HoldDatum(network, work)) return BundleStep::OnALine;
    // The rows hold A and, all weights being 1, its transpose and their product with P as well.
    log("calculating A transponiert");
    log("calculating At * P");
    NormalMatrix(network.nStations, work);
    log("calculating N = (At * P) * A");
    if (!MatrixInverse(work.Qxx, work.nUnknown, work.nUnknown, work.Qxx, goOn)) return BundleStep::Ended;
    log("calculating qxx = N^-1");
    const Column n = RightSide(network.nStations, work);
    log("calculating n = (At * P) * l");
    Unknowns(n, work);
    log("calculating x = qxx * n");
    Residuals(network.nStations, work);
    log("calculating v = A * x -l");
    if (!AddUnknowns(network, work)) return BundleStep::NotFinite;
    log("calculating unknowns");
    work.BiggestX = 0;
    for (int i = 1; i <= work.nUnknown; ++i)
        work.BiggestX = std::max(work.BiggestX, std::fabs(work.x[At(i)]));
    KeepCofactors(work);
    ++work.Iterations;
    return BundleStep::Whole;
}

double BundleS0(const BundleRecord& network, const BundleWork& work) {
    return network.nDistances < 2 ? 0 : std::sqrt(work.SumVV / (network.nDistances - 1));
}

}  // namespace corvinade::bundle
