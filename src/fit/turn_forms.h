// What turns of the result do to images and targets, with all that follows them.
#pragma once

#include <array>
#include <functional>
#include <vector>

#include "fit/judged_result.h"

namespace corvinade::fit {

inline constexpr double kTurnDigits = 64 * 2.220446049250313e-16;

double TurnDot(const Vec3& a, const Vec3& b);
double TurnDot(const std::vector<double>& a, const std::vector<double>& b);  // as long as each other
Vec3 TurnUnit(int axis);                                                     // 1 to 3

// A pair about the middle of the images, mm. With a tool the target is the tip of the pose.
struct TurnPair {
    Vec3 Image, Target, Off;      // Off: image less target, 0 where the coordinate is not in use
    std::array<bool, 4> InUse{};  // by axis
    std::array<Vec3, 4> Pose;     // rows of the pose's matrix; only in the model of the tool
};

struct TurnPairs {
    std::vector<TurnPair> List;
    Vec3 Arm;  // from where the start system's origin is carried to, to the middle of the images
    double LargestImage = 0, LargestTarget = 0;  // coordinates as they were read

    // Every so many of the pairs, by what is in use of them.
    TurnPairs(const JudgedResult& result, int step);

    // Leaves out those whose deviation is far above what most have.
    void LeaveOutGrossErrors(int unknowns);
    // Without the pair that is farthest from the middle: a gross error makes any cloud a long one.
    TurnPairs WithoutFarthest(const Vec3 TurnPair::*place) const;

private:
    void Add(const JudgedResult& result, int i);
};

// What follows a turn: floating translations and the tool vector, as columns over the coordinates in use.
class TurnFollowers {
public:
    //   still  directions of the flange along which the tool vector does not float
    TurnFollowers(const TurnPairs& pairs, const FitModel& model, const std::vector<Vec3>& still);

    // What is left of a column, and how each translation and the tool vector, 1 to 3, take the rest.
    struct Rest {
        std::vector<double> Column;
        Vec3 Translation, Tool;
    };
    Rest Left(std::vector<double> column) const;

private:
    struct What {
        int Translation;  // 1 to 3, or 0
        Vec3 Tool;
    };
    using Entry = std::function<double(const TurnPair&, int row)>;
    void Add(const TurnPairs& pairs, const What& what, const Entry& entry);

    std::vector<std::vector<double>> columns_;   // at right angles, of length 1
    std::vector<std::vector<double>> triangle_;  // by column: the shares of those before, and its own length
    std::vector<What> of_;
};

// Square forms of the axis w of a turn, as turns_left.h has them.
struct TurnForms {
    Mat3 Images, Targets, Both;   // |E|^2, |F|^2, the curvature C; mm^2
    Vec3 Slope;                   // - E r
    double Image = 0;             // |P e|
    double Scale = 1, Noise = 0;  // of the images, that brings them nearest to the targets; what is left then
    int Observations = 0;
    std::array<Vec3, 4> Translation, Tool;  // how these follow the turn about axis 1 to 3, mm

    TurnForms(const TurnPairs& pairs, const FitModel& model, const std::vector<Vec3>& still);

private:
    void TakeNoise(const std::vector<double>& image, const std::vector<double>& target,
                   const FitModel& model);
};

}  // namespace corvinade::fit
