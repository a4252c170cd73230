// The notes by name: record, status bar and list, as a script reads them after an import.
#include "cli/automation.h"
#include "core/files.h"
#include "core/notes.h"
#include "core/window.h"

using namespace corvinade;

namespace {

class NotesByName : public Automated {
protected:
    NotesByName() {
        StartAutomation({});
        Get("Windows");
    }
    ~NotesByName() override { FileFaults.Refuse = nullptr; }

    static json Get(const std::string& at) { return Good({{"do", "get"}, {"at", at}}); }
    static json Click(const std::string& at) { return Good({{"do", "click"}, {"at", at}}); }
    static json Record() { return Good({{"do", "record"}, {"name", "Notes"}})["value"]; }

    // An import by the dialog, whose reader notices `count` things in the start file.
    void Import(int count) {
        FileFaults.Refuse = [this, count](const std::string& operation, const std::string& path) {
            if (operation == "open" && path == start_)
                for (int i = 0; i < count; ++i) AddNote(kNoticed[i].Code, kNoticed[i].Text, path, 7);
            return std::string();
        };
        Click("FormMain.MenuFileInputFiles");
        Good({{"do", "set"}, {"at", "FormInputFiles.TextNameMCS"}, {"value", start_}});
        Good({{"do", "set"}, {"at", "FormInputFiles.TextNameOCS"}, {"value", target_}});
        Good({{"do", "answer"}, {"kind", "message"}, {"value", "Yes"}});
        Click("FormInputFiles.BtnOK");
    }

    struct Noticed {
        NoteCode Code;
        const char* Text;
    };
    static constexpr Noticed kNoticed[] = {{NoteCode::EmptyRow, "A row without a point is passed over."},
                                           {NoteCode::NumberAsZero, "\"abc\" is no number, x counts as 0."}};

    std::string start_ = Write("start.txt", "A;0;0;0\nB;1000;0;0\nC;0;2000;0\nD;0;0;3000\n");
    std::string target_ = Write("target.txt", "A;5;6;7\nB;1005;6;7\nC;5;2006;7\nD;5;6;3007\n");
};

}  // namespace

TEST_F(NotesByName, TheRecordHoldsThemAndTheNextImportEmptiesIt) {
    EXPECT_EQ(Record(), json::array());
    Import(2);
    const json notes = Record();
    ASSERT_EQ(notes.size(), 2U) << notes.dump();
    EXPECT_EQ(notes[0]["code"], "empty-row");
    EXPECT_EQ(notes[0]["severity"], "note");
    EXPECT_EQ(notes[1]["code"], "number-as-zero");
    EXPECT_EQ(notes[1]["severity"], "warning");
    EXPECT_EQ(notes[1]["text"], "\"abc\" is no number, x counts as 0.");
    EXPECT_EQ(notes[1]["file"], start_);
    EXPECT_EQ(notes[1]["line"], 7);
    EXPECT_GE(notes[1]["count"].get<int>(), 1);
    Import(0);
    EXPECT_EQ(Record(), json::array());
}

TEST_F(NotesByName, TheRecordOfANoteWithoutAFileHasNoneAndCannotBeWritten) {
    Dispatch([] { AddNote(NoteCode::Mirrored, "The result is mirrored."); });
    const json notes = Record();
    ASSERT_EQ(notes.size(), 1U);
    EXPECT_TRUE(notes[0]["file"].is_null());
    EXPECT_TRUE(notes[0]["line"].is_null());
    const json reply = Ask({{"do", "record"}, {"name", "Notes"}, {"value", json::array()}});
    EXPECT_EQ(reply["ok"], false);
    EXPECT_EQ(Record(), notes);
}

TEST_F(NotesByName, TheStatusBarShowsTheirNumberAndOpensTheList) {
    EXPECT_EQ(Get("FormMain.StatusBar.Notes")["visible"], false);
    EXPECT_EQ(Ask({{"do", "click"}, {"at", "FormMain.StatusBar.Notes"}})["ok"], false) << "nobody can see it";
    Import(1);
    json panel = Get("FormMain.StatusBar.Notes");
    EXPECT_EQ(panel["visible"], true);
    EXPECT_EQ(panel["text"], "1 note");
    EXPECT_EQ(panel["backColor"], -1);
    Import(2);
    panel = Get("FormMain.StatusBar.Notes");
    EXPECT_EQ(panel["text"], "2 notes");
    EXPECT_NE(panel["backColor"], -1);
    Click("FormMain.StatusBar.Notes");
    EXPECT_EQ(Get("FormNotes")["loaded"], true);
    const json list = Get("FormNotes.GridNotes");
    ASSERT_EQ(list["rows"], 3);
    EXPECT_EQ(list["cells"][0], json({"Severity", "File", "Line", "Text", "Count"}));
    EXPECT_EQ(list["cells"][2][0], "warning");
    EXPECT_EQ(list["cells"][2][1], start_);
    EXPECT_EQ(list["cells"][2][2], "7");
    EXPECT_EQ(list["cells"][2][3], "\"abc\" is no number, x counts as 0.");
}

TEST_F(NotesByName, ADoubleClickHandsTheFileOverAndCopyTakesTheList) {
    Import(2);
    Click("FormMain.MenuViewNotes");
    const json reply = Good({{"do", "dblclick"}, {"at", "FormNotes.GridNotes"}, {"row", 2}, {"col", 3}});
    EXPECT_EQ(reply["shell"], json::array({{{"verb", "Open"}, {"path", start_}}}));
    Click("FormNotes.BtnCopy");
    const std::string copied = Good({{"do", "clipboard"}})["value"];
    EXPECT_NE(copied.find("warning\t" + start_ + "\t7\t\"abc\" is no number, x counts as 0.\t"),
              std::string::npos)
        << copied;
    Click("FormNotes.BtnClose");
    EXPECT_EQ(Get("FormNotes")["loaded"], false);
}
