// View records put together by hand, and compared with them.
#include <gtest/gtest.h>

#include "core/job_bytes.h"

using namespace corvinade;

void PutHandView(HandBytes& out, int seed, const HandViewSizes& sizes) {
    int n = seed;
    const auto i16 = [&](int count) {
        while (count-- > 0) out.I16(n++);
    };
    const auto f32 = [&](int count) {
        while (count-- > 0) out.F32(static_cast<float>(n++));
    };
    const auto f64 = [&](int count) {
        while (count-- > 0) out.F64(n++);
    };
    i16(3);              // VectorMode, BigNess, FlagMode
    f32(4);              // BildFaktor, BildOffsetX, BildOffsetY, Vec_Maßstab
    i16(1);              // GridLength
    if (sizes.Angles) {  // RotAngles (1 to 2, 1 to 3)
        out.I16(2).I32(2).I32(1).I32(3).I32(1);
        f64(6);
    } else {
        out.I16(0);
    }
    i16(1);                // flag count
    if (sizes.Rows > 0) {  // flag by row (1 to rows)
        out.I16(1).I32(sizes.Rows).I32(1);
        i16(sizes.Rows);
    } else {
        out.I16(0);
    }
    if (sizes.Flags > 0) {  // flag records (0 to flags - 1)
        out.I16(1).I32(sizes.Flags).I32(0);
    } else {
        out.I16(0);
    }
    for (int flag = 0; flag < sizes.Flags; ++flag) {
        i16(26);  // ShowPointNumber to Italic
        out.Short("font" + std::to_string(n++));
        f32(1);        // Size
        i16(2);        // Strikethrough, Underline
        f32(1);        // Weight
        out.I32(n++);  // Forecolor
    }
    i16(6);                                 // active flag, width, height, AnzKlassenPos, Neg, AusserhalbTol
    f64(2);                                 // Min, Max
    i16(3);                                 // showVeX, showVeY, showVeZ
    out.Short("c" + std::to_string(n++));   // ColorBased
    i16(1);                                 // ShowOnlyUsedComponent
    out.I32(n++);                           // OuterColor
    out.Short("cs" + std::to_string(n++));  // CS_Type
    i16(4);                                 // BinärModus, BlackPlane, BlackPlaneBorders, BlackInitial
    f32(2);                                 // frame offset
    f64(2);                                 // frame factor, slab thickness
    f64(16);                                // frame inverse, column by column
    f32(1);                                 // top depth
    i16(3);                                 // GridXY, GridYZ, GridZX
    for (int i = 0; i < 3; ++i) out.I32(n++);  // ADis, BDis, Cdis
    i16(1);                                    // ShowGridDim
    if (sizes.Lines > 0) {                     // line table (1 to 2, 0 to lines - 1)
        out.I16(2).I32(2).I32(1).I32(sizes.Lines).I32(0);
        i16(2 * sizes.Lines);
    } else {
        out.I16(0);
    }
    out.I32(n++);  // line start row
    i16(1);        // LineMode
    out.I32(n++);  // selected line
}

