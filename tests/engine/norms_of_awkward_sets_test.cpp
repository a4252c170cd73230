// The norms of sets that lead astray: Rot y at a right angle, mirrored and swapped points, points on a line.
#include <numeric>

#include "core/notes.h"
#include "engine/exact_norms_job.h"
#include "engine/presets.h"
#include "engine/seed.h"
#include "engine/selection.h"
#include "support/memory_use.h"

using namespace corvinade;

namespace {

using reference::Point;

const std::vector<Point> kBody = {{0, 0, 0},   {1000, 0, 0},    {0, 800, 0},
                                  {0, 0, 600}, {700, 500, 300}, {300, -400, 200}};

class AwkwardSets : public ExactNorms {
protected:
    static void Fit(const std::vector<Point>& start, const std::vector<Point>& target, const char* preset,
                    const NormOfSet& norm) {
        Job = JobRecord{};
        BeginFit();
        for (std::size_t i = 0; i < start.size(); ++i) AddPair(start[i], target[i]);
        SelectPreset(preset);
        ChooseDefaultSeeds();
        SelectionFromJob();
        Norm.RunOn = norm.RunOn;
        Notes.List.clear();
        Calculate(norm.Type);
    }
    static double Objective(const NormOfSet& norm) { return norm.Type == kL1 ? Sum() : Largest(); }
    static bool Noted(NoteCode code) {
        return std::any_of(Notes.List.begin(), Notes.List.end(),
                           [code](const Note& note) { return note.Code == code; });
    }
    static Point AnyPoint(double size) {
        return {size * NextNumber(), size * NextNumber(), size * NextNumber()};
    }
    // A cloud and its image, with two names exchanged or the third axis turned round.
    struct Set {
        std::vector<Point> Start, Target;
    };
    static Set AnySet(int seed, bool mirrored) {
        BeginFit();
        for (int skip = 0; skip < 53 * seed; ++skip) NextNumber();
        const auto truth =
            Truth({100, -200, 300, 1.3 * NextNumber(), 1.3 * NextNumber(), 3 * NextNumber(), 1, 1, 1, 1});
        Set set;
        for (int i = 0; i < 8; ++i) {
            const Point p = AnyPoint(500);
            Point q = reference::Image(truth, {p[0], p[1], mirrored ? -p[2] : p[2]});
            for (auto& x : q) x = static_cast<double>(x + 0.5 * NextNumber());
            set.Start.push_back(p);
            set.Target.push_back(q);
        }
        if (!mirrored) std::swap(set.Target[1], set.Target[static_cast<std::size_t>(2 + seed % 6)]);
        return set;
    }
    static Set Permuted(const Set& set, int by) {
        std::vector<std::size_t> order(set.Start.size());
        std::iota(order.begin(), order.end(), 0U);
        for (std::size_t i = order.size() - 1; i > 0; --i)
            std::swap(order[i],
                      order[static_cast<std::size_t>((NextNumber() + 1) / 2 * static_cast<double>(i + 1))]);
        if (by == 0) std::iota(order.begin(), order.end(), 0U);
        Set permuted;
        for (const std::size_t i : order) {
            permuted.Start.push_back(set.Start[i]);
            permuted.Target.push_back(set.Target[i]);
        }
        return permuted;
    }
};

}  // namespace

TEST_F(AwkwardSets, WithRotYAtARightAngleEveryNormFindsTheProperSolution) {
    for (const int side : {1, -1}) {
        std::vector<Point> target;
        for (const Point& p : kBody) target.push_back({side * p[2] + 100, p[1] + 200, -side * p[0] + 300});
        for (const char* preset : {"6", "7", "9", "12"})
            for (const NormOfSet& norm : kNorms) {
                SCOPED_TRACE(std::string(preset) + ", " + norm.Name + ", side " + std::to_string(side));
                Fit(kBody, target, preset, norm);
                EXPECT_TRUE(Calculation.Converged);
                EXPECT_TRUE(Messages().empty());
                EXPECT_LT(Largest(), 1e-6);
                EXPECT_FALSE(Noted(NoteCode::Mirrored));
                EXPECT_NEAR(Job.ScaleX * Job.ScaleY * Job.ScaleZ, 1, 1e-9);
            }
    }
}

