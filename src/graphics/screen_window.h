// The graphics windows: each has its state (one record, as undo steps and saved views keep it), what belongs
// to the window alone, and its surface. The tables of points and pixels are shared by all (scene.h).
#pragma once

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/rooms.h"
#include "core/screen_record.h"
#include "core/window.h"
#include "graphics/flag_label.h"
#include "graphics/surface.h"

namespace corvinade::graphics {

inline constexpr int kUndoSlots = 50;
inline constexpr int kScreenPanels = 4;

// A text on top of the picture; it is no part of it.
struct ScreenLabel {
    std::string Text;
    float X = 0, Y = 0;  // its top left corner
    Colour ForeColor = 0;
    bool Visible = true;
};

enum class ScreenPointer : std::uint8_t { Arrow, Busy, SetsFlag, SetsLine, DeletesLine };

enum MouseButton : int { kLeftButton = 1, kRightButton = 2, kMiddleButton = 4 };

// What mouse and keys are doing on one window.
struct ScreenMouse {
    float X = 0, Y = 0;  // last position
    int DownButton = 0;  // of the last press
    float DownX = 0, DownY = 0;
    int ActualRow = 0;        // row under the mouse, 0 = none
    bool FrameArmed = false;  // a rubber band frame is being drawn
    bool FrameVisible = false;
    int FrameLeft = 0, FrameTop = 0, FrameWidth = 0, FrameHeight = 0;
    Colour FrameColor = 0;
    bool ZoomedByFrame = false;  // the click that ends a frame zoom is no click
    bool ViewMoved = false;      // by the present press: its end is no end of a frame
    bool KeyT = false, KeyB = false;
    bool PlanesMoved = false;  // by the present press
    bool OnFlag = false;       // the present press went to a flag
    int DraggedFlag = 0;       // 0 = none
    bool FlagMoved = false;
    int FlagLeft = 0, FlagTop = 0;  // where it stood when it was pressed
};

// What a picture shows beside what belongs to its view.
struct PictureLook {
    bool StartPoints = true, Targets = false;           // of the pairs
    bool StartPointsAlone = true, TargetsAlone = true;  // points without a partner
    bool PointNames = false, ColorBar = false, AxisLabels = false, NearPointsBigger = false;
    bool Axes = true;
    bool operator==(const PictureLook&) const = default;
};

// Two points whose distance is told.
struct ScreenMeasure {
    bool On = false;
    int From = 0, To = 0;             // rows of the scene, 0 = none yet
    std::uint64_t JobGeneration = 0;  // of the points that they are of
};

struct ScreenWindow {
    std::uint64_t Id = 0;  // never given twice in a run: a new window may stand where an old one stood
    int Number = 1;        // 1 is "Screen - DEFAULT"
    std::string Caption;
    ScreenRecord State;
    std::array<float, 6> ViewBox{};                     // xmin, xmax, ymin, ymax, zmin, zmax of ViewPoints
    std::array<ScreenRecord, kUndoSlots + 1> UndoRing;  // from 1
    int UndoIndex = 0, UndoCount = 0, UndoOffset = 0;
    bool SetLine = false, DeleteLine = false;
    bool LineSearchTold = false;  // since DeleteLine was turned on: the user knows that no line is there
    bool AnalyseMode = false, AnalysePaused = false;
    bool AnalyseLoop = false;  // AnalyseModeAction runs for this window
    bool SetMinMaxOnChange = false;
    Colour BackColor = 0;  // of ScreenPixel
    ScreenPointer Pointer = ScreenPointer::Arrow;
    ScreenMouse Mouse;
    ScreenMeasure Measure;
    bool BindingsShown = false;       // the text about mouse and keys lies over the picture
    std::vector<ScreenLabel> Labels;  // all but the two below; made anew by each paint
    ScreenLabel LabelScale, LabelVectorScale;
    TextFont LabelFont;                 // of all labels
    std::vector<FlagLabel> FlagLabels;  // one a flag of State, from 1
    FlagTextKey FlagsShow;              // what their texts were written from
    FlagLabel DynamicFlag;              // follows the mouse; Row 0 = none
    FlagRecord DynamicRecord;
    std::vector<bool> FlagCells;                       // the cells of the picture that are taken, row by row
    std::array<std::string, kScreenPanels + 1> Panel;  // the status bar, from 1
    std::string Deviation;                             // of the point that the panels name
    bool StatusBarVisible = true;                      // hidden while the picture goes to the clipboard
    Surface Screen;
    void (*Fill)(Surface&) = nullptr;    // fills the table of functions of a new surface
    std::optional<PictureLook> OwnLook;  // of a picture without a window; nothing: the user's settings
    std::uint64_t PaintCount = 0;        // paints so far, for tests and for the face
};

// --- The open windows -------------------------------------------------------------------------------------
// In the order in which they were opened. The active one is on top.

struct ScreensRecord {
    std::vector<std::unique_ptr<ScreenWindow>> Open;
    ScreenWindow* Active = nullptr;          // null where none is open
    int NewWidth = 800, NewHeight = 600;     // inner size of a new window
    bool RotateKey = false, PanKey = false;  // Shift and Ctrl are down
    bool Wheel = false;                      // the next zoom step goes about the mouse
    std::uint64_t Count = 0;                 // opened so far
    bool BindingsTold = false;               // in this run or an earlier one
    bool DefaultsTaken = false;              // Settings.LocalGraphics holds the state of a window
};
ScreensRecord& Screens();  // lives for the program run; FreshStart makes it new

// Fills the table of functions of a new window, sized already; set once by the face (or test) that draws.
// Unset: the window has a picture-less surface and all tables are computed just the same.
inline void (*FillSurface)(Surface&) = nullptr;

ScreenWindow& OpenScreenWindow();  // with its start values, active, painted
// The same for a picture that is asked for by a program, in its own size and look. It leaves nothing in the
// settings when it closes.
struct PictureSetup {
    int Width = 0, Height = 0;  // inner size
    Colour BackColor = 0;
    PictureLook Look;
    void (*Fill)(Surface&) = nullptr;
};
ScreenWindow& OpenScreenWindow(const PictureSetup& setup);
PictureLook LookOf(const ScreenWindow& window);
void CloseScreenWindow(ScreenWindow& window);  // the reference is dead afterwards
void ActivateScreenWindow(ScreenWindow& window);
void ResizeScreenWindow(ScreenWindow& window, int width, int height);  // inner size; repaints
// For loops that yield and messages: is the window with this Id still open?
bool ScreenIsOpen(std::uint64_t id);
ScreenWindow* findLFDFORM();  // the active window, null where none is open

}  // namespace corvinade::graphics
