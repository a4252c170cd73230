// What stands at a path.
#include "core/file_state.h"

#include <system_error>

#include "core/held_streams.h"
#include "core/platform.h"

namespace corvinade::core {

namespace fs = std::filesystem;

namespace {

std::string TextOf(const fs::path& path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

[[noreturn]] void CannotTell(const fs::path& path, const std::string& why) {
    throw PlatformError{"Cannot tell what is at \"" + TextOf(path) + "\": " + why};
}

}  // namespace

PathKind KindOfPath(const fs::path& path) {
    if (path.empty()) return PathKind::Nothing;
    if (LookFaults.Refuse) {
        const std::string why = LookFaults.Refuse(TextOf(path));
        if (!why.empty()) CannotTell(path, why);
    }
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    switch (status.type()) {
        case fs::file_type::not_found:
            return PathKind::Nothing;
        case fs::file_type::regular:
            return PathKind::File;
        case fs::file_type::directory:
            return PathKind::Folder;
        case fs::file_type::none:
            // No file can have a name that is too long; links in a circle lead to none.
            if (error == std::errc::filename_too_long || error == std::errc::too_many_symbolic_link_levels)
                return PathKind::Nothing;
            CannotTell(path, error.message());
        default:
            return PathKind::Other;
    }
}

PathKind KindOfPath(const std::string& path) {
    return KindOfPath(fs::path(std::u8string(path.begin(), path.end())));
}

bool FileIsThere(const std::string& path) {
    return HeldStream(path) != nullptr || KindOfPath(path) == PathKind::File;
}

bool FolderIsThere(const std::string& path) {
    return KindOfPath(path) == PathKind::Folder;
}

}  // namespace corvinade::core
