// The windows and controls that requests name.
#pragma once

#include <nlohmann/json_fwd.hpp>

#include "core/rooms.h"
#include "core/window.h"

namespace corvinade::cli {

struct Target {
    const WindowEntry* Window = nullptr;
    const ControlEntry* Control = nullptr;  // null: the window itself
};

// What "at" of a request names: a window, or a control of it. These throw what Refuse throws: FindTarget
// where there is none, FindLoadedWindow also where the window is not open or another one is waited for.
Target FindTarget(const nlohmann::json& request);
Target FindLoadedWindow(const nlohmann::json& request);

// What a control stands in, or null.
const ControlEntry* ParentOf(const Target& target, const ControlEntry& entry);

// A control that the user could reach: its window open and enabled, itself and what it stands in
// enabled and visible.
Control& FindReachable(const nlohmann::json& request);

}  // namespace corvinade::cli
