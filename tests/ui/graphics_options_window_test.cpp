// The dialog of the switches of all graphics windows on the desktop.
#include <QCheckBox>
#include <QFontDialog>
#include <QTimer>

#include "core/settings.h"
#include "graphics/form_graphics_options.h"
#include "ui/screen_fixture.h"

using namespace corvinade;

using GraphicsOptionsWindowTest = ScreenByHand;

TEST_F(GraphicsOptionsWindowTest, StaysBesideThePicturesThatItChanges) {
    BeginWithPoints();
    const ScreenWindow& first = OpenScreen();
    const ScreenWindow& second = OpenScreen();
    Trigger("MenüGlobalGeneralGraphicsSettings");
    ASSERT_TRUE(IsOpen("FormGraphicsOptions"));
    EXPECT_FALSE(WidgetOf(FormGraphicsOptions_Entry)->window()->isModal());
    EXPECT_EQ(WidgetOf(FormGraphicsOptions_Entry)->window()->windowTitle(),
              QStringLiteral("Graphics Settings"));
    Click("FormGraphicsOptions.CheckAutoUpdate");
    const std::uint64_t paints = first.PaintCount, others = second.PaintCount;
    Click("FormGraphicsOptions.CheckShowPointNames");
    EXPECT_EQ(first.PaintCount, paints + 1);
    EXPECT_EQ(second.PaintCount, others + 1);
    EXPECT_TRUE(IsTrue(Settings.ShowPointNames));
    // The colour bar is switched by the menu too.
    const auto* bar = qobject_cast<QCheckBox*>(Widget("FormGraphicsOptions.CheckShowColorBar"));
    EXPECT_TRUE(bar->isChecked());
    Trigger("MenüAnsichtToleranzenColorbar");
    EXPECT_FALSE(bar->isChecked());
    Click("FormGraphicsOptions.BtnOK");
    EXPECT_FALSE(IsOpen("FormGraphicsOptions"));
    EXPECT_FALSE(IsTrue(Settings.ShowColorBar));
}

TEST_F(GraphicsOptionsWindowTest, TheFontOfTheLabelsIsChosenInTheFontDialog) {
    BeginWithPoints();
    const ScreenWindow& window = OpenScreen();
    Trigger("MenüGlobalGeneralGraphicsSettings");
    const auto choose = [](bool take) {
        QTimer::singleShot(50, [take] {
            auto* dialog = qobject_cast<QFontDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            QFont font(QStringLiteral("DejaVu Sans"), 18);
            font.setBold(true);
            dialog->setCurrentFont(font);
            if (take)
                dialog->accept();
            else
                dialog->reject();
        });
        Click("FormGraphicsOptions.BtnLabelFont");
    };
    choose(false);
    EXPECT_EQ(window.LabelFont, TextFont{});
    Click("FormGraphicsOptions.CheckAutoUpdate");
    const std::uint64_t paints = window.PaintCount;
    choose(true);
    EXPECT_EQ(window.LabelFont.Name, "DejaVu Sans");
    EXPECT_EQ(window.LabelFont.Size, 18);
    EXPECT_TRUE(window.LabelFont.Bold);
    EXPECT_FALSE(window.LabelFont.Italic);
    EXPECT_EQ(window.PaintCount, paints + 1);
}
