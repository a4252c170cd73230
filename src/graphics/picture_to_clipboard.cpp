// The picture of the window on top, on white and with its labels, to the clipboard.
#include <algorithm>
#include <cmath>

#include "core/platform.h"
#include "core/window.h"
#include "graphics/drawing.h"

namespace corvinade::graphics {

namespace {

constexpr const char* kStamp = "calculated with https://corvinade.example";
constexpr int kShortWait_ms = 20;
constexpr int kMargin = 3, kMargins = 5;  // pixels: at the upper left, and in all
constexpr float kStampPlace = 5;

// Puts a window back as it was before it became a picture, unless it has gone meanwhile.
class AsBefore {
public:
    explicit AsBefore(ScreenWindow& window)
        : window_(window), id_(window.Id), back_(window.BackColor), bar_(window.StatusBarVisible) {}
    ~AsBefore() {
        if (!ScreenIsOpen(id_)) return;
        window_.BackColor = back_;
        window_.StatusBarVisible = bar_;
        try {
            Stelle_Grafik_dar(window_);
        } catch (const PlatformError&) {
            // The next paint begins from nothing.
        }
    }
    AsBefore(const AsBefore&) = delete;
    AsBefore& operator=(const AsBefore&) = delete;

private:
    ScreenWindow& window_;
    std::uint64_t id_;
    Colour back_;
    bool bar_;
};

void WriteLabels(ScreenWindow& window) {
    Surface& screen = window.Screen;
    if (screen.Text == nullptr) return;
    screen.Font = window.LabelFont;
    const auto write = [&screen](const ScreenLabel& label) {
        if (label.Visible) screen.Text(screen, label.X, label.Y, label.Text, label.ForeColor);
    };
    std::for_each(window.Labels.begin(), window.Labels.end(), write);
    write(window.LabelScale);
    write(window.LabelVectorScale);
    if (screen.Refresh != nullptr) screen.Refresh(screen);
}

// The picture without its margins; one that is all margin goes as it is.
bool HandOver(const Surface& screen) {
    if (screen.Pixels == nullptr) return false;
    const auto device = [&screen](int logical) {
        return static_cast<int>(std::lround(logical * screen.Scale));
    };
    const int width = screen.PixelWidth - device(kMargins), height = screen.PixelHeight - device(kMargins);
    if (width < 1 || height < 1)
        return SetClipboardPicture(screen.PixelWidth, screen.PixelHeight, screen.Pixels, screen.Stride);
    const std::uint32_t* first = screen.Pixels + device(kMargin) * screen.Stride + device(kMargin);
    return SetClipboardPicture(width, height, first, screen.Stride);
}

enum class Printed : std::uint8_t { Done, Refused, WindowGone };

Printed PrintPicture(ScreenWindow& window) {
    const std::uint64_t id = window.Id;
    const AsBefore asBefore(window);
    window.StatusBarVisible = false;
    window.BackColor = QbColor(15);
    Stelle_Grafik_dar(window);
    Pause(kShortWait_ms);
    if (!ScreenIsOpen(id)) return Printed::WindowGone;
    SetLabelToPos(window, kStamp, kStampPlace, kStampPlace);
    Pause(kShortWait_ms);
    if (!ScreenIsOpen(id)) return Printed::WindowGone;
    WriteLabels(window);
    return HandOver(window.Screen) ? Printed::Done : Printed::Refused;
}

}  // namespace

void MenüGraphicsPrint_Command() {
    ScreenWindow* window = findLFDFORM();
    if (window == nullptr) return;
    if (PrintPicture(*window) == Printed::Refused) ShowMessage(kClipboardRefused);
}

}  // namespace corvinade::graphics
