// PLY: a header of lines that names elements and their properties, and their values behind it.
#pragma once

#include "core/rooms.h"
#include "import/cloud.h"

namespace corvinade::import {

// RunCloud of a PLY file.
void RunPly(CloudTask& task);

}  // namespace corvinade::import
