// `corvinade-cli render`: pictures of a job.
#include <algorithm>
#include <filesystem>
#include <regex>

#include "cli/command_line.h"
#include "cli/screen_automation.h"
#include "core/files.h"
#include "core/job.h"
#include "core/job_file.h"
#include "graphics/screen_window.h"

using namespace corvinade;

namespace {

// The job of the small plate. A is off its target by 0.3 mm in z, B by 0.4 mm in y.
class Render : public ScreenByNames {
protected:
    static Outcome Command(const std::vector<std::string>& arguments) { return FreshCommandLine(arguments); }
    static Outcome Picture(const std::string& job, const std::string& file,
                           const std::vector<std::string>& more = {}) {
        std::vector<std::string> arguments = {"render", job, "--out", file};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return Command(arguments);
    }
    std::string Saved(const std::string& name) {
        Answer("save", PathOf(name));
        Click("FormMain.MenuFileSaveAs");
        return PathOf(name);
    }
    std::string Plate() {
        Start();
        return Saved("plate.cvn");
    }
    // A job of other points.
    std::string JobOf(const std::string& start, const std::string& target) {
        StartAutomation({});
        Click("FormMain.MenuFileInputFiles");
        Set("FormInputFiles.TextNameMCS", Write("start.txt", start));
        Set("FormInputFiles.TextNameOCS", Write("target.txt", target));
        Ask({{"do", "click"}, {"at", "FormInputFiles.BtnOK"}});
        return Saved("other.cvn");
    }

    struct Disc {
        double X, Y, Radius;
        std::string Colour;
    };
    static std::vector<Disc> DiscsOf(const std::string& svg) {
        std::vector<Disc> discs;
        const std::regex pattern(
            "<circle cx=\"([-0-9.]+)\" cy=\"([-0-9.]+)\" r=\"([0-9.]+)\" fill=\"(#[0-9a-f]+)\"");
        for (std::sregex_iterator it(svg.begin(), svg.end(), pattern), end; it != end; ++it)
            discs.push_back({std::stod((*it)[1]), std::stod((*it)[2]), std::stod((*it)[3]), (*it)[4]});
        return discs;
    }
    std::string Svg(const std::string& job, std::vector<std::string> more = {}) {
        if (std::find(more.begin(), more.end(), "--size") == more.end())
            more.insert(more.end(), {"--size", "800x600"});
        if (std::find(more.begin(), more.end(), "--view") == more.end())
            more.insert(more.end(), {"--view", "top"});
        const Outcome outcome = Picture(job, PathOf("a.svg"), more);
        EXPECT_EQ(outcome.Status, 0) << outcome.Err;
        return Contents(PathOf("a.svg"));
    }
    static bool Has(const std::string& text, const std::string& part) {
        return text.find(part) != std::string::npos;
    }
};

unsigned int BigEndian(const std::string& bytes, std::size_t at) {
    unsigned int number = 0;
    for (std::size_t i = 0; i < 4; ++i) number = number << 8U | static_cast<unsigned char>(bytes.at(at + i));
    return number;
}

TEST_F(Render, WritesAPngOfTheSizeThatWasAskedFor) {
    const std::string job = Plate();
    const Outcome outcome = Picture(job, PathOf("a.png"), {"--size", "321x123", "--vectors", "--names"});
    EXPECT_EQ(outcome.Status, 0);
    EXPECT_EQ(outcome.Out + outcome.Err, "");
    const std::string png = Contents(PathOf("a.png"));
    EXPECT_EQ(png.substr(0, 8), "\x89PNG\r\n\x1a\n");
    EXPECT_EQ(BigEndian(png, 16), 321u);
    EXPECT_EQ(BigEndian(png, 20), 123u);
    EXPECT_EQ(Picture(job, PathOf("b.png")).Status, 0);
    EXPECT_EQ(BigEndian(Contents(PathOf("b.png")), 16), 1600u);
    EXPECT_EQ(BigEndian(Contents(PathOf("b.png")), 20), 1000u);
}

TEST_F(Render, PointsStandWhereTheFitPutsThemInTheColoursOfTheirClasses) {
    const std::vector<Disc> discs = DiscsOf(Svg(Plate()));
    ASSERT_EQ(discs.size(), 4u) << "the targets lie below and are left out";
    // 0.3 of 0.4 mm is class 8 of 10, 0.4 mm is beyond the last one, none at all is class 1.
    const Disc expected[] = {{kLeft, kLower, 4, "#ff4300"},
                             {kRight, kLower - 0.4 * kFaktor, 4, "#ff0000"},
                             {kLeft, kUpper, 4, "#33eb00"},
                             {kRight, kUpper, 4, "#33eb00"}};
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_NEAR(discs[i].X, expected[i].X, 0.01) << i;
        EXPECT_NEAR(discs[i].Y, expected[i].Y, 0.01) << i;
        EXPECT_EQ(discs[i].Radius, expected[i].Radius) << i;
        EXPECT_EQ(discs[i].Colour, expected[i].Colour) << i;
    }
}

