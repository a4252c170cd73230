// Lines of a robot program, numbers in them, and poses for the job.
#include "import/robot_program.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <utility>

#include "core/job.h"
#include "core/lost_digits.h"
#include "core/notes.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/text.h"
#include "core/units.h"
#include "import/long_import.h"

namespace corvinade::import {

RobotProgram::RobotProgram(const TargetFile& file)
    : File(LoadPointText(file.Path)), Lines(File), Decimal(file.How.Decimal), Places(file.Places) {
    if (Places != nullptr) *Places = {.Text = std::string(File.Text), .HasMark = File.HasMark};
}

bool NextLine(RobotProgram& program) {
    std::string_view line;
    if (!program.Lines.Next(line)) return false;
    program.Line = DecodedLine(program.File, line, program.Decoded);
    return true;
}

void NeedLine(RobotProgram& program) {
    if (!NextLine(program)) FailAtLine(program, "the file ends here, inside its poses");
}

bool HasEnded(const RobotProgram& program) {
    return program.Lines.Rest.empty();
}

void FailAtLine(const RobotProgram& program, const std::string& what) {
    throw PlatformError{"Cannot read \"" + program.File.Path + "\", line " +
                        std::to_string(program.Lines.Row) + ": " + what};
}

std::size_t PlaceOf(const RobotProgram& program, std::string_view text, std::size_t from) {
    const std::size_t place = program.Line.find(text, from);
    if (place == std::string_view::npos)
        FailAtLine(program, "there is no \"" + std::string(text) + "\" in \"" +
                                Printable(program.Line.substr(std::min(from, program.Line.size()))) + "\"");
    return place;
}

namespace {

// A line that was decoded is not the file's own bytes: its numbers have no place.
void KeepPlace(const RobotProgram& program, std::string_view number, double value) {
    if (program.Places == nullptr) return;
    while (number.starts_with(' ') || number.starts_with('\t')) number.remove_prefix(1);
    while (number.ends_with(' ') || number.ends_with('\t')) number.remove_suffix(1);
    if (number.empty()) return;
    if (!program.LinePlaces.empty()) {
        const auto first = static_cast<std::size_t>(number.data() - program.Line.data());
        const std::size_t at = program.LinePlaces[first];
        program.Places->Next.push_back({at, program.LinePlaces[first + number.size() - 1] + 1 - at, value});
        return;
    }
    const std::string_view file = program.File.Text;
    const std::less<> before;
    if (before(number.data(), file.data()) ||
        before(file.data() + file.size(), number.data() + number.size()))
        return;
    program.Places->Next.push_back(
        {static_cast<std::size_t>(number.data() - file.data()), number.size(), value});
}

}  // namespace

double NumberBetween(const RobotProgram& program, std::size_t begin, std::size_t end) {
    if (begin >= end || end > program.Line.size())
        FailAtLine(program, "a number is missing in \"" + Printable(program.Line) + "\"");
    const std::string_view text = program.Line.substr(begin, end - begin);
    double value = 0;
    if (!TextToNumber(text, program.Decimal, value) && !TextToNumber(text, '.', value))
        FailAtLine(program, "\"" + Printable(text) + "\" is not a number");
    if (const std::string lost = LostDigits(text); !lost.empty())
        AddNote(NoteCode::DigitsCut, lost, program.File.Path, static_cast<int>(program.Lines.Row));
    KeepPlace(program, text, value);
    return value;
}

void NoteProgramUnits(const RobotProgram& program, bool millimetres, bool degrees) {
    const auto note = [&program](NoteCode code, const char* what, const std::string& unit) {
        AddNote(code, std::string(what) + ", and are read as numbers in the unit in use, " + unit,
                program.File.Path, static_cast<int>(program.Lines.Row));
    };
    if (millimetres && Units.LengthFactor != 1)
        note(NoteCode::LengthUnit, "The positions of the program are in millimetres", Job.LengthUnitName);
    if (degrees && Units.AngleFactor != AngleUnits().front().Factor)
        note(NoteCode::AngleUnit, "The angles of the program are in degrees", Job.AngleUnitName);
}

PoseTable::PoseTable(const RobotProgram& program, std::int64_t count, double angleFactor)
    : angleFactor_(angleFactor) {
    const std::string refusal = "Cannot read \"" + program.File.Path + "\": ";
    if (count == 0) throw PlatformError{refusal + "there is no pose in it"};
    // The shortest pose has seven numbers. A file of marks alone would take much more memory than it has
    // bytes, for places that no pose comes to.
    constexpr std::int64_t kShortestPose = 14, kMarksToSpare = 1000;
    const std::int64_t room =
        static_cast<std::int64_t>(program.File.Text.size()) / kShortestPose + kMarksToSpare;
    if (count > room || count >= std::numeric_limits<std::int32_t>::max())
        throw PlatformError{refusal + "it announces " + std::to_string(count) +
                            " poses, more than it has room for"};
    points_.Resize(static_cast<int>(count));
    angles_ = Matrix(static_cast<int>(count), 3);
    programNames_.resize(static_cast<std::size_t>(count) + 1);
}

PoseTable::~PoseTable() {
    ReplaceTarget(std::move(points_));
    Job.RobotABC = std::move(angles_);
    ProgramPoses.Name = std::move(programNames_);
    const auto span = [this](std::size_t k) {
        return taken_ == 0 ? 0 : (highest_[k] - lowest_[k]) / angleFactor_;
    };
    Run.SpanA = span(0);
    Run.SpanB = span(1);
    Run.SpanC = span(2);
}

void PoseTable::CalledInProgram(std::string_view name) {
    programNames_[taken_] = name;
}

void PoseTable::Take(const RobotProgram& program, const std::array<double, 3>& position,
                     const PoseAngles& angles) {
    Take(program, position, angles, std::to_string(taken_ + 1));
}

void PoseTable::Take(const RobotProgram& program, const std::array<double, 3>& position,
                     const PoseAngles& angles, std::string name) {
    const auto last = static_cast<std::size_t>(points_.Count());
    if (taken_ == last)
        FailAtLine(program, "one more pose than the " + std::to_string(last) +
                                " that the file announces: \"" + Printable(program.Line) + "\"");
    std::array<double, 3> mm{}, rad{};
    bool finite = true;
    for (std::size_t k = 0; k < 3; ++k) {
        mm[k] = position[k] / Units.LengthFactor;
        rad[k] = angles[k] / angleFactor_;
        finite = finite && std::isfinite(mm[k]) && std::isfinite(rad[k]);
    }
    if (!finite) FailAtLine(program, "these numbers are no pose: \"" + Printable(program.Line) + "\"");
    ++taken_;
    if (program.Places != nullptr) program.Places->Poses.push_back(std::exchange(program.Places->Next, {}));
    points_.Name[taken_] = std::move(name);
    points_.SetPoint(static_cast<int>(taken_), mm[0], mm[1], mm[2]);
    for (std::size_t k = 0; k < 3; ++k) {
        angles_(static_cast<int>(taken_), static_cast<int>(k) + 1) = rad[k];
        highest_[k] = std::max(highest_[k], angles[k]);
        lowest_[k] = std::min(lowest_[k], angles[k]);
    }
}

}  // namespace corvinade::import
