// What the calculation window's procedures share: its controls by parameter and by quality value, and what
// outlives a click.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "core/arrays.h"
#include "core/job.h"
#include "core/rooms.h"
#include "engine/form_trafo_berechnung.h"

namespace corvinade::engine {

// Survives from one calculation to the next, and the window's closing.
struct CalculationWindowRecord {
    std::array<double, 18> LastSolution{};  // the parameters 1 to 17 when the button was pressed
    std::array<double, 16> LastQuality{};   // the quality values 1 to 15 of the calculation before
    Flag UseABCActive = kFalse;             // the R vector is governed by its box
    GridSort Sorting;                       // of the point table
    // Values that the user has picked out of a table for a graph, element 0 unused.
    Column GraphValues{0};
    // Factors of the units that the window's fields are shown in.
    double LengthFactor = 1, AngleFactor = 1;
    // Events that arrive while a run yields do not begin another one inside it.
    bool Running = false;
    int ManyChanges = 0;          // changes that belong together are being made (NoRecalculation)
    bool ChoosingPreset = false;  // a preset is setting its boxes
    bool Again = false;           // a change that arrived meanwhile asks for a calculation behind this one
    std::uint64_t Started = 0;    // counts the calculations
};
inline CalculationWindowRecord CalculationWindow;

// The controls of parameter 1 to 17. The parts of the R vector share one box, and have no fields for
// sigma and significance.
struct ParameterControls {
    int Parameter;
    Control *Check, *Text, *SeedCheck, *SeedText;
    Control *Sigma = nullptr, *Signifikanz = nullptr;
};
std::span<const ParameterControls> ParameterRows();
const ParameterControls& RowOf(int parameter);

// The field and the two arrows of quality value 1 to 15, in the order of LastQuality.
struct QualityControls {
    Control *Field, *ArrRed, *ArrGreen;
};
enum Quality : int {
    kSxyz = 1,
    kS0,
    kSx,
    kSy,
    kSz,
    kMaxDevxyz,
    kMaxDevX,  // Y and Z behind it, likewise below
    kMinDevX = kMaxDevX + 3,
    kMaxMinX = kMinDevX + 3,
    kQualityEnd = kMaxMinX + 3
};
const QualityControls& QualityRow(int quality);

// Hides all trend arrows.
void ResetArrows();

// Unchecks all boxes of the parameters, one after the other.
void CheckReset();

// Marks the preset that gives just the choice of the window's boxes, where there is one; nothing else is
// changed, since its handler would blank the fields. A parameter that is held away from its neutral value
// belongs to no preset.
void MarkPreset();

// Blanks the fields of sigma, significance and deviations.
void AnzeigeReset();

// Takes the norm of an option that was pressed. Monte Carlo is for least squares alone.
void ChooseNorm(Control FormTrafoBerechnung::*option);

// Whether other norms than least squares can be chosen.
void OfferOtherNorms(bool offered);

// Puts the fields of R distance and R vector, the norms and the direction in order after their boxes.
void INI_Rdist();

// Takes what the window chooses: writes Selection and Job.ParamText. Throws PlatformError for an angle in
// degrees, minutes and seconds with a field that is no number; nothing is changed then.
void TakeSelection();

// Enables the walk through the alternatives where the frame's angles give any.
void Logic_BtnShowAlternativ();

void myButtonCalculate();      // one whole calculation with the present selection of parameters
double CalculationSigmaXYZ();  // of the last calculation, mm

void MCS_OCS();            // swaps the two point sets of a job that has been marked as switched
bool DirectionSwitched();  // the window has marked the job as switched

// The held values of the job, typed in units of the factors `lengthBefore` and `angleBefore`, in the present
// ones.
void HeldValues_UnitsChanged(double lengthBefore, double angleBefore);
void CalculationWindow_UnitsChanged();  // shows everything in the present units
// Fills the window from the job: parameters as the job has them, or six parameters for a fresh one.
void INI_Formtrafoberechnung();

// What the window chooses has changed.
void ChoiceChanged();

// Fills all result fields from the last calculation, the table and the clipboard, and keeps its quality for
// the next comparison.
void FormThings();

// Parameters that float, largest deviations, all quality and sigmas: from Job and Calculation.
enum class KnownOfResult : std::uint8_t { Parameters, Deviations, All };
void ShowResultFields(KnownOfResult known);

// Rebuilds the point table, for the kinds of row that the window's boxes name; without any it stays as it
// is. Chooses the default seed points where the job has none. The points are read when the table is first
// looked at: who changes them afterwards and leaves the table as it is looks at it before (LookAt).
void TabelleFüllenNeu();

// Takes the first selected column of a table for a graph. A cell that holds no number counts as 0.
void TakeGraphValues(GridState& grid);

// Toggles the use flag of a point, by its name in the table; axis "X", "Y" or "Z". A name that the table
// does not show changes nothing.
void Switch_MaxPoint(const std::string& pointName, const std::string& axis);

// Hands the point under the table's cursor to the main sheet and the pictures, where the cursor stands on
// its name and both are on.
void SetPointGraphicsActive();

// The point in the row of the table's cursor; 0 where the row shows none.
int CalculationWindow_Point();
void CalculationWindow_ShowPoint(int point);  // makes its first row the current one, where the table shows it

// Direction of the job, as label, colours and tool tips say it. `arrow` stands between the systems' names.
void ShowDirection(const char* arrow);

// Runs the handler of BtnCalculate where every change is followed by a calculation.
void RecalculateIfAutomatic();

// The job wants that, and no more changes are to come at once.
bool RecalculatesByItself();

// While it lives no change is followed by a calculation.
class NoRecalculation {
public:
    NoRecalculation() { ++CalculationWindow.ManyChanges; }
    ~NoRecalculation() { --CalculationWindow.ManyChanges; }
    NoRecalculation(const NoRecalculation&) = delete;
    NoRecalculation& operator=(const NoRecalculation&) = delete;
};

// Columns of the point table: their widths come from the settings when the window opens and go back there
// when it closes. A width in the settings that is none counts as 900 twips.
void PreparePointTable();
void SchreibeTabellenSpalteBreite_in_ini();

}  // namespace corvinade::engine
