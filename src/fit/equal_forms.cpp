// Equal forms of one transformation.
#include "fit/equal_forms.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "fit/nice_rotation.h"

namespace corvinade::fit {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

constexpr double kHalfTurn = std::numbers::pi, kTurn = 2 * kHalfTurn;

// The change of one parameter that a step makes.
struct Change {
    int Parameter, Sign, HalfTurns;
};

// R K S = (R D1) (D1 K D2) (D2 S) with diagonals D of 1 and -1, D1 a rotation: each such change of signs is
// made up of these steps, and so are the two triples of angles of R.
const std::vector<std::vector<Change>> kSteps = {
    {{kScaleZ, -1, 0}, {kAngleZtoXY, 1, 1}},                                      // the third axis of K
    {{kScaleY, -1, 0}, {kAngleXY, 1, 1}},                                         // the second
    {{kRotX, 1, 1}, {kAngleXY, -1, 1}, {kAzimuth, -1, 0}, {kAngleZtoXY, -1, 1}},  // R Rx(pi)
    {{kScaleX, -1, 0}, {kRotX, -1, 0}, {kRotY, -1, 0}, {kRotZ, 1, 1}, {kAngleXY, 1, 1}, {kAzimuth, 1, 1}},
    {{kAzimuth, 1, 1}, {kAngleZtoXY, -1, 0}},        // the lean of the third axis
    {{kRotX, 1, 1}, {kRotY, -1, 1}, {kRotZ, 1, 1}},  // the other triple
};

void Append(const std::vector<Change>& step, EqualForm& form) {
    for (const Change& change : step) {
        int& turns = form.HalfTurns[At(change.Parameter)];
        form.Sign[At(change.Parameter)] *= change.Sign;
        turns = ((change.Sign * turns + change.HalfTurns) % 2 + 2) % 2;
    }
}

bool Floats(const FitModel& model, int parameter) {
    return model.UnknownOf[At(parameter)] != 0;
}

double ShortWay(double angle) {
    return std::remainder(angle, kTurn);
}

// Does the form leave a held parameter where it is?
bool Keeps(const EqualForm& form, int parameter, double value) {
    constexpr double kSame = 1e-12;
    if (KindOf(parameter) != ParameterKind::Angle) return form.Sign[At(parameter)] > 0 || value == 0;
    return std::fabs(ShortWay(form.Of(parameter, value) - value)) < kSame;
}

// The three scales are one unknown, so they have one sign.
bool KeepsScalesTogether(const EqualForm& form) {
    return form.Sign[kScaleX] == form.Sign[kScaleY] && form.Sign[kScaleX] == form.Sign[kScaleZ];
}

bool Allowed(const FitModel& model, const Parameters& values, EqualForm& form) {
    // The azimuth of an axis that does not lean is any.
    if (!Floats(model, kAzimuth) && !Floats(model, kAngleZtoXY) && values[kAngleZtoXY] == 0) {
        form.Sign[kAzimuth] = 1;
        form.HalfTurns[kAzimuth] = 0;
    }
    const bool together = Floats(model, kScaleXYZ);
    if (together) {
        if (!KeepsScalesTogether(form)) return false;
        form.Sign[kScaleXYZ] = form.Sign[kScaleX];
    }
    for (int k = kRotX; k <= kAngleZtoXY; ++k) {
        if (Floats(model, k) || k == kScaleXYZ || (together && k >= kScaleX && k <= kScaleZ)) continue;
        if (!Keeps(form, k, values[k])) return false;
    }
    return true;
}

// The largest scale of the reference: a scale that noise has brought near 0 is no measure of its own changes.
double ScaleSize(const Parameters& reference) {
    const double size = std::max(
        {std::fabs(reference[kScaleX]), std::fabs(reference[kScaleY]), std::fabs(reference[kScaleZ])});
    return size > 0 ? size : 1;
}

// How far two values of a parameter are apart: rad, or a share of the size of the scales.
double Apart(int parameter, double a, double b, double size) {
    return KindOf(parameter) == ParameterKind::Angle ? ShortWay(a - b) : (a - b) / size;
}

// Each other form has a scale of the other sign or an angle half a turn off, so none is as near as this.
bool IsNearestAlready(const FitModel& model, const Parameters& reference, const Parameters& values) {
    const double size = ScaleSize(reference);
    for (int k = kRotX; k <= kAngleZtoXY; ++k)
        if (Floats(model, k) && !(std::fabs(Apart(k, values[k], reference[k], size)) < kHalfTurn / 4))
            return false;
    return true;
}

// The squares of how far a parameter of a run is from the reference's, by its sign and half turns in a form:
// few numbers, of which those of the many forms are made up.
struct SquaresApart {
    std::array<std::array<double, 4>, kParameterEnd> Of{};

