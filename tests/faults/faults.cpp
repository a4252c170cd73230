// Loaded before a program (LD_PRELOAD): lets one of its calls of the system fail. The environment says which.
//   FAULTS_FOLDER  calls on files below this folder count, by the path or by what the handle stands for
//   FAULTS_AT      the number of the call that fails, from 1; 0: none
//   FAULTS_ERRNO   how it fails
//   FAULTS_LOG     a file that gets the name of the call that has failed
//   FAULTS_REMOVALS  anything: calls that remove a file count too
//   FAULTS_MEMORY  instead of those: from this allocation on, FAULTS_TIMES of them fail. They count from the
//                  first call on a file of the folder on, when the program stands
//   FAULTS_SERVED  anything: at the first call on a file of the folder the program waits for requests (see
//                  fault_request.h), and goes on in a process of its own for each. So it is loaded once
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "faults/fault_request.h"

namespace {

template <class Procedure>
Procedure* Real(const char* name) {
    return reinterpret_cast<Procedure*>(dlsym(RTLD_NEXT, name));
}

const char* Setting(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

std::atomic<long> Calls{0}, Allocations{0}, MemoryAt{-1}, MemoryTimes{0};

void Log(const char* call) {
    const long log = syscall(SYS_openat, AT_FDCWD, Setting("FAULTS_LOG"), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (log < 0) return;
    syscall(SYS_write, log, call, std::strlen(call));
    syscall(SYS_close, log);
}

bool IsBelow(const char* path) {
    const char* const folder = Setting("FAULTS_FOLDER");
    return path != nullptr && *folder != '\0' && std::strncmp(path, folder, std::strlen(folder)) == 0;
}

bool IsBelow(int handle) {
    char link[64], path[PATH_MAX];
    std::snprintf(link, sizeof link, "/proc/self/fd/%d", handle);
    const long size = syscall(SYS_readlink, link, path, sizeof path - 1);
    if (size < 0) return false;
    path[size] = '\0';
    return IsBelow(path);
}

void Set(const char* name, long value) {
    char text[24];
    std::snprintf(text, sizeof text, "%ld", value);
    setenv(name, text, 1);
}

// Takes the place of a standard stream.
void Reopen(int stream, const char* path, int flags) {
    const long at = lseek(stream, 0, SEEK_CUR);
    const long opened = syscall(SYS_openat, AT_FDCWD, path, flags, 0600);
    if (opened < 0 || dup2(static_cast<int>(opened), stream) < 0) _exit(126);
    syscall(SYS_close, opened);
    lseek(stream, at, SEEK_SET);
}

// Comes back in a process of its own for each request; ends with the last one.
void Serve() {
    unsetenv("FAULTS_SERVED");
    // What has been written already would be missing in what each process writes.
    const int ready = lseek(1, 0, SEEK_CUR) == 0 && lseek(2, 0, SEEK_CUR) == 0 ? 0 : -1;
    if (write(kFaultAnswers, &ready, sizeof ready) != sizeof ready || ready != 0) _exit(126);
    for (FaultRequest request; read(kFaultRequests, &request, sizeof request) == sizeof request;) {
        const pid_t child = fork();
        if (child == 0) {
            close(kFaultRequests);
            close(kFaultAnswers);
            Set("FAULTS_AT", request.At);
            Set("FAULTS_ERRNO", request.Errno);
            Set("FAULTS_MEMORY", request.Memory);
            Set("FAULTS_TIMES", request.Times);
            setenv("FAULTS_REMOVALS", request.Removals ? "yes" : "", 1);
            Reopen(0, request.In, O_RDONLY);
            Reopen(1, request.Out, O_WRONLY | O_CREAT | O_TRUNC);
            Reopen(2, request.Err, O_WRONLY | O_CREAT | O_TRUNC);
            return;
        }
        int status = -1;
        if (child < 0 || waitpid(child, &status, 0) != child) _exit(126);
        if (write(kFaultAnswers, &status, sizeof status) != sizeof status) _exit(126);
    }
    _exit(0);
}

// Is this the call that fails? errno is set then.
template <class Where>
bool Fails(const char* call, Where where) {
    const int kept = errno;
    if (!IsBelow(where)) {
        errno = kept;
        return false;
    }
    if (MemoryAt < 0) {
        if (*Setting("FAULTS_SERVED") != '\0') Serve();
        MemoryTimes = std::atol(Setting("FAULTS_TIMES"));
        MemoryAt = std::atol(Setting("FAULTS_MEMORY"));
    }
    if (Calls.fetch_add(1) + 1 != std::atol(Setting("FAULTS_AT"))) {
        errno = kept;
        return false;
    }
    Log(call);
    errno = std::atoi(Setting("FAULTS_ERRNO"));
    return true;
}

bool FailsToAllocate() {
    if (MemoryAt <= 0) return false;
    const long number = Allocations.fetch_add(1) + 1;
    if (number < MemoryAt || number >= MemoryAt + MemoryTimes) return false;
    if (number == MemoryAt) Log("malloc");
    errno = ENOMEM;
    return true;
}

}  // namespace

extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* place, std::size_t size);

void* malloc(std::size_t size) {
    return FailsToAllocate() ? nullptr : __libc_malloc(size);
}
void* calloc(std::size_t count, std::size_t size) {
    return FailsToAllocate() ? nullptr : __libc_calloc(count, size);
}
void* realloc(void* place, std::size_t size) {
    return FailsToAllocate() ? nullptr : __libc_realloc(place, size);
}

std::FILE* fopen(const char* path, const char* mode) {
    if (Fails("fopen", path)) return nullptr;
    return Real<std::FILE*(const char*, const char*)>("fopen")(path, mode);
}
std::FILE* fopen64(const char* path, const char* mode) {
    if (Fails("fopen", path)) return nullptr;
    return Real<std::FILE*(const char*, const char*)>("fopen64")(path, mode);
}
int open(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const auto mode = static_cast<mode_t>(va_arg(rest, int));
    va_end(rest);
    if (Fails("open", path)) return -1;
    return Real<int(const char*, int, ...)>("open")(path, flags, mode);
}
int openat(int folder, const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const auto mode = static_cast<mode_t>(va_arg(rest, int));
    va_end(rest);
    if (Fails("openat", path)) return -1;
    return Real<int(int, const char*, int, ...)>("openat")(folder, path, flags, mode);
}
DIR* fdopendir(int handle) {
    if (Fails("fdopendir", handle)) return nullptr;
    return Real<DIR*(int)>("fdopendir")(handle);
}
std::FILE* fdopen(int handle, const char* mode) {
    if (Fails("fdopen", handle)) return nullptr;
    return Real<std::FILE*(int, const char*)>("fdopen")(handle, mode);
}
std::size_t fread(void* to, std::size_t size, std::size_t count, std::FILE* file) {
    if (Fails("fread", fileno(file))) {
        file->_flags |= 0x20;  // what ferror looks at
        return 0;
    }
    return Real<std::size_t(void*, std::size_t, std::size_t, std::FILE*)>("fread")(to, size, count, file);
}
std::size_t fwrite(const void* from, std::size_t size, std::size_t count, std::FILE* file) {
    if (Fails("fwrite", fileno(file))) return 0;
    return Real<std::size_t(const void*, std::size_t, std::size_t, std::FILE*)>("fwrite")(from, size, count,
                                                                                          file);
}
int fclose(std::FILE* file) {
    const bool fails = Fails("fclose", fileno(file));
    const int kept = errno;
    const int status = Real<int(std::FILE*)>("fclose")(file);
    if (!fails) return status;
    errno = kept;
    return EOF;
}
int fsync(int handle) {
    if (Fails("fsync", handle)) return -1;
    return Real<int(int)>("fsync")(handle);
}
int flock(int handle, int operation) {
    if (Fails("flock", handle)) return -1;
    return Real<int(int, int)>("flock")(handle, operation);
}
int fchmod(int handle, mode_t mode) {
    if (Fails("fchmod", handle)) return -1;
    return Real<int(int, mode_t)>("fchmod")(handle, mode);
}
int fchown(int handle, uid_t user, gid_t group) {
    if (Fails("fchown", handle)) return -1;
    return Real<int(int, uid_t, gid_t)>("fchown")(handle, user, group);
}
int stat(const char* path, struct stat* file) {
    if (Fails("stat", path)) return -1;
    return Real<int(const char*, struct stat*)>("stat")(path, file);
}
int lstat(const char* path, struct stat* file) {
    if (Fails("lstat", path)) return -1;
    return Real<int(const char*, struct stat*)>("lstat")(path, file);
}
int fstat(int handle, struct stat* file) {
    if (Fails("fstat", handle)) return -1;
    return Real<int(int, struct stat*)>("fstat")(handle, file);
}
int rename(const char* from, const char* to) {
    if (Fails("rename", from)) return -1;
    return Real<int(const char*, const char*)>("rename")(from, to);
}
int unlink(const char* path) {
    if (*Setting("FAULTS_REMOVALS") != '\0' && Fails("unlink", path)) return -1;
    return Real<int(const char*)>("unlink")(path);
}
int remove(const char* path) {
    if (*Setting("FAULTS_REMOVALS") != '\0' && Fails("remove", path)) return -1;
    return Real<int(const char*)>("remove")(path);
}
int mkdir(const char* path, mode_t mode) {
    if (Fails("mkdir", path)) return -1;
    return Real<int(const char*, mode_t)>("mkdir")(path, mode);
}
DIR* opendir(const char* path) {
    if (Fails("opendir", path)) return nullptr;
    return Real<DIR*(const char*)>("opendir")(path);
}
struct dirent* readdir(DIR* folder) {
    if (Fails("readdir", dirfd(folder))) return nullptr;
    return Real<struct dirent*(DIR*)>("readdir")(folder);
}
}
