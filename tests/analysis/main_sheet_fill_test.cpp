// When the main sheet is filled, what may happen while it is, and what it never shows.
#include "analysis/form_main_sheet.h"
#include "analysis/import_files.h"
#include "analysis/main_sheet_job.h"
#include "core/form_units.h"

using namespace corvinade;

namespace {

const char* const kNoData = "No Data found; Problem in Modul FuellenHaupttabelle";

class MainSheetFill : public MainSheetJob {
protected:
    // Runs at the n-th yield from now.
    static void AtYield(int n, std::function<void()> event) {
        const std::uint64_t due = Headless.Yields + static_cast<std::uint64_t>(n);
        Headless.OnYield = [due, event = std::move(event)] {
            if (Headless.Yields == due) event();
        };
    }
    static void ExpectAtRest() {
        EXPECT_EQ(Run.WaitPointers, 0);
        EXPECT_EQ(Main.MenuVievMainSheet.Checked, IsLoaded("FormMainSheet"));
    }
    void Import(const std::string& start, const std::string& target) const {
        Headless.Answers["message"].push_back("Yes");  // the old points go
        ImportFiles(Write("start.txt", start), Write("target.txt", target));
        Headless.Answers["message"].clear();
    }
    // Another job of two pairs "Q1", "Q2" takes the place of the present one, as opening one does.
    static void ReplaceJob() {
        CloseAllChildForms();
        Job = JobRecord{};
        AddPair({1, 2, 3}, {4, 5, 6});
        AddPair({1, 2, 3}, {4, 5, 6});
        Job.Start.Name[1] = Job.Target.Name[1] = "Q1";
        Job.Start.Name[2] = Job.Target.Name[2] = "Q2";
        ++Run.JobGeneration;
    }
};

}  // namespace

// --- Opening and closing ----------------------------------------------------------------------------------

TEST_F(MainSheetFill, TheMenuEntryOpensItAndIsCheckedWhileItIsOpen) {
    FivePoints();
    EXPECT_FALSE(Main.MenuVievMainSheet.Checked);
    Open();
    EXPECT_TRUE(IsLoaded("FormMainSheet"));
    EXPECT_TRUE(Main.MenuVievMainSheet.Checked);
    EXPECT_EQ(Run.WaitPointers, 0);
    EXPECT_EQ(Rows(), 6);
    Open();  // stays as it is
    EXPECT_TRUE(IsLoaded("FormMainSheet"));
    Close();
    EXPECT_FALSE(IsLoaded("FormMainSheet"));
    EXPECT_FALSE(Main.MenuVievMainSheet.Checked);
}

TEST_F(MainSheetFill, TheCaptionNamesTheTargetSystem) {
    FivePoints();
    Open();
    EXPECT_EQ(MainSheetWindow.Window.Caption, "Main Sheet - Data in Robot - OCS System");
    Job.NameOCS = "";
    FuellenHaupttabelle();
    EXPECT_EQ(MainSheetWindow.Window.Caption, "Main Sheet - Data in  - OCS System");
}

TEST_F(MainSheetFill, ItsPlaceIsStored) {
    FivePoints();
    Open();
    EXPECT_EQ(MainSheetWindow.Window.Place.Height, 13470);
    EXPECT_EQ(MainSheetWindow.Window.Place.Width, 9570);
    EXPECT_EQ(MainSheetWindow.Window.Place.Left, 100);
    MainSheetWindow.Window.Place = {21, 22, 23, 24};
    Close();
    Open();
    EXPECT_EQ(MainSheetWindow.Window.Place.Left, 21);
    EXPECT_EQ(MainSheetWindow.Window.Place.Top, 22);
    EXPECT_EQ(MainSheetWindow.Window.Place.Height, 24);
}

