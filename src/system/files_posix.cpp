// Files as POSIX systems have them.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <climits>
#include <csignal>
#include <cstring>
#include <thread>

#include "core/platform.h"
#include "core/system_files.h"

namespace corvinade::core {

namespace fs = std::filesystem;

namespace {

// --- Files that a signal removes --------------------------------------------------------------------------

// A signal's handler may look at these at any time: a place is filled before it is ready, and what stands
// at its path is removed only while it is the very file.
struct Removal {
    std::atomic<bool> Taken{false}, Ready{false};
    dev_t Device = 0;
    ino_t Number = 0;
    std::array<char, PATH_MAX> Path{};
};
constexpr std::size_t kMostRemovals = 32;
std::array<Removal, kMostRemovals> Removals;
static_assert(std::atomic<bool>::is_always_lock_free);

void RemoveAll() {
    for (Removal& removal : Removals) {
        struct stat now {};
        if (removal.Ready.load() && lstat(removal.Path.data(), &now) == 0 && now.st_dev == removal.Device &&
            now.st_ino == removal.Number)
            unlink(removal.Path.data());
    }
}

void Remember(const fs::path& path, const struct stat& file) {
    const std::string& text = path.native();
    if (text.size() >= PATH_MAX) return;
    for (Removal& removal : Removals) {
        if (removal.Taken.exchange(true)) continue;
        removal.Device = file.st_dev;
        removal.Number = file.st_ino;
        std::memcpy(removal.Path.data(), text.c_str(), text.size() + 1);
        removal.Ready.store(true);
        return;
    }
}

extern "C" void EndBySignal(int signal) {
    const int kept = errno;
    RemoveAll();
    errno = kept;
    // The handler is gone by its first call, so that this one ends the program as if there had been none.
    raise(signal);
}

// --- Files beside their targets ---------------------------------------------------------------------------

constexpr const char* kBesideMark = ".cvnew";
constexpr int kMostBeside = 1000, kLookedAt = 4;
constexpr std::size_t kLongestName = 255;

fs::path NameBeside(const fs::path& target, int number) {
    const std::string end = kBesideMark + std::to_string(number);
    std::string name = target.filename().native();
    if (name.size() <= kLongestName && name.size() + end.size() > kLongestName)
        name.resize(kLongestName - end.size());
    return target.parent_path() / (name + end);
}

bool IsSameFile(const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

// Is the file of this handle still the one at the path?
bool StandsAt(int handle, const fs::path& path, struct stat& file) {
    struct stat there {};
    return fstat(handle, &file) == 0 && lstat(path.c_str(), &there) == 0 && IsSameFile(file, there);
}

// Removes what a killed program has left at this path. False where something stands there that is not such
// a thing, or is in use.
bool RemoveLeftBehind(const fs::path& path) {
    struct stat there {};
    if (lstat(path.c_str(), &there) != 0) return errno == ENOENT;
    if (!S_ISREG(there.st_mode) || there.st_uid != geteuid() || there.st_nlink != 1) return false;
    const int handle = open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
    if (handle < 0) return errno == ENOENT;
    struct stat file {};
    const bool left = flock(handle, LOCK_EX | LOCK_NB) == 0 && StandsAt(handle, path, file) &&
                      file.st_nlink == 1 && unlink(path.c_str()) == 0;
    close(handle);
    return left;
}

void RemoveLeftBehindFrom(const fs::path& target, int number) {
    try {
        for (int other = number; other < number + kLookedAt; ++other)
            RemoveLeftBehind(NameBeside(target, other));
    } catch (const std::bad_alloc&) {  // what it leaves the next write finds
    }
}

std::string Words(int error) {
    return std::strerror(error);
}

}  // namespace

std::FILE* OpenStream(const fs::path& path, const char* mode) {
    return std::fopen(path.c_str(), mode);
}

std::FILE* OpenBeside(const fs::path& target, bool ownerOnly, fs::path& beside, int& error) {
    const mode_t mode = ownerOnly ? 0600 : 0666;
    for (int number = 1; number <= kMostBeside; ++number) {
        beside = NameBeside(target, number);
        if (!RemoveLeftBehind(beside)) continue;
        const int handle = open(beside.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode);
        if (handle < 0) {
            error = errno;
            if (error == EEXIST) continue;  // another program was quicker
            return nullptr;
        }
        // Without locks in this file system the file is taken for what it is all the same.
        struct stat file {};
        const bool locked = flock(handle, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
        errno = 0;
        if (!locked || (!StandsAt(handle, beside, file) && (errno == 0 || errno == ENOENT))) {
            close(handle);  // whoever has taken it for left behind removes it
            continue;
        }
        std::FILE* const stream = errno == 0 ? fdopen(handle, "wb") : nullptr;
        if (stream == nullptr) {
            error = errno;
            unlink(beside.c_str());
            close(handle);
            return nullptr;
        }
        Remember(beside, file);
        RemoveLeftBehindFrom(target, number + 1);
        return stream;
    }
    error = EEXIST;
    return nullptr;
}

bool FlushToDisk(std::FILE* file) {
    return fsync(fileno(file)) == 0;
}

void RemoveLeftBeside(const fs::path& target) {
    RemoveLeftBehindFrom(target, 1);
}

void ForgetBeside(const fs::path& beside) {
    for (Removal& removal : Removals) {
        if (!removal.Ready.load() || beside.native() != removal.Path.data()) continue;
        removal.Ready.store(false);
        removal.Taken.store(false);
        return;
    }
}

std::string TakeOverRights(std::FILE* file, const fs::path& old, bool ownerOnly) {
    struct stat before {
    }, now{};
    const int handle = fileno(file);
    if (stat(old.c_str(), &before) != 0 || fstat(handle, &now) != 0) return Words(errno);
    std::string lost;
    // The owner first: giving a file away takes rights from it.
    if (before.st_uid != now.st_uid && fchown(handle, before.st_uid, static_cast<gid_t>(-1)) != 0)
        lost = "it belongs to another user now";
    bool otherGroup = false;
    if (before.st_gid != now.st_gid && fchown(handle, static_cast<uid_t>(-1), before.st_gid) != 0) {
        otherGroup = true;
        if (lost.empty()) lost = "it belongs to another group now";
    }
    mode_t mode = before.st_mode & (ownerOnly ? 0700U : 0777U);
    if (otherGroup) mode &= ~static_cast<mode_t>(070);  // they were another group's
    if (fchmod(handle, mode) != 0) lost = "its rights could not be kept: " + Words(errno);
    return lost;
}

bool FlushFolder(const fs::path& folder) {
    const int handle = open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle < 0) return errno == EACCES;  // a folder may be written and not read
    const bool good = fsync(handle) == 0 || errno == EINVAL || errno == ENOTSUP || errno == EROFS;
    const int kept = errno;
    close(handle);
    errno = kept;
    return good;
}

bool StampOfFile(const std::string& path, FileStamp& stamp) {
    struct stat file {};
    if (stat(path.c_str(), &file) != 0) return false;
    constexpr std::int64_t kSecond = 1000000000;
    stamp = {static_cast<std::uint64_t>(file.st_dev), static_cast<std::uint64_t>(file.st_ino),
             static_cast<std::uint64_t>(file.st_size),
             std::int64_t{file.st_mtim.tv_sec} * kSecond + file.st_mtim.tv_nsec,
             std::int64_t{file.st_ctim.tv_sec} * kSecond + file.st_ctim.tv_nsec};
    return true;
}

FolderLock::FolderLock(const std::string& folder) {
    constexpr int kTries = 1000;
    constexpr std::chrono::milliseconds kBetween(5);
    handle_ = open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle_ < 0) return;  // what is to be done there tells why not
    for (int i = 0; i < kTries; ++i) {
        if (flock(handle_, LOCK_EX | LOCK_NB) == 0) return;
        if (errno != EWOULDBLOCK && errno != EINTR) return;
        std::this_thread::sleep_for(kBetween);
    }
    close(handle_);
    throw PlatformError{"Cannot write into the folder \"" + folder + "\": another program is writing there"};
}

FolderLock::~FolderLock() {
    if (handle_ >= 0) close(handle_);
}

void RemoveFilesBesideNow() noexcept {
    RemoveAll();
}

void RemoveFilesBesideAtSignals() {
    struct sigaction action {};
    action.sa_handler = EndBySignal;
    action.sa_flags = static_cast<int>(SA_RESETHAND | SA_NODEFER);
    sigemptyset(&action.sa_mask);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE, SIGQUIT, SIGALRM, SIGXCPU}) {
        struct sigaction before {};
        if (sigaction(signal, nullptr, &before) == 0 && before.sa_handler == SIG_DFL)
            sigaction(signal, &action, nullptr);
    }
}

}  // namespace corvinade::core
