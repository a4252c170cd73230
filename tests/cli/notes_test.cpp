// What the program notices, on the command line: standard error, JSON, --strict.
#include "core/notes.h"

#include <algorithm>
#include <functional>
#include <nlohmann/json.hpp>

#include "cli/fit_command.h"

using namespace corvinade;

namespace {

// Each command with a reader that notices something in its file. The readers' own notes have their tests;
// here they are what a stand-in says while the file is read.
class NotesOfCommands : public FitCommand {
protected:
    using Arguments = std::vector<std::string>;

    NotesOfCommands() {
        EXPECT_EQ(Fit({start_, target_, "--save", job_}).Status, 0);
        Headless.Dialogs.clear();
    }

    // The reader of a file notices something, and what is written is counted.
    void Notice(NoteCode code, const std::string& text) {
        FileFaults.Refuse = [this, code, text](const std::string& operation, const std::string& path) {
            if (operation == "create" || operation == "folder") written_.push_back(path);
            if (operation == "open" && (path == job_ || path == start_)) AddNote(code, text, path, 7);
            return std::string();
        };
        // The reader of networks begins its list behind the file's last byte.
        adjusting_ = [this, code, text] { AddNote(code, text, network_, 7); };
    }

    // Every command that reads files, with all that it can write.
    std::vector<Arguments> Commands() const {
        return {{"fit", start_, target_, "--save", PathOf("new.cvn"), "--report", PathOf("page.html")},
                {"fit", "--job", job_, "--save", PathOf("new.cvn"), "--json"},
                {"fit", start_, target_, "--csv"},
                {"info", job_},
                {"info", job_, "--json"},
                {"convert", job_, PathOf("new.cvn")},
                {"convert", job_, PathOf("new.json")},
                {"convert", job_, PathOf("new.csv")},
                {"convert", job_, PathOf("new.csv"), "--json"},
                {"render", job_, "--size", "64x64", "--out", PathOf("new.png")},
                {"render", job_, "--size", "64x64", "--out", PathOf("new.svg"), "--json"},
                {"distances", job_, "--trumpet", PathOf("new.svg"), "--pairs", PathOf("new.txt")},
                {"distances", job_, "--json"},
                {"bundle", network_, "--to", PathOf("adjusted"), "--json"},
                {"transform", job_, start_, "--to", PathOf("out"), "--delimiter", "semicolon"},
                {"transform", job_, start_, "--to", PathOf("to"), "--delimiter", "semicolon", "--json"},
                {"export", job_, "--robcad", PathOf("new.rf")},
                {"export", job_, "--robcad", PathOf("new.rf"), "--json"},
                {"export", job_, "--rocal", PathOf("new.bas")},
                {"export", job_, "--points", PathOf("new.asc")}};
    }
    Outcome Run(Arguments arguments, bool strict = false) const {
        if (strict) arguments.emplace_back("--strict");
        if (arguments[0] != "bundle") return FreshCommandLine(arguments);
        const auto faults = FileFaults;
        FreshStart();
        FileFaults = faults;
        Headless = HeadlessRecord{};
        Headless.OnYield = adjusting_;
        return CommandLine(arguments);
    }
    static std::string Shown(const Arguments& arguments) {
        std::string text;
        for (const std::string& argument : arguments) text += argument + " ";
        return text;
    }

    std::string job_ = PathOf("job.cvn");
    std::string network_ = kExamples + "hall_network.txt";
    std::vector<std::string> written_;
    std::function<void()> adjusting_;
};

int Lines(const std::string& text, const std::string& line) {
    int count = 0;
    for (std::size_t at = text.find(line); at != std::string::npos; at = text.find(line, at + 1)) ++count;
    return count;
}

const std::string kManual = std::string(CORVINADE_SOURCE_DIR) + "/docs/manual/20-notes.md";

}  // namespace

