// Start values of the adjustment: a closed solution from three seed points, and the user's own.
#include "engine/seed.h"

#include <array>

#include "core/job.h"
#include "core/numbers.h"
#include "core/settings.h"
#include "core/units.h"
#include "engine/field_number.h"
#include "engine/parameter_kind.h"
#include "engine/selection.h"
#include "fit/require.h"

namespace corvinade::engine {

namespace {

// The pair that stands as seed k. Where no seed has been chosen, or the pairs have become fewer since,
// pair k itself; 0 where there is none.
int SeedPair(int k) {
    if (k > Job.Pairs()) return 0;
    const int chosen = Job.SeedIndex[static_cast<std::size_t>(k)];
    return chosen >= 1 && chosen <= Job.Pairs() ? chosen : k;
}

// The raw scales are wanted only where all nine coordinates of the seed points take part.
bool ScalesAreOne() {
    if (Settings.RawScale == 1) return true;
    if (Settings.RawScale != 2 || Job.Pairs() < 3) return false;
    for (int k = 1; k <= 3; ++k)
        for (int axis = 1; axis <= 3; ++axis) {
            if (!Used(SeedPair(k), axis)) return true;
        }
    return false;
}

// What the user has chosen as start of a parameter, in text; nothing where the raw value stays.
const std::string* ChosenStart(int parameter) {
    const auto k = static_cast<std::size_t>(parameter);
    if (Selection.Float[k]) return Selection.Seed[k] ? &Selection.SeedText[k] : nullptr;
    return Selection.FieldText[k] != kNotUsed ? &Selection.FieldText[k] : nullptr;
}

void SetSeed(std::size_t k, int pair) {
    Job.SeedIndex[k] = ToInt16(pair, "Number of the seed point");
    Job.SeedName[k] = Job.Start.Name[static_cast<std::size_t>(pair)];
}

}  // namespace

SeedPoints TakeSeedPoints() {
    SeedPoints seeds;
    for (int k = 1; k <= 3; ++k)
        if (const int pair = SeedPair(k); pair > 0) {
            const auto place = static_cast<std::size_t>(k);
            seeds.Pair[place] = pair;
            seeds.Start[place] = StartPoint(pair);
            seeds.Target[place] = TargetPoint(pair);
        }
    seeds.Reference = ReferenceInFrame(seeds.Target);
    seeds.ScalesAreOne = ScalesAreOne();
    return seeds;
}

void RawSolution(double& tx, double& ty, double& tz, double& rx, double& ry, double& rz, double& sx,
                 double& sy, double& sz) {
    Parameters raw;
    RawSolution(TakeSeedPoints(), raw);
    tx = raw[kTraX];
    ty = raw[kTraY];
    tz = raw[kTraZ];
    rx = raw[kRotX];
    ry = raw[kRotY];
    rz = raw[kRotZ];
    sx = raw[kScaleX];
    sy = raw[kScaleY];
    sz = raw[kScaleZ];
}

OwnStarts ReadOwnStarts() {
    OwnStarts starts;
    for (int parameter = kTraX; parameter <= kAngleZtoXY; ++parameter) {
        const std::string* text = ChosenStart(parameter);
        if (text == nullptr || *text == kFloat) continue;
        starts[static_cast<std::size_t>(parameter)] = ParameterFromText(parameter, *text);
    }
    return starts;
}

void GetSeed() {
    Parameters parameters = ParametersOf(Job);
    TakeOwnStarts(ReadOwnStarts(), parameters);
    PutParameters(parameters, Job);
}

bool ItsASeed(const std::string& name) {
    return name == Job.SeedName[1] || name == Job.SeedName[2] || name == Job.SeedName[3];
}

void ChooseDefaultSeeds() {
    if (!Job.SeedName[1].empty()) return;
    for (int k = 1; k <= 3 && k <= Job.Pairs(); ++k) SetSeed(static_cast<std::size_t>(k), k);
}

void TakeAsNewestSeed(int pair) {
    Require(pair >= 1 && pair <= Job.Pairs());
    if (ItsASeed(Job.Start.Name[static_cast<std::size_t>(pair)])) return;
    const auto names = Job.SeedName;
    const auto indices = Job.SeedIndex;
    SetSeed(1, pair);
    for (std::size_t k = 2; k <= 3; ++k) {
        Job.SeedIndex[k] = indices[k - 1];
        Job.SeedName[k] = names[k - 1];
    }
}

void SeedsFromResult() {
    for (int parameter = kTraX; parameter <= kRDist; ++parameter) {
        const auto k = static_cast<std::size_t>(parameter);
        if (IsHeldValue(Selection.FieldText[k]))
            Selection.SeedText[k] = ShownAs(KindOf(parameter), ParameterValue(Job, parameter));
    }
}

}  // namespace corvinade::engine
