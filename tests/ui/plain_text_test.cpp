// Texts of files are shown as they stand: none is markup, which could load files and draw what it likes.
#include "ui/plain_text.h"

#include <QLabel>

#include "core/form_main.h"
#include "core/job.h"
#include "core/platform.h"
#include "core/units.h"
#include "ui/desktop.h"
#include "ui/desktop_fixture.h"
#include "ui/qt_text.h"

using namespace corvinade;

using PlainTexts = DesktopTest;

namespace {

constexpr const char* kMarkup = "<img src='/dev/zero'><b>x</b>";

}  // namespace

TEST_F(PlainTexts, EveryLabelOfTheFrameAndOfTheWindowsTakesThem) {
    Begin();
    for (const char* window : {"FormUnits", "FormOptions", "FormMenuHelpInfo"}) {
        UserDid([window] { ShowWindow(window); });
        int labels = 0;
        for (const WindowEntry* entry : AllWindows()) {
            if (std::string(entry->Name) != window) continue;
            for (const ControlEntry& control : entry->Controls) {
                if (control.Place->Kind != ControlKind::Label) continue;
                const auto* label = qobject_cast<QLabel*>(Widget(std::string(window) + "." + control.Name));
                if (label == nullptr) continue;
                ++labels;
                EXPECT_EQ(label->textFormat(), Qt::PlainText) << control.Name;
            }
        }
        EXPECT_GT(labels, 0) << window;
    }
}

TEST_F(PlainTexts, AUnitInTheStatusBarIsNoMarkup) {
    Begin();
    UserDid([] {
        Job.LengthUnitName = kMarkup;
        RhoFestlegung();
    });
    const auto* panel = Frame()->findChild<QLabel*>(QStringLiteral("StatusBar.1"));
    ASSERT_NE(panel, nullptr);
    EXPECT_EQ(panel->textFormat(), Qt::PlainText);
    EXPECT_EQ(panel->text(), QLatin1String(kMarkup));
}

TEST_F(PlainTexts, ToolTipsAndTitlesShowMarkupAsItStands) {
    const QString guessed = PlainWhereGuessed(QLatin1String(kMarkup));
    QTextDocument document;
    document.setHtml(guessed);
    EXPECT_EQ(document.toPlainText(), QLatin1String(kMarkup));
    EXPECT_EQ(PlainWhereGuessed(QStringLiteral("a < b & c")), QLatin1String("a < b & c"));
    document.setHtml(PlainAsMarkup(QLatin1String(kMarkup)));
    EXPECT_EQ(document.toPlainText(), QLatin1String(kMarkup));
}

TEST_F(PlainTexts, AToolTipOfTheLogicIsNoMarkup) {
    Begin();
    UserDid([] { Main.StatusBar_1.ToolTip = kMarkup; });
    const auto* panel = Frame()->findChild<QLabel*>(QStringLiteral("StatusBar.1"));
    QTextDocument document;
    document.setHtml(panel->toolTip());
    EXPECT_EQ(document.toPlainText(), QLatin1String(kMarkup));
}
