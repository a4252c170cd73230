// The inverse of the job's transformation.
#include "engine/inverse.h"

#include <cmath>
#include <limits>
#include <random>

#include "core/fresh_start.h"
#include "core/job.h"
#include "core/records.h"
#include "core/units.h"
#include "engine/fit_reference.h"
#include "support/fixture.h"

using namespace corvinade;

namespace {

const char* const kNoneFound =
    "No inverted Solutions found. Notice: A transformation with any scale in a SEPPARATE Axis does not have "
    "an inverted solution!";

class InverseOfTheChain : public Program {
protected:
    static void Rotate(double a, double b, double c) {
        Job.RotX = Job.RotXCopy = a;
        Job.RotY = Job.RotYCopy = b;
        Job.RotZ = Job.RotZCopy = c;
    }
    static void Scale(double x, double y, double z) {
        Job.ScaleX = x;
        Job.ScaleY = y;
        Job.ScaleZ = z;
    }
    static void ScaleAll(double m) {
        Scale(m, m, m);
        Job.ScaleXYZ = m;
    }
    static void Shift(double x, double y, double z) {
        Job.TraX = x;
        Job.TraY = y;
        Job.TraZ = z;
    }
    static void Shear(double xy, double az, double zt) {
        Job.AngleXY = xy;
        Job.Azimuth = az;
        Job.AngleZtoXY = zt;
    }
    // A point there with the plain formulas in long double, and back with the inverse.
    static reference::Point ThereAndBack(const reference::Point& p) {
        std::array<reference::Real, 18> t{};
        for (int k = kTraX; k <= kAngleZtoXY; ++k) t[static_cast<std::size_t>(k)] = ParameterValue(Job, k);
        return Back(reference::Image(t, p));
    }
    static reference::Point Back(const reference::Point& P) {
        const std::array<double, 3> shift = {Inverse.InvTraX, Inverse.InvTraY, Inverse.InvTraZ};
        reference::Point p{};
        for (int i = 1; i <= 3; ++i)
            p[static_cast<std::size_t>(i - 1)] =
                shift[static_cast<std::size_t>(i - 1)] + Inverse.InvMatrix(i, 1) * P[0] +
                Inverse.InvMatrix(i, 2) * P[1] + Inverse.InvMatrix(i, 3) * P[2];
        return p;
    }
    static void ExpectThereAndBack(double tolerance) {
        const std::vector<reference::Point> points = {
            {0, 0, 0}, {1000, 0, 0}, {0, 1000, 0}, {0, 0, 1000}, {-5000, 3000, 700}};
        for (const reference::Point& p : points) {
            const reference::Point back = ThereAndBack(p);
            for (std::size_t i = 0; i < 3; ++i)
                EXPECT_NEAR(static_cast<double>(back[i]), static_cast<double>(p[i]), tolerance) << i;
        }
    }
    // A solution is a transformation of the model's own form that leads back, with the inverse translation.
    static void ExpectSolutionsLeadBack(double tolerance) {
        ASSERT_GE(Inverse.InvSolutions.Rows, 1);
        const reference::Point P = {1234, -876, 543};
        const reference::Point expected = Back(P);
        for (int row = 1; row <= Inverse.InvSolutions.Rows; ++row) {
            std::array<reference::Real, 18> t{};
            t[kTraX] = Inverse.InvTraX;
            t[kTraY] = Inverse.InvTraY;
            t[kTraZ] = Inverse.InvTraZ;
            constexpr std::array<int, 9> kOrder = {kRotX,   kRotY,    kRotZ,    kScaleX,    kScaleY,
                                                   kScaleZ, kAngleXY, kAzimuth, kAngleZtoXY};
            for (int k = 1; k <= 9; ++k)
                t[static_cast<std::size_t>(kOrder[static_cast<std::size_t>(k - 1)])] =
                    Inverse.InvSolutions(row, k);
            const reference::Point p = reference::Image(t, P);
            for (std::size_t i = 0; i < 3; ++i)
                EXPECT_NEAR(static_cast<double>(p[i]), static_cast<double>(expected[i]), tolerance)
                    << row << ", " << i;
        }
    }
};

}  // namespace

