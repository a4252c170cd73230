// Which parameters and coordinates of a fit take part.
#include "cli/fit_selection.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <span>
#include <string_view>
#include <vector>

#include "core/job.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/text.h"
#include "core/units.h"
#include "engine/norm_table.h"
#include "engine/norms.h"
#include "engine/parameter_kind.h"
#include "engine/presets.h"
#include "engine/seed.h"
#include "engine/selection.h"

namespace corvinade::cli {

namespace {

constexpr std::array<const char*, kParameterEnd> kNames = {
    "",       "trax",     "tray", "traz",    "rotx",  "roty",  "rotz",  "scalex", "scaley",
    "scalez", "scalexyz", "xy",   "azimuth", "ztoxy", "rdist", "rvecx", "rvecy",  "rvecz"};
// Those of the chain, which a value can be given for.
constexpr std::span<const char* const> kChain(kNames.data(), kAngleZtoXY + 1);

std::string& ParamText(int parameter) {
    return Job.ParamText[static_cast<std::size_t>(parameter)];
}

// Takes "name=value" apart for the option `option`: the parameter's number and the value as the text of a
// field. Gives "" or what is wrong with it.
std::string NameAndValue(const std::string& option, const std::string& text, int& parameter,
                         std::string& value) {
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos)
        return option + " takes a name and a value, as rotz=0: \"" + Printable(text) + "\"";
    const std::string name = UpperAscii(text.substr(0, equals));
    const auto found = std::find_if(kChain.begin() + 1, kChain.end(),
                                    [&name](const char* known) { return UpperAscii(known) == name; });
    if (found == kChain.end()) {
        std::string known;
        for (std::size_t i = 1; i < kChain.size(); ++i) known += std::string(i == 1 ? "" : ", ") + kChain[i];
        return option + ": there is no parameter \"" + Printable(text.substr(0, equals)) + "\"; there are " +
               known;
    }
    parameter = static_cast<int>(found - kChain.begin());
    value = text.substr(equals + 1);
    double number = 0;
    try {
        if (KindOf(parameter) == ParameterKind::Angle) value = SaveWinkelZurück(value);
    } catch (const PlatformError&) {
        value.clear();  // degrees, minutes and seconds with something else among them
    }
    if (!TextToNumber(value, number)) return option + " " + Printable(text) + ": the value is not a number";
    if (KindOf(parameter) == ParameterKind::Scale && number == 0)
        return option + " " + text + ": a scale of 0 leaves nothing of the points";
    return "";
}

std::string HoldParameter(const std::string& hold) {
    int parameter = 0;
    std::string value;
    const std::string wrong = NameAndValue("--hold", hold, parameter, value);
    if (!wrong.empty()) return wrong;
    if (parameter == kScaleXYZ) {
        for (const int scale : {kScaleX, kScaleY, kScaleZ}) ParamText(scale) = kNotUsed;
    } else if (KindOf(parameter) == ParameterKind::Scale && ParamText(kScaleXYZ) != kNotUsed) {
        return "--hold " + hold +
               ": one scale for all axes is in use; choose 9 or 12 parameters for single scales";
    }
    if (parameter == kAngleZtoXY && ParamText(kAzimuth) == kFloat) ParamText(kAzimuth) = "0";
    ParamText(parameter) = value;
    return "";
}

// Begins the iteration at the user's value for one parameter, as a field of the window does.
std::string StartParameter(const std::string& start) {
    int parameter = 0;
    std::string value;
    const std::string wrong = NameAndValue("--start", start, parameter, value);
    if (!wrong.empty()) return wrong;
    const std::string& choice = ParamText(parameter);
    if (choice != kFloat)
        return "--start " + start + ": only parameters that float have a start value, and this one is " +
               (choice == kNotUsed ? kNotUsed : "held");
    Selection.DialogOpen = true;
    Selection.Seed[static_cast<std::size_t>(parameter)] = true;
    Selection.SeedText[static_cast<std::size_t>(parameter)] = value;
    return "";
}

// The identical point of a name; 0 when there is none. A point pairs under its own name, or after matching
// by coordinates under "MCS_start=OCS_target"; either side will do. By distance to poses with names of their
// own the start point's number stands before that: " 3_MCS_start=OCS_target".
int FindPair(const std::string& name) {
    for (int i = 1; i <= Job.Pairs(); ++i) {
        std::string_view pair = Job.Start.Name[static_cast<std::size_t>(i)];
        if (pair == name) return i;
        if (const std::size_t digits = pair.find_first_not_of("0123456789", 1);
            pair.starts_with(' ') && digits != std::string_view::npos && pair[digits] == '_')
            pair.remove_prefix(digits + 1);
        if (pair.starts_with("MCS_" + name + "=") || pair.ends_with("=OCS_" + name)) return i;
    }
    return 0;
}

// Leaves out a point, or the coordinates of it that letters behind a colon name.
std::string LeaveOut(const std::string& what) {
    std::string letters = "xyz";
    int point = FindPair(what);
    if (point == 0) {
        const std::size_t colon = what.rfind(':');
        if (colon != std::string::npos) {
            letters = what.substr(colon + 1);
            point = FindPair(what.substr(0, colon));
            if (letters.empty() || letters.find_first_not_of("xyzXYZ") != std::string::npos)
                return "--leave-out " + what + ": behind the colon stand x, y, z";
        }
    }
    if (point == 0) return "--leave-out " + what + ": there is no identical point of this name";
    for (const char letter : letters) {
        const int axis = (letter | 0x20) - 'x';
        Job.UseFlags[static_cast<std::size_t>(3 * (point - 1) + axis + 1)] = 0;
    }
    return "";
}

// One text is three names with commas between; three texts are names that may hold commas.
std::vector<std::string> SeedNames(const std::vector<std::string>& given) {
    if (given.size() != 1) return given;
    std::vector<std::string> names(1);
    for (const char c : given.front()) {
        if (c == ',') {
            names.emplace_back();
        } else {
            names.back() += c;
        }
    }
    return names;
}

std::string TakeSeedPoints(const std::vector<std::string>& given) {
    Job.SeedName.fill("");
    Job.SeedIndex.fill(0);
    ChooseDefaultSeeds();
    if (given.empty()) return "";
    const std::vector<std::string> names = SeedNames(given);
    if (names.size() != 3)
        return "--seed-points takes the names of three identical points, A,B,C; names that hold a comma are "
               "given one by one, each with the option before it";
    std::array<int, 3> pairs{};
    for (std::size_t k = 0; k < 3; ++k) {
        pairs[k] = FindPair(names[k]);
        const std::string name = "--seed-points: \"" + Printable(names[k]) + "\"";
        if (pairs[k] == 0) return name + " is no identical point";
        if (pairs[k] > std::numeric_limits<std::int16_t>::max())
            return name + " stands behind the first 32767 identical points, which alone can be seed points";
        for (std::size_t before = 0; before < k; ++before)
            if (pairs[before] == pairs[k]) return name + " is named twice";
    }
    for (std::size_t k = 0; k < 3; ++k) {
        Job.SeedIndex[k + 1] = static_cast<std::int16_t>(pairs[k]);
        Job.SeedName[k + 1] = Job.Start.Name[static_cast<std::size_t>(pairs[k])];
    }
    return "";
}

// The option that a shape as target leaves no room for; null where there is none.
const char* OptionAgainstShape(const FitOptions& options) {
    if (options.RDist) return "--r-dist";
    if (options.Tool) return "--tool";
    if (!options.Poses.empty()) return "--poses";
    if (!IsLeastSquares(NormByName(options.Norm).Norm)) return "--norm";
    return options.FromTarget ? "--direction ocs-mcs" : nullptr;
}

}  // namespace

