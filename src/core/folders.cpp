// Lists of files, folders and drives.
#include "core/folders.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "core/file_state.h"
#include "core/files.h"
#include "core/platform.h"

namespace corvinade::core {

namespace fs = std::filesystem;

namespace {

fs::path PathOf(const std::string& path) {
    return fs::path(std::u8string(path.begin(), path.end()));
}

std::string TextOf(const fs::path& path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

// The names in a folder for which `wanted` holds; `error` tells why there are not all.
template <class Wanted>
std::vector<std::string> NamesIn(const std::string& folder, Wanted wanted, std::error_code& error) {
    std::vector<std::string> names;
    fs::directory_iterator entry(PathOf(folder), error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        // An entry that nothing can be told of is not one that is not wanted.
        std::error_code none;
        if (entry->status(none).type() == fs::file_type::none) {
            error = none;
            break;
        }
        if (!wanted(*entry, none)) continue;
        names.push_back(TextOf(entry->path().filename()));
    }
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace

std::vector<std::string> FilesOfFolder(const std::string& folder) {
    if (!FolderIsThere(folder)) return {};
    std::error_code error;
    std::vector<std::string> names = NamesIn(
        folder, [](const auto& entry, std::error_code& none) { return entry.is_regular_file(none); }, error);
    if (error) throw PlatformError{"Cannot read the folder \"" + folder + "\": " + error.message()};
    return names;
}

std::vector<std::string> FoldersOfFolder(const std::string& folder) {
    std::error_code error;
    std::vector<std::string> names = NamesIn(
        folder, [](const auto& entry, std::error_code& none) { return entry.is_directory(none); }, error);
    std::erase_if(names, [](const std::string& name) { return name.starts_with('.'); });
    return names;
}

std::vector<std::string> Drives() {
    if (fs::path::preferred_separator == '/') return {"/"};
    std::vector<std::string> drives;
    for (char letter = 'A'; letter <= 'Z'; ++letter) {
        const std::string drive = std::string(1, letter) + ":\\";
        if (Directory_Exist(drive)) drives.push_back(drive);
    }
    return drives;
}

std::string NameOfFile(const std::string& path) {
    return TextOf(PathOf(path).filename());
}

std::string PlainFolder(const std::string& folder) {
    const fs::path path = PathOf(AbsolutePath(folder));
    return TextOf(path.has_filename() || path == path.root_path() ? path : path.parent_path());
}

std::string FolderAbove(const std::string& folder) {
    return TextOf(PathOf(folder).parent_path());
}

}  // namespace corvinade::core
