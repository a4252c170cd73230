// A control of a window stands once: its row says name, member, kind and caption, handlers and menu, and the
// struct declares the member alone.
#include <algorithm>
#include <filesystem>
#include <regex>
#include <set>
#include <sstream>

#include "core/form_main.h"
#include "core/fresh_start.h"
#include "core/window.h"
#include "support/fixture.h"

using namespace corvinade;

namespace fs = std::filesystem;

namespace {

// What is wrong with the rows of a source: a row whose name is not that of its member. `rows` counts them.
std::vector<std::string> FaultsOfRows(const std::string& text, int& rows) {
    // "Toolbar2.FileNew" is the member Toolbar2_FileNew.
    static const std::regex kRow("\"([^\"]+)\",\\s*&\\w+\\.([^ ,})]+)");
    std::vector<std::string> faults;
    for (std::sregex_iterator row(text.begin(), text.end(), kRow), end; row != end; ++row) {
        std::string member = (*row)[1];
        std::replace(member.begin(), member.end(), '.', '_');
        if (member != (*row)[2]) faults.push_back((*row)[1].str() + " is " + (*row)[2].str());
        ++rows;
    }
    return faults;
}

// The controls that the structs of a header declare, and those of them that it says more of than the name.
struct Declared {
    std::set<std::string> Names, Said;
};
Declared DeclaredIn(const std::string& text) {
    static const std::regex kDeclaration("\n    Control ([^;(]*(?:\\([^;]*)?);");
    Declared declared;
    for (std::sregex_iterator found(text.begin(), text.end(), kDeclaration), end; found != end; ++found) {
        const std::string all = (*found)[1];
        if (all.find_first_of("=({") != std::string::npos) {
            declared.Said.insert(all);
            continue;
        }
        std::istringstream names(std::regex_replace(all, std::regex("\\s+"), ""));
        for (std::string name; std::getline(names, name, ',');) declared.Names.insert(name);
    }
    return declared;
}

}  // namespace

TEST(Controls, EachIsMadeByItsRowAndByNoOther) {
    std::set<const Control*> places;
    for (const WindowEntry* window : AllWindows()) {
        std::set<std::string> names;
        for (const ControlEntry& entry : window->Controls) {
            const std::string name = std::string(window->Name) + "." + entry.Name;
            EXPECT_TRUE(entry.Made.has_value()) << name << ": the row does not say what it is";
            EXPECT_TRUE(names.insert(entry.Name).second) << name << " has two rows";
            EXPECT_TRUE(places.insert(entry.Place).second) << name << ": another row has this member too";
        }
    }
    EXPECT_GT(places.size(), 500U);
}

TEST(Controls, AFreshWindowIsFilledFromItsRows) {
    for (const WindowEntry* window : AllWindows()) {
        for (const ControlEntry& entry : window->Controls) {
            *entry.Place = Plot();
            entry.Place->Text = "of before";
        }
        MakeFresh(*window);
        for (const ControlEntry& entry : window->Controls) {
            if (!entry.Made) continue;
            const Control &now = *entry.Place, &made = *entry.Made;
            EXPECT_EQ(now.Kind, made.Kind) << entry.Name;
            EXPECT_EQ(now.Text, made.Text) << entry.Name;
            EXPECT_EQ(now.Value, made.Value) << entry.Name;
            EXPECT_EQ(now.Entry, nullptr) << entry.Name;
        }
    }
    FreshStart();
    EXPECT_EQ(Main.MenuFileExit.Text, "E&xit");
    EXPECT_EQ(Main.Toolbar2_FileNew.ToolTip, "New job");
    EXPECT_FALSE(Main.StatusBar_Notes.Visible);
}

// The language cannot hold these two together.
TEST(Controls, NamesAreThoseOfTheMembers) {
    int rows = 0;
    for (const auto& entry : fs::recursive_directory_iterator(fs::path(CORVINADE_SOURCE_DIR) / "src")) {
        if (entry.path().extension() != ".cpp") continue;
        const std::string text = Contents(entry.path().string());
        const std::size_t begin = text.find("const ControlEntry kControls[]");
        if (begin == std::string::npos) continue;
        const std::string table = text.substr(begin, text.find("};", begin) - begin);
        EXPECT_EQ(FaultsOfRows(table, rows), std::vector<std::string>{}) << entry.path();
    }
    std::size_t controls = 0;
    for (const WindowEntry* window : AllWindows()) controls += window->Controls.size();
    EXPECT_EQ(static_cast<std::size_t>(rows), controls);
}

TEST(Controls, AStructSaysNothingOfItsControlsButTheirNames) {
    std::size_t members = 0, controls = 0;
    for (const auto& entry : fs::recursive_directory_iterator(fs::path(CORVINADE_SOURCE_DIR) / "src")) {
        if (entry.path().extension() != ".h") continue;
        const std::string text = Contents(entry.path().string());
        if (text.find("    WindowState Window") == std::string::npos) continue;
        const Declared declared = DeclaredIn(text);
        EXPECT_EQ(declared.Said, std::set<std::string>{}) << entry.path();
        members += declared.Names.size();
    }
    for (const WindowEntry* window : AllWindows()) controls += window->Controls.size();
    EXPECT_EQ(members, controls) << "a member has no row";
}

TEST(Controls, ARowAndAStructThatSayOtherwiseAreSeen) {
    int rows = 0;
    EXPECT_EQ(
        FaultsOfRows("    {\"BtnOK\", &w.BtnOK, Button(\"OK\")},\n    {\"Größe\",\n     &w.Größe},\n"
                     "    Command(\"Bar.Key\", &Main.Bar_Key, Menu(\"\")),\n    {\"BtnNo\", &w.BtnOK},\n",
                     rows),
        std::vector<std::string>{"BtnNo is BtnOK"});
    EXPECT_EQ(rows, 4);
    const Declared declared = DeclaredIn(
        "struct A {\n    Control One;\n    Control Two,\n        Three;\n    Control Four = Button(\"4\");\n"
        "    std::string Five;\n};\nControl Six();\n");
    EXPECT_EQ(declared.Names, (std::set<std::string>{"One", "Two", "Three"}));
    EXPECT_EQ(declared.Said, std::set<std::string>{"Four = Button(\"4\")"});
}
