// Graphics windows over jobs that give little to look at or too much: no pairs, one place, coordinates and
// zooms to the ends of what numbers can hold, pictures of one pixel, views of another job.
#include <cmath>

#include "cli/screen_automation.h"

using namespace corvinade;

namespace {

struct OddJob {
    const char *Start, *Target;
    std::size_t Rows;
};

constexpr OddJob kOddJobs[] = {
    {"A;0;0;0\nB;100;0;0\n", "X;0;0;0\nY;0;50;0\nZ;1;1;1\n", 5},  // nothing is identical
    {"A;5;6;7\n", "A;5;6;7.5\n", 2},
    {"A;5;6;7\n", "A;5;6;7\n", 2},
    {"A;5;6;7\n", "X;5;6;7\n", 2},
    {"A;5;6;7\nB;5;6;7\nC;5;6;7\n", "A;5;6;7\nB;5;6;7\nC;5;6;7\n", 6},  // all at one place
    {"A;1e12;1e12;0\nB;-1e12;0;1e12\n", "A;-1e12;1e12;0\nB;-1e12;0;1\n", 4},
    {"A;1e12;1e12;1e12\nB;1.1e12;1e12;1e12\n", "A;1e12;1e12;1e12\nB;1.1e12;1e12;1e12\n", 4},
    {"A;1e300;0;-1e300\nB;0;0;0\n", "A;-1e300;0;0\nB;1;1;1\n", 4},
};

class OddScreens : public ScreenByNames {
protected:
    // Takes the points of a job in place of those that there are.
    void Import(const OddJob& job) {
        Answer("message", "Yes");
        Click("FormMain.MenuFileInputFiles");
        Set("FormInputFiles.TextNameMCS", Write("odd_start.txt", job.Start));
        Set("FormInputFiles.TextNameOCS", Write("odd_target.txt", job.Target));
        Click("FormInputFiles.BtnOK");
    }
    static void ClickKey(const char* key) { Click(std::string("FormMain.ToolbarGraphics.") + key); }
    static void ClickAll() {
        for (const char* key :
             {"ViewTop", "ViewFront", "ViewSide", "ViewIso", "ZoomAll", "ZoomOut", "ZoomIn", "PointsBigger",
              "PointsSmaller", "VectorMode", "VectorLonger", "VectorShorter"})
            ClickKey(key);
        for (const char* entry :
             {"MenüAnsichtAnpassen", "MenüAnsichtcenter", "MenüViewLastView", "MenüViewNextView"})
            Click(std::string("FormMain.") + entry);
    }
    static void UseMouse() {
        Mouse("move", 0, 0);
        Mouse("wheel", 3, 5, {{"delta", 120}});
        Mouse("wheel", 3, 5, {{"delta", -120}});
        Mouse("down", 0, 0, {{"shift", true}});
        Mouse("move", 40, 60, {{"button", "left"}, {"shift", true}});
        Mouse("up", 40, 60, {{"shift", true}});
        Mouse("down", 0, 0);
        Mouse("move", 30, 30, {{"button", "left"}});
        Mouse("up", 30, 30);
        Click("FormMain.MenüGlobalRotateAbout");
        Mouse("click", 0, 0);
    }
    static void ExpectUsable() {
        EXPECT_GT(Number("BildFaktor"), 1e-15);
        EXPECT_LT(Number("BildFaktor"), 1e15);
        // What is no number comes as null.
        for (const char* name : {"BildOffsetX", "BildOffsetY", "Vec_Maßstab", "Min", "Max"})
            EXPECT_TRUE(Field(name).is_number()) << name;
    }
};

TEST_F(OddScreens, TakeEveryCommandOverEveryJob) {
    Start(300, 200);
    for (const OddJob& job : kOddJobs) {
        Import(job);
        Click("FormMain.MenueGraphics");
        for (const char* table :
             {"ScenePoints", "ScenePointName", "ViewPoints", "PixelX", "PixelY", "PixelZ"})
            EXPECT_EQ(Record(table).size(), job.Rows + 1) << job.Start << table;
        EXPECT_EQ(Field("FlagIndex").size(), job.Rows + 1);
        ExpectUsable();
        ClickAll();
        ExpectUsable();
        UseMouse();
        ExpectUsable();
    }
}

TEST_F(OddScreens, OfOnePixelTakeEveryCommandToo) {
    Start(1, 1);
    Click("FormMain.MenueGraphics");
    ClickAll();
    UseMouse();
    ExpectUsable();
    ClickKey("ViewTop");
    ClickKey("ZoomAll");
    // The plate of 100 by 50 mm fills nine tenths of the pixel.
    Good({{"do", "resize"}, {"at", "Screen#1"}, {"width", 1}, {"height", 900}});
    for (std::size_t row = 1; row <= 8; ++row) EXPECT_NEAR(PixelOf(row).X, 0.5, 0.45 + 1e-4);
    Good({{"do", "picture"}, {"at", "Screen#1"}, {"file", PathOf("pixel.png")}});
}

TEST_F(OddScreens, ZoomedToTheLimitsComeBackByTheFit) {
    StartWithScreen();
    for (const char* key : {"ZoomIn", "ZoomOut"}) {
        for (int step = 0; step < 250; ++step) ClickKey(key);
        ExpectUsable();
        UseMouse();
        ExpectUsable();
        ClickKey("ViewTop");
        ClickKey("ZoomAll");
        EXPECT_NEAR(Number("BildFaktor"), kFaktor, 1e-4) << key;
        EXPECT_NEAR(PixelOf(6).X, kRight, kNear) << key;
        EXPECT_NEAR(PixelOf(6).Y, kLower, kNear) << key;
    }
}

TEST_F(OddScreens, AViewOfAnotherJobComesBackForThePointsThatThereAre) {
    StartWithScreen();
    Click("FormMain.MenüGraphicsLinesLineModeActive");
    Click("FormMain.MenüGraphicsLinesSetLines");
    for (const std::size_t row : {std::size_t{1}, std::size_t{2}, std::size_t{4}}) {
        const Pixel place = PixelOf(row);
        Mouse("click", place.X, place.Y);
    }
    const json lines = Field("LineTable");
    ASSERT_EQ(lines, json({{0, 0, 0}, {0, 1, 2}, {0, 2, 4}}));
    for (const char* name : {"plate", "plate again"}) {
        Answer("form", {{{"do", "set"}, {"at", "FormSaveView.TextNewName"}, {"value", name}},
                        {{"do", "click"}, {"at", "FormSaveView.BtnOK"}}});
        Click("FormMain.ToolbarSaveView.SaveView");
    }
    for (const OddJob& job : kOddJobs) {
        Import(job);
        Click("FormMain.MenueGraphics");
        for (const char* name : {"plate", "plate again"}) {
            Set("FormMain.ComboSaveView", name);
            EXPECT_EQ(Field("FlagIndex").size(), job.Rows + 1) << job.Start;
            EXPECT_EQ(Record("PixelX").size(), job.Rows + 1) << job.Start;
            EXPECT_NEAR(Number("BildFaktor"), kFaktor, 1e-5) << job.Start;
            EXPECT_EQ(Field("LineTable"), lines);
        }
        Mouse("move", 10, 10);
        Mouse("click", 10, 10);
        ClickAll();
        ExpectUsable();
    }
}

}  // namespace
