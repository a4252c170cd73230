// The window of the trumpet plot: a point for each pair of identical points, its difference of distances
// against its distance.
#pragma once

#include <cstdint>

#include "analysis/trumpet_plot.h"
#include "core/rooms.h"
#include "core/window.h"

namespace corvinade::analysis {

struct FormTrompete {
    WindowState Window{.Caption = "Trumpet Graph"};

    Control Trumpet;
    Control LabelPair;  // the pair under the mouse, in words

    TrumpetRange Range;
    TrumpetPlace Place;
    TrumpetRaster Raster;
    bool Drawn = false;           // the raster is that of Range and Place
    bool Cut = false;             // the user has cancelled the drawing: not all pairs are in it
    bool RangeCut = false;        // ... while it was found what they span: some may lie beyond the axes
    std::uint64_t Drawings = 0;   // counts them
    TrumpetRaster::PairAt Under;  // the pair under the mouse, From 0: none

    static void Form_Load();
    static void Form_Unload();
    static void Form_Escape();
};
extern FormTrompete Trumpet;
extern const WindowEntry FormTrompete_Entry;

// How far from a point the mouse may be to mean it, pixels.
inline constexpr double kTrumpetReach = 6;

// The distance scale has taken other points: an open plot shows them.
void Trumpet_PointsChanged();
// Gives the picture its place; it is drawn anew when somebody looks.
void Trumpet_Resize(const TrumpetPlace& place);
// Draws the picture where it is not that of the present points and place. Many pairs show their progress.
void Trumpet_Draw();
// The mouse is at a place of the picture, pixels, or outside.
void Trumpet_MouseMove(double x, double y);

}  // namespace corvinade::analysis
