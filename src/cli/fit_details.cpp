// The result of a fit in all forms of rotation.
#include "cli/fit_details.h"

#include <array>
#include <nlohmann/json.hpp>
#include <ostream>

#include "cli/fit_output.h"
#include "cli/fit_parameters.h"
#include "cli/text_columns.h"
#include "core/job.h"
#include "core/numbers.h"
#include "engine/matrix.h"
#include "engine/quaternion.h"
#include "engine/rotations.h"
#include "engine/transform.h"

using nlohmann::ordered_json;

namespace {

// Sum over the elements of a matrix. The ten digits of the library's pi leave about 1e-9.
constexpr double kSameRotation = 1e-6;

// An order of axes: its conversions, and which of their angles (1 to 3) turns first, second and third.
struct Order {
    const char* Name;
    std::array<const char*, 3> Angles;
    std::array<int, 3> Turns;
    void (*Angle)(const Mat3& M, Vec3& first, Vec3& second);
    void (*Build)(double a, double b, double c, Mat3& R);
};
constexpr std::array<Order, 5> kOrders = {
    {{"XYZ", {"rot x", "rot y'", "rot z''"}, {1, 2, 3}, EulerFromMatrixXYZ, RotMatrixXYZ},
     {"ZYX", {"rot z", "rot y'", "rot x''"}, {3, 2, 1}, EulerFromMatrixZYX, RotMatrixZYX},
     {"ZXY", {"rot z", "rot x'", "rot y''"}, {3, 1, 2}, EulerFromMatrixYXZ, RotMatrixYXZ},
     {"ZXZ", {"rot z", "rot x'", "rot z''"}, {1, 2, 3}, EulerFromMatrixZXZ, RotMatrixZXZ},
     {"ZYZ", {"rot z", "rot y'", "rot z''"}, {1, 2, 3}, EulerFromMatrixZYZ, RotMatrixZYZ}}};

// The two solutions of an order, each with its angles as they turn.
struct Solution {
    std::array<double, 3> Angles_rad;
    bool GivesTheRotation;
};
std::array<Solution, 2> SolutionsOf(const Order& order, const Mat3& R) {
    std::array<Vec3, 2> triples;
    order.Angle(R, triples[0], triples[1]);
    std::array<Solution, 2> solutions{};
    for (std::size_t i = 0; i < 2; ++i) {
        Mat3 rebuilt;
        order.Build(triples[i](1), triples[i](2), triples[i](3), rebuilt);
        double difference = 0;
        bool equal = false;
        MatrixCompare(rebuilt, R, kSameRotation, difference, equal);
        solutions[i].GivesTheRotation = difference < kSameRotation;
        for (std::size_t k = 0; k < 3; ++k) solutions[i].Angles_rad[k] = triples[i](order.Turns[k]);
    }
    return solutions;
}

struct QuaternionForm {
    Column Record = Column(9);     // 1 to 4 the quaternion, 5 the angle (rad), 6 to 8 the axis
    std::array<double, 3> Angles;  // of the order XYZ, rad
};
QuaternionForm QuaternionOf(const Mat3& R) {
    QuaternionForm form;
    MatrixToQuaternion(R, form.Record, form.Angles[0], form.Angles[1], form.Angles[2]);
    return form;
}

std::string Element(double value) {
    return FormatNumber(value, "0.00000000");
}

void WriteOrders(const Style& style, std::ostream& out) {
    std::vector<std::vector<std::string>> rows;
    bool leftOut = false;
    for (const Order& order : kOrders) {
        const auto solutions = SolutionsOf(order, Chain.RotationMatrix);
        for (std::size_t k = 0; k < 3; ++k) {
            rows.push_back({std::string(order.Name) + " " + order.Angles[k]});
            for (const Solution& solution : solutions) {
                leftOut |= !solution.GivesTheRotation;
                rows.back().push_back(
                    solution.GivesTheRotation ? ShownValue(ShownKind::Angle, solution.Angles_rad[k]) : "-");
            }
        }
    }
    TextColumns columns{{12, 16, 16}};
    for (const auto& row : rows) columns.MakeRoom(row);
    out << "\n" << style.Heading(columns.Line({"Rotation", "solution 1", "solution 2"})) << "  unit\n";
    for (const auto& row : rows)
        out << columns.Line(row) << "  " << style.Quiet(UnitOf(ShownKind::Angle)) << "\n";
    if (leftOut) out << style.Quiet("(-: gimbal lock, no angles were found)") << "\n";
}

void WriteQuaternion(const Style& style, std::ostream& out) {
    const QuaternionForm form = QuaternionOf(Chain.RotationMatrix);
    const std::string unit = "  " + style.Quiet(UnitOf(ShownKind::Angle));
    const auto angle = [&unit](const char* name, double value_rad) {
        return std::pair{std::vector<std::string>{name, ShownValue(ShownKind::Angle, value_rad)}, unit};
    };
    const auto number = [&form](const char* name, std::size_t entry) {
        return std::pair{std::vector<std::string>{name, Element(form.Record[entry])}, std::string()};
    };
    const std::array rows = {number("qw", 1),
                             number("qx", 2),
                             number("qy", 3),
                             number("qz", 4),
                             angle("angle", form.Record[5]),
                             number("axis x", 6),
                             number("axis y", 7),
                             number("axis z", 8),
                             angle("rot x", form.Angles[0]),
                             angle("rot y'", form.Angles[1]),
                             angle("rot z''", form.Angles[2])};
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

const std::array<double*, 3> kTranslation = {&Job.TraX, &Job.TraY, &Job.TraZ};

}  // namespace

ordered_json Rows(const Mat3& matrix) {
    ordered_json rows = ordered_json::array();
    for (int row = 1; row <= 3; ++row) rows.push_back({matrix(row, 1), matrix(row, 2), matrix(row, 3)});
    return rows;
}

void WriteDetails(const Style& style, std::ostream& out) {
    FitMatrix();
    WriteOrders(style, out);
    WriteQuaternion(style, out);
    WriteMatrix("Rotation matrix", CellsOf(Chain.RotationMatrix), style, out);
    WriteMatrix("Scale matrix", CellsOf(Chain.ScaleMatrix), style, out);
    WriteMatrix("Affine matrix", CellsOf(Chain.ShearMatrix), style, out);
    MatrixRows rows = CellsOf(Chain.RotationMatrix);
    for (std::size_t row = 0; row < 3; ++row) rows[row].push_back(ShownLength(*kTranslation[row]));
    rows.push_back({"", "0", "0", "0", "1"});
    WriteMatrix("Rotation and translation", rows, style, out);
}

ordered_json DetailsJson() {
    FitMatrix();
    const Mat3& R = Chain.RotationMatrix;
    ordered_json orders = ordered_json::array();
    for (const Order& order : kOrders) {
        ordered_json solutions = ordered_json::array();
        for (const Solution& solution : SolutionsOf(order, R))
            solutions.push_back(solution.GivesTheRotation ? ordered_json(solution.Angles_rad)
                                                          : ordered_json());
        orders.push_back({{"order", order.Name}, {"angles", order.Angles}, {"solutions_rad", solutions}});
    }
    const QuaternionForm form = QuaternionOf(R);
    const Column& q = form.Record;
    ordered_json homogeneous = Rows(R);
    for (std::size_t row = 0; row < 3; ++row) homogeneous[row].push_back(*kTranslation[row]);
    homogeneous.push_back({0.0, 0.0, 0.0, 1.0});
    return {{"rotationOrders", orders},
            {"quaternion", {{"w", q[1]}, {"x", q[2]}, {"y", q[3]}, {"z", q[4]}}},
            {"axisAngle", {{"angle_rad", q[5]}, {"axis", {q[6], q[7], q[8]}}}},
            {"anglesOfQuaternion_rad", form.Angles},
            {"rotationMatrix", Rows(R)},
            {"scaleMatrix", Rows(Chain.ScaleMatrix)},
            {"affineMatrix", Rows(Chain.ShearMatrix)},
            {"rotationAndTranslation", homogeneous}};
}
