// Pairing by name, by coordinate and by distance, compared with the rules written out as plain loops.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>

#include "cli/headless.h"
#include "core/form_progress_bar.h"
#include "core/job.h"
#include "core/run.h"
#include "core/settings.h"
#include "engine/seed.h"
#include "engine/transform.h"
#include "import/auto_find.h"
#include "import/matching.h"
#include "support/fixture.h"

using namespace corvinade;

namespace {

struct Point {
    std::string Name;
    double X = 0, Y = 0, Z = 0;
    bool operator==(const Point&) const = default;
};
using Set = std::vector<Point>;  // from 1

std::ostream& operator<<(std::ostream& out, const Point& p) {
    return out << p.Name << " (" << p.X << " " << p.Y << " " << p.Z << ")";
}

double Distance(const Point& a, const Point& b) {
    const double dx = a.X - b.X, dy = a.Y - b.Y, dz = a.Z - b.Z;
    return std::sqrt(dx * dx + dy * dy + dz * dz);
}

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}
int Last(const Set& set) {
    return static_cast<int>(set.size()) - 1;
}

// --- The rules, step by step ------------------------------------------------------------------------------

std::string Padded(const std::string& name) {
    const bool digits = !name.empty() && name.find_first_not_of("0123456789") == std::string::npos;
    return digits && name.size() < 50 ? std::string(50 - name.size(), '0') + name : name;
}

void PlainSort(std::vector<std::string>& names, std::vector<int>& place, int low, int high) {
    if (low >= high) return;
    int i = low, j = high;
    const std::string pivot = Padded(names[At((low + high) / 2)]);
    do {
        while (Padded(names[At(i)]) < pivot) ++i;
        while (Padded(names[At(j)]) > pivot) --j;
        if (i <= j) {
            std::swap(names[At(i)], names[At(j)]);
            std::swap(place[At(i)], place[At(j)]);
            ++i;
            --j;
        }
    } while (i <= j);
    PlainSort(names, place, low, j);
    PlainSort(names, place, i, high);
}

void PlainSortSet(Set& set) {
    std::vector<std::string> names;
    std::vector<int> place;
    for (const Point& p : set) {
        place.push_back(static_cast<int>(names.size()));
        names.push_back(p.Name);
    }
    PlainSort(names, place, 1, Last(set));
    const Set before = set;
    for (int i = 1; i <= Last(set); ++i) set[At(i)] = before[At(place[At(i)])];
}

// Sorts both sets and brings the pairs to the front. Returns the message where a name is double.
std::string PlainMatchByName(Set& start, Set& target) {
    PlainSortSet(start);
    PlainSortSet(target);
    for (const auto& [set, label] : {std::pair{&start, "MCS"}, {&target, "OCS"}})
        for (int i = 1; i < Last(*set); ++i)
            if ((*set)[At(i)].Name == (*set)[At(i + 1)].Name)
                return std::string("There might be a double Pointnumber in the ") + label +
                       " File. \r\nPlease check Point Number " + (*set)[At(i)].Name;

    const int nMCS = Last(start);
    std::vector<std::string> names = {""};
    std::vector<int> place = {0}, startAt = {0}, targetAt = {0};
    for (const Set* set : {&start, &target})
        for (int i = 1; i <= Last(*set); ++i) {
            place.push_back(static_cast<int>(names.size()));
            names.push_back((*set)[At(i)].Name);
        }
    const int length = static_cast<int>(names.size()) - 1;
    PlainSort(names, place, 1, length);
    for (int i = 1; i <= length - 1; ++i) {
        if (names[At(i)] != names[At(i + 1)]) continue;
        const bool startFirst = place[At(i)] <= nMCS;
        startAt.push_back(place[At(startFirst ? i : i + 1)]);
        targetAt.push_back(place[At(startFirst ? i + 1 : i)] - nMCS);
        ++i;
    }
    for (std::size_t c = 1; c < startAt.size(); ++c) std::swap(start[c], start[At(startAt[c])]);
    for (std::size_t c = 1; c < targetAt.size(); ++c) std::swap(target[c], target[At(targetAt[c])]);
    return "";
}

