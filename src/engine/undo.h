// Undo and redo of what the user chooses for a calculation: use of points, norm, parameters with their held
// values and seeds. Results are none of it; one of another choice is out of date.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "core/rooms.h"
#include "fit/parameters.h"

namespace corvinade::engine {

inline constexpr std::size_t kUndoSteps = 200;
inline constexpr std::size_t kUndoBytes = std::size_t{64}
                                          << 20U;  // of all steps; the newest stays in any case

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

struct UndoStep {
    const char* Name = "";
    std::vector<UseTurn> Use;
    std::int16_t NormBefore = 0, NormAfter = 0;
    std::optional<ParameterChoices> Before, After;
    int Typed = 0;  // 1 + the one field that differs, held before seed; what is typed into it is one step
};

// What the steps are of; in any other job, direction or unit they would say something else.
using UndoGround = std::tuple<std::uint64_t, std::size_t, std::string, int, std::string, int>;

struct UndoRecord {
    std::deque<UndoStep> Steps;
    std::size_t Done = 0;  // the steps behind these have been undone
    // What the job was when it was last looked at.
    UndoGround Ground;
    std::vector<std::int16_t> UseFlags;
    std::int16_t Norm = 0;
    std::optional<ParameterChoices> Choices;  // of the window, while it is open
};
inline UndoRecord Undo;

// Behind an event that may have changed any of it: what differs becomes a step.
void NoteUndoStep();

// A calculation has written its result into the window's fields: that is no step.
void LookPastResult();

// The window goes, and with it what was chosen and not calculated.
void ForgetShownChoices();

void MenuEditUndo_Click();
void MenuEditRedo_Click();

}  // namespace corvinade::engine
