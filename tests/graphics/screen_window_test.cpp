// Opening, closing and sizing of graphics windows, and what a new one begins with.
#include "graphics/screen_window.h"

#include <cmath>

#include "core/settings.h"
#include "core/text.h"
#include "graphics/drawing.h"
#include "graphics/form_color_bar.h"
#include "graphics/graphics_fixture.h"
#include "graphics/graphics_refresh.h"
#include "graphics/view_undo.h"

using namespace corvinade;

using GraphicsWindows = GraphicsJob;

namespace {

int opened = 0, closed = 0;

void CountSurface(Surface& screen) {
    ++opened;
    screen.Close = [](Surface&) { ++closed; };
}

}  // namespace

TEST_F(GraphicsWindows, ANewOneBeginsWithItsStartValues) {
    AddPoints("A", {0, 0, 0}, {3, 0, 4});
    AddPoints("B", {1000, 200, 0}, {1000, 200, 0});
    const ScreenWindow& window = OpenSized(700, 700);
    const ScreenRecord& state = window.State;
    EXPECT_EQ(ViewAngle(window, 1), -3.14159265358979);
    EXPECT_EQ(ViewAngle(window, 2), 0);
    EXPECT_EQ(ViewAngle(window, 3), 0);
    EXPECT_EQ(state.RotAngles.size(), 6U);
    EXPECT_EQ(state.BigNess, 2);
    EXPECT_EQ(state.AnzKlassenPos, 10);
    EXPECT_EQ(state.AnzKlassenNeg, 10);
    EXPECT_EQ(state.showVeX, kTrue);
    EXPECT_EQ(state.showVeY, kTrue);
    EXPECT_EQ(state.showVeZ, kTrue);
    EXPECT_EQ(state.ColorBased, "");
    EXPECT_EQ(state.CS_Type, "CART");
    EXPECT_EQ(state.Max, 5);
    EXPECT_EQ(state.Min, 0);
    EXPECT_EQ(state.GridLength, 100);
    EXPECT_EQ(state.VectorMode, kFalse);
    EXPECT_EQ(state.FlagMode, kFalse);
    EXPECT_EQ(state.LineMode, kFalse);
    // Fitted: 1000 mm over nine tenths of 700 pixels; a seventh of the picture is 158.7 mm.
    EXPECT_FLOAT_EQ(state.BildFaktor, 0.63F);
    EXPECT_EQ(state.ADis, 100);
    EXPECT_EQ(state.BDis, 100);
    EXPECT_EQ(state.Cdis, 100);
    EXPECT_EQ(window.PaintCount, 1U);
}

TEST_F(GraphicsWindows, TheGridOfANewOneIsOfPowersOfTenAndAtLeastOne) {
    AddPoints("A", {0, 0, 0}, {0, 0, 0});
    AddPoints("B", {1e6, 0, 0}, {1e6, 0, 0});
    EXPECT_EQ(OpenSized(700, 700).State.ADis, 100000);
    Job = JobRecord{};
    ++::Run.JobGeneration;
    AddPoints("A", {0, 0, 0}, {0, 0, 0});
    AddPoints("B", {0.01, 0, 0}, {0.01, 0, 0});
    EXPECT_EQ(OpenSized(700, 700).State.ADis, 1);
    Job = JobRecord{};
    ++::Run.JobGeneration;
    AddPoints("A", {0, 0, 0}, {0, 0, 0});
    AddPoints("B", {1e12, 0, 0}, {1e12, 0, 0});
    EXPECT_EQ(OpenSized(700, 700).State.ADis, 1000000000);
}

TEST_F(GraphicsWindows, BearTheirNumbersAndFillTheLowestThatIsFree) {
    FivePoints();
    ScreenWindow& first = OpenScreenWindow();
    EXPECT_EQ(first.Caption, "Screen - DEFAULT");
    ScreenWindow& second = OpenScreenWindow();
    EXPECT_EQ(second.Caption, "Screen - 2");
    EXPECT_EQ(OpenScreenWindow().Caption, "Screen - 3");
    const std::uint64_t id = second.Id;
    CloseScreenWindow(second);
    EXPECT_FALSE(ScreenIsOpen(id));
    ScreenWindow& again = OpenScreenWindow();
    EXPECT_EQ(again.Caption, "Screen - 2");
    EXPECT_NE(again.Id, id);
    CloseScreenWindow(first);
    EXPECT_EQ(OpenScreenWindow().Caption, "Screen - DEFAULT");
}

