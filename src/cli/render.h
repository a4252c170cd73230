// `corvinade-cli render`: a picture of a job.
#pragma once

#include <iosfwd>
#include <optional>
#include <string>

#include "cli/job_picture.h"
#include "core/rooms.h"

namespace corvinade::cli {

struct RenderOptions {
    std::string Job, Out;
    PictureWish Wish;
    std::optional<std::pair<double, double>> Limits;  // of the colour scale, in the job's unit of length
    std::optional<bool> Questions;                    // --yes or --no
    bool Strict = false;                              // no warning may pass
    bool Json = false;                                // what was written, and the notes
    std::optional<char> Decimal;
};

// What the arguments of the command are written as. Each gives "" or why the text is none, and fills its
// value.
std::string SizeFromText(const std::string& text, int& width, int& height);  // "800x600", and not too large
std::string BackgroundFromText(const std::string& text, Colour& colour);     // "white", "black", "RRGGBB"
std::string LimitsFromText(const std::string& text, std::pair<double, double>& limits);  // "-0.2,0.5"
std::string CheckPictureFile(const std::string& path);                                   // .png or .svg

// Writes the picture, whole or not at all. Gives the exit status.
int RunRender(const RenderOptions& options, std::ostream& out, std::ostream& err);

}  // namespace corvinade::cli
