// Pairing by name and by coordinate, and what the job holds afterwards.
#include "import/matching.h"

#include <algorithm>
#include <cmath>
#include <random>

#include "cli/headless.h"
#include "core/form_progress_bar.h"
#include "core/job.h"
#include "core/run.h"
#include "support/fixture.h"

using namespace corvinade;

namespace {

class Matching : public Program {
protected:
    // Points whose x tells which they are: 1, 2, 3... in the start set, 101, 102... in the target set.
    static void Fill(const std::vector<std::string>& start, const std::vector<std::string>& target) {
        Job = JobRecord{};
        for (const std::string& name : start) {
            const double x = Job.Start.Count() + 1;
            Job.Start.Add(name, x, 0.5, -x);
        }
        for (const std::string& name : target) {
            const double x = 100.0 + Job.Target.Count() + 1;
            Job.Target.Add(name, x, 0.5, -x);
        }
        GetInfoFromData();
        Job.SetPairs(0);
    }
    static void MatchByName() {
        MCS_OCS_aufbereiten();
        GetInfoFromData();
        IdentischePkte_Neu();
    }
    // The pairs stand at the front of both sets, nobody else has a partner, and points are whole.
    static void ExpectInvariant(const std::vector<std::string>& start,
                                const std::vector<std::string>& target) {
        EXPECT_TRUE(JobIsWhole(Job));
        for (int i = 1; i <= Job.Pairs(); ++i)
            ASSERT_EQ(Job.Start.Name[static_cast<std::size_t>(i)],
                      Job.Target.Name[static_cast<std::size_t>(i)]);
        for (int i = 1; i <= Job.Pairs(); ++i) ASSERT_NE(Job.Start.Name[static_cast<std::size_t>(i)], "");
        std::vector<std::string> both;
        std::vector<std::string> a = start, b = target;
        std::sort(a.begin(), a.end());
        std::sort(b.begin(), b.end());
        std::set_intersection(a.begin(), a.end(), b.begin(), b.end(), std::back_inserter(both));
        std::erase(both, "");  // an element without a name is no point
        EXPECT_EQ(Job.Pairs(), static_cast<int>(both.size()));
        for (std::size_t i = 1; i < Job.Start.Name.size(); ++i) {
            EXPECT_EQ(start[static_cast<std::size_t>(*Job.Start.X[i]) - 1], Job.Start.Name[i]);
            EXPECT_EQ(Job.Start.Z[i], -*Job.Start.X[i]);
        }
        for (std::size_t i = 1; i < Job.Target.Name.size(); ++i) {
            EXPECT_EQ(target[static_cast<std::size_t>(*Job.Target.X[i]) - 101], Job.Target.Name[i]);
            EXPECT_EQ(Job.Target.Z[i], -*Job.Target.X[i]);
        }
    }
};

TEST_F(Matching, EqualNamesComeToTheFrontOfBothSetsInTheirOrder) {
    const std::vector<std::string> start = {"x", "10", "B", "2"}, target = {"2", "A", "B", "10", "C"};
    Fill(start, target);
    MatchByName();
    EXPECT_EQ(Job.Pairs(), 3);
    EXPECT_EQ(Job.StartOnly(), 1);
    EXPECT_EQ(Job.TargetOnly(), 2);
    EXPECT_EQ(Job.Start.Name, (std::vector<std::string>{"", "2", "10", "B", "x"}));
    EXPECT_EQ(Job.Target.Name, (std::vector<std::string>{"", "2", "10", "B", "A", "C"}));
    ExpectInvariant(start, target);
}

// Each pose is told apart by its angles: 1001, 1002, 1003 of target point 101...
TEST_F(Matching, EveryPoseStaysWithItsPoint) {
    std::mt19937 random(7);
    for (int round = 0; round < 200; ++round) {
        std::vector<std::string> start, target;
        for (std::vector<std::string>* const names : {&start, &target})
            for (int i = 1; i <= 12; ++i)
                if (random() % 3 != 0) names->push_back(std::to_string(i * 5));
        std::shuffle(start.begin(), start.end(), random);
        std::shuffle(target.begin(), target.end(), random);
        for (unsigned unused = random() % 3; unused > 0; --unused) target.emplace_back();
        Fill(start, target);
        Job.RobotABC = Matrix(Job.Target.Count(), 3);
        for (int i = 1; i <= Job.Target.Count(); ++i)
            for (int k = 0; k <= 3; ++k) Job.RobotABC(i, k) = 10.0 * (100 + i) + k;
        MatchByName();
        ExpectInvariant(start, target);
        for (int i = 1; i <= Job.Target.Count(); ++i)
            for (int k = 0; k <= 3; ++k)
                ASSERT_EQ(Job.RobotABC(i, k), 10.0 * *Job.Target.X[static_cast<std::size_t>(i)] + k);
        EXPECT_TRUE(Messages().empty()) << "places that no pose has come to are no points of equal name";
    }
}

TEST_F(Matching, OrientationsOfAnotherNumberOfPosesStayWhereTheyAre) {
    Fill({"1", "2"}, {"2", "1", "3"});
    Job.RobotABC = Matrix(2, 3);
    Job.RobotABC(1, 1) = 7;
    MatchByName();
    EXPECT_EQ(Job.RobotABC(1, 1), 7);
}

TEST_F(Matching, TheTransformedPointsAreACopyOfTheStartPoints) {
    Fill({"a", "b"}, {"b"});
    Job.UseFlags = {0, 0, 1, 1};
    MatchByName();
    EXPECT_EQ(Job.Transformed.Name, Job.Start.Name);
    EXPECT_EQ(Job.Transformed.X, Job.Start.X);
    EXPECT_EQ(Job.Transformed.Z, Job.Start.Z);
    EXPECT_EQ(Job.RVecX.size(), 2u);
    EXPECT_EQ(Job.UseFlags, (std::vector<std::int16_t>{0, 0, 1, 1}));
}

TEST_F(Matching, WhatIsInUseStaysAndNewPlacesAreInUse) {
    Fill({"a", "b"}, {"a", "b"});
    Job.UseFlags = {0, 1, 0, 1};
    MatchByName();
    EXPECT_EQ(Job.UseFlags, (std::vector<std::int16_t>{0, 1, 0, 1, 1, 1, 1}));
}

TEST_F(Matching, NothingOfAnOlderJobStaysInTheRVectors) {
    Fill({"a", "b"}, {"a", "b"});
    Job.RVecX = {std::nullopt, 5.0, 6.0};
    Job.RVecY = Job.RVecX;
    Job.RVecZ = {0, 5, 6};
    MatchByName();
    EXPECT_EQ(Job.RVecX, std::vector<TaggedValue>(3));
    EXPECT_EQ(Job.RVecY, std::vector<TaggedValue>(3));
    EXPECT_EQ(Job.RVecZ, std::vector<double>(3));
}

TEST_F(Matching, WithoutAPairTheJobIsValid) {
    Fill({"a"}, {"b"});
    MatchByName();
    EXPECT_EQ(Job.Pairs(), 0);
    EXPECT_EQ(Job.UseFlags.size(), 1u);
    EXPECT_TRUE(JobIsWhole(Job));
    Fill({}, {});
    MatchByName();
    EXPECT_TRUE(JobIsWhole(Job));
}

TEST_F(Matching, DoubleStartNamesStopEvenWithoutPartner) {
    Fill({"q", "b", "q"}, {"b"});
    MCS_OCS_aufbereiten();
    EXPECT_EQ(::Run.ImportFailed, kTrue);
    EXPECT_EQ(LastMessage(),
              "There might be a double Pointnumber in the MCS File. \r\nPlease check Point Number q");
    EXPECT_TRUE(JobIsWhole(Job));
}

TEST_F(Matching, DoubleTargetNamesStop) {
    Fill({"b"}, {"4", "b", "4"});
    MCS_OCS_aufbereiten();
    EXPECT_EQ(::Run.ImportFailed, kTrue);
    EXPECT_EQ(LastMessage(),
              "There might be a double Pointnumber in the OCS File. \r\nPlease check Point Number 4");
}

TEST_F(Matching, DoubleNamesAreFoundBetweenLevelOnesToo) {
    std::vector<std::string> names = {"7", "007", "7", "07", "0007"};
    std::sort(names.begin(), names.end());
    do {
        Fill(names, {"b"});
        ::Run.ImportFailed = kFalse;
        MCS_OCS_aufbereiten();
        ASSERT_EQ(::Run.ImportFailed, kTrue);
        ASSERT_TRUE(LastMessage().ends_with("Number 7"));
    } while (std::next_permutation(names.begin(), names.end()));
}

TEST_F(Matching, NamesOfDifferentZerosAreDifferentPoints) {
    const std::vector<std::string> start = {"007"}, target = {"7"};
    Fill(start, target);
    MatchByName();
    EXPECT_EQ(::Run.ImportFailed, kFalse);
    ExpectInvariant(start, target);
    EXPECT_EQ(Job.Pairs(), 0);
}

TEST_F(Matching, PairsStandInFrontForEveryMixtureOfLevelNames) {
    std::mt19937 random(5);
    const std::vector<std::string> all = {"7", "07", "007", "0007",  "6",  "06",
                                          "8", "P",  "A",   "00008", "08", ""};
    for (int round = 0; round < 2000; ++round) {
        std::vector<std::string> start, target;
        for (const std::string& name : all) {
            if (random() % 2 == 0) start.push_back(name);
            if (random() % 2 == 0) target.push_back(name);
        }
        std::shuffle(start.begin(), start.end(), random);
        std::shuffle(target.begin(), target.end(), random);
        Fill(start, target);
        MatchByName();
        ExpectInvariant(start, target);
        if (HasFatalFailure() || HasNonfatalFailure()) FAIL() << "round " << round;
    }
}

TEST_F(Matching, PairsStandInFrontWithoutASortBefore) {
    const std::vector<std::string> start = {"e", "d", "c", "b", "a"}, target = {"c", "x", "e", "a"};
    Fill(start, target);
    SortForIdentPts();
    GetInfoFromData();
    IdentischePkte_Neu();
    ExpectInvariant(start, target);
    EXPECT_EQ(Job.Start.Name[1], "a");
    EXPECT_EQ(Job.Start.Name[3], "e");
}

TEST_F(Matching, AHundredThousandNamesThatAreAllLevelOrDoubleEnd) {
    std::vector<std::string> names(100000, "7");
    Fill(names, names);
    MCS_OCS_aufbereiten();
    EXPECT_EQ(::Run.ImportFailed, kTrue);
    SortForIdentPts();
    GetInfoFromData();
    EXPECT_EQ(Job.Pairs(), 100000);
}

TEST_F(Matching, ElementsBehindTheNamesStayWhereTheyAre) {
    Fill({"b", "a"}, {"a"});
    Job.Start.SpareCoordinates(1);
    Job.Start.SetPoint(3, 77, 77, 77);
    MatchByName();
    EXPECT_EQ(Job.Start.Name[1], "a");
    EXPECT_EQ(Job.Start.X[3], 77);
    EXPECT_EQ(Job.Start.Z[3], 77);
}

class MatchingByCoordinate : public Program {
protected:
    MatchingByCoordinate() { ::Run.Etta = 0.5F; }
    static void Start(const std::string& name, double x) { Job.Start.Add(name, x, 0, 0); }
    static void Target(const std::string& name, double x) { Job.Target.Add(name, x, 0, 0); }
};

TEST_F(MatchingByCoordinate, TheFirstStartPointHasTheFirstChoice) {
    Start("s1", 0.3);
    Start("s2", 0.1);
    Target("t1", 0.0);
    Target("t2", 0.4);
    PärchenSuchen({});
    EXPECT_EQ(Job.Pairs(), 2);
    EXPECT_EQ(Job.Start.Name[1], "s1=t2");
    EXPECT_EQ(Job.Target.Name[2], "s1=t2");
    EXPECT_EQ(Job.Start.Name[2], "s2=t1");
    EXPECT_EQ(Job.Target.Name[1], "s2=t1");
}

TEST_F(MatchingByCoordinate, ThePointsArePairedUnderTheParametersOfTheJob) {
    Job.TraX = 1000;
    Job.ScaleX = 2;
    Start("s", 10);
    Target("far", 10);
    Target("t", 1020);
    PärchenSuchen({});
    EXPECT_EQ(Job.Pairs(), 1);
    EXPECT_EQ(Job.Target.Name[2], "s=t");
    EXPECT_EQ(Job.Target.Name[1], "far");
}

TEST_F(MatchingByCoordinate, APointAtTheToleranceIsNoPartner) {
    Start("s", 0);
    Target("t", 0.5);
    PärchenSuchen({});
    EXPECT_EQ(Job.Pairs(), 0);
    EXPECT_EQ(Job.Start.Name[1], "s");
}

TEST_F(MatchingByCoordinate, TheRenameBoxesChooseWhoseNameStays) {
    for (const auto& [start, target] : {std::pair{true, false}, {false, true}, {true, true}}) {
        Job = JobRecord{};
        Start("s", 0);
        Target("t", 0.1);
        MatchingOptions options;
        options.CheckRenameMCS = start;
        options.CheckRenameOCS = target;
        PärchenSuchen(options);
        EXPECT_EQ(Job.Start.Name[1], start ? "t" : "s");
        EXPECT_EQ(Job.Target.Name[1], start ? "t" : "s");
        EXPECT_EQ(Job.Pairs(), 1);
    }
}

TEST_F(MatchingByCoordinate, TheNamesThenBringThePairsToTheFront) {
    Start("a", 100);
    Start("b", 5);
    Target("c", 5.1);
    PärchenSuchen({});
    MCS_OCS_aufbereiten();
    GetInfoFromData();
    IdentischePkte_Neu();
    EXPECT_EQ(Job.Pairs(), 1);
    EXPECT_EQ(Job.Start.Name[1], "b=c");
    EXPECT_EQ(Job.Start.X[1], 5);
    EXPECT_TRUE(JobIsWhole(Job));
}

// Every start point stands at the centre of a sphere of target points, all of which are equally near but for
// roundings: no order of the target points spares looking at all of them.
class MatchingOnASphere : public MatchingByCoordinate {
protected:
    MatchingOnASphere() {
        ::Run.Etta = 2000;
        for (int i = 1; i <= kCount; ++i) {
            Start("s" + std::to_string(i), 0);
            const double height = 1 - 2.0 * i / (kCount + 1), width = std::sqrt(1 - height * height);
            Target("t" + std::to_string(i), 1000 * width * std::cos(i));
            Job.Target.Y.back() = 1000 * width * std::sin(i);
            Job.Target.Z.back() = 1000 * height;
        }
        GetInfoFromData();
    }
    static constexpr int kCount = 5000;
};

TEST_F(MatchingOnASphere, ALongPairingYieldsAndShowsHowFarItIs) {
    std::vector<double> progress;
    Headless.OnYield = [&] {
        EXPECT_TRUE(Progress.Window.Loaded);
        progress.push_back(Progress.ProgressBar1.Value);
    };
    PärchenSuchen({});
    EXPECT_GT(progress.size(), 5u);
    EXPECT_TRUE(std::is_sorted(progress.begin(), progress.end()));
    EXPECT_EQ(Job.Pairs(), kCount);
    EXPECT_FALSE(Progress.Window.Loaded);
}

TEST_F(MatchingOnASphere, AStopLeavesAllNamesAndNoPair) {
    ::Run.StopRequested = kTrue;  // from an earlier run
    Headless.OnYield = [] {
        if (Headless.Yields == 2) UserClick(Progress.BtnCancel);
    };
    const auto names = Job.Target.Name;
    PärchenSuchen({});
    EXPECT_EQ(Headless.Yields, 2u);
    EXPECT_EQ(::Run.StopRequested, kTrue);
    EXPECT_EQ(Job.Pairs(), 0);
    EXPECT_EQ(Job.Target.Name, names);
    EXPECT_EQ(::Run.ImportFailed, kFalse);
}

TEST_F(MatchingOnASphere, PointsThatReplaceThemMeanwhileAreLeftAlone) {
    Headless.OnYield = [] {
        Job = JobRecord{};
        for (PointSet* points : {&Job.Start, &Job.Target}) points->Resize(77);
        Job.SetPairs(77);
        ++::Run.JobGeneration;
    };
    PärchenSuchen({});
    EXPECT_EQ(Headless.Yields, 1u);
    EXPECT_EQ(Job.Pairs(), 77);
    EXPECT_EQ(::Run.ImportFailed, kTrue);
}

TEST_F(MatchingByCoordinate, APairingThatIsDoneAtOnceShowsNoWindow) {
    for (int i = 0; i < 2000; ++i) {
        Start("s" + std::to_string(i), i);
        Target("t" + std::to_string(i), i);
    }
    PärchenSuchen({});
    EXPECT_EQ(Headless.Yields, 0u);
    EXPECT_EQ(Job.Pairs(), 2000);
}

}  // namespace
