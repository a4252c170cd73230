// The nearest point of a shape.
#include "fit/shape.h"

#include <algorithm>
#include <cmath>

#include "fit/angles.h"
#include "fit/chain.h"
#include "fit/require.h"
#include "fit/vector.h"

namespace corvinade::fit {

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
    int Row;  // the segment begins there
};

Foot FootOnSegment(const HalfPlane& p, int row) {
    const Vec3 a = p.At(row), b = p.At(row + 1), point(p.r, p.z, 0);
    Vec3 along;
    VecSub(b, a, along);
    Foot foot{{}, 0, row};
    LinePointFoot(a, along, point, foot.Place);
    foot.Distance = LinePointDistance(a, along, point);
    return foot;
}

Foot NearestFoot(const HalfPlane& p, int row) {
    if (p.Rows() == 1) return {p.At(1), std::sqrt(p.SquareTo(1)), 1};
    if (row == 1) return FootOnSegment(p, 1);
    const Foot before = FootOnSegment(p, row - 1);
    if (row == p.Rows()) return before;
    const Foot behind = FootOnSegment(p, row);
    return behind.Distance < before.Distance ? behind : before;
}

// A segment's length and its direction in the half plane.
struct Segment {
    double Length, Angle;
};

// Segments before the first and behind the last go on as the table does; at the axis the shape begins to
// fall as it rises.
Segment SegmentAt(const HalfPlane& p, int row) {
    const auto of = [&p](int i) {
        const double dr = p.Radius(i + 1) - p.Radius(i), dz = p.Shape(i + 1, 2) - p.Shape(i, 2);
        return Segment{std::hypot(dr, dz), std::atan2(dz, dr)};
    };
    const int last = p.Rows() - 1;
    if (row >= 1 && row <= last) return of(row);
    const int end = row < 1 ? 1 : last;
    const Segment at = of(end);
    if (row < 1 && p.Radius(1) == 0) return {at.Length, -at.Angle};
    if (last == 1) return at;
    return {at.Length, at.Angle + std::remainder(at.Angle - of(row < 1 ? 2 : last - 1).Angle, 2 * kPi)};
}

// Of two curvatures the lesser one, 0 where they bend to different sides.
double LesserCurvature(double a, double b) {
    if (!(a * b > 0)) return 0;
    return std::fabs(a) < std::fabs(b) ? a : b;
}

// Of the surface that a segment stands for. The kinks at both ends of a segment are those of a curved surface
// where they are alike; a kink at one end alone is a corner. At the ends of the table the next kink inwards
// stands for the missing one.
double CurvatureAt(const HalfPlane& p, int row) {
    const int last = p.Rows() - 1;
    const auto kink = [&p, last](int i) {  // between segments i and i + 1
        if (i < 1 || i >= last) return 0.0;
        const Segment a = SegmentAt(p, i), b = SegmentAt(p, i + 1);
        return std::remainder(b.Angle - a.Angle, 2 * kPi) / ((a.Length + b.Length) / 2);
    };
    return LesserCurvature(kink(row > 1 ? row - 1 : row + 1), kink(row < last ? row : row - 2));
}

// The direction of the surface at a foot, and the kink that is nearest to it.
void TakeDirection(const HalfPlane& p, const Foot& foot, double& angle, double& kink) {
    const Segment here = SegmentAt(p, foot.Row);
    const Vec3 begin = p.At(foot.Row);
    const double along =
        (foot.Place(1) - begin(1)) * std::cos(here.Angle) + (foot.Place(2) - begin(2)) * std::sin(here.Angle);
    const double fromMiddle = along - here.Length / 2;
    const Segment next = SegmentAt(p, fromMiddle < 0 ? foot.Row - 1 : foot.Row + 1);
    const double turn = std::remainder(next.Angle - here.Angle, 2 * kPi);
    const double share = std::fabs(fromMiddle) / ((here.Length + next.Length) / 2);
    angle = here.Angle;
    kink = std::fabs(turn);
    if (std::fabs(fromMiddle) <= here.Length / 2) angle += share * turn;
}

// The surface that bends as its curvature says lies beside the segment by half of that times the lengths on
// both sides of the foot.
void TakeBend(const HalfPlane& p, const Foot& foot, double& facet, double& bend, double& bulge) {
    const Segment here = SegmentAt(p, foot.Row);
    const Vec3 begin = p.At(foot.Row);
    const double along =
        (foot.Place(1) - begin(1)) * std::cos(here.Angle) + (foot.Place(2) - begin(2)) * std::sin(here.Angle);
    facet = bend = here.Angle;
    bulge = 0;
    if (!(along >= 0 && along <= here.Length)) return;
    const double curvature = CurvatureAt(p, foot.Row);
    bend += curvature * (along - here.Length / 2);
    bulge = -curvature * along * (here.Length - along) / 2;
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

ShapeFoot NearestShapeFoot(double x, double y, double z, const Matrix& ParaboloidShape) {
    Require(ShapeServes(ParaboloidShape));
    const HalfPlane p{ParaboloidShape, Hypot2(x, y), z};
    const Circle phi(AzimuthAngle(x, y));
    const Foot foot = NearestFoot(p, NearestRow(p, RowOfRadius(p)));
    double angle = 0;
    ShapeFoot found{.Place = {foot.Place(1) * phi.Cos, foot.Place(1) * phi.Sin, foot.Place(2)},
                    .Distance = foot.Distance};
    TakeDirection(p, foot, angle, found.Kink);
    double facet = 0, bend = 0;
    TakeBend(p, foot, facet, bend, found.Bulge);
    const auto normal = [&phi](double direction) {
        const Circle way(direction);
        return Vec3(-way.Sin * phi.Cos, -way.Sin * phi.Sin, way.Cos);
    };
    found.Normal = normal(angle);
    found.Facet = normal(facet);
    found.Bend = normal(bend);
    const double first = p.Radius(1), last = p.Radius(p.Rows());
    found.Beyond = foot.Place(1) > last || (first > 0 && foot.Place(1) < first);
    return found;
}

}  // namespace corvinade::fit
