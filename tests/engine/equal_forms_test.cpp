// Equal forms of one transformation: the matrix stays, the held values stay, and Monte Carlo's spread is that
// of one form.
#include "engine/equal_forms.h"

#include <numbers>
#include <set>

#include "core/notes.h"
#include "engine/monte_carlo.h"
#include "engine/norm_job.h"
#include "engine/parameter_kind.h"
#include "engine/selection.h"
#include "engine/transform.h"

using namespace corvinade;

namespace {

constexpr std::initializer_list<int> kTwelve = {kTraX,   kTraY,   kTraZ,   kRotX,    kRotY,    kRotZ,
                                                kScaleX, kScaleY, kScaleZ, kAngleXY, kAzimuth, kAngleZtoXY};

class Forms : public NormTest {
protected:
    static Parameters ValuesOfJob() {
        Parameters values{};
        for (int k = kTraX; k < kParameterEnd; ++k)
            values[static_cast<std::size_t>(k)] = ParameterValue(Job, k);
        return values;
    }
    static FitModel ModelOfJob() { return ChooseModel(Job.ParamText); }

    // R K S in long double, by the elementary rotations.
    static reference::Square MatrixOf(const Parameters& p) {
        std::array<reference::Real, 18> values{};
        for (std::size_t k = 1; k < values.size(); ++k) values[k] = p[k];
        reference::Square M{};
        for (std::size_t column = 0; column < 3; ++column) {
            reference::Point unit{};
            unit[column] = 1;
            const reference::Point image = reference::Image(values, unit),
                                   zero = reference::Image(values, {});
            for (std::size_t row = 0; row < 3; ++row) M[row][column] = image[row] - zero[row];
        }
        return M;
    }
    static void ExpectSameMatrix(const Parameters& a, const Parameters& b, double tolerance) {
        const reference::Square A = MatrixOf(a), B = MatrixOf(b);
        for (std::size_t i = 0; i < 3; ++i)
            for (std::size_t j = 0; j < 3; ++j)
                EXPECT_NEAR(static_cast<double>(A[i][j]), static_cast<double>(B[i][j]), tolerance);
    }
    static Parameters Applied(const EqualForm& form, const Parameters& values) {
        Parameters other = values;
        for (int k = kRotX; k <= kAngleZtoXY; ++k)
            other[static_cast<std::size_t>(k)] = form.Of(k, values[static_cast<std::size_t>(k)]);
        return other;
    }
    static void TakeAny() {
        for (int k = kRotX; k <= kAngleZtoXY; ++k) ParameterValue(Job, k) = 2.5 * NextNumber();
        for (int k = kScaleX; k <= kScaleZ; ++k) ParameterValue(Job, k) = 0.3 + 5 * (NextNumber() + 1);
        Job.ScaleXYZ = 1;
    }

    // Twelve unknowns, targets in another unit than the starts.
    static void AddOtherUnit(double unit, double lean, double noise) {
        AddCloud({.Points = 14,
                  .Noise = 0,
                  .Truth = Truth(
                      {100, -200, 300, 0.4, -0.7, 2.1, unit, 1.03 * unit, 0.98 * unit, 1, 0.01, 2.6, lean})});
        for (std::size_t i = 1; i < Job.Target.X.size(); ++i) {
            Job.Target.X[i] = *Job.Target.X[i] + noise * unit * NextNumber();
            Job.Target.Y[i] = *Job.Target.Y[i] + noise * unit * NextNumber();
            Job.Target.Z[i] += noise * unit * NextNumber();
        }
        FloatParameters(kTwelve);
    }

    // Of Rot x, Rot y, Rot z and so on by error propagation at the result, with this noise of the starts.
    static double SigmaOfNoise(int parameter, double noise) {
        const int i = Calculation.UnknownOf[static_cast<std::size_t>(parameter)];
        return std::sqrt(Calculation.Q(i, i)) * noise;
    }
};

}  // namespace

TEST_F(Forms, AllGiveTheSameMatrix) {
    FloatParameters(kTwelve);
    for (int trial = 0; trial < 50; ++trial) {
        TakeAny();
        const Parameters values = ValuesOfJob();
        const std::vector<EqualForm> forms = EqualForms(ModelOfJob(), values);
        EXPECT_EQ(forms.size(), 64u);
        for (const EqualForm& form : forms) ExpectSameMatrix(Applied(form, values), values, 1e-13);
    }
}

