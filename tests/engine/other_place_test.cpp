// Points on a line with scales of the axes and values held together: several transformations carry the line
// as well as each other and differ in where they put what lies off it.
#include "fit/other_place.h"

#include <cmath>
#include <cstdio>
#include <initializer_list>

#include "core/notes.h"
#include "engine/adjustment.h"
#include "engine/calculation_job.h"
#include "engine/fit_reference.h"
#include "engine/presets.h"
#include "engine/seed.h"
#include "engine/selection.h"

using namespace corvinade;

namespace {

using reference::Point;

class OtherPlaces : public CalculationJob {
protected:
    std::array<double, 10> held_{};  // the true values, by parameter number

    // Points along `u` about a place of their own, thick across it.
    void AddPoints(int seed, double thick) {
        Job = JobRecord{};
        BeginFit();
        RhoFestlegung();
        for (int skip = 0; skip < 31 * seed; ++skip) NextNumber();
        for (int k = kTraX; k <= kTraZ; ++k) held_[At(k)] = 2000 * NextNumber();
        for (int k = kRotX; k <= kRotZ; ++k) held_[At(k)] = 1.5 * NextNumber();
        for (int k = kScaleX; k <= kScaleZ; ++k) held_[At(k)] = 1;
        truth_ = Truth({held_[1], held_[2], held_[3], held_[4], held_[5], held_[6], 1, 1, 1, 1});
        Point u{}, middle{};
        for (std::size_t k = 0; k < 3; ++k) {
            u[k] = NextNumber();
            middle[k] = 1000 * NextNumber();
        }
        for (int i = 0; i < 8; ++i) {
            const double along = 1000 * NextNumber();
            Point p{};
            for (std::size_t k = 0; k < 3; ++k) p[k] = middle[k] + along * u[k] + thick * NextNumber();
            Point q = reference::Image(truth_, p);
            for (auto& coordinate : q) coordinate += 0.03 * NextNumber();
            AddPair(p, q);
        }
        middle_ = middle;
    }
    void Fit(std::initializer_list<int> held, std::int16_t norm = 1) {
        SelectPreset("9");
        ChooseDefaultSeeds();
        for (const int k : held) {
            std::array<char, 40> text{};
            const double degrees = k >= kRotX && k <= kRotZ ? 180 / kPi : 1;
            std::snprintf(text.data(), text.size(), "%.10f", held_[At(k)] * degrees);
            Job.ParamText[At(k)] = text.data();
        }
        SelectionFromJob();
        Job.NormType = norm;
        Job.LeftOpen.fill(0);
        Notes.List.clear();
        ButtonCalcErsatz();
        ASSERT_TRUE(Calculation.Finite);
    }
    // How far what lies half a metre off the points is put from where it belongs, mm.
    double Off() const {
        std::array<reference::Real, 18> shown{};
        for (int k = kTraX; k < kParameterEnd; ++k) shown[At(k)] = ParameterValue(Job, k);
        double off = 0;
        for (std::size_t axis = 0; axis < 3; ++axis) {
            Point p = middle_;
            p[axis] += 500;
            const Point a = reference::Image(shown, p), b = reference::Image(truth_, p);
            for (std::size_t k = 0; k < 3; ++k)
                off = std::max(off, std::fabs(static_cast<double>(a[k] - b[k])));
        }
        return off;
    }
    static bool Told() {
        for (const Note& note : Notes.List)
            if (note.Code == NoteCode::OpenParameters || note.Code == NoteCode::HardlyKnown) return true;
        return false;
    }
    static std::size_t At(int i) { return static_cast<std::size_t>(i); }

private:
    std::array<reference::Real, 18> truth_{};
    Point middle_{};
};

}  // namespace

TEST_F(OtherPlaces, OfALineAreToldWithAScaleAnAngleAndATranslationHeld) {
    int wrong = 0;
    for (int seed = 0; seed < 40; ++seed) {
        AddPoints(seed, 0);
        Fit({kScaleZ, kRotY, kTraY});
        constexpr double kFarOff = 100;  // mm
        if (Off() < kFarOff) continue;
        ++wrong;
        EXPECT_TRUE(Told()) << seed << ", off by " << Off();
    }
    EXPECT_GT(wrong, 4);
}

TEST_F(OtherPlaces, OfALineAreToldWithAScaleAndTwoAnglesHeld) {
    int wrong = 0;
    for (int seed = 0; seed < 40; ++seed) {
        AddPoints(seed, 0);
        Fit({kScaleX, kRotX, kRotZ});
        constexpr double kFarOff = 100;  // mm
        if (Off() < kFarOff) continue;
        ++wrong;
        EXPECT_TRUE(Told()) << seed << ", off by " << Off();
    }
    EXPECT_GT(wrong, 2);
}

TEST_F(OtherPlaces, AreMarkedAtTheParametersThatAreAnotherThere) {
    int found = 0;
    for (int seed = 0; seed < 40; ++seed) {
        AddPoints(seed, 0);
        Fit({kScaleZ, kRotY, kTraY});
        bool other = false;
        for (const Note& note : Notes.List)
            other = other || note.Text.find("with other scales") != std::string::npos;
        if (!other) continue;
        ++found;
        for (const int k : {kScaleZ, kRotY, kTraY}) EXPECT_EQ(Job.LeftOpen[At(k)], 0) << seed;
        EXPECT_TRUE(Job.LeftOpen[kScaleX] != 0 || Job.LeftOpen[kScaleY] != 0) << seed;
    }
    EXPECT_GT(found, 4);
}

TEST_F(OtherPlaces, ABodyHasNone) {
    for (int seed = 0; seed < 20; ++seed) {
        AddPoints(seed, 600);
        Fit({kScaleZ, kRotY, kTraY});
        EXPECT_LT(Off(), 1);
        EXPECT_FALSE(Told()) << seed;
    }
}

TEST_F(OtherPlaces, AGrossErrorDoesNotHideThemFromTheNormL1) {
    int wrong = 0;
    for (int seed = 0; seed < 20; ++seed) {
        AddPoints(seed, 0);
        Job.Target.Z[3] = Job.Target.Z[3] + 4000;
        constexpr std::int16_t kLeastSum = 2;
        Fit({kScaleZ, kRotY, kTraY}, kLeastSum);
        constexpr double kFarOff = 100;  // mm
        if (Off() < kFarOff) continue;
        ++wrong;
        EXPECT_TRUE(Told()) << seed << ", off by " << Off();
    }
    EXPECT_GT(wrong, 2);
}
