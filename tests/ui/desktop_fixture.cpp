// What the tests of the desktop stand on.
#include "ui/desktop_fixture.h"

#include <QAbstractButton>
#include <QFileDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QTimer>
#include <filesystem>
#include <fstream>

#include "core/controller.h"
#include "core/form_main.h"
#include "core/fresh_start.h"
#include "ui/desktop.h"
#include "ui/qt_text.h"
#include "ui/start_screen.h"

using namespace corvinade;

namespace {

// Runs `action` on the next modal widget of a type, when there is one.
template <class Dialog>
void OnNext(std::function<void(Dialog&)> action, int triesLeft = 500) {
    QTimer::singleShot(10, [action, triesLeft] {
        if (auto* dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget())) {
            action(*dialog);
        } else if (triesLeft > 0) {
            OnNext<Dialog>(action, triesLeft - 1);
        }
    });
}

}  // namespace

DesktopTest::DesktopTest() {
    FreshStart();
    const auto* test = testing::UnitTest::GetInstance()->current_test_info();
    folder_ = (std::filesystem::temp_directory_path() /
               ("corvinade-ui-tests-" + std::to_string(QApplication::applicationPid())) / test->name())
                  .string();
    std::filesystem::remove_all(folder_);
    std::filesystem::create_directories(folder_);
    qputenv("XDG_CONFIG_HOME", QByteArray::fromStdString(folder_));
    qunsetenv("appdata");
    SkipStartScreen();
}

DesktopTest::~DesktopTest() {
    CloseDesktop();
    FreshStart();
    std::error_code error;
    std::filesystem::remove_all(folder_, error);
    std::filesystem::remove(std::filesystem::path(folder_).parent_path(), error);
}

void DesktopTest::Begin(const std::string& job) {
    OpenDesktop();
    UserDid([&job] { StartUp(job.empty() ? "" : "\"" + job + "\""); });
    Frame()->show();
    QApplication::processEvents();
}

std::string DesktopTest::PathOf(const std::string& name) const {
    return folder_ + "/" + name;
}

std::string DesktopTest::Write(const std::string& name, const std::string& content) const {
    std::ofstream(PathOf(name), std::ios::binary) << content;
    return PathOf(name);
}

QWidget* DesktopTest::Widget(const std::string& at) {
    const std::size_t dot = at.find('.');
    const WindowEntry* window = FindWindow(at.substr(0, dot));
    QWidget* top = window == nullptr ? nullptr : WidgetOf(*window);
    QWidget* widget = top == nullptr ? nullptr : top->findChild<QWidget*>(Q(at.substr(dot + 1)));
    EXPECT_NE(widget, nullptr) << at;
    return widget;
}

QAction* DesktopTest::Action(const std::string& name) {
    auto* action = Frame()->findChild<QAction*>(Q(name));
    EXPECT_NE(action, nullptr) << name;
    return action;
}

void DesktopTest::Trigger(const std::string& action) {
    if (QAction* found = Action(action)) found->trigger();
    QApplication::processEvents();
}

void DesktopTest::Click(const std::string& at) {
    QWidget* widget = Widget(at);
    if (widget == nullptr) return;
    EXPECT_TRUE(widget->isVisible()) << at;
    auto* button = qobject_cast<QAbstractButton*>(widget);
    // The mark of a check box or option stands at its left edge.
    const QPoint place = button != nullptr ? QPoint(8, widget->height() / 2) : widget->rect().center();
    QTest::mouseClick(widget, Qt::LeftButton, Qt::NoModifier, place);
    QApplication::processEvents();
}

void DesktopTest::Type(const std::string& at, const std::string& text) {
    auto* field = qobject_cast<QLineEdit*>(Widget(at));
    ASSERT_NE(field, nullptr) << at;
    field->selectAll();
    QTest::keyClicks(field, Q(text));
    QApplication::processEvents();
}

bool DesktopTest::IsOpen(const std::string& window) {
    const WindowEntry* entry = FindWindow(window);
    const QWidget* widget = entry == nullptr ? nullptr : WidgetOf(*entry);
    return widget != nullptr && widget->isVisible();
}

void DesktopTest::AnswerNext(const std::string& button) {
    OnNext<QMessageBox>([this, button](QMessageBox& box) {
        messages_.push_back(S(box.text()));
        for (QAbstractButton* one : box.buttons())
            if (S(one->text()) == button) return one->click();
        ADD_FAILURE() << "no button " << button << " in " << S(box.text());
        box.reject();
    });
}

void DesktopTest::ChooseNext(const std::string& path) {
    OnNext<QFileDialog>([path](QFileDialog& dialog) {
        if (path.empty()) return dialog.reject();
        dialog.selectFile(Q(path));
        dialog.findChild<QLineEdit*>()->setText(Q(path));
        QMetaObject::invokeMethod(&dialog, "accept");
    });
}