int PlainPairByCoordinate(Set& start, Set& target, float etta, const MatchingOptions& options) {
    Set moved = start;
    for (Point& p : moved) TransformPoint(p.X, p.Y, p.Z, p.X, p.Y, p.Z);
    std::vector<bool> used(target.size());
    int nIdent = 0;
    double best = 1e10;
    for (int i = 1; i <= Last(start); ++i) {
        int candidate = 0;
        for (int j = 1; j <= Last(target); ++j) {
            if (used[At(j)]) continue;
            const double d = Distance(moved[At(i)], target[At(j)]);
            if (static_cast<float>(d) < etta && d < best) {
                candidate = j;
                best = d;
            }
        }
        if (candidate != 0) {
            used[At(candidate)] = true;
            Point &a = start[At(i)], &b = target[At(candidate)];
            if (!options.CheckRenameMCS && !options.CheckRenameOCS) {
                const std::string joined = a.Name + "=" + b.Name;
                a.Name = joined;
                b.Name = joined;
            }
            if (options.CheckRenameMCS) a.Name = b.Name;
            if (options.CheckRenameOCS) b.Name = a.Name;
            ++nIdent;
        }
        best = 1e10;
    }
    return nIdent;
}

struct WordedRow {
    double Length = 0;
    int First = 0, Second = 0;
};

// All pairs of the first `used` points of a set of n; the rest of the table stays zero.
std::vector<WordedRow> PlainTable(const Set& set, int used) {
    const int n = Last(set);
    std::vector<WordedRow> table(At(n * (n - 1) / 2));
    std::size_t row = 0;
    for (int i = 1; i <= used; ++i)
        for (int j = i + 1; j <= used; ++j) table[row++] = {Distance(set[At(i)], set[At(j)]), i, j};
    return table;
}

std::string Text(double value) {
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "%.15g", value);
    return text.data();
}

using Candidate = std::array<std::string, 7>;  // columns 1 to 6

std::vector<Candidate> PlainSearch(const std::vector<WordedRow>& start, const std::vector<WordedRow>& target,
                                   float etta, std::vector<int>& progress) {
    std::vector<Candidate> found;
    for (std::size_t r = 1; r <= start.size(); ++r) {
        double percent = static_cast<double>(r) / static_cast<double>(start.size()) * 100;
        percent = std::max(percent, static_cast<double>(found.size()) / 5 * 100);
        progress.push_back(static_cast<int>(std::min(std::max(percent, 2.0), 100.0)));
        const double length = start[r - 1].Length;
        double best1 = 1e10, best2 = 1e10, match = 0;
        std::size_t bestRow = target.size();
        for (std::size_t s = 0; s < target.size(); ++s) {
            const double diff = length - target[s].Length;
            if (std::fabs(best1) > std::fabs(diff)) {
                best1 = diff;
                bestRow = s;
                match = target[s].Length;
            }
        }
        for (std::size_t s = 0; s < target.size(); ++s) {
            if (s == bestRow) continue;
            const double diff = match - target[s].Length;
            if (std::fabs(best2) > std::fabs(diff)) best2 = diff;
        }
        if (static_cast<float>(std::fabs(best1)) < etta && static_cast<float>(std::fabs(best2)) > etta)
            found.push_back({"", std::to_string(start[r - 1].First), std::to_string(start[r - 1].Second),
                             std::to_string(target[bestRow].First), std::to_string(target[bestRow].Second),
                             Text(best1), Text(best2)});
        if (found.size() > 5) break;
    }
    return found;
}

// --- The comparison ---------------------------------------------------------------------------------------