TEST_F(NotesOfCommands, AreALineEachOnStandardError) {
    Notice(NoteCode::NumberAsZero, "\"abc\" is no number, x counts as 0.");
    for (const Arguments& command : Commands()) {
        const Outcome outcome = Run(command);
        EXPECT_EQ(outcome.Status, 0) << Shown(command) << outcome.Err;
        EXPECT_GE(Lines(outcome.Err, "warning: \"abc\" is no number, x counts as 0. ("), 1)
            << Shown(command) << outcome.Err;
        EXPECT_EQ(Lines(outcome.Err, "no number, x counts"), Lines(outcome.Err, "warning: \"abc\""))
            << "each stands in a line of its own";
        EXPECT_EQ(Lines(outcome.Err, ", line 7"), Lines(outcome.Err, "warning: \"abc\"")) << outcome.Err;
    }
}

TEST_F(NotesOfCommands, ThatAreNoWarningsAreCalledNotes) {
    Notice(NoteCode::EmptyRow, "A row without a point is passed over.");
    for (const Arguments& command : Commands()) {
        const Outcome outcome = Run(command);
        EXPECT_EQ(outcome.Status, 0) << Shown(command) << outcome.Err;
        EXPECT_GE(Lines(outcome.Err, "note: A row without a point is passed over. ("), 1) << Shown(command);
        EXPECT_EQ(Lines(outcome.Err, "warning: "), 0) << outcome.Err;
    }
}

TEST_F(NotesOfCommands, AreThereWhereNothingWasNoticedAsAnEmptyList) {
    for (const Arguments& command : Commands()) {
        const Outcome outcome = Run(command);
        EXPECT_EQ(outcome.Status, 0) << Shown(command) << outcome.Err;
        EXPECT_EQ(Lines(outcome.Err, "note: ") + Lines(outcome.Err, "warning: "), 0) << outcome.Err;
        if (std::find(command.begin(), command.end(), "--json") != command.end()) {
            EXPECT_EQ(json::parse(outcome.Out).at("notes"), json::array()) << Shown(command);
        }
    }
}

TEST_F(NotesOfCommands, StandInTheJson) {
    Notice(NoteCode::NumberAsZero, "\"abc\" is no number, x counts as 0.");
    int asked = 0;
    for (const Arguments& command : Commands()) {
        if (std::find(command.begin(), command.end(), "--json") == command.end()) continue;
        ++asked;
        const json notes = json::parse(Run(command).Out).at("notes");
        // The one file after the other, each with its own.
        const std::size_t files = command[0] == "transform" ? 2 : 1;
        ASSERT_EQ(notes.size(), files) << Shown(command);
        EXPECT_EQ(notes[0].at("code"), "number-as-zero");
        EXPECT_EQ(notes[0].at("severity"), "warning");
        EXPECT_EQ(notes[0].at("text"), "\"abc\" is no number, x counts as 0.");
        EXPECT_EQ(notes[0].at("file"), command[0] == "bundle" ? network_ : job_);
        EXPECT_EQ(notes[0].at("line"), 7);
        EXPECT_GE(notes[0].at("count").get<int>(), 1);
    }
    EXPECT_EQ(asked, 8);
    Run({"convert", job_, PathOf("all.json")});
    EXPECT_EQ(json::parse(Contents(PathOf("all.json"))).at("notes").size(), 1U);
}

TEST_F(NotesOfCommands, EndAStrictCommandBeforeAnythingIsWritten) {
    Notice(NoteCode::NumberAsZero, "\"abc\" is no number, x counts as 0.");
    for (const Arguments& command : Commands()) {
        written_.clear();
        const Outcome outcome = Run(command, true);
        EXPECT_EQ(outcome.Status, 3) << Shown(command) << outcome.Err;
        EXPECT_EQ(written_, std::vector<std::string>{}) << Shown(command);
        EXPECT_GE(Lines(outcome.Err, "warning: \"abc\" is no number"), 1) << Shown(command);
        // With --json the reason is an object, in the place of the result.
        const bool asJson = std::find(command.begin(), command.end(), "--json") != command.end();
        EXPECT_EQ(outcome.Out.empty(), !asJson) << Shown(command);
        EXPECT_EQ(
            Lines(asJson ? outcome.Out : outcome.Err,
                  std::string("and --strict lets none pass: nothing was written") + (asJson ? "\"" : "\n")),
            1)
            << outcome.Err;
    }
}

