// The state of one program run that no job file keeps.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "core/arrays.h"
#include "core/rooms.h"

namespace corvinade::core {

// Stands for the unnamed job; a fixed text, never the path of a file.
inline constexpr const char* kDefaultJobPath = "..\\default.cvn";

struct RunRecord {
    std::string JobFilePath;
    Flag JobDataValid = kFalse;  // point data are present
    Flag TrafoValid = kFalse;    // a transformation result is present
    Flag CalcDone = kFalse;      // the calculation window has shown a result
    Flag JobDirty = kFalse;      // changed since the last save
    Flag ColorBarOpen = kFalse;
    std::array<std::string, 5> LastFile{};  // recent files, 1 to 4
    Flag StopRequested = kFalse;            // the user asked a long run to stop
    std::string Delimiter;                  // the field delimiter last found in a point file

    // Kinds of target file that no job stores; with IsParaboloid, IsKuka and IsQuaternion of the job at most
    // one of the seven is true.
    Flag IsDefault = kFalse, IsABBModx = kFalse, IsFanuc = kFalse, IsXYZABC = kFalse;

    Flag ImportFailed = kFalse;
    Flag RobotFileHasId = kFalse;  // the file check skips a first column
    Flag OverwriteQuiet = kFalse;  // the clipboard round trip replaces points without a question
    // Largest minus smallest angle of a robot program, by the columns of Job.RobotABC, rad.
    double SpanA = 0, SpanB = 0, SpanC = 0;
    float Etta = 0;  // tolerance of the matching, mm

    bool PointCloud = false;          // the pictures show a cloud without pairs
    bool GraphicsWindowSeen = false;  // a graphics window has been counted once

    std::string SettingsFilePath;     // empty: nothing is read from or written to a settings file
    std::uint64_t JobGeneration = 0;  // counted up whenever the points change under running work
    int WaitPointers = 0;             // the busy pointer shows while this is above 0
    std::string LastPlatformError;    // text of the last error that ended a handler
};
inline RunRecord Run;

}  // namespace corvinade::core
