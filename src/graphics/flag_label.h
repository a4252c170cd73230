// What a graphics window holds of a flag beside its record: the table as it is shown.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "core/rooms.h"
#include "graphics/surface.h"

namespace corvinade::graphics {

// Rows and columns of a flag.
enum FlagRow : std::uint8_t { kFlagHeading, kFlagActual, kFlagNominal, kFlagDev, kFlagUse, kFlagRows };
enum FlagColumn : std::uint8_t {
    kFlagName,
    kFlagX,
    kFlagY,
    kFlagZ,
    kFlagR,
    kFlagPhi,
    kFlagRho,
    kFlagTheta,
    kFlag3D,
    kFlagCols
};

struct FlagLabel {
    int Row = 0;  // of the scene that it belongs to, 0 = of none
    std::array<std::array<std::string, kFlagCols>, kFlagRows> Text;
    std::array<int, kFlagCols> ColWidth{};   // twips, 0 = hidden
    std::array<int, kFlagRows> RowHeight{};  // likewise
    std::array<bool, 3> InUse{};             // the coordinates of a pair
    std::array<bool, 3> Beyond{};            // ... in use and beyond the job's tolerance
    float Width = 0, Height = 0;             // pixels
    bool Visible = false;                    // in the last paint
    Colour ClassColour = 0xffffff;           // of its point in the last paint
    TextFont Font;
};

// All that the texts of flags are written from, beside the points themselves.
struct FlagTextKey {
    std::uint64_t Scene = 0;  // stamp; 0 = nothing has been written
    double LengthFactor = 0, AngleFactor = 0, Tolerance = 0;
    std::string FmtLength, FmtAngle, AngleUnit, ColorBased;
    bool ArcLengths = false;
};

}  // namespace corvinade::graphics
