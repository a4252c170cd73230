// Where the outer loop ends: thrown off by its acceleration, and with as many points as unknowns.
#include <algorithm>

#include "core/notes.h"
#include "paraboloid/shape_job.h"
#include "support/memory_use.h"

using namespace corvinade;

using OuterLoopEnds = ShapeJob;

TEST_F(OuterLoopEnds, HeldAnglesDoNotLetTheAccelerationThrowThePassesOff) {
    for (int set = 0; set < (UnderSanitizers() ? 1 : 4); ++set) {
        SCOPED_TRACE(set);
        Job = JobRecord{};
        BeginFit();
        FloatParameters({kTraX, kTraY, kTraZ});
        for (const int k : {kRotX, kRotY, kRotZ}) Job.ParamText[static_cast<std::size_t>(k)] = "0";
        Job.NormType = 2;
        TakeShape(1501);
        const Displacement beside = {.Tx = 0.8 + set, .Ty = -1.6, .Tz = -1.3};
        AddPoints(40, beside, 0.05);
        ParaboloidNearestTargets();
        SelectionFromJob();
        ChooseSeeds();
        CalculateParaboloid();
        EXPECT_TRUE(Calculation.Converged);
        EXPECT_NEAR(Job.TraX, beside.Tx, 0.2);
        EXPECT_NEAR(Job.TraY, beside.Ty, 0.2);
        EXPECT_NEAR(Job.TraZ, beside.Tz, 0.2);
        EXPECT_LT(Calculation.s0, 0.1);
    }
}

TEST_F(OuterLoopEnds, AsManyPointsAsUnknownsAreTold) {
    for (const int points : {5, 6}) {
        SCOPED_TRACE(points);
        Job = JobRecord{};
        Notes.List.clear();
        BeginFit();
        FloatParameters({kTraX, kTraY, kTraZ, kRotX, kRotY});
        Job.ParamText[kRotZ] = "0";
        Job.NormType = 2;
        TakeShape(1501);
        AddPoints(points, {.Tx = 1, .Ty = 2, .Tz = 3});
        ParaboloidNearestTargets();
        SelectionFromJob();
        ChooseSeeds();
        CalculateParaboloid();
        const bool told = std::any_of(Notes.List.begin(), Notes.List.end(),
                                      [](const Note& note) { return note.Code == NoteCode::NoRedundancy; });
        EXPECT_EQ(told, points == 5);
    }
}

class EndsOfAFitToAShape : public OuterLoopEnds {
protected:
    EndsOfAFitToAShape() { Settings.MonteCarloRuns = 3; }
    ~EndsOfAFitToAShape() override {
        Headless.OnYield = nullptr;
        MonteCarlo.MonteCarloOn = kFalse;
    }
    void Begin(int points) {
        Job = JobRecord{};
        Notes.List.clear();
        BeginFit();
        FloatParameters({kTraX, kTraY, kTraZ, kRotX, kRotY});
        Job.ParamText[kRotZ] = "0";
        Job.NormType = 2;
        TakeShape(301);
        AddPoints(points, {.Tx = 1, .Ty = 2, .Tz = 3});
        ParaboloidNearestTargets();
        SelectionFromJob();
        ChooseSeeds();
    }
    static bool IsNoted(NoteCode code) {
        return std::any_of(Notes.List.begin(), Notes.List.end(),
                           [code](const Note& note) { return note.Code == code; });
    }
};

TEST_F(EndsOfAFitToAShape, AJobThatReplacesTheFirstAtAnyMomentIsLeftAlone) {
    for (const bool runs : {false, true}) {
        MonteCarlo.MonteCarloOn = ToFlag(runs);
        Begin(12);
        const std::uint64_t before = Headless.Yields;
        CalculateParaboloid();
        const auto yields = static_cast<int>(Headless.Yields - before);
        ASSERT_GT(yields, 8);
        for (const int moment : {1, 2, yields / 4, yields / 2, yields * 3 / 4, yields - 1}) {
            SCOPED_TRACE(std::to_string(moment) + " of " + std::to_string(yields));
            Begin(12);
            int passed = 0;
            Headless.OnYield = [&passed, moment] {
                if (++passed != moment) return;
                Job = JobRecord{};
                Job.TraZ = 4711;
                ++::Run.JobGeneration;
            };
            CalculateParaboloid();
            Headless.OnYield = nullptr;
            ASSERT_GE(passed, moment);
            EXPECT_EQ(Job.TraZ, 4711);
            EXPECT_EQ(Job.Pairs(), 0);
            EXPECT_FALSE(IsLoaded("FormStopParaTrafo"));
        }
    }
}

TEST_F(EndsOfAFitToAShape, APassOfAJobThatIsReplacedOrHasTooLittleIsNone) {
    Begin(12);
    BeginOuterLoop();
    int passed = 0;
    Headless.OnYield = [&passed] {
        if (++passed == 5) ++::Run.JobGeneration;
    };
    EXPECT_FALSE(CalcParaboloid());
    Headless.OnYield = nullptr;
    Begin(2);
    for (std::size_t i = 1; i <= 5; ++i) Job.UseFlags[i] = 0;
    BeginOuterLoop();
    EXPECT_FALSE(CalcParaboloid());
    EXPECT_TRUE(Calculation.Refused);
}

// 3 parameters: with 3 points there is no redundancy, however many of their coordinates are used.
TEST_F(EndsOfAFitToAShape, APointCountsWhereAnyOfItsCoordinatesIsUsed) {
    for (const int points : {3, 4}) {
        Begin(points + 1);
        for (const int k : {kRotX, kRotY}) Job.ParamText[static_cast<std::size_t>(k)] = "0";
        // Of the first point y alone, of the second z alone, nothing of the last one.
        for (const std::size_t off : {1, 3, 4, 5}) Job.UseFlags[off] = 0;
        for (int axis = 1; axis <= 3; ++axis) Job.UseFlags[static_cast<std::size_t>(3 * points + axis)] = 0;
        SelectionFromJob();
        CalculateParaboloid();
        EXPECT_EQ(IsNoted(NoteCode::NoRedundancy), points == 3) << points;
    }
}
