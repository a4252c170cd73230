// The report: what it says of a job, by the window's controls and in its outputs.
#include "graphics/form_report.h"

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "core/desktop_defaults.h"
#include "core/files.h"
#include "core/numbers.h"
#include "engine/calculation_job.h"
#include "engine/result_state.h"
#include "graphics/form_picture.h"
#include "graphics/screen_window.h"

using namespace corvinade;

namespace {

FormReport& r = ReportWindow;

class ReportOfResult : public CalculationJob {
protected:
    ReportOfResult() { AddPairs(8); }
    static void OpenReport() { ASSERT_TRUE(UserClick(Main.MenuFileReport)); }
    static void CalculateJob() {
        Open();
        Calculate();
    }
    static const ReportSection* Section(const std::string& title) {
        for (const ReportSection& section : r.Made.Sections)
            if (section.Title == title) return &section;
        return nullptr;
    }
    void Save(const std::string& name) {
        Headless.Answers["save"].push_back(PathOf(name));
        ASSERT_TRUE(UserClick(r.BtnSave));
    }
};

}  // namespace

TEST_F(ReportOfResult, WithoutAResultItSaysWhyThereIsNone) {
    OpenReport();
    EXPECT_TRUE(r.LabelProblem.Visible);
    EXPECT_NE(r.LabelProblem.Text.find("make a calculation"), std::string::npos);
    EXPECT_FALSE(r.BtnSave.Enabled);
    CalculateJob();
    EXPECT_TRUE(r.BtnSave.Enabled) << "it follows the result while it is open";
    EXPECT_FALSE(r.LabelProblem.Visible);
}

TEST_F(ReportOfResult, HasARowForEachPointWithTheNumbersOfTheJob) {
    CalculateJob();
    OpenReport();
    const ReportSection* points = Section("Points");
    ASSERT_NE(points, nullptr);
    ASSERT_EQ(points->Tables.at(0).Rows.size(), 8U);
    for (int i = 1; i <= 8; ++i) {
        const std::vector<ReportCell>& row = points->Tables[0].Rows[static_cast<std::size_t>(i - 1)];
        EXPECT_EQ(row[0].Text, Job.Start.Name[static_cast<std::size_t>(i)]);
        for (int axis = 1; axis <= 3; ++axis) {
            double shown = 0;
            ASSERT_TRUE(TextToNumber(row[static_cast<std::size_t>(axis)].Text, '.', shown));
            EXPECT_NEAR(shown, TransformedPoint(i)(axis) - TargetPoint(i)(axis), 0.00051);
        }
    }
    EXPECT_NE(Section("Parameters"), nullptr);
    EXPECT_EQ(Section("Protocol"), nullptr) << "only where it is asked for";
}

TEST_F(ReportOfResult, HasWhatIsChosenAndOfThePointsTheWorst) {
    CalculateJob();
    OpenReport();
    UserSetValue(r.CheckParameters, 0);
    UserSetValue(r.CheckStatistics, 0);
    UserSetValue(r.CheckNotes, 0);
    UserSetValue(r.CheckProtocol, 1);
    UserSetText(r.TextWorst, "2");
    EXPECT_EQ(Section("Parameters"), nullptr);
    EXPECT_EQ(Section("How far it can be trusted"), nullptr);
    EXPECT_EQ(Section("Notes"), nullptr);
    ASSERT_NE(Section("Protocol"), nullptr);
    EXPECT_FALSE(Section("Protocol")->Text.empty());
    const std::vector<std::vector<ReportCell>>& rows = Section("Points")->Tables.at(0).Rows;
    ASSERT_EQ(rows.size(), 2U);
    std::vector<double> sizes;
    for (int i = 1; i <= 8; ++i) {
        const Vec3 image = TransformedPoint(i), target = TargetPoint(i);
        sizes.push_back(std::hypot(image(1) - target(1), image(2) - target(2), image(3) - target(3)));
    }
    const auto worst = std::max_element(sizes.begin(), sizes.end()) - sizes.begin();
    EXPECT_EQ(rows[0][0].Text, Job.Start.Name[static_cast<std::size_t>(worst + 1)]);
    UserSetText(r.TextWorst, "two");
    EXPECT_TRUE(r.LabelProblem.Visible);
    EXPECT_EQ(Section("Points")->Tables.at(0).Rows.size(), 8U);
}

