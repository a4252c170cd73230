// Steps of undo and redo that are of a graphics window.
#include "graphics/picture_steps.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <variant>
#include <vector>

#include "core/records.h"
#include "engine/undo.h"
#include "graphics/drawing.h"
#include "graphics/flags.h"
#include "graphics/projection.h"
#include "graphics/scene.h"
#include "graphics/view_undo.h"

namespace corvinade::graphics {

namespace {

struct FlagOfPoint {
    std::int32_t Place = 0;  // in the table of flags
    std::int16_t Flag = 0;
    bool operator==(const FlagOfPoint&) const = default;
};

// The flags of a view without the empty places of its table.
struct FlagSet {
    std::vector<FlagRecord> Records;
    std::vector<FlagOfPoint> OfPoints;
    std::int16_t Count = 0, GridLength = 0;
};

bool Same(const std::vector<FlagRecord>& a, const std::vector<FlagRecord>& b) {
    const auto sameField = [](const FlagRecord& x, const FlagRecord& y) {
        return std::ranges::all_of(FlagFields(), [&](const FlagField& field) {
            return std::visit([&](auto place) { return x.*place == y.*place; }, field.Place);
        });
    };
    return std::ranges::equal(a, b, sameField);
}

bool Same(const FlagSet& a, const FlagSet& b) {
    return a.Count == b.Count && a.GridLength == b.GridLength && a.OfPoints == b.OfPoints &&
           Same(a.Records, b.Records);
}

FlagSet FlagsOfState(const ScreenRecord& state) {
    FlagSet flags{state.Flags, {}, state.FlagCount, state.GridLength};
    if (state.FlagCount == 0) return flags;
    for (std::size_t i = 0; i < state.FlagIndex.size(); ++i)
        if (state.FlagIndex[i] != 0)
            flags.OfPoints.push_back({static_cast<std::int32_t>(i), state.FlagIndex[i]});
    return flags;
}

ScreenWindow* WindowOf(std::uint64_t id) {
    const auto& open = Screens().Open;
    const auto found = std::find_if(open.begin(), open.end(), [id](const auto& w) { return w->Id == id; });
    return found == open.end() ? nullptr : found->get();
}

void PutFlags(ScreenWindow& window, const FlagSet& flags) {
    ScreenRecord& state = window.State;
    state.Flags = flags.Records;
    state.FlagsShape.clear();
    state.FlagIndex.assign(static_cast<std::size_t>(Scene.Rows), 0);
    state.FlagIndexShape.clear();
    for (const FlagOfPoint& flag : flags.OfPoints)
        if (static_cast<std::size_t>(flag.Place) < state.FlagIndex.size())
            state.FlagIndex[static_cast<std::size_t>(flag.Place)] = flag.Flag;
    state.FlagCount = flags.Count;
    state.GridLength = flags.GridLength;
    state.ActiveFlag = 0;
    window.Mouse.DraggedFlag = 0;
    FahnenReset(window);
    ShowFlagCommands();
    Stelle_Grafik_dar(window);
    StoreScreenPropertiesToRecord(window);
}

std::size_t BytesOf(const FlagSet& flags) {
    return flags.Records.size() * sizeof(FlagRecord) + flags.OfPoints.size() * sizeof(FlagOfPoint);
}

struct SizedView {
    ScreenRecord View;
    int Width = 0, Height = 0;
};

std::size_t BytesOf(const SizedView& sized) {
    return sizeof sized + sized.View.FlagIndex.size() * sizeof(std::int16_t) +
           sized.View.Flags.size() * sizeof(FlagRecord);
}

void PutView(ScreenWindow& window, const SizedView& sized) {
    const std::uint64_t id = window.Id;
    if (PictureWidth(window) != sized.Width || PictureHeight(window) != sized.Height)
        ResizeScreenWindow(window, sized.Width, sized.Height);
    if (!ScreenIsOpen(id)) return;
    GetScreenPropertiesFromRecord(window, sized.View);
    StoreScreenPropertiesToRecord(window);
}

}  // namespace

void KeepFlagStep(const ScreenWindow& window, const ScreenRecord& before) {
    if (window.OwnLook || Undo.Paused > 0) return;
    if (before.FlagCount == 0 && window.State.FlagCount == 0 && Same(before.Flags, window.State.Flags))
        return;
    auto sides =
        std::make_shared<std::pair<FlagSet, FlagSet>>(FlagsOfState(before), FlagsOfState(window.State));
    if (Same(sides->first, sides->second)) return;
    const std::size_t bytes = BytesOf(sides->first) + BytesOf(sides->second);
    const auto put = [sides, id = window.Id](bool back) {
        if (ScreenWindow* const shown = WindowOf(id)) PutFlags(*shown, back ? sides->first : sides->second);
    };
    KeepUndoStep({.Name = "Flags", .Put = put, .Bytes = bytes, .Window = window.Id});
}

void ShowViewAsStep(ScreenWindow& window, const ScreenRecord& view, int width, int height) {
    const std::uint64_t id = window.Id;
    SizedView before{window.State, PictureWidth(window), PictureHeight(window)};
    SizedView after{view, width > 0 ? width : before.Width, height > 0 ? height : before.Height};
    ++Undo.Paused;
    PutView(window, after);
    --Undo.Paused;
    if (!ScreenIsOpen(id)) return;
    const std::size_t bytes = BytesOf(before) + BytesOf(after);
    auto sides = std::make_shared<std::pair<SizedView, SizedView>>(std::move(before), std::move(after));
    const auto put = [sides, id](bool back) {
        if (ScreenWindow* const shown = WindowOf(id)) PutView(*shown, back ? sides->first : sides->second);
    };
    KeepUndoStep({.Name = "View", .Put = put, .Bytes = bytes, .Window = id});
}

}  // namespace corvinade::graphics
