// Numbers drawn with lines, in any direction.
#include <array>
#include <cmath>
#include <span>
#include <string>
#include <utility>

#include "core/numbers.h"
#include "core/units.h"
#include "graphics/drawing.h"
#include "graphics/projection.h"
#include "graphics/strokes.h"

namespace corvinade::graphics {

namespace {

// Six places that the strokes of a digit run between, three rows of two:  1 2 / 3 4 / 5 6.
struct Node {
    double X, Y;
};
constexpr std::array<Node, 6> kNodes = {{{2, 1}, {6, 1}, {2, 4}, {6, 4}, {2, 7}, {6, 7}}};

using Segment = std::pair<int, int>;
constexpr std::array<Segment, 4> kZero = {{{1, 2}, {2, 6}, {6, 5}, {5, 1}}};
constexpr std::array<Segment, 1> kOne = {{{2, 6}}};
constexpr std::array<Segment, 5> kTwo = {{{1, 2}, {2, 4}, {4, 3}, {3, 5}, {5, 6}}};
constexpr std::array<Segment, 4> kThree = {{{1, 2}, {2, 6}, {6, 5}, {3, 4}}};
constexpr std::array<Segment, 3> kFour = {{{2, 6}, {1, 3}, {3, 4}}};
constexpr std::array<Segment, 5> kFive = {{{1, 2}, {1, 3}, {5, 6}, {4, 6}, {3, 4}}};
constexpr std::array<Segment, 5> kSix = {{{1, 2}, {4, 6}, {5, 6}, {1, 5}, {3, 4}}};
constexpr std::array<Segment, 3> kSeven = {{{1, 2}, {2, 6}, {1, 3}}};  // with its serif
constexpr std::array<Segment, 5> kEight = {{{1, 2}, {2, 6}, {6, 5}, {5, 1}, {3, 4}}};
constexpr std::array<Segment, 5> kNine = {{{1, 2}, {2, 6}, {6, 5}, {1, 3}, {3, 4}}};
constexpr std::array<Segment, 1> kMinus = {{{3, 4}}};

std::span<const Segment> StrokesOf(char c) {
    static constexpr std::array<std::span<const Segment>, 10> kDigits = {kZero, kOne, kTwo,   kThree, kFour,
                                                                         kFive, kSix, kSeven, kEight, kNine};
    if (c >= '0' && c <= '9') return kDigits[static_cast<std::size_t>(c - '0')];
    return c == '-' ? std::span<const Segment>(kMinus) : std::span<const Segment>();
}

bool IsPoint(char c) {
    return c == '.' || c == ',';
}

// Where the nodes of one character lie.
std::array<PicturePoint, 6> Belegung(double x, double y, double size, double angle) {
    const double turn = angle / (180 / 3.1415926535);
    const double sine = std::sin(turn), cosine = std::cos(turn);
    std::array<PicturePoint, 6> places;
    for (std::size_t i = 0; i < kNodes.size(); ++i) {
        const double nodeX = Round(kNodes[i].X * size), nodeY = Round(kNodes[i].Y * size);
        places[i] = {Round(nodeX * cosine - nodeY * sine) + x, Round(nodeX * sine + nodeY * cosine) + y};
    }
    return places;
}

double StepOf(char c, double size) {
    return size * (IsPoint(c) ? 2 : c == '-' ? 3 : 6);
}

}  // namespace

double NumberLength(double value, float size) {
    double length = 0;
    for (const char c : FormatNumber(value, Units.FmtLength)) length += StepOf(c, size);
    return length;
}

void Plot_Number(ScreenWindow& window, double value, float x, float y, float size, double angle,
                 Colour colour) {
    // Also left out: places that are no numbers.
    if (!(std::abs(x) <= 1.1 * PictureWidth(window)) || !(std::abs(y) <= 1.1 * PictureHeight(window))) return;
    Surface& screen = window.Screen;
    const int width = size < 1 ? 1 : static_cast<int>(Round(size));
    const double along = angle / 57.2957;
    double penX = x, penY = y;
    for (const char c : FormatNumber(value, Units.FmtLength)) {
        const std::array<PicturePoint, 6> nodes = Belegung(penX, penY, size, angle);
        for (const auto& [from, to] : StrokesOf(c))
            DrawStroke(screen, nodes[static_cast<std::size_t>(from - 1)],
                       nodes[static_cast<std::size_t>(to - 1)], colour, width);
        if (IsPoint(c) && screen.Circle != nullptr)
            screen.Circle(screen, static_cast<float>(nodes[4].X), static_cast<float>(nodes[4].Y), 0.3F * size,
                          colour, colour, width);
        const double step = StepOf(c, size);
        penX += step * std::cos(along);
        penY += step * std::sin(along);
    }
}

}  // namespace corvinade::graphics
