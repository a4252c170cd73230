// The dialogs: what OK, Apply, Cancel and Esc do, where they stand, and what the frame's commands show.
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QRadioButton>
#include <QScreen>
#include <QTimer>
#include <QVBoxLayout>

#include "core/controller.h"
#include "core/form_main.h"
#include "core/fresh_start.h"
#include "core/job.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/units.h"
#include "ui/binder.h"
#include "ui/desktop.h"
#include "ui/desktop_fixture.h"
#include "ui/qt_text.h"

using namespace corvinade;

namespace {

class Dialogs : public DesktopTest {
protected:
    std::string start_ = Write("start.txt", "A;0;0;0\nB;1000;0;0\nC;0;2000;0\nD;0;0;3000\n");
    std::string target_ = Write("target.txt", "A;5;6;7\nB;1005;6;7\nC;5;2006;7\nD;5;6;3007\n");

    void TypePaths() {
        Trigger("MenuFileInputFiles");
        ASSERT_TRUE(IsOpen("FormInputFiles"));
        Type("FormInputFiles.TextNameMCS", start_);
        Type("FormInputFiles.TextNameOCS", target_);
    }

    void Import() {
        TypePaths();
        Click("FormInputFiles.BtnOK");
    }

    static void Escape(const std::string& at) {
        QTest::keyClick(Widget(at), Qt::Key_Escape);
        QApplication::processEvents();
    }

    static QWidget* Outer(const std::string& window) { return WidgetOf(*FindWindow(window))->window(); }

    static QAction* ActionOf(const ControlEntry& entry) {
        const QString name = QString::fromUtf8(entry.Name);
        if (const auto* menu = Frame()->findChild<QMenu*>(name)) return menu->menuAction();
        return Frame()->findChild<QAction*>(name);
    }

    static void ExpectCommandsAsTheLogicHasThem(const char* when) {
        for (const ControlEntry& entry : FormMain_Entry.Controls) {
            const Control& control = *entry.Place;
            const bool button = control.Kind == ControlKind::ToolButton;
            if (!button && control.Kind != ControlKind::Menu) continue;
            const QAction* action = ActionOf(entry);
            ASSERT_NE(action, nullptr) << entry.Name;
            // A recent file that there is none of is not shown.
            const bool none =
                std::string_view(entry.Name).starts_with("MenüDateiAlt") && control.Text.size() <= 3;
            const bool visible = control.Visible && !none;
            EXPECT_EQ(action->isEnabled(), control.Enabled && visible) << entry.Name << ' ' << when;
            EXPECT_EQ(action->isVisible(), visible) << entry.Name << ' ' << when;
            EXPECT_EQ(action->isChecked(), button ? control.Value != 0 : control.Checked)
                << entry.Name << ' ' << when;
        }
    }
};

using Commands = Dialogs;
using PlacesOfDialogs = Dialogs;

}  // namespace

TEST_F(Dialogs, UnitsAreTakenOnOkAndLeftOnEscape) {
    Begin();
    ASSERT_EQ(Job.LengthDigits, 3);
    const auto chooseNext = [this](const char* combo) {
        QTest::keyClick(Widget(combo), Qt::Key_Down);
        QApplication::processEvents();
    };
    Trigger("MenuSettingsUnits");
    ASSERT_TRUE(IsOpen("FormUnits"));
    chooseNext("FormUnits.ComboDigitLength");
    Escape("FormUnits.ComboDigitLength");
    EXPECT_FALSE(IsOpen("FormUnits"));
    EXPECT_EQ(Job.LengthDigits, 3);

    Trigger("MenuSettingsUnits");
    chooseNext("FormUnits.ComboDigitLength");
    Click("FormUnits.CheckPhiThetaAsQ");
    Click("FormUnits.BtnOK");
    EXPECT_FALSE(IsOpen("FormUnits"));
    EXPECT_EQ(Job.LengthDigits, 4);
    EXPECT_TRUE(IsTrue(Settings.PhiThetaAsQ));
    EXPECT_EQ(Units.FmtLength, "0.0000");
}