TEST_F(GraphicsWindows, TheActiveOneIsTheLastOpenedUntilAnotherIsChosen) {
    FivePoints();
    EXPECT_EQ(findLFDFORM(), nullptr);
    ScreenWindow& first = OpenScreenWindow();
    ScreenWindow& second = OpenScreenWindow();
    EXPECT_EQ(findLFDFORM(), &second);
    ActivateScreenWindow(first);
    EXPECT_EQ(findLFDFORM(), &first);
    CloseScreenWindow(first);
    EXPECT_EQ(findLFDFORM(), &second);
    CloseScreenWindow(second);
    EXPECT_EQ(findLFDFORM(), nullptr);
}

TEST_F(GraphicsWindows, MenusComeWithTheFirstAndGoWithTheLast) {
    FivePoints();
    ProgrammLogik();
    EXPECT_FALSE(Main.MenueGraphicsWindow.Enabled);
    UserClick(Main.MenueGraphics);
    UserClick(Main.ToolbarGraphics_Graphics);
    ASSERT_EQ(Screens().Open.size(), 2U);
    EXPECT_TRUE(Main.MenueGraphicsWindow.Enabled);
    EXPECT_TRUE(Main.MenueGraphics.Checked);
    EXPECT_TRUE(Main.MenüAnsichtAnpassen.Enabled);
    EXPECT_TRUE(Main.ToolbarGraphics_ZoomIn.Enabled);
    CloseScreenWindow(*Screens().Open.front());
    EXPECT_TRUE(Main.MenüAnsichtAnpassen.Enabled);
    CloseScreenWindow(*Screens().Open.front());
    EXPECT_FALSE(Main.MenueGraphicsWindow.Enabled);
    EXPECT_FALSE(Main.MenueGraphics.Checked);
    EXPECT_FALSE(Main.MenüAnsichtAnpassen.Enabled);
    EXPECT_FALSE(Main.ToolbarGraphics_ZoomIn.Enabled);
    EXPECT_TRUE(Main.ToolbarGraphics_Graphics.Enabled);
}

TEST_F(GraphicsWindows, SettingsOfTheFileReplaceStartValuesKeyByKey) {
    FivePoints();
    Run.SettingsFilePath = Write(
        "Corvinade.ini",
        "[LocalGraphics]\r\nVectorMode=True\r\nBigNess=5\r\nMax=0.75\r\nCS_Type=CYL\r\n[LastEntry]\r\n");
    IniLesen();
    const ScreenRecord& state = OpenScreenWindow().State;
    EXPECT_EQ(state.VectorMode, kTrue);
    EXPECT_EQ(state.BigNess, 5);
    EXPECT_EQ(state.Max, 0.75);
    EXPECT_EQ(state.CS_Type, "CYL");
    EXPECT_EQ(state.AnzKlassenPos, 10);  // no key in the file
    EXPECT_GT(state.ADis, 0);
}

