// Which parameters and coordinates of a fit take part.
#include "cli/fit_selection.h"

#include <algorithm>
#include <array>

#include "core/job.h"
#include "core/numbers.h"
#include "core/text.h"
#include "core/units.h"
#include "engine/norms.h"
#include "engine/presets.h"
#include "engine/selection.h"

namespace {

constexpr std::array<const char*, 14> kNames = {"",         "trax", "tray",    "traz",   "rotx",
                                                "roty",     "rotz", "scalex",  "scaley", "scalez",
                                                "scalexyz", "xy",   "azimuth", "ztoxy"};

bool IsScale(int parameter) {
    return parameter >= kScaleX && parameter <= kScaleXYZ;
}

std::string& ParamText(int parameter) {
    return Job.ParamText[static_cast<std::size_t>(parameter)];
}

std::string HoldParameter(const std::string& hold) {
    const std::size_t equals = hold.find('=');
    if (equals == std::string::npos) return "--hold takes a name and a value, as rotz=0: \"" + hold + "\"";
    std::string name = UpperAscii(hold.substr(0, equals));
    const auto found = std::find_if(kNames.begin() + 1, kNames.end(),
                                    [&name](const char* known) { return UpperAscii(known) == name; });
    if (found == kNames.end()) {
        std::string known;
        for (std::size_t i = 1; i < kNames.size(); ++i) known += std::string(i == 1 ? "" : ", ") + kNames[i];
        return "--hold: there is no parameter \"" + hold.substr(0, equals) + "\"; there are " + known;
    }
    const int parameter = static_cast<int>(found - kNames.begin());
    const std::string text = SaveWinkelZurück(hold.substr(equals + 1));
    double value = 0;
    if (!TextToNumber(text, value)) return "--hold " + hold + ": the value is not a number";
    if (IsScale(parameter) && value == 0)
        return "--hold " + hold + ": a scale of 0 leaves nothing of the points";
    if (parameter == kScaleXYZ) {
        for (const int scale : {kScaleX, kScaleY, kScaleZ}) ParamText(scale) = kNotUsed;
    } else if (IsScale(parameter) && ParamText(kScaleXYZ) != kNotUsed) {
        return "--hold " + hold +
               ": one scale for all axes is in use; choose 9 or 12 parameters for single scales";
    }
    if (parameter == kAngleZtoXY && ParamText(kAzimuth) == kFloat) ParamText(kAzimuth) = "0";
    ParamText(parameter) = text;
    return "";
}

// Leaves out a point, or the coordinates of it that letters behind a colon name. A point pairs under
// its own name, or after matching by coordinates under "start=target"; either side will do.
std::string LeaveOut(const std::string& what) {
    const auto find = [](const std::string& name) {
        for (int i = 1; i <= Job.nIdent; ++i) {
            const std::string& pair = Job.MCS_Name[static_cast<std::size_t>(i)];
            if (pair == name || pair.starts_with("MCS_" + name + "=") || pair.ends_with("=OCS_" + name))
                return i;
        }
        return 0;
    };
    std::string letters = "xyz";
    int point = find(what);
    if (point == 0) {
        const std::size_t colon = what.rfind(':');
        if (colon != std::string::npos) {
            letters = what.substr(colon + 1);
            point = find(what.substr(0, colon));
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

}  // namespace

const char* HeldParameterName(int parameter) {
    return kNames[static_cast<std::size_t>(parameter)];
}

std::string SelectParameters(const FitOptions& options) {
    SelectPreset(options.Parameters);
    Norm.RunOn = options.Norm == "l1-exact" || options.Norm == "minimax";
    const bool sum = options.Norm == "l1" || options.Norm == "l1-exact";
    const bool largest = options.Norm == "loo" || options.Norm == "minimax";
    Job.NormType = sum ? 1 : largest ? 3 : 2;
    for (const std::string& hold : options.Hold) {
        const std::string wrong = HoldParameter(hold);
        if (!wrong.empty()) return wrong;
    }
    SelectionFromJob();
    std::fill(Job.UseFlags.begin() + 1, Job.UseFlags.end(), std::int16_t{1});
    for (const std::string& what : options.LeaveOut) {
        const std::string wrong = LeaveOut(what);
        if (!wrong.empty()) return wrong;
    }
    for (int i = 1; i <= 3 && i <= Job.nIdent; ++i) {
        Job.SeedIndex[static_cast<std::size_t>(i)] = static_cast<std::int16_t>(i);
        Job.SeedName[static_cast<std::size_t>(i)] = Job.MCS_Name[static_cast<std::size_t>(i)];
    }
    return "";
}
