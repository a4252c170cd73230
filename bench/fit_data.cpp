// Point pairs with a known transformation and seeded noise.
#include "fit_data.h"

#include <cstdint>
#include <string>

#include "core/fresh_start.h"
#include "core/job.h"
#include "core/run.h"
#include "core/settings.h"
#include "engine/transform.h"

using namespace corvinade;

namespace {

// A small generator of our own: the standard distributions differ from library to library.
struct Uniform {
    std::uint64_t State = 88172645463325252ULL;
    double Next() {  // -1 to 1
        State ^= State << 13;
        State ^= State >> 7;
        State ^= State << 17;
        return static_cast<double>(State >> 11) / 4503599627370496.0 - 1;
    }
    // Near enough to a normal distribution of standard deviation 1.
    double Noise() {
        double sum = 0;
        for (int i = 0; i < 12; ++i) sum += Next();
        return sum / 2;
    }
};

}  // namespace

void TakeTruth(const FitData& data) {
    const auto& t = data.Truth;
    Job.TraX = t[0];
    Job.TraY = t[1];
    Job.TraZ = t[2];
    Job.RotX = Job.RotXCopy = t[3];
    Job.RotY = Job.RotYCopy = t[4];
    Job.RotZ = Job.RotZCopy = t[5];
    Job.ScaleX = t[6];
    Job.ScaleY = t[7];
    Job.ScaleZ = t[8];
    Job.AngleXY = t[9];
    Job.Azimuth = t[10];
    Job.AngleZtoXY = t[11];
}

FitData MakeFitData(int points, int parameters) {
    FitData data;
    data.Truth = {12000, -7000, 800, 0.4, -0.3, 1.1, 1.0002, 1.0002, 1.0002, 0, 0, 0};
    if (parameters == 12) {
        data.Truth = {12000, -7000, 800, 0.4, -0.3, 1.1, 1.0002, 0.9997, 1.0005, 0.002, 0.7, 0.003};
    }
    const JobRecord kept = Job;
    TakeTruth(data);
    Uniform random;
    data.Start.resize(static_cast<std::size_t>(points));
    data.Target.resize(data.Start.size());
    for (std::size_t i = 0; i < data.Start.size(); ++i) {
        auto& p = data.Start[i];
        auto& q = data.Target[i];
        p = {1e6 + 5000 * random.Next(), -4e5 + 4000 * random.Next(), 2e3 + 1500 * random.Next()};
        TransformPoint(p[0], p[1], p[2], q[0], q[1], q[2]);
        for (double& coordinate : q) coordinate += 0.05 * random.Noise();
    }
    Job = kept;
    return data;
}

void FillJob(const FitData& data, int parameters) {
    FreshStart();
    Settings.MaxIteration = 100;
    Settings.BestFit_Etta = 1e-9;
    Settings.RawScale = 2;
    const std::size_t n = data.Start.size();
    for (std::size_t i = 0; i < n; ++i) {
        const std::string name = "P" + std::to_string(i + 1);
        Job.Start.Add(name, data.Start[i][0], data.Start[i][1], data.Start[i][2]);
        Job.Target.Add(name, data.Target[i][0], data.Target[i][1], data.Target[i][2]);
    }
    Job.Transformed = Job.Start;
    Job.UseFlags.assign(3 * n + 1, 1);
    Job.SetPairs(Job.Start.Count());
    Run.JobDataValid = kTrue;
    Job.ParamText.fill(kNotUsed);
    for (const int k : {kTraX, kTraY, kTraZ, kRotX, kRotY, kRotZ})
        Job.ParamText[static_cast<std::size_t>(k)] = kFloat;
    if (parameters == 7) {
        Job.ParamText[kScaleXYZ] = kFloat;
    } else {
        for (const int k : {kScaleX, kScaleY, kScaleZ, kAngleXY, kAzimuth, kAngleZtoXY})
            Job.ParamText[static_cast<std::size_t>(k)] = kFloat;
    }
}
