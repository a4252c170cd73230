// Notes on opening and saving a job file.
#include "core/job_notes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

#include "core/job.h"
#include "core/notes.h"
#include "core/parameter_names.h"
#include "core/text.h"

namespace corvinade::core {

void NoteMarks(const std::string& path) {
    if (IsTrue(Job.Unconverged))
        AddNote(NoteCode::NotConverged,
                "The result of the job is of a calculation that did not converge; it is not the best fit",
                path);
    if (const std::string open = NamesMarkedOpen(); !open.empty())
        AddNote(
            NoteCode::OpenParameters,
            "The result of the job leaves " + open +
                " open: what it holds for that is arbitrary, and so is where it puts whatever lies off the "
                "points that it was calculated from",
            path);
    if (IsTrue(Job.Collapsed))
        AddNote(
            NoteCode::CollapsedScale,
            "A scale in the result of the job has collapsed, to 0 or what noise makes of it: this is no "
            "fit, and where it puts whatever lies off the points that it was calculated from is arbitrary",
            path);
}

std::string NamesMarkedOpen() {
    std::array<bool, kParameterEnd> open{};
    std::transform(Job.LeftOpen.begin(), Job.LeftOpen.end(), open.begin(),
                   [](std::int16_t mark) { return mark != 0; });
    return NamesOf(open);
}

void NoteOrientationsLost(const std::string& path) {
    if (Job.RobotABC.Rows < 1 || IsTrue(Job.IsKuka) || IsTrue(Job.IsQuaternion)) return;
    AddNote(
        NoteCode::NoOrientation,
        "A job file keeps the orientations of Kuka programs and of quaternions alone; those of this job are "
        "not in its file",
        path);
}

void NoteShortNames(const std::string& path) {
    constexpr std::size_t kOfSearch = 3;
    const auto note = [&path](const char* set, const PointSet& of) {
        const std::size_t names = of.Name.size(), points = std::max({of.X.size(), of.Y.size(), of.Z.size()});
        if (points <= names + kOfSearch) return;
        AddNote(NoteCode::NamesShort,
                std::string("The ") + set + " has " + std::to_string(names - 1) +
                    " names and coordinates of " + std::to_string(points - 1) +
                    " points; those without a name are left out",
                path, 0, static_cast<int>(points - names));
    };
    note("start system", Job.Start);
    note("target system", Job.Target);
}

namespace {

// Numbers that are none, of one array of the job after the other.
struct NotFinite {
    std::string Text;
    int Count = 0;

    // what    the array, "of the start system"
    // values  (i, k) gives the value k, 1 to `columns`, of the entry i, 1 to `size`
    // name    what the entry i is called
    template <class Values, class Name>
    void Add(const char* what, int size, int columns, Values values, Name name) {
        int count = 0;
        std::string first;
        for (int i = 1; i <= size; ++i)
            for (int k = 1; k <= columns; ++k)
                if (!std::isfinite(values(i, k)) && ++count == 1) first = name(i);
        if (count == 0) return;
        Text +=
            (Text.empty() ? "" : ", ") + std::to_string(count) + " " + what + " (the first of " + first + ")";
        Count += count;
    }
};

}  // namespace

void NoteNotFinite(const std::string& path) {
    NotFinite found;
    const auto points = [&found](const char* what, const PointSet& set) {
        const std::size_t size = std::max({set.X.size(), set.Y.size(), set.Z.size()});
        found.Add(
            what, static_cast<int>(size) - 1, 3,
            [&](int i, int k) {
                const auto at = static_cast<std::size_t>(i);
                if (k == 3) return at < set.Z.size() ? set.Z[at] : 0;
                const auto& values = k == 1 ? set.X : set.Y;
                return at < values.size() ? values[at].value_or(0) : 0;
            },
            [&](int i) {
                const auto at = static_cast<std::size_t>(i);
                return "point " +
                       (at < set.Name.size() ? "\"" + Printable(set.Name[at]) + "\"" : std::to_string(i));
            });
    };
    const auto rows = [&found](const char* what, const Matrix& matrix) {
        found.Add(
            what, matrix.Rows, matrix.Columns, [&matrix](int i, int k) { return matrix(i, k); },
            [](int i) { return "row " + std::to_string(i); });
    };
    points("of the start system", Job.Start);
    points("of the target system", Job.Target);
    points("of the transformed points", Job.Transformed);
    rows("of the orientations", Job.RobotABC);
    rows("of the shape", Job.ParaboloidShape);
    found.Add(
        "of the result", kParameterEnd - 1, 1, [](int i, int) { return ParameterValue(Job, i); },
        [](int i) { return std::string(ParameterName(i)); });
    const std::size_t vectors = std::max({Job.RVecX.size(), Job.RVecY.size(), Job.RVecZ.size()});
    found.Add(
        "of the R vectors", static_cast<int>(vectors) - 1, 3,
        [](int i, int k) {
            const auto at = static_cast<std::size_t>(i);
            if (k == 3) return at < Job.RVecZ.size() ? Job.RVecZ[at] : 0;
            const std::vector<TaggedValue>& values = k == 1 ? Job.RVecX : Job.RVecY;
            return at < values.size() ? values[at].value_or(0) : 0;
        },
        [](int i) { return "row " + std::to_string(i); });
    if (found.Count == 0) return;
    AddNote(NoteCode::NotFinite,
            "Numbers of the job are infinite or none: " + found.Text +
                "; whatever is computed from them is none either",
            path, 0, found.Count);
}

}  // namespace corvinade::core
