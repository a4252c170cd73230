// Job files put together by hand.
#include "core/job_bytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>

using namespace corvinade;

HandBytes& HandBytes::Whole(std::uint64_t value, int bytes) {
    for (int i = 0; i < bytes; ++i) {
        Text += static_cast<char>(value & 0xFFU);
        value >>= 8U;
    }
    return *this;
}
HandBytes& HandBytes::F32(float value) {
    return Whole(std::bit_cast<std::uint32_t>(value), 4);
}
HandBytes& HandBytes::F64(double value) {
    return Whole(std::bit_cast<std::uint64_t>(value), 8);
}
HandBytes& HandBytes::Tagged(const TaggedValue& value) {
    return value ? I16(5).F64(*value) : I16(0);
}
HandBytes& HandBytes::Shorts(const std::vector<std::string>& texts) {
    I32(static_cast<int>(texts.size()) - 1);
    for (const std::string& text : texts) Short(text);
    return *this;
}
HandBytes& HandBytes::Taggeds(const std::vector<TaggedValue>& values) {
    I32(static_cast<int>(values.size()) - 1);
    for (const auto& value : values) Tagged(value);
    return *this;
}
HandBytes& HandBytes::F64s(const std::vector<double>& values) {
    I32(static_cast<int>(values.size()) - 1);
    for (const double value : values) F64(value);
    return *this;
}

void HandPoints::Add(const std::string& name, double x, double y, double z) {
    Name.push_back(name);
    X.emplace_back(x);
    Y.emplace_back(y);
    Z.push_back(z);
}

// --- Examples ---------------------------------------------------------------------------------------------

HandJob HandExample() {
    HandJob job;
    job.MCS.Add("A1", 1.5, -2.25, 3);
    job.MCS.Add("B2", 100, 200, 300);
    job.MCS.Add("a long name of a point", -1e-9, 1e9, 0.1);
    job.MCS.Add("only start", 7, 8, 9);
    job.OCS.Add("A1", 11.5, 12.25, 13);
    job.OCS.Add("B2", 110, 210, 310);
    job.OCS.Add("a long name of a point", 21, 22, 23);
    job.OCS.Add("only target", 31, 32, 33);
    job.OCS.Add("T5", 41, 42, 43);
    job.TMCS = job.MCS;
    for (std::size_t i = 1; i < job.TMCS.Z.size(); ++i) job.TMCS.Z[i] += 0.5;
    job.nIdent = 3;
    job.nMCS = 4;
    job.nOCS = 5;
    job.UseFlags = {0, 1, 0, 1, 1, 1, 1, 0, 0, 1};
    for (std::size_t i = 0; i < job.ParamText.size(); ++i)
        job.ParamText[i] = i % 3 == 0 ? "float" : "p" + std::to_string(i);
    job.ParamText[0] = "";
    job.Direction = false;
    job.AutoRecalc = true;
    for (std::size_t i = 0; i < job.Results.size(); ++i) job.Results[i] = 0.25 + static_cast<double>(i);
    job.RDist = 77.5;
    job.LengthUnit = "inch";
    job.AngleUnit = "mrad";
    job.LengthDigits = 5;
    job.AngleDigits = 2;
    job.NormType = 3;
    job.SeedName = {"", "B2", "A1", "s3"};
    job.SeedIndex = {0, 2, 1, 3};
    job.NameMCS = "Tracker";
    job.NameOCS = "Cell";
    job.PathMCS = "/data/start.txt";
    job.PathOCS = "/data/target.txt";
    job.ViewAll = {true, false, false, true};
    return job;
}

HandJob HandRobotExample() {
    HandJob job = HandExample();
    job.IsKuka = true;
    job.Robot = {{0, 0, 0, 0}, {0, 0.1, 0.2, 0.3}, {0, 1.1, 1.2, 1.3}};
    job.RVecX = {{}, 5.5, {}, 6.5};
    job.RVecY = {{}, -5.5, 0, {}};
    job.RVecZ = {0, 1, 2, 3};
    job.ViewNames = {"Front", "Side"};
    job.ViewSeed = 100;
    return job;
}

