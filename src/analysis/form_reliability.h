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

    Control LabelGlobalTest = Label("");
    Control GridPoints = Grid(1, 0);
    Control GridCorrelation = Grid(1, 1);
    Control GridAccuracy = Grid(1, 1);

    Control FrameSigmas = Frame("Standard Deviations of the Measurement");
    Control LabelStart = Label(""), LabelTarget = Label("");  // the two systems
    Control TextStartSigmaX = TextBox(), TextStartSigmaY = TextBox(), TextStartSigmaZ = TextBox();
    Control TextTargetSigmaX = TextBox(), TextTargetSigmaY = TextBox(), TextTargetSigmaZ = TextBox();
    Control LabelSigmas = Label("");  // their unit, and sigmas that stand at each point
    Control BtnApply = Button("A&pply");

    Control FrameTests = Frame("Tests");
    Control LabelAlpha = Label("Alpha"), LabelPower = Label("Power"), LabelConfidence = Label("Confidence");
    Control TextAlpha = TextBox(), TextPower = TextBox(), TextConfidence = TextBox();

    Control BtnSnoop = Button("S&noop"), BtnSnoopBack = Button("&Undo Snoop");
    Control BtnCopy = Button("&Copy"), BtnClose = Button("Cl&ose");

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
inline FormReliability Reliability;
extern const WindowEntry FormReliability_Entry;

// Fills all of it from the last calculation. Of a job without one, and where there are no statistics, the
// first line says why.
void FillReliability();

// True where a coordinate has been taken out or in since the calculation that the window shows.
bool IsTurned(std::size_t index);

}  // namespace corvinade::analysis
