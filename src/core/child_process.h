// Another run of a program: what it says, and how it ends. Defined in system/.
#pragma once

#include <string>
#include <vector>

#include "core/rooms.h"

namespace corvinade::core {

struct ChildEnd {
    std::string Out, Err;
    int Status = -1;      // its exit status, where it ended by itself
    int Signal = 0;       // what ended it otherwise
    std::string Refused;  // why it could not be started; "" where it was
};

// Runs a program with arguments, nothing on its standard input, and waits for its end. May be called from
// any number of threads at once.
ChildEnd RunChild(const std::string& program, const std::vector<std::string>& arguments);

// How many programs this machine runs at once; 1 where that cannot be told.
int ProgramsAtOnce();

}  // namespace corvinade::core