class MatchingWording : public Program {
protected:
    static void Fill(const Set& start, const Set& target) {
        Job = JobRecord{};
        for (const Point& p : Set(start.begin() + 1, start.end())) Job.Start.Add(p.Name, p.X, p.Y, p.Z);
        for (const Point& p : Set(target.begin() + 1, target.end())) Job.Target.Add(p.Name, p.X, p.Y, p.Z);
        GetInfoFromData();
        Job.SetPairs(0);
        Headless.Dialogs.clear();
        ::Run.ImportFailed = kFalse;
    }
    static Set StartSet() {
        Set set(1);
        for (int i = 1; i < static_cast<int>(Job.Start.Name.size()); ++i)
            set.push_back(
                {Job.Start.Name[At(i)], *Job.Start.X[At(i)], *Job.Start.Y[At(i)], Job.Start.Z[At(i)]});
        return set;
    }
    static Set TargetSet() {
        Set set(1);
        for (int i = 1; i < static_cast<int>(Job.Target.Name.size()); ++i)
            set.push_back(
                {Job.Target.Name[At(i)], *Job.Target.X[At(i)], *Job.Target.Y[At(i)], Job.Target.Z[At(i)]});
        return set;
    }
    // Pair i stands at position i in both sets with one name, and nobody behind has a partner.
    static void ExpectInvariant() {
        ASSERT_TRUE(JobIsWhole(Job));
        for (std::size_t i = 1; i < Job.Start.Name.size(); ++i)
            for (std::size_t j = 1; j < Job.Target.Name.size(); ++j)
                ASSERT_EQ(Job.Start.Name[i] == Job.Target.Name[j], i == j && i <= At(Job.Pairs()));
    }
    // Matches the sets that stand in the job by name, and by the rules; all must agree.
    static void MatchByName(Set start, Set target) {
        const std::string message = PlainMatchByName(start, target);
        MCS_OCS_aufbereiten();
        GetInfoFromData();
        ASSERT_EQ(IsTrue(::Run.ImportFailed), !message.empty());
        if (!message.empty()) {
            ASSERT_EQ(LastMessage(), message);
            return;
        }
        ASSERT_EQ(StartSet(), start);
        ASSERT_EQ(TargetSet(), target);
        IdentischePkte_Neu();
        ExpectInvariant();
    }
    int Number(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random_); }
    double Uniform(double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random_);
    }
    MatchingOptions RandomOptions() {
        MatchingOptions options;
        options.CheckRenameMCS = Number(0, 3) == 0;
        options.CheckRenameOCS = Number(0, 3) == 0;
        options.CheckUseOnlyFirst = Number(0, 2) == 0;
        options.TextMaxOCS = Uniform(-1, 12);
        return options;
    }
    static void SetTransformation(double x, double y, double z, double turn) {
        Job.TraX = x;
        Job.TraY = y;
        Job.TraZ = z;
        Job.RotXCopy = turn;
        Job.RotYCopy = -2 * turn;
        Job.RotZCopy = 3 * turn;
    }
    std::mt19937 random_{71};
};

TEST_F(MatchingWording, NamesPairAsTheRulesSay) {
    int doubles = 0;
    for (int round = 0; round < 1500; ++round) {
        Set start(1), target(1);
        const auto fill = [&](Set& set, double sign) {
            for (int i = Number(0, 25); i > 0; --i) {
                const int kind = Number(0, 3), number = Number(1, 200);
                const std::string name = kind == 0   ? std::to_string(number)
                                         : kind == 1 ? "P" + std::to_string(number)
                                                     : std::string(1, static_cast<char>('a' + number % 26)) +
                                                           std::to_string(kind * number);
                const double x = sign * static_cast<double>(set.size());
                set.push_back({name, x, 10 * x, 100 * x});
            }
        };
        fill(start, 1);
        fill(target, -1);
        Fill(start, target);
        MatchByName(start, target);
        if (HasFatalFailure()) FAIL() << "round " << round;
        doubles += IsTrue(::Run.ImportFailed) ? 1 : 0;
    }
    EXPECT_GT(doubles, 100);
    EXPECT_LT(doubles, 1400);
}

