// Whether the solution that the iteration has found is the best one there is, and the way to that where not.
#pragma once

#include "core/arrays.h"
#include "engine/norms.h"

// How the last least-squares fit was held against all other solutions.
struct CertificateRecord {
    enum class Road { None, ClosedForm, Starts };
    Road Kind = Road::None;  // None: it was not looked at (other norms and models, a fit that was stopped)
    int Starts = 0;
    // By how much of itself the sum of squares is above that of the best solution found; 0 within rounding.
    double RelativeAbove = 0;
    bool Mirrored = false;    // the determinant of R K S is below 0
    bool BeganAgain = false;  // the told iteration ended elsewhere, or nowhere
};
inline CertificateRecord Certificate;

// Compares the fit that the told iteration has ended in with the best of all solutions that keep the values
// the user has held: in closed form for 6, 7 and 12 parameters that all float, by several starts for other
// choices. Where another one is better by more than rounding, or the iteration found no end, the iteration
// begins again from there, a note says it, and `fit` and the job's parameters are those of the new run; where
// it cannot settle even there (Rot y at a right angle, where its equations are singular; an outlier of the
// size of the whole) the closed solution itself is the result. Everything else is left as it is, bit by bit.
// A mirrored solution is taken only where it fits better by more than noise explains, or where the start
// scales ask for it. With start values of the user's own a fit that converged is left, and a note tells of a
// better one. For the plain model with weights 0 and 1; does nothing for others, nor for a job with a shape.
// False when the job's points were replaced meanwhile.
bool SeekBestFit(NormFit& fit);