TEST_F(GraphicsWindows, EveryStoredSettingComesFromTheFileAndGoesBackToIt) {
    FivePoints();
    const std::string stored =
        "[LocalGraphics]\r\nVectorMode=True\r\nBigNess=5\r\nVec_Maßstab=12.5\r\nGridLength=77\r\n"
        "AnzKlassenPos=4\r\nAnzKlassenNeg=6\r\nAusserhalbTol=True\r\nMin=-0.25\r\nMax=0.75\r\n"
        "showVeX=False\r\nshowVeY=True\r\nshowVeZ=False\r\nColorBased=y\r\n"
        "ShowOnlyUsedComponent=True\r\nOuterColor=65793\r\nCS_Type=SPH\r\nBinärModus=True\r\n"
        "GridXY=True\r\nGridYZ=False\r\nGridZX=True\r\nADis=3\r\nBDis=4\r\nCdis=5\r\n"
        "ShowGridDim=True\r\n";
    Run.SettingsFilePath = Write("Corvinade.ini", stored + "\r\n[LastEntry]\r\n");
    IniLesen();
    const ScreenRecord state = OpenScreenWindow().State;
    EXPECT_EQ(state.VectorMode, kTrue);
    EXPECT_EQ(state.BigNess, 5);
    EXPECT_EQ(state.Vec_Maßstab, 12.5F);
    EXPECT_EQ(state.GridLength, 77);
    EXPECT_EQ(state.AnzKlassenPos, 4);
    EXPECT_EQ(state.AnzKlassenNeg, 6);
    EXPECT_EQ(state.AusserhalbTol, kTrue);
    EXPECT_EQ(state.Min, -0.25);
    EXPECT_EQ(state.Max, 0.75);
    EXPECT_EQ(state.showVeX, kFalse);
    EXPECT_EQ(state.showVeY, kTrue);
    EXPECT_EQ(state.showVeZ, kFalse);
    EXPECT_EQ(state.ColorBased, "y");
    EXPECT_EQ(state.ShowOnlyUsedComponent, kTrue);
    EXPECT_EQ(state.OuterColor, 65793);
    EXPECT_EQ(state.CS_Type, "SPH");
    EXPECT_EQ(state.BinärModus, kTrue);
    EXPECT_EQ(state.GridXY, kTrue);
    EXPECT_EQ(state.GridYZ, kFalse);
    EXPECT_EQ(state.GridZX, kTrue);
    EXPECT_EQ(state.ADis, 3);
    EXPECT_EQ(state.BDis, 4);
    EXPECT_EQ(state.Cdis, 5);
    EXPECT_EQ(state.ShowGridDim, kTrue);
    // What the user changes comes in place of what was read, all else as it was.
    UserClick(Main.ToolbarGraphics_PointsBigger);
    Settings.LocalGraphics = ScreenRecord{};
    CloseProgram();
    std::string expected = stored;
    expected.replace(expected.find("BigNess=5"), 9, "BigNess=6");
    const std::string written = DecodeText(Contents(Run.SettingsFilePath));
    EXPECT_NE(written.find(expected), std::string::npos) << written;
}

TEST_F(GraphicsWindows, TheFirstPaintHasTheTwoColoursThatTheSettingsOfTheFileAskFor) {
    FivePoints();
    Run.SettingsFilePath = Write("Corvinade.ini",
                                 "[GraphicsSettings]\r\nShowColorBar=True\r\n"
                                 "[LocalGraphics]\r\nBinärModus=True\r\n[LastEntry]\r\n");
    IniLesen();
    ASSERT_TRUE(IsTrue(OpenScreenWindow().State.BinärModus));
    // Sizes of 2.236, 2.062 and 3 mm against a limit of 3 in ten classes: 8, 7 and 11.
    constexpr float kGreen = 0x00FF00, kWhite = 0xFFFFFF;
    EXPECT_EQ(Cell(1, kSceneColour), kGreen);
    EXPECT_EQ(Cell(2, kSceneColour), kWhite);
    EXPECT_EQ(Cell(3, kSceneColour), kWhite);
}

TEST_F(GraphicsWindows, SettingsThatNoWindowCanShowAreBroughtToThoseThatOneCan) {
    FivePoints();
    Run.SettingsFilePath = Write("Corvinade.ini",
                                 "[LocalGraphics]\r\nBigNess=-9\r\nAnzKlassenPos=0\r\nVec_Maßstab=0\r\n"
                                 "AnzKlassenNeg=20000\r\nCS_Type=POL\r\nADis=-7\r\n[LastEntry]\r\n");
    IniLesen();
    const ScreenRecord& state = OpenScreenWindow().State;
    EXPECT_EQ(state.BigNess, 1);
    EXPECT_EQ(state.AnzKlassenPos, 1);
    EXPECT_EQ(state.AnzKlassenNeg, 100);
    EXPECT_EQ(state.CS_Type, "CART");
    EXPECT_EQ(state.Vec_Maßstab, 400.0F);
    EXPECT_EQ(state.ADis, 0);
}

TEST_F(GraphicsWindows, ClosingLeavesItsSettingsForTheNextProgramRun) {
    FivePoints();
    EXPECT_FALSE(GraphicsDefaultsTaken());
    ScreenWindow& window = OpenScreenWindow();
    window.State.BigNess = 9;
    window.State.GridYZ = kTrue;
    CloseScreenWindow(window);
    EXPECT_TRUE(GraphicsDefaultsTaken());
    EXPECT_EQ(Settings.LocalGraphics.BigNess, 9);
    EXPECT_EQ(Settings.LocalGraphics.GridYZ, kTrue);
    // Without a settings file a new window begins as ever.
    EXPECT_EQ(OpenScreenWindow().State.BigNess, 2);
}

