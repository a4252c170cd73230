// The recipes of CONTRIBUTING.md are true: each file that they name is there, and holds what they say stands
// in it.
#include <filesystem>
#include <regex>
#include <set>
#include <sstream>

#include "support/fixture.h"

using namespace corvinade;

namespace fs = std::filesystem;

namespace {

const fs::path kTree = CORVINADE_SOURCE_DIR;

// One line of a recipe: "- `path`: what is done there, with `names` that stand in the file".
struct Step {
    std::string File;
    std::vector<std::string> Names;
};

struct Recipe {
    std::string Title;
    int Told = 0;  // the number of files in its heading
    std::vector<Step> Steps;
};

std::vector<std::string> InBackticks(const std::string& text) {
    std::vector<std::string> names;
    const std::regex pattern("`([^`]+)`");
    for (std::sregex_iterator it(text.begin(), text.end(), pattern), end; it != end; ++it)
        names.push_back((*it)[1]);
    return names;
}

// A line and those that are indented below it count as one.
std::vector<std::string> Items(const std::string& text) {
    std::vector<std::string> items;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (!items.empty() && line.starts_with("  ")) {
            items.back() += line.substr(1);
        } else {
            items.push_back(line);
        }
    }
    return items;
}

std::vector<Recipe> Recipes(const std::string& text) {
    std::vector<Recipe> recipes;
    const std::regex heading("### (.*) \\(([0-9]+) files\\)");
    bool inRecipe = false;
    for (const std::string& item : Items(text)) {
        std::smatch match;
        if (std::regex_match(item, match, heading)) {
            recipes.push_back({match[1], std::stoi(match[2]), {}});
            inRecipe = true;
        } else if (item.starts_with("#")) {
            inRecipe = false;
        } else if (inRecipe && item.starts_with("- ")) {
            std::vector<std::string> names = InBackticks(item);
            if (names.empty()) names.emplace_back();
            recipes.back().Steps.push_back({names.front(), {names.begin() + 1, names.end()}});
        }
    }
    return recipes;
}

// What is wrong with a step; "" when nothing is.
std::string Objection(const Step& step) {
    if (step.File.empty() || !fs::is_regular_file(kTree / step.File)) return "no such file: " + step.File;
    const std::string text = Contents((kTree / step.File).string());
    for (const std::string& name : step.Names)
        if (text.find(name) == std::string::npos) return step.File + " has no " + name;
    return "";
}

// The sources of the program that hold a text.
std::set<std::string> SourcesWith(const std::string& text) {
    std::set<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator(kTree / "src")) {
        const fs::path& path = entry.path();
        if (path.extension() != ".cpp" && path.extension() != ".h") continue;
        if (Contents(path.string()).find(text) != std::string::npos) names.insert(path.filename().string());
    }
    return names;
}

std::string Page() {
    return Contents((kTree / "CONTRIBUTING.md").string());
}

}  // namespace

TEST(Contributing, EveryRecipeNamesFilesThatAreThereAndWhatStandsInThem) {
    const std::vector<Recipe> recipes = Recipes(Page());
    EXPECT_EQ(recipes.size(), 8U);
    for (const Recipe& recipe : recipes) {
        SCOPED_TRACE(recipe.Title);
        EXPECT_EQ(static_cast<int>(recipe.Steps.size()), recipe.Told);
        for (const Step& step : recipe.Steps) EXPECT_EQ(Objection(step), "");
    }
}

TEST(Contributing, ARecipeThatIsNoLongerTrueIsSeen) {
    const std::vector<Recipe> recipes = Recipes(
        "### 1. Add a thing (3 files)\nSee `elsewhere`.\n\n- `src/core/job.h`: `JobRecord` and\n  `NoSuchField`\n"
        "- `src/core/no_such_file.h`: all\n- everything else\n\n## Habits\n\n- `not/a/step`\n");
    ASSERT_EQ(recipes.size(), 1U);
    EXPECT_EQ(recipes[0].Told, 3);
    ASSERT_EQ(recipes[0].Steps.size(), 3U);
    EXPECT_EQ(Objection(recipes[0].Steps[0]), "src/core/job.h has no NoSuchField");
    EXPECT_EQ(Objection(recipes[0].Steps[1]), "no such file: src/core/no_such_file.h");
    EXPECT_NE(Objection(recipes[0].Steps[2]), "");
    EXPECT_EQ(Objection({"src/core/job.h", {"JobRecord", "NormType"}}), "");
}

// Recipe 8 touches no other source than the reader and the row.
TEST(Contributing, ARobotProgramIsKnownInItsOwnFileAndInItsRow) {
    using Names = std::set<std::string>;
    const struct {
        const char *Reader, *Name, *File;
    } readers[] = {{"EinlesenKUKAdatDatei", "\"kuka\"", "kuka_file.cpp"},
                   {"EinlesenABB_MODX", "\"abb\"", "abb_file.cpp"},
                   {"EinlesenFanucDatei", "\"fanuc\"", "fanuc_file.cpp"},
                   {"EinlesenXYZABC", "\"xyzabc\"", "pose_text_files.cpp"}};
    for (const auto& [reader, name, file] : readers) {
        EXPECT_EQ(SourcesWith(reader), (Names{file, "robot_files.h"}));
        EXPECT_EQ(SourcesWith(name), Names{"robot_files.h"});
    }
    EXPECT_EQ(SourcesWith("TargetKind::Fanuc"), Names{"robot_files.h"});
}

TEST(Contributing, EveryPathThatThePageNamesIsThere) {
    int paths = 0;
    for (const std::string& name : InBackticks(Page())) {
        // A path has a folder of this tree in front, no blank and no wildcard.
        const std::string folder = name.substr(0, name.find('/'));
        if (name.find('/') == std::string::npos || !fs::is_directory(kTree / folder)) continue;
        if (name.find_first_of(" *") != std::string::npos) continue;
        EXPECT_TRUE(fs::exists(kTree / name)) << name;
        ++paths;
    }
    EXPECT_GT(paths, 50);
}

TEST(Contributing, ThePagesForContributorsLinkToFilesThatAreThere) {
    const std::regex link("\\]\\(([^)#]+)(#[^)]*)?\\)");
    for (const char* page : {"CONTRIBUTING.md", "CHANGELOG.md", "README.md"}) {
        const std::string text = Contents((kTree / page).string());
        EXPECT_FALSE(text.empty()) << page;
        for (std::sregex_iterator it(text.begin(), text.end(), link), end; it != end; ++it)
            EXPECT_TRUE(fs::exists(kTree / (*it)[1].str())) << page << ": " << (*it)[1];
    }
}
