// The job's file on the disk, as other programs may change it.
#include "core/job_on_disk.h"

#include <cerrno>
#include <cstring>

#include "core/file_state.h"
#include "core/files.h"
#include "core/held_streams.h"
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
    return std::hash<std::string_view>{}(bytes);
}

}  // namespace

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
                    const std::function<std::string()>& bytesOf) {
    for (;;) {
        // The question is asked without the lock, and what has come meanwhile is asked about again.
        const DiskState seen = DiskStateOf(path);
        if (HasChangedOnDisk(path, seen) && !mayReplace(path))
            throw PlatformError{"The job has not been saved: \"" + path +
                                "\" has been changed by another program since it was read"};
        const FolderLock lock(Pfad(path));
        if (DiskStateOf(path) != seen) continue;
        const std::string bytes = bytesOf();
        WriteFile(path, bytes);
        RememberJobFile(path, DiskStateOf(path), bytes);
        return;
    }
}

}  // namespace corvinade::core
