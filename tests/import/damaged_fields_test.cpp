// Every reader on every kind of damaged field: the right numbers come, or a refusal that names the line, or a
// note that does.
#include <algorithm>
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
#include "core/refresh.h"
#include "core/run.h"
#include "core/text.h"
#include "core/units.h"
#include "engine/pose_file.h"
#include "import/form_input_files.h"
#include "import/point_file.h"
#include "import/robot_files.h"
#include "import/row_notes.h"
#include "support/fixture.h"

namespace {

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
};

std::string Joined(const Fields& fields, const std::string& delimiter) {
    std::string row;
    for (std::size_t i = 0; i < fields.size(); ++i) row += (i == 0 ? "" : delimiter) + fields[i];
    return row + "\n";
}

Points PointsOf(const std::vector<std::string>& names, const std::vector<TaggedValue>& x,
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
            {"thousands'", "6'000"}, {"many digits", "6.12345678901234567890123"}};
        return kTexts;
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
                                   second + reader.FieldLine, name == "many digits" ? field : 0});
            }
        const auto withLine = [&](const std::string& line) {
            std::string text = content(cut);
            return text.insert(reader.Head.size(), line);
        };
        const int first = linesOf(reader.Head) + 1;
        // The check of the columns names the row that differs from those before it.
        damages.push_back({"comment", withLine(reader.Comment), first, 0, first + 1});
        if (reader.IsProgram) return damages;
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
        const auto near = [](double x, double y) { return std::fabs(x - y) < 1e-12; };
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
            const bool read = ReadFile(reader, path, points, refusal);
            bool told = Names(LastMessage(), damage.Line);
            for (const Note& note : Notes.List) told |= note.Line == damage.Line && note.File == path;
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
        EXPECT_GT(refused + noted, 20) << reader.Name << " " << right;
    }

    std::string good_ = Write("good.txt", "A;1;2;3\nB;5;6;7\nC;8;9;11\n");

    Points ReadStart(const std::string& path) const {
        Job.PathMCS = path;
        Job.PathOCS = good_;
        Job.IsParaboloid = kFalse;
        Einlesen_Neu();
        return PointsOf(Job.MCS_Name, Job.MCS_X, Job.MCS_Y, Job.MCS_Z);
    }
    Points ReadTarget(const std::string& path) const {
        Job.PathMCS = good_;
        Job.PathOCS = path;
        Einlesen_Neu();
        return PointsOf(Job.OCS_Name, Job.OCS_X, Job.OCS_Y, Job.OCS_Z);
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
        return PointsOf(Job.OCS_Name, Job.OCS_X, Job.OCS_Y, Job.OCS_Z);
    }
    Points ReadMore(const std::string& path) const {
        Job = JobRecord{};
        RhoFestlegung();
        ReadMorePoints(path, "", "");
        return PointsOf(Job.MCS_Name, Job.MCS_X, Job.MCS_Y, Job.MCS_Z);
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
    static Points ReadPoses(void (*reader)(), const std::string& path) {
        ::Run.PathReader = path;
        reader();
        return PointsOf(Job.OCS_Name, Job.OCS_X, Job.OCS_Y, Job.OCS_Z);
    }
    static Points Angles() {
        constexpr double kDegree = std::numbers::pi / 180;
        Points points;
        for (int i = 1; i <= Job.RobotABC.Rows; ++i) {
            Values values;
            for (int k = 1; k <= 3; ++k) values.push_back(Job.RobotABC(i, k) / kDegree);
            points.push_back({Job.OCS_Name[static_cast<std::size_t>(i)], values});
        }
        return points;
    }
    static std::string Named(const Fields& fields, std::size_t i) {
        return i < fields.size() ? fields[i] : "";
    }
};

}  // namespace

TEST_F(DamagedFields, OfPointFiles) {
    const auto row = [](const Fields& fields) { return Joined(fields, ";"); };
    const auto tabs = [](const Fields& fields) { return Joined(fields, "\t"); };
    const auto blanks = [](const Fields& fields) { return Joined(fields, " "); };
    const auto start = [this](const std::string& path) { return ReadStart(path); };
    const auto target = [this](const std::string& path) { return ReadTarget(path); };
    Walk({"import", row, "", "", "# by hand\n", 3, true,
          [this](const std::string& path) { return ImportTarget(path); }});
    Walk({"start", row, "", "", "# by hand\n", 3, true, WithNames(start)});
    Walk({"target", row, "", "", "# by hand\n", 3, true, WithNames(target)});
    Walk({"start, blanks", blanks, "", "", "# by hand\n", 3, true, WithNames(start)});
    Walk({"more points", row, "", "", "# by hand\n", 3, true,
          [this](const std::string& path) { return ReadMore(path); }});
    Walk({"start without names", row, "", "", "# by hand\n", 3, false, start});
    Walk({"target without names, tabs", tabs, "", "", "# by hand\n", 3, false, target});
    Walk({"start without names, blanks", blanks, "", "", "# by hand\n", 3, false, start});
}

