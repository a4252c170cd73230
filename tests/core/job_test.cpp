// The job's records, and how counts and arrays are brought together again.
#include "core/job.h"

#include "core/controller.h"
#include "support/fixture.h"

using JobRecords = Program;

namespace {

// A job with that many points, the first `pairs` of them identical.
void Fill(int start, int target, int pairs) {
    Job = JobRecord{};
    const auto size = [](int count) { return static_cast<std::size_t>(count) + 1; };
    Job.MCS_Name.resize(size(start));
    Job.MCS_X.resize(size(start));
    Job.MCS_Y.resize(size(start));
    Job.MCS_Z.resize(size(start));
    Job.TMCS_Name.resize(size(start));
    Job.TMCS_X.resize(size(start));
    Job.TMCS_Y.resize(size(start));
    Job.TMCS_Z.resize(size(start));
    Job.OCS_Name.resize(size(target));
    Job.OCS_X.resize(size(target));
    Job.OCS_Y.resize(size(target));
    Job.OCS_Z.resize(size(target));
    Job.RVecX.resize(size(pairs));
    Job.RVecY.resize(size(pairs));
    Job.RVecZ.resize(size(pairs));
    Job.UseFlags.resize(size(3 * pairs), 1);
    for (int i = 1; i <= start; ++i) Job.MCS_Name[static_cast<std::size_t>(i)] = "P" + std::to_string(i);
    Job.nMCS = start;
    Job.nOCS = target;
    Job.nIdent = pairs;
    Job.nMCSOnly = start - pairs;
    Job.nOCSOnly = target - pairs;
    Run.JobDataValid = kTrue;
}

}  // namespace

TEST_F(JobRecords, ANewJobHasNoPointsAndAnEmptyElementZero) {
    EXPECT_TRUE(JobCountsFit(Job));
    EXPECT_EQ(UpperBound(Job.MCS_Name), 0);
    EXPECT_EQ(UpperBound(Job.UseFlags), 0);
    EXPECT_FALSE(Job.MCS_X[0].has_value());
    EXPECT_FALSE(Job.OCS_Y[0].has_value());
    EXPECT_FALSE(Job.TMCS_X[0].has_value());
    EXPECT_FALSE(Job.RVecY[0].has_value());
    EXPECT_EQ(Job.MCS_Z[0], 0);
    EXPECT_EQ(Job.DirectionMCStoOCS, kTrue);
    for (const std::string& text : Job.ParamText) EXPECT_EQ(text, "");
    EXPECT_EQ(Job.ParamText.size(), 18U);
    EXPECT_EQ(Job.SeedName.size(), 4U);
    EXPECT_EQ(Job.SavedView.size(), 51U);
}

TEST_F(JobRecords, OnlyMinusOneIsTrue) {
    for (const int value : {0, 1, 2, -2, 255, 32767, -32768}) EXPECT_FALSE(IsTrue(static_cast<Flag>(value)));
    EXPECT_TRUE(IsTrue(-1));
    EXPECT_EQ(ToFlag(true), -1);
    EXPECT_EQ(ToFlag(false), 0);
}

TEST_F(JobRecords, ParametersHaveTheirNumbers) {
    const double* const places[] = {nullptr,       &Job.TraX,    &Job.TraY,    &Job.TraZ,       &Job.RotX,
                                    &Job.RotY,     &Job.RotZ,    &Job.ScaleX,  &Job.ScaleY,     &Job.ScaleZ,
                                    &Job.ScaleXYZ, &Job.AngleXY, &Job.Azimuth, &Job.AngleZtoXY, &Job.RDist,
                                    &Job.Rvec_x,   &Job.Rvec_y,  &Job.Rvec_z};
    for (int i = 1; i <= 17; ++i) EXPECT_EQ(&ParameterValue(Job, i), places[i]) << i;
    EXPECT_DEATH(ParameterValue(Job, 0), "internal error");
    EXPECT_DEATH(ParameterValue(Job, 18), "internal error");
}

TEST_F(JobRecords, AnEmptyCoordinateCountsAsZero) {
    Fill(1, 1, 1);
    Job.MCS_Y[1] = 2;
    Job.MCS_Z[1] = 3;
    EXPECT_EQ(StartPoint(1)(1), 0);
    EXPECT_EQ(StartPoint(1)(2), 2);
    EXPECT_EQ(StartPoint(1)(3), 3);
    EXPECT_EQ(TargetPoint(1)(1), 0);
}

