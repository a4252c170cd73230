// The fit to a shape on the desktop: its import, the small window with STOP, and the calculation window.
#include "paraboloid/paraboloid.h"

#include <QApplication>
#include <QLineEdit>
#include <QTest>
#include <QTimer>
#include <cmath>
#include <functional>

#include "core/job.h"
#include "core/run.h"
#include "engine/calculation.h"
#include "ui/desktop.h"
#include "ui/desktop_fixture.h"
#include "ui/qt_text.h"

using namespace corvinade;

namespace {

class ShapesByHand : public DesktopTest {
protected:
    static std::string Example(const char* name) {
        return std::string(CORVINADE_SOURCE_DIR) + "/examples/" + name;
    }

    void Import(const std::string& points) {
        Begin();
        Trigger("MenuFileInputFiles");
        Type("FormInputFiles.TextNameMCS", points);
        Type("FormInputFiles.TextNameOCS", Example("dish_shape.txt"));
        QTest::keyClick(Widget("FormInputFiles.ComboOCS_Data"), Qt::Key_End);  // the last kind of the list
        QApplication::processEvents();
        ASSERT_FALSE(IsTrue(Job.IsParaboloid)) << "the dialog alone has chosen so far";
        AnswerNext("OK");
        Click("FormInputFiles.BtnOK");
        ASSERT_TRUE(IsTrue(Job.IsParaboloid));
        ASSERT_FALSE(IsOpen("FormInputFiles"));
        Trigger("MenuTransformationCalculation");
        ASSERT_TRUE(IsOpen("FormTrafoBerechnung"));
    }

    // So many points of the dish, on a spiral, tilted and shifted: their fit takes seconds.
    std::string ManyPoints(int count) const {
        std::string text;
        constexpr double kTilt = 0.05, kFocus = 1080;
        for (int i = 1; i <= count; ++i) {
            const double r = 1480 * std::sqrt(static_cast<double>(i) / count), phi = 2.4 * i;
            const double y = r * std::sin(phi), z = r * r / (4 * kFocus);
            text += "P" + std::to_string(i) + ";" + std::to_string(r * std::cos(phi) + 9) + ";" +
                    std::to_string(std::cos(kTilt) * y - std::sin(kTilt) * z) + ";" +
                    std::to_string(std::sin(kTilt) * y + std::cos(kTilt) * z + 40) + "\n";
        }
        return Write("many.txt", text);
    }

    // Calculates, and looks once while the small window is open.
    void CalculateAnd(const std::function<void()>& look) {
        QTimer watch;
        bool looked = false;
        QObject::connect(&watch, &QTimer::timeout, &watch, [&] {
            if (looked || !IsOpen("FormStopParaTrafo") || ParaboloidRun.ParaPass < 3) return;
            looked = true;
            look();
        });
        watch.start(5);
        Click("FormTrafoBerechnung.BtnCalculate");
        EXPECT_TRUE(looked) << "the fit was over too soon";
        EXPECT_FALSE(IsOpen("FormStopParaTrafo"));
        EXPECT_TRUE(Widget("FormTrafoBerechnung.BtnCalculate")->isEnabled());
        EXPECT_TRUE(WidgetOf(*FindWindow("FormTrafoBerechnung"))->isEnabled());
        EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    }
};

}  // namespace

TEST_F(ShapesByHand, AreImportedAndFitted) {
    Import(Example("dish_measured.txt"));
    EXPECT_FALSE(Widget("FormTrafoBerechnung.OptionL1")->isEnabled());
    Click("FormTrafoBerechnung.BtnCalculate");
    EXPECT_LT(Calculation.s0, 0.03);
    EXPECT_FALSE(qobject_cast<QLineEdit*>(Widget("FormTrafoBerechnung.TextTraZ"))->text().isEmpty());
    EXPECT_NEAR(Job.TraZ, -35.2, 0.02);
}

TEST_F(ShapesByHand, AreStoppedByTheButtonOfTheSmallWindow) {
    Import(ManyPoints(20000));
    CalculateAnd([] {
        EXPECT_FALSE(WidgetOf(*FindWindow("FormTrafoBerechnung"))->isEnabled());
        EXPECT_TRUE(Widget("FormStopParaTrafo.BtnStopParaTrafo")->isVisible());
        Click("FormStopParaTrafo.BtnStopParaTrafo");
    });
    EXPECT_GT(Calculation.s0, 1e-3) << "the best fit was still far";
}

TEST_F(ShapesByHand, AreStoppedByEsc) {
    Import(ManyPoints(20000));
    CalculateAnd([] { QTest::keyClick(Widget("FormStopParaTrafo.BtnStopParaTrafo"), Qt::Key_Escape); });
    EXPECT_GT(Calculation.s0, 1e-3);
}

TEST_F(ShapesByHand, AreStoppedByClosingTheSmallWindow) {
    Import(ManyPoints(20000));
    CalculateAnd([] { WidgetOf(*FindWindow("FormStopParaTrafo"))->window()->close(); });
    EXPECT_GT(Calculation.s0, 1e-3);
}
