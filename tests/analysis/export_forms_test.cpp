// The forms of a result for other machines: each text is read back by the convention of its receiver, which
// is written out here, and has to give the same place for points 10 m away.
#include "analysis/export_forms.h"

#include <array>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "cli/headless.h"
#include "core/files.h"
#include "core/job.h"
#include "support/degrees.h"
#include "support/fixture.h"

using namespace corvinade;
using analysis::ExportForm;
using analysis::Placement;

namespace {

using Rows = std::array<std::array<double, 4>, 4>;

// --- Elementary rotations that turn a point, and their products -------------------------------------------

Rows Unit() {
    Rows m{};
    for (std::size_t i = 0; i < 4; ++i) m[i][i] = 1;
    return m;
}
Rows Times(const Rows& a, const Rows& b) {
    Rows m{};
    for (std::size_t i = 0; i < 4; ++i)
        for (std::size_t j = 0; j < 4; ++j)
            for (std::size_t k = 0; k < 4; ++k) m[i][j] += a[i][k] * b[k][j];
    return m;
}
// About axis 0, 1 or 2, counterclockwise seen from its tip.
Rows About(std::size_t axis, double angle) {
    Rows m = Unit();
    const std::size_t u = (axis + 1) % 3, v = (axis + 2) % 3;
    m[u][u] = m[v][v] = std::cos(angle);
    m[v][u] = std::sin(angle);
    m[u][v] = -std::sin(angle);
    return m;
}
Rows RzRyRx(double z, double y, double x) {
    return Times(About(2, z), Times(About(1, y), About(0, x)));
}
// I + 2 w [v] + 2 [v] [v], with the matrix of the cross product.
Rows OfQuaternion(double w, double x, double y, double z) {
    EXPECT_NEAR(w * w + x * x + y * y + z * z, 1, 1e-15);
    Rows cross{};
    cross[0][1] = -z, cross[0][2] = y, cross[1][0] = z, cross[1][2] = -x, cross[2][0] = -y, cross[2][1] = x;
    const Rows square = Times(cross, cross);
    Rows m = Unit();
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j) m[i][j] += 2 * w * cross[i][j] + 2 * square[i][j];
    return m;
}
Rows At(Rows m, double x, double y, double z, double factor = 1) {
    m[0][3] = x * factor;
    m[1][3] = y * factor;
    m[2][3] = z * factor;
    return m;
}

// --- Readers of the texts ---------------------------------------------------------------------------------

// A number with a point; anything else fails.
double Number(const std::string& text) {
    EXPECT_EQ(text.find_first_not_of("0123456789.-"), std::string::npos) << text;
    char* end = nullptr;
    const double value = std::strtod(text.c_str(), &end);
    EXPECT_EQ(*end, '\0') << text;
    EXPECT_NE(text, "-0");
    return value;
}

// The number behind a word that stands by itself.
double Behind(const std::string& text, const std::string& word) {
    std::size_t at = text.find(word);
    while (at != std::string::npos && at > 0 && std::isalnum(static_cast<unsigned char>(text[at - 1])) != 0)
        at = text.find(word, at + 1);
    EXPECT_NE(at, std::string::npos) << word << " in " << text;
    at += word.size();
    return Number(text.substr(at, text.find_first_not_of("0123456789.-", at) - at));
}

// All numbers of a text, whatever stands between.
std::vector<double> AllNumbers(const std::string& text) {
    std::vector<double> numbers;
    for (std::size_t at = text.find_first_of("-0123456789"); at != std::string::npos;) {
        const std::size_t end = text.find_first_not_of("0123456789.-", at);
        numbers.push_back(Number(text.substr(at, end - at)));
        at = end == std::string::npos ? end : text.find_first_of("-0123456789", end);
    }
    return numbers;
}

Rows OfNumbers(const std::vector<double>& n) {
    EXPECT_EQ(n.size(), 16u);
    Rows m{};
    for (std::size_t i = 0; i < 16 && i < n.size(); ++i) m[i / 4][i % 4] = n[i];
    return m;
}

