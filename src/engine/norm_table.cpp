// The norms that a calculation can be made in.
#include "engine/norm_table.h"

#include <algorithm>

#include "core/controller.h"
#include "core/job.h"
#include "core/numbers.h"
#include "core/units.h"
#include "engine/form_trafo_berechnung.h"
#include "fit/require.h"

namespace corvinade::engine {

namespace {

void ShowRoundOfSum(double value, int rounds) {
    SetStatus(7, "d[v]: " + PlainText(value));
    SetStatus(6, "L1 Iterationen: " + std::to_string(rounds));
}

void ShowRoundOfLargest(double value, int rounds) {
    SetStatus(7, FormatNumber(value, Units.FmtLength) + "[v max]: ");
    SetStatus(6, "Loo Iterat.: " + std::to_string(rounds));
}

using Window = FormTrafoBerechnung;

constexpr NormRow kNorms[] = {{.Number = 1,
                               .Fit = FitNorm::LeastSum,
                               .Name = "l1",
                               .ExactName = "l1-exact",
                               .Option = &Window::OptionL1,
                               .Label = "L1",
                               .Told = "L1",
                               .Least = "sum",
                               .Weighted = "sum of residuals",
                               .Optimum = "sum of deviations",
                               .Begins = nullptr,
                               .ShowRound = ShowRoundOfSum,
                               .Steps = "L1 optimum: "},
                              {.Number = 2,
                               .Fit = FitNorm::LeastSquares,
                               .Name = "l2",
                               .ExactName = nullptr,
                               .Option = &Window::OptionL2,
                               .Label = "L2",
                               .Told = "L2",
                               .Least = "sum of squares",
                               .Weighted = "sum of squares",
                               .Optimum = "sum of squares",
                               .Begins = "...L2",
                               .ShowRound = nullptr,
                               .Steps = nullptr},
                              {.Number = 3,
                               .Fit = FitNorm::LeastLargest,
                               .Name = "loo",
                               .ExactName = "minimax",
                               .Option = &Window::OptionLoo,
                               .Label = "L-infinity",
                               .Told = "Loo",
                               .Least = "largest deviation",
                               .Weighted = "largest residual",
                               .Optimum = "largest deviation",
                               .Begins = "Loo...max is min",
                               .ShowRound = ShowRoundOfLargest,
                               .Steps = "Loo optimum: "}};

constexpr const char* kWords =
    "What is made least: the sum of squares (l2), the sum of absolute\n"
    "deviations (l1, robust against outliers), or nearly the largest\n"
    "deviation (loo); default: l2. l1-exact and minimax run on to the\n"
    "true optimum of l1 and loo and tell how near they came";

constexpr const NormRow& kLeastSquares = *std::find_if(std::begin(kNorms), std::end(kNorms), IsLeastSquares);

bool IsExactName(const NormRow& norm, std::string_view name) {
    return norm.ExactName != nullptr && norm.ExactName == name;
}

}  // namespace

std::span<const NormRow> Norms() {
    return kNorms;
}

const NormRow& LeastSquares() {
    return kLeastSquares;
}

const NormRow& NormOf(int number) {
    const auto found = std::find_if(std::begin(kNorms), std::end(kNorms),
                                    [number](const NormRow& norm) { return norm.Number == number; });
    return found == std::end(kNorms) ? kLeastSquares : *found;
}

const NormRow& NormOfJob() {
    return NormOf(Job.NormType);
}

const NormRow& NormOfFit(FitNorm norm) {
    const auto found = std::find_if(std::begin(kNorms), std::end(kNorms),
                                    [norm](const NormRow& row) { return row.Fit == norm; });
    Require(found != std::end(kNorms));
    return *found;
}

NormWish NormByName(std::string_view name) {
    const auto found = std::find_if(std::begin(kNorms), std::end(kNorms), [name](const NormRow& norm) {
        return norm.Name == name || IsExactName(norm, name);
    });
    Require(found != std::end(kNorms));
    return {*found, IsExactName(*found, name)};
}

std::vector<std::string> NormNames() {
    std::vector<std::string> names;
    for (const NormRow& norm : kNorms) names.emplace_back(norm.Name);
    for (const NormRow& norm : kNorms)
        if (norm.ExactName != nullptr) names.emplace_back(norm.ExactName);
    return names;
}

const char* NormsInWords() {
    return kWords;
}

}  // namespace corvinade::engine
