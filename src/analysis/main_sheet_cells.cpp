// What the main sheet shows, cell by cell.
#include "analysis/main_sheet_cells.h"

#include <algorithm>
#include <cmath>

#include "core/desktop_defaults.h"
#include "core/job.h"
#include "core/job_tolerance.h"
#include "core/numbers.h"
#include "core/run.h"
#include "core/units.h"
#include "core/window.h"
#include "engine/tolerance_check.h"
#include "engine/transform.h"
#include "fit/coordinate_forms.h"

namespace corvinade::analysis {

namespace {

using Point = std::array<double, 3>;

constexpr int kGreen = 10, kYellow = 14;  // of the sixteen colours
constexpr std::int32_t kOrange = 33023;

enum class Side : std::uint8_t { Name, Start, Target, Deviation, Number };
enum class Quantity : std::uint8_t { X, Y, Z, CylRadius, Phi, SphRadius, Theta };

struct ColumnKind {
    const char* Heading;
    Side Of;
    Quantity What = Quantity::X;
    // Yellow in the rows of points without a partner, and in those of the pairs.
    bool MarkedAlone = false, MarkedInPairs = false;
};

constexpr std::array<ColumnKind, kMainSheetCols> kColumns = {{
    {"Point ID", Side::Name},
    {"MCS.x", Side::Start, Quantity::X},
    {"MCS.y", Side::Start, Quantity::Y},
    {"MCS.z", Side::Start, Quantity::Z},
    {"OCS.x", Side::Target, Quantity::X, true, true},
    {"OCS.y", Side::Target, Quantity::Y, true, true},
    {"OCS.z", Side::Target, Quantity::Z, true, true},
    {"dev.x", Side::Deviation, Quantity::X},
    {"dev.y", Side::Deviation, Quantity::Y},
    {"dev.z", Side::Deviation, Quantity::Z},
    {"MCS.r.CYL", Side::Start, Quantity::CylRadius, true},
    {"MCS.Phi", Side::Start, Quantity::Phi, true},
    {"OCS.r.CYL", Side::Target, Quantity::CylRadius},
    {"OCS.Phi", Side::Target, Quantity::Phi},
    {"dev.r.CYL", Side::Deviation, Quantity::CylRadius, true},
    {"dev.Phi", Side::Deviation, Quantity::Phi, true},
    {"MCS.R.SPH", Side::Start, Quantity::SphRadius},
    {"MCS.Theta.SPH", Side::Start, Quantity::Theta},
    {"OCS.R.SPH", Side::Target, Quantity::SphRadius, true},
    {"OCS.Theta.SPH", Side::Target, Quantity::Theta, true},
    {"dev.R.SPH", Side::Deviation, Quantity::SphRadius},
    {"dev.Theta.SPH", Side::Deviation, Quantity::Theta},
    {"", Side::Number},
}};

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

bool IsAngle(Quantity what) {
    return what == Quantity::Phi || what == Quantity::Theta;
}

double ValueOf(Quantity what, const Point& p) {
    switch (what) {
        case Quantity::X:
            return p[0];
        case Quantity::Y:
            return p[1];
        case Quantity::Z:
            return p[2];
        case Quantity::CylRadius:
            return CylRadius(p[0], p[1]);
        case Quantity::Phi:
            return CylPhi(p[0], p[1]);
        case Quantity::SphRadius:
            return SphRadius(p[0], p[1], p[2]);
        case Quantity::Theta:
            break;
    }
    return SphTheta(p[0], p[1], p[2]);
}

double DifferenceOf(Quantity what, const Point& start, const Point& target) {
    const double first = ValueOf(what, start), second = ValueOf(what, target);
    return what == Quantity::Phi ? PhiDifference(first, second) : first - second;
}

// The places of a row's points in their lists, from 1; 0: the row has none.
struct RowPoints {
    int Start = 0, Target = 0;
    int Number() const { return Start != 0 ? Start : Target; }
};
RowPoints PointsOfRow(const PointCounts& counts, int row) {
    if (row <= counts.Pairs) return {row, row};
    if (row <= counts.Pairs + counts.StartOnly) return {row, 0};
    return {0, row - counts.StartOnly};
}

int RowsOf(const PointCounts& counts) {
    return counts.Pairs + counts.StartOnly + counts.TargetOnly;
}

std::string NumberText(const MainSheetCells& cells, Quantity what, double value) {
    if (IsAngle(what)) return WinkelFormat(value, cells.AngleFactor, cells.AngleFormat, cells.AngleUnit);
    return FormatNumber(value * cells.LengthFactor, cells.LengthFormat);
}

}  // namespace

PointCounts PointsOfJob() {
    if (!IsTrue(Run.JobDataValid)) return {};
    return {Job.Pairs(), Job.StartOnly(), Job.TargetOnly()};
}

MainSheetCells BeginMainSheet(const PointCounts& counts) {
    MainSheetCells cells;
    cells.LengthFactor = Units.LengthFactor;
    cells.AngleFactor = Units.AngleFactor;
    cells.LengthFormat = Units.FmtLength;
    cells.AngleFormat = Units.FmtAngle;
    cells.AngleUnit = Job.AngleUnitName;
    cells.Tolerance = ToleranceOf(Job);
    cells.JobGeneration = Run.JobGeneration;
    cells.Counts = counts;
    cells.Names.resize(At(RowsOf(counts)));
    cells.Start.resize(At(counts.Pairs + counts.StartOnly));
    cells.Target.resize(At(counts.Pairs + counts.TargetOnly));
    return cells;
}

void TakeRow(MainSheetCells& cells, int row) {
    const RowPoints points = PointsOfRow(cells.Counts, row);
    if (points.Start != 0) {
        const Vec3 p = StartPoint(points.Start);
        Point& image = cells.Start[At(points.Start - 1)];
        TransformPoint(p(1), p(2), p(3), image[0], image[1], image[2]);
    }
    if (points.Target != 0) {
        const Vec3 q = TargetPoint(points.Target);
        cells.Target[At(points.Target - 1)] = {q(1), q(2), q(3)};
    }
    cells.Names[At(row - 1)] =
        points.Start != 0 ? Job.Start.Name[At(points.Start)] : Job.Target.Name[At(points.Target)];
}

int MainSheetRows(const MainSheetCells& cells) {
    return RowsOf(cells.Counts) + 1;
}

int PairOfRow(const MainSheetCells& cells, int row) {
    return row >= 1 && row <= cells.Counts.Pairs ? row : 0;
}

int SheetCols() {
    return kMainSheetCols + (DesktopDefaults.SheetDeviation ? 1 : 0);
}

std::optional<double> Deviation3D(const MainSheetCells& cells, int row) {
    const int pair = PairOfRow(cells, row);
    if (pair == 0) return std::nullopt;
    const Point &start = cells.Start[At(pair - 1)], &target = cells.Target[At(pair - 1)];
    return SphRadius(start[0] - target[0], start[1] - target[1], start[2] - target[2]);
}

double LargestInUse(const MainSheetCells& cells) {
    double largest = 0;
    for (int pair = 1; pair <= cells.Counts.Pairs && 3 * pair <= UpperBound(Job.UseFlags); ++pair)
        if (Used(pair, 1) || Used(pair, 2) || Used(pair, 3))
            largest = std::max(largest, Deviation3D(cells, pair).value_or(0));
    return largest;
}

double BarOfSheet(const MainSheetCells& cells, int row, int col) {
    if (col != kColDeviation3D || !(cells.Largest > 0)) return 0;
    const double share = Deviation3D(cells, row).value_or(0) / cells.Largest;
    return std::isfinite(share) ? std::min(share, 1.0) : 0;
}

std::vector<int> RowsOfFilter(const MainSheetCells& cells, SheetFilter filter) {
    if (filter == SheetFilter::All) return {};
    const double tolerance = ToleranceOf(Job);
    const auto wanted = [&](int row) {
        const int pair = PairOfRow(cells, row);
        if (filter == SheetFilter::WithoutPartner || pair == 0)
            return filter == SheetFilter::WithoutPartner && pair == 0;
        if (3 * pair > UpperBound(Job.UseFlags)) return false;
        for (int axis = 1; axis <= 3; ++axis)
            if (filter == SheetFilter::NotInUse ? !Used(pair, axis) : IsBeyond(pair, axis, tolerance))
                return true;
        return false;
    };
    std::vector<int> rows = {0};
    for (int row = 1; row < MainSheetRows(cells); ++row)
        if (wanted(row)) rows.push_back(row);
    return rows;
}

std::string MainSheetText(const MainSheetCells& cells, int row, int col) {
    if (col < 0 || col >= SheetCols() || row < 0 || row >= MainSheetRows(cells)) return "";
    if (col == kColDeviation3D) {
        if (row == 0) return "dev.3D";
        const std::optional<double> deviation = Deviation3D(cells, row);
        return deviation ? NumberText(cells, Quantity::X, *deviation) : "";
    }
    const ColumnKind& column = kColumns[At(col)];
    if (row == 0) return column.Heading;
    const RowPoints points = PointsOfRow(cells.Counts, row);
    const auto start = [&]() -> const Point& { return cells.Start[At(points.Start - 1)]; };
    const auto target = [&]() -> const Point& { return cells.Target[At(points.Target - 1)]; };
    switch (column.Of) {
        case Side::Name:
            return cells.Names[At(row - 1)];
        case Side::Number:
            return PlainText(points.Number());
        case Side::Start:
            if (points.Start == 0) return "";
            return NumberText(cells, column.What, ValueOf(column.What, start()));
        case Side::Target:
            if (points.Target == 0) return "";
            return NumberText(cells, column.What, ValueOf(column.What, target()));
        case Side::Deviation:
            break;
    }
    if (points.Start == 0 || points.Target == 0) return "";
    return NumberText(cells, column.What, DifferenceOf(column.What, start(), target()));
}

std::int32_t MainSheetBackColor(const MainSheetCells& cells, int row, int col) {
    if (col < 0 || col >= kMainSheetCols || row < 1 || row >= MainSheetRows(cells)) return kSystemColour;
    const RowPoints points = PointsOfRow(cells.Counts, row);
    const bool isPair = points.Start != 0 && points.Target != 0;
    const ColumnKind& column = kColumns[At(col)];
    if (column.Of == Side::Name)
        return isPair ? QbColor(kGreen) : points.Start != 0 ? QbColor(kYellow) : kOrange;
    if (isPair && column.Of == Side::Deviation && column.What <= Quantity::Z &&
        IsBeyond(row, static_cast<int>(column.What) + 1, cells.Tolerance))
        return kBeyondTolerance;
    return (isPair ? column.MarkedInPairs : column.MarkedAlone) ? QbColor(kYellow) : kSystemColour;
}

}  // namespace corvinade::analysis
