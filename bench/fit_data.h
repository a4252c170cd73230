// Point pairs with a known transformation and seeded noise, the same on every machine.
#pragma once

#include <array>
#include <vector>

struct FitData {
    std::vector<std::array<double, 3>> Start, Target;  // mm
    // The truth: Tx Ty Tz Rx Ry Rz Sx Sy Sz xy azimuth z-to-xy; mm and rad.
    std::array<double, 12> Truth{};
};

// A hall of 10 m by 8 m by 3 m about 1e6 mm from the origin, with noise of 0.05 mm.
//   parameters  7: one scale for all axes; 12: three scales and the oblique frame
FitData MakeFitData(int points, int parameters);

// A new program with these pairs as its job, named and all coordinates in use: shifts and rotations float,
// and with 7 parameters one scale, with 12 three scales and the oblique frame.
void FillJob(const FitData& data, int parameters);

// The true parameters as those of the job.
void TakeTruth(const FitData& data);
