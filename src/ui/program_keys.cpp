// The keys that act in the whole program.
#include "ui/program_keys.h"

#include <QApplication>
#include <QDialog>
#include <QKeyEvent>

#include "bundle/form_buendel.h"
#include "core/form_progress_bar.h"
#include "core/window.h"
#include "engine/form_trafo_berechnung.h"
#include "graphics/analyse_mode.h"
#include "graphics/bindings_overlay.h"
#include "graphics/screen_window.h"
#include "ui/desktop.h"
#include "ui/help.h"
#include "ui/screen_windows.h"

namespace corvinade::ui {

namespace {

// The window of the logic that a dialog on the screen shows, or null.
const WindowEntry* DialogOf(const QWidget* outer) {
    if (qobject_cast<const QDialog*>(outer) == nullptr) return nullptr;
    for (const WindowEntry* window : AllWindows())
        if (const QWidget* form = WidgetOf(*window); form != nullptr && form->window() == outer)
            return window;
    return nullptr;
}

// A question of the system or an open list or menu has the keys for itself.
bool KeysBelongElsewhere() {
    if (QApplication::activePopupWidget() != nullptr) return true;
    const QWidget* modal = QApplication::activeModalWidget();
    return modal != nullptr && DialogOf(modal) == nullptr;
}

// Esc ends the mode in which a picture runs by itself, and takes the text about the keys away.
bool EndsAnalyse() {
    for (const auto& window : Screens().Open) {
        if (!window->AnalyseMode && !(window.get() == Screens().Active && window->BindingsShown)) continue;
        UserDid([id = window->Id] {
            Dispatch([id] {
                ScreenWindow* shown = ScreenOf(id);
                shown->AnalyseMode ? ToggleAnalyseMode(*shown) : ToggleBindingsOverlay(*shown);
            });
        });
        return true;
    }
    return false;
}

class Keys : public QObject {
public:
    explicit Keys(QObject* parent) : QObject(parent) {}
    bool eventFilter(QObject* object, QEvent* event) override {
        if (event->type() != QEvent::KeyPress || !object->isWidgetType()) return false;
        const int key = static_cast<QKeyEvent*>(event)->key();
        if ((key != Qt::Key_F5 && key != Qt::Key_F1 && key != Qt::Key_Escape) || KeysBelongElsewhere())
            return false;
        if (key == Qt::Key_Escape && object->objectName() == QLatin1String("_Search")) return false;
        if (key == Qt::Key_F1) {  // the entry of the menu is out of reach of dialogs
            ShowChapterFor(static_cast<QWidget*>(object));
            return true;
        }
        const auto press = [](Control& button) {
            if (!button.Enabled || !button.Visible) return false;
            UserDid([&button] { UserClick(button); });
            return true;
        };
        const bool calculation = IsLoaded("FormTrafoBerechnung");
        if (key == Qt::Key_F5)  // a dialog in front keeps the calculation window out of reach
            return calculation && QApplication::activeModalWidget() == nullptr &&
                   press(TrafoWindow.BtnCalculate);
        if (calculation && !TrafoWindow.BtnCalculate.Enabled && press(TrafoWindow.BtnSTOP)) return true;
        if (IsLoaded(FormBündel_Entry.Name) && press(BündelWindow.CommandSTOP)) return true;
        if (IsLoaded(FormProgressBar_Entry.Name)) {
            UserDid([] { UserEscape(FormProgressBar_Entry); });
            return true;
        }
        if (EndsAnalyse()) return true;
        const WindowEntry* dialog = DialogOf(static_cast<QWidget*>(object)->window());
        if (dialog == nullptr) return false;
        UserDid([dialog] { dialog->Escape != nullptr ? UserEscape(*dialog) : UserClose(*dialog); });
        return true;
    }
};

}  // namespace

QObject* NewProgramKeys(QObject& parent) {
    return new Keys(&parent);
}

}  // namespace corvinade::ui
