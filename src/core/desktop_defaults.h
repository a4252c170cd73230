// What the program of people begins with otherwise than scripts, whose results stay what they were. One row a
// default; a row of section "Desktop" of the settings file that says "as before" takes its default back.
#pragma once

#include <span>

#include "core/rooms.h"

namespace corvinade::core {

struct DesktopDefaultsRecord {
    bool Wanted = false;  // by the face, before the start

    bool AxisColors = false;      // are dark on a light ground
    bool ColorLimits = false;     // of points in use; of both signs and alike for a signed component
    bool NeutralColor = false;    // points that have no deviation in the fit are grey
    bool ColorBar = false;        // with zero, unit and component
    bool Fit = false;             // leaves room for the bar, points have a least size, the worst is on top
    bool ResultState = false;     // a result that is stored or out of date is said to be so
    bool ResultFields = false;    // a dash where a number would say nothing true
    bool AfterImport = false;     // what has come in is shown, and what to do next
    bool FailedImport = false;    // leaves the points of before, as one that was stopped does, and its dialog
    bool TypedFiles = false;      // whose names were typed are looked at for tables as chosen ones are
    bool RecentJobs = false;      // list the jobs that were opened, too
    bool GridNumbers = false;     // of lines are never head down
    bool SheetDeviation = false;  // the main sheet has a column of the 3D deviation, with a bar
    bool StartPage = false;       // stands in the empty frame
    bool PointTable = false;      // the rows of one point stay together when they are sorted
    bool PointsFollow = false;    // a point chosen in the main sheet or a picture is chosen in all of them
    bool FlagLetters = false;     // are white where dark ones would stand on red or blue
};
inline DesktopDefaultsRecord DesktopDefaults;

struct DesktopDefault {
    const char* Key;  // in section "Desktop"
    bool DesktopDefaultsRecord::*Place;
};
std::span<const DesktopDefault> AllDesktopDefaults();
inline constexpr const char* kAsBefore = "as before";

// To be called before StartUp by a face for people; all other faces keep to what scripts know.
void WantDesktopDefaults();

// Turns on what is wanted and what the settings file, which has been read, does not take back.
void TakeDesktopDefaults();

}  // namespace corvinade::core
