// The house's own rules: includes never run up, files stay small, texts are plain UTF-8.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <regex>
#include <set>
#include <sstream>

#include "support/fixture.h"

using namespace corvinade;

namespace fs = std::filesystem;

namespace {

const fs::path kSource = CORVINADE_SOURCE_DIR;

// Rooms of one floor know nothing of each other. What stands directly in src/ is above all rooms.
const std::map<std::string, int> kFloors = {
    {"fit", -1},   {"core", 0},     {"engine", 1},   {"import", 2}, {"paraboloid", 3},
    {"bundle", 3}, {"analysis", 3}, {"graphics", 4}, {"paint", 5},  {"cli", 6},
    {"ui", 6},     {"system", 6},   {"library", 6}};

const std::set<std::string> kStandardHeaders = {"algorithm",     "any",
                                                "array",         "atomic",
                                                "bit",           "bitset",
                                                "cctype",        "cerrno",
                                                "cfenv",         "cfloat",
                                                "charconv",      "chrono",
                                                "climits",       "clocale",
                                                "cmath",         "compare",
                                                "complex",       "concepts",
                                                "csignal",       "cstdarg",
                                                "cstddef",       "cstdint",
                                                "cstdio",        "cstdlib",
                                                "cstring",       "ctime",
                                                "cwchar",        "deque",
                                                "exception",     "filesystem",
                                                "forward_list",  "fstream",
                                                "functional",    "initializer_list",
                                                "iomanip",       "ios",
                                                "iosfwd",        "iostream",
                                                "istream",       "iterator",
                                                "limits",        "list",
                                                "locale",        "map",
                                                "memory",        "new",
                                                "numbers",       "numeric",
                                                "optional",      "ostream",
                                                "queue",         "random",
                                                "ranges",        "ratio",
                                                "set",           "span",
                                                "sstream",       "stack",
                                                "stdexcept",     "streambuf",
                                                "string",        "string_view",
                                                "system_error",  "tuple",
                                                "type_traits",   "typeindex",
                                                "typeinfo",      "unordered_map",
                                                "unordered_set", "utility",
                                                "valarray",      "variant",
                                                "vector",        "version"};

// One thread does the work; a second one only writes what the first has made.
const std::set<std::string> kThreadHeaders = {"condition_variable", "mutex", "thread"};
const std::string kThreadFile = "core/write_behind.";

struct Include {
    std::string File;  // relative to src/
    std::string Name;
    bool Quoted;
};

bool IsSource(const fs::path& path) {
    return path.extension() == ".cpp" || path.extension() == ".h" || path.extension() == ".inl";
}

std::vector<fs::path> FilesBelow(const fs::path& folder) {
    std::vector<fs::path> files;
    if (!fs::is_directory(folder)) return files;
    for (const auto& entry : fs::recursive_directory_iterator(folder))
        if (entry.is_regular_file()) files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

std::vector<Include> IncludesBelow(const fs::path& folder) {
    std::vector<Include> includes;
    for (const fs::path& path : FilesBelow(folder)) {
        if (!IsSource(path)) continue;
        std::istringstream lines(Contents(path.string()));
        for (std::string line; std::getline(lines, line);) {
            const std::size_t hash = line.find_first_not_of(" \t");
            if (hash == std::string::npos || line[hash] != '#') continue;
            const std::size_t word = line.find_first_not_of(" \t", hash + 1);
            if (word == std::string::npos) continue;
            // A loop in lanes is included by the name that its #define says.
            if (line.compare(word, 7, "include") != 0 && line.compare(word, 17, "define LANES_BODY") != 0)
                continue;
            const std::size_t open = line.find_first_of("\"<", word);
            if (open == std::string::npos)
                continue;  // the name that a #define above says, which is looked at
            const std::size_t close = line.find_first_of("\">", open + 1);
            includes.push_back({fs::relative(path, folder).generic_string(),
                                line.substr(open + 1, close - open - 1), line[open] == '"'});
        }
    }
    return includes;
}

std::vector<Include> AllIncludes() {
    return IncludesBelow(kSource / "src");
}

// The first part of a path; "" for a file directly in src/.
std::string RoomOf(const std::string& path) {
    const std::size_t slash = path.find('/');
    return slash == std::string::npos ? "" : path.substr(0, slash);
}

int FloorOf(const std::string& room) {
    const auto found = kFloors.find(room);
    return found == kFloors.end() ? 1000 : found->second;
}

// What is wrong with an include; "" when nothing is.
std::string Objection(const Include& include) {
    const std::string from = RoomOf(include.File);
    if (!from.empty() && !kFloors.contains(from)) return "is in no known room";
    if (!include.Quoted) {
        const bool plain = from.empty() || FloorOf(from) <= FloorOf("graphics");
        if (plain && kThreadHeaders.contains(include.Name))
            return include.File.starts_with(kThreadFile) ? "" : "begins a thread";
        return plain && !kStandardHeaders.contains(include.Name) ? "is no standard header" : "";
    }
    const std::string to = RoomOf(include.Name);
    if (from.empty()) return "";
    // The library stands on the mathematics and, where it reads files, on the readers; its headers are those
    // that its users have.
    if (from == "library" && (to == "corvinade" || to == from)) return "";
    if (from == "library")
        return FloorOf(to) <= FloorOf("import") ? "" : "is of more than mathematics and readers";
    if (to.empty()) return "stands above all rooms";
    if (!kFloors.contains(to)) return "is in no known room";
    return from == to || FloorOf(to) < FloorOf(from) ? "" : "runs up";
}

bool IsText(const fs::path& path) {
    static const std::set<std::string> kExtensions = {".cpp",   ".h",  ".inl", ".md",  ".txt",
                                                      ".cmake", ".ui", ".qrc", ".svg", ".json",
                                                      ".py",    ".sh", ".yml", ".csv", ".xml"};
    return kExtensions.contains(path.extension().string());
}

// The line that parts a file into sections: "// --- Title ---", 109 columns wide as all others. clang-format
// knows nothing of it and breaks one that is too long in two.
bool IsWholeRuler(const std::string& line) {
    const auto columns = std::count_if(
        line.begin(), line.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; });
    return line.starts_with("// --- ") && line.ends_with("---") && columns == 109;
}

// The first line of a header of a room that declares something outside of the rooms' namespaces; "" where
// none does. Names of others may be declared in front.
std::string OutsideOfRooms(const std::string& text) {
    static const std::regex kForeign("(class|struct) Q\\w+;");
    std::istringstream lines(text);
    std::ptrdiff_t depth = 0;  // of braces, from that of the namespace on
    bool define = false;
    for (std::string line; std::getline(lines, line);) {
        const bool inDefine = define;
        define = (line.starts_with("#") || inDefine) && line.ends_with("\\");
        if (inDefine || line.empty() || line.starts_with("#") || line.starts_with("//")) continue;
        const bool opens = line.starts_with("namespace corvinade") || line.starts_with("namespace CLI {");
        if (depth == 0 && !opens && !std::regex_match(line, kForeign)) return line;
        if (depth > 0 || opens)
            depth += std::count(line.begin(), line.end(), '{') - std::count(line.begin(), line.end(), '}');
    }
    return "";
}

}  // namespace