TEST_F(MainSheetFill, WithoutPointsOrWithOneThereIsAMessageAndNoRow) {
    Open();
    EXPECT_EQ(Messages(), Texts{kNoData});
    EXPECT_EQ(Rows(), 1);
    EXPECT_EQ(Cell(0, 0), "Point ID");
    EXPECT_FALSE(Main.MenuVievMainSheet.Checked);
    EXPECT_EQ(Run.WaitPointers, 0);
    EXPECT_EQ(MainSheetWindow.Window.Caption, "Main Sheet - Data in Robot - OCS System");
    AddStart("A", 1, 2, 3);
    FuellenHaupttabelle();
    EXPECT_EQ(Messages(), (Texts{kNoData, kNoData}));
    EXPECT_EQ(Rows(), 1);
    AddTarget("B", 1, 2, 3);
    FuellenHaupttabelle();
    EXPECT_EQ(Messages().size(), 2U);
    EXPECT_EQ(Rows(), 3);
    EXPECT_TRUE(Main.MenuVievMainSheet.Checked);
}

TEST_F(MainSheetFill, OnePairIsNotEnoughEither) {
    AddPair({1, 2, 3}, {4, 5, 6});
    Open();
    EXPECT_EQ(Messages(), Texts{kNoData});
    EXPECT_EQ(Rows(), 1);
}

TEST_F(MainSheetFill, AClosedSheetIsNotFilledAndSaysNothing) {
    FuellenHaupttabelle();
    FivePoints();
    const std::uint64_t yields = Headless.Yields;
    FuellenHaupttabelle();
    Changed(What::UnitsAndDigits);
    MainSheet_ShowPoint(1);
    MainSheet_Copy();
    EXPECT_EQ(Headless.Yields, yields);
    EXPECT_EQ(Messages(), Texts{});
    EXPECT_FALSE(IsLoaded("FormMainSheet"));
    EXPECT_FALSE(Main.MenuVievMainSheet.Checked);
    EXPECT_EQ(Headless.Clipboard, "");
}

TEST_F(MainSheetFill, AJobWhosePointsDoNotCountHasNoData) {
    FivePoints();
    Job.Start.CountOnly(0);
    Job.Target.CountOnly(0);
    Open();
    EXPECT_EQ(Messages(), Texts{kNoData});
    EXPECT_EQ(Rows(), 1);
    Job.Start.CountAll();
    Job.Target.CountAll();
    FuellenHaupttabelle();
    EXPECT_EQ(Rows(), 6);
    Job.Target.Resize(2);  // two pairs are left, and two start points without a partner
    FuellenHaupttabelle();
    EXPECT_EQ(Rows(), 5);
}

// --- What others change -----------------------------------------------------------------------------------

TEST_F(MainSheetFill, ItShowsThePointsAsTheyStoodWhenItWasFilled) {
    FivePoints();
    Open();
    Job.Start.Name[1] = "other";
    Job.Start.X[1] = 7;
    Job.TraX = 1000;
    EXPECT_EQ(Cell(1, 0), "P1");
    EXPECT_EQ(Cell(1, 1), "100.000");
    FuellenHaupttabelle();
    EXPECT_EQ(Cell(1, 0), "other");
    EXPECT_EQ(Cell(1, 1), "1007.000");
}

TEST_F(MainSheetFill, AChangeOfUnitsRefillsIt) {
    FivePoints();
    Open();
    UserClick(Main.MenuSettingsUnits);
    UserSetIndex(UnitsWindow.ComboLength, 1);
    UserSetIndex(UnitsWindow.ComboDigitLength, 4);
    UserSetIndex(UnitsWindow.ComboAngle, 2);
    EXPECT_EQ(Cell(1, 1), "100.000");
    UserClick(UnitsWindow.BtnOK);
    EXPECT_EQ(Cell(1, 1), "0.1000");
    EXPECT_EQ(Cell(2, 11), "1.5708");
    EXPECT_EQ(Messages(), Texts{});
}

