// The readers of robot programs, compared with their rules written out plainly, on programs that have been
// damaged in many ways.
#include <algorithm>
#include <cmath>
#include <random>

#include "cli/headless.h"
#include "core/job.h"
#include "core/notes.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/units.h"
#include "fit/quaternion.h"
#include "import/robot_files.h"
#include "support/fixture.h"

using namespace corvinade;

namespace {

using Lines = std::vector<std::string>;

// --- The rules, step by step ------------------------------------------------------------------------------

struct Bad {  // what ends a reading: the number of the line; 0 = the file as a whole
    int Line;
};

struct Pose {
    double X, Y, Z, A, B, C;    // as stored: mm and rad
    std::array<double, 4> Q{};  // the quaternion, where the angles are any that turn as it does
};

struct RobotOutcome {
    int Error = -1;    // line; -1 = none
    long Places = -1;  // for poses; -1 = the job is as it was
    Lines Messages;    // the first line of each
    std::vector<Pose> Poses;
    std::array<double, 3> Spans{};
};

// Texts by place and length, places from 1, as a basic language has them.
long InStr(long from, const std::string& text, const std::string& what) {
    const std::size_t at = text.find(what, static_cast<std::size_t>(from - 1));
    return at == std::string::npos ? 0 : static_cast<long>(at) + 1;
}
std::string Mid(const std::string& text, long from, long length) {
    if (from > static_cast<long>(text.size())) return "";
    return text.substr(static_cast<std::size_t>(from - 1), static_cast<std::size_t>(length));
}
bool Begins(const std::string& line, const std::string& what) {
    return line.substr(0, what.size()) == what;
}
bool AllBlank(const std::string& text) {
    return text.find_first_not_of(" \t") == std::string::npos;
}

double Number(const std::string& text, int line) {
    const std::string digits = "0123456789";
    std::string t = text;
    while (!t.empty() && AllBlank(t.substr(0, 1))) t.erase(0, 1);
    while (!t.empty() && AllBlank(t.substr(t.size() - 1))) t.pop_back();
    // One decimal delimiter at most, the system's or a point, between digits of which there is one at least.
    const char system = Headless.Decimal.value();
    std::string plain;
    std::size_t i = 0;
    const auto take = [&](const std::string& any, std::size_t most) {
        std::size_t taken = 0;
        for (; taken < most && i < t.size() && any.find(t[i]) != std::string::npos; ++taken) plain += t[i++];
        return taken;
    };
    take("+-", 1);
    std::size_t count = take(digits, 1000);
    if (i < t.size() && (t[i] == system || t[i] == '.')) {
        plain += '.';
        ++i;
        count += take(digits, 1000);
    }
    if (count == 0) throw Bad{line};
    if (i < t.size()) {
        const bool good = take("eE", 1) == 1 && take("+-", 1) <= 1 && take(digits, 1000) > 0;
        if (!good) throw Bad{line};
    }
    if (i != t.size()) throw Bad{line};
    if (plain[0] == '+') plain.erase(0, 1);
    return std::strtod(plain.c_str(), nullptr);
}

struct Reader {
    Lines All;
    std::size_t Next = 0;  // lines read so far
    RobotOutcome Out;
    std::array<double, 3> Max{-1e10, -1e10, -1e10}, Min{1e10, 1e10, 1e10};
    double AngleFactor = Units.AngleFactor;

