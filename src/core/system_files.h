// What the writer of files wants of the system beyond the standard library: locks that end with their
// process, owners and rights, the flush of a folder. Defined in system/, once for both faces.
#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>

#include "core/rooms.h"

namespace corvinade::core {

// A stream on a file, as std::fopen has it, whatever letters stand in the path.
std::FILE* OpenStream(const std::filesystem::path& path, const char* mode);

// A new, empty file beside `target` that is to take its place. Its name is that of the target with
// ".cvnew" and a number. It is locked as long as it is open, which the system ends with the process: what
// bears such a name, is no link, belongs to the user and is not locked was left behind by a program that
// was killed, and is removed. Only its owner may read it where `ownerOnly` is set. Null with `error`, an
// errno, where there is none to be had.
std::FILE* OpenBeside(const std::filesystem::path& target, bool ownerOnly, std::filesystem::path& beside,
                      int& error);

// Forces what was written to `file` onto the disk; false when the system reports a failure.
bool FlushToDisk(std::FILE* file);

// Removes what killed programs have left beside a target that is not written again.
void RemoveLeftBeside(const std::filesystem::path& target);

// The file beside has taken its place, or is gone: a signal need not remove it.
void ForgetBeside(const std::filesystem::path& beside);

// Gives a new file the rights of the old one and, as far as the system lets, its owner and group; with
// `ownerOnly` nobody else has rights. What could not be given is told in words; "" when all was.
std::string TakeOverRights(std::FILE* file, const std::filesystem::path& old, bool ownerOnly);

// Forces the names in a folder onto the disk; false when the system reports a failure. A file system that
// has no such thing reports none.
bool FlushFolder(const std::filesystem::path& folder);

// What tells a file from another one, or from itself after a change.
struct FileStamp {
    std::uint64_t Device = 0, Number = 0, Size = 0;
    std::int64_t Changed_ns = 0, Touched_ns = 0;  // of the contents, and of all that is known of the file
    bool operator==(const FileStamp&) const = default;
};
// False where it cannot be told.
bool StampOfFile(const std::string& path, FileStamp& stamp);

// As long as it lives no other program of ours has one of the same folder. Throws PlatformError where
// another one holds it for longer than some seconds. A file system without locks gives none, and the work
// goes on without.
class FolderLock {
public:
    explicit FolderLock(const std::string& folder);
    ~FolderLock();
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

private:
    int handle_ = -1;
};

// From now on signals that end the program (an interrupt, a hang-up, a termination, a closed pipe) remove
// the files beside their targets first; the program then ends by the signal, as a shell expects. A signal
// that was ignored stays so. To be called once, by a main.
void RemoveFilesBesideAtSignals();

// The same removal, for an end of another kind: nothing is allocated.
void RemoveFilesBesideNow() noexcept;

}  // namespace corvinade::core
