// What handlers change, and who shows it. A handler says what it has changed and nothing else; behind the
// outermost handler each row of the one table that a change concerns runs once, in the order of the turns.
#pragma once

#include <cstdint>
#include <functional>
#include <span>

#include "core/rooms.h"

namespace corvinade::core {

enum class What : std::uint32_t {
    Nothing = 0,
    OpenedJob = 1U << 0U,         // another job is open
    Points = 1U << 1U,            // an import has replaced the points
    MorePoints = 1U << 2U,        // start points have been added
    Restored = 1U << 3U,          // an import was given up, the points of before are back
    Coordinates = 1U << 4U,       // points stand elsewhere
    Counts = 1U << 5U,            // how many points each set has
    Pairs = 1U << 6U,             // what is measured between pairs
    Use = 1U << 7U,               // which coordinates take part in the fit
    UnitsAndDigits = 1U << 8U,    // units or their formats
    Result = 1U << 9U,            // a calculation has ended
    PictureSettings = 1U << 10U,  // what the pictures show
    State = 1U << 11U,            // whether there are points, a result, pictures; the path; the window on top
    // What is shown at once (ShowNow).
    UnitFactors = 1U << 12U,   // of the units; texts still stand in those of before
    NewJob = 1U << 13U,        // a job begins anew with the points that there are
    NextResult = 1U << 14U,    // a calculation begins, the result that stands goes
    PointInTable = 1U << 15U,  // the point chosen in the calculation window's table
    PointInSheet = 1U << 16U,  // the point chosen in the main sheet
    NoPictures = 1U << 17U,    // what the pictures show is given up
    ProgramEnd = 1U << 18U,    // all windows but the main one are closed
    // Behind the handler, as those above all of these.
    Choice = 1U << 19U,  // what a calculation may change, and its norm
    // Shown at once, as those further above.
    PointToZoom = 1U << 20U,  // the point of the main sheet that the picture on top shall show from near
};

constexpr What operator|(What a, What b) {
    return static_cast<What>(static_cast<std::uint32_t>(a) | static_cast<std::uint32_t>(b));
}
constexpr bool Share(What a, What b) {
    return (static_cast<std::uint32_t>(a) & static_cast<std::uint32_t>(b)) != 0;
}

// With any of these the commands, the title and the recent files may be others.
inline constexpr What kStateOfJob =
    What::OpenedJob | What::Points | What::Restored | What::Result | What::State;

// The one order in which everything follows a change.
enum class Turn : std::uint8_t {
    HeldValues,
    NewPairs,
    PointInSheet,
    PointInPictures,
    LastResult,
    ClosedPictures,
    PictureDefaults,
    CalculationUnits,
    PairTable,
    Pictures,
    Flags,
    Sheet,
    CalculationFields,
    Distances,
    Commands,
    BundleCommands,
    TopWindow,
    Forms,
    Reliability,
    OpenedResult,
    ResultAge,
    HandedOn,
    Report,
    Statistic,
};

struct ChangeRow {
    What Of;  // any of these
    Turn Place;
    void (*Show)(What changed);  // told all that has changed
    bool OfTheSameJob = false;   // left out where other points have come in while the rows before it ran
};

// The rows of all rooms by their turns; defined above all rooms.
std::span<const ChangeRow> AllChangeRows();

// Within a handler the change is kept for the end of the outermost one, outside of all it is shown at once.
void Changed(What what);

// Shows what this handler has changed so far: for what has to be seen before a question or within long work.
void ShowChanges();

// Runs the rows of this change alone and at once; what else has changed waits for its turn. For what has to
// follow before the handler goes on, in rooms that it knows nothing of.
void ShowNow(What what);

// Runs a handler; behind the outermost one its changes are shown, though it may have ended by an exception.
// That goes on, whatever showing the changes throws.
void RunHandler(const std::function<void()>& handler);

// The same for an event. One that arrives while a handler yields is outermost itself: its changes are shown
// at its end, those of the handler at that one's.
void RunEvent(const std::function<void()>& work);

struct ChangesRecord {
    std::span<const ChangeRow> Rows = AllChangeRows();
    What Pending = What::Nothing;  // of the handler that runs
    bool Handling = false;         // one runs
};
inline ChangesRecord Changes;

}  // namespace corvinade::core