HandJob HandParaboloidExample() {
    HandJob job = HandExample();
    job.Shape = {{{0, 0, 0}, {0, 10, 20}, {0, 30, 40}}};
    return job;
}

// --- Groups of fields that no version has changed ---------------------------------------------------------

namespace {

void PutPoints(HandBytes& out, const HandPoints& points) {
    out.Shorts(points.Name).Taggeds(points.X).Taggeds(points.Y).F64s(points.Z);
}

// Fields 2 to 15.
void PutPointSets(HandBytes& out, const HandJob& job) {
    PutPoints(out, job.MCS);
    PutPoints(out, job.OCS);
    PutPoints(out, job.TMCS);
    out.I32(job.nIdent).I32(job.nMCS).I32(job.nOCS);
    out.I32(static_cast<int>(job.UseFlags.size()) - 1);
    for (const int flag : job.UseFlags) out.I16(flag);
}

void PutParamText(HandBytes& out, const HandJob& job, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) out.Short(job.ParamText[i]);
}

// Fields 17 to 19.
void PutResults(HandBytes& out, const HandJob& job) {
    out.Flag(job.Direction).Flag(job.AutoRecalc);
    for (const double value : job.Results) out.F64(value);
}

// Fields 21 to 25.
void PutUnitsToPaths(HandBytes& out, const HandJob& job) {
    out.Long(job.LengthUnit).Long(job.AngleUnit);
    out.I16(job.LengthDigits).I16(job.AngleDigits).I16(job.NormType);
    for (const std::string& name : job.SeedName) out.Short(name);
    for (const int index : job.SeedIndex) out.I16(index);
    out.Long(job.NameMCS).Long(job.NameOCS).Long(job.PathMCS).Long(job.PathOCS);
}

void PutViewFlags(HandBytes& out, const HandJob& job) {
    for (const bool flag : job.ViewAll) out.Flag(flag);
}

// Fields 27 and 28.
void PutParaboloid(HandBytes& out, const HandJob& job) {
    out.Flag(job.Shape.has_value());
    if (!job.Shape) return;
    out.I32(static_cast<int>(job.Shape->size()) - 1);
    for (std::size_t column = 0; column < 3; ++column)
        for (const auto& row : *job.Shape) out.F64(row[column]);
}

// Field 29.
void PutViews(HandBytes& out, const HandJob& job) {
    out.I16(static_cast<int>(job.ViewNames.size()));
    if (job.ViewNames.empty()) return;
    out.Shorts(job.ViewNames);
    for (int i = 0; i < 51; ++i) PutHandView(out, job.ViewSeed + 100 * i);
}

// Fields 30 and 31.
void PutRobot(HandBytes& out, const HandJob& job) {
    out.Flag(job.IsKuka).Flag(job.IsQuaternion);
    if (!job.IsKuka && !job.IsQuaternion) return;
    out.I32(static_cast<int>(job.Robot.size()) - 1);
    for (std::size_t column = 0; column < 4; ++column)
        for (const auto& row : job.Robot) out.F64(row[column]);
    out.Taggeds(job.RVecX).Taggeds(job.RVecY).F64s(job.RVecZ);
}

}  // namespace

// --- Versions ---------------------------------------------------------------------------------------------

std::string HandFile(const HandJob& job, const std::string& version) {
    HandBytes out;
    out.Long(version);
    PutPointSets(out, job);
    PutParamText(out, job, 18);
    PutResults(out, job);
    out.F64(job.RDist);
    PutUnitsToPaths(out, job);
    PutViewFlags(out, job);
    PutParaboloid(out, job);
    PutViews(out, job);
    PutRobot(out, job);
    return out.Text;
}

std::string HandFile15(const HandJob& job, const std::string& version) {
    HandBytes out;
    out.Long(version);
    PutPointSets(out, job);
    PutParamText(out, job, 15);
    PutResults(out, job);
    out.F64(job.RDist);
    PutUnitsToPaths(out, job);
    PutViewFlags(out, job);
    PutParaboloid(out, job);
    PutViews(out, job);
    PutRobot(out, job);
    return out.Text;
}

