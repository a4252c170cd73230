// Where the frame and its windows stand on the screen.
#include "ui/places.h"

#include <QGuiApplication>
#include <QLayout>
#include <QMainWindow>
#include <QMargins>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QScreen>
#include <QTimer>
#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "core/platform.h"
#include "core/settings.h"
#include "ui/qt_text.h"

namespace corvinade::ui {

namespace {

// A stored width or height below this is none: a settings file without one gives 1000.
constexpr int kLeastStored = 1500;

// What a title and borders may take; they are not known before a window is shown.
constexpr QSize kBorders{8, 40};
constexpr QMargins kFrameBorders{4, 32, 4, 8};

// Larger than this the frame does not open by itself.
constexpr QSize kLargestFrame{1600, 1000};

// The nearest place at which the rectangle lies in the room, or at its left and upper edge.
QRect Inside(QRect rect, const QRect& room) {
    rect.setSize(rect.size().boundedTo(room.size()));
    rect.moveTo(std::clamp(rect.left(), room.left(), room.right() - rect.width() + 1),
                std::clamp(rect.top(), room.top(), room.bottom() - rect.height() + 1));
    return rect;
}

// The part of a screen where a window's inside may stand.
QRect RoomOf(const QScreen& screen) {
    QRect room = screen.availableGeometry();
    room.setSize(room.size() - kBorders);
    return room;
}

QRect Middle(QSize size, const QRect& of) {
    QRect rect({}, size);
    rect.moveCenter(of.center());
    return rect;
}

bool HasSize(const WindowPlace& place) {
    return place.Width > kLeastStored && place.Height > kLeastStored;
}

QRect RectOf(const WindowPlace& place) {
    return {place.Left / kTwips, place.Top / kTwips, place.Width / kTwips, place.Height / kTwips};
}

// --- The frame --------------------------------------------------------------------------------------------

constexpr const char* kSection = "Desktop";
constexpr std::array<const char*, 4> kFrameKeys = {"FrameLeft", "FrameTop", "FrameWidth", "FrameHeight"};
constexpr const char* kMaximisedKey = "FrameMaximized";

// The settings' text, or none where they cannot be read, which the start has told.
std::string Stored(const char* key) {
    try {
        return FindIniWert(key).value_or("");
    } catch (const PlatformError&) {
        return "";
    }
}

// Nothing where a value is missing or none.
std::optional<QRect> StoredFrame() {
    constexpr int kMost = 32000 * kTwips;
    std::array<int, kFrameKeys.size()> values{};
    for (std::size_t i = 0; i < values.size(); ++i) {
        bool isNumber = false;
        values[i] = Q(Stored(kFrameKeys[i])).toInt(&isNumber);
        if (!isNumber) return std::nullopt;
        values[i] = std::clamp(values[i], -kMost, kMost);
    }
    const WindowPlace place{values[0], values[1], values[2], values[3]};
    if (!HasSize(place)) return std::nullopt;
    return RectOf(place);
}

// Titles and borders of another width than expected must not push the frame off its screen.
void KeepBordersOnScreen(QMainWindow& frame) {
    if (!frame.isVisible() || frame.isMaximized() || frame.isFullScreen()) return;
    const QRect room = frame.screen()->availableGeometry();
    const QRect whole = frame.frameGeometry();
    if (room.contains(whole)) return;
    const QSize borders = whole.size() - frame.size();
    const QRect fitting = Inside(whole, room);
    frame.resize(fitting.size() - borders);
    frame.move(fitting.topLeft());
}

// --- Windows inside the frame -----------------------------------------------------------------------------

// A graphics window that nobody has sized leaves room for a table beside it.
constexpr QSize kLargestScreen{1100, 780};
constexpr QSize kLeastScreen{200, 160};
constexpr double kShareOfScreen = 0.62;

std::vector<QRect> Others(const QMdiArea& area, const QWidget* outer) {
    std::vector<QRect> others;
    for (const QMdiSubWindow* one : area.subWindowList())
        if (one != outer && one->isVisible() && !one->isMinimized()) others.push_back(one->geometry());
    return others;
}

std::int64_t Overlap(const QRect& rect, const std::vector<QRect>& others) {
    std::int64_t sum = 0;
    for (const QRect& other : others) {
        const QRect common = rect & other;
        sum += std::int64_t{common.width()} * common.height();
    }
    return sum;
}

// The place beside the others, or over as little of them as can be; among equal ones the right and upper one,
// since what is typed in stands at the left of a window.
QPoint FirstPlaceAmong(const std::vector<QRect>& others, QSize size, const QRect& room) {
    std::vector<int> lefts = {room.right() - size.width() + 1, room.left()};
    std::vector<int> tops = {room.top(), room.bottom() - size.height() + 1};
    for (const QRect& other : others) {
        lefts.push_back(other.right() + 1);
        tops.push_back(other.bottom() + 1);
    }
    if (others.empty()) return room.topLeft();
    QPoint best = room.topLeft();
    std::int64_t least = -1;
    for (const int left : lefts)
        for (const int top : tops) {
            const QRect rect = Inside({QPoint(left, top), size}, room);
            const std::int64_t overlap = Overlap(rect, others);
            if (least >= 0 && overlap >= least) continue;
            least = overlap;
            best = rect.topLeft();
        }
    return best;
}

// A place that the window has not (`anew`: even if one is stored) is looked for.
QRect ChildRect(const WindowPlace& place, std::string_view name, QSize natural, QSize least,
                const QWidget* outer, const QMdiArea& area, bool anew) {
    const QRect room = area.viewport()->rect();
    const QSize size =
        (HasSize(place) ? RectOf(place).size() : natural).boundedTo(room.size()).expandedTo(least);
    const QPoint at = anew || IsFirstPlace(place, name) ? FirstPlaceAmong(Others(area, outer), size, room)
                                                        : RectOf(place).topLeft();
    return {QPoint(std::clamp(at.x(), room.left(), std::max(room.left(), room.right() - size.width() + 1)),
                   std::clamp(at.y(), room.top(), std::max(room.top(), room.bottom() - size.height() + 1))),
            size};
}

}  // namespace

void PlaceFrame(QMainWindow& frame) {
    const QScreen* screen = frame.screen();
    const auto stored = StoredFrame();
    if (stored)
        if (const QScreen* its = QGuiApplication::screenAt(stored->center())) screen = its;
    const QRect room = screen->availableGeometry() - kFrameBorders;
    const QRect place = stored ? Inside(*stored, room) : Middle(room.size().boundedTo(kLargestFrame), room);
    frame.setGeometry(place);
    if (Stored(kMaximisedKey) == "True") frame.setWindowState(Qt::WindowMaximized);
    // The window manager has put its borders on once the first events have been served.
    constexpr int kUntilBorders_ms = 100;
    QTimer::singleShot(kUntilBorders_ms, &frame, [&frame] { KeepBordersOnScreen(frame); });
}

void StoreFrame(const QMainWindow& frame) {
    const bool whole = frame.isMaximized() || frame.isFullScreen();
    // Both count without the borders.
    const QRect normal = frame.normalGeometry();
    const QRect place = (whole || frame.isMinimized()) && normal.isValid() ? normal : frame.geometry();
    const std::array<int, kFrameKeys.size()> values = {place.left(), place.top(), place.width(),
                                                       place.height()};
    std::vector<IniLine> lines;
    for (std::size_t i = 0; i < values.size(); ++i)
        lines.push_back({kSection, kFrameKeys[i], std::to_string(values[i] * kTwips)});
    lines.push_back({kSection, kMaximisedKey, whole ? "True" : "False"});
    IniWerteSchreiben(lines);
}

void PlaceChild(const WindowEntry& window, QWidget& form, QWidget& outer, const QMdiArea& area) {
    // A form whose table would like more room than tables ask for says so itself.
    const QSize natural = outer.sizeHint().expandedTo(form.property("natural").toSize());
    const QRect place =
        ChildRect(window.State->Place, window.Name, natural, form.minimumSizeHint(), &outer, area, false);
    const bool middle = form.property("middle").toBool();
    outer.setGeometry(middle ? Middle(place.size(), area.viewport()->rect()) : place);
}

QRect ScreenPlace(const WindowPlace& place, std::string_view name, bool first, const QWidget* outer,
                  const QMdiArea& area) {
    const QSize room = area.viewport()->size();
    const QSize natural =
        QSize(static_cast<int>(room.width() * kShareOfScreen), room.height()).boundedTo(kLargestScreen);
    const bool own = !IsFirstPlace(place, name);
    return ChildRect(own ? place : WindowPlace{}, name, natural, kLeastScreen, outer, area, !first || !own);
}

void PlaceDialog(const WindowEntry& window, QWidget& form, QWidget& outer, const QWidget& frame,
                 bool beside) {
    const WindowPlace& place = window.State->Place;
    const bool first = IsFirstPlace(place, window.Name) || !HasSize(place);
    // Texts that came into a form that was not yet shown have reached the innermost layouts alone.
    for (QLayout* layout : outer.findChildren<QLayout*>()) layout->invalidate();
    const QSize least = form.minimumSizeHint();
    // The width that the form was drawn in, and the height that its content takes in it.
    const QSize natural = outer.sizeHint().expandedTo({form.width(), 0}).expandedTo(least);
    QRect own = Middle(natural, frame.geometry());
    if (beside) own.moveBottomRight(frame.geometry().bottomRight());
    const QRect rect = first ? own : QRect(RectOf(place).topLeft(), RectOf(place).size().expandedTo(least));
    const QScreen* screen = QGuiApplication::screenAt(rect.center());
    const QRect fitting = Inside(rect, RoomOf(screen != nullptr ? *screen : *frame.screen()));
    outer.resize(fitting.size());
    outer.move(fitting.topLeft());
}

void TakePlace(const WindowEntry& window, const QWidget& outer) {
    if (outer.isMinimized() || outer.isMaximized()) return;
    window.State->Place = {outer.x() * kTwips, outer.y() * kTwips, outer.width() * kTwips,
                           outer.height() * kTwips};
}

}  // namespace corvinade::ui
