// What a report says of the job and its result.
#include "analysis/report.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <ctime>
#include <numeric>
#include <optional>
#include <utility>

#include "analysis/reliability_tables.h"
#include "core/controller.h"
#include "core/job.h"
#include "core/notes.h"
#include "core/numbers.h"
#include "core/run.h"
#include "core/units.h"
#include "engine/calculation.h"
#include "engine/clipboard_report.h"
#include "engine/norm_table.h"
#include "engine/parameter_kind.h"
#include "engine/result_notes.h"
#include "engine/result_state.h"
#include "engine/result_statistics.h"
#include "engine/shown_parameters.h"
#include "engine/tolerance_check.h"
#include "fit/vector.h"

namespace corvinade::analysis {

namespace {

struct Deviation {
    int Pair = 0;
    std::array<double, 3> Of{};
    double Length = 0;
};

std::vector<Deviation> DeviationsOfPairs() {
    std::vector<Deviation> all;
    all.reserve(static_cast<std::size_t>(std::max(Job.Pairs(), 0)));
    for (int i = 1; i <= Job.Pairs(); ++i) {
        const Vec3 image = TransformedPoint(i), target = TargetPoint(i);
        Deviation one{.Pair = i};
        for (int axis = 1; axis <= 3; ++axis)
            one.Of[static_cast<std::size_t>(axis - 1)] = image(axis) - target(axis);
        one.Length = Hypot3(one.Of[0], one.Of[1], one.Of[2]);
        all.push_back(one);
    }
    return all;
}

bool IsInUse(int pair, int axis) {
    return 3 * pair <= UpperBound(Job.UseFlags) && Used(pair, axis);
}

std::string Today() {
    const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    std::array<char, 20> text{};
    const std::tm* const local = std::localtime(&now);
    if (local == nullptr || std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M", local) == 0) return "";
    return text.data();
}

std::string Named(const std::string& name, const char* otherwise) {
    return name.empty() ? otherwise : name;
}

std::string SideLine(const std::string& name, const std::string& path, int points) {
    return name + ": " + PlainText(points) + " points" + (path.empty() ? "" : ", " + path);
}

ReportSection Summary(const ToleranceCheck& check) {
    ReportSection section{.Title = "Result"};
    const std::string start = Named(Job.NameMCS, "MCS"), target = Named(Job.NameOCS, "OCS");
    section.Lines.push_back(SideLine(start, Job.PathMCS, Job.Start.Count()));
    section.Lines.push_back(SideLine(target, Job.PathOCS, Job.Target.Count()));
    section.Lines.push_back(PlainText(Job.Pairs()) + " identical points, " + NormOfJob().Label);
    if (StoredResultStands())
        section.Lines.emplace_back(
            "The result is the one that the job was opened with; nothing has been calculated anew.");
    if (check.Word != Verdict::None) section.Lines.push_back("Tolerance " + ToleranceInWords(check));
    ReportTable table{.Heads = {"quality [" + Job.LengthUnitName + "]", ""}};
    const auto add = [&table](const std::string& name, double value) {
        table.Rows.push_back({{name}, {std::isfinite(value) ? ShownLength(value) : kOpenSigma}});
    };
    if (CalculationIsOfThisJob()) {
        add("s0, by the coordinates in use less one", Calculation.s0);
        add("mean error x", Calculation.sx);
        add("mean error y", Calculation.sy);
        add("mean error z", Calculation.sz);
        add("mean error xyz", Calculation.SigmaXYZ);
    }
    const std::vector<Deviation> all = DeviationsOfPairs();
    const Deviation* worst = nullptr;
    for (const Deviation& one : all)
        if (IsInUse(one.Pair, 1) && IsInUse(one.Pair, 2) && IsInUse(one.Pair, 3) &&
            (worst == nullptr || one.Length > worst->Length))
            worst = &one;
    if (worst != nullptr)
        add("largest 3D deviation in use, " + Job.Start.Name[static_cast<std::size_t>(worst->Pair)],
            worst->Length);
    section.Tables.push_back(std::move(table));
    return section;
}

ReportSection ParameterSection() {
    ReportSection section{.Title = "Parameters"};
    ReportTable table{.Heads = {"parameter", "unit", "value", "sigma", "significance"}, .TextColumns = 2};
    const bool statistics = CalculationIsOfThisJob();
    for (const ShownParameter& one : ShownParameters()) {
        const std::string sigma = statistics ? one.Sigma : kOpenSigma,
                          significance = statistics || !one.Floats ? one.Significance : kOpenSigma;
        table.Rows.push_back({{one.Name}, {one.Unit}, {one.Value}, {sigma}, {significance}});
    }
    section.Tables.push_back(std::move(table));
    if (!statistics)
        section.Lines.push_back("The job holds no sigmas for this result; Calculate makes them.");
    return section;
}

ReportSection StatisticsSection() {
    ReportSection section{.Title = "How far it can be trusted"};
    const std::optional<AdjustmentStatistics> statistics = StatisticsOfResult(TestLevels{});
    if (!statistics) {
        section.Lines.push_back(WhyNoStatistics());
        return section;
    }
    section.Lines.push_back(GlobalTestSentence(*statistics));
    // The same deviations have two measures, and a reader who finds both wants to know why.
    if (!statistics->APriori && !statistics->Singular && statistics->Redundancy > 0)
        section.Lines.push_back(
            "This s0 = " + ShownLength(statistics->s0) + " divides by the redundancy, " +
            PlainText(statistics->Redundancy) + " (coordinates in use less unknowns); the s0 = " +
            ShownLength(Calculation.s0) + " of the result divides by the coordinates in use less one.");
    if (const std::string note = NoteOfStatistics(*statistics); !note.empty()) section.Lines.push_back(note);
    const Coordinate outlier = WorstOutlier(*statistics);
    section.Lines.push_back(outlier.Pair == 0
                                ? std::string("No coordinate is an outlier.")
                                : "The largest outlier is " + std::string(1, "xyz"[outlier.Axis - 1]) +
                                      " of " + Job.Start.Name[static_cast<std::size_t>(outlier.Pair)] + ".");
    return section;
}

ReportSection PointSection(int wanted, double tolerance_mm) {
    ReportSection section{.Title = "Points"};
    std::vector<Deviation> rows = DeviationsOfPairs();
    const std::size_t all = rows.size();
    const std::size_t most =
        static_cast<std::size_t>(wanted > 0 ? std::min(wanted, kMostReportRows) : kMostReportRows);
    if (wanted > 0 || all > most) {
        const std::size_t kept = std::min(most, all);
        std::partial_sort(rows.begin(), rows.begin() + static_cast<std::ptrdiff_t>(kept), rows.end(),
                          [](const Deviation& a, const Deviation& b) {
                              return a.Length != b.Length ? a.Length > b.Length : a.Pair < b.Pair;
                          });
        rows.resize(kept);
        if (kept < all)
            section.Lines.push_back("The " + PlainText(static_cast<int>(kept)) + " largest of " +
                                    PlainText(static_cast<int>(all)) + " deviations.");
    }
    section.Lines.push_back("Transformed start minus target, in " + Job.LengthUnitName +
                            ". In brackets: not used in the fit.");
    ReportTable table{.Heads = {"point", "dx", "dy", "dz", "3D"}};
    table.Rows.reserve(rows.size());
    for (const Deviation& one : rows) {
        std::vector<ReportCell> cells = {{Job.Start.Name[static_cast<std::size_t>(one.Pair)]}};
        for (int axis = 1; axis <= 3; ++axis) {
            const double value = one.Of[static_cast<std::size_t>(axis - 1)];
            const std::string text = ShownLength(value);
            cells.push_back(
                {IsInUse(one.Pair, axis) ? text : "(" + text + ")", IsBeyond(one.Pair, axis, tolerance_mm)});
        }
        cells.push_back({ShownLength(one.Length)});
        table.Rows.push_back(std::move(cells));
    }
    section.Tables.push_back(std::move(table));
    return section;
}

ReportSection NoteSection() {
    ReportSection section{.Title = "Notes"};
    if (Notes.List.empty()) {
        section.Lines.push_back("Nothing was noticed.");
        return section;
    }
    ReportTable table{.Heads = {"severity", "text"}, .TextColumns = 2};
    for (const Note& note : Notes.List)
        table.Rows.push_back(
            {{SeverityName(note.Weight), note.Weight == Severity::Warning}, {NoteLine(note)}});
    section.Tables.push_back(std::move(table));
    return section;
}

}  // namespace

std::string WhyNoReport() {
    if (!IsTrue(Run.JobDataValid)) return "There are no points: choose Input Files";
    if (!IsTrue(Run.TrafoValid) && !StoredResultStands()) return "There is no result: make a calculation";
    return "";
}

Report ReportOfJob(const ReportChoice& choice, const std::string& logo) {
    // An opened job has a result, and its statistics where they can be had.
    if (!CalculationIsOfThisJob() && !IsTrue(Job.IsParaboloid)) TakeStoredResult();
    const ToleranceCheck check = CheckTolerance();
    Report report;
    const bool toTarget = IsTrue(Job.DirectionMCStoOCS);
    const std::string mcs = Named(Job.NameMCS, "MCS"), ocs = Named(Job.NameOCS, "OCS");
    report.Title = !choice.Title.empty()
                       ? choice.Title
                       : "Transformation of " + (toTarget ? mcs : ocs) + " to " + (toTarget ? ocs : mcs);
    report.Project = choice.Project;
    report.Author = choice.Author;
    report.Made = "Corvinade " + ProgramVersion() + ", " + Today();
    report.LogoBytes = logo;
    report.Verdict = WordOf(check.Word);
    if (IsTrue(Job.Unconverged)) report.Warnings.emplace_back("The calculation did not converge.");
    if (IsTrue(Job.Collapsed)) report.Warnings.emplace_back("A scale of the result has gone to 0.");
    if (ShownResult.State == ResultState::Outdated)
        report.Warnings.emplace_back(
            "Points, parameters, norm or use have been changed since this result was calculated.");
    report.Sections.push_back(Summary(check));
    if (choice.Parameters) report.Sections.push_back(ParameterSection());
    if (choice.Statistics) report.Sections.push_back(StatisticsSection());
    if (choice.Points) report.Sections.push_back(PointSection(choice.Worst, check.Tolerance_mm));
    if (choice.Notes) report.Sections.push_back(NoteSection());
    if (choice.Protocol && CalculationIsOfThisJob())
        report.Sections.push_back({.Title = "Protocol", .Text = CompleteProtocol()});
    return report;
}

}  // namespace corvinade::analysis
