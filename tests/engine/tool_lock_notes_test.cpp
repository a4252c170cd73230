// What is said of a tool's fit at gimbal lock whose poses are turned about three axes: the lock, and no more.
#include <algorithm>
#include <cmath>
#include <numbers>

#include "core/notes.h"
#include "engine/calculation_job.h"
#include "engine/fit_reference.h"
#include "engine/presets.h"
#include "engine/result_notes.h"
#include "engine/seed.h"
#include "engine/selection.h"

using namespace corvinade;

namespace {

using reference::Point;
using reference::Real;

class ToolLockNotes : public CalculationJob {
protected:
    static std::size_t At(int i) { return static_cast<std::size_t>(i); }
    static Real InDigits(Real x, Real digits) { return std::round(x * digits) / digits; }

    // Exact poses in the digits of a file. Their points are rounded to a millionth of a millimetre.
    static std::array<Real, 18> AddPoses(int seed, int poses) {
        Job = JobRecord{};
        BeginFit();
        RhoFestlegung();
        for (int skip = 0; skip < 37 * seed; ++skip) NextNumber();
        const double right = (seed % 2 == 0 ? 1 : -1) * std::numbers::pi / 2;
        const auto truth = Truth({100, 200, 300, 3 * NextNumber(), right, 3 * NextNumber(), 1, 1, 1, 1});
        const std::array<Real, 3> tool = {30, -40, 200};
        Job.RobotABC = Matrix(poses, 3);
        for (int i = 1; i <= poses; ++i) {
            std::array<double, 3> pose = {3 * NextNumber(), 1.4 * NextNumber(), 3 * NextNumber()};
            for (int k = 1; k <= 3; ++k) Job.RobotABC(i, k) = pose[At(k - 1)];
            const reference::Square G = reference::Product(
                reference::Turn(2, pose[0]),
                reference::Product(reference::Turn(1, pose[1]), reference::Turn(0, pose[2])));
            Point start = {1000 * NextNumber(), 1000 * NextNumber(), 1000 * NextNumber()};
            Point target = reference::Image(truth, start);
            for (Real& x : start) x = InDigits(x, 1e6);
            for (std::size_t axis = 0; axis < 3; ++axis)
                for (std::size_t k = 0; k < 3; ++k) target[axis] += G[axis][k] * tool[k];
            AddPair(start, target);
        }
        const std::size_t size = At(poses) + 1;
        Job.RVecX.resize(size);
        Job.RVecY.resize(size);
        Job.RVecZ.resize(size);
        return truth;
    }
    static void Fit(const char* preset) {
        SelectPreset(preset);
        ChooseDefaultSeeds();
        for (const int k : {kRvecX, kRvecY, kRvecZ}) Job.ParamText[At(k)] = kFloat;
        SelectionFromJob();
        Selection.CheckUseABC = true;
        Selection.RDistShown = false;
        Notes.List.clear();
        ButtonCalcErsatz();
        ASSERT_TRUE(Calculation.Finite);
    }
    static bool Noted(NoteCode code) {
        return std::any_of(Notes.List.begin(), Notes.List.end(),
                           [code](const Note& note) { return note.Code == code; });
    }
    static std::string Texts() {
        std::string texts;
        for (const Note& note : Notes.List) texts += "\n    " + note.Text;
        return texts;
    }
};

}  // namespace

TEST_F(ToolLockNotes, PosesTurnedAboutThreeAxesLeaveNothingOpen) {
    int locked = 0;
    for (const char* preset : {"6", "7", "9", "12"})
        for (const int poses : {6, 8, 12})
            for (int seed = 0; seed < 12; ++seed) {
                SCOPED_TRACE(std::string(preset) + ", poses " + std::to_string(poses) + ", seed " +
                             std::to_string(seed));
                const auto truth = AddPoses(seed, poses);
                Fit(preset);
                EXPECT_FALSE(Noted(NoteCode::OpenParameters)) << Texts();
                EXPECT_FALSE(Noted(NoteCode::HardlyKnown)) << Texts();
                EXPECT_TRUE(Noted(NoteCode::GimbalLock)) << Texts();
                // Angles without a sigma have none that is large.
                if (IsLeftOpen(kRotX)) {
                    ++locked;
                    EXPECT_EQ(Texts().find("their sigmas are large"), std::string::npos) << Texts();
                }
                std::array<Real, 18> shown{};
                for (int k = 1; k < kParameterEnd; ++k) shown[At(k)] = ParameterValue(Job, k);
                const Point p = {700, -300, 900}, a = reference::Image(truth, p),
                            b = reference::Image(shown, p);
                for (std::size_t axis = 0; axis < 3; ++axis)
                    EXPECT_NEAR(static_cast<double>(a[axis] - b[axis]), 0, 1e-4);
                EXPECT_NEAR(std::fabs(Job.Rvec_z), 200, 1e-4);
            }
    EXPECT_GT(locked, 0);
}