// --- Matrix and translation -------------------------------------------------------------------------------

TEST_F(InverseOfTheChain, ThereAndBackIsTheSamePoint) {
    std::mt19937 random(6);
    std::uniform_real_distribution<double> angle(-3, 3), lean(-0.5, 0.5), factor(0.5, 2), shift(-1e4, 1e4);
    int runs = 0;
    while (runs < 200) {
        const double a = angle(random), b = angle(random), c = angle(random);
        // The pivots are not searched for, and each is off by 1e-12; small ones would count.
        if (std::min({std::fabs(std::cos(a)), std::fabs(std::cos(b)), std::fabs(std::cos(c))}) < 0.2)
            continue;
        SCOPED_TRACE(++runs);
        Rotate(a, b, c);
        Shift(shift(random), shift(random), shift(random));
        Scale(factor(random), factor(random), factor(random));
        Shear(lean(random), angle(random), lean(random));
        InverseTransformation();
        ExpectThereAndBack(1e-5);
    }
}

TEST_F(InverseOfTheChain, RightAnglesLeadBackAsAllOthersDo) {
    // They put about 0 on the diagonal of the rotation, where the inverse looks for its pivots.
    const std::array<double, 7> angles = {0, 90, -90, 180, 30, 89.9999999, 89.999};
    for (const double a : angles)
        for (const double b : angles)
            for (const double c : angles) {
                SCOPED_TRACE(testing::Message() << a << ", " << b << ", " << c);
                Rotate(a / 180 * kPi, b / 180 * kPi, c / 180 * kPi);
                Scale(1.1, 0.9, 1.2);
                Shift(100, -2000, 30);
                InverseTransformation();
                ExpectThereAndBack(1e-5);
            }
}

TEST_F(InverseOfTheChain, TheNeutralTransformationIsItsOwnInverse) {
    InverseTransformation();
    ExpectThereAndBack(2e-8);  // three inverses, each of which adds 1e-12 to a pivot of 1, times 5000 mm
    EXPECT_EQ(Inverse.InvTraX, 0);
    ASSERT_GE(Inverse.InvSolutions.Rows, 2);
    bool neutral = false;
    for (int row = 1; row <= Inverse.InvSolutions.Rows; ++row) {
        bool is = true;
        for (const int k : {1, 2, 3, 7, 8, 9}) is &= std::fabs(Inverse.InvSolutions(row, k)) < 1e-9;
        for (const int k : {4, 5, 6}) is &= Inverse.InvSolutions(row, k) == 1;
        neutral |= is;
    }
    EXPECT_TRUE(neutral);
}

TEST_F(InverseOfTheChain, AnObliqueFrameWithoutARightAngleGivesHugeValuesAndNoFailure) {
    Shear(kPi / 2, 0, 0);
    InverseTransformation();
    double largest = 0;
    for (int i = 1; i <= 3; ++i)
        for (int j = 1; j <= 3; ++j) {
            EXPECT_TRUE(std::isfinite(Inverse.InvMatrix(i, j)));
            largest = std::max(largest, std::fabs(Inverse.InvMatrix(i, j)));
        }
    EXPECT_GT(largest, 1e11);
}

TEST_F(InverseOfTheChain, AScaleOfZeroCountsAsAMillionMillionth) {
    Scale(1, 0, 1);
    Shift(0, 2, 0);
    InverseTransformation();
    EXPECT_NEAR(Inverse.InvMatrix(2, 2), 1e12, 1e1);
    EXPECT_NEAR(Inverse.InvTraY, -2e12, 2e1);
    EXPECT_NEAR(Inverse.InvMatrix(1, 1), 1, 1e-11);
}

TEST_F(InverseOfTheChain, ParametersThatAreNoNumbersHaveNoSolutionAndEnd) {
    for (double* parameter : {&Job.RotX, &Job.ScaleY, &Job.AngleXY, &Job.Azimuth, &Job.TraZ}) {
        const double before = *parameter;
        for (const double bad :
             {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(), 1e308}) {
            *parameter = bad;
            InverseTransformation();
            for (int row = 1; row <= Inverse.InvSolutions.Rows; ++row)
                for (int k = 1; k <= 9; ++k) EXPECT_TRUE(std::isfinite(Inverse.InvSolutions(row, k)));
        }
        *parameter = before;
    }
}

