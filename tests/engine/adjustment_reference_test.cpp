// Results of the adjustment against published figures, against a second way of computing them in long
// double, and with the coordinates of a real hall.
#include <algorithm>
#include <cmath>
#include <fstream>
#include <nlohmann/json.hpp>

#include "core/platform.h"
#include "core/settings.h"
#include "engine/adjustment.h"
#include "engine/calculation.h"
#include "engine/design.h"
#include "engine/fit_job.h"
#include "engine/selection.h"
#include "fit/normal_equations.h"
#include "support/fixture.h"

using namespace corvinade;

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

nlohmann::json ReferenceSets() {
    std::ifstream file(std::string(CORVINADE_SOURCE_DIR) + "/tests/data/engine/reference_fits.json");
    return nlohmann::json::parse(file)["sets"];
}

reference::Point PointOf(const nlohmann::json& three) {
    return {three[0].get<double>(), three[1].get<double>(), three[2].get<double>()};
}

// Relative where the figure is large, absolute where it is small.
double Allowed(double expected, double relative) {
    return relative * std::max(1.0, std::fabs(expected));
}

}  // namespace

class ReferenceFit : public Program {
protected:
    ReferenceFit() { BeginFit(); }

    void RunFit() {
        P_ = Column(Job.UseFlags.begin(), Job.UseFlags.end());
        RunWithWeights();
    }
    void RunWithWeights() {
        u_ = CountUnknowns(Job.ParamText);
        BestFitIteration(u_, 3 * Job.Pairs(), Job.ParamText, Q_, v_, P_);
    }
    void FillJob(const nlohmann::json& set) {
        Job = JobRecord{};
        BeginFit();
        for (std::size_t i = 0; i < set["start"].size(); ++i)
            AddPair(PointOf(set["start"][i]), PointOf(set["target"][i]));
    }
    // A rotation has two triples of angles, and the oblique frame two pairs; which of them a fit finds
    // follows from its start. The independent solution begins at the same ones.
    static void TakeTheBranchesFound(reference::Problem& problem) {
        const auto turn = [](reference::Real& angle) { angle += angle > 0 ? -M_PIl : M_PIl; };
        auto& t = problem.Parameters;
        if (std::cos(static_cast<double>(t[kRotY])) * std::cos(Job.RotY) < 0) {
            turn(t[kRotX]);
            t[kRotY] = M_PIl - t[kRotY];
            turn(t[kRotZ]);
        }
        if (t[kAngleZtoXY] * Job.AngleZtoXY < 0) {
            turn(t[kAzimuth]);
            t[kAngleZtoXY] = -t[kAngleZtoXY];
        }
    }
    // Compares parameters, residuals and Q with the independent solution of the same problem.
    void ExpectAsReference(reference::Problem problem, double tolerance) {
        TakeTheBranchesFound(problem);
        const reference::Solution solution = reference::Solve(problem);
        ASSERT_TRUE(solution.Converged);
        EXPECT_TRUE(Adjustment.Converged);
        ASSERT_EQ(static_cast<int>(problem.Free.size()), u_);
        for (int k = 0; k < u_; ++k) {
            const int parameter = problem.Free[At(k)];
            const auto expected = static_cast<double>(problem.Parameters[At(parameter)]);
            double apart = ParameterValue(Job, parameter) - expected;
            const bool angle = (parameter >= kRotX && parameter <= kRotZ) || parameter == kAzimuth;
            if (angle) apart = std::remainder(apart, 2 * M_PI);
            EXPECT_NEAR(apart, 0, Allowed(expected, tolerance)) << "parameter " << parameter;
            for (int j = 0; j < u_; ++j) {
                const double scale =
                    static_cast<double>(std::sqrt(solution.Q[At(k)][At(k)] * solution.Q[At(j)][At(j)]));
                EXPECT_NEAR(Q_(k + 1, j + 1), static_cast<double>(solution.Q[At(k)][At(j)]), 1e-8 * scale)
                    << "Q " << k + 1 << ", " << j + 1;
            }
        }
        for (std::size_t i = 0; i < solution.v.size(); ++i)
            EXPECT_NEAR(v_[i + 1], static_cast<double>(solution.v[i]), tolerance) << "v " << i + 1;
    }

