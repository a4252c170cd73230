// A picture of the open job: one graphics window, set up from a few wishes and painted.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/rooms.h"
#include "graphics/screen_window.h"

namespace corvinade::cli {

enum class PictureForm : std::uint8_t {
    Png,
    SharpPng,  // twice the pixels along each side
    Svg,
    SvgInPage  // for a place inside a page
};

struct PictureWish {
    std::string View = "iso";  // iso, top, side, front, or the name of a saved view
    int Width = 1600, Height = 1000;
    bool Vectors = false;
    double Magnification = 0;  // of the vectors against the scene; 0 = such that they can be seen
    bool ColorBar = false, Names = false, AxisLabels = false;
    bool Flags = false;                // those of the saved view, else on the pairs that deviate most
    int FlagCount = 10;                // of the latter
    bool PairsAlone = false;           // no points without a partner
    bool Targets = false;              // also the targets of the pairs
    int PointSize = 0;                 // pixels; 0 = after the number of points
    std::optional<Colour> Background;  // nothing: black, or that of the settings
    double Zoom = 1;                   // against the fitted scene
    int Classes = 0;                   // of the colours on each side of 0; 0 = as the window begins
    std::optional<std::pair<double, double>> Limits_mm;  // of the colour scale
};

// What the picture shows, for a text beside it.
struct PictureFacts {
    bool Vectors = false;
    double Magnification = 1;     // of the vectors against the scene
    double Largest_mm = 0;        // upper limit of the colour scale
    std::vector<Colour> Colours;  // of the classes above 0
    int FlagsLeftOut = 0;         // of the pairs that were to have one: there was no room
};

// The number of the saved view of this name, from 1; 0 where there is none.
int SavedViewNumber(const std::vector<std::string>& names, const std::string& name);
bool IsFixedView(const std::string& name);

// The bytes of a picture of the open job. Nothing of the job and the settings is changed afterwards. Throws
// PlatformError where there is no memory for it.
//   views   names of the job's saved views. Require: `wish.View` is one of them or a fixed view
std::string JobPicture(const PictureWish& wish, PictureForm form, const std::vector<std::string>& views,
                       PictureFacts& facts);

}  // namespace corvinade::cli
