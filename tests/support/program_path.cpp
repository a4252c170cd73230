// The build says where the program lies; this source alone is compiled with it.
#include "support/program_path.h"

std::string ProgramPath() {
    return CORVINADE_CLI;
}
