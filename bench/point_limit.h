// What the memory of this machine allows for a picture of points: the loop that a frame is measured against.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

struct LimitCloud {
    std::vector<float> X, Y, Z;
    std::vector<std::uint32_t> Colour;
};

// What a point of the cloud is turned by: pixel = Row . (x, y, z) + Shift, for both axes of the picture.
struct LimitView {
    std::array<float, 3> Right{}, Down{};
    float ShiftX = 0, ShiftY = 0;
};

// Clears the picture and paints each point as a square of 3 by 3 pixels, later points over earlier ones.
// Nothing else: no table of places is kept, squares that do not lie in the picture as a whole are left out.
void PaintLimit(const LimitCloud& cloud, const LimitView& view, std::uint32_t background, int width,
                int height, std::uint32_t* picture);
