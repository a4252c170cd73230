// Who is called from where: what a room's headers declare is defined in that room, so that no call runs up.
// The few exceptions are listed here by name.
#include <algorithm>
#include <filesystem>
#include <map>
#include <regex>
#include <set>
#include <sstream>

#include "support/fixture.h"

using namespace corvinade;

namespace fs = std::filesystem;

namespace {

using NameSet = std::set<std::string>;

// A statement or the head of a definition that begins at the left edge.
struct Head {
    std::string Text;
    bool Defines = false;  // a body follows
};

bool BeginsWithAny(const std::string& line, std::initializer_list<const char*> words) {
    return std::any_of(words.begin(), words.end(), [&](const char* word) { return line.starts_with(word); });
}

std::vector<Head> HeadsOf(const std::string& text) {
    std::vector<Head> heads;
    std::istringstream lines(text);
    std::string head;
    for (std::string line; std::getline(lines, line);) {
        if (head.empty() && (line.empty() || line.ends_with(':') ||
                             std::string_view(" \t#/}").find(line[0]) != std::string_view::npos))
            continue;
        if (const std::size_t comment = line.find("//"); comment != std::string::npos) line.resize(comment);
        head += " " + line;
        const std::size_t body = head.find('{'), end = head.find(';');
        if (body == std::string::npos && end == std::string::npos) continue;
        head = head.substr(1, std::min(body, end) - 1);
        // An attribute in front is none of it.
        if (head.starts_with("[[")) head.erase(0, head.find_first_not_of(' ', head.find("]]") + 2));
        heads.push_back({head, body < end});
        head.clear();
    }
    return heads;
}

bool IsLetter(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || (c & '\x80') != 0;
}

// The procedure's name; "" where the head is of something else.
std::string ProcedureOf(const Head& head) {
    const std::string& text = head.Text;
    if (BeginsWithAny(
            text, {"using", "struct", "class", "enum", "namespace", "template", "extern", "static_assert"}))
        return "";
    const std::size_t open = text.find('(');
    if (open == std::string::npos || text.find('=') < open) return "";
    std::size_t first = open;
    while (first > 0 && IsLetter(text[first - 1])) --first;
    if (first == 0 || text[first - 1] == ':' || first == open) return "";
    return text.substr(first, open - first);
}

// The class whose member a head defines; "" where it defines none.
std::string ClassOf(const Head& head) {
    const std::string& text = head.Text;
    const std::size_t open = text.find('(');
    if (!head.Defines || open == std::string::npos || text.find('=') < open) return "";
    std::size_t name = open;
    while (name > 0 && (IsLetter(text[name - 1]) || text[name - 1] == '~')) --name;
    if (name < 2 || text.compare(name - 2, 2, "::") != 0) return "";
    std::size_t first = name - 2;
    while (first > 0 && IsLetter(text[first - 1])) --first;
    return text.substr(first, name - 2 - first);
}

// The class that a head says the members of; "" where it says none.
std::string ClassSaid(const Head& head) {
    static const std::regex kClass("(?:struct|class) ([^ ;:]+).*");
    std::smatch match;
    return head.Defines && std::regex_match(head.Text, match, kClass) ? match[1].str() : "";
}

struct Rooms {
    std::map<std::string, NameSet> Declared;  // by header, relative to src/
    std::map<std::string, NameSet> Defined;   // by room; "" above all rooms
    std::map<std::string, NameSet> Classes;   // by room: whose members it says
    std::map<std::string, NameSet> Members;   // by source: the classes whose members it defines

    Rooms() {
        const fs::path source = fs::path(CORVINADE_SOURCE_DIR) / "src";
        for (const auto& entry : fs::recursive_directory_iterator(source)) {
            const std::string extension = entry.path().extension().string();
            if (extension != ".h" && extension != ".cpp" && extension != ".inl") continue;
            const std::string file = fs::relative(entry.path(), source).generic_string();
            const std::size_t slash = file.find('/');
            const std::string room = slash == std::string::npos ? "" : file.substr(0, slash);
            for (const Head& head : HeadsOf(Contents(entry.path().string()))) {
                if (const std::string said = ClassSaid(head); !said.empty()) Classes[room].insert(said);
                if (const std::string of = ClassOf(head); !of.empty()) Members[file].insert(of);
                const std::string name = ProcedureOf(head);
                if (name.empty()) continue;
                if (head.Defines) Defined[room].insert(name);
                if (!head.Defines && extension == ".h") Declared[file].insert(name);
            }
        }
        // The face of the library, whose headers stand outside.
        for (const auto& entry : fs::directory_iterator(source / "../include/corvinade"))
            for (const Head& head : HeadsOf(Contents(entry.path().string())))
                if (const std::string said = ClassSaid(head); !said.empty()) Classes["library"].insert(said);
    }
    // Declared in a header and not defined in its room, by the header.
    std::map<std::string, NameSet> DefinedElsewhere() const {
        std::map<std::string, NameSet> elsewhere;
        for (const auto& [header, names] : Declared) {
            const NameSet& own = Defined.at(header.substr(0, header.find('/')));
            for (const std::string& name : names)
                if (!own.contains(name)) elsewhere[header].insert(name);
        }
        return elsewhere;
    }
};

}  // namespace