    int u_ = 0;
    Matrix Q_;
    Column v_, P_;
};

TEST_F(ReferenceFit, AgreesWithTheCertifiedFits) {
    for (const auto& set : ReferenceSets())
        for (const auto& fit : set["fits"]) {
            const int parameters = fit["parameters"];
            SCOPED_TRACE(set["name"].get<std::string>() + ", " + std::to_string(parameters));
            FillJob(set);
            FloatParameters({kTraX, kTraY, kTraZ});
            if (parameters > 3) FloatParameters(kRigid);
            if (parameters == 7) FloatParameters({kScaleXYZ});
            if (parameters >= 9) FloatParameters({kScaleX, kScaleY, kScaleZ});
            if (parameters == 12) FloatParameters({kAngleXY, kAzimuth, kAngleZtoXY});
            ButtonCalcErsatz();
            EXPECT_TRUE(Calculation.Converged);
            EXPECT_TRUE(Messages().empty());
            const auto expectParameter = [](int parameter, double expected) {
                EXPECT_NEAR(ParameterValue(Job, parameter), expected, Allowed(expected, 1e-11)) << parameter;
            };
            // A rotation has two triples of angles; which one is found follows from the seed points.
            const bool otherTriple =
                parameters > 3 && std::fabs(Job.RotZ - fit["rot_rad"][2].get<double>()) > 1;
            const auto angle = [&fit, otherTriple](std::size_t k) {
                const double value = fit["rot_rad"][k];
                if (!otherTriple) return value;
                if (k == 1) return M_PI - value;
                return value > 0 ? value - M_PI : value + M_PI;
            };
            // With residuals as large as the lengths themselves each pass gains a part of a digit only,
            // so the threshold of the corrections is felt.
            const double tolerance = parameters == 6 ? 1e-9 : 1e-11;
            for (int k = 0; k < 3; ++k) {
                expectParameter(kTraX + k, fit["T"][At(k)]);
                if (parameters > 3) expectParameter(kRotX + k, angle(At(k)));
                if (parameters == 7) expectParameter(kScaleX + k, fit["scale"][0]);
                if (parameters >= 9) expectParameter(kScaleX + k, fit["scale"][At(k)]);
                if (parameters == 12) expectParameter(kAngleXY + k, fit["frame_rad"][At(k)]);
            }
            double vv = 0;
            for (std::size_t i = 1; i < Calculation.v.size(); ++i) vv += Calculation.v[i] * Calculation.v[i];
            EXPECT_NEAR(vv, fit["vv"].get<double>(), Allowed(fit["vv"], 1e-12));
            if (!fit.contains("v")) continue;
            for (std::size_t i = 0; i < fit["v"].size(); ++i)
                for (std::size_t axis = 0; axis < 3; ++axis)
                    EXPECT_NEAR(Calculation.v[3 * i + axis + 1], fit["v"][i][axis].get<double>(), tolerance);
            const double s0 = fit["s0"];
            EXPECT_NEAR(Calculation.s0, s0, 1e-10 * s0);
            int column = 0;
            for (int parameter = 1; parameter <= kScaleXYZ; ++parameter) {
                if (Job.ParamText[At(parameter)] != kFloat) continue;
                ++column;
                const double root = fit["sqrtQ"][At(column - 1)], sigma = fit["sigma"][At(column - 1)];
                EXPECT_NEAR(std::sqrt(Calculation.Q(column, column)), root, 1e-9 * root);
                EXPECT_NEAR(Calculation.Sigma[At(parameter)], sigma, 1e-9 * sigma);
                // Scales count from 1, and a rotation by half a turn counts as none.
                double value = ParameterValue(Job, parameter);
                if (parameter >= kScaleX) value -= 1;
                if (parameter >= kRotX && parameter <= kRotZ) value = std::remainder(value, M_PI);
                EXPECT_NEAR(Calculation.Significance[At(parameter)], std::fabs(value) / (sigma + 1e-9),
                            1e-8 * Calculation.Significance[At(parameter)]);
            }
        }
}

