// The window in which a network is adjusted, from its buttons to the job that it leaves.
#include <sstream>

#include "bundle/network_job.h"
#include "core/files.h"
#include "core/form_main.h"
#include "core/text.h"
#include "core/units.h"
#include "engine/calculation_window.h"

using namespace corvinade;

namespace {

FormBündel& w = BündelWindow;

class BundleWindow : public NetworkJob {
protected:
    static std::vector<std::string> Lines(const std::string& text) {
        std::vector<std::string> lines;
        std::string_view rest = text, line;
        while (CutLine(rest, line)) lines.emplace_back(line);
        return lines;
    }
    static std::vector<std::string> FieldsOf(const std::string& line) {
        std::vector<std::string> fields;
        std::istringstream in(line);
        for (std::string field; std::getline(in, field, '\t');) fields.push_back(field);
        return fields;
    }
    static void ExpectAtRest() {
        EXPECT_TRUE(w.BtnCalculate.Enabled);
        EXPECT_TRUE(w.Command1.Enabled);
        EXPECT_FALSE(w.CommandSTOP.Enabled);
        EXPECT_FALSE(IsTrue(::Run.StopRequested));
        EXPECT_EQ(::Run.WaitPointers, 0);
        EXPECT_TRUE(JobIsWhole(Job));
    }
    std::string StartFile() const { return FolderOfFiles() + "BündelMCS.txt"; }
    std::string TargetFile() const { return FolderOfFiles() + "BündelOCS.txt"; }
    // A network that has to be thought about for some yields.
    static SimulatedNetwork Large() { return {6, 230}; }
};

}  // namespace

TEST_F(BundleWindow, WritesTheApproximateAndTheAdjustedNetworkStationsFirst) {
    Read(network_.Text());
    const Matrix stations = Bundle.Net.StationXYZ, objects = Bundle.Net.ObjectXYZ;
    Calculate();
    EXPECT_EQ(Messages(), std::vector<std::string>{});
    const auto expected = [](const Matrix& s, const Matrix& o) {
        std::string text;
        const auto add = [&text](const std::string& name, const double* xyz) {
            text += name + "\t" + PlainText(xyz[1]) + "\t" + PlainText(xyz[2]) + "\t" + PlainText(xyz[3]) +
                    "\r\n";
        };
        for (int i = 1; i <= 5; ++i) add("S" + std::to_string(i), s.Row(i));
        for (int i = 1; i <= 12; ++i) add("P" + std::to_string(i), o.Row(i));
        return text;
    };
    EXPECT_EQ(Contents(TargetFile()), expected(stations, objects));
    EXPECT_EQ(Contents(StartFile()), expected(Bundle.Net.StationXYZ, Bundle.Net.ObjectXYZ));
    EXPECT_NE(Contents(StartFile()), Contents(TargetFile()));
    ExpectAtRest();
}

TEST_F(BundleWindow, TakesBothNetworksAsTheJobPairedByName) {
    Read(network_.Text());
    Calculate();
    EXPECT_EQ(Job.PathMCS, StartFile());
    EXPECT_EQ(Job.PathOCS, TargetFile());
    EXPECT_EQ(Job.Start.Count(), 17);
    EXPECT_EQ(Job.Pairs(), 17);
    EXPECT_EQ(Run.JobDataValid, kTrue);
    EXPECT_EQ(Run.JobDirty, kTrue);
    EXPECT_TRUE(Main.MenuTransformation.Enabled);
    for (int i = 1; i <= Job.Pairs(); ++i) {
        const auto k = static_cast<std::size_t>(i);
        ASSERT_EQ(Job.Start.Name[k], Job.Target.Name[k]);
        if (Job.Start.Name[k] != "P7") continue;
        EXPECT_NEAR(*Job.Start.X[k], Bundle.Net.ObjectXYZ(7, 1), 1e-10);
        EXPECT_NEAR(*Job.Target.X[k], network_.Objects[6][0], 1e-10);
    }
}

