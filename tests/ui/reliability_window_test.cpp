// The window "Reliability" on the screen.
#include <QLabel>
#include <QLineEdit>
#include <QTableView>
#include <QToolBar>

#include "analysis/form_reliability.h"
#include "core/measurement_sigmas.h"
#include "core/numbers.h"
#include "engine/form_trafo_berechnung.h"
#include "ui/desktop.h"
#include "ui/desktop_fixture.h"
#include "ui/qt_text.h"

using namespace corvinade;

namespace {

class ReliabilityOnScreen : public DesktopTest {
protected:
    ReliabilityOnScreen() {
        Begin(std::string(CORVINADE_SOURCE_DIR) + "/examples/robot_cell.cvn");
        Trigger("MenuTransformationCalculation");
        Click("FormTrafoBerechnung.BtnUseAllPts");
        Click("FormTrafoBerechnung.BtnCalculate");
    }
    static QTableView& Table(const std::string& name) {
        return *qobject_cast<QTableView*>(Widget("FormReliability." + name));
    }
    static std::string Cell(const std::string& table, int row, int col) {
        return S(Table(table).model()->index(row, col).data().toString());
    }
};

}  // namespace

TEST_F(ReliabilityOnScreen, ShowsTheKnockedMarkAndTakesItOut) {
    Trigger("ToolbarReliability.Reliability");
    ASSERT_TRUE(IsOpen("FormReliability"));
    EXPECT_EQ(Table("GridPoints").model()->rowCount(), 3 * Job.Pairs());
    EXPECT_EQ(Cell("GridPoints", 0, kRelPoint), "F09");
    EXPECT_EQ(Cell("GridPoints", 0, kRelVerdict), "outlier");
    Click("FormReliability.BtnSnoop");
    EXPECT_EQ(Reliability.Snooped.size(), 3U);
    Click("FormReliability.BtnSnoopBack");
    EXPECT_TRUE(Reliability.Snooped.empty());
    EXPECT_EQ(Cell("GridPoints", 0, kRelVerdict), "outlier");
    Click("FormReliability.BtnClose");
    EXPECT_FALSE(IsOpen("FormReliability"));
}

TEST_F(ReliabilityOnScreen, SigmasAreTyped) {
    Trigger("MenuTransformationReliability");
    for (const char* field : {"X", "Y", "Z"})
        Type(std::string("FormReliability.TextStartSigma") + field, PlainText(0.05));
    Click("FormReliability.BtnApply");
    EXPECT_EQ(SigmasOf(Job).Start, (SideAccuracy{0.05, 0.05, 0.05}));
    const auto* sentence = qobject_cast<QLabel*>(Widget("FormReliability.LabelGlobalTest"));
    EXPECT_NE(S(sentence->text()).find("Global test"), std::string::npos);
    EXPECT_TRUE(sentence->wordWrap());
    auto* power = qobject_cast<QLineEdit*>(Widget("FormReliability.TextPower"));
    const QColor plain = power->palette().color(QPalette::Base);
    Type("FormReliability.TextPower", "2");
    EXPECT_NE(power->palette().color(QPalette::Base), plain);
    if (const char* folder = std::getenv("RELIABILITY_PICTURE"); folder != nullptr) {
        Type("FormReliability.TextPower", PlainText(0.8));
        QWidget* window = WidgetOf(*FindWindow("FormReliability"));
        window->window()->resize(1500, 950);
        window->parentWidget()->resize(1240, 660);
        QApplication::processEvents();
        QTest::qWait(300);
        window->window()->grab().save(QString::fromUtf8(folder) + "/frame.png");
        window->grab().save(QString::fromUtf8(folder) + "/window.png");
    }
}
