// Small jobs for pictures, and the way of a point into the picture, worked out once more.
#pragma once

#include <cmath>
#include <string>
#include <vector>

#include "core/job.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/window.h"
#include "graphics/drawing.h"
#include "graphics/projection.h"
#include "graphics/recording_surface.h"
#include "graphics/scene.h"
#include "support/fixture.h"

using namespace corvinade;

struct Pair {
    double X, Y, Z;         // target, mm
    double DX, DY, DZ;      // transformed start minus target, mm
    const char* Name = "";  // "P" and the number where it is empty
};

// A job of these pairs; the start points are the transformed ones, as in a transformation that does nothing.
inline void FillJob(const std::vector<Pair>& pairs) {
    Job = JobRecord{};
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        const Pair& pair = pairs[i];
        const std::string name = *pair.Name != 0 ? pair.Name : "P" + std::to_string(i + 1);
        Job.Target.Add(name, pair.X, pair.Y, pair.Z);
        for (PointSet* points : {&Job.Start, &Job.Transformed})
            points->Add(name, pair.X + pair.DX, pair.Y + pair.DY, pair.Z + pair.DZ);
        Job.UseFlags.insert(Job.UseFlags.end(), 3, std::int16_t{1});
    }
    Job.SetPairs(static_cast<int>(pairs.size()));
    Job.RVecX.resize(pairs.size() + 1);
    Job.RVecY.resize(pairs.size() + 1);
    Job.RVecZ.resize(pairs.size() + 1);
    Job.ViewAllMCS = Job.ViewAllOCS = Job.ViewAllonlyMCS = Job.ViewAllonlyOCS = kTrue;
    Job.LengthUnitName = "mm";
    Job.NameMCS = "MCS";
    Job.NameOCS = "OCS";
    Run.JobDataValid = kTrue;
    ++Run.JobGeneration;
}

// The view of a window in its own numbers: angles in rad, the factor in pixels per mm, offsets in pixels.
struct TestView {
    double A = 0, B = 0, C = 0, F = 1, OffsetX = 0, OffsetY = 0;

    void GiveTo(ScreenWindow& window) const {
        SetViewAngles(window, A, B, C);
        window.State.BildFaktor = static_cast<float>(F);
        window.State.BildOffsetX = static_cast<float>(OffsetX);
        window.State.BildOffsetY = static_cast<float>(OffsetY);
    }
    // Right, down and towards the eye, without scale and offset, of a vector.
    std::array<double, 3> Turned(double x, double y, double z) const {
        const double sa = std::sin(A), ca = std::cos(A), sb = std::sin(B), cb = std::cos(B), sc = std::sin(C),
                     cc = std::cos(C);
        return {cb * cc * x + (sb * sa * cc + ca * sc) * y + (sc * sa - sb * ca * cc) * z,
                -sc * cb * x + (cc * ca - sb * sa * sc) * y + (sb * ca * sc + cc * sa) * z,
                sb * x - cb * sa * y + ca * cb * z};
    }
    // The pixel of a point of the world, for a picture of this height.
    std::array<double, 2> Pixel(double x, double y, double z, int height) const {
        const std::array<double, 3> turned = Turned(x, y, z);
        return {(turned[0] + 200) * F + OffsetX, height - ((200 - turned[1]) * F + OffsetY)};
    }
};

// Looks along z with x to the right and y downwards; the world's origin at (100, 100) of 800 by 600.
inline TestView FlatView() {
    return {0, 0, 0, 1, -100, 300};
}
inline TestView TiltedView() {
    return {0.4, -0.7, 1.1, 0.5, 120, 90};
}

class Drawing : public Program {
protected:
    Recorded recorded_;

    // A window of 800 by 600 whose record of operations is empty.
    static ScreenWindow& Open(const TestView& view) {
        ScreenWindow& window = OpenScreenWindow();
        view.GiveTo(window);
        RecordingOf(window).Operations.clear();
        return window;
    }
    static void Paint(ScreenWindow& window) {
        RecordingOf(window).Operations.clear();
        Stelle_Grafik_dar(window);
    }
    static ScreenWindow& OpenAndPaint(const TestView& view) {
        ScreenWindow& window = Open(view);
        Paint(window);
        return window;
    }
    static void ExpectLine(const Operation& line, double x1, double y1, double x2, double y2, int width = 1) {
        EXPECT_NEAR(line.X1, x1, 2e-3);
        EXPECT_NEAR(line.Y1, y1, 2e-3);
        EXPECT_NEAR(line.X2, x2, 2e-3);
        EXPECT_NEAR(line.Y2, y2, 2e-3);
        EXPECT_EQ(line.Width, width);
    }
    static const ScreenLabel* FindLabel(const ScreenWindow& window, const std::string& text) {
        for (const ScreenLabel& label : window.Labels)
            if (label.Text == text) return &label;
        return nullptr;
    }
};
