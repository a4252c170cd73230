// What follows a change in the points as they are paired.
#include "import/import_changes.h"

#include "import/matching.h"

namespace corvinade::import {

namespace {

void BeginWithPairs(What) {
    IdentischePkte_Neu();
}

constexpr ChangeRow kChanges[] = {{What::NewJob, Turn::NewPairs, BeginWithPairs}};

}  // namespace

std::span<const ChangeRow> ImportChanges() {
    return kChanges;
}

}  // namespace corvinade::import
