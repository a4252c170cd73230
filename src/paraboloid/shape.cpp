// The nearest point of a shape.
#include "paraboloid/shape.h"

#include <algorithm>
#include <cmath>

#include "core/job.h"
#include "core/platform.h"
#include "core/refresh.h"
#include "core/require.h"
#include "core/run.h"
#include "engine/angles.h"
#include "engine/vector.h"

namespace {

// The profile and the point in its half plane.
struct HalfPlane {
    const Matrix& Shape;
    double r, z;

    int Rows() const { return Shape.Rows; }
    double Radius(int row) const { return Shape(row, 1); }
    Vec3 At(int row) const { return {Shape(row, 1), Shape(row, 2), 0}; }
    double SquareTo(int row) const {
        const double dr = r - Shape(row, 1), dz = z - Shape(row, 2);
        return dr * dr + dz * dz;
    }
};

// Search by halving: ends near the row of the point's radius.
int RowOfRadius(const HalfPlane& p) {
    const int m = p.Rows();
    int i = std::max(1, m / 2);
    for (int step = m / 4; step >= 1; step /= 2)
        i = p.Radius(i) > p.r ? std::max(1, i - step) : std::min(m, i + step);
    return i;
}

// From row i on the way along which the rows come nearer, to its end.
int NearestRow(const HalfPlane& p, int i) {
    double here = p.SquareTo(i);
    for (const int way : {-1, 1})
        while (i + way >= 1 && i + way <= p.Rows()) {
            const double there = p.SquareTo(i + way);
            if (!(there < here)) break;
            here = there;
            i += way;
        }
    return i;
}

struct Foot {
    Vec3 Place;
    double Distance;
};

Foot FootOnSegment(const HalfPlane& p, int row) {
    const Vec3 a = p.At(row), b = p.At(row + 1), point(p.r, p.z, 0);
    Vec3 along;
    VecSub(b, a, along);
    Foot foot;
    LinePointFoot(a, along, point, foot.Place);
    foot.Distance = LinePointDistance(a, along, point);
    return foot;
}

Foot NearestFoot(const HalfPlane& p, int row) {
    if (p.Rows() == 1) return {p.At(1), std::sqrt(p.SquareTo(1))};
    if (row == 1) return FootOnSegment(p, 1);
    const Foot before = FootOnSegment(p, row - 1);
    if (row == p.Rows()) return before;
    const Foot behind = FootOnSegment(p, row);
    return behind.Distance < before.Distance ? behind : before;
}

}  // namespace

bool ShapeServes(const Matrix& ParaboloidShape) {
    return ParaboloidShape.Rows >= 2 && ParaboloidShape.Columns >= 2;
}

void NearestShapePoint(double x, double y, double z, const Matrix& ParaboloidShape, double& X, double& Y,
                       double& Z, double& distance) {
    Require(ParaboloidShape.Rows >= 1 && ParaboloidShape.Columns >= 2);
    const HalfPlane p{ParaboloidShape, Hypot2(x, y), z};
    const double phi = AzimuthAngle(x, y);
    const Foot foot = NearestFoot(p, NearestRow(p, RowOfRadius(p)));
    X = foot.Place(1) * std::cos(phi);
    Y = foot.Place(1) * std::sin(phi);
    Z = foot.Place(2);
    distance = foot.Distance;
}

bool JobHasShape() {
    if (ShapeServes(Job.ParaboloidShape)) return true;
    ShowMessage(
        "There is no shape of a paraboloid to fit to. Please import a shape file with at least 2 rows.");
    return false;
}