TEST_F(Dialogs, OptionsAreTakenOnOkAndLeftOnCancelAndEscape) {
    Begin();
    const double before = Settings.SigmaX;
    ASSERT_NE(before, 0.25);
    Trigger("MenueExtrasOptions");
    ASSERT_TRUE(IsOpen("FormOptions"));
    Type("FormOptions.TextSx", "0.25");
    Click("FormOptions.BtnCancel");
    EXPECT_FALSE(IsOpen("FormOptions"));
    EXPECT_EQ(Settings.SigmaX, before);

    Trigger("MenueExtrasOptions");
    Type("FormOptions.TextSx", "0.25");
    Escape("FormOptions.TextSx");
    EXPECT_FALSE(IsOpen("FormOptions"));
    EXPECT_EQ(Settings.SigmaX, before);

    Trigger("MenueExtrasOptions");
    Type("FormOptions.TextSx", "0.25");
    Click("FormOptions.OptionBMW");
    EXPECT_TRUE(Widget("FormOptions.CheckInverted")->isVisible());
    Click("FormOptions.OptionALL");
    EXPECT_FALSE(Widget("FormOptions.CheckInverted")->isVisible());
    Click("FormOptions.BtnOK");
    EXPECT_FALSE(IsOpen("FormOptions"));
    EXPECT_EQ(Settings.SigmaX, 0.25);
    EXPECT_EQ(Settings.ClipboardValue, 2);
}

TEST_F(Dialogs, OptionsThatAreNoNumberAreToldAndTheDialogStays) {
    Begin();
    const double before = Settings.SigmaY;
    Trigger("MenueExtrasOptions");
    Type("FormOptions.TextSx", "0.25");
    Type("FormOptions.TextSy", "much");
    AnswerNext("OK");
    Click("FormOptions.BtnOK");
    ASSERT_EQ(messages_.size(), 1u);
    EXPECT_NE(messages_[0].find("much"), std::string::npos) << messages_[0];
    EXPECT_TRUE(IsOpen("FormOptions"));
    EXPECT_EQ(Settings.SigmaY, before);
    EXPECT_NE(Settings.SigmaX, 0.25);
}

TEST_F(Dialogs, InputFilesAreReadOnApplyAndTheDialogStays) {
    Begin();
    TypePaths();
    Click("FormInputFiles.BtnApply");
    EXPECT_TRUE(IsOpen("FormInputFiles"));
    EXPECT_EQ(Job.Pairs(), 4);
    Click("FormInputFiles.BtnCancel");
    EXPECT_FALSE(IsOpen("FormInputFiles"));
    EXPECT_EQ(Job.Pairs(), 4);
}

TEST_F(Dialogs, InputFilesAreLeftOnCancelAndEscape) {
    Begin();
    TypePaths();
    Click("FormInputFiles.BtnCancel");
    EXPECT_FALSE(IsOpen("FormInputFiles"));
    TypePaths();
    Escape("FormInputFiles.TextNameOCS");
    EXPECT_FALSE(IsOpen("FormInputFiles"));
    EXPECT_EQ(Job.Pairs(), 0);
    EXPECT_FALSE(IsTrue(::Run.JobDataValid));
}

TEST_F(Dialogs, AFileIsChosenInTheDialogOfTheSystemAndEscapeThereLeavesOursOpen) {
    Begin();
    Trigger("MenuFileInputFiles");
    ChooseNext(start_);
    Click("FormInputFiles.BtnBrowseMCS");
    EXPECT_EQ(S(qobject_cast<QLineEdit*>(Widget("FormInputFiles.TextNameMCS"))->text()), start_);
    QTimer::singleShot(100, [] {
        QWidget* dialog = QApplication::activeModalWidget();
        ASSERT_NE(dialog, nullptr);
        QTest::keyClick(dialog, Qt::Key_Escape);
    });
    Click("FormInputFiles.ButtonBrowseOCS");
    EXPECT_TRUE(IsOpen("FormInputFiles"));
    EXPECT_EQ(S(qobject_cast<QLineEdit*>(Widget("FormInputFiles.TextNameMCS"))->text()), start_);
}

