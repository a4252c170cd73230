// LZF: runs of literal bytes, and references back to what came before. A control byte below 32 is followed by
// that many bytes and one; otherwise its upper three bits are the length of a reference less 2 (7: the next
// byte is added) and its lower five, with the byte behind, the distance less 1.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "core/rooms.h"
#include "import/cloud_stream.h"

namespace corvinade::import {

// Gives the next compressed byte, below 0 at their end.
using NextByte = std::function<int()>;

// Hands on what was compressed, piece by piece. False where a reference leads in front of the beginning, or
// the bytes end within one, or give more than `most` bytes.
bool LzfDecode(const NextByte& next, std::uint64_t most, const WriteBytes& write);

// Adds a block in compressed form; blocks stand one behind the other without anything between them.
void LzfEncode(std::string_view block, std::string& compressed);

}  // namespace corvinade::import