TEST_F(Forms, LeaveWhatIsHeldAsItIs) {
    struct Choice {
        std::vector<int> Floats;
        std::size_t Forms;
    };
    // With right angles held: pairs of scale signs, each in two triples of angles and with z to xy 0 or minus
    // 0. With one scale, or none, the two triples alone.
    const std::vector<Choice> choices = {{{kScaleX, kScaleY, kScaleZ}, 4}, {{kScaleXYZ}, 1}, {{}, 1}};
    for (const Choice& choice : choices) {
        Job.ParamText.fill(kNotUsed);
        FloatParameters(kRigid);
        for (const int k : choice.Floats) Job.ParamText[static_cast<std::size_t>(k)] = kFloat;
        TakeAny();
        Job.AngleXY = Job.Azimuth = Job.AngleZtoXY = 0;
        if (choice.Forms == 1) Job.ScaleX = Job.ScaleY = Job.ScaleZ = Job.ScaleXYZ = 1.5;
        const Parameters values = ValuesOfJob();
        const FitModel model = ModelOfJob();
        std::set<std::array<bool, 3>> signs;
        for (const EqualForm& form : EqualForms(model, values)) {
            const Parameters other = Applied(form, values);
            ExpectSameMatrix(other, values, 1e-13);
            signs.insert({other[kScaleX] < 0, other[kScaleY] < 0, other[kScaleZ] < 0});
            for (int k = kRotX; k <= kAngleZtoXY; ++k) {
                const auto i = static_cast<std::size_t>(k);
                if (model.UnknownOf[i] == 0 && (k < kScaleX || k > kScaleXYZ)) {
                    EXPECT_NEAR(std::remainder(other[i] - values[i], 2 * std::numbers::pi), 0, 1e-12) << k;
                }
            }
        }
        EXPECT_EQ(signs.size(), choice.Forms);
    }
    // Rot y held at 40 degrees has no other triple, 90 degrees have.
    Job.ParamText.fill(kNotUsed);
    FloatParameters({kRotX, kRotZ});
    Job.AngleXY = Job.Azimuth = Job.AngleZtoXY = 0;
    Job.RotY = 0.7;
    for (const EqualForm& form : EqualForms(ModelOfJob(), ValuesOfJob()))
        for (const int k : {kRotX, kRotY, kRotZ}) EXPECT_EQ(form.Of(k, 0.7), 0.7) << k;
}

TEST_F(Forms, TheNearestIsTheOneThatWasTurnedAway) {
    FloatParameters(kTwelve);
    for (int trial = 0; trial < 50; ++trial) {
        TakeAny();
        const Parameters reference = ValuesOfJob();
        const std::vector<EqualForm> forms = EqualForms(ModelOfJob(), reference);
        for (const EqualForm& form : forms) {
            Parameters values = Applied(form, reference);
            for (int k = kRotX; k <= kAngleZtoXY; ++k)
                values[static_cast<std::size_t>(k)] += 1e-4 * NextNumber();
            for (const int k : {kRotX, kRotZ, kAzimuth})
                values[static_cast<std::size_t>(k)] += 2 * std::numbers::pi * std::round(NextNumber());
            const Parameters before = values;
            EXPECT_EQ(TakeNearestForm(ModelOfJob(), forms, reference, values), !form.IsSame());
            ExpectSameMatrix(values, before, 1e-12);
            for (const int k : kTwelve)
                EXPECT_NEAR(values[static_cast<std::size_t>(k)], reference[static_cast<std::size_t>(k)],
                            1e-3);
        }
    }
}

TEST_F(Forms, ASpreadOfMonteCarloIsThatOfOneForm) {
    constexpr double kNoise = 0.01;
    MonteCarlo.MonteCarloOn = kTrue;
    Settings.MonteCarloRuns = 400;
    Settings.SigmaX = Settings.SigmaY = Settings.SigmaZ = kNoise;
    int others = 0;
    for (const double unit : {1000.0, 1.0})
        for (const double lean : {1e-4, 3e-5, 0.02}) {
            SCOPED_TRACE(std::to_string(unit) + ", " + std::to_string(lean));
            Job = JobRecord{};
            BeginFit();
            Settings.SigmaX = Settings.SigmaY = Settings.SigmaZ = kNoise;
            AddOtherUnit(unit, lean, 0.01);
            Calculate(kL2);
            ASSERT_TRUE(IsTrue(MonteCarlo.MonteCarloDone));
            ASSERT_TRUE(Calculation.Converged);
            // Noise of the starts by the scale is noise of the targets.
            for (const int k : {kRotX, kRotY, kRotZ, kAngleXY, kAngleZtoXY}) {
                const double sigma = SigmaOfNoise(k, kNoise * unit),
                             spread = SigmaOfArray(MonteCarloArray(k));
                EXPECT_NEAR(spread, sigma, 0.3 * sigma) << k;
            }
            for (const int k : {kScaleX, kScaleY, kScaleZ}) EXPECT_GT(ParameterValue(Job, k), 0) << k;
            for (const Note& note : Notes.List)
                if (note.Code == NoteCode::NearestForm) ++others;
        }
    EXPECT_GT(others, 0) << "runs in other forms are what this is about";
    MonteCarlo.MonteCarloOn = kFalse;
}