Rows ReadMatrix(const std::string& text) {
    std::istringstream lines(text);
    std::string line;
    int count = 0;
    while (std::getline(lines, line)) ++count;
    EXPECT_EQ(count, 4);
    EXPECT_EQ(text.find(','), std::string::npos);
    return OfNumbers(AllNumbers(text));
}
Rows ReadMatrixCsv(const std::string& text) {
    EXPECT_EQ(std::count(text.begin(), text.end(), ','), 12);
    EXPECT_EQ(text.find(' '), std::string::npos);
    return OfNumbers(AllNumbers(text));
}
Rows ReadJson(const std::string& text) {
    const auto json = nlohmann::json::parse(text);
    EXPECT_EQ(json.at("schema"), "corvinade-transformation");
    Rows m{};
    for (std::size_t i = 0; i < 4; ++i)
        for (std::size_t j = 0; j < 4; ++j) m[i][j] = json.at("matrix").at(i).at(j);
    for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(json.at("translation_mm").at(i), m[i][3]);
    const auto& q = json.at("quaternion");
    if (!q.is_null()) {
        const Rows turned = OfQuaternion(q.at("w"), q.at("x"), q.at("y"), q.at("z"));
        for (std::size_t i = 0; i < 3; ++i)
            for (std::size_t j = 0; j < 3; ++j) EXPECT_NEAR(turned[i][j], m[i][j], 1e-14);
    }
    return m;
}
// x y z qx qy qz qw
Rows ReadQuaternion(const std::string& text) {
    const std::vector<double> n = AllNumbers(text);
    EXPECT_EQ(n.size(), 7u);
    return At(OfQuaternion(n[6], n[3], n[4], n[5]), n[0], n[1], n[2]);
}
// x' = xoff + s11 x + s12 y + s13 z, and so on.
Rows ReadProj(const std::string& text) {
    EXPECT_TRUE(text.starts_with("+proj=affine ")) << text;
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1);
    Rows m = Unit();
    for (std::size_t i = 0; i < 3; ++i) {
        m[i][3] = Behind(text, std::string("+") + "xyz"[i] + "off=");
        for (std::size_t j = 0; j < 3; ++j)
            m[i][j] = Behind(text, "+s" + std::to_string(i + 1) + std::to_string(j + 1) + "=");
    }
    return m;
}
// The pose of the child in the parent: metres, and a quaternion by its parts.
Rows ReadRos(const std::string& text) {
    EXPECT_NE(text.find(" --frame-id target --child-frame-id start\n"), std::string::npos) << text;
    return At(OfQuaternion(Behind(text, "--qw "), Behind(text, "--qx "), Behind(text, "--qy "),
                           Behind(text, "--qz ")),
              Behind(text, "--x "), Behind(text, "--y "), Behind(text, "--z "), 1000);
}
// Roll, pitch and yaw turn about the fixed x, then y, then z; metres and radians.
Rows ReadUrdf(const std::string& text) {
    const std::vector<double> n = AllNumbers(text);
    EXPECT_EQ(n.size(), 6u);
    EXPECT_TRUE(text.starts_with("<origin xyz=\"")) << text;
    EXPECT_NE(text.find("\" rpy=\""), std::string::npos) << text;
    return At(RzRyRx(n[5], n[4], n[3]), n[0], n[1], n[2], 1000);
}
// A about z, B about the new y, C about the new x.
Rows ReadKuka(const std::string& text) {
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1);
    const std::string frame = text.substr(text.find('{'));
    return At(Times(About(2, Behind(frame, "A ") * kDegree),
                    Times(About(1, Behind(frame, "B ") * kDegree), About(0, Behind(frame, "C ") * kDegree))),
              Behind(frame, "X "), Behind(frame, "Y "), Behind(frame, "Z "));
}
// W, P and R about the x, y and z of axes that stay, one after the other.
Rows ReadFanuc(const std::string& text) {
    Rows turn = About(0, Behind(text, "W = ") * kDegree);
    turn = Times(About(1, Behind(text, "P = ") * kDegree), turn);
    turn = Times(About(2, Behind(text, "R = ") * kDegree), turn);
    return At(turn, Behind(text, "X = "), Behind(text, "Y = "), Behind(text, "Z = "));
}
// [x, y, z] and [q1, q2, q3, q4], q1 the scalar.
Rows ReadAbbPose(const std::string& text, const std::string& before, const std::string& behind) {
    EXPECT_TRUE(text.starts_with(before)) << text;
    EXPECT_TRUE(text.ends_with(behind + "\n")) << text;
    const std::vector<double> n =
        AllNumbers(text.substr(before.size(), text.size() - before.size() - behind.size() - 1));
    EXPECT_EQ(n.size(), 7u);
    return At(OfQuaternion(n[3], n[4], n[5], n[6]), n[0], n[1], n[2]);
}
Rows ReadAbbWobj(const std::string& text) {
    return ReadAbbPose(text, "PERS wobjdata wobj_cell:=[FALSE,TRUE,\"\",[", "],[[0,0,0],[1,0,0,0]]];");
}
Rows ReadAbbTool(const std::string& text) {
    return ReadAbbPose(text, "PERS tooldata tool_cell:=[TRUE,[", "],[-1,[0,0,0],[1,0,0,0],0,0,0]];");
}

