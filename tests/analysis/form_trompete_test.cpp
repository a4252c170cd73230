// The window of the trumpet plot by its controls.
#include "analysis/form_trompete.h"

#include "analysis/distance_job.h"

using namespace corvinade;

namespace {

class TrumpetGraph : public DistanceJob {
protected:
    static void OpenGraph() {
        Open();
        ASSERT_TRUE(UserClick(DistanceScaleWindow.BtnTrumpetGraph));
        Trumpet_Draw();
    }
    // Where a pair is in the picture.
    static void MouseAt(double distance, double delta) {
        const TrumpetPlot plot = PlotOf(Trumpet.Range, Trumpet.Place);
        Trumpet_MouseMove(plot.X(distance), plot.Y(delta));
    }
};

TEST_F(TrumpetGraph, OpensBesideTheTableWithItsStoredPlace) {
    Triangle();
    OpenGraph();
    EXPECT_TRUE(IsLoaded("FormDistanceScale"));
    EXPECT_TRUE(IsLoaded("FormTrompete"));
    EXPECT_EQ(Trumpet.Window.Place.Height, 10845);
    EXPECT_EQ(Trumpet.Window.Place.Width, 13845);
    Trumpet.Window.Place = {11, 12, 13, 14};
    UserEscape(FormTrompete_Entry);
    EXPECT_FALSE(IsLoaded("FormTrompete"));
    UserClick(DistanceScaleWindow.BtnTrumpetGraph);
    EXPECT_EQ(Trumpet.Window.Place.Left, 11);
    EXPECT_EQ(Trumpet.Window.Place.Height, 14);
}

TEST_F(TrumpetGraph, SpansThePairsOfTheTable) {
    Triangle();
    OpenGraph();
    EXPECT_EQ(Trumpet.Range, (TrumpetRange{3, 16, -2, 3}));
}

TEST_F(TrumpetGraph, ThePointUnderTheMouseNamesItsPair) {
    Triangle();
    Job.LengthUnitName = "millimeter";
    OpenGraph();
    MouseAt(10, -2);
    EXPECT_EQ(Trumpet.LabelPair.Text, "B - C: distance 10.000, delta s -2.000 millimeter");
    MouseAt(16, 3);
    EXPECT_EQ(Trumpet.LabelPair.Text, "A - C: distance 16.000, delta s 3.000 millimeter");
    MouseAt(3, -1);
    EXPECT_EQ(Trumpet.LabelPair.Text, "");
    Trumpet_MouseMove(-50, 1e9);
    EXPECT_EQ(Trumpet.LabelPair.Text, "");
}

TEST_F(TrumpetGraph, FollowsTheOptionsAndStaysWhenTheTableIsClosed) {
    Pair("A", {0, 0, 0}, {0, 0, 0}, {0, 0, 0});
    Pair("B", {10, 0, 0}, {12, 0, 0}, {11, 0, 0});
    OpenGraph();
    EXPECT_EQ(Trumpet.Range.YMax, 2);
    MouseAt(12, 2);
    UserSetValue(DistanceScaleWindow.OptionWithCal, 1);
    EXPECT_EQ(Trumpet.Range.YMax, 1);
    EXPECT_EQ(Trumpet.LabelPair.Text, "");
    EXPECT_FALSE(Trumpet.Drawn);
    UserClose(FormDistanceScale_Entry);
    Trumpet_Draw();
    MouseAt(12, 1);
    EXPECT_EQ(Trumpet.LabelPair.Text.substr(0, 6), "A - B:");
}

TEST_F(TrumpetGraph, IsDrawnOnceForEachSize) {
    Triangle();
    OpenGraph();
    const std::uint64_t drawings = Trumpet.Drawings;
    Trumpet_Draw();
    Trumpet_Resize(Trumpet.Place);
    Trumpet_Draw();
    EXPECT_EQ(Trumpet.Drawings, drawings);
    TrumpetPlace wider = Trumpet.Place;
    wider.Width += 100;
    Trumpet_Resize(wider);
    Trumpet_Draw();
    EXPECT_NE(Trumpet.Drawings, drawings);
    EXPECT_EQ(Trumpet.Raster.Width, wider.Width - wider.Left - wider.Right);
}

TEST_F(TrumpetGraph, ADrawingThatIsCancelledIsNotWhole) {
    Triangle();
    OpenGraph();
    Cloud(7200);
    Headless.OnYield = [] { UserClick(Progress.BtnCancel); };
    DistanceScale.Points = std::make_shared<const DistancePoints>(TakeDistancePoints(false));
    Trumpet_PointsChanged();
    EXPECT_TRUE(Trumpet.Cut);
    EXPECT_FALSE(IsLoaded("FormProgressBar"));
    Trumpet_Draw();
    EXPECT_TRUE(Trumpet.Cut);
    EXPECT_FALSE(IsLoaded("FormProgressBar"));
}

// A picture of its own is drawn anew with all pairs; only axes that were never found for all of them leave
// some out.
TEST_F(TrumpetGraph, AxesThatLackPairsAreToldFromAPictureThatDoes) {
    Cloud(7200);
    DistanceScale.Points = std::make_shared<const DistancePoints>(TakeDistancePoints(false));
    ShowWindow("FormTrompete");
    EXPECT_FALSE(Trumpet.Cut);
    Headless.OnYield = [] { UserClick(Progress.BtnCancel); };
    Trumpet_Draw();
    EXPECT_TRUE(Trumpet.Cut);
    EXPECT_FALSE(Trumpet.RangeCut);
    Trumpet_PointsChanged();
    EXPECT_TRUE(Trumpet.Cut);
    EXPECT_TRUE(Trumpet.RangeCut);
}

TEST_F(TrumpetGraph, AWindowClosedDuringTheDrawingStaysClosed) {
    Cloud(7200);
    DistanceScale.Points = std::make_shared<const DistancePoints>(TakeDistancePoints(false));
    ShowWindow("FormTrompete");
    Headless.OnYield = [] {
        Headless.OnYield = nullptr;
        UserClose(FormTrompete_Entry);
    };
    Trumpet_Draw();
    EXPECT_FALSE(IsLoaded("FormTrompete"));
    EXPECT_TRUE(Trumpet.Raster.Pixels.empty());
}

}  // namespace
