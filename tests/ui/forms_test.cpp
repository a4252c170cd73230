// Every window's form has a widget for each control, of its kind, and no others.
#include <QDialog>
#include <QFile>
#include <QUiLoader>
#include <memory>

#include "core/form_main.h"
#include "ui/binder.h"
#include "ui/desktop.h"
#include "ui/desktop_fixture.h"
#include "ui/qt_text.h"

using namespace corvinade;

TEST_F(DesktopTest, EveryControlOfEveryWindowHasItsWidgetAndNoOtherIsThere) {
    Begin();
    for (const WindowEntry* window : AllWindows()) {
        if (window == &FormMain_Entry) continue;
        QFile file(FormFile(*window));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << window->Name << " has no form";
        QUiLoader loader;
        const std::unique_ptr<QWidget> form(loader.load(&file));
        ASSERT_NE(form, nullptr) << window->Name;
        EXPECT_EQ(BindWindow(*window, *form), std::vector<std::string>{}) << window->Name;
        UnbindWindow(*window);
    }
}

TEST_F(DesktopTest, TheFrameHasEveryMenuButtonAndPanel) {
    Begin();
    UnbindWindow(FormMain_Entry);
    EXPECT_EQ(BindWindow(FormMain_Entry, *Frame()), std::vector<std::string>{});
}

TEST_F(DesktopTest, AFormWithAWidgetTooManyOrTooFewIsFoundOut) {
    const WindowEntry* units = FindWindow("FormUnits");
    QFile file(QStringLiteral(":/forms/FormUnits.ui"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QUiLoader loader;
    const std::unique_ptr<QWidget> form(loader.load(&file));
    form->findChild<QWidget*>(QStringLiteral("BtnOK"))->setObjectName(QStringLiteral("BtnOkay"));
    const std::vector<std::string> faults = BindWindow(*units, *form);
    EXPECT_EQ(faults, (std::vector<std::string>{"FormUnits.BtnOK has no widget",
                                                "FormUnits: the widget BtnOkay has no control"}));
    UnbindWindow(*units);
}
