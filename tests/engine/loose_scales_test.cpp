// Scales that only the noise of a plate determines, against the truth that made the plate.
#include "fit/loose_scales.h"

#include <algorithm>
#include <cmath>

#include "core/notes.h"
#include "engine/exact_norms_job.h"
#include "engine/presets.h"
#include "engine/seed.h"
#include "engine/selection.h"
#include "support/memory_use.h"

using namespace corvinade;

namespace {

using reference::Point;
using reference::Real;

class LooseScalesTest : public ExactNorms {
protected:
    // Points of a plate of so much relief, measured with noise in both systems, where all scales are 1.
    static void AddPlate(int seed, int points, double relief, double noise, double length = 1500) {
        Job = JobRecord{};
        BeginFit();
        for (int skip = 0; skip < 29 * seed; ++skip) NextNumber();
        const auto moved =
            Truth({100, -200, 300, 0.3 * NextNumber(), 0.3 * NextNumber(), NextNumber(), 1, 1, 1, 1});
        for (int i = 0; i < points; ++i) {
            const Point p = {length * NextNumber(), 0.6 * length * NextNumber(), relief * NextNumber()};
            Point start = p, target = reference::Image(moved, p);
            for (Point* each : {&start, &target})
                for (Real& x : *each) x = static_cast<double>(x + noise * NextNumber());
            AddPair(start, target);
        }
    }
    static void Fit(const char* preset, const NormOfSet& norm) {
        SelectPreset(preset);
        ChooseDefaultSeeds();
        SelectionFromJob();
        Notes.List.clear();
        Norm.RunOn = norm.RunOn;
        Calculate(norm.Type);
    }
    static bool Noted(NoteCode code) {
        return std::any_of(Notes.List.begin(), Notes.List.end(),
                           [code](const Note& note) { return note.Code == code; });
    }
};

}  // namespace

TEST_F(LooseScalesTest, AScaleAcrossAPlateIsToldWhateverTheNoiseHasMadeOfIt) {
    int floating = 0;
    for (const int points : {8, 12, 100, 1000})
        for (int seed = 0; seed < 8; ++seed)
            for (const NormOfSet& norm : {kNorms[0], kNorms[1], kNorms[3]}) {
                if (points > 100 && norm.Type != kL2) continue;
                SCOPED_TRACE(std::string(norm.Name) + ", seed " + std::to_string(seed) + ", points " +
                             std::to_string(points));
                AddPlate(seed, points, 0, 0.1);
                Fit("9", norm);
                EXPECT_TRUE(Noted(NoteCode::HardlyKnown) || Noted(NoteCode::OpenParameters));
                EXPECT_NE(Job.LeftOpen[kScaleZ], 0);
                EXPECT_EQ(Job.LeftOpen[kScaleX], 0);
                EXPECT_EQ(Job.LeftOpen[kScaleY], 0);
                floating += Noted(NoteCode::HardlyKnown) ? 1 : 0;
            }
    EXPECT_GT(floating, 20);
}

// The relief of a plate that is measured from a drawing is what the digits of its coordinates leave.
void AddTiltedPlate(int seed, int decimals, int points, double noise) {
    Job = JobRecord{};
    BeginFit();
    for (int skip = 0; skip < 29 * seed; ++skip) NextNumber();
    const auto tilted = Truth({0, 0, 0, NextNumber(), NextNumber(), NextNumber(), 1, 1, 1, 1});
    const auto moved = Truth({100, -200, 300, NextNumber(), NextNumber(), NextNumber(), 1, 1, 1, 1});
    const double grain = std::pow(10, -decimals);
    for (int i = 0; i < points; ++i) {
        Point start = reference::Image(tilted, {1000 * NextNumber(), 1000 * NextNumber(), 0});
        for (Real& x : start) x = grain * std::round(static_cast<double>(x) / grain);
        Point target = reference::Image(moved, start);
        for (Real& x : target) x = noise > 0 ? x + noise * NextNumber() : grain * std::round(x / grain);
        AddPair(start, target);
    }
}

TEST_F(LooseScalesTest, AScaleAcrossAPlateWithTheReliefOfItsLastDigitsIsToldHoweverFewTheseAre) {
    for (const int decimals : {3, 4, 5, 6, 7, 9})
        for (int seed = 0; seed < (UnderSanitizers() ? 1 : 5); ++seed)
            for (const NormOfSet& norm : {kNorms[0], kNorms[3], kNorms[4]}) {
                AddTiltedPlate(seed, decimals, 8, 0.03);
                Fit("12", norm);
                EXPECT_TRUE(Noted(NoteCode::HardlyKnown) || Noted(NoteCode::OpenParameters))
                    << norm.Name << ", " << decimals << " decimals, seed " << seed;
            }
}

