// The kinds of widgets: what each shows of its control, and what it tells the logic.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/rooms.h"
#include "core/window.h"

class QAction;
class QMenu;
class QWidget;

namespace corvinade::ui {

// What the screen shows of a control.
struct ShownState {
    std::string Text, ToolTip;
    int Value = 0, Index = -1;
    bool Enabled = true, Visible = true, Locked = false, Checked = false;
    std::int32_t ForeColor = kSystemColour, BackColor = kSystemColour;
    std::vector<std::string> Items;
    bool operator==(const ShownState&) const = default;
};

struct WidgetRow;

// A control with what stands for it on the screen.
struct Bound {
    Control* State = nullptr;
    QWidget* Widget = nullptr;
    QAction* Action = nullptr;  // of menus and tool buttons, in place of a widget
    QMenu* PopUp = nullptr;     // opens where an entry that stands in no form becomes visible
    const WidgetRow* Row = nullptr;
    ShownState Last;
    bool Ever = false;  // it has been shown once
};

// What one kind of widget does for one kind of control. Unset = nothing, and no difference.
struct WidgetRow {
    ControlKind Kind;
    bool (*Fits)(const Bound&);
    void (*Show)(Bound&) = nullptr;  // beside what all widgets show
    // The toolkit shows what the user does at once, whatever the logic then makes of it.
    bool (*Differs)(const Bound&) = nullptr;
    void (*Connect)(const Bound&) = nullptr;
};

// The row of a control with its widget or action; null where that is of another kind.
const WidgetRow* RowOf(const Bound& bound);

ShownState StateOf(const Control& control);

// Where these stand apart from the control's state.
bool Differs(const Bound& bound);

// Brings widget or action up to date, whatever was shown before.
void ShowBound(Bound& bound);

// Ties its signals to the control, once.
void Connect(const Bound& bound);

}  // namespace corvinade::ui
