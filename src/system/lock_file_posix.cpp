// Locked files as POSIX systems have them.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "core/lock_file.h"

namespace corvinade::core {

LockAnswer TakeLock(const std::string& path, bool create, int& handle) {
    const int flags = O_RDWR | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | (create ? O_CREAT : 0);
    handle = open(path.c_str(), flags, 0600);
    if (handle < 0) return LockAnswer::None;
    struct stat file {
    }, there{};
    LockAnswer answer = LockAnswer::None;
    if (fstat(handle, &file) == 0 && S_ISREG(file.st_mode) && file.st_uid == geteuid()) {
        if (flock(handle, LOCK_EX | LOCK_NB) != 0) {
            answer = errno == EWOULDBLOCK ? LockAnswer::Held : LockAnswer::None;
        } else if (lstat(path.c_str(), &there) == 0 && there.st_dev == file.st_dev &&
                   there.st_ino == file.st_ino) {
            return LockAnswer::Taken;  // and it has not been removed by whoever held it before
        }
    }
    close(handle);
    handle = -1;
    return answer;
}

bool WriteLocked(int handle, const std::string& text) {
    return ftruncate(handle, 0) == 0 &&
           pwrite(handle, text.data(), text.size(), 0) == static_cast<ssize_t>(text.size());
}

void DropLock(int handle) {
    if (handle >= 0) close(handle);
}

void DropLockAndFile(int handle, const std::string& path) {
    if (handle < 0) return;
    unlink(path.c_str());
    close(handle);
}

bool RemoveOwnFile(const std::string& path) {
    return unlink(path.c_str()) == 0 || errno == ENOENT;
}

}  // namespace corvinade::core
