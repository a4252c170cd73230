// Limits of the values of a view.
#include "graphics/view_values.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "graphics/black_planes.h"
#include "graphics/flags.h"

namespace corvinade::graphics {

namespace {

template <class Number>
void KeepFinite(Number& value, Number otherwise) {
    if (!std::isfinite(value)) value = otherwise;
}

void KeepBetween(std::int16_t& value, int least, int most) {
    value = static_cast<std::int16_t>(std::clamp<int>(value, least, most));
}

}  // namespace

void MakeViewUsable(ScreenRecord& view) {
    if (!(view.BildFaktor > kLeastFaktor && view.BildFaktor < kLargestFaktor)) view.BildFaktor = 1;
    KeepFinite(view.BildOffsetX, 0.0F);
    KeepFinite(view.BildOffsetY, 0.0F);
    if (!std::isfinite(view.Vec_Maßstab) || !(view.Vec_Maßstab > 0)) view.Vec_Maßstab = 400;
    KeepFinite(view.Min, 0.0);
    KeepFinite(view.Max, 0.0);
    KeepBetween(view.BigNess, 1, kLargestBigNess);
    KeepBetween(view.AnzKlassenPos, 1, kMostClasses);
    KeepBetween(view.AnzKlassenNeg, 1, kMostClasses);
    if (view.CS_Type != "CYL" && view.CS_Type != "SPH") view.CS_Type = "CART";
    if (view.RotAngles.size() != 6) {
        view.RotAngles.resize(6);
        view.RotAnglesShape.clear();
    }
    for (double& angle : view.RotAngles) KeepFinite(angle, 0.0);
    for (std::int32_t* spacing : {&view.ADis, &view.BDis, &view.Cdis}) *spacing = std::max(*spacing, 0);
    KeepFinite(view.TopDepth, 0.0F);
    if (!std::isfinite(view.SlabThickness)) view.SlabThickness = kFirstSlab;
    view.SlabThickness = std::max(view.SlabThickness, 0.0);
    if (!HasPlaneFrame(view)) view.BlackPlane = view.BlackInitial = kFalse;
    MakeFlagsUsable(view);
    if (view.LineTable.size() % 2 != 0) {
        view.LineTable.clear();
        view.LineTableShape.clear();
    }
}

}  // namespace corvinade::graphics
