// The dialog of the black planes beside the picture, and the slab under keys and mouse.
#include <QCheckBox>
#include <QPushButton>

#include "graphics/form_black_plane.h"
#include "graphics/scene.h"
#include "ui/screen_fixture.h"

using namespace corvinade;

namespace {

class BlackPlanesByHand : public ScreenByHand {
protected:
    static int Seen() {
        int seen = 0;
        for (std::size_t row = 1; row <= static_cast<std::size_t>(Scene.Rows); ++row)
            seen += Scene.Points[kSceneInside][row] == 1.0F ? 1 : 0;
        return seen;
    }
};

}  // namespace

TEST_F(BlackPlanesByHand, TheDialogStaysBesideThePictureAndFollowsIt) {
    BeginWithPoints();
    const ScreenWindow& window = OpenScreen();
    Trigger("MenüGrafikBlackPlane");
    ASSERT_TRUE(IsOpen("FormBlackPlane"));
    EXPECT_FALSE(WidgetOf(FormBlackPlane_Entry)->window()->isModal());
    EXPECT_FALSE(Widget("FormBlackPlane.BtnInit")->isEnabled());
    Click("FormBlackPlane.CheckActivate");
    EXPECT_TRUE(Widget("FormBlackPlane.BtnInit")->isEnabled());
    Click("FormBlackPlane.CheckShowBlackPlanes");
    Click("FormBlackPlane.BtnApply");
    EXPECT_EQ(window.State.BlackPlane, kTrue);
    EXPECT_EQ(window.State.BlackPlaneBorders, kTrue);
    Trigger("MenüViewLastView");
    EXPECT_FALSE(qobject_cast<QCheckBox*>(Widget("FormBlackPlane.CheckActivate"))->isChecked());
    Trigger("MenüViewNextView");
    EXPECT_TRUE(qobject_cast<QCheckBox*>(Widget("FormBlackPlane.CheckActivate"))->isChecked());
    Click("FormBlackPlane.BtnOK");
    EXPECT_FALSE(IsOpen("FormBlackPlane"));
}

TEST_F(BlackPlanesByHand, HeldKeysAndTheMouseMoveTheSlab) {
    BeginWithPoints();
    ScreenWindow& window = OpenScreen();
    const int all = Seen();
    ASSERT_EQ(all, Scene.Rows);
    Trigger("MenüGrafikBlackPlane");
    Click("FormBlackPlane.CheckActivate");
    Click("FormBlackPlane.BtnOK");
    View(window).setFocus();
    const auto drag = [&](Qt::Key key, QPoint by) {
        QTest::keyPress(&View(window), key);
        Drag(window, {200, 150}, QPoint(200, 150) + by);
        QTest::keyRelease(&View(window), key);
    };
    drag(Qt::Key_T, {-12, 0});
    EXPECT_EQ(window.State.TopDepth, 12);
    drag(Qt::Key_B, {30, 0});
    EXPECT_EQ(window.State.SlabThickness, 70);
    drag(Qt::Key_B, {190, 140});
    EXPECT_EQ(window.State.SlabThickness, 0);
    EXPECT_EQ(Seen(), 0);
}
