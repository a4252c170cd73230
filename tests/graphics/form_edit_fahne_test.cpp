// The dialog of the flags.
#include "graphics/form_edit_fahne.h"

#include "cli/headless.h"
#include "graphics/flag_window.h"

using namespace corvinade;

class EditFahne : public FlagWindow {
protected:
    static FormEditFahne& Dialog() { return EditFahneWindow; }
    static ScreenWindow& OpenWithFlags() {
        ScreenWindow& window = OpenInFlagMode();
        FlagOn(window, 1);
        FlagOn(window, 3);
        EXPECT_TRUE(UserClick(Main.MenuFahneEdit));
        EXPECT_TRUE(IsLoaded("FormEditFahne"));
        return window;
    }
    static constexpr const char* kNoSense = "It makes no sense to turn this of";
};

TEST_F(EditFahne, ShowsTheActiveFlag) {
    ScreenWindow& window = OpenInFlagMode();
    FlagOn(window, 1);
    FlagRecord& record = FlagOf(window, 1);
    record.showPhi = record.ShowGrid = record.ChangeAll = kFalse;
    window.State.GridLength = 250;
    UserClick(Main.MenuFahneEdit);
    EXPECT_EQ(Dialog().CheckPhi.Value, 0);
    EXPECT_EQ(Dialog().CheckGrid.Value, 0);
    EXPECT_EQ(Dialog().CheckChangeAll.Value, 0);
    EXPECT_EQ(Dialog().CheckX.Value, 1);
    EXPECT_EQ(Dialog().CheckShowOnlyPointNumber.Value, 0);
    EXPECT_EQ(Dialog().TextGridLength.Text, "250");
    EXPECT_EQ(Dialog().VScroll1.Value, 250);
}

TEST_F(EditFahne, TheGridLengthStaysWithinItsLimits) {
    OpenWithFlags();
    UserSetText(Dialog().TextGridLength, "5");
    EXPECT_EQ(Dialog().TextGridLength.Text, "10");
    UserSetText(Dialog().TextGridLength, "1001");
    EXPECT_EQ(Dialog().TextGridLength.Text, "1000");
    UserSetText(Dialog().TextGridLength, "");
    EXPECT_EQ(Dialog().TextGridLength.Text, "10");
    UserSetValue(Dialog().VScroll1, 77);
    EXPECT_EQ(Dialog().TextGridLength.Text, "77");
}

TEST_F(EditFahne, FactorsTakeAPointForAComma) {
    OpenWithFlags();
    for (Control* text : {&Dialog().TextFaktor, &Dialog().TextFlagOnEvery}) {
        UserSetText(*text, "1,25");
        EXPECT_EQ(text->Text, "1.25");
        UserSetText(*text, "-3.456x");
        EXPECT_EQ(text->Text, "3.45");
        UserSetText(*text, "1.2,3");
        EXPECT_EQ(text->Text, "1.23");
        UserSetText(*text, "2");
        EXPECT_EQ(text->Text, "2") << "whoever types goes on typing";
    }
}

TEST_F(EditFahne, AnEmptyFactorLeavesTheFlagsOnTheirPoints) {
    ScreenWindow& window = OpenWithFlags();
    UserSetValue(Dialog().CheckSnaptoGrid, 0);
    UserSetValue(Dialog().OptionPlaceRadial, 1);
    UserSetText(Dialog().TextFaktor, "");
    UserClick(Dialog().BtnOK);
    PixelsForWindow(window);
    EXPECT_EQ(RecordOf(window, 1).Left, static_cast<int>(Scene.PixelX[1]));
    EXPECT_EQ(RecordOf(window, 1).Top, static_cast<int>(Scene.PixelY[1]));
}

TEST_F(EditFahne, TheLastRowCannotBeTurnedOff) {
    OpenWithFlags();
    UserSetValue(Dialog().CheckActual, 0);
    UserSetValue(Dialog().CheckNominal, 0);
    UserSetValue(Dialog().CheckDev, 0);
    EXPECT_TRUE(Messages().empty());
    UserSetValue(Dialog().CheckUse, 0);
    EXPECT_EQ(LastMessage(), kNoSense);
    EXPECT_EQ(Dialog().CheckUse.Value, 1);
    UserSetValue(Dialog().CheckDev, 1);
    UserSetValue(Dialog().CheckUse, 0);
    UserSetValue(Dialog().CheckDev, 0);
    EXPECT_EQ(Messages().size(), 2U);
    EXPECT_EQ(Dialog().CheckDev.Value, 1);
}

