// Files that a running program holds locked; the system drops the lock with the process, however it ends.
// Defined in system/.
#pragma once

#include <cstdint>
#include <string>

#include "core/rooms.h"

namespace corvinade::core {

enum class LockAnswer : std::uint8_t { Taken, Held, None };  // None: there is no such file, or none to be had

// Locks the file at the path, which with `create` is made where there is none, readable by its owner alone.
// `handle` belongs to the caller when it is taken. A link is none.
LockAnswer TakeLock(const std::string& path, bool create, int& handle);

// What the file says, in place of what it said; whoever holds another lock reads it. False when it cannot.
bool WriteLocked(int handle, const std::string& text);

void DropLock(int handle);

// The same, and the file goes with it.
void DropLockAndFile(int handle, const std::string& path);

// Removes a file that a program keeps for itself. False when it is still there.
bool RemoveOwnFile(const std::string& path);

}  // namespace corvinade::core