TEST_F(Dialogs, TheInfoTellsTheVersionAndGoesOnOkAndEscape) {
    Begin();
    Trigger("MenuHelpInfo");
    ASSERT_TRUE(IsOpen("FormMenuHelpInfo"));
    EXPECT_EQ(S(qobject_cast<QLabel*>(Widget("FormMenuHelpInfo.LabelVersion"))->text()), "Version 2.0.64");
    Click("FormMenuHelpInfo.BtnOK");
    EXPECT_FALSE(IsOpen("FormMenuHelpInfo"));
    Trigger("MenuHelpInfo");
    Escape("FormMenuHelpInfo.BtnOK");
    EXPECT_FALSE(IsOpen("FormMenuHelpInfo"));
}

TEST_F(PlacesOfDialogs, ComeBackAfterClosingAndInTheNextProgram) {
    Begin();
    Trigger("MenueExtrasOptions");
    const QSize size = Outer("FormOptions")->size() + QSize(40, 30);
    Outer("FormOptions")->move(60, 50);
    Outer("FormOptions")->resize(size);
    QApplication::processEvents();
    Click("FormOptions.BtnCancel");
    Trigger("MenueExtrasOptions");
    EXPECT_EQ(Outer("FormOptions")->pos(), QPoint(60, 50));
    EXPECT_EQ(Outer("FormOptions")->size(), size);
    Click("FormOptions.BtnCancel");
    CloseDesktop();
    FreshStart();
    Begin();
    Trigger("MenueExtrasOptions");
    EXPECT_EQ(Outer("FormOptions")->pos(), QPoint(60, 50));
    EXPECT_EQ(Outer("FormOptions")->size(), size);
}

TEST_F(PlacesOfDialogs, OffEveryScreenAreBroughtBack) {
    Begin();
    const QRect screen = Frame()->screen()->availableGeometry();
    const std::pair<int, int> far[] = {{90000, 70000}, {-90000, -70000}, {2000000000, -2000000000}};
    for (const auto& [left, top] : far) {
        SaveWindowPlace({left, top, 9000, 7500}, "FormUnits");
        Trigger("MenuSettingsUnits");
        EXPECT_TRUE(screen.contains(Outer("FormUnits")->frameGeometry())) << left << ' ' << top;
        Click("FormUnits.BtnOK");
    }
    SaveWindowPlace({0, 0, 2000000000, 2000000000}, "FormUnits");
    Trigger("MenuSettingsUnits");
    EXPECT_TRUE(screen.contains(Outer("FormUnits")->frameGeometry()));
}

TEST_F(Commands, AreEnabledVisibleAndCheckedAsTheLogicHasThem) {
    Begin();
    ExpectCommandsAsTheLogicHasThem("at the start");
    EXPECT_FALSE(ActionOf({"MenueFileExport", &Main.MenueFileExport})->isEnabled());
    Import();
    ExpectCommandsAsTheLogicHasThem("with data");
    Trigger("MenuVievMainSheet");
    Trigger("MenuTransformationCalculation");
    Click("FormTrafoBerechnung.BtnCalculate");
    ExpectCommandsAsTheLogicHasThem("with a result");
    EXPECT_TRUE(ActionOf({"MenueFileExport", &Main.MenueFileExport})->isEnabled());
    EXPECT_TRUE(Action("MenuVievMainSheet")->isChecked());
    EXPECT_TRUE(Action("MenuTransformationCalculation")->isChecked());
    EXPECT_TRUE(Action("Toolbar1.TrafoBerechnung")->isChecked());
}