TEST_F(MatchingWording, CoordinatesPairAsTheRulesSay) {
    for (int round = 0; round < 400; ++round) {
        Set start(1), target(1);
        const bool grid = Number(0, 1) == 0;  // many equal distances
        for (Set* set : {&start, &target})
            for (int i = Number(0, 30); i > 0; --i) {
                const auto value = [&] { return grid ? Number(0, 3) : Uniform(0, 4); };
                const double x = value(), y = value(), z = value();
                set->push_back({(set == &start ? "s" : "t") + std::to_string(i), x, y, z});
            }
        Fill(start, target);
        if (!grid) SetTransformation(0.5, -0.25, 0.125, 0.01);
        ::Run.Etta = static_cast<float>(grid ? Number(1, 4) / 2.0 : Uniform(-0.1, 3));
        const MatchingOptions options = RandomOptions();
        const int nIdent = PlainPairByCoordinate(start, target, ::Run.Etta, options);
        PärchenSuchen(options);
        ASSERT_EQ(Job.Pairs(), nIdent) << round;
        ASSERT_EQ(StartSet(), start) << round;
        ASSERT_EQ(TargetSet(), target) << round;
        MatchByName(start, target);
        if (HasFatalFailure()) FAIL() << "round " << round;
        ASSERT_EQ(Job.Pairs(), nIdent);
    }
}

