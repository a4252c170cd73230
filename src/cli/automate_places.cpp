// The windows and controls that requests name.
#include "cli/automate_places.h"

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "cli/headless.h"
#include "cli/request.h"

namespace corvinade::cli {

using nlohmann::json;

namespace {

const ControlEntry* FindEntry(const WindowEntry& window, std::string_view name) {
    for (const ControlEntry& entry : window.Controls)
        if (name == entry.Name) return &entry;
    return nullptr;
}

}  // namespace

const ControlEntry* ParentOf(const Target& target, const ControlEntry& entry) {
    return entry.Parent == nullptr ? nullptr : FindEntry(*target.Window, entry.Parent);
}

Target FindTarget(const json& request) {
    const std::string at = TextMember(request, "at");
    const std::size_t dot = at.find('.');
    Target target;
    target.Window = FindWindow(at.substr(0, dot));
    if (target.Window == nullptr) Refuse("there is no window \"" + at.substr(0, dot) + "\"");
    if (dot == std::string::npos) return target;
    target.Control = FindEntry(*target.Window, at.substr(dot + 1));
    if (target.Control == nullptr) Refuse("there is no control \"" + at + "\"");
    return target;
}

Target FindLoadedWindow(const json& request) {
    const Target target = FindTarget(request);
    if (!target.Window->State->Loaded) Refuse(std::string(target.Window->Name) + " is not open");
    RefuseWhileAnotherIsWaitedFor(target.Window->Name);
    return target;
}

Control& FindReachable(const json& request) {
    const Target target = FindLoadedWindow(request);
    if (target.Control == nullptr) Refuse("a control is expected");
    const std::string name = std::string(target.Window->Name) + "." + target.Control->Name;
    if (!target.Window->State->Enabled) Refuse(std::string(target.Window->Name) + " is disabled");
    for (const ControlEntry* entry = target.Control; entry != nullptr; entry = ParentOf(target, *entry)) {
        const std::string who =
            entry == target.Control ? name : name + " stands in " + entry->Name + ", which";
        if (!entry->Place->Enabled) Refuse(who + " is disabled");
        if (!entry->Place->Visible) Refuse(who + " is hidden");
    }
    return *target.Control->Place;
}

}  // namespace corvinade::cli
