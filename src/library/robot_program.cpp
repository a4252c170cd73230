// Robot programs by the readers of the program.
#include "corvinade/robot_program.h"
//
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "core/files.h"
#include "core/job.h"
#include "core/platform.h"
#include "import/robot_files.h"
#include "import/robot_program.h"
#include "library/records.h"

namespace corvinade {

namespace {

using import::NumberPlace;

// --- Reading ----------------------------------------------------------------------------------------------

using ProgramForm = import::InputKind;

const ProgramForm& FormByName(std::string_view name) {
    std::string names;
    for (const ProgramForm& form : import::InputKinds()) {
        if (form.Letters == nullptr) continue;
        if (name == form.Name) return form;
        names += (names.empty() ? "" : ", ") + std::string(form.Name);
    }
    throw InvalidInput("a form of robot programs is one of " + names + ", and \"" + std::string(name) +
                       "\" came");
}

// With the records held: the poses come into the job.
void Read(const std::string& path, const ProgramForm& form, bool byDeclarations, import::PosePlaces* places) {
    import::TargetFile file{.Path = path, .ByDeclarations = byDeclarations};
    file.Places = places;
    form.Read(file);
}

// R = Rz Ry Rx of the turns about x, y and z.
Matrix4 FrameOf(const std::array<double, 3>& place, const std::array<double, 3>& turns) {
    return MatrixOf({.Translation = place, .Rotation = {-turns[0], -turns[1], -turns[2]}});
}

std::vector<RobotPose> PosesOfJob() {
    std::vector<RobotPose> poses;
    const core::PointSet& points = core::Job.Target;
    for (int i = 1; i <= points.Count(); ++i) {
        const auto k = static_cast<std::size_t>(i);
        if (points.Name[k].empty()) continue;  // a place that no pose has come to
        const fit::Vec3 place = points.Point(i);
        const fit::Matrix& angles = core::Job.RobotABC;  // about z, y and x
        poses.push_back(
            {k < import::ProgramPoses.Name.size() ? import::ProgramPoses.Name[k] : "",
             FrameOf({place(1), place(2), place(3)}, {angles(i, 3), angles(i, 2), angles(i, 1)})});
    }
    return poses;
}

// --- Writing ----------------------------------------------------------------------------------------------

// The number of a pose that stands behind this letter, the longest where one has been read twice: the reader
// of columns looks at what these cut as well.
const NumberPlace* Behind(char letter, const std::vector<NumberPlace>& numbers, std::string_view text) {
    const NumberPlace* found = nullptr;
    for (const NumberPlace& number : numbers) {
        std::size_t at = number.At;
        while (at > 0 && std::string_view(" \t#=").find(text[at - 1]) != std::string_view::npos) --at;
        const bool is = at > 0 && (text[at - 1] == letter || text[at - 1] == letter + ('a' - 'A'));
        if (is && (found == nullptr || number.Size > found->Size)) found = &number;
    }
    return found;
}

// The numbers of a pose in the order of its form: six, or seven with a quaternion.
std::vector<NumberPlace> InOrder(const ProgramForm& form, const std::vector<NumberPlace>& numbers,
                                 std::string_view text) {
    constexpr std::size_t kWithQuaternion = 7;
    const std::string_view letters = form.Letters;
    std::vector<NumberPlace> ordered;
    for (const char letter : letters)
        if (const NumberPlace* number = Behind(letter, numbers, text)) ordered.push_back(*number);
    if (letters.empty()) ordered = numbers;
    if (ordered.size() != (letters.empty() ? kWithQuaternion : letters.size()))
        throw InvalidInput("its numbers do not stand where they were read");
    return ordered;
}

std::string Written(double value, int decimals, bool all) {
    std::array<char, 400> digits{};
    std::snprintf(digits.data(), digits.size(), "%.*f", decimals, value);
    std::string text = digits.data();
    if (!all) text.erase(std::max(text.find_last_not_of('0'), text.find('.')) + 1);
    if (text.ends_with('.')) text.pop_back();
    return text.find_first_of("123456789") == std::string::npos && text.front() == '-' ? text.substr(1)
                                                                                       : text;
}

// The numbers of a pose as the program has them, moved.
std::vector<double> Moved(const ProgramForm& form, const std::vector<NumberPlace>& numbers,
                          const Matrix4& matrix) {
    const double degree = std::acos(-1.0) / 180;
    const std::array<double, 3> place{numbers[0].Value, numbers[1].Value, numbers[2].Value};
    Matrix4 frame;
    if (*form.Letters == 0) {
        const std::array<double, 3> turned =
            AnglesOf({numbers[3].Value, numbers[4].Value, numbers[5].Value, numbers[6].Value});
        frame = MatrixOf({.Translation = place, .Rotation = turned});
    } else {
        frame =
            FrameOf(place, {numbers[3].Value * degree, numbers[4].Value * degree, numbers[5].Value * degree});
    }
    const Matrix4 moved = Compose(matrix, frame);
    const Chain chain = ChainOf(moved);
    std::vector<double> values{moved[3], moved[7], moved[11]};
    if (*form.Letters == 0) {
        const Quaternion q = QuaternionOf(chain);
        values.insert(values.end(), {q.W, q.X, q.Y, q.Z});
    } else {
        for (const double angle : chain.Rotation) values.push_back(-angle / degree);
    }
    return values;
}

// Puts a number into the place of another one. One in columns ends where that one ended, and may begin as far
// to the left as blanks reach, but for the one behind the equals sign.
void Put(const ProgramForm& form, const NumberPlace& place, double value, std::size_t index,
         std::string& text) {
    constexpr int kDecimals = 6, kOfQuaternion = 9, kOfColumns = 3;
    if (!form.InColumns) {
        const bool ofQuaternion = *form.Letters == 0 && index >= 3;
        text.replace(place.At, place.Size, Written(value, ofQuaternion ? kOfQuaternion : kDecimals, false));
        return;
    }
    std::string number = Written(value, kOfColumns, true);
    std::size_t begin = place.At;
    while (begin > 1 && text[begin - 1] == ' ' && text[begin - 2] == ' ') --begin;
    const std::size_t room = place.At + place.Size - begin;
    if (number.size() > room) throw InvalidInput("its columns have no room for " + number);
    text.replace(begin, room, number.insert(0, room - number.size(), ' '));
}

std::string Rewritten(const ProgramForm& form, const import::PosePlaces& places, const Matrix4& matrix) {
    struct Change {
        NumberPlace Place;
        double Value;
        std::size_t Index, Pose;
    };
    std::vector<Change> changes;
    std::size_t pose = 0;
    const auto refuse = [](std::size_t number, const char* why) {
        return InvalidInput("pose " + std::to_string(number) + " cannot be written where it stands: " + why);
    };
    for (const std::vector<NumberPlace>& numbers : places.Poses) {
        ++pose;
        try {
            const std::vector<NumberPlace> ordered = InOrder(form, numbers, places.Text);
            const std::vector<double> values = Moved(form, ordered, matrix);
            for (std::size_t k = 0; k < ordered.size(); ++k)
                changes.push_back({ordered[k], values[k], k, pose});
        } catch (const InvalidInput& error) {
            throw refuse(pose, error.what());
        }
    }
    // From the end on, so that the places before stay what they are.
    std::sort(changes.begin(), changes.end(),
              [](const Change& a, const Change& b) { return a.Place.At > b.Place.At; });
    std::string text = places.Text;
    for (const Change& change : changes) try {
            Put(form, change.Place, change.Value, change.Index, text);
        } catch (const InvalidInput& error) {
            throw refuse(change.Pose, error.what());
        }
    return text;
}

void CheckRigid(const Matrix4& matrix) {
    constexpr double kRounding = 1e-9;
    const Chain chain = ChainOf(matrix);
    bool rigid = true;
    for (std::size_t axis = 0; axis < 3; ++axis)
        rigid = rigid && std::fabs(chain.Scale[axis] - 1) <= kRounding;
    for (const std::size_t shear : {0, 2}) rigid = rigid && std::fabs(chain.Shear[shear]) <= kRounding;
    if (!rigid)
        throw InvalidInput(
            "poses are carried by turns and shifts alone, and this transformation has a scale, a shear "
            "or a mirror");
}

}  // namespace

RobotPoses ReadProgram(const std::string& path, std::string_view form) {
    const ProgramForm& reader = FormByName(form);
    const library::RecordsHeld held;
    try {
        Read(path, reader, true, nullptr);
    } catch (const core::PlatformError& error) {
        throw InvalidInput(error.What);
    }
    return {PosesOfJob(), library::RecordsHeld::Notes()};
}

std::vector<FileNote> TransformProgram(const std::string& from, const std::string& to, std::string_view form,
                                       const Matrix4& matrix) {
    const ProgramForm& reader = FormByName(form);
    CheckRigid(matrix);
    const library::RecordsHeld held;
    try {
        import::PosePlaces places;
        Read(from, reader, true, &places);
        core::WriteFile(to, (places.HasMark ? "\xEF\xBB\xBF" : "") + Rewritten(reader, places, matrix));
    } catch (const core::PlatformError& error) {
        throw InvalidInput(error.What);
    } catch (const InvalidInput& error) {
        throw InvalidInput("Cannot write \"" + from + "\" with other poses: " + error.what());
    }
    return library::RecordsHeld::Notes();
}

}  // namespace corvinade
