// What a fit leaves behind, to be put back where another one turns out to be no better.
#pragma once

#include "core/arrays.h"
#include "core/job.h"
#include "engine/adjustment.h"
#include "engine/norms.h"

struct FitOutcome {
    Parameters Values = ParametersOf(Job);
    AdjustmentRecord Record = Adjustment;
    Matrix Q;
    Column v;

    explicit FitOutcome(const NormFit& fit) : Q(fit.Q), v(fit.v) {}
    void PutBack(NormFit& fit) const {
        PutParameters(Values, Job);
        Adjustment = Record;
        fit.Q = Q;
        fit.v = v;
    }
};
