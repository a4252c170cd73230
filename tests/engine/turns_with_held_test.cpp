// Turns of points near a line while translations or an angle are held: what of the turn they fasten, against
// geometry and the spread of repeated measurements.
#include <algorithm>
#include <cmath>
#include <numbers>

#include "core/notes.h"
#include "engine/adjustment.h"
#include "engine/calculation_job.h"
#include "engine/fit_reference.h"
#include "engine/presets.h"
#include "engine/seed.h"
#include "engine/selection.h"
#include "fit/loose_turns.h"
#include "fit/other_turn.h"
#include "fit/turns_left.h"
#include "support/memory_use.h"

using namespace corvinade;

namespace {

using reference::Point;
using reference::Real;

class TurnsWithHeld : public CalculationJob {
protected:
    static constexpr Point kOrigin = {1000, 200, -300};
    static constexpr double kRotX0 = 0.01, kRotY0 = -0.02, kRotZ0 = -0.5;

    static std::size_t At(int i) { return static_cast<std::size_t>(i); }
    static double Noise(double size) { return size * (NextNumber() + NextNumber() + NextNumber()); }
    static Point Noisy(const Point& p, double size) {
        return {p[0] + Noise(size), p[1] + Noise(size), p[2] + Noise(size)};
    }
    static void Begin(int seed = 0) {
        Job = JobRecord{};
        BeginFit();
        RhoFestlegung();
        for (int skip = 0; skip < 23 * seed; ++skip) NextNumber();
    }
    // The start point whose image this is.
    static Point StartOf(const Point& image) {
        const auto truth = Truth({0, 0, 0, kRotX0, kRotY0, kRotZ0, 1, 1, 1, 1});
        Point start{};
        for (std::size_t k = 0; k < 3; ++k) {
            Point unit{};
            unit[k] = 1;
            const Point column = reference::Image(truth, unit);
            for (std::size_t i = 0; i < 3; ++i) start[k] += column[i] * (image[i] - kOrigin[i]);
        }
        return start;
    }
    static JudgedResult Judged(const GatheredPoints& points, const Linearisation& at) {
        static Parameters values;
        values = ParametersOf(Job);
        return {points, Adjustment.Model, at, values, CoordinateInUse};
    }
    // A line along x of the target, at y = 100 and z = 50.
    static void AddLine(double noise, double thick = 0) {
        for (int i = 0; i < 8; ++i) {
            const Point q = {500 + 100.0L * i, 100 + (i % 3 == 1 ? thick : 0), 50 + (i % 2 == 0 ? thick : 0)};
            AddPair(Noisy(StartOf(q), noise), q);
        }
    }
    static void AddBody(double noise) {
        for (int i = 0; i < 8; ++i) {
            const Point q = {800 * NextNumber(), 800 * NextNumber(), 800 * NextNumber()};
            AddPair(Noisy(StartOf(q), noise), q);
        }
    }
    static void Fit(std::initializer_list<int> held) {
        SelectPreset("6");
        ChooseDefaultSeeds();
        const std::array<const char*, 7> values = {
            "", "1000", "200", "-300", "0.572957795", "-1.145915590", "-28.647889757"};
        for (const int k : held) Job.ParamText[At(k)] = values[At(k)];
        SelectionFromJob();
        Job.LeftOpen.fill(0);
        Notes.List.clear();
        ButtonCalcErsatz();
        ASSERT_TRUE(Calculation.Finite);
    }
    static const Note* Noted(NoteCode code) {
        for (const Note& note : Notes.List)
            if (note.Code == code) return &note;
        return nullptr;
    }
    static bool Told() {
        return Noted(NoteCode::OpenParameters) != nullptr || Noted(NoteCode::HardlyKnown) != nullptr;
    }
    static std::string Texts() {
        std::string texts;
        for (const Note& note : Notes.List) texts += "\n    " + note.Text;
        return texts;
    }
    static double Off(double angle, double truth) {
        return std::fabs(std::remainder(angle - truth, 2 * std::numbers::pi));
    }
};

}  // namespace

TEST_F(TurnsWithHeld, AlongTheLineATranslationFastensNothingOfTheTurn) {
    int off = 0;
    for (int seed = 0; seed < 12; ++seed) {
        Begin(seed);
        AddLine(0.05);
        Fit({kTraX});
        EXPECT_TRUE(Told()) << seed << Texts();
        EXPECT_NE(Job.LeftOpen[kRotX], 0);
        EXPECT_NE(Job.LeftOpen[kTraY], 0);
        EXPECT_NE(Job.LeftOpen[kTraZ], 0);
        EXPECT_EQ(Job.LeftOpen[kTraX], 0);
        off += Off(Job.RotX, kRotX0) > 0.2 ? 1 : 0;
    }
    EXPECT_GT(off, 6);
}

