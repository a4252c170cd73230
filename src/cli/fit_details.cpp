// The result of a fit in all forms of rotation.
#include "cli/fit_details.h"

#include <array>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "cli/fit_parameters.h"
#include "cli/text_columns.h"
#include "core/numbers.h"
#include "engine/transform.h"
#include "fit/matrix.h"

namespace corvinade::cli {

using nlohmann::ordered_json;

namespace {

// Sum over the elements of a matrix. The ten digits of the library's pi leave about 1e-9.
constexpr double kSameRotation = 1e-6;

// The angles of an order by the axes that they turn about: "rot x", "rot y'", "rot z''".
std::array<std::string, 3> AngleNames(const std::string& axes) {
    std::array<std::string, 3> names;
    for (std::size_t k = 0; k < 3; ++k)
        names[k] = std::string("rot ") + static_cast<char>(axes[k] | 0x20) + std::string(k, '\'');
    return names;
}

Mat3 TurnAbout(char axis, double angle_rad) {
    Mat3 R;
    RotMatrixXYZ(axis == 'X' ? angle_rad : 0, axis == 'Y' ? angle_rad : 0, axis == 'Z' ? angle_rad : 0, R);
    return R;
}

bool GivesTheRotation(const std::array<double, 3>& angles_rad, const std::string& axes, const Mat3& R) {
    const Mat3 first = TurnAbout(axes[0], angles_rad[0]), second = TurnAbout(axes[1], angles_rad[1]);
    const Mat3 rebuilt = MatrixProduct(TurnAbout(axes[2], angles_rad[2]), MatrixProduct(second, first));
    double difference = 0;
    bool equal = false;
    MatrixCompare(rebuilt, R, kSameRotation, difference, equal);
    return difference < kSameRotation;
}

std::string Element(double value) {
    return FormatNumber(value, "0.00000000");
}

void WriteOrders(const SolutionDetails& details, const Style& style, std::ostream& out) {
    std::vector<std::vector<std::string>> rows;
    bool leftOut = false;
    for (const RotationOrder order : kRotationOrders) {
        const std::string axes = AxesOf(order);
        const std::array<std::string, 3> names = AngleNames(axes);
        for (std::size_t k = 0; k < 3; ++k) {
            rows.push_back({axes + " " + names[k]});
            for (const auto& angles : {details.Of(order).First, details.Of(order).Second}) {
                const bool shown = GivesTheRotation(angles, axes, details.Rotation);
                rows.back().push_back(shown ? ShownAs(ParameterKind::Angle, angles[k]) : "-");
                leftOut |= !shown;
            }
        }
    }
    TextColumns columns{{12, 16, 16}};
    for (const auto& row : rows) columns.MakeRoom(row);
    out << "\n" << style.Heading(columns.Line({"Rotation", "solution 1", "solution 2"})) << "  unit\n";
    for (const auto& row : rows)
        out << columns.Line(row) << "  " << style.Quiet(UnitOf(ParameterKind::Angle)) << "\n";
    if (leftOut) out << style.Quiet("(-: gimbal lock, no angles were found)") << "\n";
}

void WriteQuaternion(const SolutionDetails& details, const Style& style, std::ostream& out) {
    const std::string unit = "  " + style.Quiet(UnitOf(ParameterKind::Angle));
    const auto angle = [&unit](const char* name, double value_rad) {
        return std::pair{std::vector<std::string>{name, ShownAs(ParameterKind::Angle, value_rad)}, unit};
    };
    const auto number = [](const char* name, double value) {
        return std::pair{std::vector<std::string>{name, Element(value)}, std::string()};
    };
    const auto& q = details.Quaternion;
    const std::array rows = {number("qw", q[0]),
                             number("qx", q[1]),
                             number("qy", q[2]),
                             number("qz", q[3]),
                             angle("angle", details.Angle),
                             number("axis x", details.Axis(1)),
                             number("axis y", details.Axis(2)),
                             number("axis z", details.Axis(3)),
                             angle("rot x", details.QuaternionAngles(1)),
                             angle("rot y'", details.QuaternionAngles(2)),
                             angle("rot z''", details.QuaternionAngles(3))};
    TextColumns columns{{12, 16}};
    for (const auto& row : rows) columns.MakeRoom(row.first);
    out << "\n" << style.Heading(columns.Line({"Quaternion", "value"})) << "\n";
    for (const auto& row : rows) out << columns.Line(row.first) << row.second << "\n";
}

using MatrixRows = std::vector<std::vector<std::string>>;

MatrixRows CellsOf(const Mat3& matrix) {
    MatrixRows rows;
    for (int row = 1; row <= 3; ++row)
        rows.push_back({"", Element(matrix(row, 1)), Element(matrix(row, 2)), Element(matrix(row, 3))});
    return rows;
}

void WriteMatrix(const std::string& name, const MatrixRows& rows, const Style& style, std::ostream& out) {
    TextColumns columns{{12, 14, 14, 14, 14}};
    for (const auto& row : rows) columns.MakeRoom(row);
    out << "\n" << style.Heading(name) << "\n";
    for (const auto& row : rows) out << columns.Line(row) << "\n";
}

ordered_json Triple(const Vec3& v) {
    return {v(1), v(2), v(3)};
}

}  // namespace

ordered_json Rows(const Mat3& matrix) {
    ordered_json rows = ordered_json::array();
    for (int row = 1; row <= 3; ++row) rows.push_back({matrix(row, 1), matrix(row, 2), matrix(row, 3)});
    return rows;
}

void WriteDetails(const SolutionDetails& details, const Style& style, std::ostream& out) {
    WriteOrders(details, style, out);
    WriteQuaternion(details, style, out);
    WriteMatrix("Rotation matrix", CellsOf(details.Rotation), style, out);
    WriteMatrix("Scale matrix", CellsOf(details.Scale), style, out);
    WriteMatrix("Affine matrix", CellsOf(details.Affine), style, out);
    MatrixRows rows = CellsOf(details.Rotation);
    for (std::size_t row = 0; row < 3; ++row)
        rows[row].push_back(ShownLength(details.Shift(static_cast<int>(row) + 1)));
    rows.push_back({"", "0", "0", "0", "1"});
    WriteMatrix("Rotation and translation", rows, style, out);
}

ordered_json DetailsJson(const SolutionDetails& details) {
    const Mat3& R = details.Rotation;
    ordered_json orders = ordered_json::array();
    for (const RotationOrder order : kRotationOrders) {
        const std::string axes = AxesOf(order);
        ordered_json solutions = ordered_json::array();
        for (const auto& angles : {details.Of(order).First, details.Of(order).Second})
            solutions.push_back(GivesTheRotation(angles, axes, R) ? ordered_json(angles) : ordered_json());
        orders.push_back({{"order", axes}, {"angles", AngleNames(axes)}, {"solutions_rad", solutions}});
    }
    const auto& q = details.Quaternion;
    ordered_json homogeneous = Rows(R);
    for (std::size_t row = 0; row < 3; ++row)
        homogeneous[row].push_back(details.Shift(static_cast<int>(row) + 1));
    homogeneous.push_back({0.0, 0.0, 0.0, 1.0});
    return {{"rotationOrders", orders},
            {"quaternion", {{"w", q[0]}, {"x", q[1]}, {"y", q[2]}, {"z", q[3]}}},
            {"axisAngle", {{"angle_rad", details.Angle}, {"axis", Triple(details.Axis)}}},
            {"anglesOfQuaternion_rad", Triple(details.QuaternionAngles)},
            {"rotationMatrix", Rows(R)},
            {"scaleMatrix", Rows(details.Scale)},
            {"affineMatrix", Rows(details.Affine)},
            {"rotationAndTranslation", homogeneous}};
}

}  // namespace corvinade::cli
