// Ties the widgets of a form to the controls of a window.
#include "ui/binder.h"

#include <QAction>
#include <QCursor>
#include <QMenu>
#include <QTableView>
#include <QTimer>
#include <QWidget>
#include <map>

#include "ui/desktop.h"
#include "ui/grid_view.h"
#include "ui/qt_text.h"
#include "ui/widget_kinds.h"

namespace corvinade::ui {

namespace {

std::map<const WindowEntry*, std::vector<Bound>>& AllBound() {
    static std::map<const WindowEntry*, std::vector<Bound>> bound;
    return bound;
}

Bound Find(const ControlEntry& entry, QWidget& top) {
    Bound bound;
    bound.State = entry.Place;
    const QString name = QString::fromUtf8(entry.Name);
    if (entry.Place->Kind == ControlKind::Menu || entry.Place->Kind == ControlKind::ToolButton) {
        if (const auto* menu = top.findChild<QMenu*>(name)) {
            bound.Action = menu->menuAction();
        } else {
            bound.Action = top.findChild<QAction*>(name);
        }
    } else {
        bound.Widget = top.findChild<QWidget*>(name);
    }
    return bound;
}

// The menu of one entry; the entry goes with it, unless the choice of it has already seen to that.
QMenu* PopUpOf(Control& entry, QAction& action, QWidget& top) {
    auto* menu = new QMenu(&top);
    menu->addAction(&action);
    QObject::connect(menu, &QMenu::aboutToHide, menu, [&entry, menu] {
        QTimer::singleShot(0, menu, [&entry, menu] {
            if (!menu->isVisible()) UserDid([&entry] { entry.Visible = false; });
        });
    });
    return menu;
}

// Names of the form that stand for nothing in the logic.
bool IsOurs(const QObject& object) {
    const QString name = object.objectName();
    if (name.isEmpty() || name.startsWith('_') || name.startsWith(QLatin1String("qt_"))) return false;
    const QObject* parent = object.parent();
    // The toolkit's compound widgets hold children with names of their own.
    for (; parent != nullptr; parent = parent->parent())
        if (parent->inherits("QComboBox") || parent->inherits("QAbstractScrollArea") ||
            parent->inherits("QMdiArea") || parent->inherits("QToolBar") || parent->inherits("QMenuBar"))
            return false;
    return object.isWidgetType() || qobject_cast<const QAction*>(&object) != nullptr;
}

}  // namespace

std::vector<std::string> BindWindow(const WindowEntry& window, QWidget& top) {
    std::vector<std::string> faults;
    std::vector<Bound>& all = AllBound()[&window];
    all.clear();
    for (const ControlEntry& entry : window.Controls) {
        Bound bound = Find(entry, top);
        const bool ownMenu = entry.Place->Kind == ControlKind::Menu && bound.Action == nullptr;
        if (ownMenu && top.inherits("QMainWindow") == false) {
            bound.Action = new QAction(&top);  // entries of the window's pop-up menu stand in no form
            bound.Action->setObjectName(QString::fromUtf8(entry.Name));
            bound.PopUp = PopUpOf(*entry.Place, *bound.Action, top);
        }
        const std::string name = std::string(window.Name) + "." + entry.Name;
        if (bound.Widget == nullptr && bound.Action == nullptr) {
            faults.push_back(name + " has no widget");
            continue;
        }
        bound.Row = RowOf(bound);
        if (bound.Row == nullptr) {
            faults.push_back(name + " has a widget of another kind");
            continue;
        }
        Connect(bound);
        all.push_back(std::move(bound));
    }
    for (const QObject* child : top.findChildren<QObject*>()) {
        if (!IsOurs(*child)) continue;
        const std::string name = S(child->objectName());
        if (FindControl(window, name) == nullptr)
            faults.push_back(std::string(window.Name) + ": the widget " + name + " has no control");
    }
    return faults;
}

void UnbindWindow(const WindowEntry& window) {
    AllBound().erase(&window);
}

void ForgetShown() {
    for (auto& [window, bound] : AllBound())
        for (Bound& one : bound) one.Ever = false;
}

void ShowControls(const WindowEntry& window, bool withPanels) {
    const auto found = AllBound().find(&window);
    if (found == AllBound().end()) return;
    for (Bound& bound : found->second) {
        if (!withPanels && bound.State->Kind == ControlKind::Panel) continue;
        if (auto* grid = qobject_cast<QTableView*>(bound.Widget)) ShowGrid(*bound.State, *grid);
        ShownState now = StateOf(*bound.State);
        if (bound.Ever && now == bound.Last && !Differs(bound)) continue;
        const bool opens = bound.PopUp != nullptr && bound.State->Visible && !bound.Last.Visible;
        ShowBound(bound);
        if (opens) bound.PopUp->popup(QCursor::pos());
        bound.Last = std::move(now);
        bound.Ever = true;
    }
}

}  // namespace corvinade::ui
