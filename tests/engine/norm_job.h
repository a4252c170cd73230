// What the tests of the norms stand on: a job whose heights alone are fitted, so that a fit is a weighted
// mean and the loops can be written down by hand; and the norms' values of a result.
#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

#include "core/job.h"
#include "core/settings.h"
#include "core/window.h"
#include "engine/adjustment.h"
#include "engine/calculation.h"
#include "engine/fit_job.h"
#include "engine/norms.h"
#include "support/fixture.h"

using namespace corvinade;

class NormTest : public Program {
protected:
    NormTest() {
        BeginFit();
        ShowWindow("FormMain");
    }

    // Points on a coarse net at height 0; targets lie above them. Heights alone take part and float.
    static void Heights(const std::vector<double>& heights) {
        int i = 0;
        for (const double height : heights) {
            const double x = 100 * (i % 3);
            const double y = 100 * (i / 3);  // NOLINT
            AddPair({x, y, 0}, {x, y, height});
            Job.UseFlags[Job.UseFlags.size() - 3] = Job.UseFlags[Job.UseFlags.size() - 2] = 0;
            ++i;
        }
        FloatParameters({kTraZ});
    }

    static void Calculate(int norm) {
        Job.NormType = static_cast<std::int16_t>(norm);
        ButtonCalcErsatz();
    }

    static double SumOfResiduals() {
        double sum = 0;
        for (std::size_t i = 1; i < Calculation.v.size(); ++i)
            if (Job.UseFlags[i] != 0) sum += std::fabs(Calculation.v[i]);
        return sum;
    }
    static double LargestResidual() {
        double largest = 0;
        for (std::size_t i = 1; i < Calculation.v.size(); ++i)
            if (Job.UseFlags[i] != 0) largest = std::max(largest, std::fabs(Calculation.v[i]));
        return largest;
    }
    static double WeightOfHeight(int point) { return Calculation.P[static_cast<std::size_t>(3 * point)]; }
};

inline constexpr int kL1 = 1, kL2 = 2, kLoo = 3;

// The weighted mean and what is left of each number: the fit of a height alone.
inline double WeightedMean(const std::vector<double>& values, const std::vector<double>& weights) {
    double sum = 0, weight = 0;
    for (std::size_t i = 0; i < values.size(); ++i) {
        sum += weights[i] * values[i];
        weight += weights[i];
    }
    return sum / weight;
}
