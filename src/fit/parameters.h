// The parameters of the transformation X = T + R K S x, by number.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace corvinade::fit {

// Parameter numbers, the index of everything that is held by parameter; index 0 is unused.
enum Parameter : int {
    kTraX = 1,
    kTraY,
    kTraZ,
    kRotX,
    kRotY,
    kRotZ,
    kScaleX,
    kScaleY,
    kScaleZ,
    kScaleXYZ,
    kAngleXY,
    kAzimuth,
    kAngleZtoXY,
    kRDist,
    kRvecX,
    kRvecY,
    kRvecZ,
    kParameterEnd  // one past the last
};

// Values of all parameters: lengths in mm, angles in rad, scales as factors. As they begin they transform
// nothing. The scale of all axes stands beside those of the axes, which are what points go through.
struct Parameters {
    std::array<double, kParameterEnd> Values{0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1};

    double& operator[](int parameter) { return Values[static_cast<std::size_t>(parameter)]; }
    double operator[](int parameter) const { return Values[static_cast<std::size_t>(parameter)]; }
    bool operator==(const Parameters&) const = default;
};

enum class ParameterKind : std::uint8_t {
    Length,  // mm
    Angle,   // rad
    Scale    // a factor
};

// Of parameter 1 to 17.
ParameterKind KindOf(int parameter);

}  // namespace corvinade::fit