TEST_F(MainSheetFill, ACalculationRefillsIt) {
    AddPairs(6);
    Open();
    EXPECT_EQ(Cell(1, 1), FormatNumber(StartPoint(1)(1), "0.000"));
    CalculationJob::Open();
    Calculate();
    EXPECT_NEAR(Number(1, 1), TargetPoint(1)(1), 1);
    EXPECT_NEAR(Number(1, 1), Job.Transformed.X[1].value(), 0.51e-3);
    ExpectAtRest();
}

TEST_F(MainSheetFill, ACalculationDoesNotOpenIt) {
    AddPairs(6);
    CalculationJob::Open();
    Calculate();
    EXPECT_FALSE(IsLoaded("FormMainSheet"));
    EXPECT_FALSE(Main.MenuVievMainSheet.Checked);
}

TEST_F(MainSheetFill, AnImportRefillsItAndOpensNone) {
    Import("A;0;0;0\r\nB;100;0;0\r\nD;0;0;300\r\n", "A;5;6;7\r\nB;105;6;7\r\nF;1;1;1\r\n");
    EXPECT_EQ(Messages(), Texts{});
    EXPECT_FALSE(IsLoaded("FormMainSheet"));
    Open();
    EXPECT_EQ(Col(0), (Texts{"A", "B", "D", "F"}));
    Import("X;0;0;0\r\nY;100;0;0\r\n", "X;5;6;7\r\nY;105;6;7\r\n");
    EXPECT_EQ(Col(0), (Texts{"X", "Y"}));
    EXPECT_EQ(Col(7), (Texts{"-5.000", "-5.000"}));
    EXPECT_EQ(MainSheetWindow.Window.Caption, "Main Sheet - Data in CAD - OCS System");
    ExpectAtRest();
}

TEST_F(MainSheetFill, FurtherPointsRefillIt) {
    Import("A;0;0;0\r\nB;100;0;0\r\n", "A;5;6;7\r\nB;105;6;7\r\n");
    Open();
    UserSetText(InputFiles.TextNameMoreMCS, Write("more.txt", "M1;1;2;3\r\nM2;4;5;6\r\n"));
    UserClick(InputFiles.BtnImportMoreMCS);
    EXPECT_EQ(Col(0), (Texts{"A", "B", "M1", "M2"}));
    EXPECT_EQ(Colour(4, 0), kYellow);
}

TEST_F(MainSheetFill, AnImportThatFailsLeavesNoRowOfTheFormerPoints) {
    Import("A;0;0;0\r\nB;100;0;0\r\n", "A;5;6;7\r\nB;105;6;7\r\n");
    Open();
    EXPECT_EQ(Cell(1, 0), "A");
    Import("X;0;0;0\r\nX;100;0;0\r\n", "X;5;6;7\r\nY;105;6;7\r\n");  // a name twice
    EXPECT_TRUE(IsTrue(Run.ImportFailed));
    for (int row = 1; row < Rows(); ++row)
        for (int col = 0; col < 23; ++col) {
            EXPECT_EQ(Cell(row, col), "");
            EXPECT_EQ(Colour(row, col), kSystemColour);
        }
    EXPECT_EQ(Cell(0, 1), "MCS.x");
}

TEST_F(MainSheetFill, ANewJobShowsNoRowOfTheFormerOne) {
    FivePoints();
    Open();
    Headless.Answers["save"].push_back(PathOf("new.cvn"));
    UserClick(Main.MenuFileNew);
    EXPECT_FALSE(IsLoaded("FormMainSheet"));
    EXPECT_FALSE(Main.MenuVievMainSheet.Checked);
    EXPECT_EQ(Messages(), Texts{});
    EXPECT_EQ(Job.Pairs(), 3);  // the points stay in memory
    Open();
    EXPECT_EQ(Messages(), Texts{kNoData});
    EXPECT_EQ(Rows(), 1);
    UserClick(Main.MenuSettingsUnits);
    UserClick(UnitsWindow.BtnOK);
    EXPECT_EQ(Rows(), 1);
}