TEST_F(MatchingWording, DistancesPairAsTheRulesSay) {
    int solved = 0, chosen = 0, tied = 0, cut = 0, unsolved = 0;
    for (int round = 0; round < 1500; ++round) {
        // The target set is the start set moved, or points on a line at whole numbers, whose distances
        // often stand equally clear of their neighbours.
        const bool line = Number(0, 1) == 0;
        const int count = line ? Number(0, 6) : Number(0, 9);
        Set start(1), target(1);
        for (int i = 1; i <= count; ++i) {
            Point p{"MCS_" + std::to_string(i), 0, 0, 0};
            p.X = line ? Number(0, 300) : Uniform(-900, 900);
            p.Y = line ? 0 : Uniform(-900, 900);
            p.Z = line ? 0 : Uniform(-900, 900);
            start.push_back(p);
            p.Name = "OCS_" + std::to_string(i);
            if (!line) {
                p = {p.Name, 40 - p.Y, 50 + p.X, p.Z - 60};  // a quarter turn about z
                p.X += Uniform(-0.01, 0.01);
            }
            if (Number(0, 9) != 0) target.push_back(p);
        }
        std::shuffle(target.begin() + 1, target.end(), random_);
        if (Number(0, 9) == 0) start.push_back({"MCS_extra", start.back().X + 0.01, start.back().Y, 0});
        Fill(start, target);
        Settings.RawScale = static_cast<std::int16_t>(Number(1, 3));
        const auto rawScale = Settings.RawScale;
        ::Run.Etta = static_cast<float>(line ? Uniform(0.1, 3) : Uniform(0.02, 1));
        ::Run.RobotFileHasId = ToFlag(Number(0, 4) == 0);
        const MatchingOptions options = RandomOptions();
        SetTransformation(7, 8, 9, 0.1);

        // By the rules.
        if (IsTrue(::Run.RobotFileHasId))
            for (int i = 1; i <= Last(start); ++i)
                start[At(i)].Name = " " + std::to_string(i) + "_" + start[At(i)].Name;
        int m = Last(target);
        if (options.CheckUseOnlyFirst) m = std::min(m, static_cast<int>(options.TextMaxOCS));
        std::vector<int> progress;
        const std::vector<WordedRow> startTable = PlainTable(start, Last(start));
        const std::vector<WordedRow> targetTable = PlainTable(target, m);
        std::vector<Candidate> found = PlainSearch(startTable, targetTable, ::Run.Etta, progress);
        if (targetTable.empty()) progress.clear();  // nothing is searched
        JobRecord expected = Job;
        int nIdent = 0;
        if (found.size() >= 3) {
            ++solved;
            std::vector<Candidate> three;
            std::vector<std::size_t> taken;
            if (found.size() == 3) three = found;
            while (three.size() < 3) {
                std::size_t best = found.size();
                for (std::size_t i = 0; i < found.size(); ++i) {
                    const auto clear = [&](std::size_t k) {
                        return std::fabs(std::strtod(found[k][6].c_str(), nullptr));
                    };
                    if (std::find(taken.begin(), taken.end(), i) != taken.end()) continue;
                    if (best < found.size() && clear(i) == clear(best)) ++tied;
                    if (best == found.size() || clear(i) > clear(best)) best = i;
                }
                taken.push_back(best);
                three.push_back(found[best]);
            }
            chosen += found.size() > 3 ? 1 : 0;
            cut += options.CheckUseOnlyFirst && m < Last(target) ? 1 : 0;
            // The middles of the three alone, in a job of their own.
            const JobRecord before = Job;
            Set starts(1), targets(1);
            const auto middle = [](const Set& set, const std::string& i, const std::string& j) {
                const Point &a = set[At(std::stoi(i))], &b = set[At(std::stoi(j))];
                return Point{"", (a.X + b.X) / 2, (a.Y + b.Y) / 2, (a.Z + b.Z) / 2};
            };
            for (const Candidate& c : three) {
                starts.push_back(middle(start, c[1], c[2]));
                targets.push_back(middle(target, c[3], c[4]));
            }
            Fill(starts, targets);
            Job.SetPairs(3);
            Job.SeedIndex = {0, 1, 2, 3};
            Settings.RawScale = 1;
            JobRecord& e = expected;
            RawSolution(e.TraX, e.TraY, e.TraZ, e.RotXCopy, e.RotYCopy, e.RotZCopy, e.ScaleX, e.ScaleY,
                        e.ScaleZ);
            e.SeedIndex = Job.SeedIndex;
            Settings.RawScale = rawScale;
            Job = expected;
            nIdent = PlainPairByCoordinate(start, target, ::Run.Etta, options);
            Job = before;
        } else {
            ++unsolved;
        }

        std::vector<int> shown;
        Headless.OnYield = [&] { shown.push_back(static_cast<int>(Progress.ProgressBar1.Value)); };
        AutoFindPts(options);
        ASSERT_EQ(shown, progress) << round;
        const std::vector<std::string> unsolvable = {
            "Could not solve the auto find problem, maybe try changing ETTA Value"};
        ASSERT_EQ(Messages(), found.size() < 3 ? unsolvable : std::vector<std::string>{}) << round;
        ASSERT_EQ(Settings.RawScale, rawScale);
        const auto parameters = [](const JobRecord& job) {
            return std::array{job.TraX,     job.TraY,   job.TraZ,   job.RotXCopy, job.RotYCopy,
                              job.RotZCopy, job.ScaleX, job.ScaleY, job.ScaleZ};
        };
        ASSERT_EQ(parameters(Job), parameters(expected)) << round;
        ASSERT_EQ(Job.SeedIndex, expected.SeedIndex);
        ASSERT_EQ(Job.Pairs(), nIdent);
        ASSERT_EQ(StartSet(), start) << round;
        ASSERT_EQ(TargetSet(), target) << round;
        const std::size_t extra = found.size() < 3 ? 0 : 3;
        ASSERT_EQ(Job.Start.X.size(), start.size() + extra);
        ASSERT_EQ(Job.Target.Z.size(), target.size() + extra);
        MatchByName(start, target);
        if (HasFatalFailure()) FAIL() << "round " << round;
        ASSERT_EQ(Job.Pairs(), nIdent);
    }
    // Each way through the rules has been gone often enough.
    for (const int times : {solved, chosen, tied, cut, unsolved}) EXPECT_GT(times, 20);
}

}  // namespace
