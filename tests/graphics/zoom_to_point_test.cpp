// A point of the main sheet, shown from near.
#include "analysis/form_main_sheet.h"
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
