// A table and the forms of a result by name, as a script of a cell's commissioning uses them.
#include <sstream>

#include "cli/automation.h"

using namespace corvinade;

namespace {

class TablesByName : public Automated {
protected:
    TablesByName() {
        StartAutomation({});
        Get("Windows");
        Click("FormMain.MenuFileInputFiles");
    }
    static json Get(const std::string& at) { return Good({{"do", "get"}, {"at", at}}); }
    static json Click(const std::string& at) { return Good({{"do", "click"}, {"at", at}}); }
    static json Set(const std::string& at, const json& value) {
        return Good({{"do", "set"}, {"at", at}, {"value", value}});
    }
    static void Choose(const std::string& button, const std::string& path) {
        Good({{"do", "answer"}, {"kind", "open"}, {"value", path}});
        Click(button);
    }

    std::string start_ =
        Write("start.csv", "Point|A|B|C\r\nP1|0|0|0\r\nP2|0|1|0\r\nP3|2|0|0\r\nP4|x|0|3\r\nP5|1|1|4\r\n");
    std::string target_ =
        Write("target.txt", "P1;5;6;7\nP2;1005;6;7\nP3;5;2006;7\nP4;5;6;3007\nP5;1005;1006;4007\n");
};

}  // namespace

TEST_F(TablesByName, EverySettingIsSetAndReadByItsName) {
    Choose("FormInputFiles.BtnBrowseMCS", start_);
    ASSERT_EQ(Get("FormTable")["loaded"], true);
    EXPECT_EQ(Get("FormTable.ComboDelimiter")["text"], "pipe");
    EXPECT_EQ(Get("FormTable.LabelCount")["text"], "4 good rows, 1 bad row");
    EXPECT_EQ(Get("FormTable.ComboRole2")["text"], "x");
    EXPECT_EQ(Get("FormTable.ComboRole5")["visible"], false);
    Set("FormTable.ComboRole2", "y");  // the first column after the name is y, and x changes places with it
    EXPECT_EQ(Get("FormTable.ComboRole3")["text"], "x");
    Set("FormTable.ComboUnit", "m");
    const json grid = Get("FormTable.GridPreview");
    EXPECT_EQ(grid["cells"][5], (json{"5", "P4", "x", "0", "3"}));
    EXPECT_EQ(grid["backColors"][5][2], 10263807);
    EXPECT_EQ(grid["backColors"][1][1], 15132390);
    const json refused = Click("FormTable.BtnOK");
    ASSERT_EQ(refused["dialogs"].size(), 1U) << refused.dump();
    EXPECT_NE(refused["dialogs"][0]["text"].get<std::string>().find("Line 5, column 2"), std::string::npos);
    Set("FormTable.CheckStrict", 0);
    Click("FormTable.BtnOK");
    EXPECT_EQ(Get("FormInputFiles.LabelTableMCS")["text"], "read as a table");
    Set("FormInputFiles.TextNameOCS", target_);
    Click("FormInputFiles.BtnOK");
    const json x = Good({{"do", "record"}, {"name", "MCS_X"}})["value"];
    EXPECT_EQ(x, (json{nullptr, 0, 1000, 0, 1000}));
    const json notes = Good({{"do", "record"}, {"name", "Notes"}})["value"];
    ASSERT_FALSE(notes.empty());
    EXPECT_EQ(notes[0]["code"], "lines-skipped");
    EXPECT_EQ(notes[0]["line"], 5);
}

TEST_F(TablesByName, AFileThatIsSetIsAskedForByItsButton) {
    Set("FormInputFiles.TextNameOCS", start_);
    Click("FormInputFiles.BtnTableOCS");
    EXPECT_EQ(Get("FormTable.LabelFile")["text"], "Target system (OCS): " + start_);
    Click("FormTable.BtnCancel");
    EXPECT_EQ(Get("FormInputFiles.LabelTableOCS")["text"], "");
}

TEST_F(TablesByName, CloudsAreImportedByName) {
    Choose("FormInputFiles.BtnBrowseMCS",
           Write("scan.ply",
                 "ply\nformat ascii 1.0\nelement vertex 3\nproperty double x\nproperty double y\n"
                 "property double z\nproperty uchar red\nend_header\n0 0 0 9\n1000 0 0 9\n0 2000 0 9\n"));
    EXPECT_EQ(Get("FormTable")["loaded"], false);
    EXPECT_EQ(Get("FormInputFiles.LabelTableMCS")["text"], "read as a PLY cloud");
    Set("FormInputFiles.TextNameOCS", Write("numbered.txt", "1;5;6;7\n2;1005;6;7\n3;5;2006;7\n"));
    Click("FormInputFiles.BtnOK");
    EXPECT_EQ(Good({{"do", "record"}, {"name", "MCS_X"}})["value"], (json{nullptr, 0, 1000, 0}));
    EXPECT_EQ(Good({{"do", "record"}, {"name", "MCS_Y"}})["value"], (json{nullptr, 0, 0, 2000}));
}

TEST_F(TablesByName, TheFormsOfAResultAreReachedByName) {
    const std::string plain = Write("s.txt", "P1;0;0;0\nP2;1000;0;0\nP3;0;2000;0\nP4;0;0;3000\n");
    Set("FormInputFiles.TextNameMCS", plain);
    Set("FormInputFiles.TextNameOCS", target_);
    Click("FormInputFiles.BtnOK");
    Click("FormMain.MenuTransformationCalculation");
    Click("FormTrafoBerechnung.BtnCalculate");
    Click("FormMain.MenueFileExportResult");
    Set("FormExport.ListForms", "quaternion: x y z qx qy qz qw");
    Click("FormExport.BtnCopy");
    std::istringstream text(Good({{"do", "clipboard"}})["value"].get<std::string>());
    for (const double expected : {5.0, 6.0, 7.0, 0.0, 0.0, 0.0, 1.0}) {
        double number = 0;
        ASSERT_TRUE(text >> number);
        EXPECT_NEAR(number, expected, 1e-9);
    }
}