struct Reader {
    const char* Form;
    Rows (*Read)(const std::string&);
};
constexpr Reader kReaders[] = {
    {"matrix", ReadMatrix},      {"matrix-csv", ReadMatrixCsv},  {"json", ReadJson},
    {"proj", ReadProj},          {"quaternion", ReadQuaternion}, {"ros", ReadRos},
    {"urdf", ReadUrdf},          {"kuka-base", ReadKuka},        {"kuka-tool", ReadKuka},
    {"fanuc-uframe", ReadFanuc}, {"fanuc-utool", ReadFanuc},     {"abb-wobj", ReadAbbWobj},
    {"abb-tool", ReadAbbTool}};
constexpr std::size_t kThatTakeAll = 4;  // of them hold scale, shear and mirror too

Placement PlacementOf(const Rows& m) {
    Placement p;
    for (int i = 1; i <= 3; ++i) {
        for (int j = 1; j <= 3; ++j)
            p.Matrix(i, j) = m[static_cast<std::size_t>(i) - 1][static_cast<std::size_t>(j) - 1];
        p.Shift_mm(i) = m[static_cast<std::size_t>(i) - 1][3];
    }
    p.Name = "cell";
    return p;
}

// Where points 10 m away from the origin, in all directions, come to.
void ExpectSamePlaces(const Rows& is, const Rows& expected, const std::string& text) {
    for (const double x : {-1e4, 0.0, 1e4})
        for (const double y : {-1e4, 0.0, 1e4})
            for (const double z : {-1e4, 0.0, 1e4})
                for (std::size_t i = 0; i < 3; ++i) {
                    const auto place = [&](const Rows& m) {
                        return m[i][0] * x + m[i][1] * y + m[i][2] * z + m[i][3];
                    };
                    // Three coordinates of 10 m make 17.
                    ASSERT_NEAR(place(is), place(expected), 1e-9) << text;
                }
    for (std::size_t j = 0; j < 4; ++j) EXPECT_EQ(is[3][j], expected[3][j]);
}

void ExpectAllForms(const Rows& m) {
    const Placement p = PlacementOf(m);
    for (const Reader& reader : kReaders) {
        const ExportForm& form = *analysis::FindExportForm(reader.Form);
        ASSERT_EQ(WhyNotInForm(form, p), "") << form.Form.Name;
        const std::string text = ExportText(form, p);
        ExpectSamePlaces(reader.Read(text), m, std::string(form.Form.Name) + ": " + text);
    }
}

class ExportForms : public Program {};

TEST_F(ExportForms, GiveTheTransformationBackByTheConventionOfTheirReceiver) {
    std::mt19937 random(18);
    std::uniform_real_distribution<double> angle(-M_PI, M_PI), shift(-1e4, 1e4);
    for (int i = 0; i < 2000; ++i)
        ExpectAllForms(At(RzRyRx(angle(random), angle(random), angle(random)), shift(random), shift(random),
                          shift(random)));
}

TEST_F(ExportForms, GiveItBackAtRightAnglesToo) {
    for (const double y : {-180.0, -90.0, 0.0, 90.0, 180.0})
        for (const double off : {0.0, 1e-13, -1e-10, 1e-7, 1e-5})
            for (const double z : {-180.0, -90.0, 0.0, 37.5, 90.0})
                for (const double x : {-90.0, 0.0, 12.25, 180.0})
                    ExpectAllForms(At(RzRyRx(z * kDegree, (y + off) * kDegree, x * kDegree), 1e4, -1e-7, 0));
}

