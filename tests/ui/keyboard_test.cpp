// What every window owes to the keyboard and to a screen reader.
#include <QAbstractButton>
#include <QAccessible>
#include <QAction>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTableView>
#include <QToolButton>
#include <algorithm>
#include <map>
#include <string_view>

#include "core/form_main.h"
#include "ui/desktop.h"
#include "ui/desktop_fixture.h"
#include "ui/qt_text.h"

using namespace corvinade;

namespace {

class EveryWindow : public DesktopTest {
protected:
    // Opens every window but the frame, one after the other, and looks at it.
    static void ForEach(const std::function<void(const WindowEntry&, QWidget&)>& look) {
        Begin(CORVINADE_SOURCE_DIR "/examples/robot_cell.cvn");
        int seen = 0;
        for (const WindowEntry* window : AllWindows()) {
            if (window == &FormMain_Entry) continue;
            SCOPED_TRACE(window->Name);
            UserDid([window] { ShowWindow(window->Name); });
            QApplication::processEvents();
            QWidget* form = WidgetOf(*window);
            ASSERT_NE(form, nullptr);
            look(*window, *form);
            ++seen;
            UserDid([window] { UnloadWindow(window->Name); });
            QApplication::processEvents();
        }
        EXPECT_GE(seen, 9);
    }

    static std::string Mnemonic(const QString& text) { return S(QKeySequence::mnemonic(text).toString()); }

    // The captions whose marked letter acts in a window; a menu bar's act beside those of a child window.
    static std::vector<QString> MarkedCaptions(const QWidget& form) {
        std::vector<QString> captions;
        for (const auto* button : form.findChildren<QAbstractButton*>()) captions.push_back(button->text());
        for (const auto* label : form.findChildren<QLabel*>())
            if (label->buddy() != nullptr) captions.push_back(label->text());
        for (const auto* box : form.findChildren<QGroupBox*>()) captions.push_back(box->title());
        return captions;
    }

    static void ExpectNoneTwice(const std::vector<QString>& captions) {
        std::map<std::string, QString> first;
        for (const QString& caption : captions) {
            const std::string key = Mnemonic(caption);
            if (key.empty()) continue;
            const auto [place, fresh] = first.emplace(key, caption);
            EXPECT_TRUE(fresh) << key << " of \"" << S(caption) << "\" and \"" << S(place->second) << '"';
        }
    }

    static std::vector<QString> Texts(const QList<QAction*>& actions) {
        std::vector<QString> texts;
        for (const QAction* action : actions) texts.push_back(action->text());
        return texts;
    }

    static bool TakesInput(const QWidget& widget) {
        const bool known = qobject_cast<const QAbstractButton*>(&widget) != nullptr ||
                           qobject_cast<const QLineEdit*>(&widget) != nullptr ||
                           qobject_cast<const QComboBox*>(&widget) != nullptr ||
                           qobject_cast<const QPlainTextEdit*>(&widget) != nullptr ||
                           qobject_cast<const QTableView*>(&widget) != nullptr;
        const bool part =
            widget.objectName().startsWith(QLatin1String("qt_")) || widget.objectName().isEmpty();
        return known && !part;
    }

    // The widgets of a form that the key Tab comes to, in its order.
    static std::vector<QWidget*> TabOrder(QWidget& form) {
        std::vector<QWidget*> order;
        for (QWidget* one = form.nextInFocusChain(); one != &form; one = one->nextInFocusChain())
            if (form.isAncestorOf(one) && (one->focusPolicy() & Qt::TabFocus) && TakesInput(*one))
                order.push_back(one);
        return order;
    }
};

}  // namespace

TEST_F(EveryWindow, HasNoLetterMarkedTwiceWithThoseOfTheMenusWhereItStandsInsideTheFrame) {
    ForEach([](const WindowEntry&, QWidget& form) {
        std::vector<QString> captions = MarkedCaptions(form);
        const bool inside = qobject_cast<QMdiSubWindow*>(form.parentWidget()) != nullptr;
        if (inside)
            for (const QString& text : Texts(Frame()->menuBar()->actions())) captions.push_back(text);
        ExpectNoneTwice(captions);
    });
}

TEST_F(EveryWindow, OfTheMenusHasNoLetterMarkedTwice) {
    Begin();
    ExpectNoneTwice(Texts(Frame()->menuBar()->actions()));
    for (const auto* menu : Frame()->findChildren<QMenu*>()) {
        SCOPED_TRACE(S(menu->title()));
        ExpectNoneTwice(Texts(menu->actions()));
    }
}