TEST_F(Render, LimitsAndClassesChangeTheColours) {
    const std::string job = Plate();
    // 0.3 of 1 mm in 5 classes: Int(1.5 + 1) = 2, two fifths of the way: (204, 175, 0).
    EXPECT_EQ(DiscsOf(Svg(job, {"--limits=-1,1", "--classes", "5"}))[0].Colour, "#ccaf00");
    EXPECT_EQ(DiscsOf(Svg(job, {"--limits", "0,0.1"}))[0].Colour, "#ff0000");
}

// Green, the middle of the bar, is no deviation: so the numbers at its ends are those of both sides.
TEST_F(Render, TheColourBarHasZeroInItsMiddle) {
    const std::string svg = Svg(Plate(), {"--color-bar"});
    EXPECT_TRUE(Has(svg, ">0.40<")) << svg;
    EXPECT_TRUE(Has(svg, ">-0.40<")) << svg;
    EXPECT_FALSE(Has(svg, ">0.00<")) << svg;
}

TEST_F(Render, NamesOfTheLowestPointsStandAboveTheScales) {
    const std::string job = Plate();
    const std::string svg = Svg(job, {"--names", "--vectors", "--size", "1600x400"});
    double lowest = 0, scales = 800;
    const std::regex pattern("<text x=\"[-0-9.]+\" y=\"([0-9.]+)\"[^>]*>([^<]*)<");
    for (std::sregex_iterator it(svg.begin(), svg.end(), pattern), end; it != end; ++it) {
        const double y = std::stod((*it)[1]);
        if ((*it)[2].str().starts_with("Scale"))
            scales = std::min(scales, y);
        else
            lowest = std::max(lowest, y);
    }
    EXPECT_GT(lowest, 0) << svg;
    EXPECT_LT(lowest + 12, scales) << svg;
}

TEST_F(Render, VectorsAreAsManyTimesAsLongAsWasAskedFor) {
    const std::string svg = Svg(Plate(), {"--vectors", "50", "--view", "side"});
    // From the side z runs up: A's 0.3 mm, at 7.2 pixels to the millimetre, fifty times.
    const std::regex pattern(
        "<line x1=\"([-0-9.]+)\" y1=\"([-0-9.]+)\" x2=\"([-0-9.]+)\" y2=\"([-0-9.]+)\" stroke=\"#ff4300\"");
    std::smatch line;
    ASSERT_TRUE(std::regex_search(svg, line, pattern)) << svg;
    EXPECT_NEAR(std::stod(line[3]) - std::stod(line[1]), 0, 0.02);
    EXPECT_NEAR(std::stod(line[4]) - std::stod(line[2]), -0.3 * kFaktor * 50, 0.03);
}

TEST_F(Render, VectorsWithoutAScaleAreSeenAndStayInThePicture) {
    const std::string svg = Svg(Plate(), {"--vectors"});
    // At most a tenth of the shorter side, by a factor of 1, 2 or 5: 60 / (0.4 * 7.2) = 20.8.
    const std::regex pattern("y1=\"([-0-9.]+)\" x2=\"([-0-9.]+)\" y2=\"([-0-9.]+)\" stroke=\"#ff0000\"");
    std::smatch line;
    ASSERT_TRUE(std::regex_search(svg, line, pattern)) << svg;
    EXPECT_NEAR(std::fabs(std::stod(line[3]) - std::stod(line[1])), 0.4 * kFaktor * 20, 0.03);
}

