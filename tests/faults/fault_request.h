// What a program that is served (see faults.cpp) is asked for, through a pipe: one run with one fault. It
// answers with 0 when it stands, and with the status of each run.
#pragma once

#include <climits>

inline constexpr int kFaultRequests = 198, kFaultAnswers = 199;  // handles

struct FaultRequest {
    int At, Errno, Removals, Memory, Times;           // as the variables FAULTS_... of the environment
    char In[PATH_MAX], Out[PATH_MAX], Err[PATH_MAX];  // files of the standard streams
};
