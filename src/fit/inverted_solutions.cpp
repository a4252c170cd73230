// Parameters of the model's own form that make up a given matrix.
#include "fit/inverted_solutions.h"

#include <array>
#include <cmath>

#include "fit/angles.h"
#include "fit/chain.h"
#include "fit/combination_search.h"
#include "fit/matrix.h"
#include "fit/rotations.h"
#include "fit/sort_table.h"
#include "fit/vector.h"

namespace corvinade::fit {

namespace {

constexpr double kProbe_mm = 1000;

// The images of the three axes, each kProbe_mm long.
std::array<Vec3, 3> ImagesOfAxes(const Mat3& W) {
    std::array<Vec3, 3> images;
    for (int j = 1; j <= 3; ++j)
        for (int i = 1; i <= 3; ++i) images[static_cast<std::size_t>(j - 1)](i) = W(i, j) * kProbe_mm;
    return images;
}

Vec3 ScaleEstimates(const std::array<Vec3, 3>& images) {
    Vec3 scale;
    for (int j = 1; j <= 3; ++j) {
        double length = 0;
        VecLength(images[static_cast<std::size_t>(j - 1)], length);
        scale(j) = length / kProbe_mm;
    }
    return scale;
}

// How far the images of the first two axes are from standing at a right angle.
double ShearEstimate(const std::array<Vec3, 3>& images) {
    double product = 0, length1 = 0, length2 = 0;
    VecDot(images[0], images[1], product);
    VecLength(images[0], length1);
    VecLength(images[1], length2);
    return kPi / 2 - ArcCos(product / (length1 * length2));
}

// Two candidates about z and y, and for each of the latter two about x: from the first column and the last
// row of R K S. What an element divided by 0 gives is no number or has no angle; the search copes with it.
void RotationCandidates(const Mat3& W, double xy, Candidates& c) {
    const double z = WrapAngle(std::atan(-W(2, 1) / W(1, 1)));
    c.RotZ = {0, z, WrapAngle(z + kPi)};
    const double y = WrapAngle(ArcSin(W(3, 1) / c.Scale(1)));
    c.RotY = {0, y, WrapAngle(kPi - y)};
    c.RotX = {0};
    for (const double ry : {c.RotY[1], c.RotY[2]}) {
        const double t = -(W(3, 2) - std::sin(ry) * std::sin(xy) * c.Scale(2)) /
                         (std::cos(ry) * std::cos(xy) * c.Scale(2));
        const double x = ArcSin(t);
        c.RotX.push_back(x);
        c.RotX.push_back(WrapAngle(kPi - x));
    }
}

// What remains of W when a candidate's rotation and the scales are taken off is its shear.
void ShearCandidates(const Mat3& W, double perRad, Candidates& c) {
    Mat3 D, inverseD;
    for (int j = 1; j <= 3; ++j) D(j, j) = c.Scale(j);
    MatrixInverse(D, 3, 3, inverseD);
    c.AngleXY = c.Azimuth = c.AngleZtoXY = {0};
    for (std::size_t x = 1; x < c.RotX.size(); ++x)
        for (std::size_t y = 1; y < c.RotY.size(); ++y)
            for (std::size_t z = 1; z < c.RotZ.size(); ++z) {
                Mat3 R;
                RotMatrixXYZ(c.RotX[x], c.RotY[y], c.RotZ[z], R);
                Vec3 first, second;
                DecomposeShear(MatrixProduct(MatrixProduct(InverseRotation(R), W), inverseD), perRad, first,
                               second);
                for (const Vec3& triple : {first, second}) {
                    c.AngleXY.push_back(triple(1));
                    c.Azimuth.push_back(triple(2));
                    c.AngleZtoXY.push_back(triple(3));
                }
            }
    for (Column* list : {&c.AngleXY, &c.Azimuth, &c.AngleZtoXY}) ArrayRemoveNearDuplicates(*list);
}

}  // namespace

void DecomposeShear(const Mat3& K, double perRad, Vec3& first, Vec3& second) {
    const double xy = ChooseAngleBySinCos(K(1, 2), K(2, 2), perRad);
    const double u = WrapAngle(ArcCos(K(3, 3)));
    const auto triple = [&](double zt) -> Vec3 {
        if (zt == 0) return {xy, 0, zt};  // the direction of a lean of 0 is free
        const double s = std::sin(zt);
        return {xy, ChooseAngleBySinCos(K(2, 3) / s, K(1, 3) / s, perRad), zt};
    };
    first = triple(u);
    second = triple(WrapAngle(-u));
}

Matrix InvertedSolutions(const Mat3& W, bool anyShear, bool anyScale, double perRad) {
    const std::array<Vec3, 3> images = ImagesOfAxes(W);
    Candidates c;
    c.Scale = anyScale ? ScaleEstimates(images) : Vec3(1, 1, 1);
    RotationCandidates(W, anyShear ? ShearEstimate(images) : 0, c);
    c.AngleXY = c.Azimuth = c.AngleZtoXY = {0, 0};
    if (anyShear) ShearCandidates(W, perRad, c);

    Matrix rows;
    SearchCombinations(W, c, rows);
    if (rows.Rows < 1) return {};
    SortTable(rows, std::array{4, 3, 5});
    Matrix list(rows.Rows, 9);
    for (int row = 1; row <= rows.Rows; ++row)
        for (int k = 1; k <= 3; ++k) {
            list(row, k) = WrapAngle(rows(row, k));
            list(row, 3 + k) = c.Scale(k);
            list(row, 6 + k) = WrapAngle(rows(row, 3 + k));
        }
    return list;
}

}  // namespace corvinade::fit