TEST_F(EveryWindow, IsReachedInAllItsPartsByTab) {
    ForEach([](const WindowEntry&, QWidget& form) {
        const std::vector<QWidget*> order = TabOrder(form);
        for (QWidget* widget : form.findChildren<QWidget*>()) {
            if (!TakesInput(*widget) || !widget->isVisible()) continue;
            // Of options that exclude each other Tab comes to one, and the arrows go on from there.
            const auto* button = qobject_cast<const QAbstractButton*>(widget);
            if (button != nullptr && button->autoExclusive()) continue;
            EXPECT_NE(std::find(order.begin(), order.end(), widget), order.end()) << S(widget->objectName());
            if (const auto* table = qobject_cast<const QTableView*>(widget)) {
                EXPECT_FALSE(table->tabKeyNavigation()) << "Tab stays in " << S(widget->objectName());
            }
        }
    });
}

TEST_F(EveryWindow, IsWalkedThroughByTabAsItIsRead) {
    ForEach([](const WindowEntry&, QWidget& form) {
        const std::vector<QWidget*> order = TabOrder(form);
        for (std::size_t i = 0; i + 1 < order.size(); ++i) {
            const QWidget &one = *order[i], &next = *order[i + 1];
            if (one.parentWidget() != next.parentWidget() || !one.isVisible() || !next.isVisible()) continue;
            // A dialog that has nothing to fill in begins at the button that the Return key presses.
            const auto* button = qobject_cast<const QPushButton*>(&one);
            if (i == 0 && button != nullptr && button->isDefault()) continue;
            const bool sameRow = one.geometry().top() <= next.geometry().bottom() &&
                                 next.geometry().top() <= one.geometry().bottom();
            const bool sameColumn = one.geometry().left() <= next.geometry().right() &&
                                    next.geometry().left() <= one.geometry().right();
            const bool forward =
                sameRow && !sameColumn ? one.x() < next.x() : !sameColumn || one.y() < next.y();
            EXPECT_TRUE(forward) << S(one.objectName()) << " leads to " << S(next.objectName());
        }
    });
}

TEST_F(EveryWindow, GivesEveryPartThatTakesInputAName) {
    ForEach([](const WindowEntry&, QWidget& form) {
        for (QWidget* widget : form.findChildren<QWidget*>()) {
            const bool shows = qobject_cast<QProgressBar*>(widget) != nullptr;
            if (!TakesInput(*widget) && !shows) continue;
            QAccessibleInterface* face = QAccessible::queryAccessibleInterface(widget);
            ASSERT_NE(face, nullptr) << S(widget->objectName());
            EXPECT_FALSE(face->text(QAccessible::Name).isEmpty())
                << S(widget->objectName()) << " has no name";
        }
    });
}

TEST_F(EveryWindow, TellsWhatAButtonWithoutTextDoes) {
    ForEach([](const WindowEntry&, QWidget& form) {
        for (const auto* button : form.findChildren<QAbstractButton*>()) {
            if (!button->text().isEmpty() || button->objectName().isEmpty() ||
                button->objectName().startsWith(QLatin1String("qt_")))
                continue;
            EXPECT_FALSE(button->toolTip().isEmpty()) << S(button->objectName());
        }
    });
    for (const auto* button : Frame()->findChildren<QToolButton*>()) {
        const QAction* action = button->defaultAction();
        if (action == nullptr || action->objectName().isEmpty()) continue;
        EXPECT_FALSE(button->toolTip().isEmpty()) << S(action->objectName());
        EXPECT_FALSE(action->icon().isNull()) << S(action->objectName());
    }
}

// A screen of 1920 by 1080 at twice the size has 960 by 540; bars of the frame and of the desktop take their
// share. What is larger would be moved by scroll bars of the frame, beside those of its own.
TEST_F(EveryWindow, FitsASmallScreen) {
    constexpr QSize kInside{950, 404}, kDialog{950, 500};
    ForEach([&](const WindowEntry& window, QWidget& form) {
        // Its choices stand below each other, beside a page that scrolls.
        if (std::string_view(window.Name) == "FormReport") return;
        const bool child = window.Stand == WindowStand::Child;
        const QSize least = child ? form.parentWidget()->minimumSizeHint() : form.minimumSizeHint();
        const QSize room = child ? kInside : kDialog;
        EXPECT_LE(least.width(), room.width());
        EXPECT_LE(least.height(), room.height());
    });
}
