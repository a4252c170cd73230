// The engine's records by name.
#include "engine/engine_records.h"

#include "engine/adjustment.h"
#include "engine/calculation.h"
#include "engine/calculation_window.h"
#include "engine/inverse.h"
#include "engine/monte_carlo.h"
#include "engine/norms.h"

namespace corvinade::engine {

namespace {

const RecordEntry kRecords[] = {
    {"nFloat", &Calculation.nFloat, Storage::Run},
    {"nObs", &Calculation.nObs, Storage::Run},
    {"Q", &Calculation.Q, Storage::Run},
    {"v", &Calculation.v, Storage::Run},
    {"P", &Calculation.P, Storage::Run},
    {"s0", &Calculation.s0, Storage::Run},
    {"sx", &Calculation.sx, Storage::Run},
    {"sy", &Calculation.sy, Storage::Run},
    {"sz", &Calculation.sz, Storage::Run},
    {"SigmaXYZ", &Calculation.SigmaXYZ, Storage::Run},
    {"Sigma", NumberRow{Calculation.Sigma.data(), 18}, Storage::Run},
    {"Significance", NumberRow{Calculation.Significance.data(), 18}, Storage::Run},
    {"LastSolution", NumberRow{CalculationWindow.LastSolution.data(), 18}, Storage::Run},
    {"LastQuality", NumberRow{CalculationWindow.LastQuality.data(), 16}, Storage::Run},
    {"UseABCActive", &CalculationWindow.UseABCActive, Storage::Run},
    {"GraphValues", &CalculationWindow.GraphValues, Storage::Run},
    {"Iterations", &Adjustment.Iterations, Storage::Run},
    {"NormTolerance", &Norm.NormTolerance, Storage::Run},
    {"NormIterations", &Norm.Iterations, Storage::Run},
    {"MonteCarloOn", &MonteCarlo.MonteCarloOn, Storage::Run},
    {"MonteCarloDone", &MonteCarlo.MonteCarloDone, Storage::Run},
    {"MCSaveX", &MonteCarlo.MCSaveX, Storage::Run},
    {"MCSaveY", &MonteCarlo.MCSaveY, Storage::Run},
    {"MCSaveZ", &MonteCarlo.MCSaveZ, Storage::Run},
    {"MCResults", &MonteCarlo.MCResults, Storage::Run},
    {"InvTraX", &Inverse.InvTraX, Storage::Run},
    {"InvTraY", &Inverse.InvTraY, Storage::Run},
    {"InvTraZ", &Inverse.InvTraZ, Storage::Run},
    {"InvSolutions", &Inverse.InvSolutions, Storage::Run},
};

}  // namespace

std::span<const RecordEntry> EngineRecords() {
    return kRecords;
}

}  // namespace corvinade::engine
