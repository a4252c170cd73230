// The Euler-angle forms of a rotation and their decomposition into angles.
#include "fit/rotations.h"

#include <cmath>

#include "fit/angles.h"
#include "fit/chain.h"
#include "fit/matrix.h"

namespace corvinade::fit {

namespace {

// What every quotient adds to its denominator.
constexpr double kTiny = 1e-10 / 10000;

void SetRows(Mat3& R, const Vec3& row1, const Vec3& row2, const Vec3& row3) {
    for (int j = 1; j <= 3; ++j) {
        R(1, j) = row1(j);
        R(2, j) = row2(j);
        R(3, j) = row3(j);
    }
}

void MatrixYXZ(const Circle& A, const Circle& B, const Circle& C, Mat3& R) {
    SetRows(R, {B.Cos * C.Cos - A.Sin * B.Sin * C.Sin, B.Cos * C.Sin + A.Sin * B.Sin * C.Cos, -B.Sin * A.Cos},
            {-A.Cos * C.Sin, A.Cos * C.Cos, A.Sin},
            {B.Sin * C.Cos + B.Cos * A.Sin * C.Sin, B.Sin * C.Sin - B.Cos * A.Sin * C.Cos, B.Cos * A.Cos});
}

void MatrixZYX(const Circle& A, const Circle& B, const Circle& C, Mat3& R) {
    SetRows(R, {B.Cos * C.Cos, B.Cos * C.Sin, -B.Sin},
            {A.Sin * B.Sin * C.Cos - A.Cos * C.Sin, A.Cos * C.Cos + A.Sin * B.Sin * C.Sin, A.Sin * B.Cos},
            {A.Sin * C.Sin + A.Cos * B.Sin * C.Cos, A.Cos * B.Sin * C.Sin - A.Sin * C.Cos, A.Cos * B.Cos});
}

void MatrixZYZ(const Circle& A, const Circle& B, const Circle& C, Mat3& R) {
    SetRows(R, {C.Cos * B.Cos * A.Cos - A.Sin * C.Sin, C.Cos * B.Cos * A.Sin + A.Cos * C.Sin, -C.Cos * B.Sin},
            {-C.Sin * B.Cos * A.Cos - C.Cos * A.Sin, C.Cos * A.Cos - C.Sin * B.Cos * A.Sin, C.Sin * B.Sin},
            {B.Sin * A.Cos, B.Sin * A.Sin, B.Cos});
}

void MatrixZXZ(const Circle& A, const Circle& B, const Circle& C, Mat3& R) {
    SetRows(R, {C.Cos * A.Cos - C.Sin * A.Sin * B.Cos, C.Cos * A.Sin + A.Cos * C.Sin * B.Cos, C.Sin * B.Sin},
            {-C.Sin * A.Cos - C.Cos * B.Cos * A.Sin, C.Cos * B.Cos * A.Cos - C.Sin * A.Sin, C.Cos * B.Sin},
            {B.Sin * A.Sin, -B.Sin * A.Cos, B.Cos});
}

// The two angles that a matrix element leaves open.
struct Candidates {
    double First, Second;
};
Candidates BySine(double u) {
    return {WrapAngle(u), WrapAngle(kLibraryPi - u)};
}
Candidates ByCosine(double u) {
    return {WrapAngle(u), WrapAngle(-u)};
}
Candidates ByTangent(double y, double x) {
    const double u = std::atan(y / (x + kTiny));
    return {WrapAngle(u), WrapAngle(u + kLibraryPi)};
}

using Form = void (*)(const Circle&, const Circle&, const Circle&, Mat3&);

double Difference(const Mat3& A, const Mat3& B) {
    double sum = 0;
    for (int i = 1; i <= 3; ++i)
        for (int j = 1; j <= 3; ++j) sum += std::fabs(A(i, j) - B(i, j));
    return sum;
}

void Decompose(const Mat3& M, Form form, const Candidates& a, const Candidates& b, const Candidates& c,
               Vec3& first, Vec3& second) {
    const Circle circleA[] = {Circle(a.First), Circle(a.Second)};
    const Circle circleB[] = {Circle(b.First), Circle(b.Second)};
    const Circle circleC[] = {Circle(c.First), Circle(c.Second)};
    double bestFirst = 1e9, bestSecond = 1e9;
    for (const int i : {0, 1})
        for (const int j : {0, 1})
            for (const int k : {0, 1}) {
                Mat3 R;
                form(circleA[i], circleB[j], circleC[k], R);
                const double error = Difference(R, M);
                const Vec3 angles(i == 0 ? a.First : a.Second, j == 0 ? b.First : b.Second,
                                  k == 0 ? c.First : c.Second);
                // The slot that holds the worse error is the one replaced.
                if (bestFirst <= bestSecond) {
                    if (error < bestSecond) {
                        second = angles;
                        bestSecond = error;
                    }
                } else if (error < bestFirst) {
                    first = angles;
                    bestFirst = error;
                }
            }
}

}  // namespace

void RotMatrixYXZ(double a, double b, double c, Mat3& R) {
    MatrixYXZ(Circle(a), Circle(b), Circle(c), R);
}

void RotMatrixZYX(double a, double b, double c, Mat3& R) {
    MatrixZYX(Circle(a), Circle(b), Circle(c), R);
}

void RotMatrixZYZ(double a, double b, double c, Mat3& R) {
    MatrixZYZ(Circle(a), Circle(b), Circle(c), R);
}

void RotMatrixZXZ(double a, double b, double c, Mat3& R) {
    MatrixZXZ(Circle(a), Circle(b), Circle(c), R);
}

void EulerFromMatrixXYZ(const Mat3& M, Vec3& first, Vec3& second) {
    Decompose(M, static_cast<Form>(RotMatrixXYZ), ByTangent(-M(3, 2), M(3, 3)), BySine(ArcSin(M(3, 1))),
              ByTangent(-M(2, 1), M(1, 1)), first, second);
}

void EulerFromMatrixYXZ(const Mat3& M, Vec3& first, Vec3& second) {
    Decompose(M, MatrixYXZ, BySine(ArcSin(M(2, 3))), ByTangent(-M(1, 3), M(3, 3)),
              ByTangent(-M(2, 1), M(2, 2)), first, second);
}

void EulerFromMatrixZYX(const Mat3& M, Vec3& first, Vec3& second) {
    Decompose(M, MatrixZYX, ByTangent(M(2, 3), M(3, 3)), BySine(-ArcSin(M(1, 3))),
              ByTangent(M(1, 2), M(1, 1)), first, second);
}

void EulerFromMatrixZYZ(const Mat3& M, Vec3& first, Vec3& second) {
    Decompose(M, MatrixZYZ, ByTangent(M(3, 2), M(3, 1)), ByCosine(ArcCos(M(3, 3))),
              ByTangent(-M(2, 3), M(1, 3)), first, second);
}

void EulerFromMatrixZXZ(const Mat3& M, Vec3& first, Vec3& second) {
    Decompose(M, MatrixZXZ, ByTangent(-M(3, 1), M(3, 2)), ByCosine(ArcCos(M(3, 3))),
              ByTangent(M(1, 3), M(2, 3)), first, second);
}

Mat3 InverseRotation(const Mat3& R) {
    Mat3 inverse, transpose;
    MatrixInverse(R, 3, 3, inverse);
    MatrixTranspose(R, 3, 3, transpose);
    double difference = 0;
    bool equal = false;
    MatrixCompare(inverse, transpose, 1e-9, difference, equal);
    return equal ? inverse : transpose;
}

Mat3 RotationAbout(const Vec3& w) {
    const double angle = std::sqrt(w(1) * w(1) + w(2) * w(2) + w(3) * w(3));
    const double a = angle < 1e-8 ? 1 : std::sin(angle) / angle;
    const double half = std::sin(angle / 2);
    const double b = angle < 1e-8 ? 0.5 : 2 * half * half / (angle * angle);
    Mat3 W;
    W(1, 2) = -w(3);
    W(1, 3) = w(2);
    W(2, 1) = w(3);
    W(2, 3) = -w(1);
    W(3, 1) = -w(2);
    W(3, 2) = w(1);
    const Mat3 square = MatrixProduct(W, W);
    Mat3 R;
    for (int row = 1; row <= 3; ++row)
        for (int column = 1; column <= 3; ++column)
            R(row, column) = (row == column ? 1 : 0) + a * W(row, column) + b * square(row, column);
    return R;
}

Mat3 Turned(const Vec3& w, const Mat3& M) {
    Mat3 D;
    for (int column = 1; column <= 3; ++column) {
        D(1, column) = w(2) * M(3, column) - w(3) * M(2, column);
        D(2, column) = w(3) * M(1, column) - w(1) * M(3, column);
        D(3, column) = w(1) * M(2, column) - w(2) * M(1, column);
    }
    return D;
}

}  // namespace corvinade::fit
