// The window of a network among the others: what was asked of them before, and what they show behind a run.
#include "analysis/form_distance_scale.h"
#include "bundle/network_job.h"
#include "core/form_main.h"
#include "core/form_progress_bar.h"

using namespace corvinade;

namespace {

FormBündel& bundleWindow = BündelWindow;
using BundleAmongWindows = NetworkJob;

}  // namespace

TEST_F(BundleAmongWindows, AStopOfBeforeEndsNoAdjustment) {
    Read(network_.Text());
    for (Control* button : {&bundleWindow.BtnCalculate, &bundleWindow.Command1}) {
        ::Run.StopRequested = kTrue;
        UserClick(*button);
        EXPECT_FALSE(IsTrue(::Run.StopRequested));
    }
    EXPECT_NE(bundleWindow.TextRUN.Text.find("Iterations 3 "), std::string::npos)
        << bundleWindow.TextRUN.Text;
    const std::string status = Main.StatusBar_3.Text;
    EXPECT_LT(Val(status.substr(status.find("Biggest x ") + 10)), 1e-6) << status;
}

TEST_F(BundleAmongWindows, TheBusyPointerIsOnMeanwhile) {
    Read(network_.Text());
    int pointers = 0;
    Headless.OnYield = [&pointers] { pointers = ::Run.WaitPointers; };
    for (Control* button : {&bundleWindow.BtnCalculate, &bundleWindow.Command1}) {
        pointers = 0;
        UserClick(*button);
        EXPECT_EQ(pointers, 1);
        EXPECT_EQ(::Run.WaitPointers, 0);
    }
}

TEST_F(BundleAmongWindows, AnOpenDistanceScaleMeasuresTheAdjustedNetwork) {
    Read(network_.Text());
    Calculate();
    UserClick(Main.MenuTransformationDistanceScale);
    ASSERT_TRUE(IsLoaded("FormDistanceScale"));
    EXPECT_EQ(DistanceScale.Points->Count(), 17);
    UserSetText(bundleWindow.TextReduce, "50");
    Calculate();
    EXPECT_EQ(DistanceScale.Points->Count(), 11);
    EXPECT_EQ(DistanceScaleWindow.TabelleScale.Grid.Rows, 12);
}

TEST_F(BundleAmongWindows, AnotherNetworkTakesTheResultsOfTheOneBeforeFromTheWindow) {
    Read(network_.Text());
    Calculate();
    UserClick(bundleWindow.Command1);
    Read(SimulatedNetwork(4, 8).Text());
    ASSERT_TRUE(IsLoaded("FormBündel"));
    EXPECT_EQ(bundleWindow.TextWhatDO.Text + bundleWindow.TextRUN.Text + bundleWindow.TextResults.Text, "");
    EXPECT_TRUE(bundleWindow.Own.IsEmpty());
    EXPECT_EQ(bundleWindow.TextReduce.Text, "100");
}

TEST_F(BundleAmongWindows, APercentageThatLeavesNoObjectPointIsTold) {
    Read(network_.Text());
    const Matrix before = Bundle.Net.StationXYZ;
    UserSetText(bundleWindow.TextReduce, "5");  // Int(0.6) of 12
    Calculate();
    ASSERT_EQ(Messages().size(), 1u);
    EXPECT_NE(LastMessage().find("larger percentage of the object points"), std::string::npos)
        << LastMessage();
    EXPECT_EQ(Bundle.Net.StationXYZ.Elements, before.Elements);
}

TEST_F(BundleAmongWindows, ADistanceOfPointsAtOnePlaceIsToldAndTheRestIsAdjusted) {
    SimulatedNetwork same = network_;
    same.Objects[2] = same.Stations[1];
    Read(same.Text());
    Calculate();
    ASSERT_GE(Messages().size(), 1u);
    EXPECT_NE(Messages()[0].find("at the same place and is left out: \"S2\" to \"P3\""), std::string::npos)
        << Messages()[0];
    EXPECT_FALSE(bundleWindow.TextRUN.Text.empty());
}