TEST_F(EditFahne, TheNumberAloneClearsAndDisablesTheContent) {
    OpenWithFlags();
    FormEditFahne& d = Dialog();
    UserSetValue(d.CheckShowOnlyPointNumber, 1);
    for (const Control* box : {&d.CheckX, &d.CheckY, &d.CheckZ, &d.Check3D, &d.CheckR, &d.CheckPhi,
                               &d.CheckRho, &d.CheckTheta, &d.CheckLegendexyz, &d.CheckLegendeName}) {
        EXPECT_EQ(box->Value, 0);
        EXPECT_FALSE(box->Enabled);
    }
    for (const Control* row : {&d.CheckActual, &d.CheckNominal, &d.CheckDev, &d.CheckUse})
        EXPECT_EQ(row->Value, 0);
    EXPECT_EQ(d.CheckGrid.Value, 1);
    EXPECT_EQ(d.CheckChangeAll.Value, 1);
    EXPECT_TRUE(Messages().empty());
}

TEST_F(EditFahne, ARowThatIsSetEndsTheNumberAlone) {
    FormEditFahne& d = Dialog();
    OpenWithFlags();
    for (Control* row : {&d.CheckActual, &d.CheckNominal, &d.CheckDev, &d.CheckUse}) {
        UserSetValue(d.CheckShowOnlyPointNumber, 1);
        UserSetValue(*row, 1);
        EXPECT_EQ(d.CheckShowOnlyPointNumber.Value, 0);
        EXPECT_TRUE(d.CheckX.Enabled);
        EXPECT_EQ(d.CheckX.Value, 1) << "a row without a column would show nothing";
    }
}

TEST_F(EditFahne, PutAllIsThereOnceAPlaceIsChosen) {
    OpenWithFlags();
    FormEditFahne& d = Dialog();
    EXPECT_FALSE(d.CheckPutAll.Enabled);
    EXPECT_FALSE(d.CheckPutToEvery.Enabled);
    UserSetValue(d.OptionPlaceBorder, 1);
    EXPECT_TRUE(d.CheckPutAll.Enabled);
    UserSetValue(d.CheckPutAll, 1);
    EXPECT_TRUE(d.CheckPutToEvery.Enabled);
}

TEST_F(EditFahne, OKAppliesToAllFlagsAndCloses) {
    ScreenWindow& window = OpenWithFlags();
    const int stored = window.UndoCount;
    UserSetValue(Dialog().CheckTheta, 0);
    UserSetText(Dialog().TextGridLength, "60");
    UserClick(Dialog().BtnOK);
    EXPECT_FALSE(IsLoaded("FormEditFahne"));
    for (const int flag : {0, 1, 2}) EXPECT_EQ(RecordOf(window, flag).showTheta, kFalse) << flag;
    EXPECT_EQ(LabelOf(window, 1).ColWidth[kFlagTheta], 0);
    EXPECT_EQ(window.State.GridLength, 60);
    EXPECT_EQ(window.UndoCount, stored + 1);
    EXPECT_TRUE(Settings.FlagDefined);
    EXPECT_EQ(Settings.FlagDefault.showTheta, kFalse);
}

TEST_F(EditFahne, WithoutChangeAllOnlyTheActiveFlagChanges) {
    ScreenWindow& window = OpenWithFlags();
    const FlagRecord before = RecordOf(window, 2);
    UserSetValue(Dialog().CheckChangeAll, 0);
    UserSetValue(Dialog().CheckTheta, 0);
    UserClick(Dialog().BtnOK);
    EXPECT_EQ(RecordOf(window, 1).showTheta, kTrue);
    EXPECT_EQ(RecordOf(window, 2).showTheta, kFalse);
    EXPECT_EQ(RecordOf(window, 2).Left, before.Left);
    EXPECT_EQ(RecordOf(window, 2).Top, before.Top);
}

TEST_F(EditFahne, CancelAndEscapeChangeNothing) {
    ScreenWindow& window = OpenWithFlags();
    UserSetValue(Dialog().CheckTheta, 0);
    UserClick(Dialog().BtnCancel);
    EXPECT_FALSE(IsLoaded("FormEditFahne"));
    UserClick(Main.MenuFahneEdit);
    UserEscape(FormEditFahne_Entry);
    EXPECT_FALSE(IsLoaded("FormEditFahne"));
    EXPECT_EQ(RecordOf(window, 1).showTheta, kTrue);
}

TEST_F(EditFahne, PlacesFlagsOnAllPoints) {
    ScreenWindow& window = OpenFive();
    UserClick(Main.MenuFahneEdit);  // with no flag yet
    EXPECT_FALSE(Dialog().BtnFahneLöschen.Enabled);
    UserSetValue(Dialog().CheckShowOnlyPointNumber, 1);
    UserSetValue(Dialog().CheckSnaptoGrid, 0);
    UserSetValue(Dialog().OptionPlaceRadial, 1);
    UserSetText(Dialog().TextFaktor, "1");
    UserSetValue(Dialog().CheckPutAll, 1);
    UserSetValue(Dialog().CheckPutToEvery, 1);
    UserSetText(Dialog().TextFlagOnEvery, "2");
    UserClick(Dialog().BtnOK);
    EXPECT_EQ(window.State.FlagCount, 4);  // of eight rows
    EXPECT_EQ(RecordOf(window, 1).Left, 100);
    EXPECT_EQ(RecordOf(window, 1).Top, 100);
    EXPECT_TRUE(IsTrue(window.State.FlagMode));
    Rückgängig_Back(window);
    EXPECT_EQ(window.State.FlagCount, 0);
}

