// The graphics windows on the desktop: opened, sized, activated and closed, from the screen and from the
// logic.
#include "ui/screen_view.h"

#include <QLabel>
#include <QMenu>
#include <QToolButton>
#include <cmath>

#include "core/fresh_start.h"
#include "core/settings.h"
#include "graphics/scene.h"
#include "paint/image.h"
#include "ui/screen_fixture.h"

using namespace corvinade;

namespace {
bool GraphicsMenuIsEnabled() {
    return Frame()->findChild<QMenu*>(QStringLiteral("MenueGraphicsWindow"))->menuAction()->isEnabled();
}
}  // namespace

TEST_F(ScreenByHand, OpensByItsEntryAndByTheKeyOfTheToolBar) {
    BeginWithPoints();
    EXPECT_FALSE(GraphicsMenuIsEnabled());
    Trigger("MenueGraphics");
    Trigger("ToolbarGraphics.Graphics");
    ASSERT_EQ(Screens().Open.size(), 2u);
    EXPECT_EQ(S(Outer(*Screens().Open[0]).windowTitle()), "Screen - DEFAULT");
    EXPECT_EQ(S(Outer(*Screens().Open[1]).windowTitle()), "Screen - 2");
    EXPECT_TRUE(View(*Screens().Open[1]).isVisible());
    EXPECT_TRUE(Action("MenueGraphics")->isChecked());
    EXPECT_TRUE(GraphicsMenuIsEnabled());
}

TEST_F(ScreenByHand, IsDrawnForTheSizeThatItHasFromItsFirstPaintOn) {
    BeginWithPoints();
    Trigger("MenueGraphics");
    const ScreenWindow& window = *Screens().Open.front();
    Serve();
    EXPECT_EQ(window.PaintCount, 1u);
    EXPECT_EQ(window.UndoCount, 1);
    EXPECT_EQ(View(window).size(), QSize(window.Screen.Width, window.Screen.Height));
    EXPECT_TRUE(Area().viewport()->rect().contains(Outer(window).geometry()));
}

TEST_F(ScreenByHand, BesideAMaximisedWindowIsFittedToTheSizeThatItGets) {
    BeginWithPoints();
    const ScreenWindow& first = OpenScreen();
    Outer(first).showMaximized();
    Serve();
    const ScreenWindow& window = OpenScreen();
    EXPECT_EQ(View(window).size(), QSize(window.Screen.Width, window.Screen.Height));
    EXPECT_EQ(window.UndoCount, 1);
    // Nine tenths of the picture, in the direction that is tighter.
    const double filled = std::max((window.ViewBox[1] - window.ViewBox[0]) / window.Screen.Width,
                                   (window.ViewBox[3] - window.ViewBox[2]) / window.Screen.Height);
    EXPECT_NEAR(filled * window.State.BildFaktor, 0.9, 1e-3);
}

TEST_F(ScreenByHand, ShowsThePixelsOfItsPicture) {
    BeginWithPoints();
    const ScreenWindow& window = OpenScreen();
    const double scale = Frame()->devicePixelRatioF();
    EXPECT_EQ(window.Screen.Scale, scale);
    EXPECT_EQ(window.Screen.PixelWidth, std::lround(window.Screen.Width * scale));
    const QImage shown = View(window).grab().toImage().convertToFormat(QImage::Format_RGB32);
    const QImage drawn = PictureOf(window);
    EXPECT_LE(std::abs(shown.width() - drawn.width()), 1);
    ASSERT_GT(window.Screen.StatusBarHeight, 10);
    const auto rows = static_cast<int>((window.Screen.Height - window.Screen.StatusBarHeight) * scale) - 1;
    for (int y = 0; y < rows; ++y)
        for (int x = 0; x < drawn.width() - 1; ++x)
            ASSERT_EQ(shown.pixel(x, y), drawn.pixel(x, y)) << x << ", " << y;
    // The corner of the cuboid is there, and it is as large in logical pixels at every scale.
    const QPoint corner(static_cast<int>(std::lround(Scene.PixelX[1])),
                        static_cast<int>(std::lround(Scene.PixelY[1])));
    EXPECT_NE(ColourAt(window, corner), QColor(Qt::black));
    EXPECT_EQ(ColourAt(window, corner - QPoint(4, 4)), QColor(Qt::black));
}

TEST_F(ScreenByHand, TellsTheLogicWhenItIsSized) {
    BeginWithPoints();
    const ScreenWindow& window = OpenScreen();
    const QSize borders = Outer(window).size() - View(window).size();
    Outer(window).resize(QSize(520, 410) + borders);
    Serve();
    EXPECT_EQ(window.Screen.Width, 520);
    EXPECT_EQ(window.Screen.Height, 410);
    EXPECT_EQ(window.Screen.PixelWidth, std::lround(520 * Frame()->devicePixelRatioF()));
}

