// The dialog of the black planes, and planes that come out of files.
#include "graphics/form_black_plane.h"

#include <functional>

#include "graphics/black_planes_window.h"
#include "graphics/graphics_refresh.h"
#include "graphics/view_undo.h"

using namespace corvinade;

namespace {

// --- What comes out of files ------------------------------------------------------------------------------

TEST_F(BlackPlanesTest, AFrameThatIsNoneHidesNothing) {
    ScreenWindow& window = OpenDepths({-20, 20});
    SetPlanes(window, 0, 100);
    const ScreenRecord good = window.State;
    const auto all = [&](const std::function<void(ScreenRecord&)>& spoil) {
        ScreenRecord view = good;
        spoil(view);
        GetScreenPropertiesFromRecord(window, view);
        return Seen().size() == 4 && window.State.BlackPlane == kFalse && window.State.BlackInitial == kFalse;
    };
    EXPECT_FALSE(all([](ScreenRecord&) {}));
    EXPECT_TRUE(all([](ScreenRecord& view) { view.BlackInitial = kFalse; }));
    EXPECT_TRUE(all([](ScreenRecord& view) { view.FrameFactor = 0; }));
    EXPECT_TRUE(all([](ScreenRecord& view) { view.FrameFactor = -1; }));
    EXPECT_TRUE(all([](ScreenRecord& view) { view.FrameFactor = std::nan(""); }));
    EXPECT_TRUE(all([](ScreenRecord& view) { view.FrameInverse = Mat3{}; }));
    EXPECT_TRUE(all([](ScreenRecord& view) { view.FrameInverse(2, 2) = INFINITY; }));
    EXPECT_TRUE(all([](ScreenRecord& view) { view.FrameOffsetX = NAN; }));
    EXPECT_FALSE(all([](ScreenRecord& view) { view.TopDepth = NAN; })) << "a depth can be set anew";
    EXPECT_EQ(window.State.TopDepth, 0);
    EXPECT_FALSE(all([](ScreenRecord& view) { view.SlabThickness = -5; }));
    EXPECT_EQ(window.State.SlabThickness, 0);
}

// --- The dialog -------------------------------------------------------------------------------------------

class BlackPlaneDialog : public BlackPlanesTest {
protected:
    static FormBlackPlane& Dialog() { return BlackPlaneWindow; }
    static void Open() {
        EXPECT_TRUE(UserClick(Main.MenüGrafikBlackPlane));
        ASSERT_TRUE(IsLoaded("FormBlackPlane"));
    }
    ~BlackPlaneDialog() override { UnloadWindow("FormBlackPlane"); }
};

TEST_F(BlackPlaneDialog, ItShowsThePlanesOfTheActiveWindow) {
    ScreenWindow& window = OpenDepths({-20, 20});
    Open();
    EXPECT_EQ(Dialog().CheckActivate.Value, 0);
    EXPECT_EQ(Dialog().CheckShowBlackPlanes.Value, 0);
    EXPECT_FALSE(Dialog().BtnInit.Enabled);
    UnloadWindow("FormBlackPlane");
    Initialisieren_BlackPlane(window, true, true);
    Open();
    EXPECT_EQ(Dialog().CheckActivate.Value, 1);
    EXPECT_EQ(Dialog().CheckShowBlackPlanes.Value, 1);
    EXPECT_TRUE(Dialog().BtnInit.Enabled);
    EXPECT_TRUE(UserClick(Main.MenueGraphics));  // a window without planes comes on top
    EXPECT_EQ(Dialog().CheckActivate.Value, 0);
    ActivateScreenWindow(window);
    EXPECT_EQ(Dialog().CheckActivate.Value, 1);
    Rückgängig_Back(window);
}

TEST_F(BlackPlaneDialog, ActivateEnablesTheSettingOfTheFrameAndAppliesNothing) {
    const ScreenWindow& window = OpenDepths({-20, 20});
    Open();
    EXPECT_TRUE(UserSetValue(Dialog().CheckActivate, 1));
    EXPECT_TRUE(Dialog().BtnInit.Enabled);
    EXPECT_EQ(window.State.BlackPlane, kFalse);
    EXPECT_TRUE(UserSetValue(Dialog().CheckActivate, 0));
    EXPECT_FALSE(Dialog().BtnInit.Enabled);
}

TEST_F(BlackPlaneDialog, ApplySetsTheFrameOnceAndLeavesItAlone) {
    ScreenWindow& window = OpenDepths({-20, 20});
    Open();
    ::Run.JobDirty = kFalse;
    const int stored = window.UndoCount;
    const std::uint64_t paints = window.PaintCount;
    UserSetValue(Dialog().CheckActivate, 1);
    UserSetValue(Dialog().CheckShowBlackPlanes, 1);
    EXPECT_TRUE(UserClick(Dialog().BtnApply));
    EXPECT_TRUE(IsLoaded("FormBlackPlane"));
    EXPECT_EQ(window.State.BlackPlane, kTrue);
    EXPECT_EQ(window.State.BlackInitial, kTrue);
    EXPECT_EQ(window.State.BlackPlaneBorders, kTrue);
    EXPECT_EQ(Seen(), (std::set<int>{2, 4}));
    EXPECT_EQ(window.UndoCount, stored + 1);
    EXPECT_GT(window.PaintCount, paints);
    EXPECT_EQ(::Run.JobDirty, kTrue);
    // A frame that has been set stays, with what has been made of it.
    window.State.SlabThickness = 15;
    SetViewAngles(window, 1, 0, 0);
    EXPECT_TRUE(UserClick(Dialog().BtnApply));
    EXPECT_EQ(window.State.SlabThickness, 15);
    EXPECT_NEAR(window.State.FrameInverse(2, 2), 1, 1e-11);
    // Off and on again, too.
    UserSetValue(Dialog().CheckActivate, 0);
    EXPECT_TRUE(UserClick(Dialog().BtnApply));
    EXPECT_EQ(window.State.BlackPlane, kFalse);
    EXPECT_EQ(window.State.BlackInitial, kTrue);
    EXPECT_EQ(Seen().size(), 4U);
    UserSetValue(Dialog().CheckActivate, 1);
    EXPECT_TRUE(UserClick(Dialog().BtnApply));
    EXPECT_EQ(window.State.SlabThickness, 15);
}

TEST_F(BlackPlaneDialog, InitializeTakesThePresentViewAnew) {
    ScreenWindow& window = OpenDepths({-20, 20});
    Open();
    UserSetValue(Dialog().CheckActivate, 1);
    EXPECT_TRUE(UserClick(Dialog().BtnApply));
    window.State.SlabThickness = 15;
    SetViewAngles(window, 0, std::acos(0.0), 0);
    ::Run.JobDirty = kFalse;
    EXPECT_TRUE(UserClick(Dialog().BtnInit));
    EXPECT_EQ(window.State.SlabThickness, 100);
    EXPECT_NEAR(window.State.FrameInverse(2, 2), 1, 1e-11);
    EXPECT_NEAR(window.State.FrameInverse(1, 1), 0, 1e-11);
    EXPECT_EQ(::Run.JobDirty, kTrue);
    EXPECT_TRUE(Seen().size() == 4 || Seen().empty()) << "the frame's depth runs along x now";
}

TEST_F(BlackPlaneDialog, OkAppliesAndClosesAndCancelOnlyCloses) {
    const ScreenWindow& window = OpenDepths({-20, 20});
    Open();
    UserSetValue(Dialog().CheckActivate, 1);
    EXPECT_TRUE(UserClick(Dialog().BtnCancel));
    EXPECT_FALSE(IsLoaded("FormBlackPlane"));
    EXPECT_EQ(window.State.BlackPlane, kFalse);
    Open();
    UserSetValue(Dialog().CheckActivate, 1);
    EXPECT_TRUE(UserClick(Dialog().BtnOK));
    EXPECT_FALSE(IsLoaded("FormBlackPlane"));
    EXPECT_EQ(window.State.BlackPlane, kTrue);
    Open();
    EXPECT_TRUE(UserEscape(FormBlackPlane_Entry));
    EXPECT_FALSE(IsLoaded("FormBlackPlane"));
}

TEST_F(BlackPlaneDialog, ItGoesWithTheLastGraphicsWindow) {
    OpenDepths({-20, 20});
    Open();
    CloseAllGraphicsWindows();
    EXPECT_FALSE(IsLoaded("FormBlackPlane"));
}

}  // namespace
