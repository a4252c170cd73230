// `--with FILE`: a transformation from a job, from the JSON of a fit or of an export, or from a text of 16
// numbers.
#pragma once

#include <iosfwd>
#include <optional>
#include <string>

#include "cli/fit_options.h"
#include "core/rooms.h"
#include "import/cloud_motion.h"

namespace corvinade::cli {

struct TransformationWish {
    std::string Path;               // "-" is `in`
    std::optional<bool> Questions;  // of a job
    bool Unconverged = false;       // one that did not converge is taken too
};

// The transformation, in mm. Its notes are in the list. kDone, or the status with the reason on `err`: what
// is none, is not of numbers, has another last row than 0 0 0 1 or no inverse.
int ReadTransformation(const TransformationWish& wish, std::istream& in, std::ostream& err,
                       CloudMotion& motion);

// That of the open job.
int TransformationOfJob(const std::string& path, std::ostream& err, CloudMotion& motion);

}  // namespace corvinade::cli