TEST_F(NotesOfCommands, ThatAreNoWarningsLetAStrictCommandPass) {
    Notice(NoteCode::EmptyRow, "A row without a point is passed over.");
    for (const Arguments& command : Commands()) {
        const Outcome plain = Run(command), strict = [&] {
            Arguments again = command;
            if (again[0] == "transform") again.emplace_back("--overwrite");
            return Run(again, true);
        }();
        EXPECT_EQ(strict.Status, 0) << Shown(command) << strict.Err;
        EXPECT_EQ(strict.Out, plain.Out) << Shown(command);
    }
}

TEST_F(NotesOfCommands, AreToldAheadOfARefusal) {
    Notice(NoteCode::NumberAsZero, "\"abc\" is no number, x counts as 0.");
    const std::string lone = Write("lone.txt", "A;0;0;0\nB;1;0;0\nC;0;1;0\n");
    const std::string other = Write("other.txt", "P;0;0;0\nQ;1;0;0\nR;0;1;0\n");
    start_ = lone;
    const Outcome outcome = Run({"fit", lone, other});
    EXPECT_EQ(outcome.Status, 1);
    const std::size_t note = outcome.Err.find("warning: "), why = outcome.Err.find("corvinade-cli: ");
    ASSERT_NE(note, std::string::npos) << outcome.Err;
    ASSERT_NE(why, std::string::npos) << outcome.Err;
    EXPECT_LT(note, why);
    EXPECT_EQ(Lines(outcome.Err, "warning: "), 1) << outcome.Err;
}

TEST_F(NotesOfCommands, OfOneCommandAreForgottenByTheNext) {
    Notice(NoteCode::NumberAsZero, "\"abc\" is no number, x counts as 0.");
    EXPECT_EQ(Lines(CommandLine({"info", job_, "--decimal", "."}).Err, "warning: "), 1);
    EXPECT_EQ(Lines(CommandLine({"info", job_, "--decimal", "."}).Err, "warning: "), 1);
    FileFaults.Refuse = nullptr;
    EXPECT_EQ(CommandLine({"info", job_, "--decimal", "."}).Err, "");
}

// A terminal is not to be told what to do by a text out of a file.
TEST_F(NotesOfCommands, BringNoControlCharactersToTheTerminal) {
    Notice(NoteCode::NumberAsZero, "\"\x1b[2J\" is no number.");
    EXPECT_EQ(Run({"info", job_}).Err.find('\x1b'), std::string::npos);
}

TEST_F(NotesOfCommands, AreOfEveryCommandThatReadsFiles) {
    for (const char* command :
         {"fit", "info", "convert", "render", "distances", "bundle", "transform", "export"})
        EXPECT_NE(Run({command, "--help"}).Out.find("--strict"), std::string::npos) << command;
    EXPECT_EQ(Run({"automate", "--help"}).Out.find("--strict"), std::string::npos);
}

