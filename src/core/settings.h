// The settings file: one text file of "key=value" lines under section heads. Keys are found by name
// alone, in the whole file; the section counts when writing only.
#pragma once

#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "core/arrays.h"
#include "core/rooms.h"
#include "core/screen_record.h"
#include "core/window.h"

namespace corvinade::core {

struct SettingsRecord {
    // Global
    std::int16_t MaxIteration = 0;
    double BestFit_Etta = 0;  // largest correction at which the adjustment ends; 0 acts as 1e-9
    // Units; the names and digits of length and angle travel in the job
    std::int16_t ScaleDigits = 0;  // 0 or 1
    Flag PhiThetaAsQ = kFalse;     // phi and theta are shown as lengths of arc
    // Roots
    std::string LastMCSRoot, LastOCSRoot, MCS_FileName, OCS_FileName;
    std::string LastRobCadRoot, LastRocalRoot, LastDir, BatchMCSDir, BatchTCSDir;
    // RobCad
    std::string Place, ToolName;
    // Settings
    std::int16_t LastDropDownInfoInOCS = 0;
    std::int16_t ClipboardValue = 0;  // 1 to 5
    Flag InvertedBMW = kFalse, AdTCP = kFalse, TabelHeadMainSheet = kFalse;
    double SigmaX = 0, SigmaY = 0, SigmaZ = 0;  // mm
    std::int32_t MonteCarloRuns = 0;
    double GimbalLockBorder = 0;  // rad
    Flag CheckForGimbalLock = kFalse;
    std::int16_t BatchType = 0, BatchWriteType = 0;
    std::int16_t RawScale = 0;  // 1 raw scales are 1; 2 only with all seed coordinates in use
    // GraphicsSettings; the four ViewAll flags travel in the job
    Flag DevVecDirection = kFalse;
    Flag ShowPointsBigger = kFalse, ShowCoordinateSystemLabels = kFalse, ShowPointNames = kFalse;
    Flag ShowColorBar = kFalse;
    std::int32_t ScreenBackColor = 0;
    Flag ViewOnlyIfTrafo = kFalse, ViewOnlyIfNotTrafo = kFalse, DontViewOOT = kFalse;
    Flag VectorThick = kFalse, VectorQuat = kFalse, ShowRVec = kFalse;
    // LocalGraphics: what a new graphics window starts with
    ScreenRecord LocalGraphics;
    // FahnenProp: the defaults of a new flag. There are none before "ShowPointNumber" has been read.
    bool FlagDefined = false;
    FlagRecord FlagDefault;
    // Read only: the program that opens a point file
    std::string Editor;

    bool RefusalTold = false;  // the user knows that the settings file cannot be written
};
inline SettingsRecord Settings;

// --- The table of all keys --------------------------------------------------------------------------------

struct FlagPlace {
    Flag* Place;
};
using SettingPlace = std::variant<FlagPlace, std::int16_t*, std::int32_t*, double*, float*, std::string*>;

struct SettingEntry {
    const char* Section;
    const char* Key;
    SettingPlace Place;
};
// All keys with a global of their own, in the order in which a section is written.
std::span<const SettingEntry> AllSettings();

// The value of a setting as the file holds it. Require: the key is in the table.
std::string SettingText(std::string_view key);

// --- The file ---------------------------------------------------------------------------------------------

// Creates the settings file with its defaults, readable by its owner alone.
void IniDateiAnlegen();

// The text of a new settings file, for a run that has none.
std::string DefaultSettingsText();

// Reads the whole settings file into the globals. Throws PlatformError, with file, line and key, on a
// value that is no number where one must stand; the settings read before it are kept.
void IniLesen();

// The same from text; `path` is for messages alone.
void ReadSettingsText(std::string_view text, const std::string& path);

// The value of the first line with this key, in any section; "1000" if there is none.
std::string IniWertLesen(std::string_view key);

// The same; nothing where no line has the key.
std::optional<std::string> FindIniWert(std::string_view key);

struct IniLine {
    std::string Section, Key, Value;
};
// Writes one value, or a group of values in one go, the file then being replaced once; nothing of what other
// programs write meanwhile is lost. The file is readable by its owner alone. Without a settings file nothing
// happens. Throws PlatformError when the file cannot be read or replaced.
void IniWertSchreiben(const std::string& section, const std::string& key, const std::string& value);
void IniWerteSchreiben(const std::vector<IniLine>& lines);

// Writes the present values of settings of the table. Require: each key is in the table.
void SettingsSchreiben(std::initializer_list<std::string_view> keys);

// The text of a settings file after one value has been written to it.
std::string WithIniValue(std::string_view text, const IniLine& line);

// Splits a line at its first "="; a line without one has an empty key.
void IniZeileTeilen(std::string_view line, std::string& key, std::string& value);

// --- Window places ----------------------------------------------------------------------------------------

// Reads name + "Height", "Top", "Width", "Left"; a missing key counts as 1000, and so does one that is no
// number. Gives what is wrong with the first such, or nothing; LoadWindowPlace tells it.
std::string ReadWindowPlace(WindowPlace& place, const std::string& name);
void LoadWindowPlace(WindowPlace& place, const std::string& name);
void SaveWindowPlace(const WindowPlace& place, const std::string& name);

// The place is that of a new settings file, or of one that has no keys for the window: nobody has put the
// window there.
bool IsFirstPlace(const WindowPlace& place, std::string_view name);

// The width of a grid's column, twips, by the first of these keys that the file has; a missing key counts
// as 1000 here too, a value that is no width as `otherwise`.
inline constexpr int kMissingColWidth = 1000;
int LoadColWidth(std::initializer_list<std::string> keys, int otherwise);

}  // namespace corvinade::core