TEST_F(ReportOfResult, SaysPassOrFailAndMarksWhatIsBeyondTheTolerance) {
    CalculateJob();
    OpenReport();
    EXPECT_EQ(r.Made.Verdict, "");
    UserSetText(TrafoWindow.TextTolerance, "1000");
    EXPECT_EQ(r.Made.Verdict, "pass");
    UserSetText(TrafoWindow.TextTolerance, "0.000001");
    EXPECT_EQ(r.Made.Verdict, "fail");
    EXPECT_TRUE(Section("Points")->Tables.at(0).Rows.at(0).at(1).Marked);
}

TEST_F(ReportOfResult, SaysThatItsResultIsOutOfDate) {
    DesktopDefaults.ResultState = true;
    CalculateJob();
    OpenReport();
    EXPECT_TRUE(r.Made.Warnings.empty());
    UserSetValue(TrafoWindow.CheckScaleXYZ, 1);
    ASSERT_EQ(r.Made.Warnings.size(), 1U);
    EXPECT_NE(r.Made.Warnings[0].find("have been changed"), std::string::npos);
}

TEST_F(ReportOfResult, NamesNeitherBreakThePageNorBecomeFormulas) {
    const std::string name = "<b>&\"=1";
    Job.Start.Name[1] = Job.Target.Name[1] = name;
    CalculateJob();
    OpenReport();
    UserSetText(r.TextProject, "=cmd()");
    const std::string html = ReportHtml(r.Made), csv = ReportCsv(r.Made);
    EXPECT_EQ(html.find(name), std::string::npos);
    EXPECT_NE(html.find("&lt;b&gt;&amp;&quot;=1"), std::string::npos);
    EXPECT_NE(csv.find("\"<b>&\"\"=1\";"), std::string::npos);
    EXPECT_NE(csv.find("Project;'=cmd()\r\n"), std::string::npos);
}

TEST_F(ReportOfResult, IsWrittenInTheFormOfItsEnding) {
    CalculateJob();
    OpenReport();
    Save("r.html");
    EXPECT_EQ(Contents(PathOf("r.html")), ReportHtml(r.Made));
    Save("r.CSV");
    EXPECT_EQ(Contents(PathOf("r.CSV")), ReportCsv(r.Made));
    ReportBy.Pdf = [](const Report& report) { return "%PDF of " + report.Title; };
    Save("r.pdf");
    ReportBy = {};
    EXPECT_EQ(Contents(PathOf("r.pdf")), "%PDF of " + r.Made.Title);
    Save("r.doc");
    EXPECT_FALSE(std::filesystem::exists(PathOf("r.doc")));
}

TEST_F(ReportOfResult, ALogoThatIsNoPictureIsSaidAndLeftOut) {
    CalculateJob();
    OpenReport();
    UserSetText(r.TextLogo, Write("logo.png", "no picture"));
    EXPECT_TRUE(r.LabelProblem.Visible);
    EXPECT_EQ(r.Made.LogoBytes, "");
    EXPECT_TRUE(r.BtnSave.Enabled);
    UserSetText(r.TextLogo, Write("mark.png", "\x89PNG\r\n\x1a\n..."));
    EXPECT_FALSE(r.LabelProblem.Visible);
    EXPECT_NE(ReportHtml(r.Made).find("data:image/png;base64,iVBORw0KGgouLi4="), std::string::npos);
}

TEST_F(ReportOfResult, NamesBothMeasuresOfTheSameDeviations) {
    CalculateJob();
    OpenReport();
    double sum = 0;
    for (int i = 1; i <= 8; ++i)
        for (int axis = 1; axis <= 3; ++axis)
            sum += std::pow(TransformedPoint(i)(axis) - TargetPoint(i)(axis), 2);
    // 24 coordinates in use, six parameters.
    const std::string byCoordinates = FormatNumber(std::sqrt(sum / 23), "0.000"),
                      byRedundancy = FormatNumber(std::sqrt(sum / 18), "0.000");
    const std::vector<ReportCell>& row = Section("Result")->Tables.at(0).Rows.at(0);
    EXPECT_EQ(row[0].Text, "s0, by the coordinates in use less one");
    EXPECT_EQ(row[1].Text, byCoordinates);
    std::string lines;
    for (const std::string& line : Section("How far it can be trusted")->Lines) lines += line + "\n";
    EXPECT_NE(lines.find("This s0 = " + byRedundancy + " divides by the redundancy, 18"), std::string::npos)
        << lines;
    EXPECT_NE(lines.find("the s0 = " + byCoordinates + " of the result"), std::string::npos) << lines;
}

