// Whether the solution of the last least-squares fit is the best one there is.
#pragma once

#include "core/rooms.h"
#include "fit/norm_run.h"

namespace corvinade::engine {

inline CertificateRecord Certificate;

}  // namespace corvinade::engine
