// A surface that keeps what is drawn on it as strokes, for a page of a PDF file.
#include "paint/page_surface.h"

#include <QBuffer>
#include <QColor>
#include <QFont>
#include <QFontMetricsF>
#include <QMarginsF>
#include <QPageSize>
#include <QPainter>
#include <QPainterPath>
#include <QPdfWriter>
#include <cmath>
#include <functional>
#include <memory>
#include <vector>

#include "fit/require.h"
#include "graphics/point_loop.h"
#include "graphics/scene.h"
#include "paint/gui.h"
#include "paint/picture.h"

namespace corvinade::paint {

namespace {

constexpr int kDots = 1200;  // of the page, an inch
constexpr double kInch_mm = 25.4;
constexpr double kFarAway = 20000;  // pixels; what lies farther outside is nothing that a page can count
constexpr double kPixelsOfPoint = 96.0 / 72;

struct PageSheet {
    std::vector<std::function<void(QPainter&)>> Strokes;
    Colour Background = 0;
};

PageSheet& SheetOf(const Surface& screen) {
    return *static_cast<PageSheet*>(screen.Own);
}

QColor ColourOf(Colour colour) {
    return QColor::fromRgb(PixelOf(colour));
}

bool IsNear(const Surface& screen, double x, double y) {
    return x > -kFarAway && y > -kFarAway && x < screen.Width + kFarAway && y < screen.Height + kFarAway;
}

QPen PenOf(Colour colour, double width) {
    QPen pen(ColourOf(colour), width);
    pen.setCapStyle(Qt::FlatCap);
    return pen;
}

QFont FontOf(const TextFont& font) {
    QFont made(QString::fromStdString(font.Name.empty() ? "DejaVu Sans" : font.Name));
    made.setPixelSize(std::max(1, static_cast<int>(std::lround(font.Size * kPixelsOfPoint))));
    made.setBold(font.Bold);
    made.setItalic(font.Italic);
    made.setUnderline(font.Underline);
    made.setStrikeOut(font.Strikethrough);
    return made;
}

// Letters that stand out from what they lie on, where `edge` is a colour.
void Write(QPainter& painter, QPointF base, const QString& text, const QFont& font, Colour colour,
           Colour edge) {
    if (edge != kNoFill) {
        QPainterPath path;
        path.addText(base, font, text);
        painter.strokePath(path, QPen(ColourOf(edge), 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    }
    painter.setFont(font);
    painter.setPen(ColourOf(colour));
    painter.drawText(base, text);
}

void WriteLabel(QPainter& painter, const ScreenLabel& label, const TextFont& font, Colour ground) {
    if (!label.Visible || label.Text.empty()) return;
    const QFont letters = FontOf(font);
    const double ascent = QFontMetricsF(letters).ascent();
    Write(painter, QPointF(label.X, label.Y + ascent), QString::fromStdString(label.Text), letters,
          label.ForeColor, ground);
}

void Clear(Surface& screen, Colour background) {
    SheetOf(screen) = {{}, background};
}

// As in the pictures, a whole number is the middle of a pixel.
constexpr double kMiddle = 0.5;

void DrawLine(Surface& screen, float x1, float y1, float x2, float y2, Colour colour, int width) {
    if (!IsNear(screen, x1, y1) || !IsNear(screen, x2, y2)) return;
    const QLineF line(x1 + kMiddle, y1 + kMiddle, x2 + kMiddle, y2 + kMiddle);
    const QPen pen = PenOf(colour, std::max(width, 1));
    SheetOf(screen).Strokes.emplace_back([line, pen](QPainter& painter) {
        painter.setPen(pen);
        painter.drawLine(line);
    });
}

void DrawCircle(Surface& screen, float x, float y, float radius, Colour colour, Colour fill, int width) {
    if (!IsNear(screen, x, y) || !(radius >= 0 && radius <= kFarAway)) return;
    SheetOf(screen).Strokes.emplace_back([=](QPainter& painter) {
        painter.setPen(PenOf(colour, std::max(width, 1)));
        painter.setBrush(fill == kNoFill ? QBrush(Qt::NoBrush) : QBrush(ColourOf(fill)));
        painter.drawEllipse(QPointF(x + kMiddle, y + kMiddle), radius, radius);
    });
}

void DrawText(Surface& screen, float x, float y, const std::string& text, Colour colour) {
    const ScreenLabel label{text, x, y, colour, true};
    const TextFont font = screen.Font;
    const Colour ground = SheetOf(screen).Background;
    SheetOf(screen).Strokes.emplace_back(
        [=](QPainter& painter) { WriteLabel(painter, label, font, ground); });
}

void FillRectangle(Surface& screen, float x, float y, float width, float height, Colour colour) {
    if (!IsNear(screen, x, y) || !(width > 0) || !(height > 0)) return;
    const QRectF rect(x, y, width, height);
    SheetOf(screen).Strokes.emplace_back(
        [rect, colour](QPainter& painter) { painter.fillRect(rect, ColourOf(colour)); });
}

void DrawTextInFont(Surface& screen, float x, float y, const std::string& text, Colour colour,
                    const TextFont& font) {
    if (!IsNear(screen, x, y)) return;
    SheetOf(screen).Strokes.emplace_back([=](QPainter& painter) {
        const QFont letters = FontOf(font);
        Write(painter, QPointF(x, y + QFontMetricsF(letters).ascent()), QString::fromStdString(text), letters,
              colour, kNoFill);
    });
}

void DrawRule(Surface& screen, double x1, double y1, double x2, double y2, Colour colour) {
    if (!IsNear(screen, x1, y1) || !IsNear(screen, x2, y2)) return;
    SheetOf(screen).Strokes.emplace_back([=](QPainter& painter) {
        painter.setPen(PenOf(colour, 1));
        painter.drawLine(QPointF(x1, y1), QPointF(x2, y2));
    });
}

void DrawFrame(Surface& screen, double left, double top, double right, double bottom, Colour colour) {
    DrawRule(screen, left, top, right, top, colour);
    DrawRule(screen, left, bottom, right, bottom, colour);
    DrawRule(screen, left, top, left, bottom, colour);
    DrawRule(screen, right, top, right, bottom, colour);
}

void DrawLineText(Surface& screen, double x, double y, TextAnchor anchor, const std::string& text,
                  Colour colour, const TextFont& font) {
    if (!IsNear(screen, x, y)) return;
    SheetOf(screen).Strokes.emplace_back([=](QPainter& painter) {
        const QFont letters = FontOf(font);
        const QString words = QString::fromStdString(text);
        const double share = anchor == TextAnchor::Start ? 0 : anchor == TextAnchor::Middle ? 0.5 : 1;
        const double width = QFontMetricsF(letters).horizontalAdvance(words);
        Write(painter, QPointF(x - share * width, y), words, letters, colour, kNoFill);
    });
}

void DrawSpot(Surface& screen, double x, double y, double radius, Colour colour,
              const std::string& /*words*/) {
    if (!IsNear(screen, x, y) || !(radius >= 0 && radius <= kFarAway)) return;
    SheetOf(screen).Strokes.emplace_back([=](QPainter& painter) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(ColourOf(colour));
        painter.drawEllipse(QPointF(x, y), radius, radius);
    });
}

// A row of marks side by side is a line with round ends.
void DrawSpots(Surface& screen, std::span<const SpotRow> rows, double radius, Colour colour) {
    std::vector<QLineF> lines;
    for (const SpotRow& row : rows)
        if (IsNear(screen, row.X, row.Y) && std::isfinite(row.Length))
            lines.emplace_back(row.X, row.Y, row.X + std::max(row.Length, 0.01), row.Y);
    SheetOf(screen).Strokes.emplace_back([lines = std::move(lines), radius, colour](QPainter& painter) {
        QPen pen(ColourOf(colour), 2 * radius);
        pen.setCapStyle(Qt::RoundCap);
        painter.setPen(pen);
        painter.drawLines(lines.data(), static_cast<int>(lines.size()));
    });
}

void Close(Surface& screen) {
    const std::unique_ptr<PageSheet> gone(static_cast<PageSheet*>(screen.Own));
    screen = Surface{};
}

// Points that a picture sets pixel by pixel.
void PaintSmallPoints(QPainter& painter, const ScreenWindow& window) {
    if (window.State.BigNess > kLargestSquare) return;
    const double side = 2.0 * SquareRadius(window.State.BigNess) + 1;
    for (std::size_t row = 1; row <= static_cast<std::size_t>(Scene.Rows) && row < Scene.Paint.size();
         ++row) {
        const double x = Scene.PixelX[row], y = Scene.PixelY[row];
        const bool inside =
            x > -side && y > -side && x < window.Screen.Width + side && y < window.Screen.Height + side;
        if (Scene.Paint[row] == 0 || !inside) continue;
        painter.fillRect(QRectF(x + kMiddle - side / 2, y + kMiddle - side / 2, side, side),
                         QColor::fromRgb(Scene.Paint[row]));
    }
}

std::string Page(const Surface& screen, double width_mm, double height_mm, const std::string& title,
                 const std::function<void(QPainter&)>& before, const std::function<void(QPainter&)>& behind) {
    Require(screen.Close == Close);
    EnsureGui();
    const PageSheet& sheet = SheetOf(screen);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    {
        QPdfWriter writer(&buffer);
        writer.setResolution(kDots);
        writer.setPageSize(
            QPageSize(QSizeF(width_mm, height_mm), QPageSize::Millimeter, QString(), QPageSize::ExactMatch));
        writer.setPageMargins(QMarginsF(0, 0, 0, 0));
        writer.setTitle(QString::fromStdString(title));
        writer.setCreator(QStringLiteral("Corvinade"));
        QPainter painter(&writer);
        painter.scale(width_mm / kInch_mm * kDots / screen.Width,
                      height_mm / kInch_mm * kDots / screen.Height);
        const QRectF whole(0, 0, screen.Width, screen.Height);
        painter.setClipRect(whole);
        painter.fillRect(whole, ColourOf(sheet.Background));
        before(painter);
        for (const auto& stroke : sheet.Strokes) stroke(painter);
        behind(painter);
    }
    return buffer.data().toStdString();
}

}  // namespace

void FillSurfaceWithPage(Surface& screen) {
    EnsureGui();
    screen.Clear = Clear;
    screen.Line = DrawLine;
    screen.Circle = DrawCircle;
    screen.Text = DrawText;
    screen.Fill = FillRectangle;
    screen.FontText = DrawTextInFont;
    screen.FontWidth = FontTextWidth;
    screen.FontHeight = FontTextHeight;
    screen.Rule = DrawRule;
    screen.Frame = DrawFrame;
    screen.LineText = DrawLineText;
    screen.Spot = DrawSpot;
    screen.Spots = DrawSpots;
    screen.Close = Close;
    screen.Own = std::make_unique<PageSheet>().release();
}

std::string PageOfWindow(const ScreenWindow& window, double width_mm, double height_mm,
                         const std::string& title) {
    const auto labels = [&window](QPainter& painter) {
        for (const ScreenLabel& label : window.Labels)
            WriteLabel(painter, label, window.LabelFont, window.BackColor);
        WriteLabel(painter, window.LabelScale, window.LabelFont, window.BackColor);
        WriteLabel(painter, window.LabelVectorScale, window.LabelFont, window.BackColor);
    };
    return Page(
        window.Screen, width_mm, height_mm, title,
        [&window](QPainter& painter) { PaintSmallPoints(painter, window); }, labels);
}

std::string PageOfPlot(const Surface& screen, double width_mm, double height_mm, const std::string& title) {
    return Page(
        screen, width_mm, height_mm, title, [](QPainter&) {}, [](QPainter&) {});
}

}  // namespace corvinade::paint
