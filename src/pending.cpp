// Procedures of rooms that are still to be built. Where a user would wait for an effect the procedure
// says that this version does not have it; the rest is refreshing of what is not there.
#include "core/platform.h"
#include "core/refresh.h"

namespace {

[[noreturn]] void Missing(const char* what) {
    throw PlatformError{std::string("This version cannot ") + what};
}

}  // namespace

void Alle_Fahnen_neu_zeichnen() {}
