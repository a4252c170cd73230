// Every kind of damaged field, and the walk of a reader over all of them: the right numbers come, or a
// refusal that names the line and the field, or a note that does.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <map>
#include <numbers>
#include <set>
#include <sstream>

#include "analysis/batch_file.h"
#include "bundle/bundle_file.h"
#include "cli/headless.h"
#include "core/controller.h"
#include "core/job.h"
#include "core/notes.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/text.h"
#include "core/units.h"
#include "engine/pose_file.h"
#include "import/form_input_files.h"
#include "import/point_file.h"
#include "import/robot_files.h"
#include "import/row_notes.h"
#include "support/fixture.h"

using namespace corvinade;

using Values = std::vector<double>;
using Points = std::vector<std::pair<std::string, Values>>;
using Fields = std::vector<std::string>;

// A reader: how it has its rows, and what it makes of a file.
struct Reader {
    std::string Name;
    std::function<std::string(const Fields&)> Row;  // name and numbers; as many as Numbers
    std::string Head, Tail;
    std::string Comment;      // a line that the format knows as none of its rows
    std::size_t Numbers = 3;  // that a row has
    bool HasNames = true;     // of the file; otherwise 1, 2, 3
    std::function<Points(const std::string& path)> Read;
    bool IsProgram = false;  // no columns
    int FieldLine = 0;       // of the numbers, behind the first line of a row
    bool ComparesNames = true;
    bool ComparesLines = true;  // damages of whole lines too
};

inline std::string Joined(const Fields& fields, const std::string& delimiter) {
    std::string row;
    for (std::size_t i = 0; i < fields.size(); ++i) row += (i == 0 ? "" : delimiter) + fields[i];
    return row + "\n";
}

inline Points PointsOf(const std::vector<std::string>& names, const std::vector<TaggedValue>& x,
                       const std::vector<TaggedValue>& y, const std::vector<double>& z) {
    Points points;
    for (std::size_t i = 1; i < names.size(); ++i)
        points.push_back({names[i], {x[i].value_or(0), y[i].value_or(0), z[i]}});
    return points;
}

struct Damage {
    std::string Name;
    std::string Content;
    int Line;               // of the damage
    std::size_t Field = 0;  // whose value another number has taken, from 1; 0 = none
    int OtherLine = 0;      // that may be named as well
    std::string Text = "";  // that a refusal or a note has to show: what stands in the field, without a blank
};

class DamagedFields : public Program {
protected:
    DamagedFields() {
        ShowWindow("FormMain");
        Initialisieren();
    }

    // What a field may hold in the place of its number.
    static const std::map<std::string, std::string>& Texts() {
        static const std::map<std::string, std::string> kTexts = {
            {"text", "abc"},         {"empty", ""},
            {"NaN", "NaN"},          {"too large", "1e400"},
            {"quoted", "\"6\""},     {"unit", "6mm"},
            {"unit apart", "6 mm"},  {"letter O", "6O"},
            {"infinity", "inf"},     {"hexadecimal", "0x6"},
            {"two points", "6.1.2"}, {"thousands", "6 000"},
            {"thousands'", "6'000"}, {"many digits", "6.12345678901234567890123"},
            {"too small", "1e-400"}};
        return kTexts;
    }

    // Where a line begins, from 1.
    static std::size_t NthLine(const std::string& text, int line) {
        std::size_t at = 0;
        for (int i = 1; i < line; ++i) at = text.find('\n', at) + 1;
        return at;
    }

