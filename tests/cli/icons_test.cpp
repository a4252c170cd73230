// The icons of the tool bars: one for every button, all of one hand.
#include <filesystem>
#include <regex>
#include <set>

#include "core/form_main.h"
#include "support/fixture.h"

using namespace corvinade;

namespace fs = std::filesystem;

namespace {

using Icons = Program;

const fs::path kIcons = fs::path(CORVINADE_SOURCE_DIR) / "src" / "ui" / "icons";

// The program's own icon stands on a ground of its own, so it alone may use white.
const std::string kProgramIcon = "corvinade.svg";

std::vector<fs::path> AllIcons() {
    std::vector<fs::path> icons;
    for (const auto& entry : fs::directory_iterator(kIcons)) icons.push_back(entry.path());
    return icons;
}

// What stands in an attribute, each value once.
std::set<std::string> Values(const std::string& svg, const std::string& attribute) {
    std::set<std::string> values;
    const std::regex pattern("\\s" + attribute + "\\s*=\\s*[\"']([^\"']*)[\"']");
    for (std::sregex_iterator it(svg.begin(), svg.end(), pattern), end; it != end; ++it)
        values.insert((*it)[1]);
    return values;
}

TEST_F(Icons, EveryToolButtonOfTheMainWindowHasOne) {
    int buttons = 0;
    for (const ControlEntry& entry : FormMain_Entry.Controls) {
        if (entry.Place->Kind != ControlKind::ToolButton) continue;
        const std::string name = entry.Name;
        const std::string key = name.substr(name.find('.') + 1);
        EXPECT_TRUE(fs::is_regular_file(kIcons / (key + ".svg"))) << name;
        ++buttons;
    }
    EXPECT_EQ(buttons, 31);  // 3 + 1 + 3 + 17 + 3 + 4 of the six tool bars
}

TEST_F(Icons, MenusAndTheProgramHaveTheirs) {
    for (const char* name : {"MainSheet", "Units", "Options", "Help", "corvinade"})
        EXPECT_TRUE(fs::is_regular_file(kIcons / (std::string(name) + ".svg"))) << name;
}

TEST_F(Icons, UseTheNeutralAndTheAccentColourAlone) {
    for (const fs::path& icon : AllIcons()) {
        std::set<std::string> allowed = {"none", "#3c4653", "#2f7fd1"};
        if (icon.filename() == kProgramIcon) allowed.insert("#ffffff");
        const std::string svg = Contents(icon.string());
        std::set<std::string> colours = Values(svg, "fill");
        colours.merge(Values(svg, "stroke"));
        EXPECT_FALSE(colours.empty()) << icon;
        for (const std::string& colour : colours) EXPECT_TRUE(allowed.count(colour)) << icon << ' ' << colour;

        // Colours come in no other way, and nothing is fetched from elsewhere.
        for (const char* other : {"style", "color", "class", "stop-color", "href", "filter"})
            EXPECT_TRUE(Values(svg, other).empty()) << icon << ' ' << other;
        std::set<std::string> shapes;
        const std::regex element("<([A-Za-z]+)");
        for (std::sregex_iterator it(svg.begin(), svg.end(), element), end; it != end; ++it)
            shapes.insert((*it)[1]);
        for (const std::string& shape : shapes)
            EXPECT_TRUE((std::set<std::string>{"svg", "g", "path", "circle", "rect"}.count(shape)))
                << icon << ' ' << shape;
    }
}

TEST_F(Icons, ShareTheirSizeAndTheWidthOfTheirLines) {
    for (const fs::path& icon : AllIcons()) {
        if (icon.filename() == kProgramIcon) continue;
        const std::string svg = Contents(icon.string());
        EXPECT_EQ(Values(svg, "viewBox"), std::set<std::string>{"0 0 24 24"}) << icon;
        EXPECT_EQ(Values(svg, "stroke-width"), std::set<std::string>{"1.5"}) << icon;
        EXPECT_EQ(Values(svg, "stroke-linejoin"), std::set<std::string>{"round"}) << icon;
    }
}

}  // namespace
