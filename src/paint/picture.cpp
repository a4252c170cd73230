// The table of drawing functions of a surface on a QImage.
#include "paint/picture.h"

#include <QBuffer>
#include <QByteArray>
#include <QPainter>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <memory>
#include <string>

#include "core/files.h"
#include "core/window.h"
#include "paint/disc_stamp.h"
#include "paint/gui.h"
#include "paint/image.h"
#include "paint/label_text.h"
#include "paint/painted_surface.h"
#include "paint/plot_strokes.h"

namespace corvinade::paint {

QPainter& OpenPainter(const Surface& screen, Picture& picture) {
    if (picture.Painter.isActive()) return picture.Painter;
    picture.Painter.begin(&picture.Image);
    picture.PenWidth = 0;
    if (screen.Scale != 1) {
        picture.Painter.setRenderHint(QPainter::Antialiasing);
        picture.Painter.scale(screen.Scale, screen.Scale);
        // A whole number is the middle of a logical pixel.
        picture.Painter.translate(0.5, 0.5);
    }
    return picture.Painter;
}

namespace {

constexpr int kDotsPerMetre = 3780;  // 96 to the inch

void SetPen(Picture& picture, Colour colour, int width) {
    if (picture.PenColour == colour && picture.PenWidth == width) return;
    picture.PenColour = colour;
    picture.PenWidth = width;
    picture.Painter.setPen(
        QPen(QColor(RgbOf(colour)), width, Qt::SolidLine, width > 1 ? Qt::RoundCap : Qt::SquareCap));
}

void ClearPicture(Surface& screen, Colour background) {
    PictureBehind(screen).Background = background;
    PictureBehind(screen).Image.fill(RgbOf(background));
}

// Moves the end (x, y) of a line to `border` along the line to (otherX, otherY); x first. Reckoned from the
// other end, which is the nearer one where only one of them is far away.
void MoveToBorder(double border, double& x, double& y, double otherX, double otherY) {
    y = otherY + (border - otherX) / (x - otherX) * (y - otherY);
    x = border;
}

// Cuts one coordinate of both ends to low .. high; false where the line passes by.
bool CutToBand(double low, double high, double& x1, double& y1, double& x2, double& y2) {
    if ((x1 < low && x2 < low) || (x1 > high && x2 > high)) return false;
    if (x1 < low || x1 > high) MoveToBorder(x1 < low ? low : high, x1, y1, x2, y2);
    if (x2 < low || x2 > high) MoveToBorder(x2 < low ? low : high, x2, y2, x1, y1);
    return true;
}

// Cuts a line to what is near the picture: places far outside are more than QPainter can count. False where
// nothing of it is near, or its ends are no places at all.
bool CutLine(const Surface& screen, double margin, std::array<double, 4>& line) {
    auto& [x1, y1, x2, y2] = line;
    if (!std::isfinite(x1) || !std::isfinite(y1) || !std::isfinite(x2) || !std::isfinite(y2)) return false;
    return CutToBand(-margin, screen.Width + margin, x1, y1, x2, y2) &&
           CutToBand(-margin, screen.Height + margin, y1, x1, y2, x2);
}

// At a broken scale a line along a row or a column would share pixels of the device with its neighbours, half
// covered by each: lines side by side, as those of the colour bar, would leave dark stripes. So such a line
// covers the whole pixels of the device from its own logical ones to the next.
void DrawAlongPixels(Surface& screen, const std::array<double, 4>& line, Colour colour) {
    const auto [x1, y1, x2, y2] = line;
    const auto edge = [&screen](double logical, int last) {
        return std::clamp(static_cast<int>(std::lround(std::nearbyint(logical) * screen.Scale)), 0, last);
    };
    const int left = edge(std::min(x1, x2), screen.PixelWidth);
    const int right = edge(std::max(x1, x2) + 1, screen.PixelWidth);
    const int top = edge(std::min(y1, y2), screen.PixelHeight);
    const int bottom = edge(std::max(y1, y2) + 1, screen.PixelHeight);
    for (int row = top; row < bottom; ++row)
        std::fill_n(screen.Pixels + row * screen.Stride + left, std::max(0, right - left), PixelOf(colour));
}

void DrawLine(Surface& screen, float x1, float y1, float x2, float y2, Colour colour, int width) {
    Picture& picture = PictureBehind(screen);
    std::array<double, 4> line = {x1, y1, x2, y2};
    if (!CutLine(screen, width + 10.0, line)) return;
    const bool upright = line[0] == line[2] || line[1] == line[3];
    if (screen.Scale != 1 && width <= 1 && upright) return DrawAlongPixels(screen, line, colour);
    QPainter& painter = OpenPainter(screen, picture);
    SetPen(picture, colour, std::max(1, width));
    if (screen.Scale == 1)
        painter.drawLine(QPointF(std::nearbyint(line[0]), std::nearbyint(line[1])).toPoint(),
                         QPointF(std::nearbyint(line[2]), std::nearbyint(line[3])).toPoint());
    else
        painter.drawLine(QPointF(line[0], line[1]), QPointF(line[2], line[3]));
}

bool DrawStampedDisc(Surface& screen, double x, double y, double radius, Colour colour) {
    if (radius * screen.Scale > kLargestStamp) return false;
    // The middle of the logical pixel, in pixels of the device.
    const double shift = screen.Scale == 1 ? 0 : screen.Scale / 2 - 0.5;
    PutStamp(screen, DiscStampOf(radius * screen.Scale, screen.Scale),
             static_cast<int>(std::nearbyint(x * screen.Scale + shift)),
             static_cast<int>(std::nearbyint(y * screen.Scale + shift)), PixelOf(colour));
    return true;
}

void DrawCircle(Surface& screen, float x, float y, float radius, Colour colour, Colour fill, int width) {
    const double reach = static_cast<double>(radius) + width;
    // Also false where one of them is no number.
    const bool near = x >= -reach && x <= screen.Width + reach && y >= -reach && y <= screen.Height + reach;
    if (!near || !(radius >= 0) || !(reach <= kLargestSide)) return;
    if (fill == colour && width == 1 && DrawStampedDisc(screen, x, y, radius, colour)) return;
    Picture& picture = PictureBehind(screen);
    QPainter& painter = OpenPainter(screen, picture);
    SetPen(picture, colour, std::max(1, width));
    painter.setBrush(fill == kNoFill ? QBrush(Qt::NoBrush) : QBrush(QColor(RgbOf(fill))));
    QPointF middle(x, y);
    if (screen.Scale == 1) middle = {std::nearbyint(middle.x()), std::nearbyint(middle.y())};
    painter.drawEllipse(middle, static_cast<double>(radius), static_cast<double>(radius));
}

void DrawText(Surface& screen, float x, float y, const std::string& text, Colour colour) {
    Picture& picture = PictureBehind(screen);
    if (picture.Painter.isActive()) picture.Painter.end();
    DrawLabelText(picture.Image, screen.Scale, x, y, text, screen.Font, RgbOf(colour),
                  RgbOf(picture.Background));
}

void FillRectangle(Surface& screen, float x, float y, float width, float height, Colour colour) {
    Picture& picture = PictureBehind(screen);
    if (picture.Painter.isActive()) picture.Painter.end();
    const auto edge = [&screen](double logical, int last) {
        return static_cast<int>(std::clamp(std::nearbyint(std::nearbyint(logical) * screen.Scale), 0.0,
                                           static_cast<double>(last)));
    };
    if (!std::isfinite(x) || !std::isfinite(y) || !(width > 0) || !(height > 0)) return;
    const int left = edge(x, screen.PixelWidth), top = edge(y, screen.PixelHeight);
    const int right = edge(static_cast<double>(x) + width, screen.PixelWidth);
    const int bottom = edge(static_cast<double>(y) + height, screen.PixelHeight);
    for (int row = top; row < bottom; ++row)
        std::fill_n(screen.Pixels + row * screen.Stride + left, std::max(0, right - left), PixelOf(colour));
}

void DrawTextInFont(Surface& screen, float x, float y, const std::string& text, Colour colour,
                    const TextFont& font) {
    Picture& picture = PictureBehind(screen);
    if (picture.Painter.isActive()) picture.Painter.end();
    DrawFontText(picture.Image, screen.Scale, x, y, text, RgbOf(colour), font);
}

void EndPaint(Surface& screen) {
    Picture& picture = PictureBehind(screen);
    if (picture.Painter.isActive()) picture.Painter.end();
}

void ClosePicture(Surface& screen) {
    EndPaint(screen);
    const std::unique_ptr<Picture> gone(static_cast<Picture*>(screen.Own));
    screen = Surface{};
}

bool IsPicture(const Surface& screen) {
    return screen.Own != nullptr && screen.Close == ClosePicture;
}

void DrawLabel(QImage& image, const ScreenWindow& window, const ScreenLabel& label) {
    if (!label.Visible) return;
    DrawLabelText(image, window.Screen.Scale, label.X, label.Y, label.Text, window.LabelFont,
                  RgbOf(label.ForeColor), RgbOf(window.BackColor));
}

}  // namespace

void FillSurfaceWithPicture(Surface& screen) {
    EnsureGui();
    const auto pixels = [&screen](int logical) {
        return std::clamp(static_cast<int>(std::lround(logical * screen.Scale)), 1, kLargestSide);
    };
    auto picture = std::make_unique<Picture>();
    picture->Image = QImage(pixels(screen.Width), pixels(screen.Height), QImage::Format_RGB32);
    // A picture that finds no memory is none; everything is computed all the same.
    if (picture->Image.isNull()) return;
    picture->Image.fill(Qt::black);
    screen.PixelWidth = picture->Image.width();
    screen.PixelHeight = picture->Image.height();
    screen.Stride = picture->Image.bytesPerLine() / static_cast<std::ptrdiff_t>(sizeof(std::uint32_t));
    screen.Pixels = reinterpret_cast<std::uint32_t*>(picture->Image.bits());
    screen.Clear = ClearPicture;
    screen.Line = DrawLine;
    screen.Circle = DrawCircle;
    screen.Text = DrawText;
    screen.Fill = FillRectangle;
    screen.FontText = DrawTextInFont;
    screen.FontWidth = FontTextWidth;
    screen.FontHeight = FontTextHeight;
    FillSurfaceWithPlotStrokes(screen);
    screen.Refresh = EndPaint;
    screen.Close = ClosePicture;
    screen.Own = picture.release();
}

QImage BarePictureOf(const Surface& screen) {
    if (!IsPicture(screen)) return {};
    QImage image(reinterpret_cast<const uchar*>(screen.Pixels), screen.PixelWidth, screen.PixelHeight,
                 screen.Stride * static_cast<qsizetype>(sizeof(std::uint32_t)), QImage::Format_RGB32);
    image.setDevicePixelRatio(screen.Scale);
    return image;
}

QImage BarePictureOf(const ScreenWindow& window) {
    return BarePictureOf(window.Screen);
}

void PictureInto(QImage& picture, const ScreenWindow& window) {
    const QImage bare = BarePictureOf(window);
    if (bare.isNull() || picture.size() != bare.size() || picture.format() != bare.format()) {
        picture = bare.copy();
    } else {
        for (int row = 0; row < bare.height(); ++row)
            std::copy_n(bare.constScanLine(row), bare.bytesPerLine(), picture.scanLine(row));
        picture.setDevicePixelRatio(bare.devicePixelRatio());
    }
    if (picture.isNull()) return;
    for (const ScreenLabel& label : window.Labels) DrawLabel(picture, window, label);
    DrawLabel(picture, window, window.LabelScale);
    DrawLabel(picture, window, window.LabelVectorScale);
}

QImage PictureOf(const ScreenWindow& window) {
    QImage picture;
    PictureInto(picture, window);
    return picture;
}

namespace {

std::string PngOf(QImage image) {
    // Whatever resolution the screen of this machine claims, the file is the same.
    image.setDotsPerMeterX(kDotsPerMetre);
    image.setDotsPerMeterY(kDotsPerMetre);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    if (image.isNull() || !buffer.open(QIODevice::WriteOnly) || !image.save(&buffer, "PNG")) return "";
    return bytes.toStdString();
}

}  // namespace

std::string PictureBytes(const ScreenWindow& window) {
    return PngOf(PictureOf(window));
}

std::string PictureBytes(const Surface& screen, const std::string& title) {
    QImage image = BarePictureOf(screen).copy();
    image.setText(QStringLiteral("Title"), QString::fromStdString(title));
    return PngOf(std::move(image));
}

bool WritePicture(const ScreenWindow& window, const std::string& path) {
    const std::string bytes = PictureBytes(window);
    if (bytes.empty()) return false;
    WriteFile(path, bytes);
    return true;
}

}  // namespace corvinade::paint
