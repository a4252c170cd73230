// What the window "Reliability" shows, as sentences and cells.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/rooms.h"
#include "fit/adjustment_statistics.h"

namespace corvinade::analysis {

// "passed (...): the deviations are ..." in plain words, as the table of the command line has it too; ""
// without a-priori standard deviations or redundancy.
std::string GlobalTestInWords(const AdjustmentStatistics& statistics);

// The same as a sentence of its own with what to do, or what is to be known in its place.
std::string GlobalTestSentence(const AdjustmentStatistics& statistics);

// Why there are no statistics of the job as it is.
std::string WhyNoStatistics();

// Indices of the coordinates of all pairs (three a pair, from 1), the largest standardised residual first and
// those without one last; equal ones in the order of the points.
std::vector<std::size_t> WorstFirst(const AdjustmentStatistics& statistics);

// A cell of the table of coordinates (ReliabilityColumn), and its ground: outliers, points that would not
// fit, and coordinates that nothing controls have their own.
std::string CoordinateText(const AdjustmentStatistics& statistics, std::size_t index, int col);
std::int32_t CoordinateColour(const AdjustmentStatistics& statistics, std::size_t index, int col);

// The parameters that float, by their unknowns from 1 on.
std::vector<int> FloatingParameters(const AdjustmentStatistics& statistics);

// The ground of a correlation: the darker, the nearer it is to 1 or -1; that of the desktop for small ones.
std::int32_t CorrelationColour(double correlation);

// The table of accuracies: parameters, and behind them all transformed start points. Row 0 has the headings.
enum AccuracyColumn : int {
    kAccName,
    kAccSigma,
    kAccPosterior,
    kAccUnit,
    kAccX,
    kAccY,
    kAccZ,
    kAccAxis1,
    kAccAxis2,
    kAccAxis3,
    kAccCols
};
int AccuracyRows(const AdjustmentStatistics& statistics);
std::string AccuracyText(const AdjustmentStatistics& statistics, int row, int col);

}  // namespace corvinade::analysis
