// The kinds of target file.
#include "import/robot_files.h"

#include "core/job.h"
#include "core/refresh.h"
#include "core/run.h"

namespace {

const InputKind kKinds[] = {
    {"Default - [Ptnr = optional], x, y z", &Run.IsDefault, nullptr},
    {"Kuka Robot file (*.dat) A = Rz, B = Ry', C = Rx''", &Job.IsKuka, EinlesenKUKAdatDatei},
    {"ABB Robot file (*.modx) x y z q1 q2 q3 q4", &Run.IsABBModx, EinlesenABB_MODX},
    {"Fanuc Robot file (*.ls) W = Rx, P = Ry', R = Rz''", &Run.IsFanuc,
     [] { EinlesenFanucDatei(Run.PathReader); }},
    {"only coordinates and R-Angles x, y, z, A = Rz, B = Ry', C = Rx''", &Run.IsXYZABC, EinlesenXYZABC},
    {"only coordinates and quaternions x, y, z, q1, q2, q3, q4", &Job.IsQuaternion, EinlesenABB},
    {"Paraboloid Shape Data", &Job.IsParaboloid, nullptr},
};

}  // namespace

std::span<const InputKind> InputKinds() {
    return kKinds;
}

const InputKind& ChosenKind() {
    for (const InputKind& kind : kKinds)
        if (IsTrue(*kind.IsKind)) return kind;
    return kKinds[0];
}
