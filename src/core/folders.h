// What folders hold.
#pragma once

#include <string>
#include <vector>

#include "core/rooms.h"

namespace corvinade::core {

// Names of the files in a folder, by their names; folders and what is neither are left out. Empty where
// there is no such folder. Throws PlatformError where it cannot be read.
std::vector<std::string> FilesOfFolder(const std::string& folder);

// Names of the folders in a folder, by their names, without the hidden ones. Empty where it cannot be read.
std::vector<std::string> FoldersOfFolder(const std::string& folder);

// The folders that all others stand in: "/", or the letters of the drives.
std::vector<std::string> Drives();

// The name in a path: all behind the last separator.
std::string NameOfFile(const std::string& path);

// A folder's full path without "." and ".." and without a separator at its end, which only a top one has.
std::string PlainFolder(const std::string& folder);

// The folder that a folder stands in; a top one itself. `folder` as PlainFolder gives it.
std::string FolderAbove(const std::string& folder);

}  // namespace corvinade::core