TEST_F(Commands, KeepTheLogicsMarkWhateverTheClickOnThemDid) {
    Begin();
    Import();
    Trigger("MenuVievMainSheet");
    Trigger("MenuVievMainSheet");  // it is open already
    EXPECT_EQ(Action("MenuVievMainSheet")->isChecked(), Main.MenuVievMainSheet.Checked);
    Trigger("Toolbar1.TrafoBerechnung");
    EXPECT_TRUE(IsOpen("FormTrafoBerechnung"));
    EXPECT_TRUE(Action("MenuTransformationCalculation")->isChecked());
    Trigger("Toolbar1.TrafoBerechnung");
    EXPECT_FALSE(IsOpen("FormTrafoBerechnung"));
    EXPECT_FALSE(Action("MenuTransformationCalculation")->isChecked());
    Job.SetPairs(1);
    AnswerNext("OK");
    Trigger("Toolbar1.TrafoBerechnung");  // refused with a message
    EXPECT_EQ(messages_.size(), 1u);
    ExpectCommandsAsTheLogicHasThem("after the refusal");
}

TEST_F(Commands, OpenTheRecentFiles) {
    Begin();
    Import();
    ChooseNext(PathOf("cell.cvn"));
    Trigger("MenuFileSave");
    EXPECT_EQ(S(Action("MenüDateiAlt1")->text()), "&1 " + PathOf("cell.cvn"));
    CloseDesktop();
    FreshStart();
    Begin();
    ASSERT_EQ(S(Action("MenüDateiAlt1")->text()), "&1 " + PathOf("cell.cvn"));
    Trigger("MenüDateiAlt1");
    EXPECT_EQ(Job.Pairs(), 4);
    EXPECT_EQ(::Run.JobFilePath, PathOf("cell.cvn"));
}

namespace {

// A window whose handlers take back what the user did.
struct Refusing {
    Control Box = CheckBox("Box"), First = Option("First", 1), Second = Option("Second", 2);
    Control Field = TextBox("as it was"), List = ComboBox({"one", "two"});
};
Refusing R;

const ControlEntry kRefusing[] = {{"Box", &R.Box, {.Click = [] { R.Box.Value = 0; }}},
                                  {"First", &R.First, {.Click = [] { R.First.Value = 0; }}},
                                  {"Second", &R.Second},
                                  {"Field", &R.Field, {.Change = [] { R.Field.Text = "as it was"; }}},
                                  {"List", &R.List, {.Click = [] { R.List.Index = 0; }}}};
WindowState RefusingState;
const WindowEntry kRefusingWindow = {"Refusing", &RefusingState, kRefusing, [] { R = Refusing{}; }};

template <class Widget>
Widget* Add(QWidget& form, const char* name) {
    auto* widget = new Widget(&form);
    widget->setObjectName(QLatin1String(name));
    form.layout()->addWidget(widget);
    return widget;
}

}  // namespace

TEST_F(Dialogs, WhatAHandlerTakesBackIsTakenBackOnTheScreen) {
    R = Refusing{};
    R.Second.Value = 1;
    R.List.Index = 0;
    for (const ControlEntry& entry : kRefusing) entry.Place->Entry = &entry;
    QWidget form;
    new QVBoxLayout(&form);
    auto* box = Add<QCheckBox>(form, "Box");
    auto* first = Add<QRadioButton>(form, "First");
    auto* second = Add<QRadioButton>(form, "Second");
    auto* field = Add<QLineEdit>(form, "Field");
    auto* list = Add<QComboBox>(form, "List");
    ASSERT_EQ(BindWindow(kRefusingWindow, form), std::vector<std::string>{});
    ShowControls(kRefusingWindow);
    form.show();
    const auto click = [](QWidget* widget) {
        QTest::mouseClick(widget, Qt::LeftButton, Qt::NoModifier, QPoint(8, widget->height() / 2));
        ShowControls(kRefusingWindow);
    };
    click(box);
    EXPECT_FALSE(box->isChecked());
    click(first);
    EXPECT_FALSE(first->isChecked());
    EXPECT_TRUE(second->isChecked()) << "of another group";
    QTest::keyClicks(field, QStringLiteral("x"));
    ShowControls(kRefusingWindow);
    EXPECT_EQ(S(field->text()), "as it was");
    QTest::keyClick(list, Qt::Key_Down);
    ShowControls(kRefusingWindow);
    EXPECT_EQ(list->currentIndex(), 0);
    UnbindWindow(kRefusingWindow);
}
