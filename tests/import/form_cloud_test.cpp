// Clouds and other carriers in the input dialog: what stands beside the file, and what the import makes of
// it. Each file holds the same four start points: the origin, and 100, 200 and 300 mm along x, y and z.
#include <array>
#include <bit>
#include <cstdint>

#include "cli/headless.h"
#include "core/controller.h"
#include "core/job.h"
#include "core/job_file.h"
#include "core/notes.h"
#include "core/run.h"
#include "import/form_table.h"
#include "import/input_dialog.h"
#include "import/input_tables.h"

using namespace corvinade;

namespace {

// A little-endian cloud of these four, with a colour behind each.
std::string BinaryPly() {
    std::string bytes =
        "ply\nformat binary_little_endian 1.0\nelement vertex 4\nproperty float x\nproperty float y\n"
        "property float z\nproperty uchar red\nend_header\n";
    const std::array<std::array<float, 3>, 4> points = {{{0, 0, 0}, {100, 0, 0}, {0, 200, 0}, {0, 0, 300}}};
    for (const auto& point : points) {
        for (const float value : point) {
            const auto bits = std::bit_cast<std::uint32_t>(value);
            for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(bits >> shift);
        }
        bytes += '\x80';
    }
    return bytes;
}

const char* const kPcd =
    "# .PCD v0.7 - Point Cloud Data file format\nVERSION 0.7\nFIELDS x y z\nSIZE 4 4 4\nTYPE F F F\n"
    "COUNT 1 1 1\nWIDTH 4\nHEIGHT 1\nVIEWPOINT 0 0 0 1 0 0 0\nPOINTS 4\nDATA ascii\n"
    "0 0 0\n100 0 0\n0 200 0\n0 0 300\n";

// In metres, north east height.
const char* const kLandXml =
    "<?xml version=\"1.0\"?>\n<LandXML version=\"1.2\"><Units><Metric linearUnit=\"meter\"/></Units><CgPoints>"
    "<CgPoint name=\"A\">0 0 0</CgPoint><CgPoint name=\"B\">0 0.1 0</CgPoint><CgPoint name=\"C\">0.2 0 0</CgPoint>"
    "<CgPoint name=\"D\">0 0 0.3</CgPoint></CgPoints></LandXML>\n";

const char* const kTrajectory =
    "1.5 0 0 0 0 0 0 1\n2.5 100 0 0 0 0 0 1\n3.5 0 200 0 0 0 0 1\n4.5 0 0 300 0 0 0 1\n";

const char* const kNumbered = "1;5;6;7\r\n2;105;6;7\r\n3;5;206;7\r\n4;5;6;307\r\n";

class CloudDialog : public InputDialog {
protected:
    void Choose(Control& browse, const std::string& path) {
        if (!IsLoaded("FormInputFiles")) ShowWindow("FormInputFiles");
        Answer("open", path);
        UserClick(browse);
        ASSERT_FALSE(IsLoaded("FormTable")) << path;
    }
    void ImportStart(const std::string& name, const std::string& content,
                     const std::string& target = kNumbered) {
        Choose(InputFiles.BtnBrowseMCS, Write(name, content));
        UserSetText(InputFiles.TextNameOCS, Write("numbered.txt", target));
        label_ = InputFiles.LabelTableMCS.Text;
        UserClick(InputFiles.BtnOK);
    }
    static void ExpectStart() {
        ASSERT_EQ(Job.Pairs(), 4);
        const double expected[4][3] = {{0, 0, 0}, {100, 0, 0}, {0, 200, 0}, {0, 0, 300}};
        for (int i = 0; i < 4; ++i) {
            const Vec3 point = Job.Start.Point(i + 1);
            for (int axis = 0; axis < 3; ++axis) EXPECT_NEAR(point(axis + 1), expected[i][axis], 1e-9);
        }
    }

    std::string label_;
};

}  // namespace

TEST_F(CloudDialog, ABinaryPlyIsImportedWithoutAQuestion) {
    ImportStart("scan.ply", BinaryPly());
    EXPECT_EQ(label_, "read as a PLY cloud");
    ExpectStart();
    EXPECT_EQ(Job.Target.Z[4], 307.0);
    EXPECT_EQ(Names(Job.Start.Name), (std::vector<std::string>{"1", "2", "3", "4"}));
    EXPECT_TRUE(IsTrue(Run.JobDataValid));
}