// Of the line's circle about the origin of the start system a height leaves two places, (-100, 350) and
// (100, 350) from there, one as good as the other.
TEST_F(TurnsWithHeld, AcrossTheLineATranslationLeavesTwoPlaces) {
    const double apart = 2 * std::atan2(100.0, 350.0);
    for (int seed = 0; seed < 12; ++seed) {
        Begin(seed);
        AddLine(0.05);
        Fit({kTraZ});
        const bool there = Off(Job.RotX, kRotX0) < 0.01;
        EXPECT_TRUE(there || std::fabs(Job.TraY) < 1) << Job.TraY;
        ASSERT_NE(Noted(NoteCode::HardlyKnown), nullptr) << seed << Texts();
        GatheredPoints points;
        GatherPoints(Column(At(3 * Job.Pairs()) + 1, 1), false, points);
        const Linearisation at = Linearise(Adjustment.Model, points);
        EXPECT_NEAR(FindOtherTurn(Judged(points, at)).Angle, apart, 1e-3);
        for (const int k : {kTraY, kRotX}) EXPECT_NE(Job.LeftOpen[At(k)], 0);
        for (const int k : {kTraX, kTraZ}) EXPECT_EQ(Job.LeftOpen[At(k)], 0);
    }
}

// The other one of an angle turns Rot y by more than a right angle: it is told where it is the result, which
// then shows another value than the one that was held.
TEST_F(TurnsWithHeld, AnAngleLeavesTwoPlacesOfWhichOneShowsIt) {
    int other = 0;
    for (int seed = 0; seed < 6; ++seed) {
        Begin(seed);
        AddLine(0.05);
        Fit({kRotX});
        const bool shown = Off(Job.RotX, kRotX0) < 1e-9;
        EXPECT_EQ(Noted(NoteCode::HardlyKnown) == nullptr, shown) << seed << Texts();
        if (shown) {
            for (const auto& [angle, truth] : {std::pair{Job.RotY, kRotY0}, {Job.RotZ, kRotZ0}})
                EXPECT_LT(Off(angle, truth), 0.01) << seed;
        }
        other += shown ? 0 : 1;
    }
    EXPECT_GT(other, 0);
}

TEST_F(TurnsWithHeld, TwoTranslationsAcrossTheLineFastenIt) {
    for (int seed = 0; seed < 12; ++seed) {
        Begin(seed);
        AddLine(0.05);
        Fit({kTraY, kTraZ});
        EXPECT_FALSE(Told()) << seed << Texts();
        EXPECT_LT(Off(Job.RotX, kRotX0), 0.001);
    }
}

TEST_F(TurnsWithHeld, NothingIsToldOfABody) {
    for (const std::initializer_list<int>& held : {std::initializer_list<int>{kTraX},
                                                   {kTraZ},
                                                   {kTraX, kTraY},
                                                   {kTraX, kTraY, kTraZ},
                                                   {kRotX},
                                                   {kRotZ},
                                                   {kTraY, kRotY}})
        for (int seed = 0; seed < 12; ++seed) {
            Begin(seed);
            AddBody(0.05);
            Fit(held);
            EXPECT_FALSE(Told()) << seed << Texts();
        }
}

// The line is so thick that the turn is known to some tenths of a radian.
TEST_F(TurnsWithHeld, TheSigmaThatIsToldIsTheSpreadOfRepeatedMeasurements) {
    const int times = UnderSanitizers() ? 40 : 200;
    double squares = 0, told = 0;
    int count = 0;
    for (int seed = 0; seed < times; ++seed) {
        Begin(seed);
        AddLine(0.15, 0.5);
        Fit({kTraX});
        GatheredPoints points;
        GatherPoints(Column(At(3 * Job.Pairs()) + 1, 1), false, points);
        const Linearisation at = Linearise(Adjustment.Model, points);
        for (const LooseTurn& turn : FindTurnsLeft(Judged(points, at))) {
            told += turn.Sigma * turn.Sigma;
            ++count;
        }
        const double off = std::remainder(Job.RotX - kRotX0, 2 * std::numbers::pi);
        squares += off * off / times;
    }
    ASSERT_GT(count, times / 2);
    EXPECT_NEAR(std::sqrt(told / count) / std::sqrt(squares), 1, 0.35);
}

// Where nothing is held both roads are the same.
TEST_F(TurnsWithHeld, OfFloatingTranslationsItIsWhatThePlainRuleSays) {
    for (int seed = 0; seed < 12; ++seed) {
        Begin(seed);
        AddLine(0.15, 0.5);
        Fit({});
        GatheredPoints points;
        GatherPoints(Column(At(3 * Job.Pairs()) + 1, 1), false, points);
        const Linearisation at = Linearise(Adjustment.Model, points);
        const auto plain = FindLooseTurns(Judged(points, at));
        const auto other = FindTurnsLeft(Judged(points, at));
        ASSERT_EQ(plain.size(), other.size());
        for (std::size_t i = 0; i < plain.size(); ++i) {
            EXPECT_EQ(plain[i].Open, other[i].Open);
            EXPECT_NEAR(plain[i].Sigma, other[i].Sigma, 0.01 * plain[i].Sigma);
            for (int k = kRotX; k <= kRotZ; ++k) EXPECT_EQ(plain[i].Moves[At(k)], other[i].Moves[At(k)]);
        }
    }
}
