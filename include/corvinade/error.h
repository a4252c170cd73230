// What the library throws.
#pragma once

#include <stdexcept>

#include "corvinade/api.h"

namespace corvinade {

// What was handed over cannot be worked on: the text says what was expected and what came. Nothing has been
// changed by then. Beside it Stopped and std::bad_alloc alone leave the library.
class CORVINADE_API InvalidInput : public std::invalid_argument {
public:
    using std::invalid_argument::invalid_argument;
};

// Thrown where StopIsWanted of the options has said so.
class CORVINADE_API Stopped : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace corvinade