TEST_F(NotesOfCommands, ATransformedLineWithoutThreeNumbersIsAWarning) {
    const std::string good = Write("good.txt", "A;1;2;3\n");
    const std::string bad = Write("bad.txt", "A;1;2;3\nnonsense\nB;x;y;z\n");
    const Outcome plain = Run({"transform", job_, good, bad, "--to", PathOf("plain")});
    EXPECT_EQ(plain.Status, 0) << plain.Err;
    EXPECT_EQ(Lines(plain.Err,
                    "warning: \"" + bad + "\": 2 of 3 lines held no three numbers, the first in line 2\n"),
              1)
        << plain.Err;
    ASSERT_EQ(Notes.List.size(), 2U);
    EXPECT_EQ(
        NoteLine(Notes.List[0]),
        "The field \"x\" in x of point \"B\" is not a number and counts as 0 (" + bad + ", line 3; 3 times)");
    EXPECT_EQ(Notes.List[0].Code, NoteCode::NumberAsZero);
    EXPECT_EQ(NoteLine(Notes.List[1]),
              "The x of point \"nonsense\" is empty and counts as 0 (" + bad + ", line 2; 3 times)");
    EXPECT_EQ(Notes.List[1].Code, NoteCode::EmptyCoordinate);
    const Outcome strict = Run({"transform", job_, good, bad, "--to", PathOf("strict")}, true);
    EXPECT_EQ(strict.Status, 3);
    EXPECT_EQ(Lines(strict.Err, "2 of 3 lines held no three numbers"), 1) << strict.Err;
    EXPECT_EQ(Lines(strict.Err, "warning: "), 3) << strict.Err;
    EXPECT_EQ(Lines(strict.Err, "3 warnings, and --strict lets none pass"), 1) << strict.Err;
    EXPECT_FALSE(Directory_Exist(PathOf("strict"))) << "the good file is not transformed either";
    const Outcome passed = Run({"transform", job_, good, "--to", PathOf("strict")}, true);
    EXPECT_EQ(passed.Status, 0) << passed.Err;
    EXPECT_EQ(Contents(PathOf("strict/good_out.txt")), Contents(PathOf("plain/good_out.txt")));
    EXPECT_NE(passed.Err.find("1 of 1 files transformed\n"), std::string::npos);
}

// What is taken otherwise than it stands there, though every line has its three numbers.
TEST_F(NotesOfCommands, AStrictTransformLooksAtTheRowsToo) {
    for (const char* row :
         {"A B 7;1;2;3\n", "A;;1;2;3\n", "A;1;2;1e-400\n", "A;1;2;3.12345678901234567890\n"}) {
        const std::string in = Write("rows.txt", std::string("P;1;2;3\n") + row);
        const Outcome strict = Run({"transform", job_, in, "--to", PathOf("rows")}, true);
        EXPECT_EQ(strict.Status, 3) << row;
        EXPECT_FALSE(Directory_Exist(PathOf("rows"))) << row;
        EXPECT_GE(Lines(strict.Err, in + ", line 2"), 1) << strict.Err;
    }
}

TEST_F(NotesOfCommands, TheJsonOfACommandThatWritesFilesNamesThem) {
    const std::string bad = Write("bad.txt", "A;1;2;1e400\n");
    const Outcome outcome = Run({"transform", job_, start_, bad, "--to", PathOf("out"), "--json"});
    EXPECT_EQ(outcome.Status, 3) << outcome.Err;
    const json told = json::parse(outcome.Out);
    EXPECT_EQ(told.at("schema"), "corvinade-transform");
    EXPECT_EQ(told.at("schemaVersion"), 1);
    EXPECT_EQ(told.at("job"), job_);
    ASSERT_EQ(told.at("written").size(), 1U);
    EXPECT_TRUE(File_Exist(told["written"][0].get<std::string>()));
    ASSERT_EQ(told.at("left").size(), 1U);
    EXPECT_EQ(told["left"][0].at("path"), bad);
    EXPECT_EQ(told["left"][0].at("why"),
              "Cannot read \"" + bad +
                  "\", line 1: \"1e400\" in z of point \"A\" is larger than any number "
                  "that can be kept");
    for (const Arguments& command : {Arguments{"render", job_, "--out", PathOf("a.svg"), "--json"},
                                     {"convert", job_, PathOf("a.csv"), "--json"},
                                     {"export", job_, "--rocal", PathOf("a.bas"), "--json"}}) {
        const json one = json::parse(Run(command).Out);
        EXPECT_EQ(one.at("schema"), "corvinade-" + command[0]);
        EXPECT_EQ(one.at("written"), json::array({command[0] == "convert" ? command[2] : command[3]}));
        EXPECT_TRUE(File_Exist(one["written"][0].get<std::string>()));
        EXPECT_EQ(one.at("left"), json::array());
        EXPECT_EQ(one.at("notes"), json::array());
    }
}

