// What stands at a path. "Nothing" and "it cannot be told" are two answers: a disk that fails must not look
// like an empty one.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

#include "core/rooms.h"

namespace corvinade::core {

enum class PathKind : std::uint8_t { Nothing, File, Folder, Other };

// Links are followed. A path that is empty, too long or leads through a file has nothing at it. Throws
// PlatformError where the system cannot tell.
PathKind KindOfPath(const std::string& path);
PathKind KindOfPath(const std::filesystem::path& path);

// The same as questions. File_Exist and Directory_Exist of core/files.h, which never fail, are for where
// "no" changes nothing that the user has.
bool FileIsThere(const std::string& path);
bool FolderIsThere(const std::string& path);

// Where tests refuse to tell: asked before each look with the path; a text that it returns is the failure.
struct LookFaultRecord {
    std::function<std::string(const std::string& path)> Refuse;
};
inline LookFaultRecord LookFaults;

}  // namespace corvinade::core