    static std::vector<Damage> DamagesOf(const Reader& reader) {
        const std::vector<Fields> rows = {{"A", "1", "2", "3"}, {"B", "5", "6", "7"}, {"C", "8", "9", "11"}};
        const auto content = [&](std::vector<Fields> all) {
            std::string text = reader.Head;
            for (Fields& fields : all) {
                if (!reader.HasNames && !reader.IsProgram) fields.erase(fields.begin());
                text += reader.Row(fields);
            }
            return text + reader.Tail;
        };
        const auto linesOf = [](const std::string& text) {
            return static_cast<int>(std::count(text.begin(), text.end(), '\n'));
        };
        const auto plainRows = [&] {
            std::vector<Fields> plain = rows;
            for (Fields& fields : plain) fields.resize(reader.Numbers + 1);
            return content(plain);
        };
        std::vector<Fields> cut = rows;
        for (Fields& fields : cut) fields.resize(reader.Numbers + 1);
        const int perRow = linesOf(content(cut)) - linesOf(reader.Head + reader.Tail);
        const int second = linesOf(reader.Head) + perRow / 3 + 1;
        std::vector<Damage> damages;
        for (std::size_t field = 1; field <= reader.Numbers; ++field)
            for (const auto& [name, text] : Texts()) {
                std::vector<Fields> all = cut;
                all[1][field] = text;
                damages.push_back({name + " in field " + std::to_string(field), content(all),
                                   second + reader.FieldLine, name == "many digits" ? field : 0, 0,
                                   text.find(' ') == std::string::npos ? text : ""});
            }
        const auto withLine = [&](const std::string& line) {
            std::string text = content(cut);
            return text.insert(reader.Head.size(), line);
        };
        const int first = linesOf(reader.Head) + 1;
        // The check of the columns names the row that differs from those before it.
        if (!reader.ComparesLines) return damages;
        damages.push_back({"comment", withLine(reader.Comment), first, 0, first + 1});
        if (reader.IsProgram) return damages;
        std::string gap = plainRows();
        damages.push_back({"empty line", gap.insert(NthLine(gap, second), "\n"), second, 0, second + 1});
        std::vector<Fields> all = cut;
        all[1].pop_back();
        damages.push_back({"column missing", content(all), second});
        for (Fields& fields : all) fields.resize(reader.Numbers);
        damages.push_back({"column missing in all rows", content(all), first});
        all = cut;
        all[1].emplace_back("9");
        damages.push_back({"column more", content(all), second});
        // Rows of three numbers with one more are rows of a name and three numbers.
        for (Fields& fields : all) fields.resize(reader.Numbers + 2, "9");
        if (reader.HasNames || reader.Numbers != 3)
            damages.push_back({"column more in all rows", content(all), first});
        all = cut;
        for (Fields& fields : all) fields.insert(fields.begin() + 1, "");
        damages.push_back({"empty column in all rows", content(all), first});
        all = cut;
        all.insert(all.begin(), Fields{"Name", "X", "Y", "Z"});
        all[0].resize(reader.Numbers + 1);
        damages.push_back({"heading", content(all), first});
        if (!reader.HasNames) return damages;
        all = cut;
        all[1][0] = "B 7";
        damages.push_back({"blank in the name", content(all), second});
        all[1][0] = "";
        damages.push_back({"no name", content(all), second});
        if (!reader.ComparesNames) return damages;
        all[1][0] = "A";
        damages.push_back({"name twice", content(all), first});
        return damages;
    }

    // Reads a file as the reader does; false with what it says when it refuses.
    bool ReadFile(const Reader& reader, const std::string& path, Points& points, std::string& refusal) {
        Headless.Dialogs.clear();
        ForgetNotes();
        ::Run.ImportFailed = kFalse;
        ::Run.RobotFileHasId = kFalse;
        ::Run.Delimiter = " ";  // that of files which show none
        points.clear();
        try {
            points = reader.Read(path);
            std::erase_if(Notes.List, [](const Note& note) { return note.Code == NoteCode::OldDelimiter; });
        } catch (const PlatformError& error) {
            refusal = error.What;
            return false;
        }
        if (!IsTrue(::Run.ImportFailed)) return true;
        refusal = LastMessage();
        return false;
    }

    static bool Names(const std::string& text, int line) {
        for (const char* word : {"line ", "Row "}) {
            const std::string wanted = word + std::to_string(line);
            for (std::size_t at = text.find(wanted); at != std::string::npos;
                 at = text.find(wanted, at + 1)) {
                const std::size_t end = at + wanted.size();
                if (end == text.size() || text[end] < '0' || text[end] > '9') return true;
            }
        }
        return false;
    }

