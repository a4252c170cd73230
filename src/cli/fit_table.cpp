// The result of a fit as a table for people.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <ostream>

#include "cli/csv.h"
#include "cli/fit_details.h"
#include "cli/fit_output.h"
#include "cli/fit_parameters.h"
#include "cli/fit_style.h"
#include "cli/text_columns.h"
#include "core/controller.h"
#include "core/job.h"
#include "core/job_tolerance.h"
#include "core/numbers.h"
#include "core/run.h"
#include "core/units.h"
#include "engine/adjustment.h"
#include "engine/calculation.h"
#include "engine/inverse.h"
#include "engine/monte_carlo.h"
#include "engine/norm_table.h"
#include "engine/norms.h"
#include "engine/result_notes.h"

namespace corvinade::cli {

namespace {

// How much less the sum or the largest deviation could be at most.
std::string DistanceFromOptimum() {
    const std::string what = NormOfJob().Least;
    if (!std::isfinite(Norm.AboveOptimum)) return "how near the " + what + " is to it is not known";
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.1e", Norm.AboveOptimum);
    const std::string about = Norm.BoundOfAll   ? " mm above it, which is the least of all"
                              : Norm.Starts > 1 ? " mm above that of this minimum, the best of " +
                                                      std::to_string(Norm.Starts) + " starts"
                                                : " mm above that of this minimum";
    return "the " + what + " is at most " + text.data() + about;
}

void WriteHead(const FitOptions& options, const Style& style, std::ostream& out) {
    const auto& c = Calculation;
    out << style.Heading("Corvinade " + ProgramVersion()) << "  least-squares 3D transformation\n\n";
    out << HeadLabel("start") << ForTable(options.Start, kLongestPath) << "  (" << Job.Start.Count()
        << " points)\n";
    out << HeadLabel("target") << ForTable(options.Target, kLongestPath) << "  (" << Job.Target.Count()
        << " points)\n";
    if (options.FromTarget)
        out << HeadLabel("direction") << StartSystem() << " => " << TargetSystem() << "\n";
    out << HeadLabel("pairs") << Job.Pairs() << " by " << options.Match;
    if (Job.StartOnly() > 0) out << ", " << Job.StartOnly() << " only in start";
    if (Job.TargetOnly() > 0) out << ", " << Job.TargetOnly() << " only in target";
    out << "\n"
        << HeadLabel("observations") << ObservationsInUse() << " in use, " << c.nFloat << " unknowns\n";
    if (Norm.Iterations > 0)
        out << HeadLabel("norm") << NormOfJob().Label << ", " << Norm.Iterations << " weightings\n";
    if (Norm.RunOn) out << HeadLabel("optimum") << DistanceFromOptimum() << "\n";
    out << HeadLabel("iterations") << Adjustment.Iterations;
    if (!c.Converged) out << "  " << style.Alarm("convergence not reached");
    out << "\n";
}

void WriteParameters(const Style& style, std::ostream& out) {
    const std::vector<ShownParameter> parameters = ShownParameters();
    const auto cells = [](const ShownParameter& p) -> std::vector<std::string> {
        return {p.Name, p.Value, p.Sigma, p.Significance};
    };
    TextColumns columns{{12, 16, 12, 12}};
    for (const ShownParameter& p : parameters) columns.MakeRoom(cells(p));
    out << "\n" << style.Heading(columns.Line({"Parameter", "value", "sigma", "significance"})) << "  unit\n";
    for (const ShownParameter& p : parameters)
        out << columns.Line(cells(p)) << "  " << style.Quiet(p.Unit) << "\n";
}

// What the noise of the measurement does to the parameters, beside what error propagation says of them.
void WriteMonteCarlo(const FitOptions& options, const Style& style, std::ostream& out) {
    std::vector<std::vector<std::string>> rows;
    std::vector<std::string> units;
    for (const ShownParameter& p : ShownParameters()) {
        if (!p.Floats) continue;
        rows.push_back({p.Name, ShownAs(p.Is, SigmaOfArray(MonteCarloArray(p.Number))), p.Sigma});
        units.push_back(p.Unit);
    }
    rows.push_back({"mean error", ShownLength(SigmaOfArray(MonteCarloArray(kSigmaXYZ))), "-"});
    units.push_back(Job.LengthUnitName);
    TextColumns columns{{12, 16, 12}};
    for (const auto& row : rows) columns.MakeRoom(row);
    out << "\n" << style.Heading(columns.Line({"Monte Carlo", "spread", "sigma"})) << "  unit\n";
    for (std::size_t i = 0; i < rows.size(); ++i)
        out << columns.Line(rows[i]) << "  " << style.Quiet(units[i]) << "\n";
    out << style.Quiet("(" + NoiseInWords(options) + ")") << "\n";
}

// The inverse, a column a solution. Matrices with tiny elements have solutions beyond counting; the first
// ones do for a table.
constexpr int kSolutionsAcross = 4;
constexpr int kMostSolutions = 16;

void WriteSolutions(int first, int last, const Style& style, std::ostream& out) {
    struct Line {
        int Column;
        const char* Name;
        ParameterKind Is;
    };
    constexpr std::array<Line, 9> lines = {{{1, "rot x", ParameterKind::Angle},
                                            {2, "rot y", ParameterKind::Angle},
                                            {3, "rot z", ParameterKind::Angle},
                                            {4, "scale x", ParameterKind::Scale},
                                            {5, "scale y", ParameterKind::Scale},
                                            {6, "scale z", ParameterKind::Scale},
                                            {7, "xy", ParameterKind::Angle},
                                            {8, "Azimuth", ParameterKind::Angle},
                                            {9, "z to xy", ParameterKind::Angle}}};
    const auto cells = [first, last](const Line& line) {
        std::vector<std::string> texts = {line.Name};
        for (int i = first; i <= last; ++i)
            texts.push_back(ShownAs(line.Is, Inverse.InvSolutions(i, line.Column)));
        return texts;
    };
    std::vector<std::string> head = {""};
    for (int i = first; i <= last; ++i) head.push_back("solution " + std::to_string(i));
    TextColumns columns{std::vector<int>(head.size(), 12)};
    columns.MakeRoom(head);
    for (const Line& line : lines) columns.MakeRoom(cells(line));
    out << "\n" << style.Heading(columns.Line(head)) << "\n";
    for (const Line& line : lines)
        out << columns.Line(cells(line)) << "  " << style.Quiet(UnitOf(line.Is)) << "\n";
}

void WriteInverse(const Style& style, std::ostream& out) {
    const std::array<std::vector<std::string>, 3> rows = {{{"Tra x", ShownLength(Inverse.InvTraX)},
                                                           {"Tra y", ShownLength(Inverse.InvTraY)},
                                                           {"Tra z", ShownLength(Inverse.InvTraZ)}}};
    TextColumns columns{{12, 16}};
    for (const auto& row : rows) columns.MakeRoom(row);
    out << "\n" << style.Heading(columns.Line({"Inverse", "value"})) << "  unit\n";
    for (const auto& row : rows) out << columns.Line(row) << "  " << style.Quiet(Job.LengthUnitName) << "\n";
    const int solutions = std::max(Inverse.InvSolutions.Rows, 0);
    if (solutions == 0) out << style.Alarm("no solution") << "\n";
    const int shown = std::min(solutions, kMostSolutions);
    for (int first = 1; first <= shown; first += kSolutionsAcross)
        WriteSolutions(first, std::min(first + kSolutionsAcross - 1, shown), style, out);
    if (shown < solutions)
        out << style.Quiet("(and " + std::to_string(solutions - shown) + " more solutions)") << "\n";
}

void WriteQuality(const Style& style, std::ostream& out) {
    const auto& c = Calculation;
    const std::vector<std::string> mean = {"mean error", ShownLength(c.sx), ShownLength(c.sy),
                                           ShownLength(c.sz), ShownLength(c.SigmaXYZ)};
    const std::vector<std::string> s0 = {"s0", ShownLength(c.s0)};
    TextColumns columns{{12, 10, 10, 10, 10}};
    columns.MakeRoom(mean);
    columns.MakeRoom(s0);
    const FitNorms norms = NormsOfDeviations();
    const std::vector<std::string> sum = {"sum", ShownLength(norms.Sum)};
    const std::vector<std::string> largest = {"largest", ShownLength(norms.Largest)};
    columns.MakeRoom(sum);
    columns.MakeRoom(largest);
    out << "\n"
        << style.Heading(columns.Line({"Quality", "x", "y", "z", "xyz"})) << "  "
        << style.Quiet(Job.LengthUnitName) << "\n";
    out << columns.Line(mean) << "\n" << columns.Line(s0) << "\n";
    if (const ToleranceCheck check = CheckTolerance(); check.Word != Verdict::None)
        out << columns.Line({"tolerance"}) << "  "
            << (check.Word == Verdict::Fail ? style.Alarm(ToleranceInWords(check)) : ToleranceInWords(check))
            << "\n";
    // What the other norms make least; with least squares the deviations below tell enough.
    if (Norm.Iterations > 0) out << columns.Line(sum) << "\n" << columns.Line(largest) << "\n";
}

// What the outputs have of all points is handed out in blocks of this size, bytes.
constexpr std::size_t kBlock = 1 << 16;

void HandOut(std::string& block, std::ostream& out, std::size_t from = kBlock) {
    if (block.size() < from) return;
    out.write(block.data(), static_cast<std::streamsize>(block.size()));
    block.clear();
}

// A coordinate that takes no part stands in brackets.
std::string DeviationCell(double deviation_mm, bool used) {
    const std::string value = ShownLength(deviation_mm);
    return used ? value : "(" + value + ")";
}

// The deviations of a column that are shown with the most characters: of the larger of two numbers with the
// same sign no fewer are shown.
struct Extremes {
    double Least = 0, Most = 0;
    double NotFinite = 0;  // one of these; 0 = there is none
    bool Any = false;
    void Take(double value) {
        Any = true;
        if (!std::isfinite(value)) {
            if (NotFinite == 0 || value < 0) NotFinite = value;
        } else if (value < Least) {
            Least = value;
        } else if (value > Most) {
            Most = value;
        }
    }
};

// What has to be known of all deviations before the first is written.
struct DeviationLook {
    TextColumns Columns{{12, 10, 10, 10, 10}};
    int Largest = 0;  // pair
    bool LeftOut = false;
};

constexpr std::size_t kNameColumn = 0, kLengthColumn = 4, kColumns = 5;

DeviationLook LookAtDeviations() {
    DeviationLook look;
    std::vector<int>& widths = look.Columns.Widths;
    std::array<std::array<Extremes, 2>, 3> axes{};  // by axis, left out or used
    Extremes length;
    double largest_mm = 0;
    for (int i = 1; i <= Job.Pairs(); ++i) {
        const FitPoint point = FitPointOf(i);
        widths[kNameColumn] = std::max(widths[kNameColumn], DisplayWidth(ForTable(point.Name, kLongestName)));
        for (std::size_t axis = 0; axis < 3; ++axis) {
            axes[axis][point.Used[axis] ? 1 : 0].Take(point.Deviation[axis]);
            look.LeftOut |= !point.Used[axis];
        }
        length.Take(point.Deviation3D);
        if (look.Largest > 0 && !(largest_mm < point.Deviation3D)) continue;
        look.Largest = i;
        largest_mm = point.Deviation3D;
    }
    const auto makeRoom = [&widths](std::size_t column, const Extremes& deviations, bool used) {
        if (!deviations.Any) return;
        for (const double value : {deviations.Least, deviations.Most, deviations.NotFinite})
            widths[column] = std::max(widths[column], DisplayWidth(DeviationCell(value, used)));
    };
    for (std::size_t axis = 0; axis < 3; ++axis)
        for (const bool used : {false, true}) makeRoom(axis + 1, axes[axis][used ? 1 : 0], used);
    makeRoom(kLengthColumn, length, true);
    return look;
}

// "beyond in x, z"; "" where no coordinate is beyond the tolerance.
std::string AxesBeyond(int pair, double tolerance_mm) {
    std::string axes;
    for (int axis = 1; axis <= 3; ++axis)
        if (IsBeyond(pair, axis, tolerance_mm))
            axes += (axes.empty() ? "beyond in " : ", ") + std::string(1, "xyz"[axis - 1]);
    return axes;
}

void WriteDeviations(const Style& style, std::ostream& out) {
    const DeviationLook look = LookAtDeviations();
    out << "\n"
        << style.Heading(look.Columns.Line({"Deviation", "dx", "dy", "dz", "3D"})) << "  "
        << style.Quiet(Job.LengthUnitName + ", transformed start minus target") << "\n";
    const double tolerance = ToleranceOf(Job);
    std::string block;
    std::vector<std::string> cells(kColumns);
    for (int i = 1; i <= Job.Pairs(); ++i) {
        const FitPoint point = FitPointOf(i);
        cells[kNameColumn] = ForTable(point.Name, kLongestName);
        for (std::size_t axis = 0; axis < 3; ++axis)
            cells[axis + 1] = DeviationCell(point.Deviation[axis], point.Used[axis]);
        cells[kLengthColumn] = ShownLength(point.Deviation3D);
        const std::string beyond = AxesBeyond(i, tolerance);
        if (i == look.Largest || !beyond.empty()) {
            const std::string marks =
                i == look.Largest ? "largest" + (beyond.empty() ? "" : ", " + beyond) : beyond;
            block += style.Alarm(look.Columns.Line(cells) + "  <- " + marks);
        } else {
            look.Columns.Append(cells, block);
        }
        block += '\n';
        HandOut(block, out);
    }
    HandOut(block, out, 0);
    if (look.LeftOut) out << style.Quiet("(in brackets: not used in the fit)") << "\n";
}

}  // namespace

void WriteFitTable(const FitOptions& options, const SolutionDetails* details, const FitStatistics& statistics,
                   std::ostream& out, bool colour) {
    const Style style{colour};
    WriteHead(options, style, out);
    WriteParameters(style, out);
    if (details != nullptr) WriteDetails(*details, style, out);
    if (HasMonteCarlo(options)) WriteMonteCarlo(options, style, out);
    if (options.Inverse) WriteInverse(style, out);
    WriteQuality(style, out);
    WriteDeviations(style, out);
    WriteStatisticsTable(options, statistics, out, colour);
}

void WriteFitCsv(const FitOptions&, std::ostream& out) {
    const auto number = [](double value_mm) { return PlainText(value_mm * Units.LengthFactor); };
    const std::string open = NamesLeftOpen();
    out << "name;start_x;start_y;start_z;target_x;target_y;target_z;transformed_x;transformed_y;transformed_z;"
           "dx;dy;dz;d3;use_x;use_y;use_z"
        << UnconvergedHeading() << OpenHeading(open) << CollapsedHeading() << "\r\n";
    std::string block;
    for (int i = 1; i <= Job.Pairs(); ++i) {
        const FitPoint point = FitPointOf(i);
        block += CsvText(std::string(point.Name));
        for (const auto* triple : {point.Start, point.Target, point.Transformed, point.Deviation})
            for (int axis = 0; axis < 3; ++axis) block.append(";").append(number(triple[axis]));
        block.append(";").append(number(point.Deviation3D));
        for (const bool used : point.Used) block += used ? ";1" : ";0";
        block += UnconvergedCell();
        block.append(OpenCell(open)).append(CollapsedCell());
        block += "\r\n";
        HandOut(block, out);
    }
    HandOut(block, out, 0);
}

}  // namespace corvinade::cli
