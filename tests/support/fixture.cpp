// What every test stands on.
#include "support/fixture.h"

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "cli/headless.h"
#include "core/files.h"
#include "core/fresh_start.h"
#include "core/platform.h"
#include "graphics/screen_window.h"

using namespace corvinade;

Program::Program() {
    FreshStart();
    Headless = HeadlessRecord{};
    Headless.Decimal = '.';
    FileFaults = FileFaultRecord{};
    FillSurface = nullptr;
    const auto* test = testing::UnitTest::GetInstance()->current_test_info();
    std::string name = std::string(test->test_suite_name()) + "." + test->name();
    for (char& c : name)
        if (c == '/') c = '_';
    folder_ =
        (std::filesystem::temp_directory_path() / ("corvinade-tests-" + std::to_string(getpid())) / name)
            .string();
    std::filesystem::remove_all(folder_);
    std::filesystem::create_directories(folder_);
    Headless.SettingsDir = folder_ + "/settings";
    Headless.ProgramDir = folder_ + "/program";
}

Program::~Program() {
    FileFaults = FileFaultRecord{};
    if (!expectUnanswered_ && Headless.Unanswered)
        ADD_FAILURE() << "a question came up that the test did not expect: " << LastMessage();
    std::error_code error;
    std::filesystem::remove_all(folder_, error);
    std::filesystem::remove(std::filesystem::path(folder_).parent_path(), error);
}

std::string Program::PathOf(const std::string& name) const {
    return folder_ + "/" + name;
}

std::string Program::Write(const std::string& name, const std::string& content) const {
    const std::string path = PathOf(name);
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    // Some file systems flush a file that is written over to the disk, thousands of times in a fuzz test.
    std::error_code none;
    std::filesystem::remove(path, none);
    std::ofstream(path, std::ios::binary) << content;
    return path;
}

std::vector<std::string> Messages() {
    std::vector<std::string> texts;
    for (const DialogShown& dialog : Headless.Dialogs)
        if (dialog.Kind == "message") texts.push_back(dialog.Text);
    return texts;
}

std::string LastMessage() {
    const std::vector<std::string> texts = Messages();
    return texts.empty() ? "" : texts.back();
}

std::string ErrorOf(const std::function<void()>& work) {
    try {
        work();
    } catch (const PlatformError& error) {
        return error.What;
    }
    return "";
}

std::string Contents(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

std::string CrLf(std::string text) {
    std::string result;
    for (const char c : text) {
        if (c == '\n') result += '\r';
        result += c;
    }
    return result;
}
