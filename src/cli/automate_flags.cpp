// The flags of a graphics window in the automation.
#include "cli/automate_flags.h"

#include <cstddef>
#include <nlohmann/json.hpp>
#include <string_view>
#include <utility>

#include "cli/request.h"
#include "graphics/flags.h"

namespace corvinade::cli {

using nlohmann::json;

namespace {

constexpr std::string_view kFlagPart = "Fahne#";
constexpr const char* kDynamicPart = "DynamicFlag";

struct FlagShown {
    int Number = 0;  // 0: the dynamic one
    const FlagRecord& Record;
    const FlagLabel& Label;
};

FlagShown FindFlag(const ScreenWindow& window, const std::string& part) {
    if (part == kDynamicPart) return {0, window.DynamicRecord, window.DynamicFlag};
    const std::string digits = part.substr(kFlagPart.size());
    const bool number = !digits.empty() && digits.size() <= 5 && digits.front() != '0' &&
                        digits.find_first_not_of("0123456789") == std::string::npos;
    const std::size_t flag = number ? std::stoul(digits) : 0;
    if (flag == 0 || flag > static_cast<std::size_t>(FlagsOf(window.State)) ||
        flag >= window.FlagLabels.size())
        Refuse("there is no flag \"" + part + "\"; the window has " + std::to_string(FlagsOf(window.State)));
    return {static_cast<int>(flag), window.State.Flags[flag], window.FlagLabels[flag]};
}

}  // namespace

bool IsFlagPart(const std::string& part) {
    return part.starts_with(kFlagPart) || part == kDynamicPart;
}

json FlagToJson(const ScreenWindow& window, const std::string& part) {
    const FlagShown flag = FindFlag(window, part);
    const FlagLabel& label = flag.Label;
    json cells = json::array(), colours = json::array(), hidden = json::array();
    for (int row = 0; row < kFlagRows; ++row) {
        json backs = json::array();
        for (int column = 0; column < kFlagCols; ++column)
            backs.push_back(FlagCellGround(flag.Record, label, row, column));
        cells.push_back(label.Text[static_cast<std::size_t>(row)]);
        colours.push_back(std::move(backs));
    }
    for (int column = 0; column < kFlagCols; ++column)
        if (label.ColWidth[static_cast<std::size_t>(column)] == 0) hidden.push_back(column);
    return {{"kind", "grid"},
            {"rows", static_cast<int>(kFlagRows)},
            {"cols", static_cast<int>(kFlagCols)},
            {"cells", std::move(cells)},
            {"backColors", std::move(colours)},
            {"colWidths", label.ColWidth},
            {"rowHeights", label.RowHeight},
            {"hiddenCols", std::move(hidden)},
            {"text", FlagText(label)},
            {"row", label.Row},
            {"left", flag.Record.Left},
            {"top", flag.Record.Top},
            {"width", label.Width},
            {"height", label.Height},
            {"visible", label.Visible},
            {"enabled", true},
            {"foreColor", flag.Record.Forecolor},
            {"backColor", FlagGround(flag.Record, label)}};
}

json MouseOnFlag(const ScreenWindow& window, const std::string& part, const json& request) {
    const FlagShown flag = FindFlag(window, part);
    const FlagLabel& label = flag.Label;
    if (flag.Number == 0) Refuse("the dynamic flag goes away from the mouse");
    if (!label.Visible) Refuse("the flag is hidden");
    const auto row = static_cast<std::size_t>(WholeMember(request, "row", 0, kFlagRows - 1));
    const auto column = static_cast<std::size_t>(WholeMember(request, "col", 0, kFlagCols - 1));
    if (label.RowHeight[row] == 0) Refuse("row " + std::to_string(row) + " is hidden");
    if (label.ColWidth[column] == 0) Refuse("column " + std::to_string(column) + " is hidden");
    const auto columns = FlagColumnEdges(label);
    const auto rows = FlagRowEdges(label);
    const float x = static_cast<float>(flag.Record.Left) + (columns[column] + columns[column + 1]) / 2;
    const float y = static_cast<float>(flag.Record.Top) + (rows[row] + rows[row + 1]) / 2;
    if (FlagAt(window, x, y) != flag.Number) Refuse("another flag lies on this cell");
    json mouse = request;
    mouse["x"] = x;
    mouse["y"] = y;
    return mouse;
}

}  // namespace corvinade::cli