// --- Solutions --------------------------------------------------------------------------------------------

TEST_F(InverseOfTheChain, ARigidTransformationHasTwoSolutionsWhichLeadBack) {
    Rotate(0.3, -0.4, 2.5);
    Shift(100, -2000, 30);
    InverseTransformation();
    EXPECT_EQ(Inverse.InvSolutions.Rows, 2);
    ExpectSolutionsLeadBack(1e-5);
    for (int k = 4; k <= 6; ++k) EXPECT_EQ(Inverse.InvSolutions(1, k), 1);
    EXPECT_TRUE(Messages().empty());
}

TEST_F(InverseOfTheChain, ASimilarityHasTheReciprocalScale) {
    Rotate(0.3, -0.4, 2.5);
    ScaleAll(1.25);
    Shift(100, -2000, 30);
    InverseTransformation();
    ASSERT_EQ(Inverse.InvSolutions.Rows, 2);
    for (int k = 4; k <= 6; ++k) EXPECT_NEAR(Inverse.InvSolutions(2, k), 0.8, 1e-10);
    ExpectSolutionsLeadBack(1e-5);
}

TEST_F(InverseOfTheChain, ObliqueFrameAndScalesHaveEightSolutions) {
    Rotate(0.3, -0.4, 0.5);
    Scale(1.1, 0.9, 1.3);
    Shear(0.1, 0.8, -0.2);
    Shift(100, -2000, 30);
    InverseTransformation();
    EXPECT_EQ(Inverse.InvSolutions.Rows, 8);
    ExpectSolutionsLeadBack(1e-4);
    EXPECT_TRUE(Messages().empty());
}

TEST_F(InverseOfTheChain, AScaleInOneAxisWithoutRotationHasSolutions) {
    Scale(2, 1, 1);
    InverseTransformation();
    EXPECT_TRUE(Messages().empty());
    ASSERT_GE(Inverse.InvSolutions.Rows, 1);
    EXPECT_NEAR(Inverse.InvSolutions(1, 4), 0.5, 1e-11);
    EXPECT_NEAR(Inverse.InvSolutions(1, 5), 1, 1e-11);
    EXPECT_NEAR(Inverse.InvSolutions(1, 6), 1, 1e-11);
    ExpectSolutionsLeadBack(1e-5);
}

TEST_F(InverseOfTheChain, AScaleInOneAxisWithARotationHasNone) {
    Rotate(0, 0, kPi / 6);
    ScaleAll(1);
    InverseTransformation();
    ASSERT_GE(Inverse.InvSolutions.Rows, 1);
    Scale(2, 1, 1);
    Shift(10, 20, 30);
    InverseTransformation();
    EXPECT_EQ(Messages(), std::vector<std::string>{kNoneFound});
    EXPECT_EQ(Inverse.InvSolutions.Rows, -1) << "those of before are gone";
    ExpectThereAndBack(1e-7);
    const double c = std::cos(kPi / 6), s = std::sin(kPi / 6);
    EXPECT_NEAR(Inverse.InvTraX, -(10 * c - 20 * s) / 2, 1e-9);
    EXPECT_NEAR(Inverse.InvTraY, -(10 * s + 20 * c), 1e-9);
    EXPECT_NEAR(Inverse.InvTraZ, -30, 1e-9);
}

TEST_F(InverseOfTheChain, EachOfTheFourScalesAloneMakesThemBeLookedFor) {
    Rotate(0.3, 0.2, 0.1);
    const auto firstScale = [] {
        InverseTransformation();
        EXPECT_GE(Inverse.InvSolutions.Rows, 1);
        return Inverse.InvSolutions(1, 4);
    };
    EXPECT_EQ(firstScale(), 1);
    // The axes' images are 1 but for the digits that the inverse loses.
    for (double* scale : {&Job.ScaleX, &Job.ScaleY, &Job.ScaleZ, &Job.ScaleXYZ}) {
        *scale = 1 + 1e-9;
        EXPECT_NE(firstScale(), 1);
        *scale = 1;
    }
}

