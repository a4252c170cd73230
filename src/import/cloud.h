// Clouds and other carriers of points: files of any length that stream by, their points read, or carried
// through a motion while everything else stays as it is, byte by byte.
//   .ply            ascii and both binary forms; x y z of the element "vertex", nx ny nz of every element
//   .pcd            ascii, binary, binary_compressed
//   .xyz .pts .asc  text, a point a line: x y z first
//   .points         ground control points of a map: source and map coordinates
//   .tum            trajectories: time stamp, x y z, quaternion x y z w
//   .xml            LandXML: the text of each CgPoint, north east height
//   text            whatever else: columns as a heading or the user names them
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/notes.h"
#include "core/rooms.h"
#include "import/cloud_motion.h"
#include "import/cloud_stream.h"
#include "import/table_text.h"

namespace corvinade::import {

enum class CloudKind : std::uint8_t { Ply, Pcd, Xyz, MapPoints, Tum, LandXml, Text };

// What a file is, by its first bytes, and where they leave it open by its extension, capitals as small ones.
//   head  as much of it as there is, 4 KiB at most
CloudKind CloudKindOf(std::string_view head, const std::string& path);
// As in `format` of JSON: "ply", "pcd", "xyz", "points", "tum", "landxml", "text".
const char* CloudKindName(CloudKind kind);
// "a PLY cloud", as windows say it.
const char* CloudKindInWords(CloudKind kind);

// What a column of a row holds. None is kept as text.
enum class PointColumn : std::uint8_t {
    None,
    Name,
    X,
    Y,
    Z,
    NormalX,
    NormalY,
    NormalZ,
    TurnX,
    TurnY,
    TurnZ,
    TurnW,
    OtherX,
    OtherY,
    OtherZ,
    // Standard deviations, of both systems of a file that holds both; the last one of three serves all axes.
    SigmaX,
    SigmaY,
    SigmaZ,
    Sigma,
    OtherSigmaX,
    OtherSigmaY,
    OtherSigmaZ,
    OtherSigma,
    Enabled,  // of control points: 0 or 1
    Count_
};

// "name,x,y,z,-,X,Y,Z": also t (a name), nx ny nz, qx qy qz qw; with X, Y and Z the sigmas sx sy sz or s, and
// SX SY SZ or S; without them sx, sy, sz and s are kept as text, as "-" is always. An error is told in `why`:
// an unknown word, one that stands twice, no x or y. Words differ by case in x, y, z alone.
std::optional<std::vector<PointColumn>> ColumnsFromText(std::string_view text, std::string& why);

// What the user has said of a file; what is left out is found in it.
struct CloudWish {
    std::vector<PointColumn> Columns;
    std::optional<char> Delimiter;  // ' ': blanks and tabs
    std::optional<char> Decimal;
    std::string Unit;  // of its coordinates: "mm", "cm", "m", "km", "in", "ft"; "" = that of the file
    std::optional<TableEncoding> Encoding;  // of text
    std::optional<int> Digits;              // decimals of new coordinates in text, 0 to 12
    int LeastDigits = 3;  // where these are not given: at least so many, and those of the file
    // The two systems of one file are both wanted (OtherX...).
    bool Pairs = false;
    // Of text that is read: a row without the numbers of a point is refused, not passed over. Comments, rows
    // without anything, and what stands in front of the first row are none.
    bool RefuseBad = false;
};

// What was found in a file.
struct CloudFacts {
    CloudKind Kind = CloudKind::Text;
    std::int64_t Points = 0;          // with all coordinates finite
    std::int64_t NotFinite = 0;       // points with NaN or infinite coordinates, kept as they are
    std::int64_t FirstNotFinite = 0;  // the first of them: its number, or in text its line; from 1
    bool FirstIsLine = false;
    std::int64_t Disabled = 0;             // control points that are switched off, where they are only read
    std::int64_t FirstDisabled = 0;        // the line of the first
    std::int64_t LinesKept = 0;            // lines, or CgPoints, without three numbers
    std::int64_t FirstKept = 0;            // the line of the first
    std::int64_t Bad = 0;                  // of these, where they are only read: meant as points
    std::int64_t OtherFields = 0;          // rows of text with another number of fields than the first one
    std::int64_t FirstOtherFields = 0;     // the line of the first
    double LargestIn = 0, LargestOut = 0;  // of 32-bit coordinates, absolute
    bool TwoCoordinates = false;           // it has no z: 0
    bool HasViewpoint = false;             // of a pcd, other than the origin
    std::string
        Directions;    // columns of text that look like normals or a quaternion and are not turned: which
    std::string Unit;  // "m" where the file, or the user, names its unit; "" = neither does
    bool UnitGiven = false;   // the user does
    std::vector<Note> Notes;  // what was decided of its form
};

struct CloudPoint {
    std::string Name;  // "" = its number
    std::array<double, 3> At{}, Other{};
    std::optional<std::array<double, 3>> Sigma, OtherSigma;  // nothing: the file has none
};

// A file on its way. Without `Motion` its points are handed to `Take`, with the numbers of its own unit.
struct CloudTask {
    CloudInput& In;
    CloudOutput& Out;
    const CloudMotion* Motion = nullptr;  // in mm
    std::function<void(const CloudPoint&)> Take;
    CloudWish Wish;
    CloudFacts Facts;
    // Of a file that names its unit: how many of these a millimetre has; else this.
    double UnitsPerMm = 1;
};

// Reads a file to its end. Memory does not grow with its length, but for the longest line, which is limited;
// a compressed pcd goes through temporary files. NaN and infinite coordinates are kept and counted, not
// handed to `Take`, nor are control points that are switched off. Throws PlatformError, with the line or the
// number of the point, for what is cut off or damaged, for a result larger than its type, for coordinates of
// a whole-number type that would have to be rounded, and for a file without any point.
void RunCloud(CloudTask& task);

// The notes on a file, to be added to the list.
std::vector<Note> NotesOfCloud(const CloudFacts& facts, const std::string& path, bool carried);
// The same, in the list of notes: AddNote.
void NoteCloud(const CloudFacts& facts, const std::string& path, bool carried);

}  // namespace corvinade::import