    bool Eof() const { return Next >= All.size(); }
    int Row() const { return static_cast<int>(Next); }
    std::string Line() {
        if (Eof()) throw Bad{Row()};
        return All[Next++];
    }
    void Size(long n) {
        if (n == 0) throw Bad{0};
        Out.Places = n;
    }
    void Store(const Pose& read) {
        if (static_cast<long>(Out.Poses.size()) == Out.Places) throw Bad{Row()};
        const std::array<double, 3> angles = {read.A, read.B, read.C};
        for (std::size_t k = 0; k < 3; ++k) {
            if (angles[k] > Max[k]) Max[k] = angles[k];
            if (angles[k] < Min[k]) Min[k] = angles[k];
        }
        const double m = Units.LengthFactor, f = AngleFactor;
        Out.Poses.push_back({read.X / m, read.Y / m, read.Z / m, read.A / f, read.B / f, read.C / f, read.Q});
    }
    long Occurrences(const std::string& what) const {
        std::string whole;
        for (const std::string& line : All) whole += line;
        long n = 0;
        for (long at = InStr(1, whole, what); at > 0; at = InStr(at + 1, whole, what)) ++n;
        return n;
    }
    template <class Steps>
    RobotOutcome Run(Steps steps) {
        try {
            steps(*this);
        } catch (const Bad& bad) {
            Out.Error = bad.Line;
        }
        if (!Out.Poses.empty())
            for (std::size_t k = 0; k < 3; ++k) Out.Spans[k] = (Max[k] - Min[k]) / AngleFactor;
        return Out;
    }
};

void PlainKuka(Reader& r) {
    r.Size(r.Occurrences("{X"));
    while (true) {
        std::string line;
        do line = r.Eof() ? "" : r.Line();
        while (!Begins(line, "DECL E6POS") && !Begins(line, "DECL#E6POS") && !r.Eof());
        if (r.Eof()) return;
        const std::string sign = Begins(line, "DECL E6POS") ? " " : "#";
        std::array<long, 7> place{};
        const std::string letters = "XYZABC";
        for (std::size_t k = 0; k < 6; ++k) place[k] = InStr(1, line, letters[k] + sign);
        for (std::size_t k = 0; k < 6; ++k)
            if (place[k] == 0) throw Bad{r.Row()};
        place[6] = InStr(place[5], line, ", S" + sign);
        if (place[6] == 0) place[6] = InStr(place[5], line, ",S" + sign);
        if (place[6] == 0) throw Bad{r.Row()};
        std::array<double, 6> value{};
        for (std::size_t k = 0; k < 6; ++k) {
            const long length = place[k + 1] - place[k] - (k < 5 ? 3 : 2);
            if (length < 1) throw Bad{r.Row()};
            value[k] = Number(Mid(line, place[k] + 2, length), r.Row());
            if (k < 5 && Mid(line, place[k + 1] - 1, 1) != ",") throw Bad{r.Row()};  // or a digit is lost
        }
        r.Store({value[0], value[1], value[2], value[3], value[4], value[5]});
    }
}

void PlainFanuc(Reader& r) {
    r.Size(r.Occurrences("]{"));
    while (!Begins(r.Line(), "/POS")) {
    }
    do {
        std::string line = r.Line();
        if (Begins(line, "/END")) return;
        for (int k = 0; k < 3; ++k) line = r.Line();
        const auto cut = [&](long place, long length) {
            if (length < 1) throw Bad{r.Row()};
            const double value = Number(Mid(line, place + 4, length), r.Row());
            if (Mid(line, place + 2, 2) != "= ") throw Bad{r.Row()};  // or a sign is lost
            // Digits that the cut loses must not count for more than the last decimal.
            std::string whole = Mid(line, place + 4, length);
            long at = place + 4 + length;
            const auto isDigit = [&] {
                return !Mid(line, at, 1).empty() && InStr(1, "0123456789.,", Mid(line, at, 1)) > 0;
            };
            while (isDigit()) whole += Mid(line, at++, 1);
            const auto kept = static_cast<std::size_t>(length);
            while (whole.size() > kept && (whole.back() == '.' || whole.back() == ',')) whole.pop_back();
            if (whole.size() > kept && !(std::fabs(Number(whole, r.Row()) - value) < 0.01))
                throw Bad{r.Row()};
            return value;
        };
        const auto three = [&](const std::string& letters, long behindLast) {
            std::array<long, 3> place{};
            for (std::size_t k = 0; k < 3; ++k) place[k] = InStr(1, line, letters[k] + std::string(" "));
            for (const long p : place)
                if (p == 0) throw Bad{r.Row()};
            return std::array<double, 3>{
                cut(place[0], place[1] - place[0] - 10), cut(place[1], place[2] - place[1] - 10),
                cut(place[2], static_cast<long>(line.size()) - place[2] - behindLast)};
        };
        const auto [X, Y, Z] = three("XYZ", 9);
        line = r.Line();
        const auto [W, P, R] = three("WPR", 6);
        r.Store({X, Y, Z, R, P, W});
        while (!Begins(r.Line(), "}")) {
        }
    } while (!r.Eof());
}

// Do the angles turn as the quaternion does, made one of length 1?
bool Turns(const std::array<double, 4>& q, double A, double B, double C, double tolerance) {
    // The images of the unit vectors, by the sandwich product and by three turns.
    const double n = std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]);
    for (int axis = 0; axis < 3; ++axis) {
        std::array<double, 3> v{};
        v[static_cast<std::size_t>(axis)] = 1;
        std::array<double, 3> u = v;
        const auto turn = [&u](std::size_t i, std::size_t j, double angle) {
            const double ui = u[i], uj = u[j];
            u[i] = std::cos(angle) * ui - std::sin(angle) * uj;
            u[j] = std::sin(angle) * ui + std::cos(angle) * uj;
        };
        turn(1, 2, C);
        turn(2, 0, B);
        turn(0, 1, A);
        const std::array<double, 3> p = {q[1] / n, q[2] / n, q[3] / n};
        const double w = q[0] / n;
        const auto cross = [](const std::array<double, 3>& a, const std::array<double, 3>& b) {
            return std::array<double, 3>{a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2],
                                         a[0] * b[1] - a[1] * b[0]};
        };
        const auto t = cross(p, v), tt = cross(p, t);
        for (std::size_t k = 0; k < 3; ++k)
            if (!(std::fabs(v[k] + 2 * w * t[k] + 2 * tt[k] - u[k]) <= tolerance)) return false;
    }
    return true;
}

