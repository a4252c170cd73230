// What the main sheet shows: all points of the job as they stood when it was filled, start points carried
// into the target system. The sheet is shown from here, so nothing that happens to the job meanwhile changes
// it before it is filled again.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/rooms.h"

namespace corvinade::analysis {

// Columns of the sheet; those without a name of their own here stand in the table of the source.
inline constexpr int kColPointID = 0, kColNumber = 22, kMainSheetCols = 23;
// Behind them, with DesktopDefaults.SheetDeviation: the length of the deviation, with a bar.
inline constexpr int kColDeviation3D = kMainSheetCols;
int SheetCols();

// Which rows the sheet shows. The entries of its list are in this order.
enum class SheetFilter : std::uint8_t {
    All,
    NotInUse,        // pairs with a coordinate that takes no part
    OverTolerance,   // pairs with a coordinate in use beyond the tolerance
    WithoutPartner,  // points of one system alone
};

// How many points of each kind there are.
struct PointCounts {
    int Pairs = 0, StartOnly = 0, TargetOnly = 0;
    bool operator==(const PointCounts&) const = default;
};

struct MainSheetCells {
    // How it is shown.
    double LengthFactor = 1, AngleFactor = 1;  // mm and rad to the shown units
    std::string LengthFormat, AngleFormat, AngleUnit;
    double Tolerance = 0;             // mm, 0 = none
    std::uint64_t JobGeneration = 0;  // of the points

    // Rows of the pairs, then of the start points without a partner, then of the target points without one.
    PointCounts Counts;
    std::vector<std::string> Names;                    // row i at i - 1
    std::vector<std::array<double, 3>> Start, Target;  // mm; point i of each list at i - 1
    double Largest = 0;                                // 3D deviation in use, mm; bars are shares of it
};

// The points of the job; none of any kind where they are not valid, such as those that a new job leaves in
// memory, or counts and arrays do not fit each other.
PointCounts PointsOfJob();

// A sheet for the points and units of the job, whose rows are still to be taken.
MainSheetCells BeginMainSheet(const PointCounts& counts);

// Takes the point of a row, from 1, out of the job, a start point with the job's transformation. Require:
// the job still has all the points that the sheet was begun for.
void TakeRow(MainSheetCells& cells, int row);

// Number of rows with the heading.
int MainSheetRows(const MainSheetCells& cells);

// The pair that a row shows, from 1; 0 for every other row.
int PairOfRow(const MainSheetCells& cells, int row);

// The rows that a filter leaves, by their places in the sheet as it was filled, with the heading; by the use
// flags and the tolerance of the job. Of `All` nothing.
std::vector<int> RowsOfFilter(const MainSheetCells& cells, SheetFilter filter);

// The length of a pair's deviation, mm; nothing of a row without a partner. What share of the largest it is,
// 0 to 1.
std::optional<double> Deviation3D(const MainSheetCells& cells, int row);
double LargestInUse(
    const MainSheetCells& cells);  // of pairs of which a coordinate is in use; 0 = there is none
double BarOfSheet(const MainSheetCells& cells, int row, int col);

// Text and back colour of a cell, by the row's place in the sheet as it was filled. The numbers are computed
// and formatted here, for one cell alone.
std::string MainSheetText(const MainSheetCells& cells, int row, int col);
std::int32_t MainSheetBackColor(const MainSheetCells& cells, int row, int col);

}  // namespace corvinade::analysis
