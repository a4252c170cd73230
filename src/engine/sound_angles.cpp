// Angles that give their rotation back.
#include "engine/sound_angles.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "core/notes.h"
#include "engine/transform.h"
#include "fit/matrix.h"
#include "fit/quaternion.h"
#include "fit/rotations.h"
#include "fit/vector.h"

namespace corvinade::engine {

namespace {

struct OrderEntry {
    const char* Axes;
    void (*Decompose)(const Mat3& M, Vec3& first, Vec3& second);
    std::array<int, 3> Angles;  // which angle of the decomposition each rotation turns by
};

// Where no axis comes twice, the decompositions give their angles by axis and not by rotation.
const std::array<OrderEntry, 5> kOrders = {{{"XYZ", EulerFromMatrixXYZ, {1, 2, 3}},
                                            {"ZYX", EulerFromMatrixZYX, {3, 2, 1}},
                                            {"ZXY", EulerFromMatrixYXZ, {3, 1, 2}},
                                            {"ZXZ", EulerFromMatrixZXZ, {1, 2, 3}},
                                            {"ZYZ", EulerFromMatrixZYZ, {1, 2, 3}}}};

const OrderEntry& EntryOf(RotationOrder order) {
    return kOrders[static_cast<std::size_t>(order)];
}

constexpr double kRounding = 1e-12;

int AxisOf(RotationOrder order, std::size_t rotation) {
    return EntryOf(order).Axes[rotation] - 'X' + 1;
}
int Next(int axis) {
    return axis % 3 + 1;
}

// The transpose of the rotation of points by `angle` about an axis.
Mat3 Passive(int axis, double angle) {
    const int j = Next(axis), k = Next(j);
    Mat3 E;
    E(axis, axis) = 1;
    E(j, j) = E(k, k) = std::cos(angle);
    E(j, k) = std::sin(angle);
    E(k, j) = -std::sin(angle);
    return E;
}

bool AreSame(const Mat3& A, const Mat3& B) {
    for (int i = 1; i <= 3; ++i)
        for (int j = 1; j <= 3; ++j)
            if (!(std::fabs(A(i, j) - B(i, j)) <= kSameMatrix)) return false;
    return true;
}

double Wrapped(double angle) {
    return std::remainder(angle, 2 * std::numbers::pi);
}

// The angle t about the third axis of R = Passive(third, t) N. N is made by the other two rotations, and
// turns the first axis about the second one: so column `first` of N has nothing along the second axis.
double ThirdAngle(const Mat3& R, int first, int second, int third) {
    const int across = 6 - third - second;
    const double sign = second == Next(third) ? 1 : -1;
    // Where the axes fall together what is left is rounding, and any angle will do.
    if (Hypot2(R(second, first), R(across, first)) < kRounding) return 0;
    return std::atan2(sign * R(second, first), R(across, first));
}

// One set of angles; with `turned` the other one.
std::array<double, 3> AnglesOfMatrix(RotationOrder order, const Mat3& R, bool turned) {
    const int first = AxisOf(order, 0), second = AxisOf(order, 1), third = AxisOf(order, 2);
    std::array<double, 3> t{};
    t[2] = ThirdAngle(R, first, second, third) + (turned ? std::numbers::pi : 0);
    const Mat3 rest = MatrixProduct(Passive(third, -t[2]), R);  // Passive(second) Passive(first)
    // The column of the first axis is that of Passive(second), and the row of the second that of
    // Passive(first).
    const int j = Next(second), k = Next(j);
    t[1] = first == j ? std::atan2(-rest(k, j), rest(j, j)) : std::atan2(rest(j, k), rest(k, k));
    const int m = Next(first), n = Next(m);
    t[0] = second == m ? std::atan2(rest(m, n), rest(m, m)) : std::atan2(-rest(n, m), rest(n, n));
    for (double& angle : t) angle = Wrapped(angle);
    return t;
}

// The set that is farther from the given one.
std::array<double, 3> OtherThan(const std::array<double, 3>& set, const RotationSolutions& sets) {
    const auto distance = [&set](const std::array<double, 3>& other) {
        double sum = 0;
        for (std::size_t k = 0; k < 3; ++k) sum += std::fabs(Wrapped(other[k] - set[k]));
        return sum;
    };
    return distance(sets.First) > distance(sets.Second) ? sets.First : sets.Second;
}

Mat3 OfAxisAngle(const Vec3& axis, double angle) {
    Mat3 R;
    const double s = std::sin(angle), c = std::cos(angle);
    for (int i = 1; i <= 3; ++i) {
        const int j = Next(i), k = Next(j);
        for (int m = 1; m <= 3; ++m) R(i, m) = (1 - c) * axis(i) * axis(m);
        R(i, i) += c;
        R(i, j) -= s * axis(k);
        R(i, k) += s * axis(j);
    }
    return R;
}

}  // namespace

const char* AxesOf(RotationOrder order) {
    return EntryOf(order).Axes;
}

Mat3 RotationOf(RotationOrder order, const std::array<double, 3>& angles) {
    Mat3 R = Passive(AxisOf(order, 0), angles[0]);
    for (const std::size_t k : {1U, 2U}) R = MatrixProduct(Passive(AxisOf(order, k), angles[k]), R);
    return R;
}

RotationSolutions SolutionsOfMatrix(RotationOrder order, const Mat3& R) {
    return {AnglesOfMatrix(order, R, false), AnglesOfMatrix(order, R, true)};
}

bool SoundSolutions(RotationOrder order, const Mat3& R, RotationSolutions& solutions) {
    // The decompositions pick the candidates that come nearest, and from what is no number none ever does.
    if (!IsFinite(R)) {
        solutions.First.fill(std::numeric_limits<double>::quiet_NaN());
        solutions.Second = solutions.First;
        return false;
    }
    const OrderEntry& entry = EntryOf(order);
    Vec3 first, second;
    entry.Decompose(R, first, second);
    for (std::size_t k = 0; k < 3; ++k) {
        solutions.First[k] = first(entry.Angles[k]);
        solutions.Second[k] = second(entry.Angles[k]);
    }
    const bool firstIs = AreSame(RotationOf(order, solutions.First), R);
    const bool secondIs = AreSame(RotationOf(order, solutions.Second), R);
    if (firstIs && secondIs) return false;
    const RotationSolutions matrix = SolutionsOfMatrix(order, R);
    if (!firstIs && !secondIs) {
        solutions = matrix;
    } else if (firstIs) {
        solutions.Second = OtherThan(solutions.First, matrix);
    } else {
        solutions.First = OtherThan(solutions.Second, matrix);
    }
    return true;
}

QuaternionForms SoundQuaternionForms(const Mat3& R, const Vec3& own) {
    QuaternionForms forms;
    Column record(9);
    MatrixToQuaternion(R, record, forms.Angles(1), forms.Angles(2), forms.Angles(3));
    for (std::size_t k = 0; k < 4; ++k) forms.Quaternion[k] = record[k + 1];
    forms.Angle = record[5];
    forms.Axis = Vec3(record[6], record[7], record[8]);
    if (!IsFinite(R)) return forms;
    Mat3 rebuilt;
    RotMatrixXYZ(forms.Angles(1), forms.Angles(2), forms.Angles(3), rebuilt);
    if (!AreSame(rebuilt, R)) {
        forms.FromMatrix = true;
        for (int k = 1; k <= 3; ++k) forms.Angles(k) = Wrapped(own(k));
    }
    if (!AreSame(OfAxisAngle(forms.Axis, forms.Angle), R)) {
        const auto& q = forms.Quaternion;
        const double sine = Hypot3(q[1], q[2], q[3]);
        forms.FromMatrix = true;
        forms.Angle = 2 * std::atan2(sine, q[0]);
        if (sine > 0) forms.Axis = Vec3(q[1] / sine, q[2] / sine, q[3] / sine);
    }
    return forms;
}

void NoteMatrixAngles() {
    const auto same = [](const Note& note) {
        return note.Code == NoteCode::MatrixAngles && note.File.empty();
    };
    if (std::any_of(Notes.List.begin(), Notes.List.end(), same)) return;
    AddNote(
        NoteCode::MatrixAngles,
        "A formula for the angles does not give the rotation back, since two of its axes fall together or it "
        "hardly turns; they were taken from the rotation matrix");
}

}  // namespace corvinade::engine
