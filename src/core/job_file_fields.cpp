// The table of the job file's fields, and versions.
#include "core/job_file_fields.h"

#include <algorithm>

#include "core/controller.h"
#include "core/numbers.h"

namespace corvinade::core {

namespace {

constexpr JobVersion kLastWithoutFilters{1, 2, 40};
constexpr JobVersion kLastWithoutViews{1, 3, 71};
constexpr JobVersion kLastWithoutRobots{2, 0, 46};
constexpr JobVersion kLastWithoutToolVector{2, 0, 57};

constexpr auto kAnyAbove = FileVersions::AnyPartAbove;
constexpr auto kAbove = FileVersions::Above;

constexpr JobField kFields[] = {
    {"Version", VersionText{}, kAnyAbove, kLastWithoutHead},
    {"MCS_Name", JobPoints{&JobRecord::Start, PointPart::Name}},
    {"MCS_X", JobPoints{&JobRecord::Start, PointPart::X}},
    {"MCS_Y", JobPoints{&JobRecord::Start, PointPart::Y}},
    {"MCS_Z", JobPoints{&JobRecord::Start, PointPart::Z}},
    {"OCS_Name", JobPoints{&JobRecord::Target, PointPart::Name}},
    {"OCS_X", JobPoints{&JobRecord::Target, PointPart::X}},
    {"OCS_Y", JobPoints{&JobRecord::Target, PointPart::Y}},
    {"OCS_Z", JobPoints{&JobRecord::Target, PointPart::Z}},
    {"TMCS_Name", JobPoints{&JobRecord::Transformed, PointPart::Name}},
    {"TMCS_X", JobPoints{&JobRecord::Transformed, PointPart::X}},
    {"TMCS_Y", JobPoints{&JobRecord::Transformed, PointPart::Y}},
    {"TMCS_Z", JobPoints{&JobRecord::Transformed, PointPart::Z}},
    {"nIdent", JobCount::Pairs},
    {"nMCS", JobCount::Start},
    {"nOCS", JobCount::Target},
    {"UseFlags", &JobRecord::UseFlags},
    {"ParamText", &JobRecord::ParamText},
    {"DirectionMCStoOCS", &JobRecord::DirectionMCStoOCS},
    {"AutoRecalc", &JobRecord::AutoRecalc},
    {"TraX", &JobRecord::TraX},
    {"TraY", &JobRecord::TraY},
    {"TraZ", &JobRecord::TraZ},
    {"RotX", &JobRecord::RotX},
    {"RotY", &JobRecord::RotY},
    {"RotZ", &JobRecord::RotZ},
    {"ScaleX", &JobRecord::ScaleX},
    {"ScaleY", &JobRecord::ScaleY},
    {"ScaleZ", &JobRecord::ScaleZ},
    {"ScaleXYZ", &JobRecord::ScaleXYZ},
    {"AngleXY", &JobRecord::AngleXY},
    {"Azimuth", &JobRecord::Azimuth},
    {"AngleZtoXY", &JobRecord::AngleZtoXY},
    {"RDist", &JobRecord::RDist, kAnyAbove, kLastWithoutHead, FileJobs::All, AbsentField::StaysAsItWas},
    {"LengthUnitName", &JobRecord::LengthUnitName},
    {"AngleUnitName", &JobRecord::AngleUnitName},
    {"LengthDigits", &JobRecord::LengthDigits},
    {"AngleDigits", &JobRecord::AngleDigits},
    {"NormType", &JobRecord::NormType},
    {"SeedName", &JobRecord::SeedName},
    {"SeedIndex", &JobRecord::SeedIndex},
    {"NameMCS", &JobRecord::NameMCS},
    {"NameOCS", &JobRecord::NameOCS},
    {"PathMCS", &JobRecord::PathMCS},
    {"PathOCS", &JobRecord::PathOCS},
    {"Version", VersionText{}, FileVersions::NoPartAbove, kLastWithoutHead},
    {"ViewAllMCS", &JobRecord::ViewAllMCS, kAbove, kLastWithoutFilters, FileJobs::All, AbsentField::True},
    {"ViewAllOCS", &JobRecord::ViewAllOCS, kAbove, kLastWithoutFilters, FileJobs::All, AbsentField::True},
    {"ViewAllonlyMCS", &JobRecord::ViewAllonlyMCS, kAbove, kLastWithoutFilters, FileJobs::All,
     AbsentField::True},
    {"ViewAllonlyOCS", &JobRecord::ViewAllonlyOCS, kAbove, kLastWithoutFilters, FileJobs::All,
     AbsentField::True},
    {"IsParaboloid", &JobRecord::IsParaboloid, kAbove, kLastWithoutViews},
    {"ParaboloidShape", &JobRecord::ParaboloidShape, kAbove, kLastWithoutViews, FileJobs::Paraboloid,
     AbsentField::Fresh, 2},
    {"SavedView", SavedViews{}, kAbove, kLastWithoutViews},
    {"IsKuka", &JobRecord::IsKuka, kAbove, kLastWithoutRobots},
    {"IsQuaternion", &JobRecord::IsQuaternion, kAbove, kLastWithoutRobots},
    {"RobotABC", &JobRecord::RobotABC, kAbove, kLastWithoutRobots, FileJobs::RobotPoses, AbsentField::Fresh,
     3},
    {"RVecX", &JobRecord::RVecX, kAbove, kLastWithoutRobots, FileJobs::RobotPoses},
    {"RVecY", &JobRecord::RVecY, kAbove, kLastWithoutRobots, FileJobs::RobotPoses},
    {"RVecZ", &JobRecord::RVecZ, kAbove, kLastWithoutRobots, FileJobs::RobotPoses},
};

bool InVersion(const JobField& field, const JobVersion& version) {
    switch (field.Versions) {
        case FileVersions::Above:
            return Above(version, field.Limit);
        case FileVersions::AnyPartAbove:
            return AnyPartAbove(version, field.Limit);
        case FileVersions::NoPartAbove:
            return !AnyPartAbove(version, field.Limit);
        default:
            return true;
    }
}

bool InJob(const JobField& field, const JobRecord& job) {
    switch (field.Jobs) {
        case FileJobs::Paraboloid:
            return IsTrue(job.IsParaboloid);
        case FileJobs::RobotPoses:
            return IsTrue(job.IsKuka) || IsTrue(job.IsQuaternion);
        default:
            return true;
    }
}

// At most seven characters stand in a file, so a part is a whole number of at most seven digits; with an
// exponent it could be any.
std::int32_t VersionPart(std::string_view text) {
    constexpr double kMost = 9999999;
    return static_cast<std::int32_t>(std::clamp(Val(text), -kMost, kMost));
}

}  // namespace

std::span<const JobField> JobFields() {
    return kFields;
}

bool HasField(const JobField& field, const JobVersion& version, const JobRecord& job) {
    return InVersion(field, version) && InJob(field, job);
}

int ParamTextCount(const JobVersion& version) {
    if (!AnyPartAbove(version, kLastWithoutHead)) return 14;
    return AnyPartAbove(version, kLastWithoutToolVector) ? 18 : 15;
}

JobVersion ParseJobVersion(std::string_view text) {
    const auto cutLast = [&text] {
        const std::size_t point = text.rfind('.');
        const std::string_view part = point == std::string_view::npos ? text : text.substr(point + 1);
        text = point == std::string_view::npos ? std::string_view{} : text.substr(0, point);
        return VersionPart(part);
    };
    JobVersion version;
    version.Revision = cutLast();
    version.Minor = cutLast();
    version.Major = VersionPart(text);
    return version;
}

std::string JobVersionText(const JobVersion& version) {
    return std::to_string(version.Major) + "." + std::to_string(version.Minor) + "." +
           std::to_string(version.Revision);
}

JobVersion ProgramJobVersion() {
    return ParseJobVersion(ProgramVersion());
}

}  // namespace corvinade::core
