// The job: one set of global records that the importer fills, the calculation writes its result into,
// the job file stores and tables and pictures read. Lengths are millimetres, angles radians, always.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "core/arrays.h"
#include "core/point_set.h"
#include "core/rooms.h"
#include "core/screen_record.h"
#include "fit/parameters.h"

namespace corvinade::core {

// The text of `ParamText` for a parameter that the adjustment determines, and for one that keeps its
// neutral value. Any other text is the value that the parameter is held at, as typed.
inline constexpr const char* kFloat = "float";
inline constexpr const char* kNotUsed = "not used";

struct JobRecord {
    // Compiled once, and not by each of the many sources that see the record.
    JobRecord();
    ~JobRecord();
    JobRecord(const JobRecord&);
    JobRecord(JobRecord&&) noexcept;
    JobRecord& operator=(const JobRecord&);
    JobRecord& operator=(JobRecord&&) noexcept;

    // The points. After matching, points 1 to Pairs() of Start and Target are the pairs, with equal names;
    // nothing downstream searches by name.
    PointSet Start, Target;
    PointSet Transformed;  // the start points after the transformation
    // Pairs() entries, for the display of the R vectors: the place at R_Dist from the target that a fit to
    // distances wants the transformed point at. X and Y are empty where there is none.
    std::vector<TaggedValue> RVecX{{}}, RVecY{{}};
    std::vector<double> RVecZ{0};
    // Elements that the file of the job has of RVecX, RVecY and RVecZ, where these are fewer than the pairs;
    // -1 where it has them all. The job is written with as many again, as long as nothing stands behind them.
    std::array<std::int32_t, 3> RVecInFile{-1, -1, -1};
    std::vector<std::int16_t> UseFlags{0};  // 3 a pair, X Y Z: 1 takes part in the fit, 0 does not

    int Pairs() const { return std::min({pairs_, Start.Count(), Target.Count()}); }
    void SetPairs(int pairs);  // require: both sets have so many points
    int StartOnly() const { return Start.Count() - Pairs(); }
    int TargetOnly() const { return Target.Count() - Pairs(); }

    // Parameter fields and results.
    std::array<std::string, 18> ParamText{};
    double TraX = 0, TraY = 0, TraZ = 0;
    double RotX = 0, RotY = 0, RotZ = 0;
    double ScaleX = 1, ScaleY = 1, ScaleZ = 1, ScaleXYZ = 1;
    double AngleXY = 0, Azimuth = 0, AngleZtoXY = 0;
    double RDist = 0;
    double Rvec_x = 0, Rvec_y = 0, Rvec_z = 0;
    double RotXCopy = 0, RotYCopy = 0, RotZCopy = 0;  // what TransformPoint builds its matrix from

    // Settings that travel with the job.
    Flag DirectionMCStoOCS = kTrue;
    Flag AutoRecalc = kFalse;
    std::int16_t NormType = 0;  // number of the norm; 0 is read as that of least squares
    std::string NameMCS, NameOCS;
    std::string PathMCS, PathOCS;
    std::string LengthUnitName, AngleUnitName;
    std::int16_t LengthDigits = 0, AngleDigits = 0;
    std::array<std::string, 4> SeedName{};
    std::array<std::int16_t, 4> SeedIndex{};
    Flag ViewAllOCS = kFalse, ViewAllMCS = kFalse, ViewAllonlyOCS = kFalse, ViewAllonlyMCS = kFalse;
    Flag IsParaboloid = kFalse;
    Matrix ParaboloidShape;  // (0 to n, 0 to 2)
    Flag IsKuka = kFalse, IsQuaternion = kFalse;
    Matrix RobotABC;  // (0 to n, 0 to 3): columns 1 Rz, 2 Ry', 3 Rx'', rad
    std::array<ScreenRecord, 51> SavedView{};
    std::int16_t nSavedViews = 0;  // 0 to 50

    // What the fields of the job file have no place for; it travels in a block behind them.
    Flag Unconverged = kFalse;  // the result is of a calculation that did not converge
    // By parameter number: 1 where points, poses or shape of the result do not determine the parameter, so
    // that its value is arbitrary. Angles that are open by gimbal lock alone are not among them, nor an
    // azimuth without effect: what the result does to points is determined then.
    std::array<std::int16_t, kParameterEnd> LeftOpen{};
    Flag Collapsed = kFalse;  // a scale of the result has gone to 0, or to what noise makes of 0
    // Members of the block that this version does not know, each its name and its value as JSON text; they
    // are written again as they stand.
    std::vector<std::pair<std::string, std::string>> OtherMembers;

private:
    int pairs_ = 0;
};
inline JobRecord Job;

// New points: what the block said was of those before.
inline void ForgetBlock() {
    Job.Unconverged = Job.Collapsed = kFalse;
    Job.LeftOpen.fill(0);
    Job.OtherMembers.clear();
}

// The counts of a job's points, as they are told.
enum class JobCount : std::uint8_t { Pairs, Start, Target, StartOnly, TargetOnly };
std::int32_t CountOf(const JobRecord& job, JobCount count);

// True when every name of both sets is a point, and all that goes with points and pairs reaches them. It is
// not so in a job that was closed, or read from a file that counts fewer points than it has.
bool JobIsWhole(const JobRecord& job);

// The result value of a parameter 1 to 17 of the job, by number.
double& ParameterValue(JobRecord& job, int parameter);

// All result values of the job, and the way back.
Parameters ParametersOf(const JobRecord& job);
void PutParameters(const Parameters& parameters, JobRecord& job);

// Does the coordinate with this index of the use flags take part in the fit? One that has no flag yet does.
inline bool CoordinateInUse(std::size_t index) {
    return index >= Job.UseFlags.size() || Job.UseFlags[index] == 1;
}

// The same by pair and axis 1 to 3.
inline bool Used(int pair, int axis) {
    return CoordinateInUse(3 * static_cast<std::size_t>(pair - 1) + static_cast<std::size_t>(axis));
}

// Points of the job by number; an empty tagged value counts as 0.
inline Vec3 StartPoint(int i) {
    return Job.Start.Point(i);
}
inline Vec3 TargetPoint(int i) {
    return Job.Target.Point(i);
}
inline Vec3 TransformedPoint(int i) {
    return Job.Transformed.Point(i);
}

}  // namespace corvinade::core
