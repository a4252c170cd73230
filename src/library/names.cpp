// What parameters, norms and notes are called.
#include <algorithm>
#include <cmath>
#include <iterator>

#include "corvinade/fit.h"

namespace corvinade {

namespace {

constexpr std::array<const char*, kParameters> kNames = {"trax", "tray",    "traz",   "rotx",   "roty",
                                                         "rotz", "scalex",  "scaley", "scalez", "scalexyz",
                                                         "xy",   "azimuth", "ztoxy"};

struct NormName {
    const char* Name;
    Norm Which;
};
constexpr NormName kNorms[] = {{"l2", Norm::L2},
                               {"l1", Norm::L1},
                               {"loo", Norm::Loo},
                               {"l1-exact", Norm::L1Exact},
                               {"minimax", Norm::Minimax}};

// How many parameters float, from the first on, and which of them; the other shifts and rotations are held.
struct Preset {
    const char* Name;
    std::array<bool, kParameters> Floats;
};
constexpr Preset kPresets[] = {
    {"level", {true, true, true, false, false, true}},
    {"6", {true, true, true, true, true, true}},
    {"7", {true, true, true, true, true, true, false, false, false, true}},
    {"9", {true, true, true, true, true, true, true, true, true}},
    {"12", {true, true, true, true, true, true, true, true, true, false, true, true, true}}};

template <class Row, std::size_t n>
const Row& RowOf(const Row (&rows)[n], std::string_view name, const char* what) {
    const auto found =
        std::find_if(std::begin(rows), std::end(rows), [&](const Row& row) { return row.Name == name; });
    if (found != std::end(rows)) return *found;
    std::string names;
    for (const Row& row : rows) names += (names.empty() ? "" : ", ") + std::string(row.Name);
    throw InvalidInput(std::string(what) + " is one of " + names + ", and \"" + std::string(name) +
                       "\" came");
}

}  // namespace

const char* NameOf(Parameter parameter) {
    return kNames.at(static_cast<std::size_t>(parameter));
}

Parameter ParameterByName(std::string_view name) {
    for (std::size_t k = 0; k < kParameters; ++k)
        if (kNames[k] == name) return static_cast<Parameter>(k);
    std::string names;
    for (const char* one : kNames) names += (names.empty() ? "" : ", ") + std::string(one);
    throw InvalidInput("a parameter is one of " + names + ", and \"" + std::string(name) + "\" came");
}

void ParameterChoice::Hold(Parameter parameter, double value) {
    const auto k = static_cast<std::size_t>(parameter);
    if (k >= kParameters) throw InvalidInput("there is no parameter of this number: " + std::to_string(k));
    const bool scale = parameter >= Parameter::ScaleX && parameter <= Parameter::ScaleXYZ;
    if (!std::isfinite(value) || (scale && value == 0))
        throw InvalidInput(std::string(kNames[k]) + " is held at a finite number" +
                           (scale ? " other than 0" : "") + ", and " + std::to_string(value) + " came");
    State[k] = ParameterState::Held;
    Value[k] = value;
}

ParameterChoice ChoiceByName(std::string_view name) {
    const Preset& preset = RowOf(kPresets, name, "a choice of parameters");
    ParameterChoice choice;
    for (std::size_t k = 0; k < kParameters; ++k)
        choice.State[k] = preset.Floats[k]                                 ? ParameterState::Floats
                          : k <= static_cast<std::size_t>(Parameter::RotZ) ? ParameterState::Held
                                                                           : ParameterState::Unused;
    return choice;
}

Norm NormByName(std::string_view name) {
    return RowOf(kNorms, name, "a norm").Which;
}

const char* NameOf(NoteCode code) {
    switch (code) {
        case NoteCode::NotConverged:
            return "not-converged";
        case NoteCode::BetterStart:
            return "better-start";
        case NoteCode::OpenParameters:
            return "open-parameters";
        case NoteCode::GimbalLock:
            return "gimbal-lock";
        case NoteCode::NoEffect:
            return "no-effect";
        case NoteCode::UnsettledFits:
            return "unsettled-fits";
        case NoteCode::Mirrored:
            return "mirrored";
        case NoteCode::CollapsedScale:
            return "collapsed-scale";
        case NoteCode::NearestForm:
            return "nearest-form";
        case NoteCode::NoRedundancy:
            return "no-redundancy";
        case NoteCode::NormSigma:
            return "norm-sigma";
    }
    return "";
}

const char* Version() {
    return CORVINADE_VERSION;
}

}  // namespace corvinade
