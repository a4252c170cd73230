// What may happen to the calculation window while it works or while it is away: events inside a run, windows
// that close and open, jobs with odd texts. Nothing of it may leave the window in a state of its own.
#include <limits>

#include "core/settings.h"
#include "engine/adjustment.h"
#include "engine/calculation_job.h"
#include "engine/calculation_window.h"
#include "engine/trafo_window.h"

using namespace corvinade;

namespace {

class CalculationGuests : public CalculationJob {
protected:
    static void ExpectAtRest() {
        EXPECT_TRUE(trafoWindow.BtnCalculate.Enabled);
        EXPECT_FALSE(trafoWindow.BtnSTOP.Enabled);
        EXPECT_FALSE(CalculationWindow.Running);
        EXPECT_FALSE(IsTrue(::Run.StopRequested));
        EXPECT_EQ(::Run.WaitPointers, 0);
        EXPECT_TRUE(JobIsWhole(Job));
        EXPECT_FALSE(IsLoaded("FormProgressBar"));
    }
};

}  // namespace

TEST_F(CalculationGuests, AWindowClosedAndOpenedInsideARunKeepsItsButtonClosed) {
    AddPairs();
    Open();
    bool opened = false, checked = false;
    Headless.OnYield = [&] {
        if (opened) {
            checked = true;
            EXPECT_FALSE(trafoWindow.BtnCalculate.Enabled);
            EXPECT_TRUE(trafoWindow.BtnSTOP.Enabled);
            return;
        }
        opened = true;
        UnloadWindow("FormTrafoBerechnung");
        ShowWindow("FormTrafoBerechnung");
    };
    Calculate();
    EXPECT_TRUE(checked);
    ExpectAtRest();
    EXPECT_TRUE(IsTrue(::Run.TrafoValid));
}

TEST_F(CalculationGuests, TheButtonStaysClosedUntilEverythingShowsTheResult) {
    AddPairs();
    Open();
    static int seen;
    seen = 0;
    static const ControlEntry spy = {"TextSxyz", &trafoWindow.TextSxyz, {.Change = [] {
                                         ++seen;
                                         EXPECT_FALSE(trafoWindow.BtnCalculate.Enabled);
                                         FormTrafoBerechnung::BtnCalculate_Click();
                                     }}};
    trafoWindow.TextSxyz.Entry = &spy;
    Calculate();
    EXPECT_EQ(seen, 1);
    ExpectAtRest();
}

TEST_F(CalculationGuests, NothingFloatingIsACalculationToo) {
    AddPairs(4);
    Open();
    CheckReset();
    Calculate();
    EXPECT_TRUE(Messages().empty());
    EXPECT_TRUE(IsTrue(::Run.TrafoValid));
    EXPECT_EQ(Calculation.nFloat, 0);
    ExpectAtRest();
}

TEST_F(CalculationGuests, AJobWithoutPointsIsRefusedOrEndsInEveryNorm) {
    Job.Start.CountOnly(0);
    Job.Target.CountOnly(0);
    Open();
    for (Control* const norm : {&trafoWindow.OptionL1, &trafoWindow.OptionLoo, &trafoWindow.OptionL2}) {
        UserSetValue(*norm, 1);
        UserSetValue(trafoWindow.Option7Parameter, 1);
        Calculate();
        EXPECT_EQ(LastMessage(), "This is not a redundant calculation");
        CheckReset();
        Calculate();
        ExpectAtRest();
        trafoWindow.Option7Parameter.Value = 0;
    }
}

TEST_F(CalculationGuests, ChoicesMadeInsideARunOfANormCountFromTheNextOn) {
    AddPairs(12);
    Open();
    UserSetValue(trafoWindow.OptionL1, 1);
    int yields = 0;
    Headless.OnYield = [&yields] {
        if (++yields != 4) return;
        UserSetValue(trafoWindow.CheckRDist, 1);
        UserSetValue(trafoWindow.Option9Parameter, 1);
        UserClick(trafoWindow.BtnSEED);
    };
    Calculate();
    EXPECT_GT(yields, 4);
    EXPECT_EQ(Calculation.nFloat, 6);
    ExpectAtRest();
}

