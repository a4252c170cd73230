// The records of the program that what the library takes from it works on.
#pragma once

#include <mutex>
#include <vector>

#include "corvinade/point_file.h"

namespace corvinade::library {

// While it lives they are this thread's alone, as they are in a new program; another thread waits.
class RecordsHeld {
public:
    RecordsHeld();
    ~RecordsHeld();
    RecordsHeld(const RecordsHeld&) = delete;
    RecordsHeld& operator=(const RecordsHeld&) = delete;

    // What has been noticed since.
    static std::vector<FileNote> Notes();

private:
    std::lock_guard<std::mutex> alone_;
};

}  // namespace corvinade::library
