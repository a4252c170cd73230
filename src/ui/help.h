// Help where the user stands: the chapter of the window in front, and the list of all keys.
#pragma once

#include <QString>
#include <QStringList>

#include "core/rooms.h"
#include "core/window.h"

class QMainWindow;
class QWidget;

namespace corvinade::ui {

// A property of an action: the key that its tool tip names.
inline constexpr const char* kKeyOfTip = "keyOfTip";

// The chapter of the manual that tells of a window, as the name of its file; "" for a window without one.
const char* ChapterOf(const WindowEntry& window);

// The chapter of the window that this widget is in; the first one where it is in none.
void ShowChapterFor(QWidget* widget);

// Key and effect, line by line: those of the menus, and of the 3D windows.
struct KeyLine {
    QString Where, Key, Effect;
};
QList<KeyLine> AllKeys(const QMainWindow& frame);

// Ties the entries of the menu, and has the buttons of the tool bars name the keys of their commands.
void FurnishHelp(QMainWindow& frame);

// "What is this?" of the fields of a result in a form.
void TellWhatFieldsAre(const WindowEntry& window, const QWidget& form);

}  // namespace corvinade::ui
