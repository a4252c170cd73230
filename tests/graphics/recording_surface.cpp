// A surface that notes what is drawn on it.
#include "graphics/recording_surface.h"

#include <algorithm>
#include <cmath>
#include <memory>

using namespace corvinade;

namespace {

Recording& Notes(Surface& screen) {
    return *static_cast<Recording*>(screen.Own);
}

void NoteClear(Surface& screen, Colour background) {
    for (int row = 0; row < screen.PixelHeight; ++row)
        std::fill_n(screen.Pixels + row * screen.Stride, screen.PixelWidth, PixelOf(background));
    Notes(screen).Operations.push_back({.Kind = Stroke::Clear, .Colour1 = background});
}

void NoteLine(Surface& screen, float x1, float y1, float x2, float y2, Colour colour, int width) {
    Notes(screen).Operations.push_back(
        {.Kind = Stroke::Line, .X1 = x1, .Y1 = y1, .X2 = x2, .Y2 = y2, .Colour1 = colour, .Width = width});
}

void NoteCircle(Surface& screen, float x, float y, float radius, Colour colour, Colour fill, int width) {
    Notes(screen).Operations.push_back({.Kind = Stroke::Circle,
                                        .X1 = x,
                                        .Y1 = y,
                                        .Radius = radius,
                                        .Colour1 = colour,
                                        .Fill = fill,
                                        .Width = width});
}

void NoteText(Surface& screen, float x, float y, const std::string& text, Colour colour) {
    Notes(screen).Operations.push_back(
        {.Kind = Stroke::Text, .X1 = x, .Y1 = y, .Colour1 = colour, .Text = text});
}

void NoteFill(Surface& screen, float x, float y, float width, float height, Colour colour) {
    const auto edge = [](double place, int end) {
        return std::clamp(static_cast<int>(std::lround(place * RecordingScale)), 0, end);
    };
    const int left = edge(x, screen.PixelWidth), right = edge(x + width, screen.PixelWidth);
    const int bottom = edge(y + height, screen.PixelHeight);
    for (int row = edge(y, screen.PixelHeight); row < bottom; ++row)
        std::fill_n(screen.Pixels + row * screen.Stride + left, std::max(0, right - left), PixelOf(colour));
    Notes(screen).Operations.push_back(
        {.Kind = Stroke::Fill, .X1 = x, .Y1 = y, .X2 = x + width, .Y2 = y + height, .Colour1 = colour});
}

void NoteFontText(Surface& screen, float x, float y, const std::string& text, Colour colour,
                  const TextFont& /*font*/) {
    NoteText(screen, x, y, text, colour);
}

void NoteRefresh(Surface& screen) {
    Notes(screen).Operations.push_back({.Kind = Stroke::Refresh});
}

void EndRecording(Surface& screen) {
    const std::unique_ptr<Recording> gone(static_cast<Recording*>(screen.Own));
    screen = Surface{};
}

}  // namespace

void FillSurfaceWithRecording(Surface& screen) {
    auto notes = std::make_unique<Recording>();
    screen.Scale = RecordingScale;
    screen.PixelWidth = static_cast<int>(std::ceil(screen.Width * RecordingScale));
    screen.PixelHeight = static_cast<int>(std::ceil(screen.Height * RecordingScale));
    screen.Stride = screen.PixelWidth + 2 * kGuard;
    notes->Memory.assign(
        static_cast<std::size_t>(screen.Stride) * static_cast<std::size_t>(screen.PixelHeight + 2 * kGuard),
        kUntouched);
    screen.Pixels = notes->Memory.data() + kGuard * screen.Stride + kGuard;
    screen.Clear = NoteClear;
    screen.Line = NoteLine;
    screen.Circle = NoteCircle;
    screen.Text = NoteText;
    screen.Fill = NoteFill;
    screen.FontText = NoteFontText;
    screen.Refresh = NoteRefresh;
    screen.Close = EndRecording;
    screen.Own = notes.release();
}

Recording& RecordingOf(const ScreenWindow& window) {
    return *static_cast<Recording*>(window.Screen.Own);
}

bool GuardIsUntouched(const ScreenWindow& window) {
    const Surface& screen = window.Screen;
    const std::vector<std::uint32_t>& memory = RecordingOf(window).Memory;
    for (std::size_t i = 0; i < memory.size(); ++i) {
        const auto row = static_cast<int>(i / static_cast<std::size_t>(screen.Stride)) - kGuard;
        const auto column = static_cast<int>(i % static_cast<std::size_t>(screen.Stride)) - kGuard;
        const bool inside = row >= 0 && row < screen.PixelHeight && column >= 0 && column < screen.PixelWidth;
        if (!inside && memory[i] != kUntouched) return false;
    }
    return true;
}

std::uint32_t PixelAt(const ScreenWindow& window, int column, int row) {
    return window.Screen.Pixels[row * window.Screen.Stride + column];
}

int CountPixels(const ScreenWindow& window, Colour colour) {
    int count = 0;
    for (int row = 0; row < window.Screen.PixelHeight; ++row)
        for (int column = 0; column < window.Screen.PixelWidth; ++column)
            count += PixelAt(window, column, row) == PixelOf(colour) ? 1 : 0;
    return count;
}

std::vector<Operation> OperationsOf(const ScreenWindow& window, Stroke kind) {
    std::vector<Operation> found;
    for (const Operation& operation : RecordingOf(window).Operations)
        if (operation.Kind == kind) found.push_back(operation);
    return found;
}

std::vector<Operation> LinesOf(const ScreenWindow& window, Colour colour) {
    std::vector<Operation> found;
    for (const Operation& operation : OperationsOf(window, Stroke::Line))
        if (operation.Colour1 == colour) found.push_back(operation);
    return found;
}
