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