TEST_F(AwkwardSets, AMirroredBodyIsFittedByAMirrorWhichIsSaidInEveryNorm) {
    std::vector<Point> target;
    for (const Point& p : kBody) target.push_back({p[0] + 100, p[1] + 200, -p[2] + 300});
    for (const char* preset : {"7", "9", "12"})
        for (const NormOfSet& norm : kNorms) {
            SCOPED_TRACE(std::string(preset) + ", " + norm.Name);
            Fit(kBody, target, preset, norm);
            EXPECT_TRUE(Calculation.Converged);
            EXPECT_LT(Largest(), 1e-6);
            EXPECT_TRUE(Noted(NoteCode::Mirrored));
        }
}

TEST_F(AwkwardSets, TheOrderOfThePointsChangesNoResult) {
    for (const bool mirrored : {false, true})
        for (const char* preset : {"6", "7", "9"})
            for (const NormOfSet& norm : kNorms)
                for (int seed = 0; seed < (UnderSanitizers() ? 1 : 4); ++seed) {
                    SCOPED_TRACE(std::string(mirrored ? "mirrored, " : "swapped, ") + preset + ", " +
                                 norm.Name + ", set " + std::to_string(seed));
                    const Set set = AnySet(seed, mirrored);
                    double first = 0;
                    bool isMirrored = false;
                    for (int by = 0; by < (UnderSanitizers() ? 2 : 3); ++by) {
                        const Set permuted = Permuted(set, by);
                        Fit(permuted.Start, permuted.Target, preset, norm);
                        if (by == 0) first = Objective(norm);
                        if (by == 0) isMirrored = Noted(NoteCode::Mirrored);
                        EXPECT_NEAR(Objective(norm), first, 1e-9 * first) << "order " << by;
                        EXPECT_EQ(Noted(NoteCode::Mirrored), isMirrored) << "order " << by;
                    }
                }
}

TEST_F(AwkwardSets, AnOptimumOnALineConverges) {
    for (const double noise : {0.0, 0.05, 0.5})
        for (const char* preset : {"6", "7"})
            for (const NormOfSet& norm : {kNorms[3], kNorms[4]})
                for (int seed = 0; seed < (UnderSanitizers() ? 2 : 8); ++seed) {
                    SCOPED_TRACE(std::string(preset) + ", " + norm.Name + ", noise " + std::to_string(noise) +
                                 ", set " + std::to_string(seed));
                    BeginFit();
                    for (int skip = 0; skip < 31 * seed; ++skip) NextNumber();
                    const Point middle = AnyPoint(500), along = AnyPoint(100);
                    const auto truth = Truth({50, 0, -20, 0, 0, 3 * NextNumber(), 1, 1, 1, 1});
                    std::vector<Point> start, target;
                    for (int i = 0; i < 8; ++i) {
                        Point p{}, q{};
                        for (std::size_t k = 0; k < 3; ++k) p[k] = middle[k] + i * along[k];
                        q = reference::Image(truth, p);
                        for (std::size_t k = 0; k < 3; ++k) {
                            p[k] = static_cast<double>(p[k] + noise * NextNumber());
                            q[k] = static_cast<double>(q[k] + noise * NextNumber());
                        }
                        start.push_back(p);
                        target.push_back(q);
                    }
                    Fit(start, target, preset, norm);
                    EXPECT_TRUE(Calculation.Converged);
                    EXPECT_TRUE(Messages().empty());
                }
}

TEST_F(AwkwardSets, MetresAgainstMillimetresWithExchangedNamesHaveNotCollapsed) {
    // A thousandth is their true scale, and the deviations of two exchanged names are as long as the images.
    for (int seed = 0; seed < (UnderSanitizers() ? 2 : 8); ++seed)
        for (const char* preset : {"7", "9"})
            for (const NormOfSet& norm : kNorms) {
                SCOPED_TRACE(std::string(norm.Name) + ", " + preset + ", " + std::to_string(seed));
                Set set = AnySet(seed, false);
                for (Point& p : set.Target)
                    for (auto& x : p) x /= 1000;
                Fit(set.Start, set.Target, preset, norm);
                EXPECT_FALSE(Noted(NoteCode::CollapsedScale));
                const double scales = Job.ScaleX * Job.ScaleY * Job.ScaleZ;
                EXPECT_EQ(Noted(NoteCode::Mirrored), scales < 0);
            }
}