TEST_F(ReferenceFit, AgreesWithThePublishedWeightedSimilarity) {
    const auto set = ReferenceSets()[0];
    FillJob(set);
    FloatParameters(kRigid);
    FloatParameters({kScaleXYZ});
    P_.assign(13, 0);
    // The book takes the standard deviations of the start coordinates for the equations of the target's.
    for (std::size_t i = 0; i < 4; ++i)
        for (std::size_t axis = 0; axis < 3; ++axis)
            P_[3 * i + axis + 1] = 1 / std::pow(set["sigma_start"][i][axis].get<double>(), 2);
    Settings.BestFit_Etta = 1e-9;
    RunWithWeights();
    const auto number = [](const nlohmann::json& text) { return std::stod(text.get<std::string>()); };
    const auto& published = set["published"];
    const double scale = number(published["scale"]), s0 = number(published["s0"]);
    double vPv = 0;
    for (std::size_t i = 1; i < v_.size(); ++i) vPv += v_[i] * P_[i] * v_[i];
    EXPECT_NEAR(Job.ScaleXYZ, scale, 5e-6);
    EXPECT_NEAR(std::sqrt(vPv / 5), s0, 5e-4);
    for (std::size_t k = 0; k < 3; ++k)
        EXPECT_NEAR(ParameterValue(Job, kTraX + static_cast<int>(k)), number(published["T"][k]), 5e-4);
}

TEST_F(ReferenceFit, SevenAndNineAndTwelveParametersWithNoise) {
    const auto truth = Truth({100, -200, 300, 0.4, -0.7, 2.1, 1.01, 0.98, 1.02, 1, 0.02, 0.6, 0.03});
    for (const int parameters : {7, 9, 12}) {
        SCOPED_TRACE(parameters);
        Job = JobRecord{};
        BeginFit();
        AddCloud({.Points = 25, .Noise = 0.3, .Truth = truth});
        FloatParameters(kRigid);
        if (parameters == 7) FloatParameters({kScaleXYZ});
        if (parameters >= 9) FloatParameters({kScaleX, kScaleY, kScaleZ});
        if (parameters == 12) FloatParameters({kAngleXY, kAzimuth, kAngleZtoXY});
        RunFit();
        ExpectAsReference(ProblemOfJob(truth), parameters == 12 ? 1e-10 : 1e-9);
    }
}

TEST_F(ReferenceFit, EachHeldParameterAlone) {
    const auto truth = Truth({100, -200, 300, 0.4, -0.7, 2.1, 1.01, 0.98, 1.02, 1, 0.02, 0.6, 0.03});
    const char* const held[] = {"99",   "-201", "302", "23", "-40", "120", "1.02",
                                "0.97", "1",    "",    "1",  "30",  "2"};
    for (int parameter = 1; parameter <= 13; ++parameter) {
        if (parameter == kScaleXYZ) continue;
        SCOPED_TRACE(parameter);
        Job = JobRecord{};
        BeginFit();
        AddCloud({.Points = 25, .Noise = 0.3, .Truth = truth});
        FloatParameters(kRigid);
        FloatParameters({kScaleX, kScaleY, kScaleZ, kAngleXY, kAzimuth, kAngleZtoXY});
        Job.ParamText[At(parameter)] = held[parameter - 1];
        RunFit();
        ExpectAsReference(ProblemOfJob(truth), 1e-9);
    }
}

TEST_F(ReferenceFit, HeldTranslationsFarFromTheOrigin) {
    // Without their translations the axes keep the whole lever arm of the coordinates.
    const auto truth = Truth({100, -200, 300, 0.01, -0.02, 0.03, 1, 1, 1, 1});
    AddCloud({.Points = 25, .Centre = {1e5, -2e5, 3e3}, .Noise = 0.3, .Truth = truth});
    FloatParameters({kTraZ, kRotX, kRotY, kRotZ, kScaleXYZ});
    Job.ParamText[kTraX] = "100";
    Job.ParamText[kTraY] = "-200";
    RunFit();
    ExpectAsReference(ProblemOfJob(truth), 1e-8);
}