    // Angles come back from rad.
    static bool Equal(const Points& a, const Points& b) {
        const auto near = [](double x, double y) { return std::fabs(x - y) < 1e-11; };
        return std::equal(a.begin(), a.end(), b.begin(), b.end(), [&](const auto& p, const auto& q) {
            return p.first == q.first &&
                   std::equal(p.second.begin(), p.second.end(), q.second.begin(), q.second.end(), near);
        });
    }

    void Walk(const Reader& reader) {
        const Points truth = {{reader.HasNames ? "A" : "1", {1, 2, 3}},
                              {reader.HasNames ? "B" : "2", {5, 6, 7}},
                              {reader.HasNames ? "C" : "3", {8, 9, 11}}};
        Points plainPoints = truth;
        for (auto& [name, values] : plainPoints) values.resize(reader.Numbers);
        std::string plain = reader.Head;
        for (const auto& [name, values] : truth) {
            Fields fields;
            if (reader.HasNames || reader.IsProgram) fields.push_back(name);
            for (std::size_t k = 0; k < reader.Numbers; ++k)
                fields.push_back(std::to_string(static_cast<int>(values[k])));
            plain += reader.Row(fields);
        }
        Points points;
        std::string refusal;
        ASSERT_TRUE(ReadFile(reader, Write("plain.txt", plain + reader.Tail), points, refusal)) << refusal;
        EXPECT_TRUE(Equal(points, plainPoints)) << reader.Name;
        EXPECT_TRUE(Notes.List.empty()) << reader.Name << ": " << Notes.List.front().Text;

        int right = 0, refused = 0, noted = 0;
        for (const Damage& damage : DamagesOf(reader)) {
            const std::string path = Write("damaged.txt", damage.Content);
            refusal.clear();
            const bool read = ReadFile(reader, path, points, refusal);
            bool told = Names(LastMessage(), damage.Line);
            std::string said = LastMessage() + refusal;
            for (const Note& note : Notes.List) {
                told |= note.Line == damage.Line && note.File == path;
                said += note.Text;
                EXPECT_TRUE(note.Text[0] >= 'A' && note.Text[0] <= 'Z') << note.Text;
            }
            if (!read || told) {
                EXPECT_NE(said.find(damage.Text), std::string::npos)
                    << reader.Name << ", " << damage.Name << " does not show the field: " << said;
            }
            if (!read) {
                ++refused;
                EXPECT_TRUE(told || Names(refusal, damage.Line) || Names(refusal, damage.OtherLine))
                    << reader.Name << ", " << damage.Name << ": " << refusal << "\n"
                    << damage.Content;
                continue;
            }
            Points expected = plainPoints;
            if (damage.Field > 0) expected[1].second[damage.Field - 1] = 6.12345678901234567890123;
            if (told) {
                ++noted;
            } else {
                ++right;
                std::string got;
                for (const auto& [name, values] : points) {
                    got += name;
                    for (const double value : values) got += " " + std::to_string(value);
                    got += "; ";
                }
                EXPECT_TRUE(Equal(points, expected))
                    << reader.Name << ", " << damage.Name << " is silent: " << got << "\n"
                    << damage.Content << LastMessage();
            }
        }
        EXPECT_GT(refused + noted, reader.Numbers > 1 ? 20 : 10) << reader.Name << " " << right;
    }

    std::string good_ = Write("good.txt", "A;1;2;3\nB;5;6;7\nC;8;9;11\n");

