// The job's records and their counts.
#include "core/job.h"

#include "core/controller.h"
#include "support/fixture.h"

using namespace corvinade;

using JobRecords = Program;

namespace {

// A job with that many points, the first `pairs` of them identical.
void Fill(int start, int target, int pairs) {
    Job = JobRecord{};
    const auto size = [](int count) { return static_cast<std::size_t>(count) + 1; };
    for (int i = 1; i <= start; ++i) Job.Start.Add("P" + std::to_string(i), {}, {}, 0);
    Job.Target.Resize(target);
    Job.Transformed.Resize(start);
    Job.RVecX.resize(size(pairs));
    Job.RVecY.resize(size(pairs));
    Job.RVecZ.resize(size(pairs));
    Job.UseFlags.resize(size(3 * pairs), 1);
    Job.SetPairs(pairs);
    Run.JobDataValid = kTrue;
}

}  // namespace

TEST_F(JobRecords, ANewJobHasNoPointsAndAnEmptyElementZero) {
    EXPECT_TRUE(JobIsWhole(Job));
    EXPECT_EQ(UpperBound(Job.Start.Name), 0);
    EXPECT_EQ(UpperBound(Job.UseFlags), 0);
    EXPECT_FALSE(Job.Start.X[0].has_value());
    EXPECT_FALSE(Job.Target.Y[0].has_value());
    EXPECT_FALSE(Job.Transformed.X[0].has_value());
    EXPECT_FALSE(Job.RVecY[0].has_value());
    EXPECT_EQ(Job.Start.Z[0], 0);
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
    Job.Start.Y[1] = 2;
    Job.Start.Z[1] = 3;
    EXPECT_EQ(StartPoint(1)(1), 0);
    EXPECT_EQ(StartPoint(1)(2), 2);
    EXPECT_EQ(StartPoint(1)(3), 3);
    EXPECT_EQ(TargetPoint(1)(1), 0);
}

TEST_F(JobRecords, AJobWithoutPairsIsValid) {
    Fill(3, 2, 0);
    EXPECT_TRUE(JobIsWhole(Job));
    EXPECT_EQ(UpperBound(Job.UseFlags), 0);
}

TEST_F(JobRecords, AJobThatIsNotWholeIsSeen) {
    const auto broken = [](const std::function<void()>& breaking) {
        Fill(4, 5, 3);
        EXPECT_TRUE(JobIsWhole(Job));
        breaking();
        return !JobIsWhole(Job);
    };
    EXPECT_TRUE(broken([] { Job.Start.CountOnly(3); }));
    EXPECT_TRUE(broken([] { Job.Target.CountOnly(0); }));
    EXPECT_TRUE(broken([] { Job.Transformed.Resize(3); }));
    EXPECT_TRUE(broken([] { Job.RVecX.pop_back(); }));
    EXPECT_TRUE(broken([] { Job.UseFlags.pop_back(); }));
}

TEST_F(JobRecords, CoordinatesMayBeLongerThanTheNames) {
    Fill(4, 5, 3);
    Job.Start.SpareCoordinates(3);
    EXPECT_TRUE(JobIsWhole(Job));
}

TEST_F(JobRecords, ThePairsAreNeverMoreThanThePoints) {
    Fill(4, 5, 3);
    EXPECT_EQ(Job.Pairs(), 3);
    EXPECT_EQ(Job.StartOnly(), 1);
    EXPECT_EQ(Job.TargetOnly(), 2);
    EXPECT_DEATH(Job.SetPairs(5), "internal error");
    EXPECT_DEATH(Job.SetPairs(-1), "internal error");
    Job.Target.Resize(2);
    EXPECT_EQ(Job.Pairs(), 2);
    EXPECT_EQ(Job.StartOnly(), 2);
    EXPECT_EQ(Job.TargetOnly(), 0);
    Job.Start.CountOnly(0);
    EXPECT_EQ(Job.Pairs(), 0);
    EXPECT_EQ(Job.TargetOnly(), 2);
}

TEST_F(JobRecords, CountsAreToldByNumber) {
    Fill(4, 5, 3);
    EXPECT_EQ(CountOf(Job, JobCount::Pairs), 3);
    EXPECT_EQ(CountOf(Job, JobCount::Start), 4);
    EXPECT_EQ(CountOf(Job, JobCount::Target), 5);
    EXPECT_EQ(CountOf(Job, JobCount::StartOnly), 1);
    EXPECT_EQ(CountOf(Job, JobCount::TargetOnly), 2);
}

TEST_F(JobRecords, APairUsesItsOwnThreeFlags) {
    Fill(3, 3, 2);
    Job.UseFlags = {0, 1, 0, 1, 0, 1, 0};
    EXPECT_TRUE(Used(1, 1));
    EXPECT_FALSE(Used(1, 2));
    EXPECT_TRUE(Used(1, 3));
    EXPECT_FALSE(Used(2, 1));
    EXPECT_TRUE(Used(2, 2));
    EXPECT_FALSE(Used(2, 3));
    EXPECT_TRUE(Used(3, 1)) << "a pair that has no flags yet takes part";
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