TEST_F(Render, ZoomGoesAboutTheMiddle) {
    const std::vector<Disc> discs = DiscsOf(Svg(Plate(), {"--zoom", "0.5"}));
    ASSERT_EQ(discs.size(), 4u);
    EXPECT_NEAR(discs[0].X, 400 - 50 * kFaktor / 2, 0.01);
    EXPECT_NEAR(discs[0].Y, 300 + 25 * kFaktor / 2, 0.01);
}

TEST_F(Render, TheColourBarAndTheScalesHaveRoomOfTheirOwn) {
    // A square fills the height; beside it nothing may reach the last 135 pixels, below it the last 105.
    const char* points = "A;0;0;0\nB;100;0;0\nC;0;90;0\nD;100;90;0\n";
    for (const Disc& disc : DiscsOf(Svg(JobOf(points, points), {"--color-bar", "--size", "700x500"}))) {
        EXPECT_LE(disc.X, 700 - 135 + 0.01);
        EXPECT_LE(disc.Y, 500 - 105 + 0.01);
        EXPECT_GE(disc.Y, 0);
        EXPECT_GE(disc.X, 0);
    }
}

TEST_F(Render, EachSwitchShowsWhatItNames) {
    const std::string job = Plate();
    const std::string bare = Svg(job);
    EXPECT_FALSE(Has(bare, ">A</text>"));
    EXPECT_TRUE(Has(bare, "fill=\"#000000\"")) << "the picture is black";
    EXPECT_TRUE(Has(Svg(job, {"--names"}), ">A</text>"));
    EXPECT_EQ(DiscsOf(Svg(job, {"--targets"})).size(), 8u);
    EXPECT_EQ(DiscsOf(Svg(job, {"--point-size", "20"}))[0].Radius, 10);
    EXPECT_TRUE(Has(Svg(job, {"--background", "white"}), "height=\"100%\" fill=\"#ffffff\""));
    EXPECT_TRUE(Has(Svg(job, {"--background", "0a0BcC"}), "height=\"100%\" fill=\"#0a0bcc\""));
}

TEST_F(Render, SmallPointsAreSquaresInSvgToo) {
    const std::string svg = Svg(Plate(), {"--point-size", "3"});
    EXPECT_TRUE(DiscsOf(svg).empty());
    // A side of 2 * 2 + 1 pixels about (40, 480); half a pixel more is in the transformation of the page.
    EXPECT_TRUE(Has(svg, "<path fill=\"#ff4300\" d=\"M37.5 477.5h5v5h-5z")) << svg;
}

TEST_F(Render, NamesAreNoMarkup) {
    const std::string svg =
        Svg(JobOf("<a>&\";0;0;0\nB;1;0;0\nC;0;1;0\n", "<a>&\";0;0;0\nB;1;0;0\nC;0;1;0\n"), {"--names"});
    EXPECT_TRUE(Has(svg, "&lt;a&gt;&amp;"));
    EXPECT_FALSE(Has(svg, "<a>"));
}

TEST_F(Render, WhatIsNoCharacterOfAPageIsAQuestionMark) {
    const std::string points =
        "A\xEF\xBF\xBE"
        "B;0;0;0\n\xC3\xA4\xF0\x9F\x98\x80;1;0;0\nC;0;1;0\n";
    const std::string svg = Svg(JobOf(points, points), {"--names"});
    EXPECT_FALSE(Has(svg, "\xEF\xBF\xBE"));
    EXPECT_TRUE(Has(svg, "A?B"));
    EXPECT_TRUE(Has(svg, "\xC3\xA4\xF0\x9F\x98\x80"));
}

TEST_F(Render, APictureIsTheSameEachTime) {
    const std::string job = Plate();
    const std::vector<std::string> all = {"--vectors", "--names", "--labels", "--color-bar"};
    EXPECT_EQ(Svg(job, all), Svg(job, all));
    ASSERT_EQ(Picture(job, PathOf("a.png"), all).Status, 0);
    ASSERT_EQ(Picture(job, PathOf("b.png"), all).Status, 0);
    EXPECT_EQ(Contents(PathOf("a.png")), Contents(PathOf("b.png")));
}

