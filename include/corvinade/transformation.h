// Transformations of space as values: the 4 by 4 matrix, the parameters it is made of, quaternions and
// angles. Lengths in mm, angles in rad, scales as factors. Nothing here keeps state: all may be called from
// any thread.
#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "corvinade/api.h"

namespace corvinade {

// X = M x + t in homogeneous form, row by row: elements 0 to 3 are m11 m12 m13 tx, the last row is 0 0 0 1.
using Matrix4 = std::array<double, 16>;

// The chain of the program, X = T + R K S x, with R = Rz(-c) Ry(-b) Rx(-a) and Rx, Ry, Rz the rotations that
// turn a point about an axis: R turns coordinates into a frame that is turned by +a, +b, +c. K has the unit
// vectors of an oblique frame as columns: x as it is, y leaning from the right angle by Shear[0], z leaning
// from the plane's normal by Shear[2] towards the direction Shear[1]. S is diagonal.
struct Chain {
    std::array<double, 3> Translation{};  // x y z, mm
    std::array<double, 3> Rotation{};     // a b c: about x, y, z, rad
    std::array<double, 3> Scale{1, 1, 1};
    std::array<double, 3> Shear{};  // xy, azimuth, z to xy, rad
};

// A unit quaternion of the active rotation R: a point is turned by q p q*.
struct Quaternion {
    double W = 1, X = 0, Y = 0, Z = 0;
};

CORVINADE_API Matrix4 Identity();

CORVINADE_API Matrix4 MatrixOf(const Chain& chain);

// The chain of a matrix: R by Gram and Schmidt on its columns, K S the triangle that is left. A mirrored
// matrix gets a negative scale of z. Of a matrix whose columns lie in a plane it is one of many. Throws
// InvalidInput where a number is infinite or none, or the last row is not 0 0 0 1.
CORVINADE_API Chain ChainOf(const Matrix4& matrix);

// The rotation R of a chain as a quaternion, by Shepperd's rule (S. W. Shepperd, Quaternion from rotation
// matrix, Journal of Guidance and Control 1, 1978); W is not below 0.
CORVINADE_API Quaternion QuaternionOf(const Chain& chain);

// The angles a b c of a quaternion; it need not be of unit length. Throws InvalidInput where it is 0 or a
// number is infinite or none.
CORVINADE_API std::array<double, 3> AnglesOf(const Quaternion& quaternion);

// The transformation back: M^-1 X - M^-1 t. Throws InvalidInput as ChainOf does, and where M has no inverse.
CORVINADE_API Matrix4 Invert(const Matrix4& matrix);

// First `first`, then `then`.
CORVINADE_API Matrix4 Compose(const Matrix4& then, const Matrix4& first);

// Transforms points x y z x y z ..., mm. `to` is as long and may be the same memory. Throws InvalidInput
// where the lengths differ or are no multiple of three.
CORVINADE_API void Apply(const Matrix4& matrix, std::span<const double> from, std::span<double> to);

// The forms that a transformation is handed on in, as `corvinade-cli export --as` calls them: "matrix",
// "ros", "kuka-base", "fanuc-uframe", "abb-wobj", ...
CORVINADE_API std::vector<std::string> ExportForms();

// The transformation in one of them, ending with a line end; `name` goes into declarations. Numbers have so
// many digits that it comes back to 1e-9 mm at 10 m. Throws InvalidInput for another name, and where the form
// has no place for a scale, a shear or a mirror.
CORVINADE_API std::string Export(const Matrix4& matrix, std::string_view form, std::string_view name = {});

// The transformation back from such a text; of a robot's tool, the tool's. Blanks and line ends may stand
// otherwise than Export has them, numbers as they like, names too. Throws InvalidInput, with line and what
// stands there, where the text is no such form, says more than the form does (an object frame within a work
// object), its quaternion has not the length 1, or the matrix another last row than 0 0 0 1 or no inverse.
CORVINADE_API Matrix4 Import(std::string_view text, std::string_view form);

}  // namespace corvinade
