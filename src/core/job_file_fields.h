// The one description of the job file: its fields in file order, with the versions that have them. Reader,
// writer, the table of records and the format's page follow it. Append only: a file that has been written
// stays readable, so a line is never moved or taken out.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <variant>
#include <vector>

#include "core/job.h"
#include "core/rooms.h"

namespace corvinade::core {

struct JobVersion {
    std::int32_t Major = 0, Minor = 0, Revision = 0;
    bool operator==(const JobVersion&) const = default;
};

// A version text taken apart from its end: behind the last "." stands the revision, before it as far as the
// next "." the minor number, and the rest is the major one. What is missing or no number counts as 0.
JobVersion ParseJobVersion(std::string_view text);
std::string JobVersionText(const JobVersion& version);  // "2.0.64"
JobVersion ProgramJobVersion();

// Compared as a sequence.
constexpr bool Above(const JobVersion& version, const JobVersion& limit) {
    return std::tie(version.Major, version.Minor, version.Revision) >
           std::tie(limit.Major, limit.Minor, limit.Revision);
}

// A version text of 1 to this many characters is known as one.
inline constexpr std::int32_t kLongestVersion = 7;

// The last version without a version text at its head, compared part by part: a file is older when none of
// its three parts is above the one here.
inline constexpr JobVersion kLastWithoutHead{1, 3, 68};
constexpr bool AnyPartAbove(const JobVersion& version, const JobVersion& limit) {
    return version.Major > limit.Major || version.Minor > limit.Minor || version.Revision > limit.Revision;
}

// How many texts of ParamText, from index 0, a file has.
int ParamTextCount(const JobVersion& version);

// Fields that are no plain record of the job.
struct VersionText {  // long string
    bool operator==(const VersionText&) const = default;
};
struct SavedViews {  // i16 number; with any: the names as an array of short strings, then 51 view records
    bool operator==(const SavedViews&) const = default;
};

struct JobPoints {  // a column of a point set
    PointSet JobRecord::*Set;
    PointPart Part;
    bool operator==(const JobPoints&) const = default;
};

// The type of the record tells how it is stored:
//   numbers, counts             i16, i32, f64; flags are i16
//   std::string                 long string
//   vectors, columns            i32 upper bound, then the elements 0 to there: short strings, tagged values,
//                               f64 or i16
//   arrays                      their elements without a count
//   Matrix                      i32 upper bound of the first index, then f64, the first index fastest
using JobFieldPlace =
    std::variant<VersionText, SavedViews, JobPoints, JobCount, std::int16_t JobRecord::*, double JobRecord::*,
                 std::string JobRecord::*, std::vector<TaggedValue> JobRecord::*,
                 std::vector<double> JobRecord::*, std::vector<std::int16_t> JobRecord::*,
                 std::array<std::string, 18> JobRecord::*, std::array<std::string, 4> JobRecord::*,
                 std::array<std::int16_t, 4> JobRecord::*, Matrix JobRecord::*>;

// Which files have a field.
enum class FileVersions : std::uint8_t { All, Above, AnyPartAbove, NoPartAbove };
// Which jobs have it.
enum class FileJobs : std::uint8_t { All, Paraboloid, RobotPoses };
// The value of a field that a file does not have.
enum class AbsentField : std::uint8_t { Fresh, StaysAsItWas, True };

struct JobField {
    const char* Name;  // as in the table of records
    JobFieldPlace Place;
    FileVersions Versions = FileVersions::All;
    JobVersion Limit = {};
    FileJobs Jobs = FileJobs::All;
    AbsentField Absent = AbsentField::Fresh;
    int Columns = 0;  // of a Matrix: highest index of the second one, which is not stored
};
std::span<const JobField> JobFields();

// Does a file of this version have the field? `job` is what has been read before it.
bool HasField(const JobField& field, const JobVersion& version, const JobRecord& job);

}  // namespace corvinade::core
