// The desktop: it shows what the logic holds, and tells the logic what the user does.
#pragma once

#include <QString>
#include <functional>

#include "core/rooms.h"
#include "core/window.h"

class QMainWindow;
class QWidget;

namespace corvinade::ui {

// Builds the frame. The logic's start (StartUp) comes after it; the frame shows itself with its first message
// or when it is over.
void OpenDesktop();

// Takes the frame and all windows down, whatever the logic holds.
void CloseDesktop();

// Brings the screen up to date: windows that were opened or closed, controls that differ from what was last
// shown, the pointer. Costs little where nothing has changed. Inside running work, which sets the panels of
// the status bar and the clipboard at every step, these two follow some ten times a second only.
void ShowState(bool insideWork = false);

// Every event of the user goes through here: it runs, and what it changed is shown.
void UserDid(const std::function<void()>& action);

// One of the user's events runs.
bool IsInEvent();

// The form of a window in the resources. Names of files are ASCII, those of windows are not.
QString FormFile(const WindowEntry& window);

// The frame, and the widget of a window that is open; null otherwise.
QMainWindow* Frame();
QWidget* WidgetOf(const WindowEntry& window);

// Where dialogs of the system belong: the active window, or the frame.
QWidget* DialogParent();

}  // namespace corvinade::ui
