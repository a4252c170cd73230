// `corvinade-cli distances`: the distances between all pairs of points in the two systems of a job.
#include "cli/distances.h"

#include <array>
#include <chrono>
#include <nlohmann/json.hpp>
#include <ostream>
#include <vector>

#include "analysis/form_distance_scale.h"
#include "analysis/trumpet_file.h"
#include "cli/csv.h"
#include "cli/fit_options.h"
#include "cli/fit_style.h"
#include "cli/headless.h"
#include "cli/job_files.h"
#include "cli/messages.h"
#include "cli/record_json.h"
#include "cli/short_float.h"
#include "cli/text_columns.h"
#include "core/controller.h"
#include "core/files.h"
#include "core/job.h"
#include "core/job_file.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/text.h"
#include "core/units.h"
#include "core/window.h"
#include "paint/trumpet_file.h"

namespace corvinade::cli {

using nlohmann::ordered_json;

namespace {

// Counted up when a member goes or changes its meaning; new members leave it.
constexpr int kSchemaVersion = 1;

struct Measured {
    DistancePoints Points;
    std::vector<DistanceExtremes> Rows;
    std::string Name(int point) const { return Points.Names[static_cast<std::size_t>(point)]; }
    const DistanceExtremes& Row(int point) const { return Rows[static_cast<std::size_t>(point)]; }
};

// The differences that a user looks for first, over all pairs.
struct Extreme {
    float Value = 0;
    int From = 0, To = 0;
};
Extreme Largest(const Measured& m) {
    Extreme extreme{m.Row(1).MaxDelta, 1, m.Row(1).MaxDeltaAt};
    for (int i = 2; i <= m.Points.Count(); ++i)
        if (m.Row(i).MaxDelta > extreme.Value) extreme = {m.Row(i).MaxDelta, i, m.Row(i).MaxDeltaAt};
    return extreme;
}
Extreme Smallest(const Measured& m) {
    Extreme extreme{m.Row(1).MinDelta, 1, m.Row(1).MinDeltaAt};
    for (int i = 2; i <= m.Points.Count(); ++i)
        if (m.Row(i).MinDelta < extreme.Value) extreme = {m.Row(i).MinDelta, i, m.Row(i).MinDeltaAt};
    return extreme;
}

std::string InWords(const Measured& m, const Extreme& extreme) {
    const double shown = static_cast<double>(extreme.Value) * Units.LengthFactor;
    const std::string value = FormatNumber(shown, Units.FmtLength) + " " + Printable(Job.LengthUnitName);
    if (extreme.To == 0) return value;
    return value + "  (" + ForTable(m.Name(extreme.From), kLongestName) + " - " +
           ForTable(m.Name(extreme.To), kLongestName) + ")";
}

void WriteTable(const DistancesOptions& options, const Measured& m, const Style& style, std::ostream& out) {
    out << style.Heading("Corvinade distances") << "  " << ForTable(options.Job, kLongestPath) << "\n\n";
    out << HeadLabel("start") << ForTable(Job.NameMCS, kLongestName)
        << (options.WithResult ? ", points after the transformation" : ", points as measured") << "\n";
    out << HeadLabel("target") << ForTable(Job.NameOCS, kLongestName) << "\n";
    out << HeadLabel("points") << m.Points.Count() << " identical, " << m.Points.Pairs()
        << (m.Points.Pairs() == 1 ? " pair" : " pairs") << "\n";
    out << HeadLabel("max delta s") << InWords(m, Largest(m)) << "\n";
    out << HeadLabel("min delta s") << InWords(m, Smallest(m)) << "\n\n";
    const std::vector<std::string> headings = {"Point", "max delta s",    "at",        "min delta s",
                                               "at",    "max scale",      "at",        "min scale",
                                               "at",    "mean |delta s|", "mean scale"};
    const auto cells = [&m](int point) {
        std::vector<std::string> row;
        row.reserve(kDistanceScaleCols);
        for (int col = 0; col < kDistanceScaleCols; ++col)
            row.push_back(ForTable(DistanceScaleText(m.Points, m.Row(point), point, col), kLongestName));
        return row;
    };
    TextColumns columns{std::vector<int>(kDistanceScaleCols, 0)};
    columns.MakeRoom(headings);
    for (int i = 1; i <= m.Points.Count(); ++i) columns.MakeRoom(cells(i));
    out << style.Heading(columns.Line(headings)) << "\n";
    for (int i = 1; i <= m.Points.Count(); ++i) out << columns.Line(cells(i)) << "\n";
    out << style.Quiet("delta s: target less start, in " + Printable(Job.LengthUnitName) +
                       "; scale: target by start")
        << "\n";
}

void WriteCsv(const Measured& m, std::ostream& out) {
    out << "name;max_delta_s;max_delta_s_at;min_delta_s;min_delta_s_at;max_scale;max_scale_at;min_scale;"
           "min_scale_at;mean_abs_delta_s;mean_scale\r\n";
    const auto number = [](double value) { return PlainText(static_cast<float>(value)); };
    const auto length = [&number](double value_mm) { return number(value_mm * Units.LengthFactor); };
    const double others = m.Points.Count() - 1;
    for (int i = 1; i <= m.Points.Count(); ++i) {
        const DistanceExtremes& row = m.Row(i);
        out << CsvText(m.Name(i)) << ';' << length(row.MaxDelta) << ';' << CsvText(m.Name(row.MaxDeltaAt))
            << ';' << length(row.MinDelta) << ';' << CsvText(m.Name(row.MinDeltaAt)) << ';'
            << number(row.MaxScale) << ';' << CsvText(m.Name(row.MaxScaleAt)) << ';' << number(row.MinScale)
            << ';' << CsvText(m.Name(row.MinScaleAt)) << ';'
            << length(static_cast<double>(row.SumAbs) / others) << ';'
            << number(static_cast<double>(row.SumScale) / others) << "\r\n";
    }
}

void WriteJson(const DistancesOptions& options, const Measured& m, std::ostream& out) {
    const double others = m.Points.Count() - 1;
    const auto at = [&m](int partner) {
        return partner == 0 ? ordered_json() : ordered_json(m.Name(partner));
    };
    ordered_json points = ordered_json::array();
    for (int i = 1; i <= m.Points.Count(); ++i) {
        const DistanceExtremes& row = m.Row(i);
        points.push_back({{"name", m.Name(i)},
                          {"maxDelta_mm", ShortFloat(row.MaxDelta)},
                          {"maxDeltaAt", at(row.MaxDeltaAt)},
                          {"minDelta_mm", ShortFloat(row.MinDelta)},
                          {"minDeltaAt", at(row.MinDeltaAt)},
                          {"maxScale", ShortFloat(row.MaxScale)},
                          {"maxScaleAt", at(row.MaxScaleAt)},
                          {"minScale", ShortFloat(row.MinScale)},
                          {"minScaleAt", at(row.MinScaleAt)},
                          {"meanAbsDelta_mm", static_cast<double>(row.SumAbs) / others},
                          {"meanScale", static_cast<double>(row.SumScale) / others}});
    }
    const auto extreme = [&](const Extreme& e) {
        return ordered_json{{"value_mm", ShortFloat(e.Value)}, {"from", m.Name(e.From)}, {"to", at(e.To)}};
    };
    const ordered_json root = {{"schema", "corvinade-distances"},  {"schemaVersion", kSchemaVersion},
                               {"program", ProgramAsJson()},       {"job", options.Job},
                               {"withResult", options.WithResult}, {"pairs", m.Points.Pairs()},
                               {"maxDelta", extreme(Largest(m))},  {"minDelta", extreme(Smallest(m))},
                               {"points", std::move(points)},      {"notes", NotesToJson(Notes.List)}};
    out << root.dump(2, ' ', false, ordered_json::error_handler_t::replace) << "\n";
}

// How far work on all pairs has come, on one line that is gone at its end. Within the first second nobody
// waits for it.
class ShareLine {
public:
    ShareLine(std::ostream& err, const char* what, bool shown) : err_(err), what_(what), shown_(shown) {}
    ~ShareLine() {
        if (written_) err_ << "\r\x1b[K" << std::flush;
    }
    ShareLine(const ShareLine&) = delete;
    ShareLine& operator=(const ShareLine&) = delete;

