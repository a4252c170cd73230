// After a change many rooms have to be told. These few procedures may be called from any room; each is
// defined by the room that its comment names, and nothing else calls upwards.
#pragma once

#include <cstdint>
#include <string>

#include "core/arrays.h"

struct TargetFile;

// --- core/: the job commands and the job file -------------------------------------------------------------
void JobChanged();  // asks whether a changed job shall be saved
// Opens a job file: closes all windows, sets the run to "no data", asks and tells what there is to say of the
// file's version, and fills the job. A file that is missing gives a message; throws PlatformError for one
// that is no job (as ReadJobBytes in core/job_file.h), the job is then without data.
void OpenFile(const std::string& path);
void OpenLastProjekt(const std::string& caption);  // opens the job of a recent-file menu entry
void MenuFileNew_Command();
void MenuFileOpen_Command();
void MenuFileSave_Command();
void MenuFileSaveAs_Command();

// --- import/ ----------------------------------------------------------------------------------------------
void ClipboardRoundTrip();  // the menu entry "&Spezial"
// Makes the transformed points those of the start, and sizes RVec* and UseFlags (whose content stays) by the
// pairs. A job that the calculation window has marked as switched is switched again. An import that is
// cancelled meanwhile leaves all of them as they were.
void IdentischePkte_Neu();

// --- engine/ ----------------------------------------------------------------------------------------------
void myButtonCalculate();  // one whole calculation with the present selection of parameters
void MCS_OCS();            // swaps the two point sets of a job that has been marked as switched
bool DirectionSwitched();  // the calculation window has marked the job as switched
void CalculationWindow_UnitsChanged();
// Fills the calculation window from the job: parameters as the job has them, or six parameters for a fresh
// one.
void INI_Formtrafoberechnung();
// The held values of the job, typed in units of the factors `lengthBefore` and `angleBefore`, in the present
// ones.
void HeldValues_UnitsChanged(double lengthBefore, double angleBefore);
double CalculationSigmaXYZ();  // of the last calculation, mm

// --- paraboloid/ and bundle/ ------------------------------------------------------------------------------
void EinlesenParaboloidData(const TargetFile& file);  // reads the shape file of an import
void ParaboloidNearestTargets();  // each start point's nearest point of the shape becomes its target
void CalculateParaboloid();  // the passes of a calculation of a job with a shape, and its Monte Carlo runs
void ReadBundleFile(const std::string& path);  // the reader behind the bundle file of the input dialog
bool BundleInMemory();                         // a network has been read

// --- analysis/ --------------------------------------------------------------------------------------------
// Refills the main sheet where it is open, from a job with valid data. Yields at each row.
void FuellenHaupttabelle();
void MainSheet_Copy();                // copies its selected cells
void MainSheet_ShowPoint(int point);  // makes the row of an identical point the current one, centred
void FORMfüllen();                    // refills the input statistic
// Measures the distances anew where their windows are open and the points are no longer those.
void DistanceScale_Refill();

// --- graphics/ --------------------------------------------------------------------------------------------
struct GraphicsModes {
    bool VectorMode = false, FlagMode = false, LineMode = false, SetLine = false, DeleteLine = false;
};
void CountChildForms(std::int16_t& count);  // counts the open graphics windows
GraphicsModes TopGraphicsModes();           // of the top graphics window; only asked when there is one
// Puts the top window's mouse pointer in order after its modes; without line mode its SetLine and
// DeleteLine are cleared.
void ApplyTopGraphicsModes();
void CloseAllGraphicsWindows();
void UpdateAllGraphicsWindows();
void Grafik_Festlegen_Main();        // recomputes what the first graphics window shows
void DrawResultInGraphicsWindows();  // recomputes and redraws all of them with their flags
void Alle_Fahnen_neu_zeichnen();     // redraws the flags of all of them
void SetActivePoint(int point);      // the active point of the pictures, by identical point
bool GraphicsDefaultsTaken();        // a graphics window has set the grid spacing, so its defaults are stored