void PlainAbb(Reader& r) {
    r.AngleFactor = 1;
    const auto isPose = [](const std::string& line) {
        return InStr(1, line, "[[") > 0 && line != "ENDMODULE";
    };
    long n = 0;
    std::size_t end = 0;
    for (; end < r.All.size() && r.All[end] != "ENDMODULE"; ++end) {
        if (isPose(r.All[end])) ++n;
        if (n > 0 && r.All[end].empty()) {
            r.Out.Messages.push_back(
                "myabe there are more than one Block in the File - only importing the First block in file with " +
                std::to_string(n) + " Points");
            break;
        }
    }
    r.Size(n);
    long lost = 0;
    while (r.Next < end) {
        const std::string line = r.Line();
        if (!isPose(line)) continue;
        long at = InStr(1, line, "[[") + 2;
        const auto next = [&](const std::string& ending) {
            const long stop = InStr(at, line, ending);
            if (stop == 0 || stop == at) throw Bad{r.Row()};
            const double value = Number(Mid(line, at, stop - at), r.Row());
            at = stop + 1;
            return value;
        };
        const double X = next(","), Y = next(","), Z = next("]");
        if (Mid(line, at - 1, 3) != "],[") throw Bad{r.Row()};
        at += 2;
        const double q1 = next(","), q2 = next(","), q3 = next(","), q4 = next("]");
        double a = 0, b = 0, c = 0;
        QuaternionToAngles(q1, q2, q3, q4, a, b, c);
        const double squares = q1 * q1 + q2 * q2 + q3 * q3 + q4 * q4;
        if (!(squares > 0) || !std::isfinite(squares)) throw Bad{r.Row()};
        // Not better than the digits of the quaternion are, and where these are none, than 1e-5.
        const double tolerance = std::min(1e-9 + 4 * std::fabs(squares - 1), 1e-5);
        if (Turns({q1, q2, q3, q4}, -c, -b, -a, tolerance)) {
            r.Store({X, Y, Z, -c, -b, -a});
        } else {
            ++lost;
            r.Store({X, Y, Z, 0, 0, 0, {q1, q2, q3, q4}});
        }
    }
    if (lost > 0) r.Out.Messages.push_back("lost " + std::to_string(lost));
}

// --- The comparison ---------------------------------------------------------------------------------------

