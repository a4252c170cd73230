// The menu "Window".
#include "ui/window_menu.h"

#include <QAction>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <array>
#include <utility>

#include "ui/desktop.h"
#include "ui/frame.h"

namespace corvinade::ui {

namespace {

constexpr const char* kListed = "listed";  // entries of windows, made anew each time that the menu opens

constexpr std::array<std::pair<const char*, void (QMdiArea::*)()>, 5> kCommands = {
    {{"_WindowNext", &QMdiArea::activateNextSubWindow},
     {"_WindowPrevious", &QMdiArea::activatePreviousSubWindow},
     {"_WindowTile", &QMdiArea::tileSubWindows},
     {"_WindowCascade", &QMdiArea::cascadeSubWindows},
     {"_WindowClose", &QMdiArea::closeActiveSubWindow}}};

void ListWindows(QMenu& menu, QMdiArea& area) {
    for (QAction* action : menu.actions())
        if (action->property(kListed).toBool()) delete action;
    const QList<QMdiSubWindow*> windows = area.subWindowList(QMdiArea::CreationOrder);
    int number = 0;
    for (QMdiSubWindow* window : windows) {
        if (!window->isVisible()) continue;
        QString title = window->windowTitle();
        title.replace('&', QStringLiteral("&&"));
        ++number;
        QAction* action =
            menu.addAction((number < 10 ? QStringLiteral("&%1 ").arg(number) : QString()) + title);
        action->setProperty(kListed, true);
        action->setCheckable(true);
        action->setChecked(window == area.activeSubWindow());
        QObject::connect(action, &QAction::triggered, window, [window, &area] {
            if (window->isMinimized()) window->showNormal();
            area.setActiveSubWindow(window);
        });
    }
}

}  // namespace

void FurnishWindowMenu(const QMainWindow& frame) {
    QMdiArea& area = AreaOf(frame);
    for (const auto& [name, command] : kCommands)
        if (auto* action = frame.findChild<QAction*>(QLatin1String(name)))
            QObject::connect(action, &QAction::triggered, &area, command);
    if (auto* menu = frame.findChild<QMenu*>(QStringLiteral("_MenuWindow")))
        QObject::connect(menu, &QMenu::aboutToShow, menu, [menu, &area] { ListWindows(*menu, area); });
}

}  // namespace corvinade::ui
