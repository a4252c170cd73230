// Letters as masks, drawn once by QPainter for each size and copied with the colour of the label.
#include "paint/label_text.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPainter>
#include <QString>
#include <QStringList>
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <list>
#include <unordered_map>
#include <utility>
#include <vector>

#include "paint/gui.h"
#include "paint/picture.h"

namespace corvinade::paint {

namespace {

constexpr double kPixelsToPoint = 4.0 / 3;  // logical ones
constexpr std::size_t kMostFonts = 16;      // that are kept
constexpr int kEdge = 1;                    // pixels of the edge around the letters
constexpr int kEdgeStrength = 170;          // of 255
constexpr char16_t kLastSimple = 0x24f;     // letters up to here stand side by side; others are set by Qt
constexpr std::size_t kMostTexts = 4096;    // that are kept whole
constexpr qsizetype kLongestText = 1000;    // letters; no picture is so wide

// How much of each pixel the letter covers, and its edge, 0 to 255, row by row.
struct Mask {
    int Left = 0, Top = 0, Width = 0, Height = 0;  // place relative to the pen on top of the line
    int Advance = 0;
    std::vector<std::uint8_t> Letter, Edge;
};

struct FontMasks {
    QFont Font;
    QFontMetricsF Metrics;
    std::unordered_map<char16_t, Mask> Letters;
    std::unordered_map<std::string, Mask> Texts;
};

QFont FontOf(const TextFont& wanted, int pixels) {
    QStringList families = {"DejaVu Sans", "Verdana", "Arial"};
    if (!wanted.Name.empty()) families.prepend(QString::fromStdString(wanted.Name));
    QFont font;
    font.setFamilies(families);
    font.setBold(wanted.Bold);
    font.setItalic(wanted.Italic);
    font.setUnderline(wanted.Underline);
    font.setStrikeOut(wanted.Strikethrough);
    font.setStyleHint(QFont::SansSerif);
    font.setPixelSize(pixels);
    font.setHintingPreference(QFont::PreferFullHinting);
    font.setStyleStrategy(QFont::NoSubpixelAntialias);
    font.setKerning(false);
    return font;
}

// The masks of a font in the size that it has on the picture; good until the next call.
FontMasks& MasksOf(const TextFont& wanted, double scale) {
    struct Kept {
        TextFont Font;
        int Pixels;
        FontMasks Masks;
    };
    static std::list<Kept> kept;  // the last asked for first
    EnsureGui();
    const float points =
        wanted.Size >= kLeastFontSize ? std::min(wanted.Size, kLargestFontSize) : kLeastFontSize;
    const int pixels = std::max(1, static_cast<int>(std::lround(points * kPixelsToPoint * scale)));
    const auto found = std::find_if(kept.begin(), kept.end(), [&](const Kept& one) {
        return one.Pixels == pixels && one.Font == wanted;
    });
    if (found != kept.end()) {
        kept.splice(kept.begin(), kept, found);
        return kept.front().Masks;
    }
    if (kept.size() >= kMostFonts) kept.pop_back();
    const QFont font = FontOf(wanted, pixels);
    kept.push_front({wanted, pixels, {font, QFontMetricsF(font), {}, {}}});
    return kept.front().Masks;
}

// Every pixel of the edge is as strong as the strongest of the letter within one pixel of it.
std::vector<std::uint8_t> EdgeOf(const Mask& mask) {
    std::vector<std::uint8_t> edge(mask.Letter.size());
    const auto place = [&mask](int column, int row) {
        return static_cast<std::size_t>(row) * static_cast<std::size_t>(mask.Width) +
               static_cast<std::size_t>(column);
    };
    for (int row = 0; row < mask.Height; ++row)
        for (int column = 0; column < mask.Width; ++column) {
            int strongest = 0;
            for (int y = std::max(0, row - kEdge); y <= std::min(mask.Height - 1, row + kEdge); ++y)
                for (int x = std::max(0, column - kEdge); x <= std::min(mask.Width - 1, column + kEdge); ++x)
                    strongest = std::max<int>(strongest, mask.Letter[place(x, y)]);
            edge[place(column, row)] = static_cast<std::uint8_t>(strongest * kEdgeStrength / 255);
        }
    return edge;
}

Mask DrawMask(const FontMasks& font, const QString& text) {
    Mask mask;
    const double advance = font.Metrics.horizontalAdvance(text);
    mask.Advance = static_cast<int>(std::lround(advance));
    const int beside = static_cast<int>(std::ceil(font.Metrics.height() / 3)) + kEdge;
    mask.Left = -beside;
    mask.Top = -kEdge;
    mask.Width = static_cast<int>(std::ceil(advance)) + 2 * beside;
    mask.Height = static_cast<int>(std::ceil(font.Metrics.height())) + 2 * kEdge;
    QImage image(mask.Width, mask.Height, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setFont(font.Font);
    painter.setPen(Qt::white);
    painter.drawText(QPointF(beside, kEdge + std::round(font.Metrics.ascent())), text);
    painter.end();
    for (int row = 0; row < mask.Height; ++row) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(row));
        for (int column = 0; column < mask.Width; ++column)
            mask.Letter.push_back(static_cast<std::uint8_t>(qAlpha(line[column])));
    }
    mask.Edge = EdgeOf(mask);
    return mask;
}

// Columns and rows that hold nothing are cut off: most of what was left around a letter.
Mask Trimmed(const Mask& mask) {
    int left = mask.Width, right = -1, top = mask.Height, bottom = -1;
    const auto width = static_cast<std::size_t>(mask.Width);
    for (std::size_t i = 0; i < mask.Edge.size(); ++i) {
        if (mask.Edge[i] == 0) continue;
        const int column = static_cast<int>(i % width), row = static_cast<int>(i / width);
        left = std::min(left, column);
        right = std::max(right, column);
        top = std::min(top, row);
        bottom = std::max(bottom, row);
    }
    Mask small;
    small.Advance = mask.Advance;
    if (right < left) return small;
    small.Left = mask.Left + left;
    small.Top = mask.Top + top;
    small.Width = right - left + 1;
    small.Height = bottom - top + 1;
    for (int row = top; row <= bottom; ++row)
        for (int column = left; column <= right; ++column) {
            const std::size_t place =
                static_cast<std::size_t>(row) * width + static_cast<std::size_t>(column);
            small.Letter.push_back(mask.Letter[place]);
            small.Edge.push_back(mask.Edge[place]);
        }
    return small;
}

const Mask& LetterMask(FontMasks& font, char16_t letter) {
    const auto found = font.Letters.find(letter);
    if (found != font.Letters.end()) return found->second;
    return font.Letters.emplace(letter, Trimmed(DrawMask(font, QString(QChar(letter))))).first->second;
}

const Mask& TextMask(FontMasks& font, const std::string& text, const QString& letters) {
    const auto found = font.Texts.find(text);
    if (found != font.Texts.end()) return found->second;
    if (font.Texts.size() >= kMostTexts) font.Texts.clear();
    return font.Texts.emplace(text, Trimmed(DrawMask(font, letters))).first->second;
}

struct PlacedMask {
    const Mask* What;
    int X;  // of the pen
};

// The masks of a text, from the pen at 0, and its width.
int SetText(FontMasks& font, const std::string& text, std::vector<PlacedMask>& placed) {
    const QString letters = QString::fromStdString(text).left(kLongestText);
    const bool simple = std::all_of(letters.begin(), letters.end(),
                                    [](QChar letter) { return letter.unicode() <= kLastSimple; });
    placed.clear();
    if (!simple) {
        const Mask& mask = TextMask(font, text, letters);
        placed.push_back({&mask, 0});
        return mask.Advance;
    }
    int x = 0;
    for (const QChar letter : letters) {
        const Mask& mask = LetterMask(font, letter.unicode());
        placed.push_back({&mask, x});
        x += mask.Advance;
    }
    return x;
}

QRgb Blend(QRgb below, QRgb above, unsigned strength) {
    // Red with blue, and green, each with room for its product.
    const unsigned kept = 255 - strength;
    unsigned redBlue = (below & 0xff00ffU) * kept + (above & 0xff00ffU) * strength + 0x800080U;
    unsigned green = (below >> 8U & 0xffU) * kept + (above >> 8U & 0xffU) * strength + 0x80U;
    redBlue = (redBlue + (redBlue >> 8U & 0xff00ffU)) >> 8U & 0xff00ffU;
    green = (green + (green >> 8U)) >> 8U & 0xffU;
    return 0xff000000U | redBlue | green << 8U;
}

void Stamp(QImage& picture, const Mask& mask, const std::vector<std::uint8_t>& strengths, int x, int y,
           QRgb colour) {
    const int left = x + mask.Left, top = y + mask.Top;
    const int firstColumn = std::max(0, -left), endColumn = std::min(mask.Width, picture.width() - left);
    const int firstRow = std::max(0, -top), endRow = std::min(mask.Height, picture.height() - top);
    if (firstRow >= endRow || firstColumn >= endColumn) return;
    // Asked for once: each row by itself would take as long as its letters.
    auto* const pixels = reinterpret_cast<QRgb*>(picture.bits());
    const std::ptrdiff_t stride = picture.bytesPerLine() / static_cast<std::ptrdiff_t>(sizeof(QRgb));
    for (int row = firstRow; row < endRow; ++row) {
        QRgb* const line = pixels + (top + row) * stride + left;
        const std::uint8_t* strength =
            strengths.data() + static_cast<std::ptrdiff_t>(row) * static_cast<std::ptrdiff_t>(mask.Width);
        for (int column = firstColumn; column < endColumn; ++column)
            if (strength[column] != 0) line[column] = Blend(line[column], colour, strength[column]);
    }
}

// Letters alone, from the pen at (left, top) in pixels of the picture. Not where that is far outside, or no
// place at all.
void StampLetters(QImage& picture, const std::vector<PlacedMask>& placed, double left, double top,
                  QRgb colour) {
    if (!(std::abs(left) < 1e6 && std::abs(top) < 1e6)) return;
    const int penX = static_cast<int>(left), penY = static_cast<int>(top);
    for (const PlacedMask& mask : placed)
        Stamp(picture, *mask.What, mask.What->Letter, penX + mask.X, penY, colour);
}

}  // namespace