// The scale of a cloud whose targets lie on a short line goes to 0 where a norm lets it; the line itself is
// long enough to be no one place.
TEST_F(AwkwardSets, AScaleThatHasGoneToNothingIsToldInEveryNorm) {
    int gone = 0;
    for (int seed = 0; seed < 8; ++seed)
        for (const NormOfSet& norm : kNorms) {
            SCOPED_TRACE(std::string(norm.Name) + ", set " + std::to_string(seed));
            BeginFit();
            for (int skip = 0; skip < 31 * seed; ++skip) NextNumber();
            std::vector<Point> start, target;
            for (int i = 0; i < 6; ++i) {
                start.push_back(AnyPoint(500));
                target.push_back({5, 5, static_cast<double>(5 + i)});
            }
            Fit(start, target, "7", norm);
            // The points are hundreds of millimetres apart, and the targets one.
            if (std::fabs(Job.ScaleXYZ) > 1e-5) continue;
            ++gone;
            EXPECT_TRUE(Noted(NoteCode::CollapsedScale)) << Job.ScaleXYZ;
            EXPECT_EQ(Job.Collapsed, kTrue);
        }
    EXPECT_GT(gone, 8);
}

// With as many parameters as coordinates nothing is left to hold a scale of 1e-12 against.
TEST_F(AwkwardSets, TargetsNearerThanAnyTwoUnitsHaveCollapsed) {
    const std::vector<Point> start = {{0, 0, 0}, {500, 20, -30}, {40, 700, 10}, {-60, 30, 400}};
    const std::vector<Point> target = {{0, 0, 0}, {1e-9, 0, 0}, {0, 2e-9, 0}, {0, 1e-9, 1e-9}};
    for (const NormOfSet& norm : kNorms) {
        SCOPED_TRACE(norm.Name);
        Fit(start, target, "12", norm);
        EXPECT_TRUE(Noted(NoteCode::CollapsedScale));
    }
}

TEST_F(AwkwardSets, MetresAgainstMicrometresHaveNotCollapsed) {
    for (int seed = 0; seed < 6; ++seed)
        for (const char* preset : {"7", "9"})
            for (const NormOfSet& norm : kNorms)
                for (const bool blunder : {false, true}) {
                    // The others give way to it.
                    if (blunder && (norm.Type != kNorms[1].Type || *preset != '7')) continue;
                    SCOPED_TRACE(std::string(norm.Name) + ", " + preset + ", " + std::to_string(seed) +
                                 (blunder ? ", one gross error" : ""));
                    Set set = AnySet(seed, false);
                    set.Target.clear();
                    const auto truth = Truth({0, 0, 0, 0.4, -0.3, 1, 1, 1, 1, 1});
                    for (const Point& p : set.Start) {
                        Point q = reference::Image(truth, p);
                        for (auto& x : q) x = static_cast<double>((x + 0.05 * NextNumber()) * 1e-6L);
                        set.Target.push_back(q);
                    }
                    if (blunder) set.Target[2][1] += 3;
                    Fit(set.Start, set.Target, preset, norm);
                    EXPECT_FALSE(Noted(NoteCode::CollapsedScale)) << Job.ScaleX << " " << Job.ScaleY;
                }
}

TEST_F(AwkwardSets, LengthsWhoseProductsHaveNoDigitsAreTold) {
    for (const double size : {1.0, 1e-60, 1e-80, 1e-90, 1e-200}) {
        std::vector<Point> start = kBody, target = kBody;
        for (std::size_t i = 0; i < kBody.size(); ++i)
            for (std::size_t axis = 0; axis < 3; ++axis) {
                start[i][axis] *= size;
                target[i][axis] = kBody[i][(axis + 1) % 3] * size;
            }
        Fit(start, target, "6", kNorms[0]);
        EXPECT_EQ(Noted(NoteCode::PointsTooNear), size < 1e-70) << size;
        EXPECT_FALSE(Noted(NoteCode::CollapsedScale)) << size;  // there is no scale
    }
}
