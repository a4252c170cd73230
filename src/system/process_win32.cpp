// A program among others, and its memory, as Windows has them.
#include <windows.h>
// Stand on the one above.
#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

#include <csignal>
#include <filesystem>

#include "core/large_pages.h"
#include "core/system_process.h"
#include "system/handles_win32.h"

namespace corvinade::core {

using system::Utf8;
using system::Wide;

// What main gets is in the code page of the system, which has few letters.
std::vector<std::string> ProgramArguments(int count, char** arguments) {
    int wideCount = 0;
    wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &wideCount);
    if (wide == nullptr) return {arguments, arguments + count};
    std::vector<std::string> texts;
    for (int i = 0; i < wideCount; ++i) texts.push_back(Utf8(wide[i]));
    LocalFree(wide);
    return texts;
}

void PrepareStandardStreams() {
    for (std::FILE* stream : {stdin, stdout, stderr}) _setmode(_fileno(stream), _O_BINARY);
    SetConsoleOutputCP(CP_UTF8);
    SetConsoleCP(CP_UTF8);
}

bool IsTerminal(std::FILE* stream) {
    // _isatty takes every device for one, the empty one too.
    DWORD mode = 0;
    return GetConsoleMode(reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream))), &mode) != 0;
}

std::optional<std::string> VariableOfSystem(const std::string& name) {
    const std::wstring wide = Wide(name);
    std::wstring value(1, L'\0');
    for (;;) {
        SetLastError(ERROR_SUCCESS);
        const auto room = static_cast<DWORD>(value.size());
        const DWORD size = GetEnvironmentVariableW(wide.c_str(), value.data(), room);
        if (size == 0 && GetLastError() != ERROR_SUCCESS) return std::nullopt;
        if (size < room) return Utf8(std::wstring_view(value).substr(0, size));
        value.resize(size);  // its end included; it may have grown meanwhile
    }
}

std::string RunningProgram() {
    constexpr std::size_t kLongest = 32768;
    std::wstring path(kLongest, L'\0');
    const DWORD size = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    return size >= path.size() ? "" : Utf8(std::wstring_view(path).substr(0, size));
}

void EndAtOnce(const char* text, std::size_t length, int status) noexcept {
    DWORD written = 0;
    WriteFile(GetStdHandle(STD_ERROR_HANDLE), text, static_cast<DWORD>(length), &written, nullptr);
    _exit(status);
}

// Windows asks a program with windows by messages, which its toolkit answers.
int KeepEndingSignals() {
    return -1;
}

int TakeEndingSignal() {
    return 0;
}

void EndBySignal(int signal) {
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

// Large pages want a right here that users do not have.
void PreferLargePages(void* /*block*/, std::size_t /*size*/) {}

}  // namespace corvinade::core