TEST_F(ExportForms, NothingAtAllIsWrittenInRoundNumbers) {
    const Placement p = PlacementOf(Unit());
    const auto text = [&p](const char* form) { return ExportText(*analysis::FindExportForm(form), p); };
    EXPECT_EQ(text("matrix"), "1 0 0 0\n0 1 0 0\n0 0 1 0\n0 0 0 1\n");
    EXPECT_EQ(text("quaternion"), "0 0 0 0 0 0 1\n");
    EXPECT_EQ(text("urdf"), "<origin xyz=\"0 0 0\" rpy=\"0 0 0\"/>\n");
    EXPECT_EQ(text("kuka-base"), "$BASE={X 0, Y 0, Z 0, A 0, B 0, C 0}\n");
    EXPECT_EQ(text("kuka-tool"), "$TOOL={X 0, Y 0, Z 0, A 0, B 0, C 0}\n");
    EXPECT_EQ(text("fanuc-uframe"), "X = 0 mm, Y = 0 mm, Z = 0 mm,\nW = 0 deg, P = 0 deg, R = 0 deg\n");
}

// A frame turned by a quarter about z, and then about the new y by an eighth: written out by hand.
TEST_F(ExportForms, AnglesHaveTheSignsOfTheControllers) {
    const double h = std::sqrt(0.5);
    Rows m = Unit();
    // The new axes in the old ones: x points to y and down, y to -x, z to y and up.
    m[0] = {0, -1, 0, 10};
    m[1] = {h, 0, h, 20};
    m[2] = {-h, 0, h, 30};
    const Placement p = PlacementOf(m);
    const std::string kuka = ExportText(*analysis::FindExportForm("kuka-base"), p);
    EXPECT_NEAR(Behind(kuka, "A "), 90, 1e-12);
    EXPECT_NEAR(Behind(kuka, "B "), 45, 1e-12);
    EXPECT_NEAR(Behind(kuka, "C "), 0, 1e-12);
    const std::string fanuc = ExportText(*analysis::FindExportForm("fanuc-uframe"), p);
    EXPECT_NEAR(Behind(fanuc, "W = "), 0, 1e-12);
    EXPECT_NEAR(Behind(fanuc, "P = "), 45, 1e-12);
    EXPECT_NEAR(Behind(fanuc, "R = "), 90, 1e-12);
}

TEST_F(ExportForms, ScaleShearAndMirrorGoWhereThereIsRoomForThem) {
    const Rows turned = At(RzRyRx(0.3, -0.2, 0.1), 1000, -2000, 3000);
    Rows scale = Unit(), axis = Unit(), shear = Unit(), mirror = Unit();
    for (std::size_t i = 0; i < 3; ++i) scale[i][i] = 1.0000001;
    axis[1][1] = 0.5;
    shear[0][1] = std::sin(1e-6);
    shear[1][1] = std::cos(1e-6);
    mirror[2][2] = -1;
    const std::pair<Rows, const char*> cases[] = {{scale, "scales x, y, z by 1.0000001"},
                                                  {axis, "scales x, y, z by"},
                                                  {shear, "shears"},
                                                  {mirror, "is mirrored"}};
    for (const auto& [change, word] : cases) {
        const Rows m = Times(turned, change);
        const Placement p = PlacementOf(m);
        for (std::size_t i = 0; i < std::size(kReaders); ++i) {
            const ExportForm& form = *analysis::FindExportForm(kReaders[i].Form);
            const std::string why = WhyNotInForm(form, p);
            if (i < kThatTakeAll) {
                EXPECT_EQ(why, "");
                const std::string text = ExportText(form, p);
                ExpectSamePlaces(kReaders[i].Read(text), m, text);
                if (form.Form.Name == std::string("json")) {
                    EXPECT_TRUE(nlohmann::json::parse(text).at("quaternion").is_null());
                }
            } else {
                EXPECT_NE(why.find(word), std::string::npos) << form.Form.Name << ": " << why;
            }
        }
    }
}

TEST_F(ExportForms, AScaleThatRoundingHasLeftIsNone) {
    Rows m = RzRyRx(0.3, -0.2, 0.1);
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j) m[i][j] *= 1 + 1e-14;
    EXPECT_EQ(WhyNotInForm(*analysis::FindExportForm("kuka-base"), PlacementOf(m)), "");
}

