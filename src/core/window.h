// Windows as state. A window is a struct of controls, a control is a piece of state with handlers; the
// record is the truth and the screen a copy of it. What a control is stands in one row, from which a fresh
// window is filled. Every window stands in one table (windows.cpp), by which the desktop, the automation and
// the tests find it.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/grid.h"
#include "core/rooms.h"

namespace corvinade::core {

enum class ControlKind : std::uint8_t {
    Button,
    Text,
    Check,
    Option,
    Combo,
    Label,
    Frame,
    Menu,
    Toolbar,
    ToolButton,
    Panel,
    Progress,
    Scroll,
    Grid,
    Plot
};

inline constexpr std::int32_t kSystemColour = -1;  // the desktop's own colour for this place

// The sixteen fixed colours by number, RGB with red in the low byte.
std::int32_t QbColor(int number);

struct ControlEntry;

struct Control {
    ControlKind Kind = ControlKind::Label;
    std::string Text;  // caption, or the text of a text box, or the selected entry of a list
    int Group = 0;     // options: those of one group exclude each other
    int Value = 0;     // check box 0, 1, 2; option, tool button 0, 1; progress 0 to 100; menu: 1 = popped up;
                       // scroll bar Min to Max
    int Min = 0, Max = 0;
    bool Enabled = true;
    bool Visible = true;
    bool Locked = false;   // a text that can be read and copied but not typed into
    bool Checked = false;  // menu entries
    std::int32_t ForeColor = kSystemColour, BackColor = kSystemColour;
    std::string ToolTip;
    std::vector<std::string> Items;       // entries of a list
    int Index = -1;                       // selected entry
    bool SelectsOnFocus = false;          // a text that is selected whole when it gets the focus
    GridState Grid;                       // the cells of a grid
    const ControlEntry* Entry = nullptr;  // name and handlers, once the window is loaded
};

Control Button(std::string caption);
Control TextBox(std::string text = "");
Control CheckBox(std::string caption, int value = 0);
Control Option(std::string caption, int group);
Control ComboBox(std::vector<std::string> items = {});
Control Label(std::string caption);
Control Frame(std::string caption);
Control Menu(std::string caption);
Control Toolbar();
Control ToolButton(std::string toolTip);
Control Panel();
Control ProgressBar();
Control ScrollBar(int min, int max);
Control Grid(int fixedRows, int fixedCols);
Control Plot();  // that its window paints itself

// What else a control may be when its window opens.
Control Disabled(Control control);
Control Hidden(Control control);
Control Locked(Control control);
Control WithTip(Control control, const char* toolTip);

// What the user does to a control, and the procedure that answers. Unset = nothing happens.
struct Handlers {
    void (*Click)() = nullptr;  // button, menu, tool button; check, option, list, scroll bar after the change
    void (*Change)() = nullptr;  // text after the change
    void (*DblClick)() = nullptr;
    void (*SelChange)() = nullptr;   // grid: after the current cell or the selection has changed
    void (*RightClick)() = nullptr;  // grid
    void (*Key)() = nullptr;         // grid: its Grid.Key tells which
};

// All that there is to say of a control of a window, in one row of the window's table.
struct ControlEntry {
    const char* Name;  // "BtnOK"; buttons of a tool bar and panels with their bar: "Toolbar2.FileNew"
    Control* Place;    // the member of that name: BtnOK, Toolbar2_FileNew
    std::optional<Control> Made;  // what a fresh window has there; nothing: the control is made elsewhere
    Handlers On;
    const char* Parent;  // the menu that an entry stands in: out of reach while that is disabled

