// Locked files as Windows has them.
#include <windows.h>
// Stand on the one above.
#include <fcntl.h>
#include <io.h>

#include <cstdint>

#include "core/lock_file.h"
#include "system/handles_win32.h"

namespace corvinade::core {

LockAnswer TakeLock(const std::string& path, bool create, int& handle) {
    handle = -1;
    const HANDLE file =
        CreateFileW(system::Wide(path).c_str(), GENERIC_READ | GENERIC_WRITE | DELETE, system::kShared,
                    nullptr, create ? OPEN_ALWAYS : OPEN_EXISTING, FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    if (file == INVALID_HANDLE_VALUE) return LockAnswer::None;
    LockAnswer answer = LockAnswer::None;
    if (system::IsPlainFile(file)) {
        if (!system::LockApart(file)) {
            answer = GetLastError() == ERROR_LOCK_VIOLATION ? LockAnswer::Held : LockAnswer::None;
        } else if (!system::IsGoing(file)) {  // and it has not been removed by whoever held it before
            handle = _open_osfhandle(reinterpret_cast<std::intptr_t>(file), _O_BINARY);
            if (handle >= 0) return LockAnswer::Taken;
        }
    }
    CloseHandle(file);
    return answer;
}

bool WriteLocked(int handle, const std::string& text) {
    const auto size = static_cast<unsigned>(text.size());
    return _chsize_s(handle, 0) == 0 && _lseeki64(handle, 0, SEEK_SET) == 0 &&
           _write(handle, text.data(), size) == static_cast<int>(size);
}

void DropLock(int handle) {
    if (handle >= 0) _close(handle);
}

void DropLockAndFile(int handle, const std::string& path) {
    if (handle < 0) return;
    DeleteFileW(system::Wide(path).c_str());
    _close(handle);
}

bool RemoveOwnFile(const std::string& path) {
    return DeleteFileW(system::Wide(path).c_str()) != 0 || GetLastError() == ERROR_FILE_NOT_FOUND;
}

}  // namespace corvinade::core
