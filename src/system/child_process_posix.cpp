// Other programs as POSIX systems run them.
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <thread>

#include "core/child_process.h"

extern char** environ;

namespace corvinade::core {

namespace {

// Both ends are closed in other programs that start meanwhile, or the pipe would not end with its own.
struct Pipe {
    int Ends[2] = {-1, -1};
    bool Open() { return pipe2(Ends, O_CLOEXEC) == 0; }
    void Close(int end) {
        if (Ends[end] >= 0) close(Ends[end]);
        Ends[end] = -1;
    }
    Pipe() = default;
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    ~Pipe() {
        Close(0);
        Close(1);
    }
};

// Takes what has come; false at the end.
bool TakeFrom(int handle, std::string& text) {
    std::array<char, 65536> part;
    const ssize_t count = read(handle, part.data(), part.size());
    if (count < 0) return errno == EINTR || errno == EAGAIN;
    text.append(part.data(), static_cast<std::size_t>(count));
    return count > 0;
}

// Both at once: a program that waits for room in one of them would never end the other.
void TakeBoth(Pipe& out, Pipe& err, ChildEnd& end) {
    std::array<pollfd, 2> watched = {pollfd{out.Ends[0], POLLIN, 0}, pollfd{err.Ends[0], POLLIN, 0}};
    const std::array<std::string*, 2> texts = {&end.Out, &end.Err};
    while (watched[0].fd >= 0 || watched[1].fd >= 0) {
        if (poll(watched.data(), watched.size(), -1) < 0 && errno != EINTR) return;
        for (std::size_t i = 0; i < watched.size(); ++i)
            if (watched[i].fd >= 0 && watched[i].revents != 0 && !TakeFrom(watched[i].fd, *texts[i]))
                watched[i].fd = -1;
    }
}

}  // namespace

ChildEnd RunChild(const std::string& program, const std::vector<std::string>& arguments) {
    ChildEnd end;
    Pipe out, err;
    if (!out.Open() || !err.Open()) {
        end.Refused = std::strerror(errno);
        return end;
    }
    std::vector<char*> argv = {const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, out.Ends[1], 1);
    posix_spawn_file_actions_adddup2(&actions, err.Ends[1], 2);
    pid_t child = -1;
    const int refused = posix_spawn(&child, program.c_str(), &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    out.Close(1);
    err.Close(1);
    if (refused != 0) {
        end.Refused = std::strerror(refused);
        return end;
    }
    TakeBoth(out, err, end);
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    if (WIFEXITED(status)) end.Status = WEXITSTATUS(status);
    if (WIFSIGNALED(status)) end.Signal = WTERMSIG(status);
    return end;
}

int ProgramsAtOnce() {
    const unsigned count = std::thread::hardware_concurrency();
    return count == 0 ? 1 : static_cast<int>(count);
}

}  // namespace corvinade::core
