// Text files of poses, a line a pose: its name, x, y, z, and an orientation as a quaternion or as angles.
#include <algorithm>
#include <array>
#include <string>

#include "core/notes.h"
#include "core/numbers.h"
#include "core/run.h"
#include "core/text.h"
#include "core/units.h"
#include "import/point_file_checks.h"
#include "import/pose_quaternion.h"
#include "import/robot_files.h"
#include "import/robot_program.h"
#include "import/row_notes.h"

namespace {

// Reads the number at the start of a field, whatever the system's settings. A comma in it can only be a
// decimal one, which the check of the file leaves there on a system that has it.
double FieldValue(std::string_view field, const char* name, std::int64_t row, RowNotes& notes) {
    double value = 0;
    if (TextToNumber(field, '.', value)) {
        notes.LookAtDigits(field, row);
        return value;
    }
    std::string text(field);
    std::replace(text.begin(), text.end(), ',', '.');
    const double begin = Val(text);
    if (TextToNumber(text, '.', value)) return begin;  // a decimal comma
    const std::string place = "\"" + Printable(field) + "\" in " + name;
    // Nothing of it is a number where not even a digit begins it.
    const std::size_t first = text.find_first_not_of("+-.");
    if (first != std::string::npos && text[first] >= '0' && text[first] <= '9') {
        notes.Count(NoteCode::FieldCut, row, [&] { return place + " is read as far as it is a number"; });
    } else {
        notes.Count(NoteCode::NumberAsZero, row, [&] { return place + " is not a number and counts as 0"; });
    }
    return begin;
}

// One pose a line that holds anything; `take` gets its name and the numbers behind it.
template <std::size_t kNumbers, class Take>
void ReadLines(RobotProgram& program, const FieldNames& fields, Take take) {
    const char delimiter = DelimiterCharacter(Run.Delimiter);
    RowNotes notes(program.File.Path, delimiter, fields);
    std::string scratch;
    while (NextLine(program)) {
        if (program.Line.empty()) continue;
        std::string_view rest = program.Line;
        bool passed = rest.front() == delimiter;
        const std::string name(CutField(rest, delimiter, scratch));
        std::array<double, kNumbers> numbers{};
        for (std::size_t k = 0; k < kNumbers; ++k) {
            passed = passed || (!rest.empty() && rest.front() == delimiter);
            const std::string_view field = CutField(rest, delimiter, scratch);
            if (field.empty())
                FailAtLine(program, "a name and " + std::to_string(kNumbers) + " numbers are expected in \"" +
                                        Printable(program.Line) + "\"");
            numbers[k] = FieldValue(field, fields[k + 1], program.Lines.Row, notes);
        }
        if (passed || HoldsMore(rest)) notes.Look(program.Line, program.Lines.Row);
        take(name, numbers);
    }
    notes.Write();
}

// Checks the file as a point file and counts its poses. False where a message has said what is wrong.
bool Check(RobotProgram& program, std::int64_t& n) {
    ASCII_FileCheck(program.File, Run.RobotFileHasId, Run.Delimiter);
    program.Lines = LineWalk(program.File);
    AnzZeilen(program.File, n);
    return !IsTrue(Run.ImportFailed);
}

}  // namespace

void EinlesenABB() {
    RobotProgram program(Run.PathReader);
    std::int64_t n = 0;
    if (!Check(program, n)) return;
    MatrixAngles fromMatrix;
    {
        constexpr double kRadians = 1;  // which the angles of quaternions are in
        PoseTable poses(program, n, kRadians);
        ReadLines<7>(program, {"name", "x", "y", "z", "q1", "q2", "q3", "q4"},
                     [&](const std::string& name, const std::array<double, 7>& v) {
                         poses.Take(program, {v[0], v[1], v[2]},
                                    AnglesOfQuaternion({v[3], v[4], v[5], v[6]}, program, fromMatrix), name);
                     });
    }
    NoteMatrixAngles(program, fromMatrix);
}

void EinlesenXYZABC() {
    RobotProgram program(Run.PathReader);
    std::int64_t n = 0;
    if (!Check(program, n)) return;
    PoseTable poses(program, n, Units.AngleFactor);
    ReadLines<6>(program, {"name", "x", "y", "z", "a", "b", "c"},
                 [&](const std::string& name, const std::array<double, 6>& v) {
                     poses.Take(program, {v[0], v[1], v[2]}, {v[3], v[4], v[5]}, name);
                 });
}