TEST_F(EditFahne, DeletesTheActiveFlagOrAll) {
    ScreenWindow& window = OpenWithFlags();
    UserClick(Dialog().BtnFahneLöschen);
    EXPECT_EQ(window.State.FlagCount, 1);
    EXPECT_EQ(FlagOfRow(window, 1), 1);
    EXPECT_FALSE(Dialog().BtnFahneLöschen.Enabled);
    UserClick(Dialog().BtnAlleLöschen);
    EXPECT_EQ(window.State.FlagCount, 0);
    EXPECT_FALSE(Dialog().BtnAlleLöschen.Enabled);
}

TEST_F(EditFahne, TheFontComesFromItsDialog) {
    ScreenWindow& window = OpenWithFlags();
    Headless.Answers["font"].push_back(
        R"({"name":"DejaVu Sans","size":12,"bold":true,"italic":true,"underline":true,"color":255})");
    UserClick(Dialog().CmdFonts);
    UserClick(Dialog().BtnOK);
    const FlagRecord& record = RecordOf(window, 1);
    EXPECT_EQ(record.Name, "DejaVu Sans");
    EXPECT_EQ(record.Size, 12);
    EXPECT_EQ(record.Bold, kTrue);
    EXPECT_EQ(record.Italic, kTrue);
    EXPECT_EQ(record.Underline, kTrue);
    EXPECT_EQ(record.Strikethrough, kFalse);
    EXPECT_EQ(record.Weight, 700);
    EXPECT_EQ(record.Forecolor, 255);
    EXPECT_EQ(LabelOf(window, 1).Font.Size, 12);
}

TEST_F(EditFahne, AFontDialogThatIsCancelledLeavesTheFont) {
    ScreenWindow& window = OpenWithFlags();
    const std::string before = RecordOf(window, 1).Name;
    Headless.Answers["font"].push_back(std::nullopt);
    UserClick(Dialog().CmdFonts);
    UserClick(Dialog().BtnOK);
    EXPECT_EQ(RecordOf(window, 1).Name, before);
}

TEST_F(EditFahne, OutlivesItsGraphicsWindow) {
    ScreenWindow& window = OpenWithFlags();
    CloseScreenWindow(window);
    UserClick(Dialog().BtnFahneLöschen);
    UserClick(Dialog().BtnOK);
    EXPECT_FALSE(IsLoaded("FormEditFahne"));
}

TEST_F(EditFahne, AnOpenOneTurnsToTheFlagThatIsEdited) {
    ScreenWindow& window = OpenWithFlags();  // the second is the active one
    FlagOf(window, 1).showPhi = FlagOf(window, 1).ChangeAll = FlagOf(window, 2).ChangeAll = kFalse;
    window.State.ActiveFlag = 1;
    UserClick(Main.MenuFahneEdit);
    EXPECT_EQ(Dialog().CheckPhi.Value, 0);
    window.State.ActiveFlag = 2;
    UserClick(Main.MenuFahneEdit);
    EXPECT_EQ(Dialog().CheckPhi.Value, 1);
    UserClick(Dialog().BtnOK);
    EXPECT_TRUE(IsTrue(RecordOf(window, 2).showPhi));
    EXPECT_FALSE(IsTrue(RecordOf(window, 1).showPhi));
}

TEST_F(EditFahne, AnOpenOneFollowsTheActiveWindowAndClosesWithTheLast) {
    ScreenWindow& first = OpenWithFlags();
    ScreenWindow& second = OpenScreenWindow();
    EXPECT_EQ(Dialog().Screen, second.Id);
    EXPECT_FALSE(Dialog().BtnFahneLöschen.Enabled);
    ActivateScreenWindow(first);
    EXPECT_EQ(Dialog().Screen, first.Id);
    EXPECT_TRUE(Dialog().BtnFahneLöschen.Enabled);
    CloseScreenWindow(first);
    EXPECT_EQ(Dialog().Screen, second.Id);
    CloseScreenWindow(second);
    EXPECT_FALSE(IsLoaded("FormEditFahne"));
}

TEST_F(EditFahne, ANewFlagCanBeDeletedByAnOpenOne) {
    ScreenWindow& window = OpenInFlagMode();
    UserClick(Main.MenuFahneEdit);
    EXPECT_FALSE(Dialog().BtnFahneLöschen.Enabled);
    EXPECT_FALSE(Dialog().BtnAlleLöschen.Enabled);
    FlagOn(window, 1);
    EXPECT_TRUE(Dialog().BtnFahneLöschen.Enabled);
    EXPECT_TRUE(Dialog().BtnAlleLöschen.Enabled);
}
