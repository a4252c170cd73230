// Windows at other scales and on several screens: places are kept in logical pixels, and no window is out of
// sight. A program has its screens from its start, so these tests run in programs of their own.
#include <QDialog>
#include <QProcess>
#include <QScreen>

#include "core/settings.h"
#include "ui/desktop.h"
#include "ui/desktop_fixture.h"
#include "ui/qt_text.h"

using namespace corvinade;

namespace {

class Screens : public DesktopTest {
protected:
    static std::string Screen(const std::string& name, int x, int width, int height) {
        return R"({"name":")" + name + R"(","x":)" + std::to_string(x) + R"(,"y":0,"width":)" +
               std::to_string(width) + R"(,"height":)" + std::to_string(height) +
               R"(,"logicalDpi":96,"logicalBaseDpi":96,"dpr":1})";
    }

    // Runs tests of this program on the given screens at a scale; their output where they fail.
    void ExpectToPass(const std::string& tests, const std::string& screens, const char* scale = "1") const {
        const std::string setting =
            Write("screens.json", R"({"windowFrameMargins":false,"screens":[)" + screens + "]}");
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"),
                           QStringLiteral("offscreen:configfile=") + Q(setting));
        environment.insert(QStringLiteral("QT_SCALE_FACTOR"), QLatin1String(scale));
        environment.insert(QLatin1String(kOnOtherScreens), QStringLiteral("1"));
        // A share of the tests is none of this one test's.
        environment.remove(QStringLiteral("GTEST_TOTAL_SHARDS"));
        environment.remove(QStringLiteral("GTEST_SHARD_INDEX"));
        QProcess program;
        program.setProcessEnvironment(environment);
        program.setProcessChannelMode(QProcess::MergedChannels);
        program.start(QApplication::applicationFilePath(), {QStringLiteral("--gtest_filter=") + Q(tests)});
        ASSERT_TRUE(program.waitForFinished(60000));
        const QByteArray output = program.readAll();
        EXPECT_EQ(program.exitCode(), 0) << output.toStdString();
        EXPECT_FALSE(output.contains("Running 0 tests")) << tests;
    }

    // Runs the present test on the given screens in a program of its own; false in that program.
    bool RunsOn(const std::string& screens) const {
        if (qEnvironmentVariableIsSet(kOnOtherScreens)) return false;
        const auto* test = testing::UnitTest::GetInstance()->current_test_info();
        ExpectToPass(std::string(test->test_suite_name()) + "." + test->name(), screens);
        return true;
    }

    // The dialog of the units at a place, in pixels.
    static QWidget* UnitsAt(int left, int top) {
        SaveWindowPlace({left * kTwips, top * kTwips, 400 * kTwips, 260 * kTwips}, "FormUnits");
        Trigger("MenuSettingsUnits");
        return WidgetOf(*FindWindow("FormUnits"))->window();
    }

private:
    static constexpr const char* kOnOtherScreens = "CORVINADE_TESTS_ON_OTHER_SCREENS";
};

}  // namespace

TEST_F(Screens, APlaceOnTheSecondScreenIsKept) {
    if (RunsOn(Screen("first", 0, 1280, 1024) + "," + Screen("second", 1280, 1920, 1080))) return;
    Begin();
    ASSERT_EQ(QGuiApplication::screens().size(), 2);
    const QWidget* units = UnitsAt(1400, 200);
    EXPECT_EQ(units->pos(), QPoint(1400, 200));
    EXPECT_EQ(units->size(), QSize(400, 260));
    Click("FormUnits.BtnOK");
    EXPECT_EQ(IniWertLesen("FormUnitsLeft"), "21000");
}

TEST_F(Screens, APlaceLeftOfTheFirstScreenIsKept) {
    if (RunsOn(Screen("first", 0, 1280, 1024) + "," + Screen("left", -1024, 1024, 768))) return;
    Begin();
    ASSERT_EQ(QGuiApplication::screens().size(), 2);
    EXPECT_EQ(UnitsAt(-700, 200)->pos(), QPoint(-700, 200));
    Click("FormUnits.BtnOK");
    EXPECT_EQ(IniWertLesen("FormUnitsLeft"), "-10500");
}

TEST_F(Screens, APlaceOnAScreenThatIsGoneIsBroughtBack) {
    if (RunsOn(Screen("first", 0, 1280, 1024))) return;
    Begin();
    ASSERT_EQ(QGuiApplication::screens().size(), 1);
    for (const int left : {1400, -700}) {
        const QWidget* units = UnitsAt(left, 200);
        EXPECT_TRUE(QRect(0, 0, 1280, 1024).contains(units->geometry())) << left;
        EXPECT_EQ(units->size(), QSize(400, 260));
        Click("FormUnits.BtnOK");
    }
}

TEST_F(Screens, PlacesAndTablesAreTheSameAtEveryScale) {
    for (const char* scale : {"1.5", "2"})
        ExpectToPass(
            "PlacesOfDialogs.*:MainSheetByHand.*:OptionsByHand.*:InputStatisticByHand.*:DistancesByHand.*",
            Screen("fine", 0, 3840, 2160), scale);
}

TEST_F(Screens, GraphicsWindowsAreSharpAndAsLargeAtEveryScale) {
    for (const char* scale : {"1.5", "2"})
        ExpectToPass("ScreenByHand.*:ScreenDialogs.*-*Million*:*Eye*", Screen("fine", 0, 3840, 2160), scale);
}

TEST_F(Screens, AVersionIsToldWithoutOne) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* screen : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        environment.remove(QLatin1String(screen));
    QProcess program;
    program.setProcessEnvironment(environment);
    for (const auto& [option, told] : {std::pair{"--version", "Corvinade 2.0.64"},
                                       {"-v", "Corvinade 2.0.64"},
                                       {"--help", "--no-splash"},
                                       {"-h", "--no-splash"}}) {
        program.start(QApplication::applicationDirPath() + QStringLiteral("/corvinade"),
                      {QLatin1String(option)});
        ASSERT_TRUE(program.waitForFinished(10000));
        EXPECT_EQ(program.exitStatus(), QProcess::NormalExit) << option;
        EXPECT_EQ(program.exitCode(), 0) << option;
        EXPECT_TRUE(program.readAllStandardOutput().contains(told)) << option;
    }
}
