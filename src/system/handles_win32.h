// What the platform files for Windows share: text in the letters of the system, and handles of files.
#pragma once

#include <windows.h>

#include <filesystem>
#include <string>
#include <string_view>

#include "core/rooms.h"

namespace corvinade::system {

inline std::string Utf8(std::wstring_view text) {
    const int length = static_cast<int>(text.size());
    const int size = WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string bytes(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, bytes.data(), size, nullptr, nullptr);
    return bytes;
}

inline std::wstring Wide(const std::string& text) {
    const int length = static_cast<int>(text.size());
    const int size = MultiByteToWideChar(CP_UTF8, 0, text.data(), length, nullptr, 0);
    std::wstring letters(static_cast<std::size_t>(size), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), length, letters.data(), size);
    return letters;
}

inline constexpr DWORD kShared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

// A file of the disk itself: no folder and no link.
inline bool IsPlainFile(HANDLE file) {
    BY_HANDLE_FILE_INFORMATION found{};
    constexpr DWORD kOthers = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
    return GetFileInformationByHandle(file, &found) != 0 && (found.dwFileAttributes & kOthers) == 0;
}

inline bool IsGoing(HANDLE file) {
    FILE_STANDARD_INFO found{};
    return GetFileInformationByHandleEx(file, FileStandardInfo, &found, sizeof found) != 0 &&
           found.DeletePending != 0;
}

// Takes a lock that ends with its handle, on a byte that no file reaches, so that everybody may read and
// write. False with GetLastError where it cannot.
inline bool LockApart(HANDLE file) {
    OVERLAPPED place{};
    place.OffsetHigh = 0x40000000;
    return LockFileEx(file, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &place) != 0;
}

}  // namespace corvinade::system