TEST_F(LooseScalesTest, ItIsToldOfTwoDrawingsOfThePlateToo) {
    for (int seed = 0; seed < 40; ++seed) {
        AddTiltedPlate(seed, 6, 6 + seed % 7, 0);
        Fit("12", kNorms[0]);
        EXPECT_TRUE(Noted(NoteCode::HardlyKnown) || Noted(NoteCode::OpenParameters)) << "seed " << seed;
    }
}

TEST_F(LooseScalesTest, APlateAlongTheAxesWithFewPointsOffByALastDigitIsTold) {
    const std::array<Point, 6> start = {
        {{0, 0, 0}, {1000, 0, 0.0001L}, {0, 900, 0}, {1000, 900, 0}, {500, 400, 0.0001L}, {200, 700, 0}}};
    const std::array<Point, 6> target = {{{10.01L, 20, 30.01L},
                                          {1010, 19.99L, 29.98L},
                                          {9.99L, 920.01L, 30.03L},
                                          {1010.01L, 919.99L, 29.97L},
                                          {510, 420.02L, 30},
                                          {209.98L, 719.99L, 30.02L}}};
    for (const long double digit : {1.0L, 0.3L, 0.1L, 0.01L, 0.001L})
        for (const char* preset : {"9", "12"})
            for (const NormOfSet& norm : {kNorms[0], kNorms[3], kNorms[4]}) {
                Job = JobRecord{};
                BeginFit();
                for (std::size_t i = 0; i < start.size(); ++i)
                    AddPair({start[i][0], start[i][1], digit * start[i][2]}, target[i]);
                Fit(preset, norm);
                EXPECT_NE(Job.LeftOpen[kScaleZ], 0)
                    << norm.Name << ", " << preset << ", " << static_cast<double>(digit);
            }
}

TEST_F(LooseScalesTest, NothingIsToldOfABodyOrOfThePresetsThatAPlateDetermines) {
    for (const NormOfSet& norm : kNorms)
        for (int seed = 0; seed < 3; ++seed) {
            SCOPED_TRACE(std::string(norm.Name) + ", seed " + std::to_string(seed));
            for (const char* preset : {"9", "12"}) {
                AddPlate(seed, 20, 400, 0.1);
                Fit(preset, norm);
                EXPECT_FALSE(Noted(NoteCode::HardlyKnown)) << preset;
                EXPECT_NEAR(Job.ScaleZ, 1, 0.01) << preset;
            }
            AddPlate(seed, 20, 0, 0.1);
            Fit("7", norm);
            EXPECT_FALSE(Noted(NoteCode::HardlyKnown));
        }
}

TEST_F(LooseScalesTest, AReliefOfTenTimesTheNoiseOfManyPointsIsKnown) {
    AddPlate(1, 300, 3, 0.1);
    Fit("9", kNorms[0]);
    EXPECT_FALSE(Noted(NoteCode::HardlyKnown));
    EXPECT_NEAR(Job.ScaleZ, 1, 0.02);
}

TEST_F(LooseScalesTest, ExactSetsWhoseThirdAxisDoesNotLeanAreKnown) {
    AddPlate(2, 12, 300, 0);
    Fit("12", kNorms[0]);
    EXPECT_FALSE(Noted(NoteCode::HardlyKnown));
}

// A least sum goes through four points exactly, so that of five to seven points half and more have no
// deviation.
TEST_F(LooseScalesTest, OfAPlateOfFewPointsAreToldUnderTheLeastSumToo) {
    for (const int points : {5, 6, 7})
        for (int seed = 0; seed < 20; ++seed)
            for (const NormOfSet& norm : kNorms) {
                if (norm.Type != kL1) continue;
                SCOPED_TRACE(std::string(norm.Name) + ", seed " + std::to_string(seed) + ", points " +
                             std::to_string(points));
                AddPlate(seed, points, 0, 0.1);
                Fit("12", norm);
                EXPECT_TRUE(Noted(NoteCode::HardlyKnown) || Noted(NoteCode::OpenParameters));
            }
}
