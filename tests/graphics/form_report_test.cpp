// The report: what it says of a job, by the window's controls and in its outputs.
#include "graphics/form_report.h"

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "core/desktop_defaults.h"
#include "core/files.h"
#include "core/numbers.h"
#include "engine/calculation_job.h"

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