TEST_F(ReferenceFit, CoordinatesOutOfUseAndOtherWeights) {
    const auto truth = Truth({100, -200, 300, 0.4, -0.7, 2.1, 1.01, 1.01, 1.01, 1.01});
    AddCloud({.Points = 21, .Noise = 0.3, .Truth = truth});
    for (const std::size_t row : {2, 5, 17, 18, 33, 61}) Job.UseFlags[row] = 0;
    FloatParameters(kRigid);
    FloatParameters({kScaleXYZ});
    RunFit();
    ExpectAsReference(ProblemOfJob(truth), 1e-10);

    reference::Problem problem = ProblemOfJob(truth);
    for (int i = 0; i < 21; ++i)
        for (int axis = 0; axis < 3; ++axis) {
            const double weight = std::exp(5 * NextNumber());
            P_[At(3 * i + axis + 1)] = weight;
            problem.Weight[At(i)][At(axis)] = weight;
        }
    RunWithWeights();
    ExpectAsReference(problem, 1e-10);
}

TEST_F(ReferenceFit, PointsInAPlaneAndTheRotationAtThePole) {
    for (const double rotY : {1.5, -1.5}) {
        Job = JobRecord{};
        BeginFit();
        const auto truth = Truth({10, 20, 30, 0.4, rotY, 0.2, 1, 1, 1, 1});
        for (int i = 0; i < 12; ++i) {
            const reference::Point start = {1000 * NextNumber(), 1000 * NextNumber(), 5};
            reference::Point target = reference::Image(truth, start);
            for (auto& coordinate : target) coordinate += 0.1 * NextNumber();
            AddPair(start, target);
        }
        FloatParameters(kRigid);
        RunFit();
        reference::Problem problem = ProblemOfJob(truth);
        for (int k = 1; k <= 6; ++k) problem.Parameters[At(k)] = ParameterValue(Job, k);
        ExpectAsReference(problem, 1e-9);
    }
}

TEST_F(ReferenceFit, TheDistanceModelWithFloatingDistance) {
    const auto truth = Truth({100, -200, 300, 0.4, -0.7, 2.1, 1, 1, 1, 1});
    for (int i = 0; i < 30; ++i) {
        const reference::Point start = {500 * NextNumber(), 500 * NextNumber(), 500 * NextNumber()};
        reference::Point target = reference::Image(truth, start);
        const double a = 4 * NextNumber(), b = 1.5 * NextNumber(), distance = 80 + 0.1 * NextNumber();
        target[0] += distance * std::cos(b) * std::cos(a);
        target[1] += distance * std::cos(b) * std::sin(a);
        target[2] += distance * std::sin(b);
        AddPair(start, target);
    }
    FloatParameters(kRigid);
    FloatParameters({kRDist});
    Selection.CheckRDist = true;
    Job.UseFlags[3] = 0;  // the Z coordinate's flag is the point's
    Job.UseFlags[4] = 0;  // and the others do not count
    RunFit();
    reference::Problem problem = ProblemOfJob(truth);
    problem.Mode = reference::Model::Distance;
    problem.Parameters[kRDist] = 80;
    ExpectAsReference(problem, 1e-9);
    EXPECT_NEAR(Job.RDist, 80, 0.1);
    EXPECT_EQ(P_[1], 0);
    EXPECT_EQ(P_[2], 0);
    EXPECT_EQ(P_[4], 1);
    for (std::size_t row = 31; row <= 90; ++row) EXPECT_EQ(v_[row], 0);

    // The trace of the corrections stands on the clipboard: a line a pass, seven fields each.
    const std::string trace = ClipboardText();
    EXPECT_EQ(std::count(trace.begin(), trace.end(), '\n'), Adjustment.Iterations);
    EXPECT_EQ(std::count(trace.begin(), trace.end(), '\t'), 7 * Adjustment.Iterations);

    // Held: the same mode from its value alone, while its field is on show.
    Selection.CheckRDist = false;
    Job.ParamText[kRDist] = "79.5";
    RunFit();
    problem = ProblemOfJob(truth);
    problem.Mode = reference::Model::Distance;
    ExpectAsReference(problem, 1e-9);
    EXPECT_EQ(Job.RDist, 79.5);
    Selection.RDistShown = false;
    EXPECT_EQ(ChooseMode(Job.ParamText), FitMode::Coincide);
}