TEST_F(BundleWindow, TellsItsStepsItsIterationsAndItsResult) {
    Read(network_.Text());
    w.TextWhatDO.Text = w.TextResults.Text = "old";
    Calculate();
    const std::vector<std::string> runs = Lines(w.TextRUN.Text);
    ASSERT_GE(runs.size(), 3u);
    EXPECT_EQ(runs[0].find("Iterations 1 Biggest x "), 0u) << runs[0];
    EXPECT_NE(runs[0].find(" [v] "), std::string::npos);
    EXPECT_NE(runs[0].find(" [vv] "), std::string::npos);
    EXPECT_TRUE(w.TextRUN.Text.ends_with("\r\n"));
    const std::vector<std::string> steps = Lines(w.TextWhatDO.Text);
    ASSERT_EQ(steps.size(), 9 * runs.size());
    EXPECT_EQ(steps[0], "calculationg A Matrix");
    EXPECT_EQ(steps[8], "calculating unknowns");
    EXPECT_EQ(steps[9], steps[0]);

    const std::vector<std::string> results = Lines(w.TextResults.Text);
    ASSERT_EQ(results.size(), 17u);
    const std::vector<std::string> first = FieldsOf(results[0]), last = FieldsOf(results[16]);
    ASSERT_EQ(first.size(), 7u);
    EXPECT_EQ(first[0], "S1");
    EXPECT_EQ(first[1], PlainText(Bundle.Net.StationXYZ(1, 1)));
    for (const std::size_t held : {4U, 5U, 6U}) EXPECT_EQ(first[held], "0");
    EXPECT_EQ(last[0], "P12");
    EXPECT_GT(Val(last[4]), 0.01);
    EXPECT_LT(Val(last[4]), 10);
    EXPECT_TRUE(w.TextResults.Locked);
}

TEST_F(BundleWindow, TheBiggestXOfTheLastIterationIsBelowItsLimit) {
    Read(network_.Text());
    Calculate();
    const std::vector<std::string> runs = Lines(w.TextRUN.Text);
    const auto biggest = [](const std::string& line) {
        return Val(line.substr(line.find("Biggest x ") + 10));
    };
    EXPECT_LT(biggest(runs.back()), 1e-5);
    EXPECT_GE(biggest(runs[runs.size() - 2]), 1e-5);
}

TEST_F(BundleWindow, PutsTheVectorsOfTheLastIterationOnTheClipboard) {
    Read(network_.Text());
    Calculate();
    const std::vector<std::string> lines = Lines(Headless.Clipboard);
    ASSERT_EQ(lines.size(), 2 + 45u + 60u);
    EXPECT_EQ(lines[0], "x i");
    EXPECT_EQ(lines[46], "v i");
    double sumVV = 0;
    for (std::size_t i = 1; i <= 45; ++i) EXPECT_LT(std::fabs(Val(lines[i])), 1e-5);
    for (std::size_t i = 47; i < lines.size(); ++i) sumVV += Val(lines[i]) * Val(lines[i]);
    const std::string run = Lines(w.TextRUN.Text).back();
    EXPECT_NEAR(Val(run.substr(run.find("[vv] ") + 5)), sumVV, 1e-12);
}

TEST_F(BundleWindow, SaysThatTheClipboardRefusesAndGoesOn) {
    Read(network_.Text());
    Headless.ClipboardRefuses = true;
    Calculate();
    EXPECT_EQ(Messages(), std::vector<std::string>{"Clipboard coud not be set due unknown error"});
    EXPECT_EQ(Job.Pairs(), 17);
}

TEST_F(BundleWindow, UsesThePercentageOfTheObjectPoints) {
    Read(network_.Text());
    UserSetText(w.TextReduce, "50");
    Calculate();
    EXPECT_EQ(Job.Start.Count(), 5 + 6);
    EXPECT_EQ(Lines(Contents(TargetFile())).size(), 11u);
    EXPECT_EQ(Lines(w.TextResults.Text)[6].substr(0, 3), "P3\t");
}

