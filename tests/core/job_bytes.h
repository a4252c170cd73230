// Job files put together by hand, byte by byte, one procedure a version. Nothing here knows the program's
// own table of the format: what is written below is the layout, once more.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/job.h"

using namespace corvinade;

// Bytes in the order in which they are put.
struct HandBytes {
    std::string Text;

    HandBytes& Whole(std::uint64_t value, int bytes);
    HandBytes& I16(int value) { return Whole(static_cast<std::uint64_t>(value), 2); }
    HandBytes& I32(std::int64_t value) { return Whole(static_cast<std::uint64_t>(value), 4); }
    HandBytes& F32(float value);
    HandBytes& F64(double value);
    HandBytes& Flag(bool value) { return I16(value ? -1 : 0); }
    HandBytes& Long(const std::string& text) { return I32(static_cast<int>(text.size())).Raw(text); }
    HandBytes& Short(const std::string& text) { return I16(static_cast<int>(text.size())).Raw(text); }
    HandBytes& Tagged(const TaggedValue& value);
    HandBytes& Raw(const std::string& bytes) {
        Text += bytes;
        return *this;
    }
    // With the upper bound before them.
    HandBytes& Shorts(const std::vector<std::string>& texts);
    HandBytes& Taggeds(const std::vector<TaggedValue>& values);
    HandBytes& F64s(const std::vector<double>& values);
};

// Texts are the bytes of the file, of plain letters but for those that a test sets.
struct HandPoints {
    std::vector<std::string> Name{""};
    std::vector<TaggedValue> X{{}}, Y{{}};
    std::vector<double> Z{0};
    void Add(const std::string& name, double x, double y, double z);
    int Count() const { return static_cast<int>(Name.size()) - 1; }
};

struct HandJob {
    HandPoints MCS, OCS, TMCS;
    int nIdent = 0, nMCS = 0, nOCS = 0;
    std::vector<int> UseFlags{0};
    std::array<std::string, 18> ParamText{};
    bool Direction = true, AutoRecalc = false;
    std::array<double, 13> Results{};  // TraX to AngleZtoXY
    double RDist = 0;
    std::string LengthUnit = "millimeter", AngleUnit = "degree";
    int LengthDigits = 3, AngleDigits = 4, NormType = 2;
    std::array<std::string, 4> SeedName{};
    std::array<int, 4> SeedIndex{};
    std::string NameMCS, NameOCS, PathMCS, PathOCS;
    std::array<bool, 4> ViewAll{};                            // MCS, OCS, only MCS, only OCS
    std::optional<std::vector<std::array<double, 3>>> Shape;  // of a paraboloid, from row 0
    std::vector<std::string> ViewNames;
    int ViewSeed = 0;
    bool IsKuka = false, IsQuaternion = false;
    std::vector<std::array<double, 4>> Robot{{}};
    std::vector<TaggedValue> RVecX{{}}, RVecY{{}};
    std::vector<double> RVecZ{0};
};

// Three pairs, one start point and two target points without partner; every field has a value of its own.
HandJob HandExample();
HandJob HandRobotExample();       // the same, of a Kuka program, with two saved views
HandJob HandParaboloidExample();  // the same, with a shape of two rows

// The fields of every version. `version` is the text that the file bears.
std::string HandFile(const HandJob& job, const std::string& version = "2.0.64");  // above 2.0.57
std::string HandFile15(const HandJob& job, const std::string& version);  // 2.0.47 to 2.0.57: 15 parameters
std::string HandFile46(const HandJob& job,
                       const std::string& version);  // to 2.0.46: no robots, 15 parameters
std::string HandFile72(const HandJob& job,
                       const std::string& version);  // to 1.9.99: no robots, 18 parameters
std::string HandFile71(const HandJob& job, const std::string& version);  // 1.3.69 to 1.3.71: no views either
std::string HandFile68(const HandJob& job,
                       const std::string& version);  // to 1.3.68: version behind the paths
std::string HandFile40(const HandJob& job, const std::string& version);  // to 1.2.40: no view flags either

// One view record: each field has the next number of a count that begins at `seed`. The arrays have the
// program's own indices, and `sizes` elements: RotAngles 2 by 3 or none, rows of flags, flags, lines.
struct HandViewSizes {
    bool Angles = true;
    int Rows = 4, Flags = 2, Lines = 3;
};
void PutHandView(HandBytes& out, int seed, const HandViewSizes& sizes = {});
void ExpectHandView(const ScreenRecord& view, int seed, const HandViewSizes& sizes = {});

// Tells the first byte that differs, not both files.
void ExpectBytes(const std::string& actual, const std::string& expected);

// All fields of the two; what an old file does not have is checked by the tests of old files.
void ExpectJob(const JobRecord& job, const HandJob& hand);
