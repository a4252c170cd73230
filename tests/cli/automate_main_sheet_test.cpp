// The main sheet by names alone, as a script of a cell's commissioning drives it.
#include <nlohmann/json.hpp>

#include "cli/automate.h"
#include "cli/headless.h"
#include "core/controller.h"
#include "support/fixture.h"

using namespace corvinade;

using nlohmann::json;

class MainSheetByName : public Program {
protected:
    MainSheetByName() {
        StartAutomation({});
        Import("A;10;0;0\nB;0;20;0\nD;1;2;3\n", "A;11;0;0\nB;0;22;0\nC;4;5;6\n");
    }
    static json Ask(const json& request) {
        bool quit = false;
        return json::parse(AnswerLine(request.dump(), quit));
    }
    static json Click(const std::string& at) { return Ask({{"do", "click"}, {"at", at}}); }
    static json Set(const std::string& at, const json& value) {
        return Ask({{"do", "set"}, {"at", at}, {"value", value}});
    }
    static json Sheet(json request) {
        request["at"] = "FormMainSheet.MSFlexGrid1";
        return Ask(request);
    }
    static json Cells() { return Sheet({{"do", "get"}})["cells"]; }
    static json Checked() { return Ask({{"do", "get"}, {"at", "FormMain.MenuVievMainSheet"}})["checked"]; }
    void Import(const std::string& start, const std::string& target) const {
        Click("FormMain.MenuFileInputFiles");
        Set("FormInputFiles.TextNameMCS", Write("start.txt", CrLf(start)));
        Set("FormInputFiles.TextNameOCS", Write("target.txt", CrLf(target)));
        Set("FormInputFiles.TextRenameOCS", "CAD");
        Ask({{"do", "answer"}, {"kind", "message"}, {"value", "Yes"}});
        EXPECT_EQ(Click("FormInputFiles.BtnApply")["ok"], true);
    }
};

TEST_F(MainSheetByName, IsOpenedReadAndClosed) {
    EXPECT_EQ(Checked(), false);
    EXPECT_EQ(Click("FormMain.MenuVievMainSheet"), json({{"ok", true}}));
    EXPECT_EQ(Checked(), true);
    EXPECT_EQ(Ask({{"do", "get"}, {"at", "FormMainSheet"}})["caption"],
              "Main Sheet - Data in CAD - OCS System");
    const json sheet = Sheet({{"do", "get"}});
    EXPECT_EQ(sheet["rows"], 5);
    EXPECT_EQ(sheet["cols"], 23);
    EXPECT_EQ(sheet["hiddenCols"], json({22}));
    EXPECT_EQ(sheet["colWidths"].size(), 23);
    EXPECT_EQ(sheet["cells"][0][1], "MCS.x");
    EXPECT_EQ(sheet["cells"][2][0], "B");
    EXPECT_EQ(sheet["cells"][2][8], "-2.000");
    EXPECT_EQ(sheet["backColors"][2][0], 0x00FF00);
    EXPECT_EQ(sheet["backColors"][4][0], 33023);
    EXPECT_EQ(Ask({{"do", "close"}, {"at", "FormMainSheet"}})["ok"], true);
    EXPECT_EQ(Checked(), false);
}

TEST_F(MainSheetByName, WithoutDataItsMessageIsInTheReply) {
    StartAutomation({});  // begins anew
    const json reply = Click("FormMain.MenuVievMainSheet");
    EXPECT_EQ(reply["ok"], true);
    EXPECT_EQ(reply["dialogs"][0]["text"], "No Data found; Problem in Modul FuellenHaupttabelle");
    EXPECT_EQ(Cells().size(), 1);
}

TEST_F(MainSheetByName, IsSortedCopiedAndPickedFrom) {
    Click("FormMain.MenuVievMainSheet");
    Sheet({{"do", "click"}, {"row", 0}, {"col", 7}});
    EXPECT_EQ(Cells()[1][0], "A");
    Sheet({{"do", "click"}, {"row", 0}, {"col", 7}});
    EXPECT_EQ(Cells()[3][0], "B");
    Sheet({{"do", "select"}, {"row", 3}, {"col", 0}, {"row2", 4}, {"col2", 1}});
    Sheet({{"do", "key"}, {"key", "Ctrl+C"}});
    EXPECT_EQ(Headless.Clipboard, "B\t0.000\r\nA\t10.000");
    Ask({{"do", "record"}, {"name", "TabelHeadMainSheet"}, {"value", -1}});
    Click("FormMain.Toolbar1.Copy");
    EXPECT_EQ(Headless.Clipboard, "Point ID\tMCS.x\r\nB\t0.000\r\nA\t10.000");
    Sheet({{"do", "select"}, {"row", 3}, {"col", 4}, {"row2", 4}, {"col2", 4}});
    Sheet({{"do", "click"}, {"row", 3}, {"col", 4}, {"button", "right"}});
    EXPECT_EQ(Ask({{"do", "record"}, {"name", "GraphValues"}})["value"], json({0.0, 0.0, 11.0}));
    EXPECT_EQ(Ask({{"do", "get"}, {"at", "FormMain.MenuEdit"}})["value"], 1);
    EXPECT_EQ(Sheet({{"do", "click"}, {"row", 1}, {"col", 22}})["error"], "column 22 is hidden");
}

TEST_F(MainSheetByName, AnEventInsideItsFillIsAnswered) {
    Ask({{"do", "during"}, {"yield", 2}, {"request", {{"do", "close"}, {"at", "FormMainSheet"}}}});
    const json reply = Click("FormMain.MenuVievMainSheet");
    EXPECT_EQ(reply["during"], json({{{"ok", true}}}));
    EXPECT_EQ(Ask({{"do", "get"}, {"at", "FormMainSheet"}})["loaded"], false);
    EXPECT_EQ(Checked(), false);
}

TEST_F(MainSheetByName, ARecordThatIsWrittenShowsWithTheNextFill) {
    Click("FormMain.MenuVievMainSheet");
    Ask({{"do", "record"}, {"name", "TraX"}, {"value", 1000.0}});
    EXPECT_EQ(Cells()[1][1], "10.000");
    Click("FormMain.MenuSettingsUnits");
    Click("FormUnits.BtnOK");
    EXPECT_EQ(Cells()[1][1], "1010.000");
}

TEST_F(MainSheetByName, IsFilteredSortedBySizeAndCopiedWithItsHeadings) {
    Click("FormMain.MenuVievMainSheet");
    EXPECT_EQ(Set("FormMainSheet.ComboFilter", "Without partner")["ok"], true);
    EXPECT_EQ(Ask({{"do", "get"}, {"at", "FormMainSheet.LabelFilter"}})["text"], "2 of 4 points");
    EXPECT_EQ(Cells().size(), 3U);
    EXPECT_EQ(Cells()[1][0], "D");
    Set("FormMainSheet.ComboFilter", 0);
    // dev.y of A and B: 0 and -2.
    Sheet({{"do", "click"}, {"row", 0}, {"col", 8}, {"shift", true}});
    EXPECT_EQ(Cells()[1][0], "B");
    Sheet({{"do", "select"}, {"row", 1}, {"col", 0}, {"row2", 1}, {"col2", 1}});
    Sheet({{"do", "key"}, {"key", "Ctrl+Shift+C"}});
    EXPECT_EQ(Headless.Clipboard, "Point ID\tMCS.x\r\nB\t0.000");
}