std::string HandFile46(const HandJob& job, const std::string& version) {
    HandBytes out;
    out.Long(version);
    PutPointSets(out, job);
    PutParamText(out, job, 15);
    PutResults(out, job);
    out.F64(job.RDist);
    PutUnitsToPaths(out, job);
    PutViewFlags(out, job);
    PutParaboloid(out, job);
    PutViews(out, job);
    return out.Text;
}

std::string HandFile72(const HandJob& job, const std::string& version) {
    HandBytes out;
    out.Long(version);
    PutPointSets(out, job);
    PutParamText(out, job, 18);
    PutResults(out, job);
    out.F64(job.RDist);
    PutUnitsToPaths(out, job);
    PutViewFlags(out, job);
    PutParaboloid(out, job);
    PutViews(out, job);
    return out.Text;
}

std::string HandFile71(const HandJob& job, const std::string& version) {
    HandBytes out;
    out.Long(version);
    PutPointSets(out, job);
    PutParamText(out, job, 18);
    PutResults(out, job);
    out.F64(job.RDist);
    PutUnitsToPaths(out, job);
    PutViewFlags(out, job);
    return out.Text;
}

std::string HandFile68(const HandJob& job, const std::string& version) {
    HandBytes out;
    PutPointSets(out, job);
    PutParamText(out, job, 14);
    PutResults(out, job);
    PutUnitsToPaths(out, job);
    out.Long(version);
    PutViewFlags(out, job);
    return out.Text;
}

std::string HandFile40(const HandJob& job, const std::string& version) {
    HandBytes out;
    PutPointSets(out, job);
    PutParamText(out, job, 14);
    PutResults(out, job);
    PutUnitsToPaths(out, job);
    out.Long(version);
    return out.Text;
}

// --- Comparison -------------------------------------------------------------------------------------------

namespace {

int FlagOf(bool value) {
    return value ? -1 : 0;
}

}  // namespace

void ExpectBytes(const std::string& actual, const std::string& expected) {
    const auto [at, other] = std::mismatch(actual.begin(), actual.end(), expected.begin(), expected.end());
    if (at == actual.end() && other == expected.end()) return;
    ADD_FAILURE() << actual.size() << " bytes against " << expected.size() << ", different from byte "
                  << at - actual.begin() << " on";
}

