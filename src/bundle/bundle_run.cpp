// The adjustment of a network from beginning to end, and its texts.
#include "bundle/bundle_run.h"

#include <algorithm>
#include <cmath>

#include "bundle/bundle_file.h"
#include "bundle/open_points.h"
#include "core/files.h"
#include "core/notes.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/text.h"
#include "core/units.h"
#include "import/point_file.h"

namespace corvinade::bundle {

namespace {

constexpr std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

std::string Shown(double length_mm) {
    return PlainText(length_mm * Units.LengthFactor);
}

// Calls `take` for each point of the result with its name, its coordinates, and its first column less 1.
template <class Take>
void ForEachPoint(const BundleRecord& network, const BundleWork& work, Take take) {
    int column = 0;
    for (int i = 1; i <= network.nStations; ++i, column += 3)
        take(network.StationName[At(i)], network.Net.StationXYZ.Row(i), column);
    for (std::size_t k = 1; k < work.UsedObject.size(); ++k, column += 3) {
        const int i = work.UsedObject[k];
        take(network.ObjectName[At(i)], network.Net.ObjectXYZ.Row(i), column);
    }
}

std::string PointText(const std::string& name, const double* xyz) {
    return name + "\t" + Shown(xyz[1]) + "\t" + Shown(xyz[2]) + "\t" + Shown(xyz[3]);
}

}  // namespace

const char* BundleStageText(BundleStage stage) {
    switch (stage) {
        case BundleStage::Rows:
            return "calculationg A Matrix";
        case BundleStage::Transposed:
            return "calculating A transponiert";
        case BundleStage::Weighted:
            return "calculating At * P";
        case BundleStage::Normal:
            return "calculating N = (At * P) * A";
        case BundleStage::Inverted:
            return "calculating qxx = N^-1";
        case BundleStage::RightSide:
            return "calculating n = (At * P) * l";
        case BundleStage::Solved:
            return "calculating x = qxx * n";
        case BundleStage::Residuals:
            return "calculating v = A * x -l";
        case BundleStage::Added:
            return "calculating unknowns";
    }
    return "";
}

BundleEnd AdjustBundle(BundleRecord& network, BundleWork& work, double limit_mm,
                       const BundleTelling& telling) {
    const BundleListener listener = {.Heard =
                                         [&telling](BundleStage stage) {
                                             if (telling.Log) telling.Log(BundleStageText(stage));
                                         },
                                     .Iteration = telling.Iteration,
                                     .GoesOn =
                                         [&telling] {
                                             YieldToEvents();
                                             return !telling.Ours || telling.Ours();
                                         },
                                     .StopIsWanted = [] { return IsTrue(Run.StopRequested); }};
    return AdjustBundle(network.Net, work, limit_mm, kMostBundleIterations, listener);
}

std::string BundleEndText(BundleEnd end, const BundleWork& work) {
    if (end == BundleEnd::OnALine) return "All Stations are in one line; this is not working";
    if (end == BundleEnd::NotFinite)
        return "The coordinates or distances are too large to be adjusted. The network stays as it was.";
    if (end == BundleEnd::NoEnd)
        return "After " + std::to_string(work.Iterations) +
               " iterations the coordinates still change by up to " + Shown(work.BiggestX) +
               ". The distances may not be enough for a network.";
    return "";
}

void NoteBundleEnd(const BundleRecord& network, const BundleWork& work, BundleEnd end) {
    std::erase_if(Notes.List, [](const Note& note) {
        return note.Code == NoteCode::NotConverged || note.Code == NoteCode::NoRedundancy;
    });
    const auto used =
        std::count_if(work.StationOf.begin(), work.StationOf.end(), [](int number) { return number != 0; });
    // What the distances leave open takes none of them.
    const int determined = work.nUnknown - work.OpenMoves;
    if (work.Iterations > 0 && determined > 0 && used <= determined)
        AddNote(NoteCode::NoRedundancy,
                "no redundancy: sigma says nothing (" + std::to_string(used) + " distances for " +
                    std::to_string(work.nUnknown) + " unknown coordinates" +
                    (work.OpenMoves > 0 ? ", " + std::to_string(work.OpenMoves) + " of them open" : "") + ")",
                network.BundleFilePath);
    if (end != BundleEnd::NoEnd && end != BundleEnd::Stopped) return;
    const std::string text =
        "The adjustment of the network " +
        (end == BundleEnd::Stopped
             ? "was stopped before it converged"
             : "did not converge: after " + std::to_string(work.Iterations) +
                   " iterations the coordinates still change by up to " + Shown(work.BiggestX)) +
        "; its coordinates are not those that fit the distances best";
    AddNote(NoteCode::NotConverged, text, network.BundleFilePath);
}

std::string BundleWarnings(const BundleRecord& network, const BundleWork& work) {
    std::string text = BundleObjections(network);
    const auto used = static_cast<int>(
        std::count_if(work.StationOf.begin(), work.StationOf.end(), [](int number) { return number != 0; }));
    if (used >= work.nUnknown || text.starts_with(kNoDistance)) return text;
    if (!text.empty()) text += kLineEnd;
    if (used == 0) {
        text +=
            "No distance is one between points in use, so nothing can be adjusted. Take a larger percentage "
            "of the object points.";
    } else {
        text += "There are " + std::to_string(used) + " distances for " + std::to_string(work.nUnknown) +
                " unknown coordinates; they do not determine the network.";
    }
    return text;
}

std::string CheckPercentage(double percent) {
    if (percent >= 1 && percent <= 100) return "";
    return "The percentage of object points goes from 1 to 100; " + PlainText(percent) + " cannot be taken";
}

std::optional<double> PercentageFromText(const std::string& text) {
    const double percent = NumberFromText(text, "Percentage of object points");
    const std::string wrong = CheckPercentage(percent);
    if (wrong.empty()) return percent;
    ShowMessage(wrong);
    return std::nullopt;
}

std::string NetworkText(const BundleRecord& network, const BundleWork& work) {
    std::string text;
    ForEachPoint(network, work, [&](const std::string& name, const double* xyz, int) {
        text += PointText(name, xyz) + kLineEnd;
    });
    return text;
}

std::string AdjustedText(const BundleRecord& network, const BundleWork& work) {
    if (std::find(work.Open.begin(), work.Open.end(), true) == work.Open.end())
        return NetworkText(network, work);
    std::string text;
    ForEachPoint(network, work, [&](const std::string& name, const double* xyz, int column) {
        const bool open = IsOpenCoordinate(work, column + 1) || IsOpenCoordinate(work, column + 2) ||
                          IsOpenCoordinate(work, column + 3);
        text += PointText(name, xyz) + "\t" + (open ? kMarkOfOpenPoint : kMarkOfFixedPoint) + kLineEnd;
    });
    return text;
}

std::string ResultText(const BundleRecord& network, const BundleWork& work) {
    std::string text;
    ForEachPoint(network, work, [&](const std::string& name, const double* xyz, int column) {
        text += PointText(name, xyz);
        for (int axis = 1; axis <= 3; ++axis) {
            const std::optional<double> accuracy = BundleAccuracy(work, column + axis);
            text += "\t" + (accuracy                                ? Shown(*accuracy)
                            : IsOpenCoordinate(work, column + axis) ? "open"
                                                                    : "0");
        }
        text += kLineEnd;
    });
    return text;
}

std::string VectorsText(const BundleWork& work) {
    std::string text = std::string("x i") + kLineEnd;
    for (int i = 1; i <= work.nUnknown; ++i) text += Shown(work.x[At(i)]) + kLineEnd;
    text += std::string("v i") + kLineEnd;
    for (std::size_t k = 1; k < work.v.size(); ++k) text += Shown(work.v[k]) + kLineEnd;
    return text;
}

std::string IterationLine(const BundleWork& work) {
    return "Iterations " + std::to_string(work.Iterations) + " Biggest x " + Shown(work.BiggestX) + " [v] " +
           Shown(work.SumV) + " [vv] " + PlainText(work.SumVV * Units.LengthFactor * Units.LengthFactor) +
           kLineEnd;
}

std::string WriteNetwork(const std::string& folder, const char* name, const std::string& text) {
    if (!Directory_Exist(folder)) CreateFolder(folder);
    std::string path = JoinPath(folder, name);
    std::string content;
    std::string_view rest = text;
    std::string_view line;
    // Line by line, as it will be decoded.
    while (CutLine(rest, line)) content += EncodeText(line) + kLineEnd;
    WriteFile(path, content);
    return path;
}

}  // namespace corvinade::bundle
