// `corvinade-cli bundle`: the adjustment of a theodolite network.
#include "cli/bundle.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>

#include "bundle/bundle_file.h"
#include "bundle/bundle_run.h"
#include "bundle/open_points.h"
#include "cli/fit_options.h"
#include "cli/fit_style.h"
#include "cli/headless.h"
#include "cli/messages.h"
#include "cli/record_json.h"
#include "cli/text_columns.h"
#include "core/controller.h"
#include "core/job.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/text.h"
#include "core/units.h"
#include "core/window.h"

namespace corvinade::cli {

using nlohmann::ordered_json;

namespace {

// Counted up when a member goes or changes its meaning; new members leave it.
constexpr int kSchemaVersion = 1;

struct IterationFacts {
    double BiggestX, SumV, SumVV;
};

struct BundleResult {
    BundleWork Work;
    BundleEnd End = BundleEnd::Converged;
    std::vector<IterationFacts> Iterations;
    std::vector<std::string> Files;
};

bool TakesPart(const BundleWork& work, std::size_t distance) {
    return work.A[distance].Station != 0;
}
int DistancesInUse(const BundleWork& work) {
    int count = 0;
    for (std::size_t k = 1; k < work.A.size(); ++k)
        if (TakesPart(work, k)) ++count;
    return count;
}

std::string ShownLength(double length_mm) {
    return FormatNumber(length_mm * Units.LengthFactor, Units.FmtLength);
}

// Calls `take` for each point with its name, its coordinates and its first column less 1.
template <class Take>
void ForEachStation(Take take) {
    for (int i = 1; i <= Bundle.nStations; ++i)
        take(Bundle.StationName[static_cast<std::size_t>(i)], Bundle.Net.StationXYZ.Row(i), 3 * (i - 1));
}
template <class Take>
void ForEachObjectPoint(const BundleWork& work, Take take) {
    for (std::size_t k = 1; k < work.UsedObject.size(); ++k) {
        const int i = work.UsedObject[k];
        take(Bundle.ObjectName[static_cast<std::size_t>(i)], Bundle.Net.ObjectXYZ.Row(i),
             3 * (Bundle.nStations + static_cast<int>(k) - 1));
    }
}

void WritePoints(const BundleResult& result, const Style& style, std::ostream& out) {
    std::vector<std::vector<std::string>> rows;
    const auto add = [&](const std::string& name, const double* xyz, int column) {
        std::vector<std::string> row = {ForTable(name, kLongestName)};
        for (int axis = 1; axis <= 3; ++axis) row.push_back(ShownLength(xyz[axis]));
        for (int axis = 1; axis <= 3; ++axis) {
            const std::optional<double> accuracy = BundleAccuracy(result.Work, column + axis);
            row.push_back(accuracy                                       ? ShownLength(*accuracy)
                          : IsOpenCoordinate(result.Work, column + axis) ? "open"
                                                                         : "held");
        }
        rows.push_back(std::move(row));
    };
    ForEachStation(add);
    const std::size_t stations = rows.size();
    ForEachObjectPoint(result.Work, add);
    TextColumns columns{{12, 12, 12, 12, 10, 10, 10}};
    for (const auto& row : rows) columns.MakeRoom(row);
    const auto write = [&](const char* heading, std::size_t from, std::size_t to) {
        out << "\n"
            << style.Heading(columns.Line({heading, "x", "y", "z", "sigma x", "sigma y", "sigma z"})) << "\n";
        for (std::size_t i = from; i < to; ++i) out << columns.Line(rows[i]) << "\n";
    };
    write("Station", 0, stations);
    write("Object point", stations, rows.size());
    out << style.Quiet("(in " + Job.LengthUnitName + ")") << "\n";
}

void WriteTable(const BundleOptions& options, const BundleResult& result, const Style& style,
                std::ostream& out) {
    const BundleWork& work = result.Work;
    out << style.Heading("Corvinade " + ProgramVersion()) << "  adjustment of a theodolite network\n\n";
    out << HeadLabel("network") << ForTable(options.Path, kLongestPath) << "  (" << Bundle.nStations
        << " stations, " << Bundle.nObjectPoints << " object points)\n";
    out << HeadLabel("in use") << UpperBound(work.UsedObject) << " object points, " << DistancesInUse(work)
        << " of " << Bundle.nDistances << " distances, " << work.nUnknown << " unknowns\n";
    out << HeadLabel("iterations") << work.Iterations;
    if (result.End == BundleEnd::NoEnd) out << "  " << style.Alarm("convergence not reached");
    double largest = 0;
    for (const double v : work.v) largest = std::max(largest, std::fabs(v));
    out << "\n" << HeadLabel("s0") << ShownLength(BundleS0(work)) << "\n";
    out << HeadLabel("largest v") << ShownLength(largest) << "\n";
    for (const std::string& file : result.Files) out << HeadLabel("written") << file << "\n";
    WritePoints(result, style, out);
}

ordered_json PointJson(const BundleResult& result, const std::string& name, const double* xyz, int column) {
    ordered_json sigma = ordered_json::array(), determined = ordered_json::array();
    for (int axis = 1; axis <= 3; ++axis) {
        const std::optional<double> accuracy = BundleAccuracy(result.Work, column + axis);
        sigma.push_back(accuracy ? ordered_json(*accuracy) : ordered_json());
        determined.push_back(!IsOpenCoordinate(result.Work, column + axis));
    }
    return {{"name", name},
            {"xyz_mm", {xyz[1], xyz[2], xyz[3]}},
            {"sigma_mm", std::move(sigma)},
            {"determined", std::move(determined)}};
}

void WriteJson(const BundleOptions& options, const BundleResult& result, std::ostream& out) {
    const BundleWork& work = result.Work;
    ordered_json stations = ordered_json::array(), objects = ordered_json::array(),
                 distances = ordered_json::array(), iterations = ordered_json::array();
    ForEachStation([&](const std::string& name, const double* xyz, int column) {
        stations.push_back(PointJson(result, name, xyz, column));
    });
    ForEachObjectPoint(work, [&](const std::string& name, const double* xyz, int column) {
        objects.push_back(PointJson(result, name, xyz, column));
    });
    for (std::size_t k = 1; k < work.v.size(); ++k)
        distances.push_back({{"station", Bundle.DistancePair[1][k]},
                             {"objectPoint", Bundle.DistancePair[2][k]},
                             {"measured_mm", Bundle.Net.DistanceValue[k]},
                             {"used", TakesPart(work, k)},
                             {"v_mm", work.v[k]}});
    for (const IterationFacts& facts : result.Iterations)
        iterations.push_back(
            {{"biggestX_mm", facts.BiggestX}, {"sumV_mm", facts.SumV}, {"sumVV_mm2", facts.SumVV}});
    const ordered_json all = {{"schemaVersion", kSchemaVersion},
                              {"program", ProgramAsJson()},
                              {"file", options.Path},
                              {"reduce", options.Percent},
                              {"converged", result.End == BundleEnd::Converged},
                              {"unknowns", work.nUnknown},
                              {"distancesInUse", DistancesInUse(work)},
                              {"s0_mm", BundleS0(work)},
                              {"iterations", std::move(iterations)},
                              {"stations", std::move(stations)},
                              {"objectPoints", std::move(objects)},
                              {"distances", std::move(distances)},
                              {"files", result.Files},
                              {"notes", NotesToJson(Notes.List)}};
    out << all.dump(2, ' ', false, ordered_json::error_handler_t::replace) << "\n";
}

void ShowProgress(std::ostream& err, const BundleWork& work) {
    using Clock = std::chrono::steady_clock;
    const auto begin = Clock::now();
    auto last = begin;
    Headless.OnYield = [&err, &work, begin, last]() mutable {
        const auto now = Clock::now();
        if (now - begin < std::chrono::seconds(1) || now - last < std::chrono::milliseconds(200)) return;
        last = now;
        err << "\radjusting, iteration " << work.Iterations + 1 << "  " << std::flush;
    };
}

}  // namespace

std::string CheckReduce(const std::string& text) {
    double percent = 0;
    if (!TextToNumber(text, '.', percent)) return "\"" + Printable(text) + "\" is no percentage";
    return CheckPercentage(percent);
}

int RunBundle(const BundleOptions& options, std::ostream& out, std::ostream& err, bool colour,
              bool progress) {
    if (options.Decimal) Headless.Decimal = options.Decimal;
    // The same on every machine: nobody's settings are read for it.
    ReadSettingsText(DefaultSettingsText(), "the built-in settings");
    Job.LengthUnitName = options.LengthUnit;
    Job.LengthDigits = static_cast<std::int16_t>(options.LengthDigits);
    RhoFestlegung();
    const bool read = Dispatch([&] { Bundle = BündelInputFileEinlesen(options.Path); });
    Headless.Dialogs.clear();
    if (!read) return Refuse(err, kUnreadable, Run.LastPlatformError);

    BundleResult result;
    std::string approximate;
    const bool adjusted = Dispatch([&] {
        result.Work = PrepareBundle(Bundle, options.Percent);
        const std::string warnings = BundleWarnings(Bundle, result.Work);
        if (!warnings.empty()) err << OneParagraph(warnings) << "\n";
        approximate = NetworkText(Bundle, result.Work);
        if (progress) ShowProgress(LiveStream(err), result.Work);
        result.End = AdjustBundle(Bundle, result.Work, kBundleLimit,
                                  {{},
                                   [&result](const BundleWork& work) {
                                       result.Iterations.push_back({work.BiggestX, work.SumV, work.SumVV});
                                   },
                                   {}});
        Headless.OnYield = nullptr;
        if (progress) LiveStream(err) << "\r" << std::flush;
    });
    Headless.Dialogs.clear();
    if (!adjusted) return Refuse(err, kRefused, Run.LastPlatformError);
    const std::string endText = BundleEndText(result.End, result.Work);
    const bool hasResult = result.End == BundleEnd::Converged || result.End == BundleEnd::NoEnd;
    if (!hasResult) return Refuse(err, kRefused, endText);

    NoteOpenPoints(Bundle, result.Work);
    NoteBundleEnd(Bundle, result.Work, result.End);
    if (EndsForWarnings(options.Strict, err)) return kUnreadable;
    const bool written = options.Folder.empty() || Dispatch([&] {
                             result.Files = {WriteNetwork(options.Folder, kBundleTargetFile, approximate),
                                             WriteNetwork(options.Folder, kBundleStartFile,
                                                          AdjustedText(Bundle, result.Work))};
                         });
    Headless.Dialogs.clear();
    if (!written) return Refuse(err, kRefused, Run.LastPlatformError);
    if (options.Json) {
        WriteJson(options, result, out);
    } else {
        WriteTable(options, result, {colour}, out);
    }
    if (!out.flush()) return Refuse(err, kRefused, "the result could not be written to standard output");
    return result.End == BundleEnd::Converged ? kDone : Refuse(err, kNotConverged, endText);
}

}  // namespace corvinade::cli