TEST_F(InverseOfTheChain, EachShearAngleAloneMakesShearBeLookedFor) {
    Rotate(0.3, 0.2, 0.1);
    // The azimuth alone changes no point; the shear that is then looked for has some leans of about 0.
    Shear(0, 0.1, 0);
    InverseTransformation();
    ExpectSolutionsLeadBack(1e-2);
    EXPECT_GT(Inverse.InvSolutions.Rows, 2);
    // With scales of 1 a sheared frame's inverse is none of this form: its axes have other lengths.
    for (double* angle : {&Job.AngleXY, &Job.AngleZtoXY}) {
        Shear(0, 0, 0);
        *angle = 0.1;
        InverseTransformation();
        EXPECT_EQ(LastMessage(), kNoneFound);
        Job.ScaleXYZ = 1.5;
        InverseTransformation();
        EXPECT_GE(Inverse.InvSolutions.Rows, 1);
        ExpectSolutionsLeadBack(1e-2);
        Job.ScaleXYZ = 1;
    }
}

TEST_F(InverseOfTheChain, InvertingASolutionGivesTheTransformationBack) {
    Rotate(0.3, -0.4, 0.5);
    Scale(1.1, 0.9, 1.3);
    Shear(0.1, 0.8, 0.2);
    Shift(100, -2000, 30);
    const JobRecord before = Job;
    InverseTransformation();
    ASSERT_EQ(Inverse.InvSolutions.Rows, 8);
    const Matrix s = Inverse.InvSolutions;
    Shift(Inverse.InvTraX, Inverse.InvTraY, Inverse.InvTraZ);
    Rotate(s(4, 1), s(4, 2), s(4, 3));
    Scale(s(4, 4), s(4, 5), s(4, 6));
    Shear(s(4, 7), s(4, 8), s(4, 9));
    InverseTransformation();
    EXPECT_NEAR(Inverse.InvTraX, before.TraX, 1e-5);
    EXPECT_NEAR(Inverse.InvTraY, before.TraY, 1e-5);
    EXPECT_NEAR(Inverse.InvTraZ, before.TraZ, 1e-5);
    bool found = false;
    for (int row = 1; row <= Inverse.InvSolutions.Rows; ++row) {
        double worst = 0;
        const std::array<double, 9> expected = {0.3, -0.4, 0.5, 1.1, 0.9, 1.3, 0.1, 0.8, 0.2};
        for (int k = 1; k <= 9; ++k)
            worst = std::max(
                worst, std::fabs(Inverse.InvSolutions(row, k) - expected[static_cast<std::size_t>(k - 1)]));
        found |= worst < 1e-7;
    }
    EXPECT_TRUE(found);
}

TEST_F(InverseOfTheChain, AHugeScaleWithShearComesToAnEnd) {
    // The elements of the inverse are below the limit of the comparison: whatever is tried is accepted.
    Rotate(0.3, -0.4, 0.5);
    ScaleAll(1e8);
    Shear(0.1, 0.8, 0.2);
    InverseTransformation();
    EXPECT_GT(Inverse.InvSolutions.Rows, 8);
}

// --- The record -------------------------------------------------------------------------------------------

TEST_F(InverseOfTheChain, IsKnownByNameAndGoneInANewProgram) {
    Rotate(0.3, -0.4, 0.5);
    Shift(1, 2, 3);
    InverseTransformation();
    for (const char* name : {"InvTraX", "InvTraY", "InvTraZ", "InvSolutions"}) {
        const RecordEntry* entry = FindRecord(name);
        ASSERT_NE(entry, nullptr) << name;
        EXPECT_EQ(entry->Stored, Storage::Run);
    }
    EXPECT_EQ(std::get<double*>(FindRecord("InvTraZ")->Place), &Inverse.InvTraZ);
    FreshStart();
    EXPECT_EQ(Inverse.InvTraX, 0);
    EXPECT_EQ(Inverse.InvSolutions.Rows, -1);
}
