// What a graphics window shows: its picture with the labels, the rubber band frame and the text about mouse
// and keys on it; and the pointers of its modes.
#pragma once

#include <QCursor>
#include <QImage>
#include <QPainter>
#include <QRect>

#include "core/rooms.h"
#include "graphics/screen_window.h"

namespace corvinade::ui {

// The picture with its labels, `size` large on the screen, and all that lies on it.
//   picture  of PictureOf (paint/image.h)
void PaintScreen(QPainter& painter, const ScreenWindow& window, const QImage& picture, const QSize& size);

// Where the rubber band frame lies, empty where none is shown.
QRect FrameOf(const ScreenWindow& window);

QCursor PointerOf(ScreenPointer pointer);

}  // namespace corvinade::ui
