// An import as whoever wants it says it: the input dialog, the round trip through the clipboard, the command
// line. Nothing of it stands in a window.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/measurement_sigmas.h"
#include "core/platform.h"
#include "core/point_set.h"
#include "core/rooms.h"
#include "import/reading.h"
#include "import/robot_files.h"

namespace corvinade::import {

// How the points that both files hold are found.
enum class Pairing : std::uint8_t {
    ByID,          // by equal names
    ByCoordinate,  // by coordinates that are near to each other
    ByDistance,    // by distances inside each set
    None,          // no way has been chosen, so nothing is read
};

// What the poses of a robot program are called.
enum class PoseNames : std::uint8_t {
    ByTurn,   // 1, 2, 3...
    Program,  // as the program calls them
    Match,    // by ID: as the program does where start points bear such names, and no fewer than numbers
};

struct ImportRequest {
    std::string StartPath, TargetPath;
    // Of the two systems; nothing = as in the job, where it has none "MCS" and "OCS".
    std::optional<std::string> StartName, TargetName;

    TargetKind Kind = TargetKind::Points;  // of the target file
    bool ByDeclarations = false;           // robot programs are read by declarations, not by lines
    // What stands between the fields of a file that does not show it; nothing = as in the file before.
    std::optional<std::string> Delimiter;

    Pairing Way = Pairing::ByID;
    // How near is equal, by coordinate and by distance, mm; nothing, and what is 0 as a 32-bit float, is
    // asked.
    std::optional<double> Tolerance_mm;
    bool RenameStart = false, RenameTarget = false;  // by coordinate: the files get the names of the pairs
    // By distance: how many target points are searched, as typed; nothing = all. It is read when the search
    // begins, and what is no number is an error there.
    std::optional<std::string> OnlyFirst;

    PoseNames Names = PoseNames::ByTurn;
    // The poses that are taken, by what the program calls them or by their names, in capital letters or not;
    // none = all.
    std::vector<std::string> Select;
    // Told of one that is not there, which ends the import.
    std::function<void(const std::string& text)> UnknownPose = [](const std::string&) {};

    // Points that have been read already, mm: they are taken in the place of those of the file, whose path is
    // its name then. What they point to is empty afterwards. Null = the file is read.
    PointSet *StartPoints = nullptr, *TargetPoints = nullptr;
    // The a-priori standard deviations of those points, point by point, which the job gets with them; null =
    // they have none. They go wherever their point goes, and are empty afterwards.
    PointAccuracies *StartSigmas = nullptr, *TargetSigmas = nullptr;

    bool ReplacesQuietly = false;  // the points of before go without a question
    Reading How{};
    // A line of text from the user, by text, title and preset; nothing when cancelled.
    std::function<std::optional<std::string>(const std::string&, const std::string&, const std::string&)>
        AskLine = AskInput;
    // The window that the import is asked for in, "" = none. Another job that is opened while the import
    // tells of its points has closed it, and stays as it is; without a window every change of the points
    // counts as one.
    std::string Window;
};

enum class ImportOutcome : std::uint8_t {
    Done,       // the job has these points, paired
    NotRead,    // a message has said why not, or an answer was No or none; Run.ImportFailed is set where a
                // check of a file failed, or its shape
    Overtaken,  // it was done, and another job has been opened while it told of its points
};

// The whole import: both files read and paired, the working set filled, all that shows points told of it.
//   Writes  the points and names of the job, its kind, paths and orientations, Run.Delimiter, Run.Etta,
//           the settings of the last import
// What was read before a failure stays, with counts and arrays that fit each other, Run.JobDataValid as it
// was; the job is of its kind of before then, and a large import that is cancelled puts everything back.
// Throws PlatformError on a file or number that cannot be read; the job is not valid then.
ImportOutcome Import(const ImportRequest& request);

// The calculation window is begun anew with the points that have just come in, where it is open. The job is
// changed.
void ShowNewPoints();

}  // namespace corvinade::import