class RobotFilesWording : public Program {
protected:
    // What the reader gives, in the same form; checks what stands beside it.
    RobotOutcome Read(PoseReader reader, const Lines& lines, bool lastEnd) {
        std::string content;
        for (const std::string& line : lines) content += line + (random_() % 2 == 0 ? "\n" : "\r\n");
        if (!lastEnd)
            while (!content.empty() && (content.back() == '\n' || content.back() == '\r')) content.pop_back();
        const std::string path = Write("program.txt", content);
        Job = JobRecord{};
        Headless.Dialogs.clear();
        ForgetNotes();
        RobotOutcome out;
        try {
            reader({path});
        } catch (const PlatformError& error) {
            const std::string head = "Cannot read \"" + path + "\"";
            EXPECT_EQ(error.What.substr(0, head.size()), head);
            const std::string rest = error.What.substr(head.size());
            out.Error = rest.starts_with(", line ") ? std::stoi(rest.substr(7)) : 0;
        }
        EXPECT_TRUE(JobIsWhole(Job));
        if (Job.RobotABC.Rows >= 0) out.Places = Job.Target.Count();
        out.Messages = Messages();
        for (const Note& note : Notes.List)
            if (note.Code == NoteCode::AnglesOfPose)
                out.Messages.push_back("lost " + std::to_string(note.Count));
        for (int i = 1; i <= Job.Target.Count(); ++i) {
            const auto k = static_cast<std::size_t>(i);
            if (Job.Target.Name[k].empty()) {
                EXPECT_FALSE(Job.Target.X[k]);
                continue;
            }
            EXPECT_EQ(Job.Target.Name[k], std::to_string(i)) << "poses stand before the places without one";
            EXPECT_EQ(static_cast<std::size_t>(i), out.Poses.size() + 1);
            out.Poses.push_back({Job.Target.X[k].value_or(NAN), Job.Target.Y[k].value_or(NAN),
                                 Job.Target.Z[k], Job.RobotABC(i, 1), Job.RobotABC(i, 2),
                                 Job.RobotABC(i, 3)});
        }
        if (out.Places >= 0) out.Spans = {::Run.SpanA, ::Run.SpanB, ::Run.SpanC};
        return out;
    }
    static bool Same(const RobotOutcome& a, const RobotOutcome& b) {
        bool ownAngles = false;
        const auto same = [&ownAngles](const Pose& p, const Pose& q) {
            const bool turned = q.Q != std::array<double, 4>{};
            ownAngles = ownAngles || turned;
            if (turned) return p.X == q.X && p.Y == q.Y && p.Z == q.Z && Turns(q.Q, p.A, p.B, p.C, 1e-9);
            return p.X == q.X && p.Y == q.Y && p.Z == q.Z && p.A == q.A && p.B == q.B && p.C == q.C;
        };
        return a.Error == b.Error && a.Places == b.Places && a.Messages == b.Messages &&
               std::equal(a.Poses.begin(), a.Poses.end(), b.Poses.begin(), b.Poses.end(), same) &&
               (ownAngles || a.Spans == b.Spans);
    }

    std::string Value(int decimals) {
        std::array<char, 60> text{};
        const double value = (static_cast<double>(random_() % 4000000) - 2000000) / 1000;
        std::snprintf(text.data(), text.size(), "%.*f", decimals, value);
        return text.data();
    }
    // Damages some lines: a character goes, comes or changes, a line goes, comes twice, is cut or is empty.
    void Damage(Lines& lines, unsigned times, const std::string& letters) {
        for (; times > 0 && !lines.empty(); --times) {
            const std::size_t at = random_() % lines.size();
            std::string& line = lines[at];
            const std::size_t place = line.empty() ? 0 : random_() % line.size();
            const char letter = letters[random_() % letters.size()];
            switch (random_() % 10) {
                case 0:
                    lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(at));
                    break;
                case 1:
                    lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(at),
                                 lines[random_() % lines.size()]);
                    break;
                case 2:
                    lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(at), "");
                    break;
                case 3:
                    line.resize(place);
                    break;
                case 4:
                case 5:
                    line.insert(place, 1, letter);
                    break;
                case 6:
                case 7:
                    if (!line.empty()) line[place] = letter;
                    break;
                default:
                    if (!line.empty()) line.erase(place, 1 + random_() % 2);
                    break;
            }
        }
    }
    template <class Make, class Steps>
    void Compare(Make make, Steps steps, PoseReader reader, const std::string& letters,
                 bool isFanuc = false) {
        int good = 0, errors = 0, told = 0, empty = 0;
        for (int round = 0; round < 6000; ++round) {
            Headless.Decimal = random_() % 3 == 0 ? ',' : '.';
            Units.LengthFactor = random_() % 2 == 0 ? 1 : 0.001;
            Lines lines = make();
            Damage(lines, random_() % 4, letters);
            // A lone CR would end a line, and a file of nothing has no last line to leave open.
            const bool lastEnd = lines.empty() || random_() % 2 == 0;
            while (!lastEnd && !lines.empty() && lines.back().empty()) lines.pop_back();
            RobotOutcome expected = Reader{.All = lines}.Run(steps);
            if (isFanuc && expected.Error >= 0) expected.Messages = {"Error while importing FANUC Data"};
            const RobotOutcome actual = Read(reader, lines, lastEnd);
            std::string all;
            for (const std::string& line : lines) all += line + "\n";
            ASSERT_TRUE(Same(actual, expected))
                << "round " << round << ": error " << actual.Error << " for " << expected.Error << ", poses "
                << actual.Poses.size() << " of " << actual.Places << " for " << expected.Poses.size()
                << " of " << expected.Places << "\n"
                << all;
            ++(expected.Error >= 0 ? errors : good);
            if (!expected.Messages.empty()) ++told;
            if (static_cast<long>(expected.Poses.size()) < expected.Places && expected.Error < 0) ++empty;
        }
        // Each way through the rules has been gone often enough.
        EXPECT_GT(good, 1000);
        EXPECT_GT(errors, 500);
        if (isFanuc) {
            EXPECT_EQ(told, errors);
        }
        emptyPlaces_ = empty;
        told_ = told;
    }
    int emptyPlaces_ = 0, told_ = 0;
    std::mt19937 random_{20240611};
};