    void Show(double share) {
        const auto now = Clock::now();
        if (!shown_ || now < next_) return;
        next_ = now + std::chrono::milliseconds(200);
        written_ = true;
        err_ << "\r" << what_ << ": " << static_cast<int>(100 * share) << " %" << std::flush;
    }

private:
    using Clock = std::chrono::steady_clock;
    std::ostream& err_;
    const char* what_;
    bool shown_, written_ = false;
    Clock::time_point next_ = Clock::now() + std::chrono::seconds(1);
};

}  // namespace

int RunDistances(const DistancesOptions& options, std::ostream& out, std::ostream& err, bool colour,
                 bool progress) {
    if (options.Decimal) Headless.Decimal = options.Decimal;
    // The digits of scales are no matter of a job, and nobody's settings are read for them.
    ReadSettingsText(DefaultSettingsText(), "the built-in settings");
    JobFileFacts facts;
    const int status = OpenJob(options.Job, options.Questions, facts, err);
    if (status != kDone) return status;
    Measured m;
    m.Points = TakeDistancePoints(options.WithResult);
    if (m.Points.Count() < 2)
        return Refuse(err, kRefused, "There are not enough identically Points for a calculation");
    if (options.WithResult) NoteResultOfJob(options.Job);
    if (options.WithResult && m.Points == TakeDistancePoints(false))
        err << "the job holds no result: its transformed points are the start points\n";
    {
        ShareLine line(LiveStream(err), "distances", progress);
        MeasurePoints(m.Points, m.Rows, [&line](double share) { return line.Show(share), true; });
    }
    if (EndsForWarnings(options.Strict, err)) return kUnreadable;
    const bool written = Dispatch([&] {
        if (!options.Trumpet.empty())
            WriteTrumpetPicture(options.Trumpet, m.Points, TrumpetTitle(m.Points, options.WithResult),
                                WholeTrumpetPlot(m.Points));
        if (options.Pairs.empty()) return;
        ShareLine line(LiveStream(err), "pairs", progress);
        WriteTrumpetFile(options.Pairs, m.Points, [&line](double share) { return line.Show(share), true; });
    });
    Headless.Dialogs.clear();
    if (!written) return Refuse(err, kRefused, Run.LastPlatformError);
    if (options.Json) {
        WriteJson(options, m, out);
    } else if (options.Csv) {
        WriteCsv(m, out);
    } else {
        WriteTable(options, m, Style{colour}, out);
    }
    if (!out.flush()) return Refuse(err, kRefused, "the result could not be written to standard output");
    return kDone;
}

}  // namespace corvinade::cli
