// How far the result of a fit can be trusted, as blocks of the table.
#include "cli/fit_statistics.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <ostream>

#include "analysis/reliability_tables.h"
#include "cli/fit_output.h"
#include "cli/fit_parameters.h"
#include "cli/fit_style.h"
#include "cli/text_columns.h"
#include "core/numbers.h"
#include "core/parameter_names.h"
#include "core/units.h"
#include "engine/parameter_kind.h"
#include "engine/result_statistics.h"
#include "engine/transform.h"

namespace corvinade::cli {

namespace {

constexpr const char* kNoNumber = "-";

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

std::string Plain(double value, const char* picture) {
    return std::isfinite(value) ? FormatNumber(value, picture) : kNoNumber;
}

// A sigma has digits that a coordinate has not.
std::string Length(double value_mm) {
    return std::isfinite(value_mm) ? ShownLength(value_mm) : kNoNumber;
}

// A table whose widths are those of its rows.
void WriteRows(const std::vector<std::string>& heading, const std::vector<std::vector<std::string>>& rows,
               const std::string& unit, const Style& style, std::ostream& out) {
    TextColumns columns{std::vector<int>(heading.size(), 10)};
    columns.Widths[0] = 12;
    columns.MakeRoom(heading);
    for (const auto& row : rows) columns.MakeRoom(row);
    out << "\n"
        << style.Heading(columns.Line(heading)) << (unit.empty() ? "" : "  " + style.Quiet(unit)) << "\n";
    std::string block;
    for (const auto& row : rows) {
        columns.Append(row, block);
        block += '\n';
        if (block.size() < 65536) continue;
        out << block;
        block.clear();
    }
    out << block;
}

void WriteOverview(const AdjustmentStatistics& s, const Style& style, std::ostream& out) {
    out << "\n" << style.Heading("Statistics") << "\n";
    out << HeadLabel("redundancy") << s.Redundancy << " = " << s.Observations << " coordinates - "
        << s.Unknowns << " unknowns\n";
    if (s.Redundancy > 0)
        out << HeadLabel("s0") << (s.APriori ? Plain(s.s0, "0.000") : Length(s.s0) + " " + Job.LengthUnitName)
            << "\n";
    if (const std::string test = analysis::GlobalTestInWords(s); !test.empty())
        out << HeadLabel("global test") << test << "\n";
    if (std::isfinite(s.CriticalValue))
        out << HeadLabel("single test") << (s.APriori ? "|w| of Baarda" : "|tau| of Pope") << " up to "
            << Plain(s.CriticalValue, "0.00") << ", error probability " << PlainText(s.Levels.AlphaSingle)
            << "\n";
}

void WriteParameters(const AdjustmentStatistics& s, const Style& style, std::ostream& out) {
    std::vector<std::vector<std::string>> rows;
    std::vector<int> floating;
    for (int k = kTraX; k < kParameterEnd; ++k)
        if (s.Model.UnknownOf[At(k)] != 0) floating.push_back(k);
    std::vector<std::string> heading = {"Accuracy", "sigma", "unit"};
    if (s.APriori) heading.insert(heading.begin() + 2, "posterior");
    const auto shown = [](int k, double sigma) {
        return std::isfinite(sigma) ? ShownAs(KindOf(k), sigma) : std::string(kNoNumber);
    };
    for (const int k : floating) {
        const double sigma = s.Sigma(s.Model.UnknownOf[At(k)]);
        rows.push_back({ParameterName(k), shown(k, sigma), UnitOf(KindOf(k))});
        if (s.APriori) rows.back().insert(rows.back().begin() + 2, shown(k, sigma * s.s0));
    }
    WriteRows(heading, rows, "", style, out);
    rows.clear();
    heading = {"Correlation"};
    for (const int k : floating) heading.emplace_back(ParameterName(k));
    for (const int i : floating) {
        rows.push_back({ParameterName(i)});
        for (const int j : floating)
            rows.back().push_back(
                Plain(s.Correlation(s.Model.UnknownOf[At(i)], s.Model.UnknownOf[At(j)]), "0.000"));
    }
    WriteRows(heading, rows, "", style, out);
}

// The coordinates in their order; of more than `most` the worst in their tests.
std::vector<std::size_t> ShownCoordinates(const AdjustmentStatistics& s, std::size_t most) {
    std::vector<std::size_t> order(s.Standardized.size() - 1);
    std::iota(order.begin(), order.end(), std::size_t{1});
    if (order.size() <= most) return order;
    const auto size = [&s](std::size_t i) {
        return std::isfinite(s.Standardized[i]) ? std::fabs(s.Standardized[i]) : -1;
    };
    std::partial_sort(
        order.begin(), order.begin() + static_cast<std::ptrdiff_t>(most), order.end(),
        [&size](std::size_t a, std::size_t b) { return size(a) > size(b) || (size(a) == size(b) && a < b); });
    order.resize(most);
    return order;
}

void WriteReliability(const AdjustmentStatistics& s, std::size_t most, const Style& style,
                      std::ostream& out) {
    std::vector<std::vector<std::string>> rows;
    for (const std::size_t index : ShownCoordinates(s, most)) {
        const int pair = static_cast<int>((index - 1) / 3) + 1, axis = static_cast<int>((index - 1) % 3) + 1;
        const FitPoint point = FitPointOf(pair);
        rows.push_back({ForTable(point.Name, kLongestName), std::string(1, "wxyz"[axis]),
                        Length(point.Deviation[axis - 1]), Plain(s.Redundancies[index], "0.000"),
                        Plain(s.Standardized[index], "0.00"), Length(s.Mdb(index)),
                        VerdictOf(s, pair, axis)});
    }
    WriteRows({"Reliability", "axis", "deviation", "redundancy", "standardized", "MDB", "verdict"}, rows,
              Job.LengthUnitName, style, out);
    if (rows.size() < s.Standardized.size() - 1)
        out << style.Quiet("(the " + std::to_string(rows.size()) + " worst of " +
                           std::to_string(s.Standardized.size() - 1) + " coordinates)")
            << "\n";
}

std::vector<std::string> AccuracyRow(const AdjustmentStatistics& s, const std::string& name,
                                     const Vec3& start) {
    const Mat3 covariance = CovarianceOfTransformed(s, start);
    const Ellipsoid ellipsoid = EllipsoidOf(covariance, s.EllipsoidFactor);
    std::vector<std::string> row = {name};
    for (int axis = 1; axis <= 3; ++axis)
        row.push_back(Length(std::sqrt(std::max(0.0, covariance(axis, axis)))));
    for (int axis = 1; axis <= 3; ++axis) row.push_back(Length(ellipsoid.SemiAxes(axis)));
    return row;
}

void WriteAccuracy(const FitOptions& options, const AdjustmentStatistics& s, std::size_t most,
                   const Style& style, std::ostream& out) {
    if (!std::isfinite(s.VarianceFactor)) return;
    std::vector<std::vector<std::string>> rows;
    const bool all = At(Job.Start.Count()) <= most;
    const int shown = all ? Job.Start.Count() : static_cast<int>(most);
    for (int i = 1; i <= shown && options.Statistics; ++i)
        rows.push_back(AccuracyRow(s, ForTable(Job.Start.Name[At(i)], kLongestName), StartPoint(i)));
    for (const std::array<double, 3>& place : options.AccuracyAt) {
        Vec3 start;
        std::string name = "at ";
        for (int axis = 1; axis <= 3; ++axis) {
            start(axis) = place[At(axis - 1)] / Units.LengthFactor;
            name += (axis == 1 ? "" : ",") + PlainText(place[At(axis - 1)]);
        }
        rows.push_back(AccuracyRow(s, name, start));
    }
    WriteRows(
        {"Transformed", "sigma x", "sigma y", "sigma z", "axis 1", "axis 2", "axis 3"}, rows,
        Job.LengthUnitName + ", axes of the ellipsoid of " + PlainText(100 * s.Levels.Confidence) + " %",
        style, out);
    if (!all && options.Statistics)
        out << style.Quiet("(the first " + std::to_string(shown) + " of " +
                           std::to_string(Job.Start.Count()) + " points)")
            << "\n";
}

void WriteSnooped(const FitStatistics& statistics, const Style& style, std::ostream& out) {
    std::vector<std::vector<std::string>> rows;
    for (const TakenOut& each : statistics.Snooped)
        rows.push_back({ForTable(each.Name, kLongestName), std::string(1, "wxyz"[each.Axis]),
                        Plain(each.Standardized, "0.00"), Plain(each.CriticalValue, "0.00")});
    WriteRows({"Taken out", "axis", "standardized", "limit"}, rows, "", style, out);
    if (rows.empty() && !statistics.Of->Singular)
        out << style.Quiet("(no coordinate fails its test)") << "\n";
}

}  // namespace

TestLevels LevelsOf(const FitOptions& options) {
    TestLevels levels{.Power = options.Power, .Confidence = options.Confidence};
    if (options.Alpha) levels.AlphaSingle = levels.AlphaGlobal = *options.Alpha;
    return levels;
}

bool WantsStatistics(const FitOptions& options) {
    if (options.Statistics || options.Snoop || !options.AccuracyAt.empty()) return true;
    return options.Output == FitOutput::Json && Job.Pairs() <= kMostPairsUnasked;
}

void WriteStatisticsTable(const FitOptions& options, const FitStatistics& statistics, std::ostream& out,
                          bool colour, std::size_t most) {
    const Style style{colour};
    if (!options.Snoop && !options.Statistics && options.AccuracyAt.empty()) return;
    if (!statistics.Of) {
        out << "\n"
            << style.Quiet(
                   "(no statistics: there are those of least squares that converged, of points that "
                   "are to coincide)")
            << "\n";
        return;
    }
    const AdjustmentStatistics& s = *statistics.Of;
    if (options.Snoop) WriteSnooped(statistics, style, out);
    if (!s.Singular && options.Statistics) {
        WriteOverview(s, style, out);
        WriteParameters(s, style, out);
        WriteReliability(s, most, style, out);
    }
    if (!s.Singular && (options.Statistics || !options.AccuracyAt.empty()))
        WriteAccuracy(options, s, most, style, out);
    if (const std::string note = NoteOfStatistics(s); !note.empty())
        out << style.Alarm("(" + note + ")") << "\n";
}

}  // namespace corvinade::cli
