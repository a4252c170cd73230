// What the program noticed and decided on its own: one list, filled by import and calculation. Nothing that a
// reader or the engine decides for the user goes without an entry here.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/rooms.h"

namespace corvinade::core {

enum class NoteCode : std::uint8_t {
    // Of an import.
    NumberAsZero,          // a field that is no number counts as 0
    ValueKept,             // a field that is no number leaves what the value was before
    EmptyCoordinate,       // an empty coordinate counts as 0
    NameCut,               // a name ends at its first blank
    ColumnsIgnored,        // fields behind the coordinates are not read
    DelimitersSideBySide,  // delimiters that follow each other count as one
    DuplicateName,         // two points of one file bear the same name
    EmptyRow,              // a row without a point is passed over
    PosesSkipped,          // what looks like a pose of a robot program and is not taken
    PosesByTurn,           // poses and points are paired by their turn, and are not as many
    PosesDoubtful,         // what is taken as a pose of a robot program and declares something else
    FieldSplit,            // a blank divides a field in two, so that what follows moves on by one
    FieldCut,              // what stands behind a number in its field is not read
    OldDelimiter,          // a file that shows no delimiter is read with the one of a file before
    AnglesOfPose,          // angles of a pose by its rotation, where the formula does not give it back
    DigitsCut,             // digits of a number that a double or the told reader does not hold
    NoOrientation,         // pairs without the orientation that their pose should have
    TableExtended,         // a point beyond the end of a table is extrapolated
    NamesShort,            // a set of points has fewer names or numbers than points
    NetworkOpen,           // a network's point that the distances do not determine
    FlagsBeyondPairs,      // a job file has use flags for more pairs than it counts
    BlockLeftOut,          // what stands behind the fields of a job file is damaged and is left out
    MemberUnknown,         // a job file holds data by a name that this version does not know
    NotFinite,             // coordinates of a job file that are infinite or no number
    EntrySkipped,      // a line of a network file that the format passes over, and that looks like an entry
    DistanceUnknown,   // a distance of a network names a point that is not there
    DistanceSwapped,   // a distance of a network names the object point before the station
    DistanceOnePlace,  // a distance of a network is one between points at the same place
    DistanceNotPositive,  // a distance of a network is 0 or less
    HeightSign,           // heights of a shape lose their sign
    RadiusNegative,       // a shape has radii below 0
    ShapeUnsorted,        // the radii of a shape do not rise
    RadiusTwice,          // a shape has two heights at one radius
    AngleUnit,            // angles of a robot program are read in another unit than its own
    LengthUnit,           // the same of its positions
    ColumnsChanged,       // rows of a file with more fields than others
    // Of a calculation.
    Mirrored,         // the result is mirrored
    BetterStart,      // the iteration ended in a solution that is not the best, and began again
    BetterElsewhere,  // another solution is better; start values of the user's own keep this one
    OpenParameters,   // what the points leave open
    EqualResiduals,   // redundancy 0: residuals are 0 or equal whatever the points are
    NoRedundancy,     // sigma and significance say nothing
    ShapeSigma,       // the sigmas of a fit to a shape are smaller than its parameters are known
    NormSigma,        // the sigmas of a norm follow from its weights
    UnsettledFits,    // inner fits that ended at their limit
    GimbalLock,       // the second rotation stands at 90 degrees
    CollapsedScale,   // a scale has gone to 0
    NotConverged,     // a result that did not converge is used
    ScaleLeftOut,     // scales or shears of the result that the format of an export has no place for
    MatrixAngles,     // angles taken from the rotation matrix, where a formula does not give it back
    NearestForm,      // runs brought to the form nearest to the result
    PointsTooNear,    // points so near to each other that products of their distances have no digits
    HardlyKnown,      // a rotation that the points determine, but not to the tenth part of a radian
    NoEffect,         // a parameter that changes nothing at the values of the others
    HeldText,         // the value that a parameter is held at is no number
    // Of an import again.
    PoseNames,  // poses are paired by the names that their program gives them
    // Of an import by the table reader.
    LinesSkipped,     // rows of a table that cannot be read are passed over, as the user has said
    HeadingUnknown,   // the heading of a table names no column that is known
    NameIsNumber,     // a number with a fraction is taken as the name of a point
    CommentedPoints,  // points that stand in comments of a table are passed over
    DecimalTaken,     // commas of numbers are taken as decimal delimiters, and could part thousands
    // Of clouds.
    LinesKept,       // lines without the numbers of a point, which stay as they are
    PointsKept,      // points whose coordinates are infinite or no number, which stay as they are
    PointsDisabled,  // control points that their file has switched off, which are left out
    NoHeight,        // points without a z, which counts as 0
    DirectionsKept,  // columns that look like normals or quaternions and are not turned
    ViewpointKept,   // the viewpoint of a cloud, which is not moved with it
    SingleRounded,   // coordinates that lose digits in the 32 bits that they have
    UnitOfFile,      // the unit that a file names is that of its coordinates
    FormKept,        // a table that is no plain point file is transformed in the form that it has
    // Of any file that is written.
    FileReplaced,  // a new file has taken the place of one whose owner or other names it could not keep
    // Of a fit's files.
    SigmaColumns,  // standard deviations that stand in a file, and what they go before or leave open
    Count_
};

enum class Severity : std::uint8_t { Note, Warning };

// What a code is called outside, and how heavy it weighs.
struct NoteKind {
    NoteCode Code;
    const char* Name;  // as in JSON, lower case with hyphens
    Severity Weight;
    bool OfImport;  // goes with the next import; the others with the next calculation too
};
std::span<const NoteKind> NoteKinds();
const NoteKind& NoteKindOf(NoteCode code);

struct Note {
    NoteCode Code = NoteCode::NumberAsZero;
    Severity Weight = Severity::Note;
    std::string Text;  // one sentence, one line
    std::string File;  // "" where it is of no file
    int Line = 0;      // in the file, from 1; of the first occurrence; 0 where there is none
    int Count = 1;     // occurrences
};

struct NotesRecord {
    std::vector<Note> List;  // in the order in which they came up
};
inline NotesRecord Notes;

// Adds to the list. A note of the same code about the same file counts up what stands there already, whose
// text and line stay: those of the first occurrence. Notes of a calculation have no file and are told apart
// by their text.
void AddNote(NoteCode code, std::string text, std::string file = "", int line = 0, int count = 1);

// The list is emptied by an import; a calculation takes out what calculations have said.
void ForgetNotes();
void ForgetCalculationNotes();

bool HasWarnings();

// "Cannot use ... (mcs.txt, line 7; 3 times)": the note as one line of text, without its severity.
std::string NoteLine(const Note& note);
const char* SeverityName(Severity weight);  // "note", "warning"

}  // namespace corvinade::core