TEST_F(BundleWindow, RefusesAPercentageThatIsNone) {
    Read(network_.Text());
    const Matrix before = Bundle.Net.ObjectXYZ;
    for (const std::string text : {"101", "0", "0.5", "-3", "1e9"}) {
        UserSetText(w.TextReduce, text);
        for (Control* button : {&w.BtnCalculate, &w.Command1}) {
            Headless.Dialogs.clear();
            UserClick(*button);
            ASSERT_EQ(Messages().size(), 1u) << text;
            EXPECT_NE(LastMessage().find("1 to 100"), std::string::npos) << LastMessage();
        }
    }
    for (const std::string text : {"", "half"}) {
        Headless.Dialogs.clear();
        UserSetText(w.TextReduce, text);
        Calculate();
        EXPECT_NE(LastMessage().find("Percentage of object points"), std::string::npos) << LastMessage();
    }
    EXPECT_FALSE(File_Exist(TargetFile()));
    EXPECT_EQ(Bundle.Net.ObjectXYZ.Elements, before.Elements);
    ExpectAtRest();
}

TEST_F(BundleWindow, ASecondRunBeginsAtTheAdjustedCoordinates) {
    Read(network_.Text());
    Calculate();
    const std::string adjusted = Contents(StartFile());
    Calculate();
    EXPECT_EQ(Contents(TargetFile()), adjusted);
    EXPECT_EQ(Lines(w.TextRUN.Text).back().find("Iterations 1 "), 0u) << w.TextRUN.Text;
}

TEST_F(BundleWindow, StationsOnALineEndTheRunBehindTheFirstFile) {
    SimulatedNetwork line = network_;
    for (std::size_t i = 0; i < line.Stations.size(); ++i)
        line.Stations[i] = {100.1 * static_cast<double>(i), 200.2 * static_cast<double>(i),
                            300.3 * static_cast<double>(i)};
    Read(line.Text());
    Headless.Clipboard = "before";
    const Matrix before = Bundle.Net.ObjectXYZ;
    Calculate();
    EXPECT_EQ(Messages(), std::vector<std::string>{"All Stations are in one line; this is not working"});
    EXPECT_TRUE(File_Exist(TargetFile()));
    EXPECT_FALSE(File_Exist(StartFile()));
    EXPECT_EQ(Bundle.Net.ObjectXYZ.Elements, before.Elements);
    EXPECT_EQ(Headless.Clipboard, "before");
    EXPECT_EQ(Job.Start.Count(), 0);
    ExpectAtRest();
}

TEST_F(BundleWindow, YieldsOnceAnIterationAndStopsBehindIt) {
    Read(network_.Text());
    int yields = 0;
    Headless.OnYield = [&yields] {
        if (++yields == 2) UserClick(w.CommandSTOP);
    };
    Calculate();
    EXPECT_EQ(Lines(w.TextRUN.Text).size(), 2u);
    EXPECT_TRUE(File_Exist(StartFile())) << "what was adjusted so far is handed on";
    EXPECT_EQ(Job.Pairs(), 17);
    ExpectAtRest();
}

TEST_F(BundleWindow, TheStopActsWithinTheInverseOfALargeNetwork) {
    Read(Large().Text());
    const Matrix before = Bundle.Net.ObjectXYZ;
    int yields = 0;
    Headless.OnYield = [&yields] {
        EXPECT_TRUE(w.CommandSTOP.Enabled);
        EXPECT_FALSE(w.BtnCalculate.Enabled);
        if (++yields == 1) UserClick(w.CommandSTOP);
    };
    Calculate();
    EXPECT_EQ(w.TextRUN.Text, "") << "the first iteration was not finished";
    EXPECT_EQ(Lines(w.TextWhatDO.Text).back(), "calculating N = (At * P) * A");
    EXPECT_FALSE(File_Exist(StartFile()));
    EXPECT_EQ(Bundle.Net.ObjectXYZ.Elements, before.Elements);
    ExpectAtRest();
}

TEST_F(BundleWindow, AStopWithinALaterIterationHandsOnTheOneBefore) {
    Read(Large().Text());
    Headless.OnYield = [] {
        if (w.TextRUN.Text.empty() || !w.TextWhatDO.Text.ends_with("* A\r\n")) return;
        Headless.OnYield = nullptr;
        UserClick(w.CommandSTOP);
    };
    Calculate();
    EXPECT_EQ(Lines(w.TextRUN.Text).size(), 1u);
    EXPECT_EQ(Job.Pairs(), 236);
    ASSERT_EQ(Lines(w.TextResults.Text).size(), 236u);
    EXPECT_GT(Val(FieldsOf(Lines(w.TextResults.Text)[200])[4]), 0);
    ExpectAtRest();
}

