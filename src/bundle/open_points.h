// What an adjusted network says of the coordinates that its distances leave open.
#pragma once

#include "bundle/network.h"
#include "core/rooms.h"
#include "fit/bundle_network.h"
#include "fit/bundle_open.h"

namespace corvinade::bundle {

// Notes the open points of a network by their names; the note of an adjustment of before goes.
void NoteOpenPoints(const BundleRecord& network, const BundleWork& work);

}  // namespace corvinade::bundle
