// The least that a frame of points costs: blocks of points are turned in vector lanes, one test of the range
// each, three rows of pixels written. Built for this very machine.
#include "point_limit.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

constexpr int kPointsOfBlock = 1024;

// The middle pixels of a block's squares, -1 for a square that is not all in the picture.
void Places(const LimitView& view, int count, const float* __restrict x, const float* __restrict y,
            const float* __restrict z, int width, int height, int* __restrict places) {
    const auto lastX = static_cast<unsigned>(width - 2), lastY = static_cast<unsigned>(height - 2);
    for (int i = 0; i < count; ++i) {
        const float right = view.Right[0] * x[i] + view.Right[1] * y[i] + view.Right[2] * z[i] + view.ShiftX;
        const float down = view.Down[0] * x[i] + view.Down[1] * y[i] + view.Down[2] * z[i] + view.ShiftY;
        const int column = static_cast<int>(std::rint(right)), row = static_cast<int>(std::rint(down));
        const bool inside =
            (static_cast<unsigned>(column - 1) < lastX) & (static_cast<unsigned>(row - 1) < lastY);
        places[i] = inside ? row * width + column : -1;
    }
}

}  // namespace

void PaintLimit(const LimitCloud& cloud, const LimitView& view, std::uint32_t background, int width,
                int height, std::uint32_t* picture) {
    std::fill(picture, picture + static_cast<std::ptrdiff_t>(width) * height, background);
    alignas(64) std::array<int, kPointsOfBlock> places;
    const int points = static_cast<int>(cloud.X.size());
    for (int first = 0; first < points; first += kPointsOfBlock) {
        const int count = std::min(kPointsOfBlock, points - first);
        Places(view, count, cloud.X.data() + first, cloud.Y.data() + first, cloud.Z.data() + first, width,
               height, places.data());
        const std::uint32_t* colours = cloud.Colour.data() + first;
        for (int i = 0; i < count; ++i) {
            if (places[i] < 0) continue;
            const std::uint64_t two = static_cast<std::uint64_t>(colours[i]) << 32U | colours[i];
            std::uint32_t* pixel = picture + places[i] - width - 1;
            for (int row = 0; row < 3; ++row, pixel += width) {
                std::memcpy(pixel, &two, sizeof two);
                pixel[2] = colours[i];
            }
        }
    }
}
