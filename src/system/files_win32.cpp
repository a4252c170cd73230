// Files as Windows has them.
#include <windows.h>
// Stand on the one above.
#include <fcntl.h>
#include <io.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cwctype>

#include "core/platform.h"
#include "core/system_files.h"
#include "system/handles_win32.h"

namespace corvinade::core {

namespace fs = std::filesystem;

using system::IsGoing;
using system::IsPlainFile;
using system::kShared;
using system::LockApart;

namespace {

// --- Files that an end from outside removes ---------------------------------------------------------------

// The system calls its handler in a thread of its own, at any time: a place is filled before it is ready, and
// what stands at its path is removed only while it is the very file.
constexpr std::size_t kLongestPath = 1024;
struct Removal {
    std::atomic<bool> Taken{false}, Ready{false};
    DWORD Volume = 0, High = 0, Low = 0;
    std::array<wchar_t, kLongestPath> Path{};
};
constexpr std::size_t kMostRemovals = 32;
std::array<Removal, kMostRemovals> Removals;

bool IdentityAt(const wchar_t* path, BY_HANDLE_FILE_INFORMATION& found) {
    constexpr DWORD kAsItIs = FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT;
    const HANDLE file = CreateFileW(path, 0, kShared, nullptr, OPEN_EXISTING, kAsItIs, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    const bool good = GetFileInformationByHandle(file, &found) != 0;
    CloseHandle(file);
    return good;
}

void RemoveAll() {
    for (Removal& removal : Removals) {
        BY_HANDLE_FILE_INFORMATION now{};
        if (removal.Ready.load() && IdentityAt(removal.Path.data(), now) &&
            now.dwVolumeSerialNumber == removal.Volume && now.nFileIndexHigh == removal.High &&
            now.nFileIndexLow == removal.Low)
            DeleteFileW(removal.Path.data());
    }
}

void Remember(const fs::path& path, HANDLE file) {
    const std::wstring& text = path.native();
    BY_HANDLE_FILE_INFORMATION found{};
    if (text.size() >= kLongestPath || GetFileInformationByHandle(file, &found) == 0) return;
    for (Removal& removal : Removals) {
        if (removal.Taken.exchange(true)) continue;
        removal.Volume = found.dwVolumeSerialNumber;
        removal.High = found.nFileIndexHigh;
        removal.Low = found.nFileIndexLow;
        text.copy(removal.Path.data(), text.size());
        removal.Path[text.size()] = L'\0';
        removal.Ready.store(true);
        return;
    }
}

BOOL WINAPI EndFromOutside(DWORD /*reason*/) {
    RemoveAll();
    return FALSE;  // and then as if there had been no handler
}

// --- Files beside their targets ---------------------------------------------------------------------------

constexpr const wchar_t* kBesideMark = L".cvnew";
constexpr int kMostBeside = 1000, kLookedAt = 4;
constexpr std::size_t kLongestName = 255;

fs::path NameBeside(const fs::path& target, int number) {
    const std::wstring end = kBesideMark + std::to_wstring(number);
    std::wstring name = target.filename().native();
    if (name.size() <= kLongestName && name.size() + end.size() > kLongestName)
        name.resize(kLongestName - end.size());
    return target.parent_path() / (name + end);
}

// Removes what a killed program has left at this path. False where something stands there that is not such a
// thing, or is in use. Whose it is the system looks at: who may not remove a file cannot open it for that.
bool RemoveLeftBehind(const fs::path& path) {
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE | DELETE, kShared, nullptr,
                                    OPEN_EXISTING, FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    if (file == INVALID_HANDLE_VALUE) return GetLastError() == ERROR_FILE_NOT_FOUND;
    BY_HANDLE_FILE_INFORMATION found{};
    const bool left = IsPlainFile(file) && GetFileInformationByHandle(file, &found) != 0 &&
                      found.nNumberOfLinks == 1 && LockApart(file) && DeleteFileW(path.c_str()) != 0;
    CloseHandle(file);
    return left;
}

void RemoveLeftBehindFrom(const fs::path& target, int number) {
    try {
        for (int other = number; other < number + kLookedAt; ++other)
            RemoveLeftBehind(NameBeside(target, other));
    } catch (const std::bad_alloc&) {  // what it leaves the next write finds
    }
}

int ErrnoOf(DWORD error) {
    switch (error) {
        case ERROR_FILE_EXISTS:
        case ERROR_ALREADY_EXISTS:
            return EEXIST;
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
            return ENOENT;
        case ERROR_DISK_FULL:
        case ERROR_HANDLE_DISK_FULL:
            return ENOSPC;
        case ERROR_WRITE_PROTECT:
            return EROFS;
        case ERROR_ACCESS_DENIED:
        case ERROR_SHARING_VIOLATION:
            return EACCES;
        case ERROR_FILENAME_EXCED_RANGE:
            return ENAMETOOLONG;
        case ERROR_TOO_MANY_OPEN_FILES:
            return EMFILE;
        case ERROR_INVALID_NAME:
            return EINVAL;
        default:
            return EIO;
    }
}

std::int64_t NanosecondsOf(std::int64_t ticks) {
    constexpr std::int64_t kTick_ns = 100;
    constexpr std::int64_t kTicksTo1970 = 116444736000000000;
    return (ticks - kTicksTo1970) * kTick_ns;
}

}  // namespace

std::FILE* OpenStream(const fs::path& path, const char* mode) {
    return _wfopen(path.c_str(), system::Wide(mode).c_str());
}

std::FILE* OpenBeside(const fs::path& target, bool /*ownerOnly*/, fs::path& beside, int& error) {
    // Rights come from the folder: the user's own are the user's alone.
    constexpr DWORD kAccess = GENERIC_READ | GENERIC_WRITE | DELETE | READ_CONTROL | WRITE_DAC;
    for (int number = 1; number <= kMostBeside; ++number) {
        beside = NameBeside(target, number);
        if (!RemoveLeftBehind(beside)) continue;
        // Shared for removal as well: it takes its target's place while it is open.
        const HANDLE file = CreateFileW(beside.c_str(), kAccess, kShared, nullptr, CREATE_NEW,
                                        FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file == INVALID_HANDLE_VALUE) {
            error = ErrnoOf(GetLastError());
            if (error == EEXIST) continue;  // another program was quicker
            return nullptr;
        }
        // Without locks in this file system the file is taken for what it is all the same.
        const bool locked = LockApart(file) || GetLastError() != ERROR_LOCK_VIOLATION;
        if (!locked || IsGoing(file)) {
            CloseHandle(file);  // whoever has taken it for left behind removes it
            continue;
        }
        const int handle = _open_osfhandle(reinterpret_cast<std::intptr_t>(file), _O_BINARY);
        std::FILE* const stream = handle < 0 ? nullptr : _fdopen(handle, "wb");
        if (stream == nullptr) {
            error = errno;
            DeleteFileW(beside.c_str());
            if (handle < 0)
                CloseHandle(file);
            else
                _close(handle);
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
    return _commit(_fileno(file)) == 0;
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

std::string TakeOverRights(std::FILE* file, const fs::path& old, bool /*ownerOnly*/) {
    constexpr const char* kLost = "its rights could not be kept";
    DWORD size = 0;
    GetFileSecurityW(old.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
    if (size == 0) return kLost;
    std::string rights(size, '\0');
    const HANDLE handle = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(file)));
    const bool kept =
        GetFileSecurityW(old.c_str(), DACL_SECURITY_INFORMATION, rights.data(), size, &size) != 0 &&
        SetKernelObjectSecurity(handle, DACL_SECURITY_INFORMATION, rights.data()) != 0;
    return kept ? "" : kLost;
}

// The system keeps the names by a journal of its own.
bool FlushFolder(const fs::path& /*folder*/) {
    return true;
}

bool StampOfFile(const std::string& path, FileStamp& stamp) {
    const HANDLE file = CreateFileW(system::Wide(path).c_str(), FILE_READ_ATTRIBUTES, kShared, nullptr,
                                    OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    BY_HANDLE_FILE_INFORMATION found{};
    FILE_BASIC_INFO times{};
    const bool good = GetFileInformationByHandle(file, &found) != 0 &&
                      GetFileInformationByHandleEx(file, FileBasicInfo, &times, sizeof times) != 0;
    CloseHandle(file);
    if (!good) return false;
    constexpr unsigned kHalf = 32;
    stamp = {found.dwVolumeSerialNumber, std::uint64_t{found.nFileIndexHigh} << kHalf | found.nFileIndexLow,
             std::uint64_t{found.nFileSizeHigh} << kHalf | found.nFileSizeLow,
             NanosecondsOf(times.LastWriteTime.QuadPart), NanosecondsOf(times.ChangeTime.QuadPart)};
    return true;
}

// A folder cannot be locked here; a mutex that bears the name of the folder can.
FolderLock::FolderLock(const std::string& folder) {
    constexpr DWORD kLongest_ms = 5000;
    std::error_code error;
    const fs::path path = fs::weakly_canonical(fs::path(system::Wide(folder.empty() ? "." : folder)), error);
    std::uint64_t mark = 14695981039346656037U;  // FNV-1a
    for (const wchar_t letter : path.native()) mark = (mark ^ std::towlower(letter)) * 1099511628211U;
    const std::wstring name = L"Global\\corvinade-folder-" + std::to_wstring(mark);
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, name.c_str());
    if (mutex == nullptr) return;  // what is to be done there goes on without
    if (WaitForSingleObject(mutex, kLongest_ms) == WAIT_TIMEOUT) {
        CloseHandle(mutex);
        throw PlatformError{"Cannot write into the folder \"" + folder +
                            "\": another program is writing there"};
    }
    // Handles have 32 bits that count, by the system's word.
    handle_ = static_cast<int>(reinterpret_cast<std::intptr_t>(mutex));
}

FolderLock::~FolderLock() {
    if (handle_ < 0) return;
    const HANDLE mutex = reinterpret_cast<HANDLE>(static_cast<std::intptr_t>(handle_));
    ReleaseMutex(mutex);
    CloseHandle(mutex);
}

void RemoveFilesBesideNow() noexcept {
    RemoveAll();
}

void RemoveFilesBesideAtSignals() {
    SetConsoleCtrlHandler(EndFromOutside, TRUE);
}

}  // namespace corvinade::core
