// The state of one graphics window, as an undo step and a saved view keep it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/arrays.h"
#include "core/rooms.h"

namespace corvinade::core {

// One flag of a graphics window: a small table that belongs to a point. The same fields hold the
// defaults of a new flag in the settings.
struct FlagRecord {
    Flag ShowPointNumber = kFalse, ShowActual = kFalse, ShowNominal = kFalse, ShowDevXYZ = kFalse;
    Flag showX = kFalse, showY = kFalse, showZ = kFalse, show3D = kFalse;
    Flag showR = kFalse, showPhi = kFalse, showRho = kFalse, showTheta = kFalse;
    Flag ShowDev = kFalse, ShowTolCol = kFalse, ShowLegendeXYZ = kFalse, ShowLegendeName = kFalse;
    Flag ShowUseNotUse = kFalse, ShowGrid = kFalse, ChangeAll = kFalse, SnaptoGrid = kFalse;
    Flag WithinScreen = kFalse;
    std::int16_t Left = 0, Top = 0;
    Flag Bold = kFalse;
    std::int16_t Charset = 0;
    Flag Italic = kFalse;
    std::string Name;
    float Size = 0;
    Flag Strikethrough = kFalse, Underline = kFalse;
    float Weight = 0;
    std::int32_t Forecolor = 0;
};

// How one index of an array of a view runs.
struct IndexRange {
    std::uint32_t Count = 0;
    std::int32_t Lowest = 0;
    bool operator==(const IndexRange&) const = default;
};
using ArrayShape = std::vector<IndexRange>;

// The four arrays hold their elements without a gap, the first index fastest. Their indices run as told
// here, or they have no elements. A file may have them otherwise; it is then saved as it came, by the shapes
// at the end. Who sizes an array anew clears its shape.
struct ScreenRecord {
    Flag VectorMode = kFalse;
    std::int16_t BigNess = 2;  // point size, pixels
    Flag FlagMode = kFalse;
    float BildFaktor = 1;  // pixels per mm
    float BildOffsetX = 0, BildOffsetY = 0;
    float Vec_Maßstab = 0;  // pixels per mm of deviation
    std::int16_t GridLength = 100;
    std::vector<double> RotAngles;  // rows 1 to 2, columns 1 to 3; row 1 holds the angles, rad
    std::int16_t FlagCount = 0;
    std::vector<std::int16_t> FlagIndex;  // from 1, one a row of the plotted points: its flag, 0 = none
    std::vector<FlagRecord> Flags;        // from 0
    std::int16_t ActiveFlag = 0, WindowWidth = 0, WindowHeight = 0;
    std::int16_t AnzKlassenPos = 0, AnzKlassenNeg = 0;
    Flag AusserhalbTol = kFalse;
    double Min = 0, Max = 0;
    Flag showVeX = kFalse, showVeY = kFalse, showVeZ = kFalse;
    std::string ColorBased;
    Flag ShowOnlyUsedComponent = kFalse;
    std::int32_t OuterColor = 0;
    std::string CS_Type;
    Flag BinärModus = kFalse;
    Flag BlackPlane = kFalse, BlackPlaneBorders = kFalse, BlackInitial = kFalse;
    float FrameOffsetX = 0, FrameOffsetY = 0;
    double FrameFactor = 0, SlabThickness = 0;
    Mat3 FrameInverse;
    float TopDepth = 0;
    Flag GridXY = kFalse, GridYZ = kFalse, GridZX = kFalse;
    std::int32_t ADis = 0, BDis = 0, Cdis = 0;
    Flag ShowGridDim = kFalse;
    std::vector<std::int16_t> LineTable;  // rows 1 to 2, columns 0 to m
    std::int32_t LineStartRow = 0;
    Flag LineMode = kFalse;
    std::int32_t SelectedLine = 0;

    // Empty: as told above.
    ArrayShape RotAnglesShape, FlagIndexShape, FlagsShape, LineTableShape;
};

}  // namespace corvinade::core