// Points on a line leave the turn about it open.
TEST_F(NotesOfCommands, AFitThatLeavesParametersOpenPassesWithAWarningAndNotStrictly) {
    const std::string start = Write("line.txt", "A;0;0;0\nB;100;0;0\nC;250;0;0\nD;400;0;0\n");
    const std::string target = Write("placed.txt", "A;5;6;7\nB;105;6;7\nC;255;6;7\nD;405;6;7\n");
    const Outcome plain = Run({"fit", start, target, "--json"});
    EXPECT_EQ(plain.Status, 0) << plain.Err;
    EXPECT_GE(Lines(plain.Err, "warning: "), 1) << plain.Err;
    const json notes = json::parse(plain.Out).at("notes");
    EXPECT_TRUE(std::any_of(notes.begin(), notes.end(), [](const json& note) {
        return note.at("code") == "open-parameters";
    })) << notes.dump();
    const Outcome strict = Run({"fit", start, target, "--json", "--save", PathOf("line.cvn")}, true);
    EXPECT_EQ(strict.Status, 3);
    EXPECT_EQ(json::parse(strict.Out)["schema"], "corvinade-error");
    EXPECT_FALSE(File_Exist(PathOf("line.cvn")));
}

// All rows have as many fields then, so that none shows it but by its groups of three digits.
TEST_F(NotesOfCommands, CommasOfThousandsInEveryRowAreAWarning) {
    const auto rows = [this](const char* name, bool surplus) {
        std::string text;
        for (const char* row : {"P1,1,000.5,2,000.5,300", "P2,4,100.5,1,020.5,250", "P3,5,001.25,3,800,100",
                                "P4,2,200.5,2,900.5,-77"})
            text += surplus ? std::string(row) + "\n" : std::string(row, 2) + ",1.5,2.5,3.5,0.02,0.03\n";
        return Write(name, text);
    };
    const Outcome strict = Fit({rows("a.csv", true), rows("b.csv", true), "--strict", "--format", "plain"});
    EXPECT_EQ(strict.Status, 3);
    EXPECT_NE(
        strict.Err.find("commas of thousands would explain it (" + PathOf("a.csv") + ", line 1; 4 times)"),
        std::string::npos)
        << strict.Err;
    const Outcome plain = Fit({rows("a.csv", false), rows("b.csv", false)});
    EXPECT_EQ(plain.Err.find("thousands"), std::string::npos) << plain.Err;
}

// --- The manual -------------------------------------------------------------------------------------------

TEST_F(NotesOfCommands, AreAllExplainedByTheManual) {
    const std::string manual = Contents(kManual);
    ASSERT_FALSE(manual.empty());
    for (const NoteKind& kind : NoteKinds())
        EXPECT_EQ(
            Lines(manual, std::string("\n| `") + kind.Name + "` | " + SeverityName(kind.Weight) + " | "), 1)
            << kind.Name << " needs a row with its severity, what it means and what to do";
}

TEST_F(NotesOfCommands, ThatTheManualExplainsAreThoseOfTheProgram) {
    const std::string manual = Contents(kManual);
    int rows = 0;
    for (std::size_t at = manual.find("\n| `"); at != std::string::npos; at = manual.find("\n| `", at + 1)) {
        const std::size_t name = at + 4, end = manual.find('`', name);
        ASSERT_NE(end, std::string::npos);
        ++rows;
        const std::string code = manual.substr(name, end - name);
        EXPECT_TRUE(std::any_of(NoteKinds().begin(), NoteKinds().end(), [&code](const NoteKind& kind) {
            return code == kind.Name;
        })) << code;
        const std::string row = manual.substr(at + 1, manual.find('\n', at + 1) - at - 1);
        EXPECT_EQ(std::count(row.begin(), row.end(), '|'), 5) << row;
    }
    EXPECT_EQ(rows, static_cast<int>(NoteKinds().size()));
}
