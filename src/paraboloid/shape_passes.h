// From the job to a fit of its points to its shape, and back.
#pragma once

#include <cstdint>

#include "core/rooms.h"
#include "fit/better_place.h"
#include "fit/held_directions.h"
#include "fit/shape_run.h"

namespace corvinade::paraboloid {

// The job's points, choice, shape and parameters, in passes whose listener is the program: it puts the
// parameters into the job, serves events, and lets the adjustments show their steps. The passes are lost when
// the job's points are replaced meanwhile, or other runs of Monte Carlo begin.
struct ShapePasses {
    ShapePasses() = default;
    ShapePasses(const ShapePasses&) = delete;
    ShapePasses& operator=(const ShapePasses&) = delete;

    ShapeRun Fit;
    std::uint64_t Generation = 0, MonteCarloStarted = 0;

    // False when the points were replaced meanwhile.
    bool Begin();
    bool Overtaken() const;
    void PutIntoJob() const;  // the present parameters
};

// From the parameters on that stand in the job, into which those of the end go; not where the passes were
// lost.
PassEnd GoToRest(ShapePasses& passes, bool& moved);
PassEnd SearchBeside(ShapePasses& passes, BesideSearch& found);

}  // namespace corvinade::paraboloid