TEST_F(JobRecords, AJobWithoutPairsIsValid) {
    Fill(3, 2, 0);
    EXPECT_TRUE(JobCountsFit(Job));
    EXPECT_EQ(UpperBound(Job.UseFlags), 0);
}

TEST_F(JobRecords, CountsThatDoNotFitAreSeen) {
    const auto broken = [](const std::function<void()>& breaking) {
        Fill(4, 5, 3);
        EXPECT_TRUE(JobCountsFit(Job));
        breaking();
        return !JobCountsFit(Job);
    };
    EXPECT_TRUE(broken([] { Job.nMCS = 3; }));
    EXPECT_TRUE(broken([] { Job.nMCS = -1; }));
    EXPECT_TRUE(broken([] { Job.nOCS = 6; }));
    EXPECT_TRUE(broken([] { Job.nIdent = 5; }));
    EXPECT_TRUE(broken([] { Job.nIdent = -1; }));
    EXPECT_TRUE(broken([] { Job.nMCSOnly = 0; }));
    EXPECT_TRUE(broken([] { Job.nOCSOnly = 0; }));
    EXPECT_TRUE(broken([] { Job.MCS_Name.pop_back(); }));
    EXPECT_TRUE(broken([] { Job.OCS_Name.emplace_back(); }));
    EXPECT_TRUE(broken([] { Job.MCS_X.pop_back(); }));
    EXPECT_TRUE(broken([] { Job.OCS_Z.pop_back(); }));
    EXPECT_TRUE(broken([] { Job.TMCS_Name.pop_back(); }));
    EXPECT_TRUE(broken([] { Job.TMCS_Z.pop_back(); }));
    EXPECT_TRUE(broken([] { Job.RVecX.pop_back(); }));
    EXPECT_TRUE(broken([] { Job.UseFlags.pop_back(); }));
}

TEST_F(JobRecords, CoordinateArraysMayBeLongerThanTheNames) {
    Fill(4, 5, 3);
    for (int i = 0; i < 3; ++i) {
        Job.MCS_X.emplace_back();
        Job.OCS_Z.push_back(0);
    }
    EXPECT_TRUE(JobCountsFit(Job));
}

TEST_F(JobRecords, RepairLeavesAJobThatFits) {
    Fill(4, 5, 3);
    const auto generation = Run.JobGeneration;
    RepairJobCounts();
    EXPECT_EQ(Job.nIdent, 3);
    EXPECT_EQ(Run.JobDataValid, kTrue);
    EXPECT_EQ(Run.JobGeneration, generation);
}

TEST_F(JobRecords, RepairFollowsTheNamesAndDropsThePairs) {
    Fill(4, 5, 3);
    Job.MCS_Name.resize(9);
    Job.MCS_Z.resize(2);
    const auto generation = Run.JobGeneration;
    RepairJobCounts();
    EXPECT_TRUE(JobCountsFit(Job));
    EXPECT_EQ(Job.nMCS, 8);
    EXPECT_EQ(Job.nOCS, 5);
    EXPECT_EQ(Job.nIdent, 0);
    EXPECT_EQ(Job.nMCSOnly, 8);
    EXPECT_EQ(Job.nOCSOnly, 5);
    EXPECT_EQ(Job.MCS_Name[4], "P4");
    EXPECT_EQ(Run.JobDataValid, kFalse);
    EXPECT_NE(Run.JobGeneration, generation);
}

TEST_F(JobRecords, RepairMakesRoomForElementZero) {
    Fill(4, 5, 3);
    Job.MCS_Name.clear();
    Job.OCS_Name.clear();
    Job.OCS_X.clear();
    Job.UseFlags.clear();
    RepairJobCounts();
    EXPECT_TRUE(JobCountsFit(Job));
    EXPECT_EQ(Job.nMCS, 0);
    EXPECT_EQ(Job.nOCS, 0);
    EXPECT_EQ(UpperBound(Job.UseFlags), 0);
}

TEST_F(JobRecords, MatricesHaveRoomForIndexZero) {
    Matrix matrix(2, 3);
    ASSERT_EQ(matrix.Elements.size(), 12U);
    matrix(2, 3) = 7;
    matrix(0, 0) = 1;
    EXPECT_EQ(matrix.Row(2)[3], 7);
    EXPECT_EQ(matrix.Elements.front(), 1);
    EXPECT_EQ(matrix.Elements.back(), 7);
    EXPECT_EQ(UpperBound(std::vector<int>{}), -1);
}
