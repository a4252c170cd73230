// The search for a transformation by distances, on the job.
#include "import/auto_find.h"

#include <cmath>
#include <random>

#include "cli/headless.h"
#include "core/form_progress_bar.h"
#include "core/job.h"
#include "core/run.h"
#include "core/settings.h"
#include "engine/transform.h"
#include "import/matching.h"
#include "support/fixture.h"

using namespace corvinade;

namespace {

constexpr const char* kUnsolved = "Could not solve the auto find problem, maybe try changing ETTA Value";

class AutoFind : public Program {
protected:
    AutoFind() {
        ::Run.Etta = 0.05F;
        Settings.RawScale = 2;
    }
    // A start set measured with a little noise, and its image under a known motion as target set, in
    // reverse order. Names say nothing.
    void FillMoved(int count, double noise) {
        std::mt19937 random(23);
        std::uniform_real_distribution<double> place(-1000, 1000), error(-noise, noise);
        Mat3 rotation;
        RotMatrixXYZ(0.3, -0.7, 1.9, rotation);
        std::vector<Vec3> target;
        for (int i = 1; i <= count; ++i) {
            const Vec3 p(place(random), place(random), place(random));
            Vec3 q;
            for (int row = 1; row <= 3; ++row)
                q(row) = 100.0 * row + rotation(row, 1) * p(1) + rotation(row, 2) * p(2) +
                         rotation(row, 3) * p(3) + error(random);
            AddStart("MCS_" + std::to_string(i), p);
            target.push_back(q);
        }
        for (int i = count; i >= 1; --i)
            AddTarget("OCS_" + std::to_string(i), target[static_cast<std::size_t>(i - 1)]);
        GetInfoFromData();
        IdentischePkte_Neu();
    }
    static void AddStart(const std::string& name, const Vec3& p) { Job.Start.Add(name, p(1), p(2), p(3)); }
    static void AddTarget(const std::string& name, const Vec3& p) { Job.Target.Add(name, p(1), p(2), p(3)); }
};

TEST_F(AutoFind, PointsOfAMovedSetFindTheirPartners) {
    FillMoved(20, 0.001);
    AutoFindPts({});
    EXPECT_TRUE(Messages().empty());
    EXPECT_EQ(Job.Pairs(), 20);
    for (std::size_t i = 1; i <= 20; ++i) {
        const std::string number = std::to_string(i);
        EXPECT_EQ(Job.Start.Name[i], "MCS_" + number + "=OCS_" + number);
    }
    EXPECT_NEAR(Job.TraX, 100, 1);
    EXPECT_EQ(Job.ScaleX, 1);
    EXPECT_EQ(Settings.RawScale, 2);
    EXPECT_EQ(Job.SeedIndex[3], 3);
    EXPECT_EQ(::Run.WaitPointers, 0);
    EXPECT_FALSE(Progress.Window.Loaded);
    MCS_OCS_aufbereiten();
    GetInfoFromData();
    IdentischePkte_Neu();
    EXPECT_EQ(Job.Pairs(), 20);
    EXPECT_TRUE(JobIsWhole(Job));
}

TEST_F(AutoFind, PointsStayInTheirPlacesAndCoordinatesAreThreeLonger) {
    FillMoved(10, 0);
    const JobRecord before = Job;
    AutoFindPts({});
    EXPECT_EQ(Job.Start.Name.size(), 11u);
    ASSERT_EQ(Job.Start.X.size(), 14u);
    ASSERT_EQ(Job.Target.Z.size(), 14u);
    EXPECT_EQ(Job.Start.X[0], std::nullopt);
    for (std::size_t i = 0; i <= 10; ++i) {
        EXPECT_EQ(Job.Start.X[i], before.Start.X[i]);
        EXPECT_EQ(Job.Start.Z[i], before.Start.Z[i]);
        EXPECT_EQ(Job.Target.Y[i], before.Target.Y[i]);
    }
}

TEST_F(AutoFind, EqualDistancesCannotBeSolved) {
    for (int x = 0; x < 4; ++x)
        for (int y = 0; y < 4; ++y) {
            AddStart("MCS_" + std::to_string(4 * x + y), Vec3(100 * x, 100 * y, 0));
            AddTarget("OCS_" + std::to_string(4 * x + y), Vec3(100 * x, 100 * y, 0));
        }
    GetInfoFromData();
    AutoFindPts({});
    EXPECT_EQ(LastMessage(), kUnsolved);
    EXPECT_EQ(Job.Pairs(), 0);
    EXPECT_EQ(Job.Start.X.size(), 17u);
    MCS_OCS_aufbereiten();
    GetInfoFromData();
    EXPECT_EQ(Job.Pairs(), 0);
    EXPECT_EQ(::Run.ImportFailed, kFalse);
}

TEST_F(AutoFind, TwoOrNoPointsCannotBeSolved) {
    for (int count : {0, 1, 2}) {
        Job = JobRecord{};
        FillMoved(count, 0);
        Headless.Dialogs.clear();
        AutoFindPts({});
        EXPECT_EQ(LastMessage(), kUnsolved) << count;
    }
}

TEST_F(AutoFind, ThreePointsAreEnough) {
    FillMoved(3, 0);
    AutoFindPts({});
    EXPECT_TRUE(Messages().empty());
    EXPECT_EQ(Job.Pairs(), 3);
}

TEST_F(AutoFind, OnlyTheFirstTargetPointsAreSearchedWhenAsked) {
    FillMoved(20, 0.001);
    MatchingOptions options;
    options.CheckUseOnlyFirst = true;
    options.TextMaxOCS = 8.9;  // 8: the last eight start points
    AutoFindPts(options);
    EXPECT_TRUE(Messages().empty());
    EXPECT_EQ(Job.Pairs(), 20);
    for (const double none : {0.0, 1.0, -5.0}) {
        Headless.Dialogs.clear();
        options.TextMaxOCS = none;
        AutoFindPts(options);
        EXPECT_EQ(LastMessage(), kUnsolved) << none;
    }
}

TEST_F(AutoFind, AShortStartDistanceMatchesTheEmptyRestOfACutTable) {
    // One target row of zero is left: 3 target points, 2 of them used, 3 rows in all. Every start distance
    // below Etta matches it.
    ::Run.Etta = 1;
    for (int i = 0; i < 4; ++i) AddStart("MCS_" + std::to_string(i), Vec3(0.01 * i * i, 0, 0));
    AddTarget("OCS_1", Vec3(0, 0, 0));
    AddTarget("OCS_2", Vec3(50, 0, 0));
    GetInfoFromData();
    MatchingOptions options;
    options.CheckUseOnlyFirst = true;
    options.TextMaxOCS = 1;  // no pair goes in, one row of zero stays
    AutoFindPts(options);
    EXPECT_TRUE(Messages().empty());
    // The points 0 and 0 are the origin, so the transformation is some motion and nothing fails.
    EXPECT_TRUE(std::isfinite(Job.TraX));
}

TEST_F(AutoFind, ARobotFileNumbersTheStartNames) {
    FillMoved(5, 0);
    ::Run.RobotFileHasId = kTrue;
    AutoFindPts({});
    EXPECT_EQ(Job.Start.Name[2], " 2_MCS_2=OCS_2");
}

TEST_F(AutoFind, StopEndsTheSearch) {
    FillMoved(20, 0.001);
    ::Run.StopRequested = kTrue;  // from an earlier run; cleared at the start
    Headless.OnYield = [] {
        EXPECT_EQ(Progress.Window.Caption, "AutoFind Indentically Points - Progress");
        EXPECT_GE(Progress.ProgressBar1.Value, 2);
        if (Headless.Yields == 2) UserClick(Progress.BtnCancel);
    };
    AutoFindPts({});
    EXPECT_EQ(Headless.Yields, 2u);
    EXPECT_EQ(LastMessage(), kUnsolved);
    EXPECT_EQ(Job.Pairs(), 0);
}

TEST_F(AutoFind, StopAfterThreeCandidatesGivesTheTransformationWithoutPairs) {
    FillMoved(20, 0.001);
    Headless.OnYield = [] {
        if (Headless.Yields == 4) ::Run.StopRequested = kTrue;
    };
    AutoFindPts({});
    EXPECT_TRUE(Messages().empty());
    EXPECT_EQ(Job.Pairs(), 0);
    EXPECT_EQ(Job.Start.Name[1], "MCS_1");
    EXPECT_NE(Job.TraX, 0);
}

TEST_F(AutoFind, AJobThatChangesUnderTheSearchIsLeftAlone) {
    FillMoved(20, 0.001);
    Headless.OnYield = [] {
        if (Headless.Yields != 3) return;
        Job = JobRecord{};
        ++::Run.JobGeneration;
    };
    AutoFindPts({});
    EXPECT_TRUE(Messages().empty());
    EXPECT_EQ(Headless.Yields, 3u);
    EXPECT_EQ(Job.Start.Count(), 0);
    EXPECT_EQ(Job.Start.X.size(), 1u);
    EXPECT_FALSE(Progress.Window.Loaded);
}

TEST_F(AutoFind, TablesBeyondTheMemoryAreRefusedWithTheNumberOfPoints) {
    FillMoved(4, 0);
    for (int i = 0; i < 20000; ++i) AddStart("start " + std::to_string(i), Vec3(i, 0, 0));
    AutoFindPts({});
    EXPECT_NE(LastMessage().find("20004 points of the MCS File"), std::string::npos);
    EXPECT_NE(LastMessage().find("use 16384 points at most"), std::string::npos);
    EXPECT_EQ(Job.Pairs(), 0);
    Job = JobRecord{};
    FillMoved(4, 0);
    for (int i = 0; i < 10000; ++i) AddTarget("target " + std::to_string(i), Vec3(i, 0, 0));
    AutoFindPts({});
    EXPECT_NE(LastMessage().find("10004 points of the OCS File"), std::string::npos);
    Headless.Dialogs.clear();
    MatchingOptions options;  // the first points alone are few enough
    options.CheckUseOnlyFirst = true;
    options.TextMaxOCS = 4;
    AutoFindPts(options);
    EXPECT_TRUE(Messages().empty());
    EXPECT_EQ(Job.Pairs(), 4);
}

}  // namespace
