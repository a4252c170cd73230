// PCD: a header of lines that names fields, and their values as text, binary or compressed.
#pragma once

#include "core/rooms.h"
#include "import/cloud.h"

namespace corvinade::import {

// RunCloud of a PCD file. A compressed one is compressed again.
void RunPcd(CloudTask& task);

}  // namespace corvinade::import
