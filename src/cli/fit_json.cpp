// The result of a fit as JSON: everything, with full precision. Lengths are mm and angles rad, as the
// program holds them; what the user's units make of them stands beside it.
#include <array>
#include <cmath>
#include <nlohmann/json.hpp>
#include <ostream>

#include "cli/fit_details.h"
#include "cli/fit_files.h"
#include "cli/fit_output.h"
#include "cli/fit_parameters.h"
#include "cli/fit_selection.h"
#include "cli/json_members.h"
#include "cli/record_json.h"
#include "core/controller.h"
#include "core/job.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/units.h"
#include "engine/adjustment.h"
#include "engine/best_fit.h"
#include "engine/calculation.h"
#include "engine/clipboard_report.h"
#include "engine/inverse.h"
#include "engine/monte_carlo.h"
#include "engine/norms.h"
#include "engine/transform.h"
#include "fit/quaternion.h"

namespace corvinade::cli {

using nlohmann::ordered_json;

namespace {

// Counted up when a member goes or changes its meaning; new members leave it.
constexpr int kSchemaVersion = 1;

ordered_json Triple(const double (&values)[3]) {
    return {values[0], values[1], values[2]};
}

// The thirteen of the chain, and behind them those of the distance or the tool model where one is used.
ordered_json ParameterRows() {
    ordered_json list = ordered_json::array();
    for (int k = 1; k < kParameterEnd; ++k) {
        const auto index = static_cast<std::size_t>(k);
        const std::string& text = Job.ParamText[index];
        if (k >= kRDist && text == kNotUsed) continue;
        ordered_json parameter = ParameterAsJson(k);
        if (text == kFloat) {
            parameter["sigma"] = Calculation.Sigma[index];
            parameter["significance"] = Calculation.Significance[index];
        }
        list.push_back(std::move(parameter));
    }
    return list;
}

ordered_json Transformation() {
    const Mat3 m = FitMatrix();
    ordered_json homogeneous = ordered_json::array();
    const std::array<double, 3> t = {Job.TraX, Job.TraY, Job.TraZ};
    for (int row = 1; row <= 3; ++row)
        homogeneous.push_back({m(row, 1), m(row, 2), m(row, 3), t[static_cast<std::size_t>(row - 1)]});
    homogeneous.push_back({0.0, 0.0, 0.0, 1.0});
    Column q(9);
    double a = 0;
    double b = 0;
    double c = 0;
    MatrixToQuaternion(Chain.RotationMatrix, q, a, b, c);
    return {
        {"equation", "X = T + R*K*S*x"},
        {"translation_mm", t},
        {"rotation",
         {{"order", "R = Rz(-c)*Ry(-b)*Rx(-a)"},
          {"a_rad", Job.RotX},
          {"b_rad", Job.RotY},
          {"c_rad", Job.RotZ}}},
        {"rotationMatrix", Rows(Chain.RotationMatrix)},
        {"shearMatrix", Rows(Chain.ShearMatrix)},
        {"scales", {Job.ScaleX, Job.ScaleY, Job.ScaleZ}},
        {"matrix", homogeneous},
        {"quaternion", {{"order", "w, x, y, z of R"}, {"w", q[1]}, {"x", q[2]}, {"y", q[3]}, {"z", q[4]}}}};
}

// The way back. Parameters of the model's own form need not exist for it: `solutions` is then empty.
ordered_json InverseOfTheFit() {
    const std::array<double, 3> t = {Inverse.InvTraX, Inverse.InvTraY, Inverse.InvTraZ};
    const Mat3& w = Inverse.InvMatrix;
    ordered_json homogeneous = ordered_json::array();
    for (int row = 1; row <= 3; ++row)
        homogeneous.push_back({w(row, 1), w(row, 2), w(row, 3), t[static_cast<std::size_t>(row - 1)]});
    homogeneous.push_back({0.0, 0.0, 0.0, 1.0});
    ordered_json solutions = ordered_json::array();
    const Matrix& s = Inverse.InvSolutions;
    for (int i = 1; i <= s.Rows; ++i)
        solutions.push_back(
            {{"rotation", {{"a_rad", s(i, 1)}, {"b_rad", s(i, 2)}, {"c_rad", s(i, 3)}}},
             {"scales", {s(i, 4), s(i, 5), s(i, 6)}},
             {"shear", {{"xy_rad", s(i, 7)}, {"azimuth_rad", s(i, 8)}, {"ztoxy_rad", s(i, 9)}}}});
    return {{"matrix", homogeneous}, {"translation_mm", t}, {"solutions", solutions}};
}

ordered_json MonteCarloOfTheFit(const FitOptions& options) {
    ordered_json parameters = ordered_json::array();
    for (int k = 1; k < kParameterEnd; ++k) {
        const auto index = static_cast<std::size_t>(k);
        if (Job.ParamText[index] != kFloat) continue;
        const std::span<const double> values = MonteCarloArray(k);
        parameters.push_back({{"name", HeldParameterName(k)},
                              {"unit", InternalUnitOf(KindOf(k))},
                              {"mean", MeanOfArray(values)},
                              {"spread", SigmaOfArray(values)},
                              {"sigma", Calculation.Sigma[index]}});
    }
    const std::span<const double> sigmas = MonteCarloArray(kSigmaXYZ);
    return {{"runs", options.MonteCarloRuns},
            {"seed", options.Seed},
            {"noise_mm", options.Noise_mm},
            {"parameters", parameters},
            {"sigmaXYZ", {{"mean_mm", MeanOfArray(sigmas)}, {"spread_mm", SigmaOfArray(sigmas)}}}};
}

ordered_json ToleranceJson(const ToleranceCheck& check) {
    return {{"tolerance_mm", check.Tolerance_mm},
            {"verdict", WordOf(check.Word)},
            {"coordinates", check.InUse},
            {"beyond", check.Beyond}};
}

ordered_json PointJson(const FitPoint& point, double tolerance_mm) {
    ordered_json json = {{"name", point.Name},
                         {"start_mm", Triple(point.Start)},
                         {"target_mm", Triple(point.Target)},
                         {"transformed_mm", Triple(point.Transformed)},
                         {"residual_mm", Triple(point.Deviation)},
                         {"residual3D_mm", point.Deviation3D},
                         {"used", {point.Used[0], point.Used[1], point.Used[2]}}};
    if (tolerance_mm > 0)
        json["beyond"] = {IsBeyond(point.Pair, 1, tolerance_mm), IsBeyond(point.Pair, 2, tolerance_mm),
                          IsBeyond(point.Pair, 3, tolerance_mm)};
    return json;
}

// Points of one set without a partner, behind the pairs.
template <class X, class Z>
void WriteOthers(JsonObject& object, const char* name, const std::vector<std::string>& names, const X& x,
                 const X& y, const Z& z) {
    WriteList(object, name, static_cast<std::size_t>(Job.Pairs()) + 1, names.size(), [&](std::size_t i) {
        return ordered_json{{"name", names[i]}, {"mm", {x[i].value_or(0), y[i].value_or(0), z[i]}}};
    });
}

// How the fit was held against all others; null where it was not.
ordered_json CertificateOfTheFit() {
    if (Certificate.Kind == CertificateRecord::Road::None) return nullptr;
    return {{"kind", Certificate.Kind == CertificateRecord::Road::ClosedForm ? "closed form" : "starts"},
            {"starts", Certificate.Starts},
            {"relativeAbove", Certificate.RelativeAbove}};
}

// What ran on behind the weightings, and how near it came.
ordered_json Optimum() {
    ordered_json optimum = {{"linearisations", Norm.Linearisations}, {"exchanges", Norm.Exchanges}};
    if (std::isfinite(Norm.AboveOptimum)) {
        optimum["atMostAbove_mm"] = Norm.AboveOptimum;
    } else {
        optimum["atMostAbove_mm"] = nullptr;
    }
    optimum["about"] = Norm.BoundOfAll ? "all" : "this minimum";
    optimum["starts"] = Norm.Starts;
    return optimum;
}

}  // namespace

void WriteFitJson(const FitOptions& options, const SolutionDetails* details, const FitStatistics& statistics,
                  std::ostream& out) {
    const auto& c = Calculation;
    const FitNorms norms = NormsOfDeviations();
    ordered_json root;
    root["schema"] = "corvinade-fit";
    root["schemaVersion"] = kSchemaVersion;
    root["program"] = ProgramAsJson();
    root["input"] = {{"start", options.Start},
                     {"target", options.Target},
                     {"match", options.Match},
                     {"parameters", options.Parameters},
                     {"lengthUnit", Job.LengthUnitName},
                     {"angleUnit", Job.AngleUnitName},
                     {"direction", options.FromTarget ? "ocs-mcs" : "mcs-ocs"}};
    root["input"]["targetKind"] = options.TargetKind;
    root["input"]["lengthDigits"] = Job.LengthDigits;
    root["input"]["angleDigits"] = Job.AngleDigits;
    root["files"] = ordered_json::array();
    for (const ReadFileFacts& facts : options.FileFacts) root["files"].push_back(FactsJson(facts));
    root["counts"] = {{"start", Job.Start.Count()},
                      {"target", Job.Target.Count()},
                      {"pairs", Job.Pairs()},
                      {"observations", ObservationsInUse()},
                      {"unknowns", c.nFloat}};
    root["converged"] = c.Converged;
    root["openParameters"] = NamesOfOpen();
    root["collapsedScale"] = IsTrue(Job.Collapsed);
    root["iterations"] = Adjustment.Iterations;
    root["norm"] = options.Norm;
    root["normIterations"] = Norm.Iterations;
    root["certificate"] = CertificateOfTheFit();
    if (Norm.RunOn) root["optimum"] = Optimum();
    root["parameters"] = ParameterRows();
    root["transformation"] = Transformation();
    if (details != nullptr) root["details"] = DetailsJson(*details);
    if (HasMonteCarlo(options)) root["monteCarlo"] = MonteCarloOfTheFit(options);
    if (options.Inverse) root["inverse"] = InverseOfTheFit();
    root["quality"] = {{"s0_mm", c.s0},
                       {"sx_mm", c.sx},
                       {"sy_mm", c.sy},
                       {"sz_mm", c.sz},
                       {"sxyz_mm", c.SigmaXYZ},
                       {"sumOfDeviations_mm", norms.Sum},
                       {"largestDeviation_mm", norms.Largest},
                       {"note", "s0 = sqrt(vPv / (sum of weights - 1))"}};
    const ToleranceCheck tolerance = CheckTolerance();
    if (tolerance.Word != Verdict::None) root["tolerance"] = ToleranceJson(tolerance);
    out << "{";
    JsonObject object{out, 2};
    for (const auto& member : root.items()) WriteMember(object, member.key(), member.value());
    BeginMember(object, "statistics");
    WriteStatisticsJson(options, statistics, out);
    if (!options.NoPoints) {
        WriteList(object, "points", 1, static_cast<std::size_t>(Job.Pairs()) + 1, [&](std::size_t i) {
            return PointJson(FitPointOf(static_cast<int>(i)), tolerance.Tolerance_mm);
        });
        WriteOthers(object, "startOnly", Job.Transformed.Name, Job.Transformed.X, Job.Transformed.Y,
                    Job.Transformed.Z);
        WriteOthers(object, "targetOnly", Job.Target.Name, Job.Target.X, Job.Target.Y, Job.Target.Z);
    }
    WriteMember(object, "notes", NotesToJson(Notes.List));
    if (options.Protocol) WriteMember(object, "protocol", CompleteProtocol());
    out << "\n}\n";
}

}  // namespace corvinade::cli