TEST_F(BundleWindow, ClosedWithinARunItEndsTheRunAndTheJobStays) {
    Read(network_.Text());
    Headless.OnYield = [] { UnloadWindow("FormBündel"); };
    Calculate();
    EXPECT_FALSE(IsLoaded("FormBündel"));
    EXPECT_FALSE(File_Exist(StartFile()));
    EXPECT_EQ(Job.PathMCS, "");
    EXPECT_EQ(::Run.WaitPointers, 0);
}

TEST_F(BundleWindow, AnotherNetworkOrJobWithinARunIsLeftAsItCame) {
    Read(network_.Text());
    const std::string other = Write("other.txt", SimulatedNetwork(4, 8).Text());
    Headless.OnYield = [&other] {
        Headless.OnYield = nullptr;
        ReadBundleFile(other);
    };
    Calculate();
    EXPECT_EQ(Bundle.nObjectPoints, 8);
    EXPECT_FALSE(File_Exist(StartFile()));
    ExpectAtRest();

    Headless.OnYield = [] {
        Headless.OnYield = nullptr;
        ++::Run.JobGeneration;
        Job.PathMCS = "another job";
    };
    Calculate();
    EXPECT_EQ(Job.PathMCS, "another job");
    EXPECT_FALSE(File_Exist(StartFile()));
    ExpectAtRest();
}

TEST_F(BundleWindow, WritesBothFilesInTheUnitThatTheyAreReadIn) {
    Job.LengthUnitName = "meter";
    RhoFestlegung();
    Read(network_.Text(0.001));
    Calculate();
    EXPECT_NEAR(Val(FieldsOf(Lines(Contents(TargetFile()))[5])[1]), network_.Objects[0][0] / 1000, 1e-12);
    for (std::size_t k = 1; k < Job.Target.Name.size(); ++k)
        if (Job.Target.Name[k] == "P1") {
            EXPECT_NEAR(*Job.Target.X[k], network_.Objects[0][0], 1e-9);
        }

    Headless.OnYield = [] {
        Headless.OnYield = nullptr;
        Job.LengthUnitName = "millimeter";
        RhoFestlegung();
    };
    Calculate();
    EXPECT_GT(Val(FieldsOf(Lines(Contents(TargetFile()))[5])[1]), 100);
    for (std::size_t k = 1; k < Job.Target.Name.size(); ++k)
        if (Job.Target.Name[k] == "P1") {
            EXPECT_NEAR(*Job.Target.X[k], *Job.Start.X[k], 1);
        }
}

TEST_F(BundleWindow, OnASystemWithDecimalCommaTheFilesAreReadWithoutAQuestion) {
    Headless.Decimal = ',';
    Read(network_.Text());
    Calculate();
    EXPECT_EQ(Messages(), std::vector<std::string>{});
    EXPECT_NE(Contents(StartFile()).find(','), std::string::npos);
    EXPECT_EQ(Job.Pairs(), 17);
}

TEST_F(BundleWindow, TheFileOfAnotherJobIsNotSavedOver) {
    ::Run.JobFilePath = PathOf("hall.cvn");
    Read(network_.Text());
    Calculate();
    EXPECT_EQ(::Run.JobFilePath, PathOf("hall.cvn")) << "named by New: no points were there";
    Calculate();
    EXPECT_EQ(::Run.JobFilePath, PathOf("hall.cvn")) << "the network's own job";
    Job.PathMCS = "other.txt";
    Calculate();
    EXPECT_EQ(::Run.JobFilePath, kDefaultJobPath);
}