void ExpectJob(const JobRecord& job, const HandJob& hand) {
    EXPECT_EQ(job.Start.Name, hand.MCS.Name);
    EXPECT_EQ(job.Start.X, hand.MCS.X);
    EXPECT_EQ(job.Start.Y, hand.MCS.Y);
    EXPECT_EQ(job.Start.Z, hand.MCS.Z);
    EXPECT_EQ(job.Target.Name, hand.OCS.Name);
    EXPECT_EQ(job.Target.X, hand.OCS.X);
    EXPECT_EQ(job.Target.Y, hand.OCS.Y);
    EXPECT_EQ(job.Target.Z, hand.OCS.Z);
    EXPECT_EQ(job.Transformed.Name, hand.TMCS.Name);
    EXPECT_EQ(job.Transformed.X, hand.TMCS.X);
    EXPECT_EQ(job.Transformed.Y, hand.TMCS.Y);
    EXPECT_EQ(job.Transformed.Z, hand.TMCS.Z);
    EXPECT_EQ(job.Pairs(), hand.nIdent);
    EXPECT_EQ(job.Start.Count(), hand.nMCS);
    EXPECT_EQ(job.Target.Count(), hand.nOCS);
    EXPECT_EQ(job.StartOnly(), hand.nMCS - hand.nIdent);
    EXPECT_EQ(job.TargetOnly(), hand.nOCS - hand.nIdent);
    EXPECT_EQ(std::vector<int>(job.UseFlags.begin(), job.UseFlags.end()), hand.UseFlags);
    EXPECT_EQ(job.ParamText, hand.ParamText);
    EXPECT_EQ(job.DirectionMCStoOCS, FlagOf(hand.Direction));
    EXPECT_EQ(job.AutoRecalc, 0);  // whatever the file says
    const std::array<double, 13> results = {job.TraX,    job.TraY,    job.TraZ,      job.RotX,   job.RotY,
                                            job.RotZ,    job.ScaleX,  job.ScaleY,    job.ScaleZ, job.ScaleXYZ,
                                            job.AngleXY, job.Azimuth, job.AngleZtoXY};
    EXPECT_EQ(results, hand.Results);
    EXPECT_EQ(job.RotXCopy, hand.Results[3]);
    EXPECT_EQ(job.RotYCopy, hand.Results[4]);
    EXPECT_EQ(job.RotZCopy, hand.Results[5]);
    EXPECT_EQ(job.RDist, hand.RDist);
    EXPECT_EQ(job.LengthUnitName, hand.LengthUnit);
    EXPECT_EQ(job.AngleUnitName, hand.AngleUnit);
    EXPECT_EQ(job.LengthDigits, hand.LengthDigits);
    EXPECT_EQ(job.AngleDigits, hand.AngleDigits);
    EXPECT_EQ(job.NormType, hand.NormType);
    EXPECT_EQ(job.SeedName, hand.SeedName);
    EXPECT_TRUE(std::equal(job.SeedIndex.begin(), job.SeedIndex.end(), hand.SeedIndex.begin()));
    EXPECT_EQ(job.NameMCS, hand.NameMCS);
    EXPECT_EQ(job.NameOCS, hand.NameOCS);
    EXPECT_EQ(job.PathMCS, hand.PathMCS);
    EXPECT_EQ(job.PathOCS, hand.PathOCS);
    EXPECT_EQ(job.ViewAllMCS, FlagOf(hand.ViewAll[0]));
    EXPECT_EQ(job.ViewAllOCS, FlagOf(hand.ViewAll[1]));
    EXPECT_EQ(job.ViewAllonlyMCS, FlagOf(hand.ViewAll[2]));
    EXPECT_EQ(job.ViewAllonlyOCS, FlagOf(hand.ViewAll[3]));
    EXPECT_EQ(job.IsParaboloid, FlagOf(hand.Shape.has_value()));
    if (hand.Shape) {
        ASSERT_EQ(job.ParaboloidShape.Rows, static_cast<int>(hand.Shape->size()) - 1);
        ASSERT_EQ(job.ParaboloidShape.Columns, 2);
        for (int row = 0; row <= job.ParaboloidShape.Rows; ++row)
            for (std::size_t column = 0; column < 3; ++column)
                EXPECT_EQ(job.ParaboloidShape(row, static_cast<int>(column)),
                          (*hand.Shape)[static_cast<std::size_t>(row)][column]);
    } else {
        EXPECT_EQ(job.ParaboloidShape.Rows, -1);
    }
    EXPECT_EQ(job.nSavedViews, static_cast<int>(hand.ViewNames.size()));
    if (!hand.ViewNames.empty())
        for (int i = 0; i < 51; ++i) {
            SCOPED_TRACE("view record " + std::to_string(i));
            ExpectHandView(job.SavedView[static_cast<std::size_t>(i)], hand.ViewSeed + 100 * i);
        }
    EXPECT_EQ(job.IsKuka, FlagOf(hand.IsKuka));
    EXPECT_EQ(job.IsQuaternion, FlagOf(hand.IsQuaternion));
    if (!hand.IsKuka && !hand.IsQuaternion) {
        EXPECT_EQ(job.RobotABC.Rows, -1);
        return;
    }
    ASSERT_EQ(job.RobotABC.Rows, static_cast<int>(hand.Robot.size()) - 1);
    ASSERT_EQ(job.RobotABC.Columns, 3);
    for (int row = 0; row <= job.RobotABC.Rows; ++row)
        for (std::size_t column = 0; column < 4; ++column)
            EXPECT_EQ(job.RobotABC(row, static_cast<int>(column)),
                      hand.Robot[static_cast<std::size_t>(row)][column]);
    EXPECT_EQ(job.RVecX, hand.RVecX);
    EXPECT_EQ(job.RVecY, hand.RVecY);
    EXPECT_EQ(job.RVecZ, hand.RVecZ);
}
