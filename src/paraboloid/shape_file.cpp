// The shape file: its reading, and the report on how good the interpolation between its points is.
#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "core/changes.h"
#include "core/file_state.h"
#include "core/files.h"
#include "core/job.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/text.h"
#include "core/units.h"
#include "fit/shape.h"
#include "fit/shape_interpolation.h"
#include "import/point_file_checks.h"
#include "import/robot_files.h"
#include "import/row_notes.h"
#include "paraboloid/paraboloid.h"

namespace corvinade::paraboloid {

namespace {

struct ProfilePoint {
    double r, z;  // mm
    std::int64_t Line;
};

struct Profile {
    std::vector<ProfilePoint> Points;
    int DoublePoints = 0;
};

// A row has two fields and no name in front, whatever a robot file before it had.
struct NoNameInFront {
    NoNameInFront() { Run.RobotFileHasId = kFalse; }
    ~NoNameInFront() { Run.RobotFileHasId = before_; }
    NoNameInFront(const NoNameInFront&) = delete;
    NoNameInFront& operator=(const NoNameInFront&) = delete;

private:
    Flag before_ = Run.RobotFileHasId;
};

// False where a message has said what is wrong.
bool Check(PointText& file, const Reading& how) {
    std::int64_t columns = 0;
    if (!CheckColumns(file, FileRows::Shape, Run.Delimiter, columns, how)) return false;
    const NoNameInFront none;
    Check_DecimalDelimiter(file, Run.Delimiter, how);
    return !IsTrue(Run.ImportFailed);
}

double Length(const PointText& file, std::int64_t row, std::string_view field, char decimal,
              RowNotes& notes) {
    double value = 0;
    if (!TextToNumber(field, decimal, value) || !std::isfinite(value / Units.LengthFactor))
        throw PlatformError{"Cannot read \"" + file.Path + "\", line " + std::to_string(row) + ": \"" +
                            Printable(field) + "\" is not a number"};
    notes.LookAtDigits(field, row);
    return value / Units.LengthFactor;
}

// Where the radius does not rise from a row to the next.
void NoteOrder(const ProfilePoint& before, const ProfilePoint& here, RowNotes& notes) {
    const auto shown = [](double length_mm) { return PlainText(length_mm * Units.LengthFactor); };
    if (here.r < before.r)
        notes.Count(NoteCode::ShapeUnsorted, here.Line, [&] {
            return "The radius " + shown(here.r) + " stands behind the radius " + shown(before.r) +
                   ", though rows must rise; points near this row may be put onto a wrong place of the shape";
        });
    if (here.r == before.r)
        notes.Count(NoteCode::RadiusTwice, here.Line, [&] {
            return "The radius " + shown(here.r) + " has two heights, " + shown(before.z) + " and " +
                   shown(here.z) +
                   "; both rows are kept, and points there may be put onto a wrong place of the "
                   "shape";
        });
}

// Radii and heights below 0, as they stand in their row.
struct BelowZero {
    double Value;  // mm
    std::int64_t Line;
    std::string Field;
};

// At the axis a table that was computed may have numbers below 0 that are rounding beside its own size: these
// are nothing to speak of. A height changes with its sign by twice itself, a radius stays as it is.
void NoteBelowZero(const std::vector<BelowZero>& radii, const std::vector<BelowZero>& heights,
                   const std::vector<ProfilePoint>& points, RowNotes& notes) {
    constexpr double kRadius = 1e-5, kHeight = 1e-7;
    double size = 0;
    for (const ProfilePoint& point : points) size = std::max({size, std::fabs(point.r), point.z});
    for (const BelowZero& radius : radii)
        if (-radius.Value > kRadius * size)
            notes.Count(NoteCode::RadiusNegative, radius.Line, [&] {
                return "The radius \"" + radius.Field +
                       "\" is below 0; its row is kept, and points near the axis may be put onto a wrong place "
                       "of the shape";
            });
    for (const BelowZero& height : heights)
        if (-height.Value > kHeight * size)
            notes.Count(NoteCode::HeightSign, height.Line, [&] {
                return "The height \"" + height.Field + "\" is below 0, and is taken without its sign";
            });
}

Profile ReadProfile(const PointText& file, char decimal) {
    std::int64_t count = 0, filled = 0;
    AnzZeilen(file, count);
    if (count >= std::numeric_limits<std::int32_t>::max())
        throw PlatformError{"Cannot read \"" + file.Path + "\": it has more lines than a job has room for"};
    Profile profile;
    profile.Points.reserve(static_cast<std::size_t>(count));
    LineWalk lines(file);
    std::string_view line;
    std::string decoded, first, second;
    std::vector<BelowZero> radiiBelow, heightsBelow;
    const char delimiter = DelimiterCharacter(Run.Delimiter);
    RowNotes notes(file.Path, delimiter, {"radius", "height"});
    while (lines.Next(line)) {
        if (line.empty()) {
            if (filled < count)  // those at the end of the file are nothing
                notes.Count(NoteCode::EmptyRow, lines.Row,
                            [] { return "A row without a point is passed over"; });
            continue;
        }
        ++filled;
        std::string_view rest = DecodedLine(file, line, decoded);
        const std::string_view whole = rest;
        const std::string_view radius = CutField(rest, delimiter, first);
        const double r = Length(file, lines.Row, radius, decimal, notes);
        const std::string_view height = CutField(rest, delimiter, second);
        const double signedHeight = Length(file, lines.Row, height, decimal, notes),
                     z = std::fabs(signedHeight);
        if (r < 0) radiiBelow.push_back({r, lines.Row, Printable(radius)});
        if (signedHeight < 0) heightsBelow.push_back({signedHeight, lines.Row, Printable(height)});
        if (HoldsMore(rest) || (delimiter != ' ' && CountByte(whole, delimiter) > 1))
            notes.Look(whole, lines.Row);
        if (!profile.Points.empty() && profile.Points.back().r == r && profile.Points.back().z == z) {
            ++profile.DoublePoints;
            profile.Points.back().Line = lines.Row;
        } else {
            if (!profile.Points.empty()) NoteOrder(profile.Points.back(), {r, z, lines.Row}, notes);
            profile.Points.push_back({r, z, lines.Row});
        }
    }
    NoteBelowZero(radiiBelow, heightsBelow, profile.Points, notes);
    notes.Write();
    return profile;
}

// Searched by halving, a profile whose radius does not rise everywhere may give a wrong nearest point.
void TellOfFirstUnsorted(const std::string& path, const Profile& profile) {
    for (std::size_t i = 1; i < profile.Points.size(); ++i) {
        const ProfilePoint &before = profile.Points[i - 1], &here = profile.Points[i];
        if (here.r > before.r) continue;
        const double factor = Units.LengthFactor;
        ShowMessage("File: " + path + kLineEnd + kLineEnd +
                    "The shape is not sorted by rising radius: line " + std::to_string(here.Line) +
                    " has the radius " + PlainText(here.r * factor) + " behind the radius " +
                    PlainText(before.r * factor) +
                    ". It is read as it stands; points near this line may be put onto a wrong place of the "
                    "shape.");
        return;
    }
}

void TakeProfile(const Profile& profile) {
    Matrix shape(static_cast<int>(profile.Points.size()), 2);
    for (int row = 1; row <= shape.Rows; ++row) {
        shape(row, 1) = profile.Points[static_cast<std::size_t>(row - 1)].r;
        shape(row, 2) = profile.Points[static_cast<std::size_t>(row - 1)].z;
    }
    Job.ParaboloidShape = std::move(shape);
}

// --- The test of the interpolation ------------------------------------------------------------------------

std::string ReportOf(const Matrix& shape) {
    const std::string newLine = kLineEnd;
    std::string report =
        "Due to using discret Points in the nominal file, Corvinade ist interpolating beetween this points." +
        newLine +
        "To analyze how much error this causes, Corvinade does some test cacluations; for details see the "
        "Corvinade Manual:" +
        newLine + "Chapter Paraboloid Option" + newLine + newLine;
    if (shape.Rows < kFewestRowsForTest)
        return report + "The shape has " + std::to_string(shape.Rows) + " rows; the test needs at least " +
               std::to_string(kFewestRowsForTest) + ".";
    const InterpolationTest test = TestInterpolation(shape);
    ParaboloidRun.ShapeTest = test.Deltas;
    const auto shown = [](double length_mm) {
        return FormatNumber(length_mm * Units.LengthFactor, "0.000000") + " " + Job.LengthUnitName;
    };
    report += "Biggest delta1 is " + shown(test.Biggest) + newLine;
    report +=
        "Accuracy of Interpolation based on the Shape Definition is approx. 1/4 of delta1 and is at the worst "
        "position better than  " +
        shown(test.Biggest / 4) + newLine;
    report +=
        "The average interpolation accuracy (average delta1) for the whole shape is " + shown(test.Average);
    if (-test.Smallest > std::fabs(test.Biggest))
        report += newLine + "Where the shape bends downwards delta1 is down to " + shown(test.Smallest);
    return report;
}

void Fail(const std::string& message) {
    Run.ImportFailed = kTrue;
    ShowMessage(message);
}

}  // namespace

void EinlesenParaboloidData(const TargetFile& target) {
    const std::string path = ParaboloidRun.ParaboloidFile = target.Path;
    Job.ParaboloidShape = Matrix(0, 2);  // the shape of other points is none of these
    ParaboloidRun.ShapeTest.assign(1, 0);
    if (!FileIsThere(path)) return Fail("File " + path + " not found");
    PointText file = LoadPointText(path);
    const std::uint64_t generation = Run.JobGeneration;
    if (!Check(file, target.How) || Run.JobGeneration != generation) return;
    const Profile profile = ReadProfile(file, target.How.Decimal);
    if (profile.Points.size() < 2)
        return Fail("File: " + path + kLineEnd + kLineEnd + "A shape needs at least 2 different rows.");
    TakeProfile(profile);
    TellOfFirstUnsorted(path, profile);
    if (profile.DoublePoints > 0)
        ShowMessage(std::to_string(profile.DoublePoints) + " double Points in File" + kLineEnd + path +
                    kLineEnd + "...and will ignore them");
    if (Run.JobGeneration == generation) ShowMessage(ReportOf(Job.ParaboloidShape));
}

void ParaboloidNearestTargets() {
    if (!ShapeServes(Job.ParaboloidShape)) return;
    double distance = 0;
    for (int i = 1; i <= std::min(Job.Start.Count(), Job.Target.Count()); ++i) {
        const Vec3 start = StartPoint(i);
        Vec3 nearest;
        NearestShapePoint(start(1), start(2), start(3), Job.ParaboloidShape, nearest(1), nearest(2),
                          nearest(3), distance);
        PutTarget(i, nearest);
    }
    Changed(What::Coordinates);
}

void TakeShape(const TargetFile& file) {
    EinlesenParaboloidData(file);
    ParaboloidNearestTargets();
}

}  // namespace corvinade::paraboloid
