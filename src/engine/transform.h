// The transformation of the job: its parameters taken through the chain of matrices.
#pragma once

#include "core/rooms.h"
#include "fit/chain.h"

namespace corvinade::engine {

// The matrices of the chain at the job's parameters that they were last built from.
inline ChainRecord Chain;

// What the chain is built from: the copies Job.RotXCopy, RotYCopy, RotZCopy of the angles, the scales and the
// angles of the frame.
ChainSource SourceOfJobChain();

void BuildRotationMatrix();
void BuildShearMatrix();
void BuildScaleMatrix();

// The three matrices and their product, where the job's parameters differ from those of the last time.
void BuildChain();

// The full chain for one point, mm. Rebuilds the three matrices of `Chain` from the job.
void TransformPoint(double x, double y, double z, double& X, double& Y, double& Z);

// Element-wise derivatives of R and K with respect to their angles, at the job's parameters.
Mat3 RotationDerivative(RotationAngle angle);
Mat3 ShearDerivative(ShearAngle angle);

}  // namespace corvinade::engine