TEST_F(CloudDialog, ACloudIsKnownByItsBytesWhateverItsNameIs) {
    ImportStart("scan.bin", BinaryPly());
    EXPECT_EQ(label_, "read as a PLY cloud");
    ExpectStart();
}

TEST_F(CloudDialog, APcdIsImported) {
    ImportStart("scan.pcd", kPcd);
    EXPECT_EQ(label_, "read as a PCD cloud");
    ExpectStart();
}

TEST_F(CloudDialog, LandXmlIsNorthEastHeightInItsUnitWithItsNames) {
    ImportStart("survey.xml", kLandXml, kTarget);
    EXPECT_EQ(label_, "read as LandXML");
    ExpectStart();
    EXPECT_EQ(Names(Job.Start.Name), (std::vector<std::string>{"A", "B", "C", "D"}));
    ASSERT_FALSE(Notes.List.empty());
    EXPECT_EQ(Notes.List.front().Code, NoteCode::UnitOfFile);
}

TEST_F(CloudDialog, ATrajectoryBearsItsTimeStamps) {
    ImportStart("way.tum", kTrajectory, "2.5;105;6;7\r\n4.5;5;6;307\r\n1.5;5;6;7\r\n3.5;5;206;7\r\n");
    EXPECT_EQ(label_, "read as a trajectory");
    ASSERT_EQ(Job.Pairs(), 4);
    EXPECT_EQ(Job.Start.Name[1], "1.5");
    EXPECT_EQ(Job.Start.X[2], 100.0);
    EXPECT_EQ(Job.Target.X[2], 105.0);
}

TEST_F(CloudDialog, ControlPointsGiveBothSystems) {
    const std::string path = Write("map.points",
                                   "#CRS: EPSG:25832\nmapX,mapY,sourceX,sourceY,enable,dX,dY,residual\n"
                                   "1000,2000,0,0,1,0,0,0\n1100,2000,100,0,1,0,0,0\n"
                                   "1000,2200,0,200,1,0,0,0\n");
    Choose(InputFiles.BtnBrowseMCS, path);
    Choose(InputFiles.ButtonBrowseOCS, path);
    EXPECT_EQ(InputFiles.LabelTableOCS.Text, "read as control points of a map");
    UserClick(InputFiles.BtnOK);
    ASSERT_EQ(Job.Pairs(), 3);
    EXPECT_EQ(Job.Start.Y[3], 200.0);
    EXPECT_EQ(Job.Target.X[2], 1100.0);
    EXPECT_EQ(Job.Target.Y[3], 2200.0);
    EXPECT_EQ(Job.Target.Z[3], 0.0);
    int told = 0;  // of both systems in one note
    for (const Note& note : Notes.List)
        if (note.Code == NoteCode::NoHeight) told += note.Count == 2 ? 1 : 100;
    EXPECT_EQ(told, 1);
}

TEST_F(CloudDialog, ACloudMayBeTheTarget) {
    ShowWindow("FormInputFiles");
    UserSetText(InputFiles.TextNameMCS, Write("numbered.txt", kNumbered));
    Choose(InputFiles.ButtonBrowseOCS, Write("scan.ply", BinaryPly()));
    UserClick(InputFiles.BtnOK);
    ASSERT_EQ(Job.Pairs(), 4);
    EXPECT_EQ(Job.Start.X[1], 5.0);
    EXPECT_EQ(Job.Target.Z[4], 300.0);
}

TEST_F(CloudDialog, FilesThatAreDroppedAreReadTheSame) {
    ShowWindow("FormInputFiles");
    SetText(InputFiles.TextNameMCS, Write("scan.ply", BinaryPly()));
    SetText(InputFiles.TextNameOCS, Write("scan.pcd", kPcd));
    FilesChosen({TableSide::Start, TableSide::Target});
    EXPECT_FALSE(IsLoaded("FormTable"));
    UserClick(InputFiles.BtnOK);
    ExpectStart();
    EXPECT_EQ(Job.Target.Y[3], 200.0);
}

TEST_F(CloudDialog, ACloudOfTextIsATableWithCoordinatesFirst) {
    ShowWindow("FormInputFiles");
    Answer("open", Write("scan.pts", "0 0 0 17\n100 0 0 18\n0 200 0 19\n0 0 300 20\n"));
    UserClick(InputFiles.BtnBrowseMCS);
    ASSERT_TRUE(IsLoaded("FormTable"));
    UserClick(TableWindow.BtnOK);
    UserSetText(InputFiles.TextNameOCS, Write("numbered.txt", kNumbered));
    UserClick(InputFiles.BtnOK);
    ExpectStart();
}

