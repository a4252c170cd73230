// Whether the solution of the last least-squares fit is the best one there is.
#pragma once

#include "fit/norm_run.h"

inline CertificateRecord Certificate;
