// How the program stops when one of its own promises is broken.
#include "fit/require.h"

#include <cstdio>
#include <cstdlib>

namespace corvinade::fit {

void BrokenPromise(const char* what, const char* file, int line) {
    std::fprintf(stderr, "corvinade: internal error: %s does not hold (%s:%d)\n", what, file, line);
    std::abort();
}

}  // namespace corvinade::fit
