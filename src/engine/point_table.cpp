// What the point table shows, cell by cell.
#include "engine/point_table.h"

#include <utility>

#include "core/job.h"
#include "core/job_tolerance.h"
#include "core/numbers.h"
#include "core/window.h"
#include "engine/tolerance_check.h"

namespace corvinade::engine {

namespace {

constexpr int kGreen = 10, kYellow = 14, kWhite = 15;  // of the sixteen colours

enum class RowKind : std::uint8_t { Measurement, Object, Deviation };

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

bool IsInside(const PointTable& table, int row) {
    return row > 0 && row < PointTableRows(table);
}

// The place of a row among those of its point, from 0.
int PlaceInGroup(const PointTable& table, int row) {
    return (row - 1) % RowKinds(table);
}

RowKind KindOfRow(const PointTable& table, int row) {
    int place = PlaceInGroup(table, row);
    if (table.Measurement && place-- == 0) return RowKind::Measurement;
    if (table.Object && place == 0) return RowKind::Object;
    return RowKind::Deviation;
}

const std::array<double, 3>& PointShown(const PointTable& table, int row) {
    const std::size_t point = At(PointOfRow(table, row));
    switch (KindOfRow(table, row)) {
        case RowKind::Measurement:
            return table.Start[point];
        case RowKind::Object:
            return table.Target[point];
        case RowKind::Deviation:
            break;
    }
    return table.Deviations[point];
}

bool HoldsName(const PointTable& table, int row) {
    return IsInside(table, row) && PlaceInGroup(table, row) == 0;
}

bool IsUseCell(const PointTable& table, int row, int col) {
    return col >= kColUseX && col <= kColUseZ && IsDeviationRow(table, row);
}

// While an import goes on, the pairs that it has found need not have use flags yet.
int PairsOfJob() {
    return UpperBound(Job.UseFlags) >= 3 * Job.Pairs() ? Job.Pairs() : 0;
}

std::array<double, 3> Components(const Vec3& point) {
    return {point(1), point(2), point(3)};
}

std::array<double, 3> DeviationOf(int i) {
    const Vec3 image = TransformedPoint(i), target = TargetPoint(i);
    return {image(1) - target(1), image(2) - target(2), image(3) - target(3)};
}

}  // namespace

int RowKinds(const PointTable& table) {
    return static_cast<int>(table.Measurement) + static_cast<int>(table.Object) +
           static_cast<int>(table.Deviation);
}

void TakePoints(PointTable& table) {
    const int pairs = PairsOfJob();
    const std::size_t size = At(pairs) + 1;
    table.Names.assign(size, "");
    table.Start.assign(table.Measurement ? size : 0, {});
    table.Target.assign(table.Object ? size : 0, {});
    table.Deviations.assign(table.Deviation ? size : 0, {});
    table.InUse.assign(size, {});
    for (int i = 1; i <= pairs; ++i) {
        table.Names[At(i)] = Job.Start.Name[At(i)];
        if (table.Measurement) table.Start[At(i)] = Components(StartPoint(i));
        if (table.Object) table.Target[At(i)] = Components(TargetPoint(i));
        if (table.Deviation) table.Deviations[At(i)] = DeviationOf(i);
        for (int axis = 0; axis < 3; ++axis) table.InUse[At(i)][At(axis)] = Used(i, axis + 1);
    }
}

int PointTableRows(const PointTable& table) {
    const int points = table.Names.empty() ? 0 : UpperBound(table.Names);
    return points * RowKinds(table) + 1;
}

int PointOfRow(const PointTable& table, int row) {
    return IsInside(table, row) ? (row - 1) / RowKinds(table) + 1 : 0;
}

bool IsDeviationRow(const PointTable& table, int row) {
    return IsInside(table, row) && table.Deviation && row % RowKinds(table) == 0;
}

int DeviationRow(const PointTable& table, int point) {
    const int row = point * RowKinds(table);
    return IsDeviationRow(table, row) ? row : 0;
}

void KeepPointsTogether(const PointTable& table, int col, std::vector<int>& order) {
    const int kinds = RowKinds(table);
    if (kinds < 2 || order.size() != At(PointTableRows(table))) return;
    const int key = col == kColName || !table.Deviation ? 0 : kinds - 1;
    std::vector<int> together = {order.front()};
    together.reserve(order.size());
    for (const int row : order) {
        if (!IsInside(table, row) || PlaceInGroup(table, row) != key) continue;
        for (int place = 0; place < kinds; ++place) together.push_back(row - key + place);
    }
    order = std::move(together);
}

std::string PointTableText(const PointTable& table, int row, int col) {
    constexpr std::array<const char*, kPointCols> kHeadings = {"",      "Pt.ID", "dev.x", "dev.y", "dev.z",
                                                               "use.x", "use.y", "use.z", ""};
    if (col < 0 || col >= kPointCols) return "";
    if (row == 0) return kHeadings[At(col)];
    const int point = PointOfRow(table, row);
    if (point == 0 || col == 0) return "";
    if (col == kColPoint) return PlainText(point);
    if (col == kColName) return HoldsName(table, row) ? table.Names[At(point)] : "";
    if (col >= kColUseX)
        return IsUseCell(table, row, col) && table.InUse[At(point)][At(col - kColUseX)] ? "X" : "";
    return FormatNumber(PointShown(table, row)[At(col - kColX)] * table.LengthFactor, table.Format);
}

std::int32_t PointTableBackColor(const PointTable& table, int row, int col) {
    if (IsUseCell(table, row, col)) {
        const std::size_t point = At(PointOfRow(table, row));
        return QbColor(table.InUse[point][At(col - kColUseX)] ? kWhite : kYellow);
    }
    if (col >= kColX && col <= kColZ && IsDeviationRow(table, row))
        return IsBeyond(PointOfRow(table, row), col - kColX + 1, table.Tolerance) ? kBeyondTolerance
                                                                                  : kSystemColour;
    if (col != kColName || !HoldsName(table, row)) return kSystemColour;
    const std::string& name = table.Names[At(PointOfRow(table, row))];
    for (const std::string& seed : table.Seeds)
        if (!seed.empty() && seed == name) return QbColor(kGreen);
    return kSystemColour;
}

}  // namespace corvinade::engine
