// Memory for whole files.
#pragma once

#include <cstddef>

#include "core/rooms.h"

namespace corvinade::core {

// Asks the system for large pages in a block of memory that is about to be filled: one that is taken page by
// small page costs more than the reading of a file. Nothing where the system has none. Defined in
// system/.
void PreferLargePages(void* block, std::size_t size);

}  // namespace corvinade::core