TEST_F(ReferenceFit, TheDistanceModelWithHeldTranslationAndScales) {
    const auto truth = Truth({100, -200, 300, 0.4, -0.7, 2.1, 1.01, 0.99, 1.02, 1, 0.02, 0.6, 0.03});
    for (int i = 0; i < 60; ++i) {
        const reference::Point start = {500 * NextNumber(), 500 * NextNumber(), 500 * NextNumber()};
        reference::Point target = reference::Image(truth, start);
        const double a = 4 * NextNumber(), b = 1.5 * NextNumber(), distance = 80 + 0.1 * NextNumber();
        target[0] += distance * std::cos(b) * std::cos(a);
        target[1] += distance * std::cos(b) * std::sin(a);
        target[2] += distance * std::sin(b);
        AddPair(start, target);
    }
    FloatParameters(kRigid);
    FloatParameters({kScaleX, kScaleY, kScaleZ, kAngleXY, kAzimuth, kAngleZtoXY, kRDist});
    Job.ParamText[kTraY] = "-200";
    Selection.CheckRDist = true;
    RunFit();
    reference::Problem problem = ProblemOfJob(truth);
    problem.Mode = reference::Model::Distance;
    problem.Parameters[kRDist] = 80;
    ExpectAsReference(problem, 1e-8);
}

TEST_F(ReferenceFit, APointOutOfUseOnItsTargetDoesNotSpoilTheDistanceModel) {
    for (int i = 0; i < 20; ++i) {
        const reference::Point start = {500 * NextNumber(), 500 * NextNumber(), 500 * NextNumber()};
        const double a = 4 * NextNumber(), b = 1.5 * NextNumber();
        AddPair(start, {start[0] + 50 * std::cos(b) * std::cos(a), start[1] + 50 * std::cos(b) * std::sin(a),
                        start[2] + 50 * std::sin(b)});
    }
    AddPair({7, 8, 9}, {7, 8, 9});
    Job.UseFlags[61] = Job.UseFlags[62] = Job.UseFlags[63] = 0;
    Job.ParamText[kRDist] = "50";
    FloatParameters({kTraX});
    RunFit();
    EXPECT_TRUE(Adjustment.Converged);
    EXPECT_NEAR(Job.TraX, 0, 1e-9);
}

TEST_F(ReferenceFit, TheToolModelFindsTheToolVector) {
    const auto truth = Truth({1000, -200, 300, 0.1, -0.2, 0.3, 1, 1, 1, 1});
    const std::array<double, 3> tool = {30, -50, 120};
    constexpr int kPoses = 24;
    Job.RobotABC = Matrix(kPoses, 3);
    for (int i = 1; i <= kPoses; ++i) {
        const std::array<double, 3> pose = {3 * NextNumber(), 1.4 * NextNumber(), 3 * NextNumber()};
        for (int k = 1; k <= 3; ++k) Job.RobotABC(i, k) = pose[At(k - 1)];
        const reference::Square G =
            reference::Product(reference::Turn(2, pose[0]),
                               reference::Product(reference::Turn(1, pose[1]), reference::Turn(0, pose[2])));
        const reference::Point start = {500 * NextNumber(), 500 * NextNumber(), 500 * NextNumber()};
        reference::Point target = reference::Image(truth, start);
        for (std::size_t axis = 0; axis < 3; ++axis)
            target[axis] +=
                G[axis][0] * tool[0] + G[axis][1] * tool[1] + G[axis][2] * tool[2] + 0.05 * NextNumber();
        AddPair(start, target);
    }
    FloatParameters(kRigid);
    FloatParameters({kRvecX, kRvecY, kRvecZ});
    Selection.CheckUseABC = true;
    Selection.RDistShown = false;
    EXPECT_EQ(CountUnknowns(Job.ParamText), 9);
    RunFit();
    reference::Problem problem = ProblemOfJob(truth);
    problem.Mode = reference::Model::Tool;
    ExpectAsReference(problem, 1e-9);
    EXPECT_NEAR(Job.Rvec_z, 120, 0.2);

    // Held: the same mode from the values alone, while the field of the distance is not on show.
    Selection.CheckUseABC = false;
    Job.ParamText[kRvecX] = "31";
    Job.ParamText[kRvecY] = "-50";
    Job.ParamText[kRvecZ] = "119.5";
    RunFit();
    problem = ProblemOfJob(truth);
    problem.Mode = reference::Model::Tool;
    ExpectAsReference(problem, 1e-9);
    EXPECT_EQ(Job.Rvec_x, 31);
    Selection.RDistShown = true;
    EXPECT_EQ(ChooseMode(Job.ParamText), FitMode::Coincide);
}