TEST_F(MainSheetFill, AnOpenedJobIsShownWithTheTransformationThatItHolds) {
    FivePoints();
    Job.TraX = 1000;
    Job.RotZ = Job.RotZCopy = kPi / 2;
    Run.JobFilePath = PathOf("a.cvn");
    UserClick(Main.MenuFileSave);
    Job.TraX = Job.RotZ = Job.RotZCopy = 0;
    Run.JobDirty = kFalse;
    Open();
    EXPECT_EQ(Cell(2, 1), "0.000");
    Headless.Answers["open"].push_back(PathOf("a.cvn"));
    UserClick(Main.MenuFileOpen);
    EXPECT_FALSE(IsLoaded("FormMainSheet"));
    Open();
    EXPECT_EQ(Messages(), Texts{});
    EXPECT_EQ(Col(0), (Texts{"P1", "P2", "P3", "S", "T"}));
    EXPECT_EQ(Cell(2, 1), "1200.000");  // coordinates in a frame turned by 90 degrees
    EXPECT_EQ(Cell(2, 2), "0.000");
    EXPECT_EQ(Cell(1, 2), "-100.000");
}

TEST_F(MainSheetFill, AJobThatIsOpenedInsideAFillEndsIt) {
    FivePoints();
    Run.JobFilePath = PathOf("a.cvn");
    UserClick(Main.MenuFileSave);
    Job.Start.Name[1] = Job.Target.Name[1] = "changed";
    Run.JobDirty = kFalse;
    AtYield(2, [this] {
        Headless.Answers["open"].push_back(PathOf("a.cvn"));
        UserClick(Main.MenuFileOpen);
    });
    UserClick(Main.MenuVievMainSheet);
    ExpectAtRest();
    EXPECT_FALSE(IsLoaded("FormMainSheet"));
    EXPECT_EQ(Job.Start.Name[1], "P1");
    EXPECT_EQ(Run.JobDirty, kFalse);
    Open();
    EXPECT_EQ(Cell(1, 0), "P1");
}

TEST_F(MainSheetFill, TheDirectionSwitchRefillsItAndNamesTheOtherSystem) {
    FivePoints();
    CalculationJob::Open();
    Open();
    UserClick(TrafoWindow.BtnSwitchMcsOcs);
    EXPECT_EQ(MainSheetWindow.Window.Caption, "Main Sheet - Data in Cell - OCS System");
    EXPECT_EQ(Col(0), (Texts{"P1", "P2", "P3", "T", "S"}));
    EXPECT_EQ(Cell(1, 1), "101.000");
    EXPECT_EQ(Cell(1, 4), "100.000");
    UserClick(TrafoWindow.BtnSwitchMcsOcs);
    EXPECT_EQ(MainSheetWindow.Window.Caption, "Main Sheet - Data in Robot - OCS System");
    EXPECT_EQ(Cell(1, 1), "100.000");
}

TEST_F(MainSheetFill, ARefillOfTheSameJobKeepsSelectionAndTopRow) {
    NamedPairs(20);
    Open();
    Select({5, 3, 8, 6});
    Cells().TopRow = 4;
    FuellenHaupttabelle();
    EXPECT_EQ(Cells().TopRow, 4);
    const GridRect rect = Selected(Cells());
    EXPECT_EQ(rect.Row, 5);
    EXPECT_EQ(rect.Row2, 8);
    EXPECT_EQ(rect.Col, 3);
    EXPECT_EQ(rect.Col2, 6);
}

TEST_F(MainSheetFill, AShorterJobPullsTheSelectionInside) {
    NamedPairs(20);
    Open();
    Select({15, 3, 19, 6});
    Cells().TopRow = 15;
    Job.Start.CountOnly(3);
    Job.Target.CountOnly(3);
    FuellenHaupttabelle();
    EXPECT_EQ(Rows(), 4);
    EXPECT_LT(Selected(Cells()).Row2, 4);
    EXPECT_LT(Cells().TopRow, 4);
}