// The tool vector leads from a point to its pose, so that the tip lies at its opposite, in the flange's axes.
TEST_F(ExportForms, TheToolFormsOfAFitWithTheToolAreItsTip) {
    Placement p = PlacementOf(At(RzRyRx(0.3, -0.2, 0.1), 1000, -2000, 3000));
    p.Tip_mm = Vec3(62.5, -18.75, 214.5);
    const Rows tip = At(Unit(), 62.5, -18.75, 214.5);
    for (const Reader& reader : kReaders) {
        const std::string form = reader.Form;
        if (form != "kuka-tool" && form != "fanuc-utool" && form != "abb-tool") continue;
        const std::string text = ExportText(*analysis::FindExportForm(form), p);
        ExpectSamePlaces(reader.Read(text), tip, text);
    }
    const std::string base = ExportText(*analysis::FindExportForm("kuka-base"), p);
    EXPECT_NEAR(ReadKuka(base)[0][3], 1000, 1e-12);
}

TEST_F(ExportForms, NumbersReadBackAsTheyWereAndHoldNoExponent) {
    std::mt19937_64 random(7);
    for (int i = 0; i < 20000; ++i) {
        std::uniform_real_distribution<double> mantissa(-10, 10);
        const double value = mantissa(random) * std::pow(10, static_cast<int>(random() % 28) - 14);
        EXPECT_EQ(Number(analysis::ExactText(value)), value);
    }
    EXPECT_EQ(analysis::ExactText(-0.0), "0");
    EXPECT_EQ(analysis::ExactText(-1e-30), "0");
    EXPECT_EQ(analysis::ExactText(1e21), "1000000000000000000000");
    EXPECT_EQ(analysis::ExactText(-0.00001), "-0.00001");
}

TEST_F(ExportForms, NoSystemsCommaComesIntoThem) {
    const Placement p = PlacementOf(At(RzRyRx(0.3, -0.2, 0.1), 1000.5, -2000.25, 3000.125));
    for (const Reader& reader : kReaders) {
        const ExportForm& form = *analysis::FindExportForm(reader.Form);
        cli::Headless.Decimal = '.';
        const std::string text = ExportText(form, p);
        cli::Headless.Decimal = ',';
        EXPECT_EQ(ExportText(form, p), text) << form.Form.Name;
    }
}

TEST_F(ExportForms, ADeclarationTakesItsNameFromTheFile) {
    for (const auto& [path, name] : std::vector<std::pair<std::string, std::string>>{
             {"/a/cell.cvn", "cell"},
             {"Zelle 1-b.cvn", "Zelle_1_b"},
             {"", "result"},
             {"a/a_very_long_name_of_a_job_with_more", "a_very_long_name_of_a_jo"}})
        EXPECT_EQ(analysis::PlacementOfJob(path).Name, name);
}

// The operation of PROJ by PROJ itself, where it is there.
TEST_F(ExportForms, ProjTakesItsFormAsItIs) {
    if (std::system("command -v cct >/dev/null 2>&1") != 0) GTEST_SKIP() << "there is no cct";
    std::mt19937 random(4);
    std::uniform_real_distribution<double> angle(-M_PI, M_PI), shift(-1e4, 1e4);
    for (int i = 0; i < 5; ++i) {
        Rows m = At(RzRyRx(angle(random), angle(random), angle(random)), shift(random), shift(random),
                    shift(random));
        if (i > 2) m[1][1] *= -1.25;  // an affine one, mirrored perhaps
        const std::string form =
            Write("form.txt", ExportText(*analysis::FindExportForm("proj"), PlacementOf(m)));
        const std::array<double, 3> x = {shift(random), shift(random), shift(random)};
        std::array<char, 200> line{};
        std::snprintf(line.data(), line.size(), "%.17g %.17g %.17g 0\n", x[0], x[1], x[2]);
        const std::string in = Write("in.txt", line.data()), out = PathOf("out.txt");
        ASSERT_EQ(std::system(("cct -d 12 $(cat '" + form + "') '" + in + "' > '" + out + "'").c_str()), 0);
        std::istringstream result(Contents(out));
        for (std::size_t k = 0; k < 3; ++k) {
            double is = 0;
            ASSERT_TRUE(result >> is) << Contents(out);
            EXPECT_NEAR(is, m[k][0] * x[0] + m[k][1] * x[1] + m[k][2] * x[2] + m[k][3], 1e-9);
        }
    }
}

}  // namespace
