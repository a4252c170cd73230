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

// The rows of a table: how many, the members that they are of, and those whose name is not that of their
// member.
struct RowsSeen {
    std::size_t Count = 0;
    std::set<std::string> Members;
    std::vector<std::string> Faults;
};
RowsSeen RowsIn(const std::string& text) {
    static const std::regex kRow("\"([^\"]+)\",\\s*&\\w+\\.([^\\[ ,})]+)(?:\\[([0-9]+)\\])?");
    RowsSeen seen;
    for (std::sregex_iterator row(text.begin(), text.end(), kRow), end; row != end; ++row, ++seen.Count) {
        const std::string name = (*row)[1], member = (*row)[2], place = (*row)[3];
        // "Toolbar2.FileNew" is the member Toolbar2_FileNew, "ComboRole1" the first of several, ComboRole[0].
        std::string expected = place.empty() ? member : member + std::to_string(std::stoi(place) + 1);
        std::string plain = name;
        std::replace(plain.begin(), plain.end(), '.', '_');
        if (plain != expected) seen.Faults.push_back(name + " is " + expected);
        seen.Members.insert(member);
    }
    return seen;
}

// The controls that the structs of a header declare, and those of them that it says more of than the name.
struct Declared {
    std::set<std::string> Names, Said;
};
Declared DeclaredIn(const std::string& text) {
    static const std::regex kDeclaration(
        "\n    (?:Control|std::array<Control, \\w+>) ([^;(]*(?:\\([^;]*)?);");
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

std::size_t ControlsOfAllWindows() {
    std::size_t controls = 0;
    for (const WindowEntry* window : AllWindows()) controls += window->Controls.size();
    return controls;
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

// The language cannot hold these together.
TEST(Controls, NamesAreThoseOfTheMembersAndEachMemberHasARow) {
    std::size_t rows = 0, used = 0, declared = 0;
    for (const auto& entry : fs::recursive_directory_iterator(fs::path(CORVINADE_SOURCE_DIR) / "src")) {
        const std::string extension = entry.path().extension().string();
        if (extension != ".cpp" && extension != ".h") continue;
        const std::string text = Contents(entry.path().string());
        if (extension == ".h" && text.find("    WindowState Window") != std::string::npos) {
            const Declared names = DeclaredIn(text);
            EXPECT_EQ(names.Said, std::set<std::string>{})
                << entry.path() << " says more of them than their names";
            declared += names.Names.size();
        }
        const std::size_t begin = text.find("const ControlEntry kControls[]");
        if (extension == ".h" || begin == std::string::npos) continue;
        const RowsSeen seen = RowsIn(text.substr(begin, text.find("};", begin) - begin));
        EXPECT_EQ(seen.Faults, std::vector<std::string>{}) << entry.path();
        rows += seen.Count;
        used += seen.Members.size();
    }
    EXPECT_EQ(rows, ControlsOfAllWindows());
    EXPECT_EQ(used, declared) << "a member has no row";
}

TEST(Controls, ARowAndAStructThatSayOtherwiseAreSeen) {
    const RowsSeen seen = RowsIn(
        "    {\"BtnOK\", &w.BtnOK, Button(\"OK\")},\n    {\"Größe\",\n     &w.Größe},\n"
        "    Command(\"Bar.Key\", &Main.Bar_Key, Menu(\"\")),\n    {\"BtnNo\", &w.BtnOK},\n"
        "    {\"List1\", &w.List[0]},\n    {\"List3\", &w.List[1]},\n");
    EXPECT_EQ(seen.Faults, (std::vector<std::string>{"BtnNo is BtnOK", "List3 is List2"}));
    EXPECT_EQ(seen.Count, 6U);
    EXPECT_EQ(seen.Members, (std::set<std::string>{"BtnOK", "Größe", "Bar_Key", "List"}));
    const Declared declared = DeclaredIn(
        "struct A {\n    Control One;\n    Control Two,\n        Three;\n    Control Four = Button(\"4\");\n"
        "    std::array<Control, kLists> List;\n    std::string Five;\n};\nControl Six();\n");
    EXPECT_EQ(declared.Names, (std::set<std::string>{"One", "Two", "Three", "List"}));
    EXPECT_EQ(declared.Said, std::set<std::string>{"Four = Button(\"4\")"});
}
