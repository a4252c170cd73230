// A stop watch that counts the processor time of this thread alone: what else the machine does meanwhile is
// no fault of the program.
#pragma once

#include <time.h>

class WorkTime {
public:
    void start() {
        from_ms_ = Now_ms();
        running_ = true;
    }
    bool isValid() const { return running_; }
    int elapsed() const { return static_cast<int>(Now_ms() - from_ms_); }

private:
    static long Now_ms() {
        timespec now{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
        return now.tv_sec * 1000 + now.tv_nsec / 1000000;
    }
    long from_ms_ = 0;
    bool running_ = false;
};
