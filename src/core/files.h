// The one reader and the one writer of files. A file is never half written.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "core/rooms.h"

namespace corvinade::core {

// Tests that never fail. A folder is no file, and the empty path is neither.
bool File_Exist(const std::string& path);
bool Directory_Exist(const std::string& path);

// The bytes of a file in memory.
struct FileBytes {
    std::unique_ptr<char[]> Data;
    std::size_t Size = 0;
    std::string_view View() const { return {Data.get(), Size}; }
};

// Reads a whole file. Throws PlatformError when it is missing, a folder, no regular file or unreadable.
FileBytes ReadFile(const std::string& path);

// Bytes of a file; 0 where there is none.
std::size_t FileSize(const std::string& path);

// Throws what ReadFile would throw at the file's start; reads nothing.
void CheckReadable(const std::string& path);

// Replaces a file by `bytes`: written beside the target, flushed to disk, renamed over it. Whatever
// happens, the target is the old file or the new one, whole. Throws PlatformError on failure (a
// write-protected file is one), the old file then untouched and nothing left beside it. Keeps the
// permissions of the old file.
void WriteFile(const std::string& path, std::string_view bytes);

// The same for a file that is too large to stand in memory: `next` gives its parts one by one, an empty one
// behind the last, or nothing to give it up. False then, the old file being untouched.
bool WriteFileInParts(const std::string& path, const std::function<std::optional<std::string_view>()>& next);

// Creates a folder and those above it. Throws PlatformError.
void CreateFolder(const std::string& path);

// Renames a file; never over an existing one. Throws PlatformError.
void RenameFile(const std::string& from, const std::string& to);

// The folder of a path: all before the last separator; "" where there is none.
std::string Pfad(const std::string& path);

// Puts a folder and a name together with the platform's separator.
std::string JoinPath(const std::string& folder, const std::string& name);

// A path as it can be used from every folder, without "." and ".." in it; the path itself where the present
// folder cannot be told.
std::string AbsolutePath(const std::string& path);

// Where tests and drills refuse an operation: called before each with its name ("open", "read",
// "create", "write", "flush", "rename", "folder") and the path; a text that it returns is the failure.
struct FileFaultRecord {
    std::function<std::string(const std::string& operation, const std::string& path)> Refuse;
};
inline FileFaultRecord FileFaults;

}  // namespace corvinade::core