TEST(Calls, WhatAHeaderDeclaresIsDefinedInItsRoom) {
    const Rooms rooms;
    std::map<std::string, NameSet> elsewhere = rooms.DefinedElsewhere();
    // What the world around the program does, each face of the program does for itself.
    for (const std::string& name : elsewhere["core/platform.h"])
        for (const char* face : {"cli", "ui"}) EXPECT_TRUE(rooms.Defined.at(face).contains(name)) << name;
    elsewhere.erase("core/platform.h");
    // What all faces do alike, by calls of the system.
    for (const char* header : {"core/system_files.h", "core/lock_file.h", "core/system_process.h",
                               "core/large_pages.h", "core/child_process.h"}) {
        for (const std::string& name : elsewhere[header])
            EXPECT_TRUE(rooms.Defined.at("system").contains(name)) << name;
        elsewhere.erase(header);
    }
    // The tables above all rooms.
    for (const auto& [header, name] : {std::pair{"core/changes.h", "AllChangeRows"},
                                       {"core/fresh_start.h", "FreshStart"},
                                       {"engine/job_calculation.h", "AllCalculationsAbove"},
                                       {"import/readers_above.h", "AllReadersAbove"},
                                       {"core/records.h", "AllRecords"},
                                       {"core/window.h", "AllWindows"}}) {
        EXPECT_EQ(elsewhere[header], NameSet{name}) << header;
        EXPECT_TRUE(rooms.Defined.at("").contains(name)) << name;
        elsewhere.erase(header);
    }
    for (const auto& [header, names] : elsewhere)
        for (const std::string& name : names)
            ADD_FAILURE() << header << " declares " << name << ", which is defined in another room";
}

// A handler of a window stands in the room of the window: the main window, whose commands are those of all
// rooms, names their procedures above all rooms.
TEST(Calls, AMemberIsDefinedInTheRoomOfItsClass) {
    const Rooms rooms;
    std::size_t seen = 0;
    for (const auto& [file, classes] : rooms.Members)
        for (const std::string& name : classes) {
            const std::size_t slash = file.find('/');
            const std::string room = slash == std::string::npos ? "" : file.substr(0, slash);
            // What all faces do alike, by calls of the system, is declared in core.
            const std::string of = room == "system" ? "core" : room;
            EXPECT_TRUE(rooms.Classes.at(of).contains(name)) << file << " defines a member of " << name;
            ++seen;
        }
    EXPECT_GT(seen, 40U);
}

TEST(Calls, MembersAndTheirClassesAreSeen) {
    const std::vector<Head> heads = HeadsOf(
        "struct FormOne {\n    static void Load();\n};\nstruct Said;\nclass Two : public Base {\n};\n"
        "void FormOne::Load() {\n}\nTwo::~Two() {\n}\nGröße::Art Größe::Of(int i,\n    int j) const {\n}\n"
        "void Free(std::string s) {\n}\nint x = Two::Three(1);\n");
    std::vector<std::string> names;
    for (const Head& head : heads) {
        if (const std::string said = ClassSaid(head); !said.empty()) names.push_back(said + " said");
        if (const std::string of = ClassOf(head); !of.empty()) names.push_back("of " + of);
    }
    EXPECT_EQ(names,
              (std::vector<std::string>{"FormOne said", "Two said", "of FormOne", "of Two", "of Größe"}));
}

TEST(Calls, TheHeadsOfProceduresAreSeen) {
    const std::vector<Head> heads = HeadsOf(
        "// void No();\n"
        "int One(int a,\n        int b);\n"
        "void Two() {\n    Three();\n}\n"
        "class Four {\npublic:\n    void Five();\n};\n"
        "constexpr int kSix = Seven(1);\n"
        "void FormEight::Nine() {\n}\n"
        "Vec3 Größe(int i) {  // mm\n}\n");
    std::vector<std::string> names;
    for (const Head& head : heads)
        if (const std::string name = ProcedureOf(head); !name.empty())
            names.push_back(name + (head.Defines ? " defined" : " declared"));
    EXPECT_EQ(names, (std::vector<std::string>{"One declared", "Two defined", "Größe defined"}));
}
