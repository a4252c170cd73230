// What the library throws.
#pragma once

#include <stdexcept>

#include "corvinade/api.h"

namespace corvinade {

// What was handed over cannot be worked on: the text says what was expected and what came. Nothing has been
// changed by then. Beside it only std::bad_alloc leaves the library.
class CORVINADE_API InvalidInput : public std::invalid_argument {
public:
    using std::invalid_argument::invalid_argument;
};

}  // namespace corvinade