TEST_F(ScreenByHand, FollowsTheLogicWhenThatSizesIt) {
    BeginWithPoints();
    ScreenWindow& window = OpenScreen();
    Outer(window).showMaximized();
    Serve();
    UserDid([&window] { ResizeScreenWindow(window, 444, 333); });
    Serve();
    EXPECT_FALSE(Outer(window).isMaximized());
    EXPECT_EQ(View(window).size(), QSize(444, 333));
    EXPECT_EQ(window.Screen.Width, 444);
    // Smaller than a window can be: what it is counts.
    UserDid([&window] { ResizeScreenWindow(window, 1, 1); });
    Serve();
    EXPECT_EQ(View(window).size(), QSize(window.Screen.Width, window.Screen.Height));
    EXPECT_GT(window.Screen.Width, 100);
}

TEST_F(ScreenByHand, IsActiveWhereTheUserHasPutIt) {
    BeginWithPoints();
    const ScreenWindow& first = OpenScreen();
    const ScreenWindow& second = OpenScreen();
    EXPECT_EQ(Screens().Active, &second);
    EXPECT_EQ(Area().activeSubWindow(), &Outer(second));
    Area().setActiveSubWindow(&Outer(first));
    Serve();
    EXPECT_EQ(Screens().Active, &first);
    UserDid([&second] { ActivateScreenWindow(const_cast<ScreenWindow&>(second)); });
    Serve();
    EXPECT_EQ(Area().activeSubWindow(), &Outer(second));
}

TEST_F(ScreenByHand, EntriesActOnTheOneOnTop) {
    BeginWithPoints();
    const ScreenWindow& first = OpenScreen();
    const ScreenWindow& second = OpenScreen();
    Trigger("MenüAnsichtFrontView");
    EXPECT_NEAR(second.State.RotAngles[0], 4.712388980384685, 1e-12);
    EXPECT_NEAR(first.State.RotAngles[0], -3.14159265358979, 1e-12);
    Area().setActiveSubWindow(&Outer(first));
    Trigger("ToolbarGraphics.ViewIso");
    EXPECT_NEAR(first.State.RotAngles[0], 210 / (180 / 3.14159265358979), 1e-12);
    EXPECT_NEAR(second.State.RotAngles[0], 4.712388980384685, 1e-12);
}

TEST_F(ScreenByHand, GoesWhenItIsClosedFromEitherSide) {
    BeginWithPoints();
    const ScreenWindow& first = OpenScreen();
    ScreenWindow& second = OpenScreen();
    Outer(first).close();
    Serve();
    ASSERT_EQ(Screens().Open.size(), 1u);
    EXPECT_EQ(Area().subWindowList().size(), 1 + (WidgetOf(*FindWindow("FormMainSheet")) != nullptr));
    UserDid([&second] { CloseScreenWindow(second); });
    Serve();
    EXPECT_TRUE(Screens().Open.empty());
    EXPECT_FALSE(Action("MenueGraphics")->isChecked());
    EXPECT_FALSE(GraphicsMenuIsEnabled());
}

TEST_F(ScreenByHand, GoesWithTheJob) {
    BeginWithPoints();
    OpenScreen();
    OpenScreen();
    ::Run.JobDirty = kFalse;
    ChooseNext(PathOf("new.cvn"));
    Trigger("MenuFileNew");
    EXPECT_TRUE(Screens().Open.empty());
    EXPECT_TRUE(Area().subWindowList().isEmpty());
}

TEST_F(ScreenByHand, TheFirstComesBackWhereItStood) {
    BeginWithPoints();
    const ScreenWindow& window = OpenScreen();
    Outer(window).setGeometry(33, 44, 555, 432);
    Serve();
    Outer(window).close();
    Serve();
    EXPECT_EQ(IniWertLesen("FormScreenLeft"), std::to_string(33 * kTwips));
    const ScreenWindow& again = OpenScreen();
    EXPECT_EQ(Outer(again).geometry(), QRect(33, 44, 555, 432));
    EXPECT_EQ(again.PaintCount, 1u);
    // The next one stands elsewhere, in the same size.
    const ScreenWindow& other = OpenScreen();
    EXPECT_EQ(Outer(other).size(), QSize(555, 432));
    EXPECT_NE(Outer(other).pos(), QPoint(33, 44));
}

TEST_F(ScreenByHand, FollowsTheResultOfACalculation) {
    BeginWithPoints();
    const ScreenWindow& window = OpenScreen();
    const auto before = window.PaintCount;
    Trigger("MenuTransformationCalculation");
    Click("FormTrafoBerechnung.BtnCalculate");
    Serve();
    EXPECT_GT(window.PaintCount, before);
    // 2 mm of one corner of eight, and the fit takes its part of it: less remains.
    EXPECT_GT(Scene.Points[kSceneSize][8], 0.5);
    EXPECT_LT(Scene.Points[kSceneSize][8], 2);
}