    Points ReadStart(const std::string& path) const {
        Job.PathMCS = path;
        Job.PathOCS = good_;
        Job.IsParaboloid = kFalse;
        Einlesen_Neu();
        return PointsOf(Job.Start.Name, Job.Start.X, Job.Start.Y, Job.Start.Z);
    }
    Points ReadTarget(const std::string& path) const {
        Job.PathMCS = good_;
        Job.PathOCS = path;
        Einlesen_Neu();
        return PointsOf(Job.Target.Name, Job.Target.X, Job.Target.Y, Job.Target.Z);
    }
    // By the whole import, so that names are looked at as well.
    Points ImportTarget(const std::string& path) const {
        ::Run.JobDataValid = kFalse;
        ShowWindow("FormInputFiles");
        UserSetIndex(InputFiles.ComboOCS_Data, 0);
        UserSetText(InputFiles.TextNameMCS, good_);
        UserSetText(InputFiles.TextNameOCS, path);
        ::Run.LastPlatformError.clear();
        UserClick(InputFiles.BtnOK);
        UnloadWindow("FormInputFiles");
        if (!::Run.LastPlatformError.empty()) throw PlatformError{::Run.LastPlatformError};
        EXPECT_NE(IsTrue(::Run.ImportFailed), IsTrue(::Run.JobDataValid));
        // A double name is refused with its message, and its note has the lines.
        if (IsTrue(::Run.ImportFailed))
            for (const Note& note : Notes.List)
                if (note.Code == NoteCode::DuplicateName) throw PlatformError{note.Text};
        return PointsOf(Job.Target.Name, Job.Target.X, Job.Target.Y, Job.Target.Z);
    }
    Points ReadMore(const std::string& path) const {
        Job = JobRecord{};
        RhoFestlegung();
        ReadMorePoints(path, "", "");
        return PointsOf(Job.Start.Name, Job.Start.X, Job.Start.Y, Job.Start.Z);
    }
    // Names are compared by the import alone.
    static std::function<Points(const std::string&)> WithNames(
        std::function<Points(const std::string&)> read) {
        return [read = std::move(read)](const std::string& path) {
            Points points = read(path);
            std::set<std::string> names;
            for (const auto& [name, values] : points)
                if (!names.insert(name).second) NoteDoubleName(path, name);
            return points;
        };
    }
    static Points ReadPoses(PoseReader reader, const std::string& path, bool byDeclarations = false) {
        reader({path, byDeclarations});
        return PointsOf(Job.Target.Name, Job.Target.X, Job.Target.Y, Job.Target.Z);
    }
    static Points Angles() {
        constexpr double kDegree = std::numbers::pi / 180;
        Points points;
        for (int i = 1; i <= Job.RobotABC.Rows; ++i) {
            Values values;
            for (int k = 1; k <= 3; ++k) values.push_back(Job.RobotABC(i, k) / kDegree);
            points.push_back({Job.Target.Name[static_cast<std::size_t>(i)], values});
        }
        return points;
    }
    // The vectors of quaternions whose first number is 10, from the angles that were made of them.
    static Points Turns(PoseReader reader, const std::string& path, bool byDeclarations = false) {
        ReadPoses(reader, path, byDeclarations);
        // Of these lengths all of them are told.
        std::erase_if(Notes.List, [](const Note& note) {
            return note.Code == NoteCode::AnglesOfPose || note.Text.starts_with("The quaternion of a pose");
        });
        Points points;
        for (int i = 1; i <= Job.RobotABC.Rows; ++i) {
            std::array<double, 4> s{}, c{};
            for (int k = 1; k <= 3; ++k) {
                s[static_cast<std::size_t>(k)] = std::sin(Job.RobotABC(i, k) / 2);
                c[static_cast<std::size_t>(k)] = std::cos(Job.RobotABC(i, k) / 2);
            }
            // About z (1), the new y (2), the new x (3).
            const double w = c[1] * c[2] * c[3] + s[1] * s[2] * s[3];
            const Values v = {c[1] * c[2] * s[3] - s[1] * s[2] * c[3],
                              c[1] * s[2] * c[3] + s[1] * c[2] * s[3],
                              s[1] * c[2] * c[3] - c[1] * s[2] * s[3]};
            points.push_back({Job.Target.Name[static_cast<std::size_t>(i)],
                              {10 * v[0] / w, 10 * v[1] / w, 10 * v[2] / w}});
        }
        return points;
    }
    static std::string Named(const Fields& fields, std::size_t i) {
        return i < fields.size() ? fields[i] : "";
    }
};
