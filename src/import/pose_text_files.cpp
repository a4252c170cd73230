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

namespace corvinade::import {

namespace {

// Reads the number at the start of a field, whatever the system's settings. A comma in it can only be a
// decimal one, which the check of the file leaves there on a system that has it.
template <class Place>
double FieldValue(std::string_view field, std::int64_t row, RowNotes& notes, Place place) {
    double value = 0;
    if (TextToNumber(field, '.', value)) {
        notes.LookAtDigits(field, row);
        return value;
    }
    std::string text(field);
    std::replace(text.begin(), text.end(), ',', '.');
    notes.LookAtPlainValue(TextToNumber(text, '.', value) ? text : field, place(), row);
    return Val(text);
}

// One pose a line that holds anything; `take` gets its name and the numbers behind it.
template <std::size_t kNumbers, class Take>
void ReadLines(RobotProgram& program, const FieldNames& fields, Take take) {
    const char delimiter = DelimiterCharacter(Run.Delimiter);
    RowNotes notes(program.File.Path, delimiter, fields);
    std::string scratch;
    std::int64_t rows = 0, taken = 0;
    AnzZeilen(program.File, rows);
    while (NextLine(program)) {
        if (program.Line.empty()) {
            // Those at the end of the file are nothing.
            if (taken < rows)
                notes.Count(NoteCode::EmptyRow, program.Lines.Row,
                            [] { return "A row without a point is passed over"; });
            continue;
        }
        ++taken;
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
            numbers[k] = FieldValue(field, program.Lines.Row, notes, [&] {
                return std::string(fields[k + 1]) + " of point \"" + Printable(name) + "\"";
            });
        }
        if (passed || HoldsMore(rest)) notes.Look(program.Line, program.Lines.Row);
        take(name, numbers);
    }
    notes.Write();
}

// Checks the file as a point file and counts its poses. False where a message has said what is wrong.
bool Check(RobotProgram& program, const Reading& how, std::int64_t& n) {
    ASCII_FileCheck(program.File, Run.RobotFileHasId, Run.Delimiter, how);
    program.Lines = LineWalk(program.File);
    AnzZeilen(program.File, n);
    return !IsTrue(Run.ImportFailed);
}

}  // namespace

void EinlesenABB(const TargetFile& file) {
    RobotProgram program(file);
    std::int64_t n = 0;
    if (!Check(program, file.How, n)) return;
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

void EinlesenXYZABC(const TargetFile& file) {
    RobotProgram program(file);
    std::int64_t n = 0;
    if (!Check(program, file.How, n)) return;
    PoseTable poses(program, n, Units.AngleFactor);
    ReadLines<6>(program, {"name", "x", "y", "z", "a", "b", "c"},
                 [&](const std::string& name, const std::array<double, 6>& v) {
                     poses.Take(program, {v[0], v[1], v[2]}, {v[3], v[4], v[5]}, name);
                 });
}

}  // namespace corvinade::import
