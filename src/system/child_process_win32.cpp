// Other programs as Windows runs them.
#include <windows.h>

#include <array>
#include <system_error>
#include <thread>

#include "core/child_process.h"
#include "system/handles_win32.h"

namespace corvinade::core {

using system::Wide;

namespace {

std::string Words(DWORD error) {
    return std::system_category().message(static_cast<int>(error));
}

// A handle that closes by itself.
struct Handle {
    HANDLE Of = nullptr;
    void Close() {
        if (Of != nullptr && Of != INVALID_HANDLE_VALUE) CloseHandle(Of);
        Of = nullptr;
    }
    Handle() = default;
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() { Close(); }
};

// The end that is written to belongs to the other program alone.
struct Pipe {
    Handle Read, Write;
    bool Open() {
        SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
        return CreatePipe(&Read.Of, &Write.Of, &inherited, 0) != 0 &&
               SetHandleInformation(Read.Of, HANDLE_FLAG_INHERIT, 0) != 0;
    }
};

void TakeAll(HANDLE from, std::string& text) {
    std::array<char, 65536> part;
    DWORD count = 0;
    while (ReadFile(from, part.data(), static_cast<DWORD>(part.size()), &count, nullptr) != 0 && count > 0)
        text.append(part.data(), count);
}

// An argument as the usual start of a program takes the line apart: quotes around it, a backslash in front of
// those inside, and twice as many backslashes where a quote follows them.
std::wstring Quoted(const std::wstring& argument) {
    std::wstring text = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t c : argument) {
        if (c == L'\\') {
            ++backslashes;
            continue;
        }
        text.append(c == L'"' ? 2 * backslashes + 1 : backslashes, L'\\');
        text += c;
        backslashes = 0;
    }
    text.append(2 * backslashes, L'\\');
    return text + L'"';
}

// Only these handles go to the other program, whatever other threads have open meanwhile.
struct Inherited {
    LPPROC_THREAD_ATTRIBUTE_LIST List = nullptr;
    std::vector<char> Room;
    bool Take(HANDLE* handles, std::size_t count) {
        SIZE_T size = 0;
        InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
        Room.resize(size);
        List = reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(Room.data());
        if (InitializeProcThreadAttributeList(List, 1, 0, &size) == 0) {
            List = nullptr;
            return false;
        }
        return UpdateProcThreadAttribute(List, 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, handles,
                                         count * sizeof(HANDLE), nullptr, nullptr) != 0;
    }
    ~Inherited() {
        if (List != nullptr) DeleteProcThreadAttributeList(List);
    }
    Inherited() = default;
    Inherited(const Inherited&) = delete;
    Inherited& operator=(const Inherited&) = delete;
};

}  // namespace

ChildEnd RunChild(const std::string& program, const std::vector<std::string>& arguments) {
    ChildEnd end;
    Pipe out, err;
    Handle nothing;
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    nothing.Of = CreateFileW(L"NUL", GENERIC_READ, system::kShared, &inherited, OPEN_EXISTING, 0, nullptr);
    std::array<HANDLE, 3> handles{};
    Inherited taken;
    const bool stands = nothing.Of != INVALID_HANDLE_VALUE && out.Open() && err.Open();
    handles = {nothing.Of, out.Write.Of, err.Write.Of};
    if (!stands || !taken.Take(handles.data(), handles.size())) {
        end.Refused = Words(GetLastError());
        return end;
    }
    std::wstring line = Quoted(Wide(program));
    for (const std::string& argument : arguments) line += L' ' + Quoted(Wide(argument));
    STARTUPINFOEXW start{};
    start.StartupInfo.cb = sizeof start;
    start.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
    start.StartupInfo.hStdInput = handles[0];
    start.StartupInfo.hStdOutput = handles[1];
    start.StartupInfo.hStdError = handles[2];
    start.lpAttributeList = taken.List;
    PROCESS_INFORMATION started{};
    if (CreateProcessW(Wide(program).c_str(), line.data(), nullptr, nullptr, TRUE,
                       EXTENDED_STARTUPINFO_PRESENT, nullptr, nullptr, &start.StartupInfo, &started) == 0) {
        end.Refused = Words(GetLastError());
        return end;
    }
    Handle process, thread;
    process.Of = started.hProcess;
    thread.Of = started.hThread;
    out.Write.Close();
    err.Write.Close();
    // Both at once: a program that waits for room in one of them would never end the other.
    std::thread other([&] { TakeAll(err.Read.Of, end.Err); });
    TakeAll(out.Read.Of, end.Out);
    other.join();
    WaitForSingleObject(process.Of, INFINITE);
    DWORD status = 0;
    GetExitCodeProcess(process.Of, &status);
    end.Status = static_cast<int>(status);
    return end;
}

int ProgramsAtOnce() {
    const unsigned count = std::thread::hardware_concurrency();
    return count == 0 ? 1 : static_cast<int>(count);
}

}  // namespace corvinade::core
