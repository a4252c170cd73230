// Whether the file of the job is still what was read from it, or written to it, last.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "core/rooms.h"
#include "core/system_files.h"

namespace corvinade::core {

struct JobRecord;

// What is known of a file at one time.
struct DiskState {
    bool There = false;
    FileStamp Stamp;
    bool operator==(const DiskState&) const = default;
};
// Throws PlatformError where it cannot be told.
DiskState DiskStateOf(const std::string& path);

// The hash of bytes that come in pieces, however they are cut.
class RunningHash {
public:
    void Add(std::string_view bytes);
    std::size_t Length() const { return length_; }
    std::size_t Value() const;

private:
    static constexpr std::size_t kBlock = std::size_t{1} << 16;  // bytes

    void Mix(std::string_view block);
    std::string block_;
    std::size_t value_ = 0, length_ = 0;
};

// The file was in this state when these bytes were read from it, or written to it.
void RememberJobFile(const std::string& path, const DiskState& state, std::string_view bytes);

void ForgetJobFile();

// What is remembered of a file, without its state: as a copy of the job keeps it for another run. Nothing is
// known of a path that is not the remembered one.
struct KnownBytes {
    bool There = false;
    std::size_t Length = 0, Hash = 0;
};
KnownBytes KnownOf(const std::string& path);
void RememberKnown(const std::string& path, const KnownBytes& known);

// A new job is to be written there: what is there now may be replaced, what comes later may not.
void RememberNewJobFile(const std::string& path);

// Does a file stand at this path that is another one than the one remembered, by its contents? Never for a
// path of which nothing is remembered, nor where no file stands by now.
bool HasChangedOnDisk(const std::string& path, const DiskState& now);

// Writes the file of the job and remembers it. `mayReplace` is asked where another program has written the
// file since it was read; at "no" PlatformError is thrown and the file stays. While no other program of ours
// writes into the folder, `prepare` is called, which may refuse before anything is written, then `write`,
// which hands what is to be written to its argument piece by piece. What either throws leaves the old file.
void ReplaceJobFile(const std::string& path, const std::function<bool(const std::string& path)>& mayReplace,
                    const std::function<void()>& prepare,
                    const std::function<void(const std::function<void(std::string_view)>& take)>& write);

}  // namespace corvinade::core