    ControlEntry(const char* name, Control* place, const Control& made, const Handlers& on = {},
                 const char* parent = nullptr)
        : Name(name), Place(place), Made(made), On(on), Parent(parent) {}
    ControlEntry(const char* name, Control* place, const Handlers& on = {}, const char* parent = nullptr)
        : Name(name), Place(place), On(on), Parent(parent) {}
};

struct WindowPlace {
    std::int32_t Left = 0, Top = 0, Width = 0, Height = 0;  // twips, 15 to the pixel
};

struct WindowState {
    bool Loaded = false;
    bool Enabled = true;
    std::string Caption;
    WindowPlace Place;
    int Asked =
        0;  // how often ShowWindow has been asked for it since it opened; a screen brings it to the front
};

// Where a window stands on a screen.
enum class WindowStand : std::uint8_t {
    Child,    // inside the frame
    Frame,    // it is the frame
    Dialog,   // above the frame, which is out of reach meanwhile
    Beside,   // above the frame, at work beside the pictures that it changes
    LongWork  // above the frame, which stays in reach, for its STOP ends the work too
};

struct WindowEntry {
    const char* Name;
    WindowState* State;
    std::span<const ControlEntry> Controls;
    void (*Fresh)();             // puts a fresh struct in the window's place (see MakeFresh)
    void (*Load)() = nullptr;    // fills the controls, runs once the struct is in place
    void (*Unload)() = nullptr;  // runs before the window goes
    void (*Escape)() = nullptr;  // the key Esc; unset = nothing
    WindowStand Stand = WindowStand::Child;
    bool StoresPlace = true;  // its place is kept in the settings file under its name
};

// The one table of all windows; defined above all rooms.
std::span<const WindowEntry* const> AllWindows();

// --- Windows ----------------------------------------------------------------------------------------------

const WindowEntry* FindWindow(std::string_view name);                    // null when there is none
Control* FindControl(const WindowEntry& window, std::string_view name);  // null when there is none
bool IsLoaded(std::string_view window);

// Makes a window as it is before it opens: a fresh struct, its controls as their rows say.
void MakeFresh(const WindowEntry& window);

// Opens a window: a fresh struct, its stored place, its load procedure. A window that is open already
// stays as it is, and comes to the front where there is a screen. Throws PlatformError when there is no
// window of that name, and what its load procedure throws; the window is then not open.
void ShowWindow(std::string_view name);

// Closes a window: its unload procedure, its place stored, its struct fresh again.
void UnloadWindow(std::string_view name);

// --- Values set from code ---------------------------------------------------------------------------------
// A value that differs from the present one runs the control's handler, exactly as the user's own action
// does; the value that stands already runs nothing. Selecting an option clears the others of its group,
// whose handlers do not run.

void SetValue(Control& control, int value);  // of a scroll bar: at most to its ends
void SetText(Control& control, const std::string& text);
void SetIndex(Control& control, int index);  // -1 = no entry; Require: the entry exists

// --- What the user does -----------------------------------------------------------------------------------

// Runs a user's event or a command. An error of the platform ends it: the error is shown in one message
// box and kept in Run.LastPlatformError, the program goes on. False in that case.
bool Dispatch(const std::function<void()>& work);

// Each is one dispatched event. False when an error of the platform ended it.
bool UserClick(Control& control);
bool UserDblClick(Control& control);
bool UserSetValue(Control& control, int value);
bool UserSetText(Control& control, const std::string& text);
bool UserSetIndex(Control& control, int index);

// On grids. Require: the cells exist. A click moves the current cell to its place (in a heading, to the
// first cell below or beside it), with `extend` it moves the other corner of the selection alone; then
// the handlers of the selection and of the click run. A second click behind it makes a double click.
bool UserClickCell(Control& grid, int row, int col, bool extend);
bool UserDblClickCell(Control& grid, int row, int col);
bool UserRightClickCell(Control& grid, int row, int col);
bool UserSelectCells(Control& grid, const GridRect& rect);
bool UserKey(Control& grid, const std::string& key);
bool UserEscape(const WindowEntry& window);
bool UserClose(const WindowEntry& window);

// Shows the busy pointer for as long as the object lives.
class BusyPointer {
public:
    BusyPointer();
    ~BusyPointer();
    BusyPointer(const BusyPointer&) = delete;
    BusyPointer& operator=(const BusyPointer&) = delete;
};

}  // namespace corvinade::core