TEST_F(Forms, RunsKeepTheirMatrixAndStandWithinHalfATurnOfTheResult) {
    MonteCarlo.MonteCarloOn = kTrue;
    Settings.MonteCarloRuns = 200;
    Settings.SigmaX = Settings.SigmaY = Settings.SigmaZ = 0.01;
    AddOtherUnit(1000, 3e-5, 0.01);
    Calculate(kL2);
    ASSERT_TRUE(IsTrue(MonteCarlo.MonteCarloDone));
    const Matrix brought = MonteCarlo.MCResults;
    // All runs turned to forms at random, and brought back.
    const std::vector<EqualForm> forms = EqualForms(Adjustment.Model, ValuesOfJob());
    Matrix turned = brought;
    for (int i = 1; i <= turned.Columns; ++i) {
        const EqualForm& form = forms[static_cast<std::size_t>(i) % forms.size()];
        for (int k = kRotX; k <= kAngleZtoXY; ++k) turned(k, i) = form.Of(k, brought(k, i));
    }
    MonteCarlo.MCResults = turned;
    BringRunsToFormOfResult();
    for (int i = 1; i <= brought.Columns; ++i) {
        Parameters a = ValuesOfJob(), b = a;
        for (const int k : kTwelve) {
            const auto index = static_cast<std::size_t>(k);
            a[index] = MonteCarlo.MCResults(k, i);
            b[index] = turned(k, i);
            EXPECT_NEAR(a[index], brought(k, i), 1e-12 * std::max(1.0, std::fabs(a[index]))) << k;
            if (KindOf(k) == ParameterKind::Angle) {
                EXPECT_LE(std::fabs(a[index] - ParameterValue(Job, k)), std::numbers::pi);
            }
        }
        ExpectSameMatrix(a, b, 1e-9);
    }
    MonteCarlo.MonteCarloOn = kFalse;
}

TEST_F(Forms, AResultIsShownWithPositiveScalesAndQStaysTheInverseNormalMatrix) {
    for (const double unit : {1000.0, 0.001, 30.0}) {
        SCOPED_TRACE(unit);
        Job = JobRecord{};
        BeginFit();
        AddOtherUnit(unit, 0.02, 0.01);
        Calculate(kL2);
        ASSERT_TRUE(Calculation.Converged);
        EXPECT_GT(Job.ScaleX, 0);
        EXPECT_GT(Job.ScaleY, 0);
        EXPECT_GT(Job.ScaleZ, 0);
        EXPECT_NEAR(Job.AngleXY, 0.01, 1e-3);
        // The lean to the other side with the azimuth half a turn on is the same one.
        EXPECT_NEAR(Job.AngleZtoXY * std::cos(Job.Azimuth), 0.02 * std::cos(2.6), 1e-3);
        EXPECT_NEAR(Job.AngleZtoXY * std::sin(Job.Azimuth), 0.02 * std::sin(2.6), 1e-3);
        // N = A'A of differences of the image by each parameter, and N Q is the unit matrix.
        const int u = 12;
        std::vector<std::vector<double>> A;
        for (const int k : kTwelve) {
            const bool length = k <= kTraZ, scale = k >= kScaleX && k <= kScaleZ;
            const double step = length ? 1e-3 * unit : scale ? 1e-6 * unit : 1e-6;
            std::vector<double> column;
            for (int i = 1; i <= Job.Pairs(); ++i) {
                const Vec3 p = StartPoint(i);
                Vec3 up, down;
                const double kept = ParameterValue(Job, k);
                for (const bool upward : {true, false}) {
                    ParameterValue(Job, k) = kept + (upward ? step : -step);
                    Job.RotXCopy = Job.RotX;
                    Job.RotYCopy = Job.RotY;
                    Job.RotZCopy = Job.RotZ;
                    Vec3& X = upward ? up : down;
                    TransformPoint(p(1), p(2), p(3), X(1), X(2), X(3));
                }
                ParameterValue(Job, k) = kept;
                for (int axis = 1; axis <= 3; ++axis) column.push_back((up(axis) - down(axis)) / (2 * step));
            }
            A.push_back(std::move(column));
        }
        for (int i = 1; i <= u; ++i)
            for (int j = 1; j <= u; ++j) {
                double sum = 0;
                for (int k = 1; k <= u; ++k) {
                    double n = 0;
                    for (std::size_t row = 0; row < A[0].size(); ++row)
                        n +=
                            A[static_cast<std::size_t>(i - 1)][row] * A[static_cast<std::size_t>(k - 1)][row];
                    sum += n * Calculation.Q(k, j);
                }
                const double scale = std::sqrt(std::fabs(Calculation.Q(j, j) / Calculation.Q(i, i)));
                EXPECT_NEAR(sum * std::min(1.0, 1 / scale), i == j ? 1 : 0, 1e-4) << i << ", " << j;
            }
    }
}

TEST_F(Forms, AMirroredResultHasNoPositiveForm) {
    FloatParameters(kTwelve);
    TakeAny();
    Job.AngleXY = 0.01;
    Job.AngleZtoXY = 0.02;
    FloatParameters(kTwelve);
    Job.ParamText[kAngleXY] = Job.ParamText[kAzimuth] = Job.ParamText[kAngleZtoXY] = kNotUsed;
    Job.AngleXY = Job.Azimuth = Job.AngleZtoXY = 0;
    Job.ScaleX = -Job.ScaleX;
    const Parameters before = ValuesOfJob();
    Matrix Q;
    EXPECT_FALSE(TakePositiveForm(ModelOfJob(), Q));
    EXPECT_EQ(ValuesOfJob(), before);
    EXPECT_TRUE(Notes.List.empty());
}
