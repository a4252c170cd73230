// The window "Reliability": how far the result can be trusted, coordinate by coordinate, and how accurately
// the points were measured. It is filled behind each calculation while it is open.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/rooms.h"
#include "core/window.h"
#include "fit/adjustment_statistics.h"

namespace corvinade::analysis {

// Columns of the table of coordinates.
enum ReliabilityColumn : int {
    kRelPoint,
    kRelAxis,
    kRelResidual,
    kRelRedundancy,
    kRelStandardized,
    kRelMdb,
    kRelVerdict,
    kRelCols
};

struct FormReliability {
    WindowState Window{.Caption = "Reliability"};

    Control LabelGlobalTest;
    Control GridPoints;
    Control GridCorrelation;
    Control GridAccuracy;

    Control FrameSigmas;
    Control LabelStart, LabelTarget;  // the two systems
    Control TextStartSigmaX, TextStartSigmaY, TextStartSigmaZ;
    Control TextTargetSigmaX, TextTargetSigmaY, TextTargetSigmaZ;
    Control LabelSigmas;  // their unit, and sigmas that stand at each point
    Control BtnApply;

    Control FrameTests;
    Control LabelAlpha, LabelPower, LabelConfidence;
    Control TextAlpha, TextPower, TextConfidence;

    Control BtnSnoop, BtnSnoopBack;
    Control BtnCopy, BtnClose;

    std::optional<AdjustmentStatistics> Shown;  // what the tables are of
    std::vector<std::size_t> Order;             // indices of coordinates, the worst first
    std::vector<std::size_t> Snooped;           // taken out by BtnSnoop, in their order
    std::vector<std::int16_t> UseThen;          // the use flags of the calculation that is shown
    // Fields of sigmas as they were filled; those that stand so still are not read back.
    std::vector<std::string> SigmasShown;
    bool Filling = false;  // the fields change by the program

    static void Form_Load();
    static void Form_Escape();
    static void GridPoints_Click();
    static void GridPoints_DblClick();
    static void Level_Change();
    static void BtnApply_Click();
    static void BtnSnoop_Click();
    static void BtnSnoopBack_Click();
    static void BtnCopy_Click();
    static void BtnClose_Click();
};
extern FormReliability Reliability;
extern const WindowEntry FormReliability_Entry;

// Fills all of it from the last calculation. Of a job without one, and where there are no statistics, the
// first line says why.
void FillReliability();

// True where a coordinate has been taken out or in since the calculation that the window shows.
bool IsTurned(std::size_t index);

}  // namespace corvinade::analysis
