// The build says where the program lies; this source alone is compiled with it.
#include "support/program_path.h"

std::string ProgramPath() {
    return CORVINADE_CLI;
}

bool ProgramIsSanitized() {
#if defined(__SANITIZE_ADDRESS__)
    return true;
#else
    return false;
#endif
}

std::string FaultsPath() {
    return ProgramIsSanitized() ? "" : CORVINADE_FAULTS;
}
