// The job's file on the disk, as other programs may change it.
#include "core/job_on_disk.h"

#include <cerrno>
#include <cstring>

#include "core/file_state.h"
#include "core/file_writer.h"
#include "core/files.h"
#include "core/held_streams.h"
#include "core/job.h"
#include "core/job_file.h"
#include "core/platform.h"

namespace corvinade::core {

namespace {

struct KnownFile {
    std::string Path;
    DiskState State;
    std::size_t Length = 0, Hash = 0;  // of its bytes
    bool HasBytes = false;
};
// The one job that is open, and the one that a command has read.
KnownFile Known;

std::size_t HashOf(std::string_view bytes) {
    RunningHash hash;
    hash.Add(bytes);
    return hash.Value();
}

}  // namespace

void RunningHash::Add(std::string_view bytes) {
    length_ += bytes.size();
    while (!bytes.empty()) {
        const std::string_view taken = bytes.substr(0, kBlock - block_.size());
        bytes.remove_prefix(taken.size());
        if (taken.size() == kBlock) {
            Mix(taken);
            continue;
        }
        block_ += taken;
        if (block_.size() < kBlock) continue;
        Mix(block_);
        block_.clear();
    }
}

std::size_t RunningHash::Value() const {
    RunningHash last = *this;
    last.Mix(last.block_);
    return last.value_;
}

void RunningHash::Mix(std::string_view block) {
    constexpr std::size_t kOdd = 0x9e3779b9;  // so that equal blocks in another order differ
    value_ = value_ * kOdd + std::hash<std::string_view>{}(block);
}

DiskState DiskStateOf(const std::string& path) {
    DiskState state;
    state.There = HeldStream(path) == nullptr && FileIsThere(path);  // a stream does not change
    if (state.There && !StampOfFile(path, state.Stamp))
        throw PlatformError{"Cannot tell what is at \"" + path + "\": " + std::strerror(errno)};
    return state;
}

void RememberJobFile(const std::string& path, const DiskState& state, std::string_view bytes) {
    Known = {path, state, bytes.size(), HashOf(bytes), true};
}

void ForgetJobFile() {
    Known = {};
}

KnownBytes KnownOf(const std::string& path) {
    if (path != Known.Path || !Known.HasBytes) return {};
    return {true, Known.Length, Known.Hash};
}

// The state is that of no file, so that the contents are compared. Where nothing was known, whatever stands
// at the path by then is another one's.
void RememberKnown(const std::string& path, const KnownBytes& known) {
    Known = {path, {}, known.Length, known.Hash, known.There};
}

void RememberNewJobFile(const std::string& path) {
    Known = {path, DiskStateOf(path), 0, 0, false};
}

bool HasChangedOnDisk(const std::string& path, const DiskState& now) {
    if (path != Known.Path || !now.There || now == Known.State) return false;
    if (!Known.HasBytes) return true;
    // A copy of itself, other rights and another name are no change.
    const FileBytes bytes = ReadFile(path);
    return bytes.Size != Known.Length || HashOf(bytes.View()) != Known.Hash;
}

void ReplaceJobFile(const std::string& path, const std::function<bool(const std::string& path)>& mayReplace,
                    const std::function<void()>& prepare,
                    const std::function<void(const std::function<void(std::string_view)>& take)>& write) {
    for (;;) {
        // The question is asked without the lock, and what has come meanwhile is asked about again.
        const DiskState seen = DiskStateOf(path);
        if (HasChangedOnDisk(path, seen) && !mayReplace(path))
            throw PlatformError{"The job has not been saved: \"" + path +
                                "\" has been changed by another program since it was read"};
        const FolderLock lock(Pfad(path));
        if (DiskStateOf(path) != seen) continue;
        prepare();
        RunningHash hash;
        FileBeside file(path);
        write([&](std::string_view bytes) {
            file.Write(bytes);
            hash.Add(bytes);
        });
        file.Keep(Keeping::Flushed);
        Known = {path, DiskStateOf(path), hash.Length(), hash.Value(), true};
        return;
    }
}

}  // namespace corvinade::core
