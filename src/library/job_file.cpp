// Job files by the reader of the program.
#include "corvinade/job_file.h"
//
#include <algorithm>

#include "core/files.h"
#include "core/job_file.h"
#include "core/measurement_sigmas.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/text.h"
#include "core/units.h"
#include "library/named_points.h"

namespace corvinade {

namespace {

using Text = const std::string&;

double FactorOf(std::span<const core::UnitRow> units, Text name) {
    for (const core::UnitRow& unit : units)
        if (name == unit.Name) return unit.Factor;
    return units.front().Factor;
}

// A field's text as a number: either delimiter, whatever the system's; degrees, minutes and seconds of an
// angle. An empty one counts as 0. False for what is none.
bool TakeNumber(Text text, bool angle, double& value) {
    value = 0;
    if (text.empty()) return true;
    try {
        const std::string number = angle ? core::SaveWinkelZurück(text) : text;
        return core::TextToNumber(number, '.', value) || core::TextToNumber(number, ',', value);
    } catch (const core::PlatformError&) {
        return false;
    }
}

double FactorOf(const core::JobRecord& job, int number) {
    const fit::ParameterKind kind = fit::KindOf(number);
    if (kind == fit::ParameterKind::Angle) return FactorOf(core::AngleUnits(), job.AngleUnitName);
    if (kind == fit::ParameterKind::Length) return FactorOf(core::LengthUnits(), job.LengthUnitName);
    return 1;
}

void TakeParameters(const core::JobRecord& job, JobFit& fit) {
    if (job.ParamText[fit::kTraX].empty()) return;  // a job without a choice stands on six
    for (int number = fit::kTraX; number < fit::kParameterEnd && fit.Refusal.empty(); ++number) {
        const std::string& text = job.ParamText[static_cast<std::size_t>(number)];
        const auto parameter = static_cast<corvinade::Parameter>(number - 1);
        const bool ofPoints = number <= fit::kAngleZtoXY, floats = text == core::kFloat;
        if (ofPoints) {
            auto& state = fit.Parameters.State[static_cast<std::size_t>(parameter)];
            state = floats ? ParameterState::Floats : ParameterState::Unused;
        }
        if (text == core::kNotUsed || (ofPoints && floats)) continue;
        double value = 0;
        if (!floats && !TakeNumber(text, fit::KindOf(number) == fit::ParameterKind::Angle, value))
            fit.Refusal = "a parameter is held at \"" + core::Printable(text) + "\", which is no number";
        else if (ofPoints)
            fit.Parameters.Hold(parameter, value / FactorOf(job, number));
        else if (floats || value != 0)
            fit.Refusal = number == fit::kRDist ? "the job is fitted to distances"
                                                : "the job is fitted to a robot's tool";
    }
}

JobFit FitOf(const core::JobRecord& job) {
    JobFit fit;
    // Numbers of norms are those of job files; any other one is read as least squares.
    constexpr int kLeastSum = 1, kLeastLargest = 3;
    if (job.NormType == kLeastSum) fit.Which = corvinade::Norm::L1;
    if (job.NormType == kLeastLargest) fit.Which = corvinade::Norm::Loo;
    for (std::size_t k = 1; k <= 3; ++k)
        if (const int chosen = job.SeedIndex[k]; chosen >= 1 && chosen <= job.Pairs())
            fit.SeedPairs[k - 1] = static_cast<std::size_t>(chosen) - 1;
    if (core::IsTrue(job.IsParaboloid)) {
        fit.Refusal = "the job is fitted to a shape";
        return fit;
    }
    try {
        TakeParameters(job, fit);
    } catch (const InvalidInput& error) {
        fit.Refusal = error.what();  // a scale of 0
    }
    return fit;
}

NamedPoints SideOf(const core::PointSet& points, const std::optional<core::SideAccuracy>& ofAll,
                   const core::SharedAccuracies& ofEach) {
    core::PointAccuracies sigmas = ofEach != nullptr ? *ofEach : core::PointAccuracies{};
    if (ofEach == nullptr && ofAll)
        for (std::size_t axis = 0; axis < 3; ++axis)
            sigmas.Of[axis].assign(static_cast<std::size_t>(points.Count()), (*ofAll)[axis]);
    return library::NamedPointsOf(points, sigmas);
}

}  // namespace

JobFile ReadJob(const std::string& path) {
    core::JobFileContent content;
    try {
        const core::FileBytes bytes = core::ReadFile(path);
        content = core::ReadJobBytes(bytes.View(), path);
    } catch (const core::PlatformError& error) {
        throw InvalidInput(error.What);
    }
    if (!content.HeadKnown) throw InvalidInput("\"" + path + "\" does not begin like a job file");
    if (!content.BlockFault.empty()) throw InvalidInput(content.BlockFault);
    const core::JobRecord& job = content.Job;
    JobFile told;
    const core::MeasurementSigmas sigmas = core::SigmasOf(job);
    told.Start = SideOf(job.Start, sigmas.Start, sigmas.StartOfEach);
    told.Target = SideOf(job.Target, sigmas.Target, sigmas.TargetOfEach);
    told.Pairs = static_cast<std::size_t>(job.Pairs());
    told.InUse.resize(3 * told.Pairs);
    for (std::size_t i = 0; i < told.InUse.size(); ++i)
        told.InUse[i] = i + 1 >= job.UseFlags.size() || job.UseFlags[i + 1] == 1 ? 1 : 0;
    // Names and paths stay with their system when the direction is switched, the points do not.
    told.McsToOcs = core::IsTrue(job.DirectionMCStoOCS);
    told.StartName = told.McsToOcs ? job.NameMCS : job.NameOCS;
    told.TargetName = told.McsToOcs ? job.NameOCS : job.NameMCS;
    told.StartPath = told.McsToOcs ? job.PathMCS : job.PathOCS;
    told.TargetPath = told.McsToOcs ? job.PathOCS : job.PathMCS;
    told.LengthUnit = job.LengthUnitName;
    told.AngleUnit = job.AngleUnitName;
    for (std::size_t k = 0; k < kParameters; ++k) told.ParameterTexts[k] = job.ParamText[k + 1];
    told.Fit = FitOf(job);
    // Without a result the fields of the parameters are empty.
    if (!job.ParamText[fit::kTraX].empty())
        told.Result = Chain{{job.TraX, job.TraY, job.TraZ},
                            {job.RotX, job.RotY, job.RotZ},
                            {job.ScaleX, job.ScaleY, job.ScaleZ},
                            {job.AngleXY, job.Azimuth, job.AngleZtoXY}};
    told.Converged = !core::IsTrue(job.Unconverged);
    told.Notes = library::FileNotesOf(content.Noticed);
    told.Said = content.Said;
    return told;
}

FitResult Fit(const JobFile& job) {
    if (!job.Fit.Refusal.empty())
        throw InvalidInput("this job has a fit that the library has not: " + job.Fit.Refusal);
    const std::size_t length = 3 * job.Pairs;
    for (const NamedPoints* side : {&job.Start, &job.Target})
        if (side->Coordinates.size() < length || (!side->Sigmas.empty() && side->Sigmas.size() < length))
            throw InvalidInput("both sets have at least as many points as there are pairs, " +
                               std::to_string(job.Pairs) + ", and one has fewer");
    FitOptions options;
    options.Parameters = job.Fit.Parameters;
    options.Which = job.Fit.Which;
    options.SeedPairs = job.Fit.SeedPairs;
    options.InUse = job.InUse;
    // The same ones of all points are one for all, as the job has it.
    const auto sigmasOf = [length](const std::vector<double>& sigmas) {
        const std::span all(sigmas);
        bool alike = sigmas.size() >= 3;
        for (std::size_t i = 3; i < sigmas.size() && alike; ++i) alike = sigmas[i] == sigmas[i - 3];
        return all.first(alike ? 3 : std::min(length, sigmas.size()));
    };
    const auto pairsOf = [length](const std::vector<double>& numbers) {
        return std::span(numbers).first(length);
    };
    options.StartSigma = sigmasOf(job.Start.Sigmas);
    options.TargetSigma = sigmasOf(job.Target.Sigmas);
    return Fit(Points(pairsOf(job.Start.Coordinates)), Points(pairsOf(job.Target.Coordinates)), options);
}

}  // namespace corvinade
