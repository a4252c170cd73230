// What the calculation window says of the age of its result, and of numbers that would say nothing true.
#include "engine/result_state.h"

#include "core/changes.h"
#include "core/desktop_defaults.h"
#include "core/job_file.h"
#include "core/numbers.h"
#include "engine/calculation_job.h"

using namespace corvinade;

namespace {

FormTrafoBerechnung& w = TrafoWindow;

class AgeOfResult : public CalculationJob {
protected:
    AgeOfResult() {
        AddPairs(8);
        for (const DesktopDefault& row : AllDesktopDefaults()) DesktopDefaults.*row.Place = true;
    }
    static const std::string& Word() { return w.LabelResultState.Text; }
    static bool Dimmed() {
        return w.TextSigmaTraX.ForeColor == QbColor(8) && w.TextS0.ForeColor == QbColor(8);
    }
    static void TurnUse(int pair) {
        LookAt(w.Tabelle.Grid);
        UserDblClickCell(w.Tabelle, pair, kColUseX);
    }
};

}  // namespace

TEST_F(AgeOfResult, AWindowWithoutAResultSaysSo) {
    Open();
    EXPECT_EQ(Word(), "not calculated");
    EXPECT_TRUE(w.LabelResultState.Visible);
    Calculate();
    EXPECT_EQ(Word(), "");
    EXPECT_FALSE(w.LabelResultState.Visible);
    EXPECT_FALSE(Dimmed());
}

TEST_F(AgeOfResult, EachChangeOfWhatItIsMadeFromDimsIt) {
    Open();
    Calculate();
    const auto outdated = [] { return Word() == "out of date" && Dimmed(); };
    TurnUse(2);
    EXPECT_TRUE(outdated()) << "use";
    Calculate();
    EXPECT_FALSE(Dimmed());
    UserSetValue(w.CheckScaleXYZ, 1);
    EXPECT_TRUE(outdated()) << "a parameter";
    UserSetValue(w.CheckScaleXYZ, 0);
    Calculate();
    EXPECT_FALSE(Dimmed());
    UserSetValue(w.OptionL1, 1);
    EXPECT_TRUE(outdated()) << "norm";
    UserSetValue(w.OptionL2, 1);
    EXPECT_FALSE(Dimmed()) << "it is the same again";
    UserSetValue(w.CheckTraX, 0);
    Calculate();
    EXPECT_FALSE(Dimmed());
    UserSetText(w.TextTraX, "101.5");
    EXPECT_TRUE(outdated()) << "a held value";
    Calculate();
    UserClick(w.BtnSwitchMcsOcs);
    EXPECT_TRUE(outdated()) << "direction";
    EXPECT_TRUE(w.BtnCalculate.Enabled);
}

TEST_F(AgeOfResult, OtherUnitsAndAnotherOpeningLeaveItFresh) {
    Open();
    UserSetValue(w.CheckTraX, 0);
    UserSetText(w.TextTraX, "100");
    Calculate();
    UserClose(FormTrafoBerechnung_Entry);
    Open();
    EXPECT_EQ(Word(), "");
    EXPECT_NE(w.TextS0.Text, "");
    EXPECT_NE(w.TextSigmaTraY.Text, "");
}

TEST_F(AgeOfResult, ScriptsSeeNothingOfIt) {
    for (const DesktopDefault& row : AllDesktopDefaults()) DesktopDefaults.*row.Place = false;
    Open();
    Calculate();
    TurnUse(2);
    EXPECT_EQ(Word(), "");
    EXPECT_FALSE(w.LabelResultState.Visible);
    EXPECT_FALSE(Dimmed());
}

// The stored result has to show what the calculation showed that was saved.
TEST_F(AgeOfResult, AJobThatIsOpenedShowsItsResult) {
    Open();
    TurnUse(3);
    UserSetValue(w.CheckScaleXYZ, 1);
    Calculate();
    const auto shown = [] {
        std::vector<std::string> texts;
        for (const ParameterControls& row : ParameterRows()) {
            if (row.Check->Value == 1) texts.push_back(row.Text->Text);
            if (row.Sigma == nullptr) continue;
            texts.push_back(row.Sigma->Text);
            texts.push_back(row.Signifikanz->Text);
        }
        for (int quality = kSxyz; quality < kQualityEnd; ++quality)
            texts.push_back(QualityRow(quality).Field->Text);
        for (int row = 1; row < w.Tabelle.Grid.Rows; ++row)
            for (int col = kColName; col <= kColUseZ; ++col)
                texts.push_back(CellText(w.Tabelle.Grid, row, col));
        return texts;
    };
    LookAt(w.Tabelle.Grid);
    const std::vector<std::string> before = shown();
    SaveFileAs(PathOf("cell.cvn"));
    const Parameters parameters = ParametersOf(Job);
    RunHandler([this] { OpenFile(PathOf("cell.cvn")); });
    ASSERT_TRUE(IsLoaded("FormTrafoBerechnung"));
    EXPECT_TRUE(Main.MenuTransformationCalculation.Checked);
    EXPECT_EQ(Word(), "stored");
    LookAt(w.Tabelle.Grid);
    EXPECT_EQ(shown(), before);
    EXPECT_TRUE(ParametersOf(Job) == parameters);
    EXPECT_EQ(::Run.JobDirty, kFalse);
    TurnUse(2);
    EXPECT_EQ(Word(), "out of date");
    TurnUse(2);
    EXPECT_EQ(Word(), "stored");
    Calculate();
    EXPECT_EQ(Word(), "");
}

