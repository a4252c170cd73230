// The kinds of target file, a row each, and the readers of robot programs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/arrays.h"
#include "core/job.h"
#include "core/rooms.h"
#include "core/run.h"
#include "import/reading.h"

namespace corvinade::import {

// A number of a pose in the bytes of its file.
struct NumberPlace {
    std::size_t At = 0, Size = 0;
    double Value = 0;  // in the units of the file
};
// Where the numbers of the poses that are taken stand, pose by pose in the order in which they are read; for
// whoever writes the program with others.
struct PosePlaces {
    std::string Text;  // of the file, behind a byte order mark
    bool HasMark = false;
    std::vector<std::vector<NumberPlace>> Poses;
    std::vector<NumberPlace> Next;  // of the pose that is being read
};

// A target file and how it is read.
struct TargetFile {
    std::string Path;
    // Programs are read by declarations, whatever the lines these stand in; else by the beginnings of lines.
    bool ByDeclarations = false;
    Reading How{};
    PosePlaces* Places = nullptr;  // filled where they are wanted
};

using PoseReader = void (*)(const TargetFile& file);

// What the robot program that was read last calls its poses, from 1: as they are declared, or the number in
// the brackets. "" where the program has no name for a pose; text files have none beside those of the points.
struct ProgramPosesRecord {
    std::vector<std::string> Name{""};
};
inline ProgramPosesRecord ProgramPoses;

// Each reads a robot program into the target set: positions into Job.Target, orientations into
// Job.RobotABC (rows 0 to n; columns 1 to 3 are the rotations about z, the new y and the new x, rad), the
// spans of these into Run.SpanA to SpanC. No pairs are left; the start set and the rest of the job are not
// touched. Lengths and angles in the file are in the units of Units.
// Throws PlatformError, naming file, line and the text found there, where a line lacks what its format needs;
// the poses before it are then in the job, with counts that fit. docs/robot-programs.md has the formats.
void EinlesenKUKAdatDatei(const TargetFile& file);  // poses named 1, 2, 3...
void EinlesenABB_MODX(const TargetFile& file);      // likewise
void EinlesenFanucDatei(const TargetFile& file);    // likewise; an error has its message besides

// The same from text files of name, x, y, z and three angles or a quaternion. The checks of point files come
// first: Run.ImportFailed with a message where one fails, the job then as it was.
//   Writes  Run.RobotFileHasId, which stays set for the files after it, and Run.Delimiter
void EinlesenXYZABC(const TargetFile& file);
void EinlesenABB(const TargetFile& file);

// In the order of `ComboOCS_Data`; the last choice stands in the settings by its number.
enum class TargetKind : std::uint8_t { Points, Kuka, Abb, Fanuc, Angles, Quaternions, Shape };

struct InputKind {
    TargetKind Kind;
    const char* Entry;  // in `ComboOCS_Data`
    const char* Name;   // on the command line
    int Turn;           // among the names of the help, from 1; 0 = not among them
    Flag* IsKind;       // the record that says that the job is of this kind; null = it has none
    PoseReader Read;    // reads the poses; null = it has none
    // Paired by ID: the poses bear numbers alone, in their order, and so do then the start points.
    bool NumbersPoints = false;
    // The poses that are taken bear the numbers of their turn, so one that is not moves those behind it.
    bool ByTurn = false;
    // Of programs that can be written with other poses: the letters before the numbers of a pose, for x, y, z
    // and the turns about x, y and z; "" where x, y, z and a quaternion stand in their order; null = they
    // cannot.
    const char* Letters = nullptr;
    bool InColumns = false;  // the numbers stand in columns, with three decimals
};

inline constexpr InputKind kInputKinds[] = {
    {TargetKind::Points, "Default - [Ptnr = optional], x, y z", "points", 0, &Run.IsDefault, nullptr},
    {TargetKind::Kuka, "Kuka Robot file (*.dat) A = Rz, B = Ry', C = Rx''", "kuka", 1, &Job.IsKuka,
     EinlesenKUKAdatDatei, false, true, "XYZCBA"},
    {TargetKind::Abb, "ABB Robot file (*.modx) x y z q1 q2 q3 q4", "abb", 3, &Run.IsABBModx, EinlesenABB_MODX,
     true, true, ""},
    {TargetKind::Fanuc, "Fanuc Robot file (*.ls) W = Rx, P = Ry', R = Rz''", "fanuc", 2, &Run.IsFanuc,
     EinlesenFanucDatei, false, true, "XYZWPR", true},
    {TargetKind::Angles, "only coordinates and R-Angles x, y, z, A = Rz, B = Ry', C = Rx''", "xyzabc", 5,
     &Run.IsXYZABC, EinlesenXYZABC},
    {TargetKind::Quaternions, "only coordinates and quaternions x, y, z, q1, q2, q3, q4", "quaternion", 4,
     &Job.IsQuaternion, EinlesenABB},
    {TargetKind::Shape, "Paraboloid Shape Data", "paraboloid", 6, &Job.IsParaboloid, nullptr},
};

// What the help of the command line says of them.
inline constexpr const char* kInputKindsInWords =
    "TARGET is a robot program: declarations (.dat), fixed columns (.ls),\n"
    "robot targets (.modx), or text, a line a pose: name x y z and a\n"
    "quaternion or three angles; or the profile of a shape of\n"
    "revolution, text, a line a point: radius and height";

constexpr bool RowsStandByTheirNumbers() {
    for (std::size_t i = 0; i < std::size(kInputKinds); ++i)
        if (static_cast<std::size_t>(kInputKinds[i].Kind) != i) return false;
    return true;
}
static_assert(RowsStandByTheirNumbers());

inline std::span<const InputKind> InputKinds() {
    return kInputKinds;
}
inline const InputKind& InputKindOf(TargetKind kind) {
    return kInputKinds[static_cast<std::size_t>(kind)];
}

// The kind of a name on the command line. Require: there is one.
TargetKind TargetKindByName(std::string_view name);

// The names that the help lists, in their turn.
std::vector<std::string> TargetKindNames();

// Sets the flag of a kind and clears all others.
void MakeJobOfKind(TargetKind kind);

}  // namespace corvinade::import