TEST_F(BundleWindow, WhatAnEarlierJobHadBesidesPointsGoesWithIt) {
    Read(network_.Text());
    Job.IsKuka = kTrue;
    Job.IsParaboloid = kTrue;
    Job.ParaboloidShape = Matrix(7, 2);
    Job.RobotABC = Matrix(9, 3);
    Job.NameMCS = "Robot";
    Job.Start.CountOnly(0);
    ::Run.TrafoValid = kTrue;
    Calculate();
    EXPECT_EQ(Job.IsKuka, kFalse);
    EXPECT_EQ(Job.IsParaboloid, kFalse);
    EXPECT_EQ(Run.IsDefault, kTrue);
    EXPECT_EQ(Job.ParaboloidShape.Rows, -1);
    EXPECT_EQ(Job.RobotABC.Rows, -1);
    EXPECT_EQ(Job.NameMCS, "MCS");
    EXPECT_EQ(Run.TrafoValid, kFalse);
    EXPECT_EQ(Job.Pairs(), 17);
}

TEST_F(BundleWindow, TheCalculationWindowOpensAnewOnTheNetwork) {
    Read(network_.Text());
    Calculate();
    UserClick(Main.MenuTransformationCalculation);
    ASSERT_TRUE(IsLoaded("FormTrafoBerechnung"));
    UserSetText(w.TextReduce, "50");
    Calculate();
    EXPECT_TRUE(IsLoaded("FormTrafoBerechnung"));
    EXPECT_TRUE(Main.MenuTransformationCalculation.Checked);
    UserClick(TrafoWindow.BtnCalculate);
    EXPECT_EQ(Run.TrafoValid, kTrue);
}

TEST_F(BundleWindow, ANameThatOccursTwiceKeepsTheNetworkFromBeingAJob) {
    SimulatedNetwork doubled = network_;
    std::string text = doubled.Text();
    for (std::size_t at; (at = text.find("P1 ")) != std::string::npos;) text.replace(at, 3, "S1 ");
    Read(text);
    Calculate();
    ASSERT_EQ(Messages().size(), 1u);
    EXPECT_NE(LastMessage().find("S1"), std::string::npos) << LastMessage();
    EXPECT_EQ(Run.JobDataValid, kFalse);
    EXPECT_EQ(Lines(w.TextResults.Text).size(), 17u) << "the result is there all the same";
    ExpectAtRest();
}

TEST_F(BundleWindow, AFolderThatTakesNoFileIsToldAndTheNetworkStays) {
    Read(network_.Text());
    const Matrix before = Bundle.Net.ObjectXYZ;
    FileFaults.Refuse = [](const std::string& operation, const std::string&) {
        return operation == "write" ? "the disk is full" : "";
    };
    Calculate();
    EXPECT_NE(LastMessage().find("the disk is full"), std::string::npos) << LastMessage();
    EXPECT_EQ(Bundle.Net.ObjectXYZ.Elements, before.Elements);
    ExpectAtRest();
}

TEST_F(BundleWindow, TheCopyIsAdjustedFurtherAndLeavesNoTrace) {
    Read(network_.Text());
    const Matrix before = Bundle.Net.ObjectXYZ;
    Headless.Clipboard = "before";
    UserClick(w.Command1);
    EXPECT_EQ(Messages(), std::vector<std::string>{});
    EXPECT_EQ(Bundle.Net.ObjectXYZ.Elements, before.Elements);
    EXPECT_EQ(w.TextWhatDO.Text + w.TextRUN.Text + w.TextResults.Text, "");
    EXPECT_FALSE(File_Exist(TargetFile()));
    EXPECT_EQ(Headless.Clipboard, "before");
    const std::string status = Main.StatusBar_3.Text;
    EXPECT_LT(Val(status.substr(status.find("Biggest x ") + 10)), 1e-6) << status;
    Calculate();
    for (int axis = 1; axis <= 3; ++axis)
        EXPECT_NEAR(w.Own.Net.ObjectXYZ(4, axis), Bundle.Net.ObjectXYZ(4, axis), 1e-4);
    ExpectAtRest();
}