void DrawLabelText(QImage& picture, double scale, float x, float y, const std::string& text,
                   const TextFont& textFont, QRgb colour, QRgb behind) {
    const double left = std::round(x * scale), top = std::round(y * scale);
    // Far outside, or no place at all.
    if (!(std::abs(left) < 1e6 && std::abs(top) < 1e6)) return;
    static std::vector<PlacedMask> placed;
    SetText(MasksOf(textFont, scale), text, placed);
    const int penX = static_cast<int>(left), penY = static_cast<int>(top);
    // All edges first: the edge of a letter must not cut into the one before it.
    for (const PlacedMask& mask : placed)
        Stamp(picture, *mask.What, mask.What->Edge, penX + mask.X, penY, behind);
    for (const PlacedMask& mask : placed)
        Stamp(picture, *mask.What, mask.What->Letter, penX + mask.X, penY, colour);
}

void DrawFontText(QImage& picture, double scale, float x, float y, const std::string& text, QRgb colour,
                  const TextFont& font) {
    static std::vector<PlacedMask> placed;
    SetText(MasksOf(font, scale), text, placed);
    StampLetters(picture, placed, std::round(x * scale), std::round(y * scale), colour);
}

void DrawTextOnLine(QImage& picture, double scale, double x, double y, double share, const std::string& text,
                    QRgb colour, const TextFont& font) {
    FontMasks& masks = MasksOf(font, scale);
    const Mask& whole = TextMask(masks, text, QString::fromStdString(text).left(kLongestText));
    StampLetters(picture, {{&whole, 0}}, std::round(x * scale - share * whole.Advance),
                 std::round(y * scale) - std::round(masks.Metrics.ascent()), colour);
}

double FontTextWidth(const TextFont& font, const std::string& text) {
    std::vector<PlacedMask> placed;
    return SetText(MasksOf(font, 1), text, placed);
}

double FontTextHeight(const TextFont& font) {
    return std::ceil(MasksOf(font, 1).Metrics.height());
}

}  // namespace corvinade::paint
