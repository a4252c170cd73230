// The kinds of target file.
#include "import/robot_files.h"

#include <algorithm>

#include "fit/require.h"

namespace corvinade::import {

TargetKind TargetKindByName(std::string_view name) {
    const auto kinds = InputKinds();
    const auto found =
        std::find_if(kinds.begin(), kinds.end(), [name](const InputKind& kind) { return name == kind.Name; });
    Require(found != kinds.end());
    return found->Kind;
}

std::vector<std::string> TargetKindNames() {
    std::vector<const InputKind*> listed;
    for (const InputKind& kind : InputKinds())
        if (kind.Turn > 0) listed.push_back(&kind);
    std::sort(listed.begin(), listed.end(),
              [](const InputKind* a, const InputKind* b) { return a->Turn < b->Turn; });
    std::vector<std::string> names;
    for (const InputKind* kind : listed) names.emplace_back(kind->Name);
    return names;
}

void MakeJobOfKind(TargetKind kind) {
    for (const InputKind& other : InputKinds())
        if (other.IsKind != nullptr) *other.IsKind = ToFlag(other.Kind == kind);
}

}  // namespace corvinade::import