// --- Events inside a fill ---------------------------------------------------------------------------------

TEST_F(MainSheetFill, ItYieldsAtEachRowWithTheBusyPointer) {
    FivePoints();
    ShowWindow("FormMainSheet");
    const std::uint64_t yields = Headless.Yields;
    int busy = 0;
    Headless.OnYield = [&] { busy += Run.WaitPointers; };
    FuellenHaupttabelle();
    EXPECT_EQ(Headless.Yields - yields, 5U);
    EXPECT_EQ(busy, 5);
    EXPECT_EQ(Run.WaitPointers, 0);
}

TEST_F(MainSheetFill, AJobThatIsReplacedInsideAFillEndsIt) {
    for (int yield = 1; yield <= 5; ++yield) {
        ReplaceJob();
        Job = JobRecord{};
        FivePoints();
        ++Run.JobGeneration;
        AtYield(yield, [] {
            ReplaceJob();
            Open();
        });
        ShowWindow("FormMainSheet");
        Headless.OnYield = nullptr;
        EXPECT_EQ(Col(0), (Texts{"Q1", "Q2"})) << yield;
        EXPECT_EQ(Cell(1, 4), "4.000");
        ExpectAtRest();
    }
}

TEST_F(MainSheetFill, AJobThatIsReplacedWithoutARefillIsNotMixedWithTheFormerOne) {
    FivePoints();
    Open();
    AtYield(3, [] {
        Job.Start.Resize(1);
        Job.Target.Resize(1);
        ++Run.JobGeneration;
    });
    FuellenHaupttabelle();
    for (int row = 1; row < Rows(); ++row) EXPECT_EQ(Cell(row, 0), "");
    EXPECT_EQ(Run.WaitPointers, 0);
}

TEST_F(MainSheetFill, NothingMoreIsTakenOnceTheJobIsAnotherOne) {
    FivePoints();
    ShowWindow("FormMainSheet");
    Main.MenuVievMainSheet.Checked = false;
    const std::uint64_t yields = Headless.Yields;
    AtYield(3, [] { ++Run.JobGeneration; });
    FuellenHaupttabelle();
    EXPECT_EQ(Headless.Yields - yields, 3U);
    EXPECT_FALSE(Main.MenuVievMainSheet.Checked);
}

TEST_F(MainSheetFill, PointsThatVanishInsideAFillEndIt) {
    FivePoints();
    Open();
    AtYield(2, [] { Job.Target.Resize(1); });
    Job.Start.X[1] = 7;
    FuellenHaupttabelle();
    EXPECT_EQ(Cell(1, 1), "100.000");
    EXPECT_EQ(Run.WaitPointers, 0);
}

TEST_F(MainSheetFill, AWindowThatIsClosedInsideAFillStaysClosed) {
    FivePoints();
    for (int yield = 1; yield <= 5; ++yield) {
        AtYield(yield, [] { Close(); });
        UserClick(Main.MenuVievMainSheet);
        EXPECT_FALSE(IsLoaded("FormMainSheet"));
        EXPECT_EQ(Cells().Rows, 0);
        ExpectAtRest();
    }
}

TEST_F(MainSheetFill, AWindowThatIsClosedAndOpenedInsideAFillIsFilledOnce) {
    FivePoints();
    Open();
    AtYield(2, [] {
        Close();
        Job.Start.Name[1] = "new";
        Open();
    });
    FuellenHaupttabelle();
    EXPECT_EQ(Cell(1, 0), "new");
    EXPECT_EQ(Rows(), 6);
    ExpectAtRest();
}

