// A file that is written piece by piece and replaces its target whole, or not at all.
#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>

#include "core/rooms.h"

namespace corvinade::core {

enum class Keeping : std::uint8_t {
    Flushed,   // on the disk before it takes its place, so that the power may fail at any time
    Unflushed  // for results in bulk that can be made anew: a flush a file would take longer than the work
};

enum class Readers : std::uint8_t {
    AsBefore,  // those of the old file; of a new one those that the system gives it
    Owner      // nobody else, whoever could read the old one
};

// A file that grows beyond what the system allows this process (ulimit -f) then refuses the write, as a full
// disk does, instead of ending the program. To be called once, by its main.
void LetTooLargeFilesRefuse();

// Written beside the target and renamed over it by Keep. Whatever happens, the target is the old file or
// the new one, whole; without Keep, or when it throws, nothing is left beside it. What a killed program has
// left there is removed; several programs may write to one target at once. Every procedure throws
// PlatformError when the disk refuses (a write-protected target is refused at the beginning).
class FileBeside {
public:
    explicit FileBeside(const std::string& path, Readers readers = Readers::AsBefore);
    ~FileBeside();
    FileBeside(const FileBeside&) = delete;
    FileBeside& operator=(const FileBeside&) = delete;

    void Write(std::string_view bytes);  // best in large pieces; nothing gathers them
    // Once, the last of all. The new file has owner and permissions of the old one; where it cannot, and
    // where the old one has further names, which keep the old contents, a note says so.
    void Keep(Keeping keeping);

private:
    std::string path_;
    std::filesystem::path target_, beside_;
    std::filesystem::file_status old_;
    Readers readers_;
    std::FILE* file_ = nullptr;
    bool kept_ = false;
};

// WriteFile of core/files.h for what nobody but its owner may read.
void WritePrivateFile(const std::string& path, std::string_view bytes);

}  // namespace corvinade::core