const char* HeldParameterName(int parameter) {
    return kNames[static_cast<std::size_t>(parameter)];
}

std::string SelectParameters(const FitOptions& options) {
    if (const char* other = IsTrue(Job.IsParaboloid) ? OptionAgainstShape(options) : nullptr)
        return std::string("a shape takes points to their nearest places by least squares: ") + other +
               " does not go with it";
    // A job has its choice made, if it has been calculated once.
    const bool ofJob = !options.Job.empty();
    if (!ofJob || options.IsGiven("--parameters") || ParamText(kTraX).empty())
        SelectPreset(options.Parameters == "job" ? FitOptions().Parameters : options.Parameters);
    const NormWish wish = NormByName(options.Norm);
    Norm.RunOn = wish.Exact;
    Job.NormType = wish.Norm.Number;
    for (const std::string& hold : options.Hold) {
        const std::string wrong = HoldParameter(hold);
        if (!wrong.empty()) return wrong;
    }
    if (options.RDist) ParamText(kRDist) = kFloat;
    if (options.Tool || !options.Poses.empty()) {
        if (!IsLeastSquares(wish.Norm) || options.FromTarget)
            return std::string(options.Tool ? "--tool" : "--poses") +
                   " goes with --norm l2 and --direction mcs-ocs alone";
        for (const int part : {kRvecX, kRvecY, kRvecZ}) ParamText(part) = kFloat;
    }
    SelectionFromJob();
    if (!ofJob) std::fill(Job.UseFlags.begin() + 1, Job.UseFlags.end(), std::int16_t{1});
    for (const std::string& what : options.LeaveOut) {
        const std::string wrong = LeaveOut(what);
        if (!wrong.empty()) return wrong;
    }
    for (const std::string& start : options.StartValues) {
        const std::string wrong = StartParameter(start);
        if (!wrong.empty()) return wrong;
    }
    return ofJob && options.SeedPoints.empty() && Job.SeedIndex[1] > 0 ? ""
                                                                       : TakeSeedPoints(options.SeedPoints);
}

}  // namespace corvinade::cli
