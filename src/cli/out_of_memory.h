// The end of a program that has no memory left.
#pragma once

#include "core/rooms.h"

namespace corvinade::cli {

// Keeps memory aside that is given back when an allocation first fails, so that what is cleared away after
// the error, which may allocate itself, has some. Where even that fails, in a place that cannot pass the
// error on, the program says so, removes the files that it was writing and ends with kRefused. To be called
// once, by main or before.
void PrepareForNoMemory();

// Keeps memory aside again, as far as there is any, when an error for want of it has been told.
void KeepReserve();

}  // namespace corvinade::cli
