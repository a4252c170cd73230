// Job files: the two sets of points of a job, what it says of its fit, and the result that it holds. Lengths
// in mm, angles in rad; texts and paths in UTF-8. Any number of threads may read at once.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "corvinade/fit.h"
#include "corvinade/point_file.h"

namespace corvinade {

// The fit that a job asks for.
struct JobFit {
    ParameterChoice Parameters = ChoiceByName("6");
    Norm Which = Norm::L2;
    std::array<std::size_t, 3> SeedPairs{0, 1, 2};
    // "" where the library has that fit; else why not: a fit to distances, to a robot's tool, to a shape, or
    // a parameter that is held at a text that is no number.
    std::string Refusal;
};

struct JobFile {
    // The points that are transformed, and those that they come onto: the first `Pairs` of each are the
    // pairs.
    NamedPoints Start, Target;
    std::size_t Pairs = 0;
    std::vector<unsigned char> InUse;  // three a pair, x y z: 0 takes no part in the fit
    // Start is the system MCS and Target OCS; false: the job's direction is switched, and they are OCS and
    // MCS.
    bool McsToOcs = true;
    std::string StartName, TargetName;  // of the systems
    std::string StartPath, TargetPath;  // the files that they were read from
    std::string LengthUnit, AngleUnit;  // the job's own, which its windows show
    // By parameter: "float", "not used", or what it is held at, as typed, in the job's units.
    std::array<std::string, kParameters> ParameterTexts;
    JobFit Fit;
    // The result that it was saved with, from Start to Target; nothing where there is none.
    std::optional<Chain> Result;
    bool Converged = true;  // false: that is not the best fit
    std::vector<FileNote> Notes;
    std::vector<std::string> Said;  // what opening it tells of its version
};

// A job file of any version. Throws InvalidInput, with path and byte, where it is none, damaged, or cannot be
// read; std::bad_alloc.
CORVINADE_API JobFile ReadJob(const std::string& path);

// The fit of the job's pairs that `corvinade-cli fit --job` makes: with its parameters, norm, standard
// deviations, seeds and what takes part. Throws InvalidInput with JobFit::Refusal, and as Fit of points does.
CORVINADE_API FitResult Fit(const JobFile& job);

}  // namespace corvinade
