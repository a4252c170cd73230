// The tolerance of a job: its field, the word that follows from it, and the cells that are marked.
#include "engine/tolerance_check.h"

#include "core/form_units.h"
#include "core/job_file.h"
#include "core/job_tolerance.h"
#include "engine/calculation_job.h"

using namespace corvinade;

namespace {

class ToleranceOfJob : public CalculationJob {
protected:
    // Pairs that lie on each other but for the deviations (-1, 2, 0), (0, -2, 0.5) and (3, 0, 0).
    ToleranceOfJob() {
        AddPair({100, 0, 0}, {101, -2, 0});
        AddPair({0, 200, 10}, {0, 202, 9.5});
        AddPair({30, 40, 50}, {27, 40, 50});
        const std::size_t size = static_cast<std::size_t>(Job.Pairs()) + 1;
        Job.RVecX.resize(size);
        Job.RVecY.resize(size);
        Job.RVecZ.resize(size);
        ::Run.JobDataValid = ::Run.TrafoValid = kTrue;
    }
    static const std::string& Word() { return TrafoWindow.LabelVerdict.Text; }
    static void TakeOut(int pair, int axis) {
        Job.UseFlags[static_cast<std::size_t>(3 * (pair - 1) + axis)] = 0;
    }
    static int MarkedCells() {
        LookAt(TrafoWindow.Tabelle.Grid);
        int marked = 0;
        for (int row = 1; row < TrafoWindow.Tabelle.Grid.Rows; ++row)
            for (int col = kColName; col < kPointCols; ++col)
                if (CellBackColor(TrafoWindow.Tabelle.Grid, row, col) == kBeyondTolerance) ++marked;
        return marked;
    }
};

}  // namespace

TEST_F(ToleranceOfJob, WithoutOneThereIsNoWordAndNoMark) {
    Open();
    EXPECT_EQ(TrafoWindow.TextTolerance.Text, "");
    EXPECT_EQ(Word(), "");
    EXPECT_FALSE(TrafoWindow.LabelVerdict.Visible);
    EXPECT_EQ(MarkedCells(), 0);
}

// Of the sizes 1, 2, 0, 0, 2, 0.5, 3, 0, 0 three are above 1.5 and none above 3.
TEST_F(ToleranceOfJob, CellsBeyondItAreMarkedAndOneWordSaysPassOrFail) {
    Open();
    UserSetText(TrafoWindow.TextTolerance, "1.5");
    EXPECT_EQ(Word(), "fail");
    EXPECT_NE(TrafoWindow.LabelVerdict.ToolTip.find("3 of 9"), std::string::npos)
        << TrafoWindow.LabelVerdict.ToolTip;
    EXPECT_EQ(MarkedCells(), 3);
    EXPECT_EQ(CellBackColor(TrafoWindow.Tabelle.Grid, 1, kColY), kBeyondTolerance);
    EXPECT_EQ(ToleranceOf(Job), 1.5);
    EXPECT_EQ(::Run.JobDirty, kTrue);
    UserSetText(TrafoWindow.TextTolerance, "3");
    EXPECT_EQ(Word(), "pass") << "what is just as large keeps it";
    EXPECT_EQ(MarkedCells(), 0);
    UserSetText(TrafoWindow.TextTolerance, "");
    EXPECT_EQ(Word(), "");
    EXPECT_EQ(ToleranceOf(Job), 0);
}

TEST_F(ToleranceOfJob, WhatIsOutOfUseCountsForNothing) {
    PutTolerance(1.5, Job);
    TakeOut(1, 2);
    TakeOut(2, 2);
    EXPECT_EQ(CheckTolerance().Beyond, 1);
    TakeOut(3, 1);
    const ToleranceCheck check = CheckTolerance();
    EXPECT_EQ(check.Word, Verdict::Pass);
    EXPECT_EQ(check.InUse, 6);
    Open();
    EXPECT_EQ(MarkedCells(), 0);
    std::fill(Job.UseFlags.begin(), Job.UseFlags.end(), std::int16_t{0});
    EXPECT_EQ(CheckTolerance().Word, Verdict::None) << "nothing is checked";
}

TEST_F(ToleranceOfJob, ATextThatIsNoLengthIsSaidToBeNoneAndNothingIsChecked) {
    Open();
    UserSetText(TrafoWindow.TextTolerance, "1.5");
    for (const char* wrong : {"abc", "0", "-1", "1.5x"}) {
        UserSetText(TrafoWindow.TextTolerance, wrong);
        EXPECT_EQ(Word(), "no length") << wrong;
        EXPECT_EQ(ToleranceOf(Job), 0) << wrong;
        EXPECT_EQ(MarkedCells(), 0) << wrong;
    }
}

TEST_F(ToleranceOfJob, IsShownInTheUnitOfTheJobAndStaysTheSameLength) {
    Open();
    UserSetText(TrafoWindow.TextTolerance, "1.5");
    ShowWindow("FormUnits");
    UserSetIndex(UnitsWindow.ComboLength, 1);
    UserClick(UnitsWindow.BtnOK);
    ASSERT_NE(Units.LengthFactor, 1);
    double shown = 0;
    ASSERT_TRUE(TextToNumber(TrafoWindow.TextTolerance.Text, '.', shown));
    EXPECT_NEAR(shown / Units.LengthFactor, 1.5, 1e-12);
    EXPECT_EQ(ToleranceOf(Job), 1.5);
    EXPECT_NE(TrafoWindow.LabelTolerance.Text.find(Job.LengthUnitName), std::string::npos);
}

TEST_F(ToleranceOfJob, GoesWithTheJobFile) {
    PutTolerance(0.125, Job);
    SaveFileAs(PathOf("cell.cvn"));
    PutTolerance(0, Job);
    RunHandler([this] { OpenFile(PathOf("cell.cvn")); });
    EXPECT_EQ(ToleranceOf(Job), 0.125);
}
