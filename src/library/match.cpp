// Points that are the same, by the searches of the program.
#include "corvinade/match.h"
//
#include <array>
#include <cmath>
#include <string>

#include "corvinade/transformation.h"
#include "import/coordinate_pairs.h"
#include "import/distance_match.h"

namespace corvinade {

namespace {

std::vector<double> RowsOf(const Points& points, const char* what) {
    if (points.Count == 0 || points.Data == nullptr)
        throw InvalidInput(std::string(what) + ": points were expected, and none came");
    std::vector<double> rows;
    for (std::size_t i = 0; i < points.Count; ++i)
        for (std::ptrdiff_t axis = 0; axis < 3; ++axis)
            rows.push_back(
                points.Data[static_cast<std::ptrdiff_t>(i) * points.PointStep + axis * points.AxisStep]);
    for (const double value : rows)
        if (!std::isfinite(value))
            throw InvalidInput(std::string(what) + ": finite numbers were expected, and " +
                               std::to_string(value) + " came");
    return rows;
}

float ToleranceOf(double tolerance) {
    const auto etta = static_cast<float>(tolerance);
    if (!(etta > 0) || std::isinf(etta))
        throw InvalidInput("tolerance: a length above 0 mm was expected, and " + std::to_string(tolerance) +
                           " came");
    return etta;
}

core::PointSet SetOf(const std::vector<double>& rows) {
    core::PointSet points;
    points.Resize(static_cast<int>(rows.size() / 3));
    for (std::size_t i = 0; i < rows.size() / 3; ++i)
        points.SetPoint(static_cast<int>(i) + 1, rows[3 * i], rows[3 * i + 1], rows[3 * i + 2]);
    return points;
}

std::vector<std::ptrdiff_t> Paired(const std::vector<double>& start, const std::vector<double>& target,
                                   float etta, const std::function<bool()>& stopIsWanted) {
    // With an element 0 that is unused.
    const auto columnsOf = [](const std::vector<double>& rows) {
        std::array<std::vector<double>, 3> columns;
        for (std::size_t axis = 0; axis < 3; ++axis) {
            columns[axis].push_back(0);
            for (std::size_t i = axis; i < rows.size(); i += 3) columns[axis].push_back(rows[i]);
        }
        return columns;
    };
    const auto from = columnsOf(start), to = columnsOf(target);
    bool stopped = false;
    const auto partners =
        import::PairByCoordinates({from[0], from[1], from[2]}, {to[0], to[1], to[2]}, etta, [&](std::size_t) {
            stopped = stopIsWanted && stopIsWanted();
            return !stopped;
        });
    if (stopped) throw Stopped("the matching has been stopped");
    std::vector<std::ptrdiff_t> places;
    for (std::size_t i = 1; i < partners.size(); ++i) places.push_back(std::ptrdiff_t{partners[i]} - 1);
    return places;
}

}  // namespace

std::vector<std::ptrdiff_t> MatchByCoordinates(const Points& start, const Points& target, double tolerance,
                                               const std::function<bool()>& stopIsWanted) {
    const float etta = ToleranceOf(tolerance);
    return Paired(RowsOf(start, "start"), RowsOf(target, "target"), etta, stopIsWanted);
}

std::vector<std::ptrdiff_t> MatchByDistances(const Points& start, const Points& target, double tolerance,
                                             const std::function<bool()>& stopIsWanted) {
    const float etta = ToleranceOf(tolerance);
    std::vector<double> from = RowsOf(start, "start");
    const std::vector<double> to = RowsOf(target, "target");
    const auto refuse = [](const std::string& why) {
        if (!why.empty()) throw InvalidInput(why);
    };
    refuse(import::StartTableRefusal(static_cast<std::int64_t>(start.Count), "start"));
    refuse(import::TargetTableRefusal(static_cast<std::int64_t>(target.Count), "target"));
    const core::PointSet starts = SetOf(from), targets = SetOf(to);
    bool stopped = false;
    const auto pairs =
        import::FindDistancePairs(starts, targets, targets.Count(), etta, [&](std::int64_t, int) {
            stopped = stopIsWanted && stopIsWanted();
            return !stopped;
        });
    if (stopped) throw Stopped("the matching has been stopped");
    constexpr std::size_t kSeeds = 3;
    if (pairs.size() < kSeeds) return std::vector<std::ptrdiff_t>(start.Count, kNoPartner);
    const fit::Parameters raw = import::SeedsOf(pairs, starts, targets).Raw;
    const Matrix4 matrix = MatrixOf({.Translation = {raw[fit::kTraX], raw[fit::kTraY], raw[fit::kTraZ]},
                                     .Rotation = {raw[fit::kRotX], raw[fit::kRotY], raw[fit::kRotZ]},
                                     .Scale = {raw[fit::kScaleX], raw[fit::kScaleY], raw[fit::kScaleZ]}});
    for (const double value : matrix)
        if (!std::isfinite(value)) return std::vector<std::ptrdiff_t>(start.Count, kNoPartner);
    Apply(matrix, from, from);
    return Paired(from, to, etta, stopIsWanted);
}

}  // namespace corvinade
