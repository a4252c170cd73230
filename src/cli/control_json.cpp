// The state of windows and controls as the automation hands it out.
#include "cli/control_json.h"

#include <array>
#include <nlohmann/json.hpp>

using nlohmann::json;

namespace {

const char* KindName(ControlKind kind) {
    constexpr std::array kNames = {"button", "text", "check",   "option",     "list",  "label",
                                   "frame",  "menu", "toolbar", "toolbutton", "panel", "progress"};
    return kNames[static_cast<std::size_t>(kind)];
}

}  // namespace

json ControlToJson(const Control& control) {
    json state = {
        {"kind", KindName(control.Kind)}, {"text", control.Text},           {"value", control.Value},
        {"enabled", control.Enabled},     {"visible", control.Visible},     {"locked", control.Locked},
        {"foreColor", control.ForeColor}, {"backColor", control.BackColor}, {"toolTip", control.ToolTip}};
    if (control.Kind == ControlKind::Menu) state["checked"] = control.Checked;
    if (control.Kind == ControlKind::Combo) {
        state["items"] = control.Items;
        state["index"] = control.Index;
    }
    return state;
}

json WindowToJson(const WindowEntry& window) {
    json names = json::array();
    for (const ControlEntry& entry : window.Controls) names.push_back(entry.Name);
    const WindowPlace& place = window.State->Place;
    return {{"loaded", window.State->Loaded},
            {"caption", window.State->Caption},
            {"enabled", window.State->Enabled},
            {"place",
             {{"left", place.Left}, {"top", place.Top}, {"width", place.Width}, {"height", place.Height}}},
            {"controls", names}};
}