TEST_F(RobotFilesWording, DeclarationsAreReadAsTheRulesSay) {
    const auto make = [this] {
        Lines lines = {"DEFDAT  T PUBLIC"};
        for (unsigned poses = random_() % 4; poses > 0; --poses) {
            const std::string sign = random_() % 4 == 0 ? "#" : " ";
            std::string line = "DECL" + sign + "E6POS" + sign + "XP1={";
            for (const char letter : std::string("XYZABC"))
                line += letter + sign + Value(static_cast<int>(random_() % 4)) + (letter == 'C' ? "" : ",");
            line += (random_() % 3 == 0 ? ", S" : ",S") + sign + "2,T" + sign + "35,E1" + sign + "0}";
            lines.push_back(line);
            if (random_() % 4 == 0) lines.emplace_back("DECL FRAME F={X 1,Y 2}");
        }
        if (random_() % 2 == 0) lines.emplace_back("ENDDAT");
        return lines;
    };
    Compare(make, PlainKuka, EinlesenKUKAdatDatei, "XYZABCS{}#,, .-0159E\t");
    EXPECT_GT(emptyPlaces_, 500);
}

TEST_F(RobotFilesWording, PosesInColumnsAreReadAsTheRulesSay) {
    const auto make = [this] {
        Lines lines = {"/PROG  T", "/MN", "   1:J P[1] 20% FINE    ;", "/POS"};
        const auto padded = [this] {
            const std::string value = Value(3);
            return std::string(value.size() < 10 ? 10 - value.size() : 0, ' ') + value;
        };
        for (unsigned poses = random_() % 4; poses > 0; --poses) {
            lines.push_back("P[" + std::to_string(poses) + "]{");
            lines.emplace_back("   GP1:");
            lines.emplace_back("\tUF : 0, UT : 1,\t\tCONFIG : 'N U T, 0, 0, 0',");
            lines.push_back("\tX =" + padded() + "  mm,\tY =" + padded() + "  mm,\tZ =" + padded() + "  mm," +
                            (random_() % 2 == 0 ? " " : ""));
            lines.push_back("\tW =" + padded() + " deg,\tP =" + padded() + " deg,\tR =" + padded() + " deg");
            if (random_() % 6 == 0) lines.emplace_back("   GP2:");
            lines.emplace_back("};");
        }
        if (random_() % 3 != 0) lines.emplace_back("/END");
        return lines;
    };
    Compare(make, PlainFanuc, EinlesenFanucDatei, "XYZWPR=]{} ,.-0159m\t", true);
}

TEST_F(RobotFilesWording, TargetsOfModulesAreReadAsTheRulesSay) {
    const auto make = [this] {
        Lines lines = {"MODULE T"};
        for (unsigned poses = random_() % 4; poses > 0; --poses) {
            std::array<double, 4> q{};
            for (double& part : q) part = static_cast<double>(random_() % 2001) - 1000;
            if (random_() % 5 == 0) q = {1, 0, random_() % 2 == 0 ? 1.0 : -1.0, 0};
            const double length = std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]);
            std::array<char, 160> text{};
            const int digits = random_() % 2 == 0 ? 9 : 6;
            std::snprintf(text.data(), text.size(), "[%.*f,%.*f,%.*f,%.*f]", digits, q[0] / length, digits,
                          q[1] / length, digits, q[2] / length, digits, q[3] / length);
            lines.push_back("  CONST robtarget p:=[[" + Value(2) + "," + Value(1) + "," + Value(0) + "]," +
                            text.data() + ",[0,0,0,0],[9E9,9E9]];");
            if (random_() % 8 == 0) lines.emplace_back("");
        }
        if (random_() % 3 != 0) lines.emplace_back("ENDMODULE");
        return lines;
    };
    Compare(make, PlainAbb, EinlesenABB_MODX, "[],,.-0159 \t");
    EXPECT_GT(told_, 300);
}

}  // namespace
