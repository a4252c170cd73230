// Finding, opening and closing windows, and the one rule of when a handler runs.
#include "core/window.h"

#include <algorithm>
#include <array>
#include <new>
#include <stdexcept>

#include "core/changes.h"
#include "core/form_notes.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/settings.h"
#include "fit/require.h"

namespace corvinade::core {

namespace {

Control Make(ControlKind kind, std::string text) {
    Control control;
    control.Kind = kind;
    control.Text = std::move(text);
    return control;
}

void Run_(void (*handler)()) {
    if (handler != nullptr) RunHandler(handler);
}

void RunClick(const Control& control) {
    if (control.Entry != nullptr) Run_(control.Entry->On.Click);
}

const WindowEntry* WindowOf(const Control& control) {
    for (const WindowEntry* window : AllWindows())
        for (const ControlEntry& entry : window->Controls)
            if (entry.Place == &control) return window;
    return nullptr;
}

void Attach(const WindowEntry& window) {
    for (const ControlEntry& entry : window.Controls) entry.Place->Entry = &entry;
}

}  // namespace

std::int32_t QbColor(int number) {
    constexpr std::array<std::int32_t, 16> kRedGreenBlue = {
        0x000000, 0x000080, 0x008000, 0x008080, 0x800000, 0x800080, 0x808000, 0xC0C0C0,
        0x808080, 0x0000FF, 0x00FF00, 0x00FFFF, 0xFF0000, 0xFF00FF, 0xFFFF00, 0xFFFFFF};
    Require(number >= 0 && number < 16);
    const std::int32_t rgb = kRedGreenBlue[static_cast<std::size_t>(number)];
    return ((rgb & 0xFF) << 16) | (rgb & 0xFF00) | (rgb >> 16);
}

Control Button(std::string caption) {
    return Make(ControlKind::Button, std::move(caption));
}
Control TextBox(std::string text) {
    return Make(ControlKind::Text, std::move(text));
}
Control CheckBox(std::string caption, int value) {
    Control control = Make(ControlKind::Check, std::move(caption));
    control.Value = value;
    return control;
}
Control Option(std::string caption, int group) {
    Control control = Make(ControlKind::Option, std::move(caption));
    control.Group = group;
    return control;
}
Control ComboBox(std::vector<std::string> items) {
    Control control = Make(ControlKind::Combo, "");
    control.Items = std::move(items);
    return control;
}
Control Label(std::string caption) {
    return Make(ControlKind::Label, std::move(caption));
}
Control Frame(std::string caption) {
    return Make(ControlKind::Frame, std::move(caption));
}
Control Menu(std::string caption) {
    return Make(ControlKind::Menu, std::move(caption));
}
Control Toolbar() {
    return Make(ControlKind::Toolbar, "");
}
Control ToolButton(std::string toolTip) {
    Control control = Make(ControlKind::ToolButton, "");
    control.ToolTip = std::move(toolTip);
    return control;
}
Control Panel() {
    return Make(ControlKind::Panel, "");
}
Control ProgressBar() {
    return Make(ControlKind::Progress, "");
}
Control ScrollBar(int min, int max) {
    Control control = Make(ControlKind::Scroll, "");
    control.Min = control.Value = min;
    control.Max = max;
    return control;
}
Control Grid(int fixedRows, int fixedCols) {
    Control control = Make(ControlKind::Grid, "");
    control.Grid.FixedRows = fixedRows;
    control.Grid.FixedCols = fixedCols;
    return control;
}

Control Plot() {
    return Make(ControlKind::Plot, "");
}

Control Disabled(Control control) {
    control.Enabled = false;
    return control;
}
Control Hidden(Control control) {
    control.Visible = false;
    return control;
}
Control Locked(Control control) {
    control.Locked = true;
    return control;
}
Control WithTip(Control control, const char* toolTip) {
    control.ToolTip = toolTip;
    return control;
}

const WindowEntry* FindWindow(std::string_view name) {
    for (const WindowEntry* window : AllWindows())
        if (name == window->Name) return window;
    return nullptr;
}

Control* FindControl(const WindowEntry& window, std::string_view name) {
    for (const ControlEntry& entry : window.Controls)
        if (name == entry.Name) return entry.Place;
    return nullptr;
}

void MakeFresh(const WindowEntry& window) {
    window.Fresh();
    for (const ControlEntry& entry : window.Controls)
        if (entry.Made) *entry.Place = *entry.Made;
}

bool IsLoaded(std::string_view name) {
    const WindowEntry* window = FindWindow(name);
    return window != nullptr && window->State->Loaded;
}

void ShowWindow(std::string_view name) {
    const WindowEntry* window = FindWindow(name);
    if (window == nullptr)
        throw PlatformError{"There is no window \"" + std::string(name) + "\" in this version"};
    if (window->State->Loaded) {
        ++window->State->Asked;
        return;
    }
    MakeFresh(*window);
    Attach(*window);
    window->State->Loaded = true;
    try {
        if (window->StoresPlace) LoadWindowPlace(window->State->Place, window->Name);
        Run_(window->Load);
    } catch (...) {
        MakeFresh(*window);  // a window that could not be filled is not open
        throw;
    }
}

void UnloadWindow(std::string_view name) {
    const WindowEntry* window = FindWindow(name);
    if (window == nullptr || !window->State->Loaded) return;
    Run_(window->Unload);
    const WindowPlace place = window->State->Place;
    MakeFresh(*window);
    if (window->StoresPlace) SaveWindowPlace(place, window->Name);
}

void SetValue(Control& control, int value) {
    if (control.Kind == ControlKind::Scroll) value = std::clamp(value, control.Min, control.Max);
    if (control.Value == value) return;
    control.Value = value;
    if (control.Kind == ControlKind::Option && value != 0) {
        const WindowEntry* window = WindowOf(control);
        if (window != nullptr)
            for (const ControlEntry& entry : window->Controls) {
                Control& other = *entry.Place;
                const bool excluded = other.Kind == ControlKind::Option && other.Group == control.Group;
                if (excluded && &other != &control) other.Value = 0;
            }
    }
    RunClick(control);
}

void SetText(Control& control, const std::string& text) {
    if (control.Text == text) return;
    control.Text = text;
    if (control.Entry != nullptr) Run_(control.Entry->On.Change);
}

void SetIndex(Control& control, int index) {
    Require(index >= -1 && index < static_cast<int>(control.Items.size()));
    if (control.Index == index) return;
    control.Index = index;
    control.Text = index < 0 ? "" : control.Items[static_cast<std::size_t>(index)];
    RunClick(control);
}

namespace {

// False with the reason in Run.LastPlatformError.
bool WentThrough(const std::function<void()>& work) {
    try {
        work();
        return true;
    } catch (const PlatformError& error) {
        Run.LastPlatformError = error.What;
    } catch (const std::length_error&) {
        Run.LastPlatformError = "There is not enough memory for this.";
    } catch (const std::bad_alloc&) {
        Run.LastPlatformError = "There is not enough memory for this.";
    }
    return false;
}

}  // namespace

bool Dispatch(const std::function<void()>& work) {
    const bool done = WentThrough([&work] { RunEvent(work); });
    ShowNotes();
    if (done || Run.LastPlatformError.empty()) return true;  // without words: the user has ended it himself
    ShowMessage(Run.LastPlatformError);
    return false;
}

bool UserClick(Control& control) {
    return Dispatch([&control] { RunClick(control); });
}

bool UserDblClick(Control& control) {
    return Dispatch([&control] {
        if (control.Entry != nullptr) Run_(control.Entry->On.DblClick);
    });
}

bool UserSetValue(Control& control, int value) {
    return Dispatch([&control, value] { SetValue(control, value); });
}

bool UserSetText(Control& control, const std::string& text) {
    return Dispatch([&control, &text] { SetText(control, text); });
}

bool UserSetIndex(Control& control, int index) {
    return Dispatch([&control, index] { SetIndex(control, index); });
}

namespace {

const Handlers& On(const Control& control) {
    static const Handlers kNone;
    return control.Entry != nullptr ? control.Entry->On : kNone;
}

void RequireCell(Control& control, int row, int col) {
    LookAt(control.Grid);
    Require(row >= 0 && row < control.Grid.Rows && col >= 0 && col < control.Grid.Cols);
}

// Where the current cell goes for a place that may be a heading.
void MoveTo(GridState& grid, int row, int col, bool extend) {
    grid.RowSel = row;
    grid.ColSel = col;
    if (!extend) {
        grid.Row = row;
        grid.Col = col;
    }
    KeepSelectionInside(grid);
}

void ClickCell(Control& control, int row, int col, bool extend) {
    GridState& grid = control.Grid;
    grid.MouseRow = row;
    grid.MouseCol = col;
    grid.MouseShift = extend && row < grid.FixedRows;  // a heading is no end of a selection
    MoveTo(grid, row, col, extend && !grid.MouseShift);
    Run_(On(control).SelChange);
    Run_(On(control).Click);
}

}  // namespace

bool UserClickCell(Control& control, int row, int col, bool extend) {
    return Dispatch([&control, row, col, extend] {
        RequireCell(control, row, col);
        ClickCell(control, row, col, extend);
    });
}

bool UserDblClickCell(Control& control, int row, int col) {
    return Dispatch([&control, row, col] {
        RequireCell(control, row, col);
        ClickCell(control, row, col, false);
        Run_(On(control).DblClick);
    });
}

bool UserRightClickCell(Control& control, int row, int col) {
    return Dispatch([&control, row, col] {
        RequireCell(control, row, col);
        control.Grid.MouseRow = row;
        control.Grid.MouseCol = col;
        Run_(On(control).RightClick);
    });
}

bool UserSelectCells(Control& control, const GridRect& rect) {
    return Dispatch([&control, rect] {
        RequireCell(control, rect.Row, rect.Col);
        RequireCell(control, rect.Row2, rect.Col2);
        MoveTo(control.Grid, rect.Row, rect.Col, false);
        MoveTo(control.Grid, rect.Row2, rect.Col2, true);
        Run_(On(control).SelChange);
    });
}

bool UserKey(Control& control, const std::string& key) {
    return Dispatch([&control, &key] {
        LookAt(control.Grid);
        control.Grid.Key = key;
        if (key == "Ctrl+Shift+C") {  // of every table
            if (const std::string text = TextWithHeadings(control.Grid); !text.empty()) ToClipboard(text);
            return;
        }
        Run_(On(control).Key);
    });
}

bool UserEscape(const WindowEntry& window) {
    return Dispatch([&window] { Run_(window.Escape); });
}

bool UserClose(const WindowEntry& window) {
    return Dispatch([&window] { UnloadWindow(window.Name); });
}

BusyPointer::BusyPointer() {
    ++Run.WaitPointers;
}
BusyPointer::~BusyPointer() {
    --Run.WaitPointers;
}

}  // namespace corvinade::core
