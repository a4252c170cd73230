// The sum of squares of the tool model as a function of M = R K S alone.
#pragma once

#include <array>
#include <vector>

#include "fit/design.h"
#include "fit/moments.h"

namespace corvinade::fit {

// The tool model T + M x + G tool - q is linear in M, in the translation T and in the tool vector. So for any
// M the best T and tool follow in closed form, and the sum that is left is a square form of the nine elements
// of M. It holds all that points and poses say, be they ten or a million.
class ToolForm {
public:
    // A direction of the flange: by how much poses tell the tool vector's part along it from a translation,
    // root mean square of |G w - its mean|, no dimension: about the angle, rad, by which poses turn it.
    struct Direction {
        Vec3 w;  // a unit vector
        double Turned = 0;
    };

    //   moments  of the tool model, with weights 0 and 1; taken at parameters that keep all held values
    //   still    unit vectors at right angles to each other, along which the tool vector stays as it is there
    ToolForm(const FitModel& model, const GatheredPoints& points, const PointMoments& moments,
             const std::vector<Vec3>& still = {});

    // Sum of squares at the moments less the least one of M, mm^2.
    double Gain(const Mat3& M) const;
    double RoundingNearby() const;  // of the gains of changes as small as the last digits of M
    // The best tool vector of M, and the image of the start centre less the target centre; mm.
    Vec3 ToolOf(const Mat3& M) const;
    Vec3 ShiftOf(const Mat3& M) const;

    // The M whose sum is least of all matrices; where several are that the nearest one to that of the
    // moments. No M has a sum that is not above its own by Stiffness times the square of their distance.
    struct LeastOfAll {
        Mat3 M;
        double Gain = 0, Stiffness = 0;  // mm^2
    };
    LeastOfAll Least() const;
    // Half the gradient of the gain at M, and minus half its second derivative times D, row by row.
    using Elements = std::array<double, 9>;
    Elements SlopeAt(const Mat3& M) const;
    Elements Curved(const Mat3& D) const;
    // The factor of M that makes the sum least; 0 where none does.
    double BestFactor(const Mat3& M) const;

    // At right angles to each other, the least turned first.
    const std::array<Direction, 3>& Directions() const { return directions_; }

private:
    Elements ChangeTo(const Mat3& M) const;
    Vec3 ToolChange(const Elements& d) const;

    const FitModel& model_;
    const GatheredPoints& points_;
    const PointMoments& moments_;
    std::array<Elements, 9> A_{};                    // gain = const_ + 2 b'd - d'A d
    Elements b_{};                                   // d the change of M, row by row
    double const_ = 0;                               // what shift and tool alone gain
    std::array<std::array<double, 3>, 9> across_{};  // products of M's elements and the tool
    Mat3 inverse_;                                   // of the tool's products, 0 along what is still or open
    Vec3 toolSlope_;
    std::array<Direction, 3> directions_;
};

}  // namespace corvinade::fit
