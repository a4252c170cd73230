// A change as the windows show it: each of them once, however much a handler has changed.
#include "analysis/form_input_statistic.h"
#include "analysis/main_sheet_job.h"
#include "core/changes.h"
#include "core/form_main.h"
#include "core/form_units.h"
#include "core/window.h"
#include "engine/calculation_window.h"
#include "graphics/graphics_refresh.h"
#include "graphics/screen_window.h"

using namespace corvinade;

class ChangesEverywhere : public MainSheetJob {
protected:
    ChangesEverywhere() {
        ShowWindow("FormMain");
        FivePoints();
        Run.JobDataValid = kTrue;
        ShowWindow("FormMainSheet");
        ShowWindow("FormInputStatistic");
        Window = &OpenScreenWindow();
        Fills = MainSheet.Fills;
        Paints = Window->PaintCount;
    }
    ~ChangesEverywhere() override { CloseAllGraphicsWindows(); }

    // How often the sheet has been filled and the picture painted since the last look.
    void ExpectShown(std::uint64_t fills, std::uint64_t paints) {
        EXPECT_EQ(MainSheet.Fills - std::exchange(Fills, MainSheet.Fills), fills);
        EXPECT_EQ(Window->PaintCount - std::exchange(Paints, Window->PaintCount), paints);
    }

    ScreenWindow* Window = nullptr;
    std::uint64_t Fills = 0, Paints = 0;
};

TEST_F(ChangesEverywhere, SeveralChangesOfOneHandlerAreOneFillAndOnePaint) {
    Dispatch([] {
        Changed(What::UnitsAndDigits);
        Changed(What::Coordinates);
        Changed(What::MorePoints | What::PictureSettings);
    });
    ExpectShown(1, 1);
}

TEST_F(ChangesEverywhere, OtherUnitsAreShownOnce) {
    ShowWindow("FormUnits");
    UserSetIndex(UnitsWindow.ComboLength, 1);
    ExpectShown(0, 0);
    UserClick(UnitsWindow.BtnOK);
    ExpectShown(1, 1);
}

TEST_F(ChangesEverywhere, ASwitchOfTheDirectionIsShownOnce) {
    ShowWindow("FormTrafoBerechnung");
    AddStart("S2", 7, 8, 9);  // the sets differ in number
    SizeRest();
    UserClick(TrafoWindow.BtnSwitchMcsOcs);
    ExpectShown(1, 1);
    EXPECT_EQ(InputStatistic.Text1.Text, "4");
    EXPECT_EQ(InputStatistic.Text2.Text, "5");
}

TEST_F(ChangesEverywhere, TheMainWindowFollowsThePointsOfTheJob) {
    Dispatch([] {
        ::Run.JobDataValid = kFalse;
        Changed(What::State);
        EXPECT_TRUE(Main.MenuTransformation.Enabled);  // until the handler has ended
    });
    EXPECT_FALSE(Main.MenuTransformation.Enabled);
    ExpectShown(0, 0);
}