    SquaresApart(const FitModel& model, const Parameters& reference, const Parameters& values) {
        const double size = ScaleSize(reference);
        for (int k = kRotX; k <= kAngleZtoXY; ++k) {
            if (!Floats(model, k)) continue;
            for (const int sign : {1, -1})
                for (const int turns : {0, 1}) {
                    const double there = sign * values[k] + turns * kHalfTurn;
                    const double apart = Apart(k, there, reference[k], size);
                    Of[At(k)][Place(sign, turns)] = apart * apart;
                }
        }
    }
    static std::size_t Place(int sign, int turns) { return At((sign < 0 ? 2 : 0) + turns); }
    double Sum(const EqualForm& form) const {
        double sum = 0;
        for (int k = kRotX; k <= kAngleZtoXY; ++k)
            sum += Of[At(k)][Place(form.Sign[At(k)], form.HalfTurns[At(k)])];
        return sum;
    }
};

// Signs follow an unknown into the inverse of the normal matrix.
void FollowSigns(const FitModel& model, const EqualForm& form, Matrix& Q) {
    const auto sign = [&](int parameter) { return form.Sign[At(parameter)]; };
    for (int k = kRotX; k <= kAngleZtoXY; ++k) {
        const int i = model.UnknownOf[At(k)];
        if (i == 0 || i > Q.Rows || sign(k) > 0) continue;
        for (int j = 1; j <= Q.Columns; ++j)
            if (j != i) {
                Q(i, j) = -Q(i, j);
                Q(j, i) = -Q(j, i);
            }
    }
}

// Of forms without negative scales: how much the frame is turned round. 0 is the best.
int TurnedRound(const EqualForm& form, const Parameters& values) {
    int turned = 0;
    if (std::cos(form.Of(kAngleXY, values[kAngleXY])) < 0) turned += 4;
    if (std::cos(form.Of(kAngleZtoXY, values[kAngleZtoXY])) < 0) turned += 4;
    if (std::sin(form.Of(kAngleZtoXY, values[kAngleZtoXY])) < 0) turned += 1;
    return turned;
}

}  // namespace

double EqualForm::Of(int parameter, double value) const {
    return Sign[At(parameter)] * value + HalfTurns[At(parameter)] * kHalfTurn;
}

bool EqualForm::IsSame() const {
    for (int k = kRotX; k <= kAngleZtoXY; ++k)
        if (Sign[At(k)] < 0 || HalfTurns[At(k)] != 0) return false;
    return true;
}

std::vector<EqualForm> EqualForms(const FitModel& model, const Parameters& values) {
    std::vector<EqualForm> forms;
    const unsigned choices = 1U << kSteps.size();
    for (unsigned choice = 0; choice < choices; ++choice) {
        EqualForm form;
        form.Sign.fill(1);
        for (std::size_t k = 0; k < kSteps.size(); ++k)
            if ((choice >> k & 1U) != 0) Append(kSteps[k], form);
        if (Allowed(model, values, form)) forms.push_back(form);
    }
    return forms;
}

bool TakeNearestForm(const FitModel& model, const std::vector<EqualForm>& forms, const Parameters& reference,
                     Parameters& values) {
    bool other = false;
    if (!IsNearestAlready(model, reference, values)) {
        const EqualForm* nearest = nullptr;
        double least = 0;
        const SquaresApart squares(model, reference, values);
        for (const EqualForm& form : forms) {
            const double apart = squares.Sum(form);
            if (nearest != nullptr && !(apart < least)) continue;
            nearest = &form;
            least = apart;
        }
        if (nearest == nullptr) return false;
        other = !nearest->IsSame();
        if (other)
            for (int k = kRotX; k <= kAngleZtoXY; ++k)
                if (Floats(model, k)) values[k] = nearest->Of(k, values[k]);
    }
    for (int k = kRotX; k <= kAngleZtoXY; ++k) {
        if (!Floats(model, k) || KindOf(k) != ParameterKind::Angle) continue;
        const double way = values[k] - reference[k];
        if (std::fabs(way) > kHalfTurn) values[k] -= kTurn * std::round(way / kTurn);
    }
    return other;
}

bool TakeNicerRotation(const FitModel& model, Parameters& parameters, Matrix& Q) {
    const double rotX = parameters[kRotX], rotY = parameters[kRotY];
    const std::optional<Vec3> angles = NicerRotation({rotX, rotY, parameters[kRotZ]});
    if (!angles) return false;
    for (int k = 1; k <= 3; ++k) parameters[kRotX + k - 1] = (*angles)(k);
    const bool turned = std::fabs(ShortWay(parameters[kRotX] - rotX)) > kHalfTurn / 2;
    if (!turned || !(std::fabs(ShortWay(kHalfTurn - rotY - parameters[kRotY])) < kHalfTurn / 4)) return true;
    EqualForm form;
    form.Sign.fill(1);
    form.Sign[kRotY] = -1;
    FollowSigns(model, form, Q);
    return true;
}

bool TakeWholeTurnsOff(const FitModel& model, Parameters& parameters) {
    bool taken = false;
    for (int k = kAngleXY; k <= kAngleZtoXY; ++k) {
        if (!Floats(model, k) || !(std::fabs(parameters[k]) >= kTurn) || std::isinf(parameters[k])) continue;
        parameters[k] = ShortWay(parameters[k]);
        taken = true;
    }
    return taken;
}

bool TakePositiveForm(const FitModel& model, Parameters& parameters, Matrix& Q) {
    if (!(parameters[kScaleX] < 0 || parameters[kScaleY] < 0 || parameters[kScaleZ] < 0)) return false;
    const Parameters values = parameters;
    const EqualForm* best = nullptr;
    const std::vector<EqualForm> forms = EqualForms(model, values);
    for (const EqualForm& form : forms) {
        bool positive = true;
        for (int k = kScaleX; k <= kScaleZ; ++k) positive &= form.Of(k, values[k]) > 0;
        if (positive && (best == nullptr || TurnedRound(form, values) < TurnedRound(*best, values)))
            best = &form;
    }
    if (best == nullptr) return false;
    for (int k = kRotX; k <= kAngleZtoXY; ++k) {
        const double value = best->Of(k, values[k]);
        parameters[k] = best->HalfTurns[At(k)] != 0 ? ShortWay(value) : value;
    }
    FollowSigns(model, *best, Q);
    TakeNicerRotation(model, parameters, Q);
    return true;
}

}  // namespace corvinade::fit
