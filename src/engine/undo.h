// Undo and redo of what the user does to the job: use of points, norm, tolerance, parameters with their held
// values and seeds, units, direction and import, and what rooms above keep of theirs. Results are none of it;
// one of another choice is out of date.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "core/job.h"
#include "core/notes.h"
#include "core/rooms.h"
#include "fit/parameters.h"

namespace corvinade::engine {

inline constexpr std::size_t kUndoSteps = 200;
// Of all steps. The newest stays in any case, but a job that takes more is not kept: a step that would need
// it ends what can be undone, and says so.
inline constexpr std::size_t kUndoBytes = std::size_t{64} << 20U;

// The boxes and fields of one parameter. The field of one that floats is a result, "" here.
struct ParameterChoice {
    int Floats = 0, Seeded = 0;
    std::string Held, Seed;
    bool operator==(const ParameterChoice&) const = default;
};
using ParameterChoices = std::array<ParameterChoice, kParameterEnd>;

struct UseTurn {
    std::int32_t Index = 0;  // of the use flag
    std::int16_t Before = 0, After = 0;
};

// Units, digits and formats, and the texts of held values, which are written in them.
struct UnitChoice {
    std::string Length, Angle;
    std::int16_t LengthDigits = 0, AngleDigits = 0, ScaleDigits = 0;
    Flag PhiThetaAsQ = kFalse;
    std::array<std::string, 18> ParamText;
    bool operator==(const UnitChoice&) const = default;
};

// A job that is not the one in hand: that of before a step, or the one that the step had made.
struct KeptJob {
    JobRecord Job;
    std::vector<std::string> ViewNames;
    std::optional<ParameterChoices> Choices;
    std::array<Flag, 8> State{};  // of the program run, as far as they are of the job
    std::int16_t TargetKind = 0;  // of its target file, as the settings number it
    std::vector<Note> Notes;
    std::uint64_t Generation = 0;
};

enum class JobChange : std::uint8_t { Direction, Import };

inline constexpr int kTypedTolerance = -1;

struct UndoStep {
    const char* Name = "";
    std::vector<UseTurn> Use;
    std::int16_t NormBefore = 0, NormAfter = 0;
    double ToleranceBefore = 0, ToleranceAfter = 0;  // mm
    std::optional<ParameterChoices> Before, After;
    // 1 + the one field that differs, held before seed, or kTypedTolerance: what is typed into it is one
    // step.
    int Typed = 0;
    std::optional<UnitChoice> UnitsBefore, UnitsAfter;
    std::shared_ptr<KeptJob> Other;  // changes places with the job
    JobChange Change = JobChange::Direction;
    // Of a room above: puts it back, or again.
    std::function<void(bool back)> Put;
    std::size_t Bytes = 0;     // that Put holds
    std::uint64_t Window = 0;  // a graphics window, without which the step is none; 0: it needs none
};

// What the steps are of: the points, and how many use flags go with them.
using UndoGround = std::tuple<std::uint64_t, std::size_t>;

struct UndoRecord {
    std::deque<UndoStep> Steps;
    std::size_t Done = 0;  // the steps behind these have been undone
    int Paused = 0;        // a step is being made or put: what changes meanwhile is none of its own
    // What the job was when it was last looked at.
    UndoGround Ground;
    std::vector<std::int16_t> UseFlags;
    std::int16_t Norm = 0;
    double Tolerance = 0;
    std::optional<ParameterChoices> Choices;  // of the window, while it is open
    UnitChoice Units;
};
inline UndoRecord Undo;

// A step of a room above. Where nothing can be put, as of another job, the steps are forgotten with it.
void KeepUndoStep(UndoStep step);
// A graphics window has closed.
void ForgetUndoStepsOf(std::uint64_t window);

// The job as it is now, for a step that replaces it: to be made before anything of it changes. Without points
// there is nothing to keep. Until `Keep`, or its end, nothing that changes is a step of its own.
class JobStep {
public:
    JobStep();
    ~JobStep();
    JobStep(const JobStep&) = delete;
    JobStep& operator=(const JobStep&) = delete;
    void Keep(const char* name, JobChange change);

private:
    std::shared_ptr<KeptJob> before_;
    bool tooLarge_ = false, kept_ = false;
};

// Behind an event that may have changed any of it: what differs becomes a step.
void NoteUndoStep();

// A calculation has written its result into the window's fields: that is no step.
void LookPastResult();

// The window goes, and with it what was chosen and not calculated.
void ForgetShownChoices();

void MenuEditUndo_Click();
void MenuEditRedo_Click();

}  // namespace corvinade::engine
