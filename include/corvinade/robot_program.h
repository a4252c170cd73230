// Robot programs: the poses of one, and the same program with its poses moved. Lengths in mm; texts and paths
// in UTF-8. Threads may call at once; they wait for each other.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "corvinade/error.h"
#include "corvinade/point_file.h"
#include "corvinade/transformation.h"

namespace corvinade {

struct RobotPose {
    std::string Name;  // as the program calls it; "" where it has no name for it
    Matrix4 Frame{};   // of the tool or flange in the base: its place, and its axes as columns
};

struct RobotPoses {
    std::vector<RobotPose> Poses;  // in the order of the program
    std::vector<FileNote> Notes;   // what has been left, and what is doubtful
};

// The poses of a program, as `corvinade-cli fit --as` reads them (docs/robot-programs.md). `form` is "kuka"
// (.dat), "fanuc" (.ls) or "abb" (.modx). Throws InvalidInput, with file and line, where it cannot be read
// for certain, and for another form.
CORVINADE_API RobotPoses ReadProgram(const std::string& path, std::string_view form);

// Writes the program `from` once more as `to`, its poses carried by a rigid transformation: X = M x + t for
// their places, M R for their axes. All else stays byte by byte, names, remarks, speeds and what a pose says
// of the configuration of the arm among it: whether the arm gets there in that one, only the robot can say.
// Numbers have six decimals (quaternions nine), or those of the fixed columns that they stand in: three.
// Poses that the reader leaves stay where they are, which a note says. The file is replaced in one step or
// stays as it is. Throws InvalidInput as ReadProgram does, and where the transformation has a scale, a shear
// or a mirror, a number has no room in its columns, a pose cannot be written where it stands, and where the
// file cannot be written.
CORVINADE_API std::vector<FileNote> TransformProgram(const std::string& from, const std::string& to,
                                                     std::string_view form, const Matrix4& matrix);

}  // namespace corvinade
