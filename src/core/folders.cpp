// Lists of files, folders and drives.
#include "core/folders.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "core/files.h"
#include "core/platform.h"

namespace fs = std::filesystem;

namespace {

// The names in a folder for which `wanted` holds; `error` tells why there are not all.
template <class Wanted>
std::vector<std::string> NamesIn(const std::string& folder, Wanted wanted, std::error_code& error) {
    std::vector<std::string> names;
    fs::directory_iterator entry(fs::path(std::u8string(folder.begin(), folder.end())), error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        std::error_code none;
        if (!wanted(*entry, none)) continue;
        const std::u8string name = entry->path().filename().u8string();
        names.emplace_back(name.begin(), name.end());
    }
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace

std::vector<std::string> FilesOfFolder(const std::string& folder) {
    if (!Directory_Exist(folder)) return {};
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