TEST(Floors, HeadersDeclareTheirNamesInTheNamespaceOfARoom) {
    int seen = 0;
    for (const fs::path& path : FilesBelow(kSource / "src")) {
        const std::string file = fs::relative(path, kSource / "src").generic_string(), room = RoomOf(file);
        if (room.empty() || path.extension() != ".h") continue;
        const std::string text = Contents(path.string());
        EXPECT_EQ(OutsideOfRooms(text), "") << file;
        // All rooms; defines alone.
        if (file == "core/rooms.h" || file == "fit/any_vectors.h") continue;
        EXPECT_NE(text.find("namespace corvinade::" + room), std::string::npos) << file;
        ++seen;
    }
    EXPECT_GT(seen, 200);
    EXPECT_EQ(OutsideOfRooms("#pragma once\nint Everywhere();\n"), "int Everywhere();");
}

TEST(Floors, NoIncludeRunsUp) {
    const std::vector<Include> includes = AllIncludes();
    EXPECT_GT(includes.size(), 50U);
    for (const Include& include : includes)
        EXPECT_EQ(Objection(include), "") << include.File << " includes " << include.Name;
}

TEST(Floors, AnIncludeThatRunsUpIsSeen) {
    EXPECT_EQ(Objection({"core/a.cpp", "core/b.h", true}), "");
    EXPECT_EQ(Objection({"engine/a.cpp", "core/b.h", true}), "");
    EXPECT_EQ(Objection({"windows.cpp", "graphics/b.h", true}), "");
    EXPECT_EQ(Objection({"ui/a.cpp", "QWidget", false}), "");
    EXPECT_EQ(Objection({"library/a.cpp", "corvinade/b.h", true}), "");
    EXPECT_EQ(Objection({"library/a.cpp", "fit/b.h", true}), "");
    EXPECT_EQ(Objection({"library/a.cpp", "import/b.h", true}), "");
    EXPECT_NE(Objection({"library/a.cpp", "analysis/b.h", true}), "");
    EXPECT_NE(Objection({"library/a.cpp", "cli/b.h", true}), "");
    EXPECT_NE(Objection({"core/a.cpp", "corvinade/b.h", true}), "");
    EXPECT_NE(Objection({"core/a.cpp", "engine/b.h", true}), "");
    EXPECT_NE(Objection({"import/a.h", "bundle/b.h", true}), "");
    EXPECT_NE(Objection({"bundle/a.h", "analysis/b.h", true}), "");
    EXPECT_NE(Objection({"cli/a.h", "ui/b.h", true}), "");
    EXPECT_NE(Objection({"graphics/a.cpp", "QPainter", false}), "");
    EXPECT_NE(Objection({"core/a.cpp", "unistd.h", false}), "");
    EXPECT_NE(Objection({"core/a.cpp", "b.h", true}), "");
    EXPECT_NE(Objection({"misc/a.cpp", "core/b.h", true}), "");
}

