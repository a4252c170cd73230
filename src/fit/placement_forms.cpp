// A placement as texts that other machines read.
#include "fit/placement_forms.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "fit/quaternion.h"
#include "fit/small_svd.h"
#include "fit/vector.h"

namespace corvinade::fit {

namespace {

constexpr double kDegree = 180 / 3.14159265358979323846;

// --- Parts of a text --------------------------------------------------------------------------------------

// Numbers one behind the other.
template <class Numbers>
std::string Listed(const Numbers& numbers, const char* between) {
    std::string text;
    bool first = true;
    for (const double number : numbers) {
        text += (first ? "" : between) + ExactText(number);
        first = false;
    }
    return text;
}

std::array<double, 3> Three(const Vec3& v, double factor = 1) {
    return {v(1) * factor, v(2) * factor, v(3) * factor};
}

std::array<std::array<double, 4>, 4> Homogeneous(const Placement& p) {
    std::array<std::array<double, 4>, 4> rows{};
    for (int i = 1; i <= 3; ++i)
        rows[static_cast<std::size_t>(i) - 1] = {p.Matrix(i, 1), p.Matrix(i, 2), p.Matrix(i, 3),
                                                 p.Shift_mm(i)};
    rows[3] = {0, 0, 0, 1};
    return rows;
}

// x y z of a quaternion and w behind it, as others have it.
std::array<double, 4> WithWBehind(const std::array<double, 4>& q) {
    return {q[1], q[2], q[3], q[0]};
}

// --- What has no place in them ----------------------------------------------------------------------------

// Scales and cosines that are off by rounding alone move nothing.
constexpr double kRounding = 1e-12;

Vec3 ColumnOf(const Mat3& m, int column) {
    return {m(1, column), m(2, column), m(3, column)};
}

// What the axes of the start system have become: their lengths, and the cosines between them.
struct Axes {
    std::array<double, 3> Length{}, Cosine{};  // of x, y, z; between x and y, y and z, z and x
    bool Mirrored = false;
    bool Stretched() const {
        return std::any_of(Length.begin(), Length.end(),
                           [](double length) { return !(std::fabs(length - 1) <= kRounding); });
    }
    bool Oblique() const {
        return std::any_of(Cosine.begin(), Cosine.end(),
                           [](double cosine) { return !(std::fabs(cosine) <= kRounding); });
    }
};

Axes AxesOf(const Mat3& m) {
    Axes axes;
    for (int k = 0; k < 3; ++k) {
        const Vec3 column = ColumnOf(m, k + 1);
        axes.Length[static_cast<std::size_t>(k)] = Hypot3(column(1), column(2), column(3));
    }
    for (std::size_t k = 0; k < 3; ++k) {
        const std::size_t next = (k + 1) % 3;
        double dot = 0;
        VecDot(ColumnOf(m, static_cast<int>(k) + 1), ColumnOf(m, static_cast<int>(next) + 1), dot);
        axes.Cosine[k] = dot / (axes.Length[k] * axes.Length[next]);
    }
    axes.Mirrored = Determinant3(m) < 0;
    return axes;
}

bool IsRigid(const Placement& p) {
    const Axes axes = AxesOf(p.Matrix);
    return !axes.Stretched() && !axes.Oblique() && !axes.Mirrored;
}

// --- The forms --------------------------------------------------------------------------------------------

std::string MatrixRows(const Placement& p, const char* between) {
    std::string text;
    for (const auto& row : Homogeneous(p)) text += Listed(row, between) + "\n";
    return text;
}
std::string MatrixText(const Placement& p) {
    return MatrixRows(p, " ");
}
std::string MatrixCsvText(const Placement& p) {
    return MatrixRows(p, ",");
}

std::string JsonText(const Placement& p) {
    std::string text = "{\n  \"schema\": \"corvinade-transformation\",\n  \"matrix\": [";
    const char* before = "\n    [";
    for (const auto& row : Homogeneous(p)) {
        text += before + Listed(row, ", ") + "]";
        before = ",\n    [";
    }
    text += "\n  ],\n  \"translation_mm\": [" + Listed(Three(p.Shift_mm), ", ") + "],\n  \"quaternion\": ";
    if (!IsRigid(p)) return text + "null\n}\n";
    const std::array<double, 4> q = UnitQuaternion(p.Matrix);
    return text + "{\"w\": " + ExactText(q[0]) + ", \"x\": " + ExactText(q[1]) +
           ", \"y\": " + ExactText(q[2]) + ", \"z\": " + ExactText(q[3]) + "}\n}\n";
}

std::string QuaternionText(const Placement& p) {
    return Listed(Three(p.Shift_mm), " ") + " " + Listed(WithWBehind(UnitQuaternion(p.Matrix)), " ") + "\n";
}

// The matrix as it stands, so that no sign of an angle is left to a convention.
std::string ProjText(const Placement& p) {
    std::string text = "+proj=affine +xoff=" + ExactText(p.Shift_mm(1)) +
                       " +yoff=" + ExactText(p.Shift_mm(2)) + " +zoff=" + ExactText(p.Shift_mm(3));
    for (int i = 1; i <= 3; ++i)
        for (int j = 1; j <= 3; ++j)
            text += " +s" + std::to_string(i) + std::to_string(j) + "=" + ExactText(p.Matrix(i, j));
    return text + "\n";
}

constexpr double kMetre = 1e-3;  // a millimetre

std::string RosText(const Placement& p) {
    const std::array<double, 3> t = Three(p.Shift_mm, kMetre);
    const std::array<double, 4> q = UnitQuaternion(p.Matrix);
    return "ros2 run tf2_ros static_transform_publisher --x " + ExactText(t[0]) + " --y " + ExactText(t[1]) +
           " --z " + ExactText(t[2]) + " --qx " + ExactText(q[1]) + " --qy " + ExactText(q[2]) + " --qz " +
           ExactText(q[3]) + " --qw " + ExactText(q[0]) + " --frame-id target --child-frame-id start\n";
}

std::string UrdfText(const Placement& p) {
    return "<origin xyz=\"" + Listed(Three(p.Shift_mm, kMetre), " ") + "\" rpy=\"" +
           Listed(Three(TurnsAboutXYZ(p.Matrix)), " ") + "\"/>\n";
}

// A, B and C turn about z, the new y and the new x, which is x, y and z of axes that stay.
std::string KukaFrame(const Placement& p) {
    const std::array<double, 3> turns = Three(TurnsAboutXYZ(p.Matrix), kDegree);
    return "{X " + ExactText(p.Shift_mm(1)) + ", Y " + ExactText(p.Shift_mm(2)) + ", Z " +
           ExactText(p.Shift_mm(3)) + ", A " + ExactText(turns[2]) + ", B " + ExactText(turns[1]) + ", C " +
           ExactText(turns[0]) + "}\n";
}
std::string KukaBaseText(const Placement& p) {
    return "$BASE=" + KukaFrame(p);
}
std::string KukaToolText(const Placement& p) {
    return "$TOOL=" + KukaFrame(p);
}

// W, P and R turn about x, y and z of axes that stay.
std::string FanucText(const Placement& p) {
    const std::array<double, 3> turns = Three(TurnsAboutXYZ(p.Matrix), kDegree);
    return "X = " + ExactText(p.Shift_mm(1)) + " mm, Y = " + ExactText(p.Shift_mm(2)) +
           " mm, Z = " + ExactText(p.Shift_mm(3)) + " mm,\nW = " + ExactText(turns[0]) +
           " deg, P = " + ExactText(turns[1]) + " deg, R = " + ExactText(turns[2]) + " deg\n";
}

std::string AbbPose(const Placement& p) {
    return "[[" + Listed(Three(p.Shift_mm), ",") + "],[" + Listed(UnitQuaternion(p.Matrix), ",") + "]]";
}
std::string AbbWobjText(const Placement& p) {
    return "PERS wobjdata wobj_" + p.Name + ":=[FALSE,TRUE,\"\"," + AbbPose(p) + ",[[0,0,0],[1,0,0,0]]];\n";
}
// A mass of -1 is what a controller has for a tool whose load nobody has told; it asks for it.
std::string AbbToolText(const Placement& p) {
    return "PERS tooldata tool_" + p.Name + ":=[TRUE," + AbbPose(p) + ",[-1,[0,0,0],[1,0,0,0],0,0,0]];\n";
}

constexpr PlacementForm kForms[] = {
    {"matrix", "4 by 4 matrix, blanks between", "txt", false, false, MatrixText},
    {"matrix-csv", "4 by 4 matrix, commas between", "csv", false, false, MatrixCsvText},
    {"json", "matrix, translation and quaternion as JSON", "json", false, false, JsonText},
    {"quaternion", "x y z qx qy qz qw", "txt", true, false, QuaternionText},
    {"proj", "operation of PROJ", "txt", false, false, ProjText},
    {"ros", "static transform of ROS, metres", "sh", true, false, RosText},
    {"urdf", "origin of URDF, metres and radians", "xml", true, false, UrdfText},
    {"kuka-base", "Kuka base", "txt", true, false, KukaBaseText},
    {"kuka-tool", "Kuka tool", "txt", true, true, KukaToolText},
    {"fanuc-uframe", "Fanuc user frame", "txt", true, false, FanucText},
    {"fanuc-utool", "Fanuc user tool", "txt", true, true, FanucText},
    {"abb-wobj", "ABB work object", "txt", true, false, AbbWobjText},
    {"abb-tool", "ABB tool", "txt", true, true, AbbToolText},
};

}  // namespace

std::span<const PlacementForm> PlacementForms() {
    return kForms;
}

Placement Described(const PlacementForm& form, const Placement& p) {
    if (!form.OfTool || !p.Tip_mm) return p;
    Placement tip = p;
    tip.Shift_mm = *p.Tip_mm;
    tip.Matrix = Mat3();
    for (int k = 1; k <= 3; ++k) tip.Matrix(k, k) = 1;
    return tip;
}

std::string AsIdentifier(std::string name) {
    constexpr std::size_t kLongest = 24;
    for (char& c : name) {
        const bool good = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
        if (!good) c = '_';
    }
    if (name.empty()) return "result";
    return name.substr(0, kLongest);
}

std::string WhyNotInForm(const PlacementForm& form, const Placement& placement) {
    if (form.OfTool && placement.TipLost)
        return std::string("\"") + form.Name +
               "\" holds the tool vector, which the job has lost, as files of before do: nothing was written; fit "
               "it again and save it anew";
    if (!form.Rigid) return "";
    const Axes axes = AxesOf(Described(form, placement).Matrix);
    std::string has;
    const auto add = [&has](const std::string& what) { has += (has.empty() ? "" : ", and ") + what; };
    if (axes.Mirrored) add("is mirrored");
    if (axes.Stretched()) add("scales x, y, z by " + Listed(axes.Length, ", "));
    if (axes.Oblique()) add("shears the axes, whose angles have the cosines " + Listed(axes.Cosine, ", "));
    if (has.empty()) return "";
    return std::string("\"") + form.Name + "\" holds a rotation and a translation alone, and the result " +
           has + ": nothing was written; matrix, matrix-csv, json and proj hold all of it";
}

std::string ExactText(double value) {
    constexpr double kNothing = 1e-20;
    if (std::fabs(value) < kNothing) return "0";
    std::array<char, 400> buffer{};  // the largest number has 309 places
    const auto result =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed);
    return {buffer.data(), result.ptr};
}

Vec3 TurnsAboutXYZ(const Mat3& R) {
    constexpr double kLock = 1e-15;
    const double cosine = std::hypot(R(1, 1), R(2, 1));
    const double z = cosine < kLock ? 0 : std::atan2(R(2, 1), R(1, 1));
    const double y = std::atan2(-R(3, 1), cosine);
    // With what is left when the turn about z is taken back, so that near the lock, where that angle is
    // noise, both together are right.
    const double s = std::sin(z), c = std::cos(z);
    const double x = std::atan2(s * R(1, 3) - c * R(2, 3), c * R(2, 2) - s * R(1, 2));
    return {x, y, z};
}

std::array<double, 4> UnitQuaternion(const Mat3& R) {
    Column record(9);
    double a = 0, b = 0, c = 0;
    MatrixToQuaternion(R, record, a, b, c);
    std::array<double, 4> q = {record[1], record[2], record[3], record[4]};
    const double length = std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]);
    const double factor = (q[0] < 0 ? -1 : 1) / length;
    for (double& part : q) part *= factor;
    return q;
}

}  // namespace corvinade::fit
