// Files in pieces.
#include "core/file_source.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "core/files.h"
#include "core/held_streams.h"
#include "core/platform.h"
#include "core/system_files.h"

namespace corvinade::core {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void Fail(const std::string& path, const std::string& why) {
    throw PlatformError{"Cannot read \"" + path + "\": " + why};
}

fs::path PathOf(const std::string& path) {
    return fs::path(std::u8string(path.begin(), path.end()));
}

void CheckFault(const char* operation, const std::string& path) {
    if (!FileFaults.Refuse) return;
    const std::string why = FileFaults.Refuse(operation, path);
    if (!why.empty()) Fail(path, why);
}

}  // namespace

FileSource::FileSource(const std::string& path) : path_(path) {
    if (HeldStream(path) != nullptr) return;
    std::error_code error;
    const auto status = fs::status(PathOf(path), error);
    if (status.type() == fs::file_type::none && error != std::errc::filename_too_long)
        Fail(path, error.message());
    if (path.empty() || !fs::exists(status)) Fail(path, "there is no such file");
    if (fs::is_directory(status)) Fail(path, "it is a folder, not a file");
    CheckFault("open", path);
    file_ = OpenStream(PathOf(path), "rb");
    if (file_ == nullptr) Fail(path, std::strerror(errno));
    // Its reader has a buffer of its own.
    std::setvbuf(file_, nullptr, _IONBF, 0);
}

FileSource::~FileSource() {
    if (file_ != nullptr) std::fclose(file_);
}

std::size_t FileSource::Read(char* to, std::size_t most) {
    CheckFault("read", path_);
    if (const FileBytes* held = HeldStream(path_)) {
        const std::size_t count = std::min(most, held->Size - at_);
        std::memcpy(to, held->Data.get() + at_, count);
        at_ += count;
        return count;
    }
    const std::size_t count = std::fread(to, 1, most, file_);
    if (count < most && std::ferror(file_) != 0) Fail(path_, std::strerror(errno));
    return count;
}

bool IsPipe(const std::string& path) {
    std::error_code error;
    const auto status = fs::status(PathOf(path), error);
    return !path.empty() && fs::exists(status) && !fs::is_regular_file(status) && !fs::is_directory(status);
}

}  // namespace corvinade::core
