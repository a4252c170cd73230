// The options of `corvinade-cli fit` that ask how far its result can be trusted.
#include "cli/fit_statistics_arguments.h"

#include <cstdint>
#include <limits>
#include <string_view>
#include <vector>

#include "cli/arguments.h"
#include "cli/fit_files.h"
#include "cli/input_bytes.h"
#include "core/numbers.h"
#include "core/text.h"
#include "core/units.h"
#include "engine/norm_table.h"
#include "import/robot_files.h"
#include "import/table_heading.h"

namespace corvinade::cli {

namespace {

// "S" or "SX,SY,SZ"; "" or what is wrong with it.
std::string TakeSigmas(const std::string& text, std::optional<std::array<double, 3>>& sigmas) {
    constexpr double kMost = 1e9;
    std::vector<double> values;
    if (!TakeNumbers(text, 0, kMost, values) || (values.size() != 1 && values.size() != 3))
        return "\"" + Printable(text) +
               "\" is neither one standard deviation from 0 on nor three with commas between";
    sigmas = {values[0], values[values.size() == 1 ? 0 : 1], values[values.size() == 1 ? 0 : 2]};
    return "";
}

std::string TakePlace(const std::string& text, std::array<double, 3>& place) {
    constexpr double kMost = 1e12;
    std::vector<double> values;
    if (!TakeNumbers(text, -kMost, kMost, values) || values.size() != 3)
        return "\"" + Printable(text) + "\" is no point: three coordinates with commas between";
    place = {values[0], values[1], values[2]};
    return "";
}

std::string CheckShare(const std::string& text) {
    double value = 0;
    if (TextToNumber(text, '.', value) && value > 0 && value < 1) return "";
    return "\"" + Printable(text) + "\" is no number between 0 and 1";
}

}  // namespace

void AddStatisticsOptions(CLI::App& fit, FitOptions& o) {
    const char* const group = "Statistics";
    const auto addSigma = [&fit, group](const char* name, std::optional<std::array<double, 3>>& sigmas,
                                        const char* text) {
        fit.add_option_function<std::string>(
               name, [&sigmas](const std::string& value) { TakeSigmas(value, sigmas); }, text)
            ->check([](const std::string& value) {
                std::optional<std::array<double, 3>> taken;
                return TakeSigmas(value, taken);
            })
            ->type_name("SX,SY,SZ")
            ->group(group);
    };
    addSigma("--start-sigma", o.StartSigma,
             "Standard deviation of the coordinates of START, in the length unit;\n"
             "one number for all three; 0: free of errors");
    addSigma("--target-sigma", o.TargetSigma, "The same of TARGET");
    fit.add_flag("--statistics", o.Statistics,
                 "Also how far the result can be trusted: accuracies, redundancies,\n"
                 "tests; in JSON for more than 10000 pairs too")
        ->group(group)
        ->excludes(fit.get_option("--csv"));
    fit.add_option("--alpha", o.Alpha,
                   "Error probability of the tests; default: 0.001 for a coordinate, 0.05\n"
                   "for the global test")
        ->check(CheckShare)
        ->type_name("A")
        ->group(group);
    fit.add_option("--power", o.Power,
                   "Probability with which a bias as large as the MDB is found;\n"
                   "default: 0.8")
        ->check(CheckShare)
        ->type_name("P")
        ->group(group);
    fit.add_option("--confidence", o.Confidence, "Probability of the ellipsoids; default: 0.95")
        ->check(CheckShare)
        ->type_name("C")
        ->group(group);
    fit.add_flag("--snoop", o.Snoop,
                 "Take the coordinate out that fails its test by most, fit again, until\n"
                 "none is left")
        ->group(group);
    fit.add_option_function<std::vector<std::string>>(
           "--accuracy-at",
           [&o](const std::vector<std::string>& places) {
               o.AccuracyAt.resize(places.size());
               for (std::size_t i = 0; i < places.size(); ++i) TakePlace(places[i], o.AccuracyAt[i]);
           },
           "Also how accurate this point of the start system is after the\n"
           "transformation; in the length unit")
        ->allow_extra_args(false)
        ->check([](const std::string& text) {
            std::array<double, 3> place{};
            return TakePlace(text, place);
        })
        ->type_name("X,Y,Z")
        ->group(group)
        ->excludes(fit.get_option("--csv"));
}

// What goes with points that coincide alone, and with which norms.
std::string CheckStatisticsOptions(const FitOptions& o) {
    const NormWish norm = NormByName(o.Norm);
    const bool other =
        o.RDist || o.Tool || !o.Poses.empty() || TargetKindByName(o.TargetKind) == TargetKind::Shape;
    for (const char* option : {"--start-sigma", "--target-sigma"})
        if ((other || norm.Exact) && o.IsGiven(option))
            return std::string(option) +
                   " goes with --norm l2, l1 and loo and points that are to coincide alone, not with the exact "
                   "norms, --r-dist, --tool, --poses and --as paraboloid";
    for (const char* option : {"--snoop", "--accuracy-at"})
        if ((other || !IsLeastSquares(norm.Norm)) && o.IsGiven(option))
            return std::string(option) +
                   " goes with --norm l2 and points that are to coincide alone, not with --r-dist, --tool, "
                   "--poses and --as paraboloid";
    if (o.MonteCarloRuns > 0 && (o.StartSigma || o.TargetSigma))
        return "--monte-carlo repeats plain fits: --start-sigma and --target-sigma do not go with it";
    return "";
}

}  // namespace corvinade::cli
