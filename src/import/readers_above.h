// Files that an import leaves to rooms above it, which know what to do with them.
#pragma once

#include <cstdint>
#include <span>

#include "core/rooms.h"
#include "import/robot_files.h"

namespace corvinade::import {

enum class FileAbove : std::uint8_t {
    Shape,   // the target of an import whose start points are there: read, and their first targets taken
    Network  // the bundle file of the input dialog, in the place of two point files
};

struct ReaderAbove {
    FileAbove Kind;
    void (*Read)(const TargetFile& file);  // throws PlatformError where it cannot be read
};

// One row a kind; defined above all rooms.
std::span<const ReaderAbove> AllReadersAbove();

// Reads a file by the row of its kind.
void ReadAbove(FileAbove kind, const TargetFile& file);

}  // namespace corvinade::import
