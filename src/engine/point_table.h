// What the point table shows: the identical points as they stood when the table was filled. The table is
// shown from here, so nothing that happens to the job meanwhile changes it before it is filled again.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "core/rooms.h"

namespace corvinade::engine {

// Columns of the table. A use column stands three to the right of the deviation that it governs.
enum PointColumn : int {
    kColName = 1,
    kColX,
    kColY,
    kColZ,
    kColUseX,
    kColUseY,
    kColUseZ,
    kColPoint,
    kPointCols
};

struct PointTable {
    // How it is shown; taken when it is filled.
    bool Measurement = false, Object = false, Deviation = false;  // the kinds of row that each point has
    double LengthFactor = 1;                                      // mm to the shown unit
    std::string Format;                                           // picture string of the shown lengths
    std::array<std::string, 3> Seeds;                             // names of the seed points, "" = none
    double Tolerance = 0;                                         // mm, 0 = none

    // What is shown; taken when it is first looked at. Element 0 is unused; lengths in mm. Start and target
    // points and deviations are kept where they have a row.
    std::vector<std::string> Names;
    std::vector<std::array<double, 3>> Start, Target, Deviations;
    std::vector<std::array<bool, 3>> InUse;  // as the use cells show it
};

// Rows of each point: 0 to 3.
int RowKinds(const PointTable& table);

// Takes the identical points out of the job. A job that is just being replaced has none.
void TakePoints(PointTable& table);

// Number of rows with the heading.
int PointTableRows(const PointTable& table);

// The point that a row belongs to, by the row's place in the table as it was filled; 0 for the heading and
// outside.
int PointOfRow(const PointTable& table, int row);

// A row of deviations, which carries the use cells; and that of a point, 0 when it has none.
bool IsDeviationRow(const PointTable& table, int row);
int DeviationRow(const PointTable& table, int point);

// Of a table that has just been sorted by a column: `order`, which holds the rows as they were filled by
// their places, gets the rows of each point side by side and in their own order. The points stand as those
// rows do that the column is read in: names where they are, numbers where the deviations are, or in the first
// row.
void KeepPointsTogether(const PointTable& table, int col, std::vector<int>& order);

// Text and back colour of a cell. The numbers are formatted here, for one cell alone.
std::string PointTableText(const PointTable& table, int row, int col);
std::int32_t PointTableBackColor(const PointTable& table, int row, int col);

}  // namespace corvinade::engine
