// Pairing by name and by coordinate, and what the job holds afterwards.
#include "import/matching.h"

#include <algorithm>
#include <cmath>
#include <random>

#include "cli/headless.h"
#include "core/form_progress_bar.h"
#include "core/job.h"
#include "core/refresh.h"
#include "core/run.h"
#include "support/fixture.h"

namespace {

class Matching : public Program {
protected:
    // Points whose x tells which they are: 1, 2, 3... in the start set, 101, 102... in the target set.
    static void Fill(const std::vector<std::string>& start, const std::vector<std::string>& target) {
        Job = JobRecord{};
        for (const std::string& name : start) {
            Job.MCS_Name.push_back(name);
            Job.MCS_X.emplace_back(static_cast<double>(Job.MCS_Name.size() - 1));
            Job.MCS_Y.emplace_back(0.5);
            Job.MCS_Z.push_back(-Job.MCS_X.back().value());
        }
        for (const std::string& name : target) {
            Job.OCS_Name.push_back(name);
            Job.OCS_X.emplace_back(100.0 + static_cast<double>(Job.OCS_Name.size() - 1));
            Job.OCS_Y.emplace_back(0.5);
            Job.OCS_Z.push_back(-Job.OCS_X.back().value());
        }
        GetInfoFromData();
        Job.nIdent = 0;
    }
    static void MatchByName() {
        MCS_OCS_aufbereiten();
        GetInfoFromData();
        IdentischePkte_Neu();
    }
    // The pairs stand at the front of both sets, nobody else has a partner, and points are whole.
    static void ExpectInvariant(const std::vector<std::string>& start,
                                const std::vector<std::string>& target) {
        EXPECT_TRUE(JobCountsFit(Job));
        for (int i = 1; i <= Job.nIdent; ++i)
            ASSERT_EQ(Job.MCS_Name[static_cast<std::size_t>(i)], Job.OCS_Name[static_cast<std::size_t>(i)]);
        for (int i = 1; i <= Job.nIdent; ++i) ASSERT_NE(Job.MCS_Name[static_cast<std::size_t>(i)], "");
        std::vector<std::string> both;
        std::vector<std::string> a = start, b = target;
        std::sort(a.begin(), a.end());
        std::sort(b.begin(), b.end());
        std::set_intersection(a.begin(), a.end(), b.begin(), b.end(), std::back_inserter(both));
        std::erase(both, "");  // an element without a name is no point
        EXPECT_EQ(Job.nIdent, static_cast<int>(both.size()));
        for (std::size_t i = 1; i < Job.MCS_Name.size(); ++i) {
            EXPECT_EQ(start[static_cast<std::size_t>(*Job.MCS_X[i]) - 1], Job.MCS_Name[i]);
            EXPECT_EQ(Job.MCS_Z[i], -*Job.MCS_X[i]);
        }
        for (std::size_t i = 1; i < Job.OCS_Name.size(); ++i) {
            EXPECT_EQ(target[static_cast<std::size_t>(*Job.OCS_X[i]) - 101], Job.OCS_Name[i]);
            EXPECT_EQ(Job.OCS_Z[i], -*Job.OCS_X[i]);
        }
    }
};

TEST_F(Matching, EqualNamesComeToTheFrontOfBothSetsInTheirOrder) {
    const std::vector<std::string> start = {"x", "10", "B", "2"}, target = {"2", "A", "B", "10", "C"};
    Fill(start, target);
    MatchByName();
    EXPECT_EQ(Job.nIdent, 3);
    EXPECT_EQ(Job.nMCSOnly, 1);
    EXPECT_EQ(Job.nOCSOnly, 2);
    EXPECT_EQ(Job.MCS_Name, (std::vector<std::string>{"", "2", "10", "B", "x"}));
    EXPECT_EQ(Job.OCS_Name, (std::vector<std::string>{"", "2", "10", "B", "A", "C"}));
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
        Job.RobotABC = Matrix(Job.nOCS, 3);
        for (int i = 1; i <= Job.nOCS; ++i)
            for (int k = 0; k <= 3; ++k) Job.RobotABC(i, k) = 10.0 * (100 + i) + k;
        MatchByName();
        ExpectInvariant(start, target);
        for (int i = 1; i <= Job.nOCS; ++i)
            for (int k = 0; k <= 3; ++k)
                ASSERT_EQ(Job.RobotABC(i, k), 10.0 * *Job.OCS_X[static_cast<std::size_t>(i)] + k);
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
    EXPECT_EQ(Job.TMCS_Name, Job.MCS_Name);
    EXPECT_EQ(Job.TMCS_X, Job.MCS_X);
    EXPECT_EQ(Job.TMCS_Z, Job.MCS_Z);
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
    EXPECT_EQ(Job.nIdent, 0);
    EXPECT_EQ(Job.UseFlags.size(), 1u);
    EXPECT_TRUE(JobCountsFit(Job));
    Fill({}, {});
    MatchByName();
    EXPECT_TRUE(JobCountsFit(Job));
}

TEST_F(Matching, DoubleStartNamesStopEvenWithoutPartner) {
    Fill({"q", "b", "q"}, {"b"});
    MCS_OCS_aufbereiten();
    EXPECT_EQ(::Run.ImportFailed, kTrue);
    EXPECT_EQ(LastMessage(),
              "There might be a double Pointnumber in the MCS File. \r\nPlease check Point Number q");
    EXPECT_TRUE(JobCountsFit(Job));
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
    EXPECT_EQ(Job.nIdent, 0);
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
    EXPECT_EQ(Job.MCS_Name[1], "a");
    EXPECT_EQ(Job.MCS_Name[3], "e");
}

TEST_F(Matching, AHundredThousandNamesThatAreAllLevelOrDoubleEnd) {
    std::vector<std::string> names(100000, "7");
    Fill(names, names);
    MCS_OCS_aufbereiten();
    EXPECT_EQ(::Run.ImportFailed, kTrue);
    SortForIdentPts();
    GetInfoFromData();
    EXPECT_EQ(Job.nIdent, 100000);
}

TEST_F(Matching, ElementsBehindTheNamesStayWhereTheyAre) {
    Fill({"b", "a"}, {"a"});
    Job.MCS_X.emplace_back(77);
    Job.MCS_Y.emplace_back(77);
    Job.MCS_Z.push_back(77);
    MatchByName();
    EXPECT_EQ(Job.MCS_Name[1], "a");
    EXPECT_EQ(Job.MCS_X[3], 77);
    EXPECT_EQ(Job.MCS_Z[3], 77);
}

class MatchingByCoordinate : public Program {
protected:
    MatchingByCoordinate() { ::Run.Etta = 0.5F; }
    static void Add(std::vector<std::string>& names, std::vector<TaggedValue>& x, std::vector<TaggedValue>& y,
                    std::vector<double>& z, const std::string& name, double px) {
        names.push_back(name);
        x.emplace_back(px);
        y.emplace_back(0);
        z.push_back(0);
    }
    static void Start(const std::string& name, double x) {
        Add(Job.MCS_Name, Job.MCS_X, Job.MCS_Y, Job.MCS_Z, name, x);
        ++Job.nMCS;
    }
    static void Target(const std::string& name, double x) {
        Add(Job.OCS_Name, Job.OCS_X, Job.OCS_Y, Job.OCS_Z, name, x);
        ++Job.nOCS;
    }
};

TEST_F(MatchingByCoordinate, TheFirstStartPointHasTheFirstChoice) {
    Start("s1", 0.3);
    Start("s2", 0.1);
    Target("t1", 0.0);
    Target("t2", 0.4);
    PärchenSuchen({});
    EXPECT_EQ(Job.nIdent, 2);
    EXPECT_EQ(Job.MCS_Name[1], "s1=t2");
    EXPECT_EQ(Job.OCS_Name[2], "s1=t2");
    EXPECT_EQ(Job.MCS_Name[2], "s2=t1");
    EXPECT_EQ(Job.OCS_Name[1], "s2=t1");
}

TEST_F(MatchingByCoordinate, ThePointsArePairedUnderTheParametersOfTheJob) {
    Job.TraX = 1000;
    Job.ScaleX = 2;
    Start("s", 10);
    Target("far", 10);
    Target("t", 1020);
    PärchenSuchen({});
    EXPECT_EQ(Job.nIdent, 1);
    EXPECT_EQ(Job.OCS_Name[2], "s=t");
    EXPECT_EQ(Job.OCS_Name[1], "far");
}

TEST_F(MatchingByCoordinate, APointAtTheToleranceIsNoPartner) {
    Start("s", 0);
    Target("t", 0.5);
    PärchenSuchen({});
    EXPECT_EQ(Job.nIdent, 0);
    EXPECT_EQ(Job.MCS_Name[1], "s");
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
        EXPECT_EQ(Job.MCS_Name[1], start ? "t" : "s");
        EXPECT_EQ(Job.OCS_Name[1], start ? "t" : "s");
        EXPECT_EQ(Job.nIdent, 1);
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
    EXPECT_EQ(Job.nIdent, 1);
    EXPECT_EQ(Job.MCS_Name[1], "b=c");
    EXPECT_EQ(Job.MCS_X[1], 5);
    EXPECT_TRUE(JobCountsFit(Job));
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
            Job.OCS_Y.back() = 1000 * width * std::sin(i);
            Job.OCS_Z.back() = 1000 * height;
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
    EXPECT_EQ(Job.nIdent, kCount);
    EXPECT_FALSE(Progress.Window.Loaded);
}

TEST_F(MatchingOnASphere, AStopLeavesAllNamesAndNoPair) {
    ::Run.StopRequested = kTrue;  // from an earlier run
    Headless.OnYield = [] {
        if (Headless.Yields == 2) UserClick(Progress.BtnCancel);
    };
    const auto names = Job.OCS_Name;
    PärchenSuchen({});
    EXPECT_EQ(Headless.Yields, 2u);
    EXPECT_EQ(::Run.StopRequested, kTrue);
    EXPECT_EQ(Job.nIdent, 0);
    EXPECT_EQ(Job.OCS_Name, names);
    EXPECT_EQ(::Run.ImportFailed, kFalse);
}

TEST_F(MatchingOnASphere, PointsThatReplaceThemMeanwhileAreLeftAlone) {
    Headless.OnYield = [] {
        Job = JobRecord{};
        Job.nIdent = 77;
        ++::Run.JobGeneration;
    };
    PärchenSuchen({});
    EXPECT_EQ(Headless.Yields, 1u);
    EXPECT_EQ(Job.nIdent, 77);
    EXPECT_EQ(::Run.ImportFailed, kTrue);
}

TEST_F(MatchingByCoordinate, APairingThatIsDoneAtOnceShowsNoWindow) {
    for (int i = 0; i < 2000; ++i) {
        Start("s" + std::to_string(i), i);
        Target("t" + std::to_string(i), i);
    }
    PärchenSuchen({});
    EXPECT_EQ(Headless.Yields, 0u);
    EXPECT_EQ(Job.nIdent, 2000);
}

}  // namespace