TEST_F(GraphicsWindows, OfAllThatCloseAtOnceTheActiveOneLeavesTheSettings) {
    FivePoints();
    OpenScreenWindow().State.BigNess = 5;
    ScreenWindow& active = OpenScreenWindow();
    active.State.BigNess = 6;
    OpenScreenWindow().State.BigNess = 7;
    ActivateScreenWindow(active);
    CloseAllGraphicsWindows();
    EXPECT_TRUE(Screens().Open.empty());
    EXPECT_EQ(Settings.LocalGraphics.BigNess, 6);
}

TEST_F(GraphicsWindows, AnewSizeMakesANewPictureAndPaintsTheSameView) {
    FivePoints();
    opened = closed = 0;
    FillSurface = CountSurface;
    ScreenWindow& window = OpenSized(300, 200);
    EXPECT_EQ(opened, 1);
    const float factor = window.State.BildFaktor;
    const std::uint64_t paints = window.PaintCount;
    ResizeScreenWindow(window, 400, 100);
    EXPECT_EQ(PictureWidth(window), 400);
    EXPECT_EQ(PictureHeight(window), 100);
    EXPECT_EQ(window.PaintCount, paints + 1);
    EXPECT_EQ(window.State.BildFaktor, factor);
    EXPECT_EQ(opened, 2);
    EXPECT_EQ(closed, 1);
    ResizeScreenWindow(window, 400, 100);
    EXPECT_EQ(opened, 2);
    CloseScreenWindow(window);
    EXPECT_EQ(closed, 2);
}

TEST_F(GraphicsWindows, PicturesHaveAtLeastOnePixelAndNoEndlessSides) {
    FivePoints();
    ScreenWindow& window = OpenSized(0, -5);
    EXPECT_EQ(PictureWidth(window), 1);
    EXPECT_EQ(PictureHeight(window), 1);
    EXPECT_TRUE(std::isfinite(window.State.BildFaktor));
    IsoView(window);
    GrafikAnpassen(window);
    ZoomIn(window);
    ResizeScreenWindow(window, 2000000000, 1);
    EXPECT_LE(PictureWidth(window), 16384);
}

TEST_F(GraphicsWindows, OpenOverJobsWithoutPairsOfOnePointAndOfNoData) {
    const ScreenWindow& empty = OpenScreenWindow();
    EXPECT_EQ(empty.State.BildFaktor, 1.0F);
    EXPECT_EQ(empty.State.Max, 0);
    EXPECT_GE(empty.State.ADis, 1);
    AddTargetOnly("T", {1, 2, 3});
    EXPECT_EQ(OpenScreenWindow().State.Max, 0);
    Initialisieren();
    EXPECT_EQ(OpenScreenWindow().State.BildFaktor, 1.0F);
}

TEST_F(GraphicsWindows, AllOfThemFollowAChangedJobAndAResult) {
    FivePoints();
    ScreenWindow& first = OpenScreenWindow();
    ScreenWindow& second = OpenScreenWindow();
    const std::uint64_t paints = first.PaintCount;
    Job.Transformed.X[1] = 500;
    UpdateAllGraphicsWindows();
    EXPECT_EQ(first.PaintCount, paints + 1);
    EXPECT_EQ(second.PaintCount, 2U);
    EXPECT_EQ(Cell(1, kSceneX), 500.0F);
    Run.JobDataValid = kFalse;
    UpdateAllGraphicsWindows();
    EXPECT_EQ(first.PaintCount, paints + 1);
}

TEST_F(GraphicsWindows, TheLastOneTakesTheColourBarDialogWithIt) {
    FivePoints();
    ScreenWindow& first = OpenScreenWindow();
    ScreenWindow& second = OpenScreenWindow();
    first.State.AnzKlassenPos = 33;
    ShowWindow("FormColorBar");
    EXPECT_EQ(ColorBarWindow.TextAnzahlTolKlassePos.Text, "10");
    CloseScreenWindow(second);
    EXPECT_EQ(ColorBarWindow.TextAnzahlTolKlassePos.Text, "33");
    CloseScreenWindow(first);
    EXPECT_FALSE(IsLoaded("FormColorBar"));
}
