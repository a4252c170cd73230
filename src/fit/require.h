// A promise of our own code that must hold in every build: a wrong calibration costs more than a stop.
#pragma once

namespace corvinade::fit {

// Ends the program with a line on standard error that names the broken promise and its place.
[[noreturn]] void BrokenPromise(const char* what, const char* file, int line);

#define Require(condition) \
    ((condition) ? void() : ::corvinade::fit::BrokenPromise(#condition, __FILE__, __LINE__))

}  // namespace corvinade::fit
