// The records of the fit to a shape by name.
#include "paraboloid/paraboloid_records.h"

#include "paraboloid/paraboloid.h"

namespace corvinade::paraboloid {

namespace {

const RecordEntry kRecords[] = {
    {"ParaboloidFile", &ParaboloidRun.ParaboloidFile, Storage::Run},
    {"ShapeTest", &ParaboloidRun.ShapeTest, Storage::Run},
    {"ParaStopRequested", &ParaboloidRun.ParaStopRequested, Storage::Run},
    {"PreviousS0", &ParaboloidRun.Loop.PreviousS0, Storage::Run},
    {"ParaPass", &ParaboloidRun.ParaPass, Storage::Run},
    {"TrendTraX", &ParaboloidRun.Loop.Trends[0].History, Storage::Run},
    {"TrendTraY", &ParaboloidRun.Loop.Trends[1].History, Storage::Run},
    {"TrendTraZ", &ParaboloidRun.Loop.Trends[2].History, Storage::Run},
    {"TrendRotX", &ParaboloidRun.Loop.Trends[3].History, Storage::Run},
    {"TrendRotY", &ParaboloidRun.Loop.Trends[4].History, Storage::Run},
    {"BoostTraX", &ParaboloidRun.Loop.Trends[0].Boost, Storage::Run},
    {"BoostTraY", &ParaboloidRun.Loop.Trends[1].Boost, Storage::Run},
    {"BoostTraZ", &ParaboloidRun.Loop.Trends[2].Boost, Storage::Run},
    {"BoostRotX", &ParaboloidRun.Loop.Trends[3].Boost, Storage::Run},
    {"BoostRotY", &ParaboloidRun.Loop.Trends[4].Boost, Storage::Run},
};

}  // namespace

std::span<const RecordEntry> ParaboloidRecords() {
    return kRecords;
}

}  // namespace corvinade::paraboloid
