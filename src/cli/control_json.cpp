// The state of windows and controls as the automation hands it out.
#include "cli/control_json.h"

#include <array>
#include <nlohmann/json.hpp>
#include <string>

#include "engine/field_words.h"

namespace corvinade::cli {

using nlohmann::json;

namespace {

const char* KindName(ControlKind kind) {
    constexpr std::array kNames = {"button", "text",     "check",  "option",  "list",
                                   "label",  "frame",    "menu",   "toolbar", "toolbutton",
                                   "panel",  "progress", "scroll", "grid",    "plot"};
    return kNames[static_cast<std::size_t>(kind)];
}

void AddGrid(GridState& grid, json& state) {
    LookAt(grid);
    json cells = json::array(), colours = json::array(), hidden = json::array();
    for (int row = 0; row < grid.Rows; ++row) {
        json texts = json::array(), backs = json::array();
        for (int col = 0; col < grid.Cols; ++col) {
            texts.push_back(CellText(grid, row, col));
            backs.push_back(CellBackColor(grid, row, col));
        }
        cells.push_back(std::move(texts));
        colours.push_back(std::move(backs));
    }
    for (int col = 0; col < grid.Cols; ++col)
        if (IsHiddenCol(grid, col)) hidden.push_back(col);
    const GridRect selected = Selected(grid);
    state["rows"] = grid.Rows;
    state["cols"] = grid.Cols;
    state["cells"] = std::move(cells);
    state["backColors"] = std::move(colours);
    state["colWidths"] = grid.ColWidths;
    state["hiddenCols"] = std::move(hidden);
    state["current"] = {{"row", grid.Row}, {"col", grid.Col}};
    state["selection"] = {
        {"row", selected.Row}, {"col", selected.Col}, {"row2", selected.Row2}, {"col2", selected.Col2}};
}

}  // namespace

json ControlToJson(Control& control) {
    json state = {
        {"kind", KindName(control.Kind)}, {"text", control.Text},           {"value", control.Value},
        {"enabled", control.Enabled},     {"visible", control.Visible},     {"locked", control.Locked},
        {"foreColor", control.ForeColor}, {"backColor", control.BackColor}, {"toolTip", control.ToolTip}};
    if (const std::string words = WhatIs(control); !words.empty()) state["whatIs"] = words;
    if (control.Kind == ControlKind::Menu) state["checked"] = control.Checked;
    if (control.Kind == ControlKind::Combo) {
        state["items"] = control.Items;
        state["index"] = control.Index;
    }
    if (control.Kind == ControlKind::Scroll) {
        state["min"] = control.Min;
        state["max"] = control.Max;
    }
    if (control.Kind == ControlKind::Grid) AddGrid(control.Grid, state);
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

}  // namespace corvinade::cli
