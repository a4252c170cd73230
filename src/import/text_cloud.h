// Clouds of text, a point a line, and points of LandXML.
#pragma once

#include "core/rooms.h"
#include "import/cloud.h"

namespace corvinade::import {

// RunCloud of a text file of this kind. Lines without three numbers, comments among them, stay and are
// counted.
void RunText(CloudTask& task, CloudKind kind);

// RunCloud of a LandXML file: what stands in its CgPoint elements. Those without three numbers, which refer
// to others, stay and are counted.
void RunLandXml(CloudTask& task);

}  // namespace corvinade::import