TEST_F(CalculationGuests, OddTextsInTheJobsSlotsNeverStopTheWindow) {
    const std::vector<std::string> odd = {"",
                                          " ",
                                          "float",
                                          "float ",
                                          "FLOAT",
                                          "not used",
                                          "0",
                                          "1",
                                          "1e400",
                                          "-1e-400",
                                          "NaN",
                                          "Infinity",
                                          "1,5",
                                          "1 2 3",
                                          "- -",
                                          "\t",
                                          "ü",
                                          std::string(5000, '9'),
                                          std::string(300, ' '),
                                          "0x10",
                                          "1e",
                                          ".",
                                          "-",
                                          "5 5 5 5 5"};
    Settings.MaxIteration = 5;
    Headless.OnQuestion = [](const DialogShown& shown) { return std::optional(shown.Buttons.back()); };
    unsigned random = 12345;
    const auto pick = [&random](std::size_t n) {
        random = random * 1664525U + 1013904223U;
        return static_cast<std::size_t>(random >> 8) % n;
    };
    AddPairs(7);
    const JobRecord clean = Job;
    for (int round = 0; round < 300; ++round) {
        SCOPED_TRACE(round);
        Job = clean;
        Job.ParamText.fill(kFloat);
        for (std::size_t k = 1; k < 18; ++k)
            if (pick(3) == 0) Job.ParamText[k] = odd[pick(odd.size())];
        Job.NormType = static_cast<std::int16_t>(static_cast<int>(pick(6)) - 1);
        Job.AutoRecalc = ToFlag(pick(2) == 0);
        Job.DirectionMCStoOCS = ToFlag(pick(2) == 0);
        if (pick(4) == 0) Job.RobotABC = Matrix(Job.Pairs(), 3);
        Open();
        Calculate();
        if (pick(2) == 0) {
            Control* const presets[] = {&trafoWindow.Option6Parameter, &trafoWindow.Option7Parameter,
                                        &trafoWindow.Option9Parameter, &trafoWindow.Option12,
                                        &trafoWindow.OptionHoldLevel};
            UserSetValue(*presets[pick(5)], 1);
            UserSetValue(*RowOf(static_cast<int>(pick(17)) + 1).Check, static_cast<int>(pick(2)));
            UserSetText(*RowOf(static_cast<int>(pick(17)) + 1).Text, odd[pick(odd.size())]);
            Calculate();
            UserClick(trafoWindow.BtnSEED);
        }
        ExpectAtRest();
        UnloadWindow("FormTrafoBerechnung");
        UserClick(trafoWindow.BtnCalculate);
        Dispatch(myButtonCalculate);
        EXPECT_EQ(::Run.WaitPointers, 0);
    }
}

TEST_F(CalculationGuests, LongNamesAndPointsThatAreNoNumbersAreShown) {
    AddPairs(6);
    Job.Start.Name[2] = Job.Target.Name[2] = std::string(100000, 'x');
    Open();
    Calculate();
    ExpectAtRest();
    Job.Target.Y[3] = std::numeric_limits<double>::quiet_NaN();
    for (Control* const norm : {&trafoWindow.OptionL1, &trafoWindow.OptionLoo, &trafoWindow.OptionL2}) {
        UserSetValue(*norm, 1);
        Calculate();
        EXPECT_FALSE(IsTrue(::Run.TrafoValid));
        ExpectAtRest();
    }
}

TEST_F(CalculationGuests, PresetsAndBoxesInAnyOrderCalculateAndEnd) {
    AddPairs(9);
    Settings.MonteCarloRuns = 3;
    Settings.MaxIteration = 20;
    Headless.OnQuestion = [](const DialogShown& shown) { return std::optional(shown.Buttons.back()); };
    Open();
    UserSetValue(trafoWindow.CheckAutoRec, 1);
    unsigned random = 99;
    const auto pick = [&random](std::size_t n) {
        random = random * 1664525U + 1013904223U;
        return static_cast<std::size_t>(random >> 8) % n;
    };
    Control* const options[] = {&trafoWindow.Option6Parameter, &trafoWindow.Option7Parameter,
                                &trafoWindow.Option9Parameter, &trafoWindow.Option12,
                                &trafoWindow.OptionHoldLevel,  &trafoWindow.OptionL1,
                                &trafoWindow.OptionL2,         &trafoWindow.OptionLoo};
    int depth = 0;
    std::uint64_t yields = 0;
    Headless.OnYield = [&] {
        if (++yields % 7 != 0 || depth > 0) return;
        ++depth;
        switch (pick(6)) {
            case 0:
                UserSetValue(*options[pick(8)], 1);
                break;
            case 1:
                UserClick(trafoWindow.BtnSTOP);
                break;
            case 2:
                if (trafoWindow.BtnSwitchMcsOcs.Enabled) UserClick(trafoWindow.BtnSwitchMcsOcs);
                break;
            case 3:
                UnloadWindow("FormTrafoBerechnung");
                if (pick(2) == 0) ShowWindow("FormTrafoBerechnung");
                break;
            default:
                UserSetValue(*RowOf(static_cast<int>(pick(17)) + 1).Check, static_cast<int>(pick(2)));
        }
        --depth;
    };
    for (int step = 0; step < 300; ++step) {
        SCOPED_TRACE(step);
        ShowWindow("FormTrafoBerechnung");
        switch (pick(4)) {
            case 0:
                UserSetValue(*options[pick(8)], 1);
                break;
            case 1:
                UserSetValue(trafoWindow.CheckMonteCarlo, static_cast<int>(pick(2)));
                Calculate();
                break;
            default:
                UserSetValue(*RowOf(static_cast<int>(pick(17)) + 1).Check, static_cast<int>(pick(2)));
        }
        ExpectAtRest();
    }
}