TEST_F(ReportOfResult, TellsAResultThatTheJobWasOpenedWith) {
    DesktopDefaults.ResultState = true;
    CalculateJob();
    OpenReport();
    std::vector<std::string> values;
    for (const std::vector<ReportCell>& row : Section("Parameters")->Tables.at(0).Rows)
        values.push_back(row.at(2).Text);
    Headless.Answers["save"].push_back(PathOf("stored.cvn"));
    ASSERT_TRUE(UserClick(Main.MenuFileSaveAs));
    Headless.Answers["open"].push_back(PathOf("stored.cvn"));
    ASSERT_TRUE(UserClick(Main.MenuFileOpen));
    ASSERT_TRUE(StoredResultStands());
    OpenReport();
    EXPECT_TRUE(r.BtnSave.Enabled) << r.LabelProblem.Text;
    std::vector<std::string> stored;
    for (const std::vector<ReportCell>& row : Section("Parameters")->Tables.at(0).Rows)
        stored.push_back(row.at(2).Text);
    EXPECT_EQ(stored, values);
    std::string lines;
    for (const std::string& line : Section("Result")->Lines) lines += line + "\n";
    EXPECT_NE(lines.find("the job was opened with"), std::string::npos) << lines;
}

TEST_F(ReportOfResult, HasThePicturesThatAreTicked) {
    CalculateJob();
    OpenScreenWindow();
    Job.nSavedViews = 1;
    Main.ComboSaveView.Items = {"front"};
    ReportBy.Picture = [](const ScreenWindow& window) { return "picture of " + window.Caption; };
    PictureBy.File = [](const PictureOrder& order, PictureFormat) {
        return std::string(order.Of == PictureSource::Trumpet ? "trumpet" : "view");
    };
    OpenReport();
    GridState& grid = r.GridPictures.Grid;
    ASSERT_EQ(grid.Rows, 4) << "heading, window, saved view, trumpet";
    EXPECT_EQ(CellText(grid, 2, 1), "Saved view: front");
    ASSERT_EQ(Section("Pictures")->Pictures.size(), 1U) << "windows alone, until more is ticked";
    UserClickCell(r.GridPictures, 2, 0, false);
    UserClickCell(r.GridPictures, 3, 1, false);
    ASSERT_EQ(Section("Pictures")->Pictures.size(), 3U);
    EXPECT_EQ(Section("Pictures")->Pictures[1].Bytes, "view");
    EXPECT_EQ(Section("Pictures")->Pictures[2].Bytes, "trumpet");
    UserClickCell(r.GridPictures, 1, 0, false);
    EXPECT_EQ(Section("Pictures")->Pictures.size(), 2U);
    EXPECT_EQ(CellText(grid, 1, 0), "");
    UserClick(r.BtnClose);
    OpenReport();
    EXPECT_EQ(Section("Pictures")->Pictures.size(), 2U) << "the ticks are those of the last time";
    UserSetValue(r.CheckPictures, 0);
    EXPECT_EQ(Section("Pictures"), nullptr);
    ReportBy = {};
    PictureBy = {};
}

TEST_F(ReportOfResult, IsPrintedWhereThereIsAPrinterToAskFor) {
    CalculateJob();
    OpenReport();
    EXPECT_FALSE(r.BtnPrint.Enabled) << "without a screen nobody can be asked";
    static std::string printed;
    ReportBy.Print = [](const Report& report) { printed = report.Title; };
    UserSetText(r.TextTitle, "Cell 4");
    ASSERT_TRUE(r.BtnPrint.Enabled);
    UserClick(r.BtnPrint);
    EXPECT_EQ(printed, "Cell 4");
    ReportBy = {};
}
