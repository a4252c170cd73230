// The shape: a surface of revolution about the Z axis of the target system, as a table of profile points.
#pragma once

#include "core/arrays.h"

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

// True where the job has a shape that serves; otherwise false, and a message says what is missing.
bool JobHasShape();
