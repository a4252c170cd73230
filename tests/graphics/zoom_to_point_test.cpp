// A point of the main sheet, shown from near.
#include "analysis/form_main_sheet.h"
#include "core/desktop_defaults.h"
#include "engine/calculation_window.h"
#include "engine/form_trafo_berechnung.h"
#include "graphics/input_window.h"

using namespace corvinade;

namespace {

class ZoomToPoint : public InputWindow {
protected:
    static std::pair<float, float> PixelOf(ScreenWindow& window, int row) {
        Rechne_pixel(window);
        return {Scene.PixelX[static_cast<std::size_t>(row)], Scene.PixelY[static_cast<std::size_t>(row)]};
    }
    static void ExpectInTheMiddle(ScreenWindow& window, int row) {
        const auto [x, y] = PixelOf(window, row);
        EXPECT_NEAR(x, PictureWidth(window) / 2.0, 1);
        EXPECT_NEAR(y, PictureHeight(window) / 2.0, 1);
    }
};

}  // namespace

TEST_F(ZoomToPoint, ADoubleClickOnItsNameBringsItToTheMiddleFromNear) {
    ScreenWindow& window = OpenFive();
    Anpassen(window);
    const float fitting = window.State.BildFaktor;
    Open();
    UserDblClickCell(Sheet(), 3, kColPointID);
    EXPECT_NEAR(window.State.BildFaktor / fitting, 8, 0.01);
    ExpectInTheMiddle(window, 3);
    // One without a partner; the scene has the targets of the pairs before it.
    UserDblClickCell(Sheet(), 4, kColPointID);
    ExpectInTheMiddle(window, 3 + 4);
    EXPECT_NEAR(window.State.BildFaktor / fitting, 8, 0.01) << "no nearer a second time";
}

TEST_F(ZoomToPoint, ADoubleClickElsewhereOrWithoutAPictureChangesNothing) {
    ScreenWindow& window = OpenFive();
    Open();
    const float before = window.State.BildFaktor;
    UserDblClickCell(Sheet(), 3, 1);
    EXPECT_EQ(window.State.BildFaktor, before);
    CloseAllGraphicsWindows();
    EXPECT_TRUE(UserDblClickCell(Sheet(), 3, kColPointID));
}

// --- One chosen point -------------------------------------------------------------------------------------

namespace {

class ChosenPoint : public InputWindow {
protected:
    static ScreenWindow& OpenAll(bool follows) {
        DesktopDefaults.PointsFollow = follows;
        ScreenWindow& window = OpenFive();
        Open();
        Dispatch([] { ShowWindow("FormTrafoBerechnung"); });
        return window;
    }
};

}  // namespace

TEST_F(ChosenPoint, OfTheMainSheetIsThatOfTheTableOfPoints) {
    OpenAll(true);
    Select({3, 0, 3, 0});
    EXPECT_EQ(CalculationWindow_Point(), 3);
    Select({2, 5, 2, 5});
    EXPECT_EQ(CalculationWindow_Point(), 2);
    EXPECT_EQ(Scene.ActualPointName, "P2");
    Select({4, 0, 4, 0});
    EXPECT_EQ(CalculationWindow_Point(), 2) << "S has no row there";
    EXPECT_EQ(Scene.ActualPointName, "S") << "and is circled all the same";
}

TEST_F(ChosenPoint, OfAPictureIsThatOfBothTables) {
    ScreenWindow& window = OpenAll(true);
    ClickAt(window, 100, 300);
    EXPECT_EQ(MainSheet_Pair(), 3);
    EXPECT_EQ(CalculationWindow_Point(), 3);
    ClickAt(window, 340, 100);  // the target of the second pair
    EXPECT_EQ(CalculationWindow_Point(), 2);
}

TEST_F(ChosenPoint, StaysWhereItWasForScripts) {
    ScreenWindow& window = OpenAll(false);
    const int before = TrafoWindow.Tabelle.Grid.Row;
    Select({3, 0, 3, 0});
    ClickAt(window, 300, 100);
    EXPECT_EQ(TrafoWindow.Tabelle.Grid.Row, before);
}