TEST_F(DamagedFields, OfRobotPrograms) {
    const auto kuka = [](const Fields& f) {
        return "DECL E6POS XP={X " + Named(f, 1) + ",Y " + Named(f, 2) + ",Z " + Named(f, 3) +
               ",A 10,B 20,C 30,S 2,T 35}\n";
    };
    const auto abb = [](const Fields& f) {
        return "CONST robtarget p:=[[" + Named(f, 1) + "," + Named(f, 2) + "," + Named(f, 3) +
               "],[1,0,0,0],[0,0,0,0],[9E9]];\n";
    };
    const auto fanuc = [](const Fields& f) {
        const auto padded = [&f](std::size_t i) {
            const std::string text =
                Named(f, i) == "" ? "" : Named(f, i) + (Named(f, i).size() < 3 ? ".000" : "");
            return std::string(text.size() < 10 ? 10 - text.size() : 0, ' ') + text;
        };
        return "P[1]{\n   GP1:\n\tUF : 0, UT : 1,\n\tX =" + padded(1) + "  mm,\tY =" + padded(2) +
               "  mm,\tZ =" + padded(3) +
               "  mm, \n\tW =    30.000 deg,\tP =    20.000 deg,\tR =    10.000 deg\n};\n";
    };
    for (const bool declarations : {false, true}) {
        const std::string mode = declarations ? ", by declarations" : "";
        const auto read = [declarations](void (*reader)()) {
            return [declarations, reader](const std::string& path) {
                InputFiles.ReadsDeclarations = declarations;
                return ReadPoses(reader, path);
            };
        };
        Walk({"kuka" + mode, kuka, "DEFDAT T\n", "ENDDAT\n", ";" + kuka({"", "9", "9", "9"}), 3, false,
              read(EinlesenKUKAdatDatei), true});
        Walk({"abb" + mode, abb, "MODULE T\n", "ENDMODULE\n", "! " + abb({"", "9", "9", "9"}), 3, false,
              read(EinlesenABB_MODX), true});
    }
    InputFiles.ReadsDeclarations = false;
    Walk({"fanuc", fanuc, "/PROG T\n/POS\n", "/END\n", "", 3, false,
          [](const std::string& path) {
              return ReadPoses([] { EinlesenFanucDatei(::Run.PathReader); }, path);
          },
          true, 3});
}

TEST_F(DamagedFields, OfTextsOfPoses) {
    const auto with = [](std::vector<std::string> before, std::vector<std::string> behind) {
        return [=](const Fields& fields) {
            Fields all = {fields[0]};
            all.insert(all.end(), before.begin(), before.end());
            all.insert(all.end(), fields.begin() + 1, fields.end());
            all.insert(all.end(), behind.begin(), behind.end());
            return Joined(all, ";");
        };
    };
    const auto angles = [](const std::string& path) { return ReadPoses(EinlesenXYZABC, path); };
    Walk({"xyz of angles", with({}, {"10", "20", "30"}), "", "", "# by hand\n", 3, true, WithNames(angles)});
    Walk({"angles", with({"1", "2", "3"}, {}), "", "", "# by hand\n", 3, true,
          WithNames([](const std::string& path) {
              ReadPoses(EinlesenXYZABC, path);
              return Angles();
          })});
    Walk({"xyz of quaternions", with({}, {"1", "0", "0", "0"}), "", "", "# by hand\n", 3, true,
          WithNames([](const std::string& path) { return ReadPoses(EinlesenABB, path); })});
    // The orientations that the calculation window loads for pairs that are there.
    const auto load = [](const std::string& path) {
        Job = JobRecord{};
        RhoFestlegung();
        Job.MCS_Name = Job.OCS_Name = {"", "A", "B", "C"};
        Job.nIdent = 3;
        LoadPoses(path);
        return Angles();
    };
    Walk({"loaded", with({"0", "0", "0"}, {}), "", "", "# by hand\n", 3, true, load});
}

TEST_F(DamagedFields, OfShapes) {
    Walk({"shape", [](const Fields& fields) { return Joined(fields, ";"); }, "", "", "# by hand\n", 2, false,
          [](const std::string& path) {
              ::Run.PathReader = path;
              EinlesenParaboloidData();
              Points points;
              for (int row = 1; row <= Job.ParaboloidShape.Rows; ++row)
                  points.push_back(
                      {std::to_string(row), {Job.ParaboloidShape(row, 1), Job.ParaboloidShape(row, 2)}});
              return points;
          }});
}

TEST_F(DamagedFields, OfNetworks) {
    Walk({"network", [](const Fields& fields) { return Joined(fields, " ") + "2 sets\n"; },
          "Theodolite\nskipped\nS 0 0 0\n2 sets\nEND\nObject Points\nskipped\n",
          "END\nDistances\nskipped\nS A 3\nEND\n", "# by hand\n2 sets\n", 3, true,
          [](const std::string& path) {
              const BundleRecord network = BündelInputFileEinlesen(path);
              Points points;
              for (int i = 1; i <= network.nObjectPoints; ++i)
                  points.push_back(
                      {network.ObjectName[static_cast<std::size_t>(i)],
                       {network.ObjectXYZ(i, 1), network.ObjectXYZ(i, 2), network.ObjectXYZ(i, 3)}});
              return points;
          }});
}

TEST_F(DamagedFields, OfBatches) {
    const auto transform = [this](const std::string& path) {
        Job = JobRecord{};
        Job.LengthDigits = 6;
        RhoFestlegung();
        LineCounts counts;
        WriteBatchFile(ReadBatchFile(path), PathOf("out.txt"), nullptr, counts);
        // The command and the window tell of these lines, with the first of them.
        if (counts.WithoutNumbers > 0)
            AddNote(NoteCode::NumberAsZero, "", path, static_cast<int>(counts.FirstWithout));
        Points points;
        std::istringstream lines(Contents(PathOf("out.txt")));
        for (std::string line; std::getline(lines, line);) {
            std::istringstream fields(line);
            std::string name;
            Values values(3);
            std::getline(fields, name, '\t');
            fields >> values[0] >> values[1] >> values[2];
            points.push_back({name, values});
        }
        return points;
    };
    Reader reader{
        "batch",  [](const Fields& fields) { return Joined(fields, ";"); }, "", "", "# by hand\n", 3, true,
        transform};
    reader.ComparesNames = false;
    Walk(reader);
}