TEST_F(MainSheetFill, ACalculationInsideAFillLeavesRowsOfOneTransformation) {
    for (int yield = 1; yield <= 6; ++yield) {
        Job = JobRecord{};
        BeginFit();
        Job.ParamText.fill("");
        AddPairs(6);
        Job.TraX = 5000;
        CalculationJob::Open();
        AtYield(yield, [] { Calculate(); });
        Open();  // not checked yet, so the calculation does not fill it
        Headless.OnYield = nullptr;
        for (int i = 1; i <= 6; ++i)
            EXPECT_NEAR(Number(i, 1), Job.Transformed.X[static_cast<std::size_t>(i)].value(), 0.51e-3)
                << yield;
        ExpectAtRest();
        Close();
        UnloadWindow("FormTrafoBerechnung");
    }
}

TEST_F(MainSheetFill, AFillWithoutDataInsideAFillEndsThatToo) {
    FivePoints();
    Open();
    AtYield(2, [] {
        Job.Start.CountOnly(0);
        Job.Target.CountOnly(0);
        FuellenHaupttabelle();
        Job.Start.CountAll();
        Job.Target.CountAll();
    });
    FuellenHaupttabelle();
    EXPECT_EQ(Messages(), Texts{kNoData});
    EXPECT_EQ(Rows(), 1);
}

TEST_F(MainSheetFill, AnImportWhoseFillIsOvertakenByAnotherJobLeavesThatAlone) {
    Import("A;0;0;0\r\nB;100;0;0\r\n", "A;5;6;7\r\nB;105;6;7\r\n");
    Open();
    AtYield(1, [] {
        ReplaceJob();
        Run.JobDirty = kFalse;
    });
    Import("X;0;0;0\r\nY;100;0;0\r\n", "X;5;6;7\r\nY;105;6;7\r\n");
    EXPECT_EQ(Run.JobDirty, kFalse);
    EXPECT_EQ(Job.Start.Name[1], "Q1");
}

TEST_F(MainSheetFill, ASwitchOfDirectionInsideTheFillOfAnImportLeavesAValidJob) {
    Import("A;0;0;0\r\nB;100;0;0\r\n", "A;5;6;7\r\nB;105;6;7\r\n");
    Open();
    CalculationJob::Open();
    AtYield(1, [] { UserClick(TrafoWindow.BtnSwitchMcsOcs); });
    Import("X;0;0;0\r\nY;100;0;0\r\n", "X;5;6;7\r\nY;105;6;7\r\n");
    EXPECT_EQ(Run.JobDataValid, kTrue);
    EXPECT_EQ(Run.JobDirty, kTrue);
    EXPECT_EQ(Cell(1, 1), "5.000");
    EXPECT_EQ(Cell(1, 4), "0.000");
}

TEST_F(MainSheetFill, ACalculationWhoseFillIsOvertakenByAnotherJobLeavesThatAlone) {
    AddPairs(6);
    Open();
    CalculationJob::Open();
    // Once to count the yields of the calculation itself.
    const std::uint64_t before = Headless.Yields;
    Calculate();
    const auto yields = static_cast<int>(Headless.Yields - before);
    Job.Start.X[1] = Job.Start.X[1].value() + 0.001;
    AtYield(yields - 2, [] {
        ReplaceJob();
        Run.JobDirty = kFalse;
    });
    Calculate();
    EXPECT_EQ(Job.Start.Name[1], "Q1") << "the calculation has yielded otherwise";
    EXPECT_EQ(Run.JobDirty, kFalse);
    EXPECT_EQ(Run.WaitPointers, 0);
}

TEST_F(MainSheetFill, NewPointsInsideTheFillOfFurtherPointsAreLeftAlone) {
    Import("A;0;0;0\r\nB;100;0;0\r\n", "A;5;6;7\r\nB;105;6;7\r\n");
    Open();
    UserSetText(InputFiles.TextNameMoreMCS, Write("more.txt", "M1;1;2;3\r\n"));
    AtYield(1, [] {
        ReplaceJob();
        Run.JobDirty = kFalse;
    });
    UserClick(InputFiles.BtnImportMoreMCS);
    EXPECT_EQ(Run.JobDirty, kFalse);
}