TEST_F(CloudDialog, PointsOfACloudAreAdded) {
    Import();
    const int before = Job.Start.Count();
    ShowWindow("FormInputFiles");
    Choose(InputFiles.BtnBrowseMoreMCS, Write("scan.ply", BinaryPly()));
    EXPECT_EQ(InputFiles.LabelTableMore.Text, "read as a PLY cloud");
    UserSetText(InputFiles.TextPreSuff, "S");
    UserClick(InputFiles.BtnImportMoreMCS);
    ASSERT_EQ(Job.Start.Count(), before + 4);
    EXPECT_EQ(Job.Start.Name.back(), "S4");
    EXPECT_EQ(Job.Start.Z.back(), 300.0);
}

TEST_F(CloudDialog, ACloudThatIsCutOffIsToldAndTheJobStays) {
    Import();
    const int pairs = Job.Pairs();
    const std::string bytes = BinaryPly();
    ImportStart("cut.ply", bytes.substr(0, bytes.size() - 5));
    EXPECT_NE(LastMessage().find("cut.ply"), std::string::npos) << LastMessage();
    EXPECT_TRUE(IsLoaded("FormInputFiles"));
    EXPECT_EQ(Job.Pairs(), pairs);
    EXPECT_EQ(Job.PathMCS, start_);
}

TEST_F(CloudDialog, ClosingTheDialogWhileACloudIsReadEndsTheImport) {
    Choose(InputFiles.BtnBrowseMCS, Write("scan.ply", BinaryPly()));
    UserSetText(InputFiles.TextNameOCS, Write("numbered.txt", kNumbered));
    const std::uint64_t before = Headless.Yields;
    Headless.OnYield = [before] {
        if (Headless.Yields == before + 1) UserClick(InputFiles.BtnCancel);
    };
    UserClick(InputFiles.BtnOK);
    EXPECT_FALSE(IsLoaded("FormInputFiles"));
    EXPECT_EQ(Messages(), std::vector<std::string>());
    EXPECT_EQ(Job.Pairs(), 0);
    EXPECT_EQ(Job.PathMCS, "");
}

TEST_F(CloudDialog, TwoPointsOfOneNameAreToldInTheWordsOfTheDialog) {
    std::string twice = kLandXml;
    twice.replace(twice.find("name=\"B\""), 8, "name=\"A\"");
    ImportStart("survey.xml", twice, kTarget);
    const std::string told = LastMessage();
    EXPECT_NE(told.find("its points 1 and 2 have the same name \"A\""), std::string::npos) << told;
    EXPECT_NE(told.find("\"by distance\""), std::string::npos) << told;
    EXPECT_EQ(told.find("--"), std::string::npos) << told;
}

TEST_F(CloudDialog, TheWindowOfTablesOpensWhereColumnsCanBeChosen) {
    Choose(InputFiles.BtnBrowseMCS, Write("scan.ply", BinaryPly()));
    UserClick(InputFiles.BtnTableMCS);
    EXPECT_FALSE(IsLoaded("FormTable"));
    EXPECT_NE(LastMessage().find("a PLY cloud"), std::string::npos);
    Choose(InputFiles.BtnBrowseMCS, Write("way.tum", kTrajectory));
    UserClick(InputFiles.BtnTableMCS);
    ASSERT_TRUE(IsLoaded("FormTable"));
    UserClick(TableWindow.BtnPlain);
    EXPECT_EQ(InputFiles.LabelTableMCS.Text, "");
}

TEST_F(CloudDialog, ACloudIsNotWrittenAnewWithOtherNames) {
    const std::string bytes = BinaryPly();
    Choose(InputFiles.BtnBrowseMCS, Write("scan.ply", bytes));
    UserSetText(InputFiles.TextNameOCS, Write("numbered.txt", kNumbered));
    UserSetValue(InputFiles.OptionByCoordinate, 1);
    UserSetValue(InputFiles.CheckRenameMCS, 1);
    UserClick(InputFiles.BtnOK);
    EXPECT_NE(LastMessage().find("is read as a PLY cloud, and is not written anew"), std::string::npos);
    EXPECT_EQ(Contents(PathOf("scan.ply")), bytes);
    EXPECT_EQ(Job.Pairs(), 0);
}