TEST_F(Render, ASavedViewShowsItsSectionInAnySize) {
    StartWithScreen();
    Click("FormMain.ToolbarGraphics.ZoomIn");
    Click("FormMain.ToolbarGraphics.PointsBigger");
    Click("FormMain.ToolbarGraphics.PointsBigger");
    Job.SavedView[1] = Screens().Open[0]->State;
    Job.SavedView[1].WindowWidth = 800;
    Job.SavedView[1].WindowHeight = 600;
    Job.nSavedViews = 1;
    const std::string job = Write("views.cvn", JobBytes(Job, {"near the middle"}));
    const auto discs = [&](const std::string& size, const std::string& zoom) {
        return DiscsOf(Svg(job, {"--view", "near the middle", "--size", size, "--zoom", zoom}));
    };
    // A window of twice the size shows the same, twice as large.
    for (const double times : {1.0, 2.0}) {
        const std::vector<Disc> shown = discs(times == 1 ? "800x600" : "1600x1200", "0.5");
        ASSERT_EQ(shown.size(), 4u);
        EXPECT_NEAR(shown[0].X, (400 - 50 * kFaktor / 0.7 / 2) * times, 0.02);
        EXPECT_NEAR(shown[0].Y, (300 + 25 * kFaktor / 0.7 / 2) * times, 0.02);
        EXPECT_EQ(shown[0].Radius, 2) << "its own point size, 4";
    }
    // In a longer one its height decides.
    EXPECT_NEAR(discs("1600x600", "0.5")[0].X, 800 - 50 * kFaktor / 0.7 / 2, 0.02);
    EXPECT_EQ(Picture(job, PathOf("a.svg"), {"--view", "near"}).Status, 2);
    EXPECT_TRUE(Has(Picture(job, PathOf("a.svg"), {"--view", "near"}).Err, "front, near the middle"));
}

// --- Unusual jobs -----------------------------------------------------------------------------------------

TEST_F(Render, AJobWithoutIdenticalPointsShowsThePointsAndSaysSo) {
    const std::string job = JobOf("A;0;0;0\nB;100;0;0\nC;0;50;0\n", "X;0;0;0\nY;100;0;0\nZ;0;50;0\n");
    const Outcome outcome = Picture(job, PathOf("a.svg"), {"--vectors", "--color-bar"});
    EXPECT_EQ(outcome.Status, 0);
    EXPECT_TRUE(Has(outcome.Err, "no identical points"));
    EXPECT_EQ(DiscsOf(Contents(PathOf("a.svg"))).size(), 6u);
}

TEST_F(Render, OnePointAndPointsAtOnePlaceComeToTheMiddle) {
    for (const char* points :
         {"A;5000;6000;7000\n", "A;5000;6000;7000\nB;5000;6000;7000\nC;5000;6000;7000\n"}) {
        const std::string job = JobOf(points, points);
        const std::vector<Disc> discs = DiscsOf(Svg(job, {"--vectors", "--color-bar"}));
        ASSERT_FALSE(discs.empty());
        for (const Disc& disc : discs) {
            EXPECT_NEAR(disc.X, 400, 0.02);
            EXPECT_NEAR(disc.Y, 300, 0.02);
        }
    }
}

TEST_F(Render, FarAwayAndSmallIsAsSharpAsNear) {
    // A plate of 8 by 4 mm ten metres away; 32-bit coordinates have a thousandth of a millimetre there.
    const char* points = "A;10000;10000;0\nB;10008;10000;0\nC;10000;10004;0\nD;10008;10004;0\n";
    const std::vector<Disc> discs = DiscsOf(Svg(JobOf(points, points)));
    ASSERT_EQ(discs.size(), 4u);
    EXPECT_NEAR(discs[0].X, 40, 0.1);
    EXPECT_NEAR(discs[3].X, 760, 0.1);
    EXPECT_NEAR(discs[0].Y - discs[3].Y, 360, 0.2);
}

TEST_F(Render, EnormousCoordinatesDoNoHarm) {
    for (const char* points :
         {"A;1e12;0;0\nB;-1e12;1;0\nC;0;1e12;1e12\n", "A;1e35;0;0\nB;-1e35;0;0\nC;0;1e30;0\n",
          "A;1e300;0;0\nB;-1e300;0;0\nC;0;1e300;0\n"}) {
        const std::string job = JobOf(points, points);
        for (const char* file : {"a.svg", "a.png"})
            EXPECT_EQ(Picture(job, PathOf(file), {"--vectors", "--names", "--labels", "--color-bar"}).Status,
                      0)
                << points;
    }
    EXPECT_EQ(
        DiscsOf(Svg(JobOf("A;1e12;0;0\nB;-1e12;1;0\nC;0;1e12;0\n", "A;1e12;0;0\nB;-1e12;1;0\nC;0;1e12;0\n")))
            .size(),
        3u);
}