void ExpectHandView(const ScreenRecord& view, int seed, const HandViewSizes& sizes) {
    int n = seed;
    EXPECT_EQ(view.VectorMode, n++);
    EXPECT_EQ(view.BigNess, n++);
    EXPECT_EQ(view.FlagMode, n++);
    EXPECT_EQ(view.BildFaktor, static_cast<float>(n++));
    EXPECT_EQ(view.BildOffsetX, static_cast<float>(n++));
    EXPECT_EQ(view.BildOffsetY, static_cast<float>(n++));
    EXPECT_EQ(view.Vec_Maßstab, static_cast<float>(n++));
    EXPECT_EQ(view.GridLength, n++);
    ASSERT_EQ(view.RotAngles.size(), sizes.Angles ? 6U : 0U);
    for (const double angle : view.RotAngles) EXPECT_EQ(angle, n++);
    EXPECT_EQ(view.FlagCount, n++);
    ASSERT_EQ(view.FlagIndex.size(), static_cast<std::size_t>(sizes.Rows));
    for (const std::int16_t flag : view.FlagIndex) EXPECT_EQ(flag, n++);
    ASSERT_EQ(view.Flags.size(), static_cast<std::size_t>(sizes.Flags));
    for (const FlagRecord& flag : view.Flags) {
        for (
            const std::int16_t value :
            {flag.ShowPointNumber, flag.ShowActual,    flag.ShowNominal, flag.ShowDevXYZ, flag.showX,
             flag.showY,           flag.showZ,         flag.show3D,      flag.showR,      flag.showPhi,
             flag.showRho,         flag.showTheta,     flag.ShowDev,     flag.ShowTolCol, flag.ShowLegendeXYZ,
             flag.ShowLegendeName, flag.ShowUseNotUse, flag.ShowGrid,    flag.ChangeAll,  flag.SnaptoGrid,
             flag.WithinScreen,    flag.Left,          flag.Top,         flag.Bold,       flag.Charset,
             flag.Italic})
            EXPECT_EQ(value, n++);
        EXPECT_EQ(flag.Name, "font" + std::to_string(n++));
        EXPECT_EQ(flag.Size, static_cast<float>(n++));
        EXPECT_EQ(flag.Strikethrough, n++);
        EXPECT_EQ(flag.Underline, n++);
        EXPECT_EQ(flag.Weight, static_cast<float>(n++));
        EXPECT_EQ(flag.Forecolor, n++);
    }
    EXPECT_EQ(view.ActiveFlag, n++);
    EXPECT_EQ(view.WindowWidth, n++);
    EXPECT_EQ(view.WindowHeight, n++);
    EXPECT_EQ(view.AnzKlassenPos, n++);
    EXPECT_EQ(view.AnzKlassenNeg, n++);
    EXPECT_EQ(view.AusserhalbTol, n++);
    EXPECT_EQ(view.Min, n++);
    EXPECT_EQ(view.Max, n++);
    EXPECT_EQ(view.showVeX, n++);
    EXPECT_EQ(view.showVeY, n++);
    EXPECT_EQ(view.showVeZ, n++);
    EXPECT_EQ(view.ColorBased, "c" + std::to_string(n++));
    EXPECT_EQ(view.ShowOnlyUsedComponent, n++);
    EXPECT_EQ(view.OuterColor, n++);
    EXPECT_EQ(view.CS_Type, "cs" + std::to_string(n++));
    EXPECT_EQ(view.BinärModus, n++);
    EXPECT_EQ(view.BlackPlane, n++);
    EXPECT_EQ(view.BlackPlaneBorders, n++);
    EXPECT_EQ(view.BlackInitial, n++);
    EXPECT_EQ(view.FrameOffsetX, static_cast<float>(n++));
    EXPECT_EQ(view.FrameOffsetY, static_cast<float>(n++));
    EXPECT_EQ(view.FrameFactor, n++);
    EXPECT_EQ(view.SlabThickness, n++);
    for (int column = 0; column <= 3; ++column)
        for (int row = 0; row <= 3; ++row) EXPECT_EQ(view.FrameInverse(row, column), n++);
    EXPECT_EQ(view.TopDepth, static_cast<float>(n++));
    EXPECT_EQ(view.GridXY, n++);
    EXPECT_EQ(view.GridYZ, n++);
    EXPECT_EQ(view.GridZX, n++);
    EXPECT_EQ(view.ADis, n++);
    EXPECT_EQ(view.BDis, n++);
    EXPECT_EQ(view.Cdis, n++);
    EXPECT_EQ(view.ShowGridDim, n++);
    ASSERT_EQ(view.LineTable.size(), static_cast<std::size_t>(2 * sizes.Lines));
    for (const std::int16_t end : view.LineTable) EXPECT_EQ(end, n++);
    EXPECT_EQ(view.LineStartRow, n++);
    EXPECT_EQ(view.LineMode, n++);
    EXPECT_EQ(view.SelectedLine, n++);
}