// A room says names of its own; of a room below it may name a class. What it said of one above would be a way
// to call upwards.
TEST(Floors, NoFileSaysNamesOfARoomAbove) {
    std::set<std::string> above;
    int seen = 0;
    static const std::regex kNamespace("namespace corvinade::([a-z]+) \\{");
    for (const fs::path& path : FilesBelow(kSource / "src")) {
        const std::string file = fs::relative(path, kSource / "src").generic_string(), room = RoomOf(file);
        if (!IsSource(path) || room.empty()) continue;
        const std::string text = Contents(path.string());
        for (std::sregex_iterator found(text.begin(), text.end(), kNamespace), end; found != end; ++found) {
            const std::string of = (*found)[1];
            if (of != room && FloorOf(of) >= FloorOf(room)) above.insert(file);
            ++seen;
        }
    }
    EXPECT_EQ(above, std::set<std::string>{});
    EXPECT_GT(seen, 500);
}

// The files of the first circle of includes that there is, in their order; empty where there is none.
std::vector<std::string> CircleOf(const std::map<std::string, std::set<std::string>>& included) {
    std::set<std::string> done;
    std::vector<std::string> way;
    const std::function<bool(const std::string&)> closes = [&](const std::string& file) {
        if (done.contains(file)) return false;
        const auto before = std::find(way.begin(), way.end(), file);
        if (before != way.end()) {
            way.erase(way.begin(), before);
            return true;
        }
        way.push_back(file);
        if (const auto found = included.find(file); found != included.end())
            for (const std::string& next : found->second)
                if (closes(next)) return true;
        way.pop_back();
        done.insert(file);
        return false;
    };
    for (const auto& [file, names] : included)
        if (closes(file)) return way;
    return {};
}

TEST(Floors, NoFilesIncludeEachOtherInACircle) {
    std::map<std::string, std::set<std::string>> included;
    for (const Include& include : AllIncludes())
        if (include.Quoted) included[include.File].insert(include.Name);
    EXPECT_EQ(CircleOf(included), std::vector<std::string>{});
    EXPECT_EQ(CircleOf({{"a", {"b"}}, {"b", {"c", "d"}}, {"d", {"e", "b"}}}),
              (std::vector<std::string>{"b", "d"}));
    EXPECT_EQ(CircleOf({{"a", {"b", "c"}}, {"b", {"c"}}}), std::vector<std::string>{});
}

// Of rooms above core/; that these stand on core/ and fit/ the drawing tells in the boxes.
TEST(Floors, TheDrawingHasTheArrowsOfTheIncludes) {
    std::set<std::string> included, drawn;
    for (const Include& include : AllIncludes()) {
        const std::string from = RoomOf(include.File), to = RoomOf(include.Name);
        if (include.Quoted && FloorOf(from) < 1000 && from != to && kFloors.contains(to) && FloorOf(to) > 0)
            included.insert(from + " includes " + to);
    }
    const std::string drawing = Contents((kSource / "docs/rooms.svg").string());
    const std::regex arrow("<title>([a-z]+)&#45;&gt;([a-z]+)</title>");
    for (std::sregex_iterator found(drawing.begin(), drawing.end(), arrow), end; found != end; ++found)
        if (FloorOf((*found)[2]) > 0) drawn.insert((*found)[1].str() + " includes " + (*found)[2].str());
    EXPECT_EQ(drawn, included) << "tools/rooms draws them anew";
}

TEST(Floors, EveryIncludedHeaderOfOursExists) {
    for (const Include& include : AllIncludes()) {
        if (!include.Quoted || !kFloors.contains(RoomOf(include.Name))) continue;
        EXPECT_TRUE(fs::exists(kSource / "src" / include.Name)) << include.File << ": " << include.Name;
    }
}

