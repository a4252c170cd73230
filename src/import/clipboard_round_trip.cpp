// The round trip through the clipboard: a table of pairs becomes a job, and its result comes behind the
// table.
#include "import/clipboard_round_trip.h"

#include <algorithm>
#include <array>

#include "core/controller.h"
#include "core/files.h"
#include "core/job.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/text.h"
#include "core/units.h"
#include "core/window.h"
#include "engine/calculation_window.h"
#include "import/import_request.h"

namespace corvinade::import {

namespace {

// A table on the clipboard: four columns start point, four columns target point. False when no line
// holds a point.
bool SplitClipboardTable(std::string_view table, std::string& start, std::string& target) {
    std::string_view line;
    while (CutLine(table, line)) {
        std::array<std::string_view, 8> fields{};
        for (std::string_view& field : fields) {
            const std::size_t tab = line.find('\t');
            field = line.substr(0, tab);
            line = tab == std::string_view::npos ? std::string_view{} : line.substr(tab + 1);
        }
        const auto add = [&fields](std::size_t first, std::string& text) {
            bool holdsSomething = false;
            for (std::size_t i = first; i < first + 4; ++i) holdsSomething |= !fields[i].empty();
            if (!holdsSomething) return;
            for (std::size_t i = first; i < first + 4; ++i) {
                if (i > first) text += '\t';
                text += fields[i];
            }
            text += kLineEnd;
        };
        add(0, start);
        add(4, target);
    }
    return !start.empty() && !target.empty();
}

// Largest minus smallest deviation of the identical points, start after the transformation minus target.
template <class Start, class Target>
double Span(const Start& start, const Target& target) {
    double largest = -1e10;
    double smallest = 1e10;
    for (std::size_t i = 1; i <= static_cast<std::size_t>(Job.Pairs()); ++i) {
        const double deviation = TaggedValue(start[i]).value_or(0) - TaggedValue(target[i]).value_or(0);
        largest = std::max(largest, deviation);
        smallest = std::min(smallest, deviation);
    }
    return Job.Pairs() == 0 ? 0 : largest - smallest;
}

struct QuietOverwrite {
    QuietOverwrite() { Run.OverwriteQuiet = kTrue; }
    QuietOverwrite(const QuietOverwrite&) = delete;
    QuietOverwrite& operator=(const QuietOverwrite&) = delete;
    ~QuietOverwrite() { Run.OverwriteQuiet = kFalse; }
};

}  // namespace

void ClipboardRoundTrip() {
    const QuietOverwrite quiet;
    std::string start;
    std::string target;
    if (!SplitClipboardTable(ClipboardText(), start, target)) {
        ShowMessage("Fehler beim Einlesen", "Corvinade");
        return;
    }
    if (!Directory_Exist(SettingsFolder())) CreateFolder(SettingsFolder());
    const std::string startPath = JoinPath(SettingsFolder(), "mcs.txt");
    const std::string targetPath = JoinPath(SettingsFolder(), "ocs.txt");
    WriteFile(startPath, EncodeText(start));
    WriteFile(targetPath, EncodeText(target));

    UnloadWindow("FormInputFiles");  // its files are no longer those of the job
    ImportRequest request;
    request.StartPath = startPath;
    request.TargetPath = targetPath;
    request.ReplacesQuietly = true;
    if (Import(request) != ImportOutcome::Done) return;

    for (std::size_t i = 1; i < Job.UseFlags.size(); ++i) Job.UseFlags[i] = 1;
    myButtonCalculate();

    std::string text = ClipboardText();
    const auto add = [&text](const char* label, double value_mm) {
        text +=
            std::string("\t") + label + "\t" + FormatNumber(value_mm * Units.LengthFactor, Units.FmtLength);
    };
    add("s0 ", CalculationSigmaXYZ());
    add("Spanne x ", Span(Job.Transformed.X, Job.Target.X));
    add("Spanne y ", Span(Job.Transformed.Y, Job.Target.Y));
    add("Spanne z ", Span(Job.Transformed.Z, Job.Target.Z));
    ToClipboard(text);
}

}  // namespace corvinade::import