TEST_F(BundleWindow, TheCopyUsesThePercentageAndStops) {
    Read(network_.Text());
    UserSetText(w.TextReduce, "50");
    Headless.OnYield = [] { ::Run.StopRequested = kTrue; };
    UserClick(w.Command1);
    EXPECT_EQ(w.Own.Net.ObjectXYZ(2, 1), Bundle.Net.ObjectXYZ(2, 1));
    EXPECT_NE(w.Own.Net.ObjectXYZ(3, 1), Bundle.Net.ObjectXYZ(3, 1));
    EXPECT_EQ(Main.StatusBar_3.Text.find("Iterations 1 "), 0u);
    ExpectAtRest();
}

TEST_F(BundleWindow, DistancesThatDoNotDetermineTheNetworkAreToldAndEnd) {
    for (const SimulatedNetwork& weak : {SimulatedNetwork(3, 12), SimulatedNetwork(4, 3)}) {
        Read(weak.Text());
        Calculate();
        ASSERT_GE(Messages().size(), 1u);
        EXPECT_NE(Messages()[0].find("do not determine the network"), std::string::npos) << Messages()[0];
        ExpectAtRest();
    }
}

TEST_F(BundleWindow, WithoutAnyDistanceNothingMoves) {
    SimulatedNetwork none = network_;
    std::string text = none.Text();
    text = text.substr(0, text.find("S1 P1 ")) + "END\r\n";
    Read(text);
    const Matrix before = Bundle.Net.ObjectXYZ;
    Calculate();
    ASSERT_EQ(Messages().size(), 1u);
    EXPECT_NE(LastMessage().find("nothing can be adjusted"), std::string::npos);
    EXPECT_EQ(Bundle.Net.ObjectXYZ.Elements, before.Elements);
    EXPECT_EQ(Lines(w.TextRUN.Text).size(), 1u);
    ExpectAtRest();
}

TEST_F(BundleWindow, UnknownNamesAndDistancesOfZeroAreToldBeforeTheRun) {
    std::string text = network_.Text();
    text.insert(text.rfind("END"), "S1 nobody 5\r\nS2 P2 nonsense\r\n");
    Read(text);
    Calculate();
    ASSERT_GE(Messages().size(), 1u);
    EXPECT_NE(Messages()[0].find("\"S1\" to \"nobody\""), std::string::npos) << Messages()[0];
    EXPECT_NE(Messages()[0].find("\"S2\" to \"P2\""), std::string::npos);
}

TEST_F(BundleWindow, NumbersBeyondAllBoundsAreRefusedAndLeaveTheNetwork) {
    for (const char* number : {"1e308", "-1e200", "1e999"}) {
        SimulatedNetwork huge = network_;
        std::string text = huge.Text();
        text.replace(text.find("S3 ") + 3, 1, std::string(number) + " ");
        Read(text);
        Calculate();
        ASSERT_EQ(Messages().size(), 1u) << number;
        EXPECT_NE(LastMessage().find("too large"), std::string::npos) << LastMessage();
        ExpectAtRest();
    }
}

TEST_F(BundleWindow, EscapeStopsARunAndClosesTheWindowAtRest) {
    Read(network_.Text());
    Headless.OnYield = [] {
        Headless.OnYield = nullptr;
        UserEscape(FormBündel_Entry);
    };
    Calculate();
    EXPECT_TRUE(IsLoaded("FormBündel"));
    EXPECT_EQ(Lines(w.TextRUN.Text).size(), 1u);
    UserEscape(FormBündel_Entry);
    EXPECT_FALSE(IsLoaded("FormBündel"));
}

TEST_F(BundleWindow, AJobOfNoPointsBehindANetworkDoesNoHarm) {
    Read(network_.Text());
    ASSERT_EQ(Job.Start.Count(), 0);
    UserClick(Main.MenuVievMainSheet);
    UserClick(Main.MenueGraphics);
    UserClick(Main.MenuTransformationCalculation);
    EXPECT_FALSE(IsLoaded("FormTrafoBerechnung"));
    Headless.Answers["save"].emplace_back(PathOf("empty.cvn"));
    UserClick(Main.MenuFileSaveAs);
    EXPECT_TRUE(File_Exist(PathOf("empty.cvn")));
    UserClick(BündelWindow.BtnCalculate);
    EXPECT_EQ(Job.Pairs(), 17);
}