TEST_F(AgeOfResult, AStoredResultOfAnotherNormShowsItsParametersAndNoSigma) {
    Open();
    UserSetValue(w.OptionL1, 1);
    Calculate();
    const std::string shift = w.TextTraX.Text, largest = w.TextMaxDevX.Text, point = w.TextMaxDevXYZPkt.Text;
    SaveFileAs(PathOf("cell.cvn"));
    RunHandler([this] { OpenFile(PathOf("cell.cvn")); });
    EXPECT_EQ(Word(), "stored");
    EXPECT_EQ(w.TextTraX.Text, shift);
    EXPECT_EQ(w.TextSigmaTraX.Text, "");
    EXPECT_EQ(w.TextS0.Text, "");
    EXPECT_EQ(w.TextMaxDevX.Text, largest);
    EXPECT_EQ(w.TextMaxDevXYZPkt.Text, point);
}

TEST_F(AgeOfResult, AJobWithoutAResultOpensNothing) {
    SaveFileAs(PathOf("cell.cvn"));
    ::Run.LastFile = {};
    ::Run.JobFilePath = PathOf("cell.cvn");  // as the menu does
    RunHandler([this] { OpenFile(PathOf("cell.cvn")); });
    EXPECT_FALSE(IsLoaded("FormTrafoBerechnung"));
    EXPECT_EQ(::Run.LastFile[1], PathOf("cell.cvn")) << "it is a recent one all the same";
}

TEST_F(AgeOfResult, PointsThatHaveComeInAreShown) {
    RunHandler([] { Changed(What::Points); });
    EXPECT_TRUE(IsLoaded("FormInputStatistic"));
    EXPECT_NE(Main.StatusBar_1.Text.find("Calculation"), std::string::npos);
    EXPECT_TRUE(IsLoaded("FormMainSheet"));
    UnloadWindow("FormInputStatistic");
    UnloadWindow("FormMainSheet");
    DesktopDefaults.AfterImport = false;
    RunHandler([] { Changed(What::Points); });
    EXPECT_FALSE(IsLoaded("FormInputStatistic"));
    EXPECT_FALSE(IsLoaded("FormMainSheet"));
}

// --- Numbers that would say nothing true ------------------------------------------------------------------

TEST_F(AgeOfResult, AnotherNormHasADashForSigmasAndSaysWhy) {
    Open();
    UserSetValue(w.OptionL1, 1);
    Calculate();
    EXPECT_EQ(w.TextSigmaTraX.Text, "–");
    EXPECT_EQ(w.TextSignifikanzTraX.Text, "–");
    EXPECT_NE(w.TextSigmaTraX.ToolTip.find("least squares"), std::string::npos);
    UserSetValue(w.OptionL2, 1);
    Calculate();
    EXPECT_NE(w.TextSigmaTraX.Text, "–");
    EXPECT_EQ(w.TextSigmaTraX.ToolTip, "");
}

TEST_F(AgeOfResult, TheFirstCalculationHasNoArrows) {
    Open();
    Calculate();
    const auto arrows = [] {
        int count = 0;
        for (int quality = kSxyz; quality < kQualityEnd; ++quality)
            count += static_cast<int>(QualityRow(quality).ArrRed->Visible) +
                     static_cast<int>(QualityRow(quality).ArrGreen->Visible);
        return count;
    };
    EXPECT_EQ(arrows(), 0);
    TurnUse(2);
    Calculate();
    EXPECT_EQ(arrows(), kQualityEnd - kSxyz);
}

// --- The rows of a point ----------------------------------------------------------------------------------

// Start, target and deviation of each point side by side, whatever the table is sorted by; the points
// themselves by their deviations, or by their names.
TEST_F(AgeOfResult, TheRowsOfAPointStayTogetherInEverySort) {
    Open();
    Calculate();
    UserSetValue(w.CheckMeasurement, 1);
    UserSetValue(w.CheckObject, 1);
    GridState& grid = w.Tabelle.Grid;
    LookAt(grid);
    ASSERT_EQ(grid.Rows, 1 + 3 * 8);
    for (int click = 0; click < 2; ++click)
        for (const int col : {kColName, kColX, kColY, kColZ}) {
            UserClickCell(w.Tabelle, 0, col, false);
            LookAt(grid);
            double last = 0;
            std::string lastName;
            for (int row = 1; row < grid.Rows; row += 3) {
                const int point = PointOfRow(w.Points, FilledRow(grid, row));
                for (int place = 0; place < 3; ++place)
                    EXPECT_EQ(FilledRow(grid, row + place), 3 * (point - 1) + 1 + place) << row << " " << col;
                EXPECT_EQ(CellText(grid, row, kColName), Job.Start.Name[static_cast<std::size_t>(point)]);
                double value = 0;
                const std::string name = CellText(grid, row, kColName);
                ASSERT_TRUE(col == kColName || TextToNumber(CellText(grid, row + 2, col), value));
                if (row > 1 && col != kColName) {
                    EXPECT_TRUE(grid.SortDescending ? value <= last : value >= last) << row << " " << col;
                } else if (row > 1) {
                    EXPECT_TRUE(grid.SortDescending ? name <= lastName : name >= lastName) << row;
                }
                last = value;
                lastName = name;
            }
        }
    UserSetValue(w.CheckMeasurement, 0);
    UserSetValue(w.CheckObject, 0);
    LookAt(grid);
    ASSERT_EQ(grid.Rows, 1 + 8);
    for (int row = 1; row < grid.Rows; ++row) EXPECT_NE(CellText(grid, row, kColName), "") << row;
}
