// A program among others, and its memory, as POSIX systems have them.
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <filesystem>

#include "core/large_pages.h"
#include "core/system_process.h"

namespace corvinade::core {

namespace {

std::array<int, 2> Pipe{-1, -1};

extern "C" void TellOfSignal(int signal) {
    const int kept = errno;
    const auto number = static_cast<unsigned char>(signal);
    if (write(Pipe[1], &number, 1) != 1) _exit(1);
    errno = kept;
}

}  // namespace

std::vector<std::string> ProgramArguments(int count, char** arguments) {
    return {arguments, arguments + count};
}

void PrepareStandardStreams() {}

bool IsTerminal(std::FILE* stream) {
    return isatty(fileno(stream)) == 1;
}

std::optional<std::string> VariableOfSystem(const std::string& name) {
    const char* value = std::getenv(name.c_str());
    return value == nullptr ? std::nullopt : std::optional<std::string>(value);
}

std::string RunningProgram() {
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? "" : program.string();
}

void EndAtOnce(const char* text, std::size_t length, int status) noexcept {
    [[maybe_unused]] const auto written = write(STDERR_FILENO, text, length);
    _exit(status);
}

int KeepEndingSignals() {
    if (pipe(Pipe.data()) != 0) return -1;
    for (const int end : Pipe) fcntl(end, F_SETFD, FD_CLOEXEC);
    struct sigaction action {};
    action.sa_handler = TellOfSignal;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigemptyset(&action.sa_mask);
    for (const int signal : {SIGTERM, SIGHUP}) {
        struct sigaction before {};
        if (sigaction(signal, nullptr, &before) == 0 && before.sa_handler != SIG_IGN)
            sigaction(signal, &action, nullptr);
    }
    return Pipe[0];
}

int TakeEndingSignal() {
    unsigned char number = 0;
    return read(Pipe[0], &number, 1) == 1 ? number : 0;
}

void EndBySignal(int signal) {
    std::signal(signal, SIG_DFL);
    raise(signal);
}

void PreferLargePages([[maybe_unused]] void* block, [[maybe_unused]] std::size_t size) {
#if defined(MADV_HUGEPAGE)
    constexpr std::size_t kLargePage = std::size_t{1} << 21;
    const std::size_t before =
        (kLargePage - reinterpret_cast<std::uintptr_t>(block) % kLargePage) % kLargePage;
    if (size < before + kLargePage) return;
    // What the system answers changes the time alone.
    madvise(static_cast<char*>(block) + before, (size - before) / kLargePage * kLargePage, MADV_HUGEPAGE);
#endif
}

}  // namespace corvinade::core
