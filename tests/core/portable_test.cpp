// What belongs to one platform stands in the platform files.
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>

#include "support/fixture.h"

using namespace corvinade;

namespace {

// The headers of a system that a source takes: those of C's style, but for the one that all C libraries have.
std::set<std::string> SystemHeadersOf(const std::string& text) {
    static const std::regex kInclude(R"(^\s*#\s*include\s*<([a-z0-9_/]+\.h)>.*)");
    std::set<std::string> headers;
    std::istringstream lines(text);
    std::smatch found;
    for (std::string line; std::getline(lines, line);)
        if (std::regex_match(line, found, kInclude) && found[1] != "malloc.h") headers.insert(found[1]);
    return headers;
}

bool IsPlatformFile(const std::string& file) {
    return file.starts_with("system/") &&
           (file.ends_with("_posix.cpp") || file.ends_with("_win32.cpp") || file.ends_with("_win32.h"));
}

}  // namespace

TEST(Portable, HeadersOfASystemStandInThePlatformFilesAlone) {
    namespace fs = std::filesystem;
    const fs::path source = fs::path(CORVINADE_SOURCE_DIR) / "src";
    std::set<std::string> inPlatformFiles;
    int seen = 0;
    for (const auto& entry : fs::recursive_directory_iterator(source)) {
        const std::string end = entry.path().extension().string();
        if (end != ".cpp" && end != ".h" && end != ".inl") continue;
        const std::string file = fs::relative(entry.path(), source).generic_string();
        const std::set<std::string> headers = SystemHeadersOf(Contents(entry.path().string()));
        ++seen;
        if (IsPlatformFile(file))
            inPlatformFiles.insert(headers.begin(), headers.end());
        else
            EXPECT_TRUE(headers.empty()) << file << " takes <" << *headers.begin() << ">";
    }
    EXPECT_GT(seen, 500);
    // The look finds what there is.
    EXPECT_TRUE(inPlatformFiles.contains("unistd.h"));
    EXPECT_TRUE(inPlatformFiles.contains("sys/stat.h"));
    EXPECT_EQ(SystemHeadersOf("int a;\n# include <windows.h>  // all of it\n#include <vector>\n"),
              std::set<std::string>{"windows.h"});
}

// A procedure of one platform alone would be missed by whoever links the other one.
TEST(Portable, BothPlatformsHaveTheSameFiles) {
    namespace fs = std::filesystem;
    std::set<std::string> posix, win32;
    for (const auto& entry : fs::directory_iterator(fs::path(CORVINADE_SOURCE_DIR) / "src" / "system")) {
        if (entry.path().extension() != ".cpp") continue;
        const std::string name = entry.path().stem().string();
        const std::size_t mark = name.rfind('_');
        ASSERT_NE(mark, std::string::npos) << name;
        (name.substr(mark) == "_posix" ? posix : win32).insert(name.substr(0, mark));
    }
    EXPECT_FALSE(posix.empty());
    EXPECT_EQ(posix, win32);
}
