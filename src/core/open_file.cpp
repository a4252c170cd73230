// Opening with the user's editor or the desktop.
#include "core/open_file.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "core/folders.h"
#include "core/platform.h"
#include "core/settings.h"
#include "core/text.h"

namespace corvinade::core {

namespace fs = std::filesystem;

namespace {

constexpr std::array<std::string_view, 32> kProgramEnds = {
    ".APP", ".APPIMAGE", ".BAT", ".CHM", ".CMD", ".COM", ".CPL", ".DEB", ".DESKTOP", ".DLL", ".EXE",
    ".HTA", ".INF",      ".JAR", ".JS",  ".JSE", ".LNK", ".MSI", ".MSP", ".PIF",     ".PS1", ".PY",
    ".REG", ".RPM",      ".RUN", ".SCF", ".SCR", ".SH",  ".URL", ".VBE", ".VBS",     ".WSF"};

}  // namespace

bool CouldBeProgram(const std::string& path) {
    const std::string upper = UpperAscii(NameOfFile(path));
    if (std::any_of(kProgramEnds.begin(), kProgramEnds.end(),
                    [&upper](std::string_view end) { return upper.ends_with(end); }))
        return true;
    std::error_code error;
    const fs::file_status status = fs::status(std::u8string(path.begin(), path.end()), error);
    constexpr fs::perms kAnyRun = fs::perms::owner_exec | fs::perms::group_exec | fs::perms::others_exec;
    return fs::is_regular_file(status) && (status.permissions() & kAnyRun) != fs::perms::none;
}

void OpenToLookAt(const std::string& path) {
    if (!Settings.Editor.empty()) return StartFile(Settings.Editor, path);
    if (CouldBeProgram(path) &&
        !AskYesNo("This file could be a program, which opening it would start:" + std::string(kLineEnd) +
                  kLineEnd + path + kLineEnd + kLineEnd + "Do you want to open it?"))
        return;
    StartFile("Open", path);
}

}  // namespace corvinade::core
