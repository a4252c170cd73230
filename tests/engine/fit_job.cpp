// Jobs for tests of the fit.
#include "engine/fit_job.h"

#include <cstdint>

#include "core/run.h"
#include "core/settings.h"

using namespace corvinade;

namespace {

std::uint64_t state = 0;

double NextNoise() {
    double sum = 0;
    for (int i = 0; i < 12; ++i) sum += NextNumber();
    return sum / 2;
}

}  // namespace

double NextNumber() {
    state = state * 6364136223846793005ULL + 1442695040888963407ULL;
    return static_cast<double>(state >> 11) / 4503599627370496.0 - 1;
}

void BeginFit() {
    state = 20;
    Settings.MaxIteration = 100;
    Settings.BestFit_Etta = 1e-9;
    Settings.RawScale = 2;
    Job.LengthUnitName = "millimeter";
    Job.AngleUnitName = "degree";
    Job.ParamText.fill(kNotUsed);
}

void AddPair(const reference::Point& start, const reference::Point& target) {
    std::string name = "P";
    name += std::to_string(Job.Pairs() + 1);
    const auto put = [&name](PointSet& points, const reference::Point& p) {
        points.Add(name, static_cast<double>(p[0]), static_cast<double>(p[1]), static_cast<double>(p[2]));
    };
    put(Job.Start, start);
    put(Job.Target, target);
    put(Job.Transformed, start);
    Job.UseFlags.insert(Job.UseFlags.end(), 3, 1);
    Job.SetPairs(Job.Pairs() + 1);
    Run.JobDataValid = kTrue;
}

void FloatParameters(std::initializer_list<int> parameters) {
    for (const int parameter : parameters) Job.ParamText[static_cast<std::size_t>(parameter)] = kFloat;
}

std::array<reference::Real, 18> Truth(std::initializer_list<double> thirteen) {
    std::array<reference::Real, 18> truth{};
    std::size_t k = 1;
    for (const double value : thirteen) truth[k++] = value;
    return truth;
}

void AddCloud(const CloudEntry& cloud) {
    for (int i = 0; i < cloud.Points; ++i) {
        reference::Point start{}, target{};
        // What the job holds is rounded to 64 bits; the target is that of the rounded start point.
        for (std::size_t axis = 0; axis < 3; ++axis)
            start[axis] = static_cast<double>(cloud.Centre[axis] + cloud.Size / 2 * NextNumber());
        target = reference::Image(cloud.Truth, start);
        for (auto& coordinate : target) coordinate += cloud.Noise * NextNoise();
        AddPair(start, target);
    }
}

reference::Problem ProblemOfJob(const std::array<reference::Real, 18>& begin) {
    reference::Problem problem;
    for (int i = 1; i <= Job.Pairs(); ++i) {
        const Vec3 p = StartPoint(i), q = TargetPoint(i);
        problem.Start.push_back({p(1), p(2), p(3)});
        problem.Target.push_back({q(1), q(2), q(3)});
        const auto place = static_cast<std::size_t>(3 * (i - 1));
        problem.Weight.push_back({reference::Real(Job.UseFlags[place + 1]),
                                  reference::Real(Job.UseFlags[place + 2]),
                                  reference::Real(Job.UseFlags[place + 3])});
        if (i <= Job.RobotABC.Rows)
            problem.Pose.push_back({Job.RobotABC(i, 1), Job.RobotABC(i, 2), Job.RobotABC(i, 3)});
    }
    problem.Parameters = begin;
    for (int parameter = 1; parameter < kParameterEnd; ++parameter) {
        const auto k = static_cast<std::size_t>(parameter);
        if (Job.ParamText[k] == kFloat) {
            problem.Free.push_back(parameter);
        } else if (parameter < kScaleX || parameter > kScaleXYZ || Job.ParamText[kScaleXYZ] != kFloat) {
            problem.Parameters[k] = ParameterValue(Job, parameter);
        }
    }
    return problem;
}
