// Programs with their poses in a section /POS ... /END, each over several lines in fixed columns:
//
//   P[1]{
//      GP1:
//       UF : 0, UT : 1,     CONFIG : 'N U T, 0, 0, 0',
//       X =  1234.500  mm,  Y =   -20.250  mm,  Z =   600.000  mm,
//       W =   180.000 deg,  P =     0.000 deg,  R =    90.000 deg
//   };
#include <algorithm>
#include <cmath>

#include "core/notes.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/text.h"
#include "core/units.h"
#include "import/point_file_checks.h"
#include "import/robot_files.h"
#include "import/robot_program.h"
#include "import/row_notes.h"

namespace corvinade::import {

namespace {

// Behind the letter of a value stand " = ", and before what follows it its unit and what divides it from the
// next one.
constexpr std::size_t kBeforeValue = 4, kBehindValue = 6, kBehindLastAngle = 3;

// The value whose letter stands at `place` and whose columns end before `end`.
double ValueAt(const RobotProgram& program, std::size_t place, std::size_t end, RowNotes& notes) {
    const std::string_view line = program.Line;
    const std::size_t begin = place + kBeforeValue;
    const double value = NumberBetween(program, begin, end);
    // Five digits with a sign come up to the equals sign, and the sign would be lost.
    if (line.substr(begin - 2, 2) != "= ")
        FailAtLine(program,
                   "\"" + Printable(line.substr(place, end - place)) + "\" is not in the fixed columns");
    // In other columns the cut can run through the digits. Of Z the last of three decimals is lost as a rule.
    constexpr double kLastDecimal = 0.01;
    std::size_t whole = end;
    while (whole < line.size() &&
           ((line[whole] >= '0' && line[whole] <= '9') || line[whole] == '.' || line[whole] == ','))
        ++whole;
    while (whole > end && (line[whole - 1] == ',' || line[whole - 1] == '.')) --whole;
    const double uncut = whole > end ? NumberBetween(program, begin, whole) : value;
    if (uncut != value)
        notes.Count(NoteCode::DigitsCut, program.Lines.Row, [&] {
            return "The fixed columns cut \"" + Printable(line.substr(begin, whole - begin)) + "\" to \"" +
                   Printable(line.substr(begin, end - begin)) + "\"";
        });
    if (!(std::fabs(uncut - value) < kLastDecimal))
        FailAtLine(program, "the fixed columns cut \"" + Printable(line.substr(begin, whole - begin)) +
                                "\" to \"" + Printable(line.substr(begin, end - begin)) + "\"");
    return value;
}

std::size_t Less(std::size_t place, std::size_t count) {
    return place < count ? 0 : place - count;
}

// The number in the brackets of a line such as `P[12:"above the pin"]{`; "" where there is none.
std::string NumberOfPose(std::string_view line) {
    std::size_t at = line.find('[');
    if (at == std::string_view::npos) return "";
    at = line.find_first_not_of(' ', at + 1);
    if (at == std::string_view::npos) return "";
    const std::size_t end = std::min(line.find_first_not_of("0123456789", at), line.size());
    std::string_view number = line.substr(at, end - at);
    while (number.size() > 1 && number.front() == '0') number.remove_prefix(1);
    return std::string(number);
}

// "UF : 1, UT : 2", the user frame and the tool of a pose, by the digits behind the colons.
std::string FramesOf(std::string_view line) {
    std::string frames;
    for (const std::string_view name : {"UF", "UT"}) {
        const std::size_t at = line.find(name), colon = line.find(':', std::min(at, line.size()));
        if (colon == std::string_view::npos) continue;
        const std::size_t begin = std::min(line.find_first_not_of(' ', colon + 1), line.size());
        const std::size_t end = std::min(line.find_first_not_of("0123456789F", begin), line.size());
        frames.append(frames.empty() ? "" : ", ").append(name).append(" : ").append(line, begin, end - begin);
    }
    return frames;
}

int CountOf(std::string_view line, std::string_view word) {
    int count = 0;
    for (std::size_t at = line.find(word); at != std::string_view::npos; at = line.find(word, at + 1))
        ++count;
    return count;
}

// Numbers of one pose that do not all have the same unit behind them.
void NoteMixedUnits(const RobotProgram& program, std::string_view unit, RowNotes& notes) {
    const int count = CountOf(program.Line, unit);
    if (count == 3 || count == 0) return;
    notes.Count(NoteCode::PosesDoubtful, program.Lines.Row, [&] {
        return "Not all numbers of \"" + Printable(program.Line) + "\" have the unit" + std::string(unit) +
               ", in which they are read";
    });
}

void ReadPoses(const TargetFile& file) {
    RobotProgram program(file);
    std::int64_t n = 0;
    wieOftStringinFile(program.File, "]{", n);
    PoseTable poses(program, n, Units.AngleFactor);
    RowNotes notes(file.Path, '\0', PointFields(true));
    std::int64_t taken = 0;
    std::string frames;  // of the first pose
    const auto end = [&] {
        notes.Write();
        if (taken < n)
            AddNote(
                NoteCode::PosesSkipped,
                std::string(
                    "What looks like a pose stands outside of the section of poses; its place stays without a point") +
                    kNumberedByTurn,
                file.Path, 0, static_cast<int>(n - taken));
    };
    do NeedLine(program);
    while (!program.Line.starts_with("/POS"));
    do {
        NeedLine(program);
        if (program.Line.starts_with("/END")) return end();
        const std::string number = NumberOfPose(program.Line);
        for (int line = 0; line < 3; ++line) {
            NeedLine(program);
            const std::string here = FramesOf(program.Line);
            if (here.empty()) continue;
            if (frames.empty()) frames = here;
            if (here != frames)
                notes.Count(NoteCode::PosesDoubtful, program.Lines.Row, [&] {
                    return "The pose is told with " + here + ", and the first one with " + frames +
                           ": in another frame or of another tool its numbers say something else";
                });
        }
        const std::size_t x = PlaceOf(program, "X "), y = PlaceOf(program, "Y "), z = PlaceOf(program, "Z ");
        const double X = ValueAt(program, x, Less(y, kBehindValue), notes);
        const double Y = ValueAt(program, y, Less(z, kBehindValue), notes);
        const double Z = ValueAt(program, z, Less(program.Line.size(), kBehindValue), notes);
        NoteMixedUnits(program, " mm", notes);
        const bool millimetres = program.Line.find(" mm") != std::string_view::npos;
        NeedLine(program);
        const std::size_t w = PlaceOf(program, "W "), p = PlaceOf(program, "P "), r = PlaceOf(program, "R ");
        const double W = ValueAt(program, w, Less(p, kBehindValue), notes);
        const double P = ValueAt(program, p, Less(r, kBehindValue), notes);
        const double R = ValueAt(program, r, Less(program.Line.size(), kBehindLastAngle), notes);
        NoteMixedUnits(program, " deg", notes);
        poses.Take(program, {X, Y, Z}, {R, P, W});
        poses.CalledInProgram(number);
        NoteProgramUnits(program, millimetres, program.Line.find(" deg") != std::string_view::npos);
        ++taken;
        do {
            NeedLine(program);
            // Another group of axes has a pose of its own.
            if (program.Line.find("X =") != std::string_view::npos)
                notes.Count(NoteCode::PosesSkipped, program.Lines.Row, [] {
                    return "The pose of a second group stands behind the first one and is not taken";
                });
        } while (!program.Line.starts_with("}"));
    } while (!HasEnded(program));
    end();
}

}  // namespace

void EinlesenFanucDatei(const TargetFile& file) {
    try {
        ReadPoses(file);
    } catch (const PlatformError&) {
        ShowMessage("Error while importing FANUC Data");
        throw;  // it tells where
    }
}

}  // namespace corvinade::import