TEST_F(Render, TheSmallestPictureIsOnePixel) {
    const std::string job = Plate();
    for (const char* size : {"1x1", "1x600", "800x1"})
        for (const char* file : {"a.svg", "a.png"})
            EXPECT_EQ(
                Picture(job, PathOf(file), {"--size", size, "--vectors", "--names", "--color-bar"}).Status, 0)
                << size;
}

// --- What is refused --------------------------------------------------------------------------------------

TEST_F(Render, WrongUsageIsToldAndWritesNothing) {
    const std::string job = Plate();
    using List = std::vector<std::string>;
    for (const List& wrong : {List{"--size", "0x0"},
                              List{"--size", "100000x100000"},
                              List{"--size", "16384x16384"},
                              List{"--size", "800"},
                              List{"--size", "-1x5"},
                              List{"--size", "9999999999x1"},
                              List{"--view", "nowhere"},
                              List{"--view", ""},
                              List{"--background", "blue"},
                              List{"--background", "12345"},
                              List{"--background", "gggggg"},
                              List{"--limits", "1"},
                              List{"--limits", "2,1"},
                              List{"--limits", "0,nan"},
                              List{"--limits", "0,1,2"},
                              List{"--classes", "0"},
                              List{"--classes", "101"},
                              List{"--point-size", "0"},
                              List{"--point-size", "1000"},
                              List{"--zoom", "0"},
                              List{"--zoom", "-1"},
                              List{"--zoom", "inf"},
                              List{"--zoom", "nan"},
                              List{"--vectors", "0"},
                              List{"--vectors", "long"},
                              List{"--vectors", "nan"},
                              List{"--fly"}}) {
        const Outcome outcome = Picture(job, PathOf("a.png"), wrong);
        EXPECT_EQ(outcome.Status, 2) << wrong[0] << " " << wrong.back();
        EXPECT_NE(outcome.Err, "") << wrong[0];
        EXPECT_FALSE(File_Exist(PathOf("a.png"))) << wrong[0] << " " << wrong.back();
    }
    EXPECT_EQ(Picture(job, PathOf("a.jpg")).Status, 2);
    EXPECT_EQ(Command({"render", job}).Status, 2);
    EXPECT_TRUE(
        Has(Picture(job, PathOf("a.png"), {"--view", "nowhere"}).Err, "there are iso, top, side, front"));
}

TEST_F(Render, AnUnreadableJobIsRefused) {
    EXPECT_EQ(Picture(PathOf("none.cvn"), PathOf("a.png")).Status, 3);
    EXPECT_EQ(Picture(Write("text.cvn", "no job"), PathOf("a.png")).Status, 3);
    EXPECT_FALSE(File_Exist(PathOf("a.png")));
}

TEST_F(Render, AFileThatCannotBeWrittenLeavesTheOldOneWhole) {
    const std::string job = Plate();
    EXPECT_EQ(Picture(job, PathOf("no/folder.png")).Status, 1);
    std::filesystem::create_directories(PathOf("folder.png"));
    EXPECT_EQ(Picture(job, PathOf("folder.png")).Status, 1);
    const std::string old = Write("a.png", "old");
    for (const char* step : {"create", "write", "flush", "rename"}) {
        FileFaults.Refuse = [step](const std::string& operation, const std::string&) {
            return operation == step ? std::string("the disk is full") : "";
        };
        const Outcome outcome = Picture(job, old);
        FileFaults.Refuse = nullptr;
        EXPECT_EQ(outcome.Status, 1) << step;
        EXPECT_TRUE(Has(outcome.Err, "the disk is full")) << outcome.Err;
        EXPECT_EQ(Contents(old), "old");
    }
    EXPECT_EQ(Picture(job, old).Status, 0) << "as other outputs, it replaces what stands there";
    EXPECT_NE(Contents(old), "old");
}

}  // namespace