TEST_F(ReferenceFit, HallCoordinatesCostNoDigits) {
    // A cloud of 1 m about 1e6 mm from the origin, deviations of 1e-3 mm. It has to converge below 1e-9,
    // and the deviations have to be right to 1e-9 mm, a millionth of their size.
    for (int parameters : {6, 7, 9, 12})
        for (int seed = 0; seed < 12; ++seed) {
            SCOPED_TRACE(std::to_string(parameters) + ", " + std::to_string(seed));
            Job = JobRecord{};
            BeginFit();
            for (int k = 0; k < 100 * seed; ++k) NextNumber();
            auto truth = Truth({1e6 * NextNumber(), 1e6 * NextNumber(), 1e6 * NextNumber(),
                                1.5 * NextNumber(), 1.2 * NextNumber(), 3 * NextNumber(), 1, 1, 1, 1});
            if (parameters == 12) {
                truth[kAngleXY] = 0.02;
                truth[kAzimuth] = 0.6;
                truth[kAngleZtoXY] = 0.03;
            }
            AddCloud({.Points = 40,
                      .Centre = {1e6 * NextNumber(), 1e6 * NextNumber(), 1e6 * NextNumber()},
                      .Size = 1000,
                      .Noise = 1e-3,
                      .Truth = truth});
            FloatParameters(kRigid);
            if (parameters == 7) FloatParameters({kScaleXYZ});
            if (parameters >= 9) FloatParameters({kScaleX, kScaleY, kScaleZ});
            if (parameters == 12) FloatParameters({kAngleXY, kAzimuth, kAngleZtoXY});
            RunFit();
            EXPECT_TRUE(Adjustment.Converged) << Adjustment.Iterations;
            EXPECT_TRUE(Messages().empty());
            if (seed >= 3) continue;
            reference::Problem problem = ProblemOfJob(truth);
            for (const int parameter : problem.Free)
                problem.Parameters[At(parameter)] = ParameterValue(Job, parameter);
            problem.MostPasses = 4;
            reference::Solve(problem);
            const std::vector<reference::Real> v = reference::Residuals(problem);
            for (std::size_t i = 0; i < v.size(); ++i)
                EXPECT_NEAR(v_[i + 1], static_cast<double>(v[i]), 1e-9) << i;
        }
}

TEST_F(ReferenceFit, TheSumsAreTheSameOnEveryInstructionSet) {
    const auto truth = Truth({100, -200, 300, 0.4, -0.7, 2.1, 1.01, 0.98, 1.02, 1, 0.02, 0.6, 0.03});
    AddCloud({.Points = 301, .Noise = 0.3, .Truth = truth});
    FloatParameters(kRigid);
    FloatParameters({kScaleX, kScaleY, kScaleZ, kAngleXY, kAzimuth, kAngleZtoXY, kRDist});
    for (const bool distance : {false, true})
        for (const bool weighted : {false, true}) {
            Selection.CheckRDist = distance;
            P_ = Column(Job.UseFlags.begin(), Job.UseFlags.end());
            if (weighted) P_[7] = 0.3;
            GatheredPoints points;
            GatherPoints(P_, false, points);
            SetWeights(P_, points);
            Job.TraX = 90;
            const FitModel model = ChooseModel(Job.ParamText);
            const Linearisation at = Linearise(model, points);
            NormalSums narrow, wide;
            SumNormalEquations(points, model, at, VectorWidth::Two, narrow);
            for (const VectorWidth width : {VectorWidth::Four, VectorWidth::Eight}) {
                if (width > WidestVectors()) continue;
                SumNormalEquations(points, model, at, width, wide);
                EXPECT_TRUE(narrow.Lanes == wide.Lanes) << static_cast<int>(width);
            }
        }
}
