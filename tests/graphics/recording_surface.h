// A surface that notes every operation in order and keeps its pixels.
#pragma once

#include <string>
#include <vector>

#include "graphics/screen_window.h"

using namespace corvinade;

enum class Stroke { Clear, Line, Circle, Text, Fill, Refresh };

struct Operation {
    Stroke Kind;
    float X1 = 0, Y1 = 0, X2 = 0, Y2 = 0;  // a circle's middle is the first
    float Radius = 0;
    Colour Colour1 = 0;  // of the clearing, the line, the outline, the text
    Colour Fill = kNoFill;
    int Width = 0;
    std::string Text;
};

struct Recording {
    std::vector<Operation> Operations;
    std::vector<std::uint32_t> Memory;  // the picture with a margin of untouched pixels all around
};

inline constexpr std::uint32_t kUntouched = 0x12345678;
inline constexpr int kGuard = 16;  // pixels on each side of the picture that nobody may write

inline double RecordingScale = 1;  // pixels of the picture to the logical one, of surfaces filled from now on
void FillSurfaceWithRecording(Surface& screen);  // for the hook FillSurface
Recording& RecordingOf(const ScreenWindow& window);
bool GuardIsUntouched(const ScreenWindow& window);

std::uint32_t PixelAt(const ScreenWindow& window, int column, int row);
// Pixels of one colour, counted.
int CountPixels(const ScreenWindow& window, Colour colour);

// The operations of one kind (and colour) in their order.
std::vector<Operation> OperationsOf(const ScreenWindow& window, Stroke kind);
std::vector<Operation> LinesOf(const ScreenWindow& window, Colour colour);

// Windows that open while it lives are recorded.
class Recorded {
public:
    Recorded() { FillSurface = FillSurfaceWithRecording; }
    ~Recorded() {
        FillSurface = nullptr;
        RecordingScale = 1;
    }
    Recorded(const Recorded&) = delete;
    Recorded& operator=(const Recorded&) = delete;
};