TEST_F(CalculationGuests, WhatIsTypedIntoAHeldFieldInsideARunIsNotOverwrittenByIt) {
    AddPairs();
    Open();
    UserSetValue(trafoWindow.CheckTraZ, 0);
    UserSetText(trafoWindow.TextTraZ, "290");
    int yields = 0;
    Headless.OnYield = [&yields] {
        if (++yields == 3) UserSetText(trafoWindow.TextTraZ, "295");
    };
    Calculate();
    EXPECT_EQ(Job.TraZ, 290);
    EXPECT_EQ(trafoWindow.TextTraZ.Text, "295");
}

TEST_F(CalculationGuests, AStopInsideARunDoesNotReachTheOneBehindIt) {
    AddPairs();
    Open();
    UserSetValue(trafoWindow.CheckAutoRec, 1);
    int yields = 0;
    Headless.OnYield = [&yields] {
        if (++yields != 2) return;
        UserSetValue(trafoWindow.CheckTraX, 0);
        UserClick(trafoWindow.BtnSTOP);
    };
    Calculate();
    EXPECT_TRUE(Adjustment.Converged);
    EXPECT_EQ(Calculation.nFloat, 5);
    ExpectAtRest();
}

TEST_F(CalculationGuests, OneNormGivesWayToAnotherInsideItsRun) {
    AddPairs(10);
    Open();
    UserSetValue(trafoWindow.CheckAutoRec, 1);
    int yields = 0;
    Headless.OnYield = [&yields] {
        if (++yields == 5) UserSetValue(trafoWindow.OptionL2, 1);
    };
    UserSetValue(trafoWindow.OptionL1, 1);
    EXPECT_EQ(Job.NormType, 2);
    for (std::size_t i = 1; i < Calculation.P.size(); ++i) EXPECT_EQ(Calculation.P[i], 1);
    EXPECT_TRUE(trafoWindow.CheckMonteCarlo.Enabled);
    ExpectAtRest();
}

TEST_F(CalculationGuests, PointsReplacedInsideARunStayAndTheWindowIsAtRest) {
    AddPairs(8, 0);
    Open();
    for (Control* const norm : {&trafoWindow.OptionL1, &trafoWindow.OptionLoo, &trafoWindow.OptionL2}) {
        UserSetValue(*norm, 1);
        const int pairs = Job.Pairs();
        int yields = 0;
        Headless.OnYield = [&yields] {
            if (++yields != 3) return;
            UnloadWindow("FormTrafoBerechnung");
            Job.ParamText.fill("");
            AddPairs(3, 0);
            ++::Run.JobGeneration;
            ShowWindow("FormTrafoBerechnung");
        };
        Calculate();
        Headless.OnYield = nullptr;
        EXPECT_EQ(Job.Pairs(), pairs + 3);
        EXPECT_FALSE(CalculationIsOfThisJob());
        EXPECT_EQ(trafoWindow.TextTraX.Text, "float");
        EXPECT_EQ(trafoWindow.TextSxyz.Text, "");
        ExpectAtRest();
        Calculate();
        EXPECT_NEAR(Job.TraX, 100, 1e-6);
    }
}

TEST_F(CalculationGuests, TheRVectorChosenFromAnotherNormAndDirectionEndsWithBothPutBack) {
    AddPairs(10);
    Job.RobotABC = Matrix(Job.Pairs(), 3);
    Open();
    UserSetValue(trafoWindow.OptionL1, 1);
    UserClick(trafoWindow.BtnSwitchMcsOcs);
    UserSetValue(trafoWindow.CheckAutoRec, 1);
    UserSetValue(trafoWindow.CheckUseABC, 1);
    EXPECT_EQ(Job.NormType, 2);
    EXPECT_TRUE(IsTrue(Job.DirectionMCStoOCS));
    EXPECT_TRUE(CalculationIsOfThisJob());
    EXPECT_EQ(Calculation.nFloat, 9);
    ExpectAtRest();
}

TEST_F(CalculationGuests, TwoPairsCalculateWhatTheyCanDetermine) {
    AddPairs(2, 0);
    Open();
    Calculate();  // six unknowns, six coordinates: the turn about the line between them stays open
    ExpectAtRest();
    UserSetValue(trafoWindow.OptionHoldLevel, 1);
    Calculate();
    ExpectAtRest();
    EXPECT_EQ(Calculation.nFloat, 4);
}