// The benchmarks are built by themselves, so that a header that has moved would be missed late.
TEST(Floors, EveryHeaderThatABenchmarkIncludesExists) {
    int looked = 0;
    for (const Include& include : IncludesBelow(kSource / "bench")) {
        if (!include.Quoted || include.Name.find('/') == std::string::npos) continue;
        ++looked;
        EXPECT_TRUE(fs::exists(kSource / "src" / include.Name)) << include.File << ": " << include.Name;
    }
    EXPECT_GT(looked, 50);
}

// An inline record of a window is built and torn down anew by the code of every source that sees it, which
// took half of the compiler's time.
TEST(Floors, TheRecordOfAWindowIsDefinedInItsSource) {
    int windows = 0;
    for (const fs::path& path : FilesBelow(kSource / "src")) {
        if (path.extension() != ".h") continue;
        std::istringstream lines(Contents(path.string()));
        for (std::string line; std::getline(lines, line);) {
            EXPECT_FALSE(line.starts_with("inline Form") && line.find('(') == std::string::npos)
                << path << ": " << line;
            windows += line.starts_with("extern Form") ? 1 : 0;
        }
    }
    EXPECT_GT(windows, 20);
}

TEST(Floors, NoSourceFileIsLongerThanFiveHundredLines) {
    for (const fs::path& path : FilesBelow(kSource / "src")) {
        if (!IsSource(path)) continue;
        const std::string text = Contents(path.string());
        EXPECT_LE(std::count(text.begin(), text.end(), '\n'), 500) << path;
    }
}

TEST(Floors, EveryKindOfSourceIsLookedAt) {
    std::set<std::string> extensions;
    for (const char* room : {"src", "tests", "bench"})
        for (const fs::path& path : FilesBelow(kSource / room))
            if (IsSource(path)) extensions.insert(path.extension().string());
    EXPECT_EQ(extensions, (std::set<std::string>{".cpp", ".h", ".inl"}));
    const std::vector<Include> includes = AllIncludes();
    const auto bodies = std::count_if(includes.begin(), includes.end(), [](const Include& include) {
        return include.Name.ends_with(".inl") && !include.Name.ends_with("all_widths.inl");
    });
    EXPECT_GE(bodies, 4);
}

TEST(Floors, ARulerThatIsBrokenIsSeen) {
    const std::string whole = "// --- Places " + std::string(95, '-');
    EXPECT_TRUE(IsWholeRuler(whole));
    EXPECT_TRUE(IsWholeRuler("// --- Maß " + std::string(98, '-')));
    EXPECT_FALSE(IsWholeRuler(whole + "-"));
    EXPECT_FALSE(IsWholeRuler("    " + whole.substr(0, 105)));
    EXPECT_FALSE(IsWholeRuler("// --- Places"));
    EXPECT_FALSE(IsWholeRuler("// " + std::string(106, '-')));
}

TEST(Floors, SectionRulersAreWholeAndAsLongAsAllOthers) {
    int rulers = 0;
    for (const char* room : {"src", "tests", "bench"})
        for (const fs::path& path : FilesBelow(kSource / room)) {
            if (!IsSource(path)) continue;
            std::istringstream lines(Contents(path.string()));
            int number = 0;
            for (std::string line; std::getline(lines, line);) {
                ++number;
                const std::size_t text = line.find_first_not_of(" \t");
                if (text == std::string::npos || line.compare(text, 6, "// ---") != 0) continue;
                ++rulers;
                EXPECT_TRUE(IsWholeRuler(line)) << path << ":" << number << ": " << line;
            }
        }
    EXPECT_GT(rulers, 50);
}

TEST(Floors, TextsHaveNoByteOrderMarkNoCarriageReturnAndComposedUmlauts) {
    int checked = 0;
    for (const char* folder : {"src", "tests", "bench", "docs", "examples"})
        for (const fs::path& path : FilesBelow(kSource / folder)) {
            const std::string relative = fs::relative(path, kSource).generic_string();
            // Input of a user may look as it likes.
            if (relative.starts_with("tests/data/") || relative.starts_with("examples/")) {
                if (path.extension() != ".md") continue;
            }
            if (!IsText(path)) continue;
            const std::string text = Contents(path.string());
            EXPECT_FALSE(text.starts_with("\xEF\xBB\xBF")) << relative;
            EXPECT_EQ(text.find('\r'), std::string::npos) << relative;
            EXPECT_EQ(text.find("\xCC\x88"), std::string::npos)
                << relative;  // the trema as its own character
            ++checked;
        }
    EXPECT_GT(checked, 50);
}

TEST(Floors, NamesOfSourceFilesAreAscii) {
    for (const char* folder : {"src", "tests", "bench"})
        for (const fs::path& path : FilesBelow(kSource / folder)) {
            if (!IsSource(path)) continue;
            for (const char c : path.filename().string())
                EXPECT_LT(static_cast<unsigned char>(c), 0x80) << path;
        }
}
