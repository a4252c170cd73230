// The shape: a surface of revolution about the Z axis of the target system, as a table of profile points.
#pragma once

#include "fit/arrays.h"

namespace corvinade::fit {

// Is there enough of a shape to put points onto? Its table has the columns 1 radius and 2 height, mm, from
// row 1 on; two rows make the first segment.
bool ShapeServes(const Matrix& ParaboloidShape);

// The nearest point of the shape to (x, y, z), in the half plane of the point's meridian; mm.
//   ParaboloidShape  at least one row; rows are searched by halving, so radii must rise
//   distance         out, in the half plane, never below 0
// The foot is taken on the lines through the two segments that meet at the nearest row, and goes beyond
// their ends: so a point outside the table falls onto its last segment made longer.
void NearestShapePoint(double x, double y, double z, const Matrix& ParaboloidShape, double& X, double& Y,
                       double& Z, double& distance);

// The same, with what the surface is there.
struct ShapeFoot {
    Vec3 Place;           // mm
    double Distance = 0;  // mm, in the half plane
    // Of unit length. Between the middles of neighbouring segments it turns evenly, as that of the surface
    // does that the table stands for.
    Vec3 Normal;
    Vec3 Facet;  // the normal of the segment that the foot is on; the point is along it from the foot
    // The same of a surface that bends along the segment as the kinks around say where they are alike, and
    // how far that lies beside the segment, along Facet, mm. A corner bends nothing.
    Vec3 Bend;
    double Bulge = 0;
    double Kink = 0;      // between the two segments that are nearest to the foot, rad
    bool Beyond = false;  // the foot is past an end of the table: on its last segment made longer, or in the
                          // hole of a table that does not begin at the axis
};
ShapeFoot NearestShapeFoot(double x, double y, double z, const Matrix& ParaboloidShape);

}  // namespace corvinade::fit
