// A program with a job whose points are given by hand and graphics windows that nothing is drawn on, and
// what their tests say often: a point turned and shown by formulas of their own.
#pragma once

#include <cmath>
#include <string>

#include "core/controller.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/settings.h"
#include "core/units.h"
#include "graphics/graphics_refresh.h"
#include "graphics/projection.h"
#include "graphics/scene.h"
#include "graphics/screen_window.h"
#include "graphics/views.h"
#include "support/fixture.h"

using namespace corvinade;

struct Place3 {
    long double X = 0, Y = 0, Z = 0;
};

class GraphicsJob : public Program {
protected:
    GraphicsJob() {
        FillSurface = nullptr;
        ShowWindow("FormMain");
        Job.LengthUnitName = "millimeter";
        Job.AngleUnitName = "degree";
        Job.LengthDigits = 3;
        RhoFestlegung();
        Job.ViewAllMCS = Job.ViewAllOCS = Job.ViewAllonlyMCS = Job.ViewAllonlyOCS = kTrue;
        ::Run.JobDataValid = kTrue;
    }
    ~GraphicsJob() override {
        CloseAllGraphicsWindows();
        FillSurface = nullptr;
    }

    // Pairs first, then the points without a partner.
    static void AddPoints(const std::string& name, const Vec3& start, const Vec3& target) {
        AddStartOnly(name + "m", start);
        AddTargetOnly(name, target);
        Job.SetPairs(Job.Pairs() + 1);
        Job.UseFlags.insert(Job.UseFlags.end(), 3, 1);
        Job.RVecX.resize(Job.Start.Name.size());
        Job.RVecY.resize(Job.Start.Name.size());
        Job.RVecZ.resize(Job.Start.Name.size());
    }
    static void AddStartOnly(const std::string& name, const Vec3& point) {
        for (PointSet* points : {&Job.Start, &Job.Transformed})
            points->Add(name, point(1), point(2), point(3));
    }
    static void AddTargetOnly(const std::string& name, const Vec3& point) {
        Job.Target.Add(name, point(1), point(2), point(3));
    }
    // Three pairs with the deviations (-1, 2, 0), (0, -2, 0.5), (3, 0, 0), and a point more on each side.
    static void FivePoints() {
        AddPoints("A", {100, 0, 0}, {101, -2, 0});
        AddPoints("B", {0, 200, 10}, {0, 202, 9.5});
        AddPoints("C", {30, 40, 50}, {27, 40, 50});
        AddStartOnly("S", {-10, 20, -30});
        AddTargetOnly("T", {40, -50, 60});
    }
    // `count` pairs on a grid in the plane z = 0 whose deviations along x are 1, 2, 3, ... mm.
    static void AscendingDeviations(int count) {
        for (int i = 1; i <= count; ++i) {
            const double x = 100.0 * i, y = 50.0 * (i % 3);
            AddPoints("P" + std::to_string(i), {x + i, y, 0}, {x, y, 0});
        }
    }
    static ScreenWindow& OpenSized(int width, int height) {
        Screens().NewWidth = width;
        Screens().NewHeight = height;
        return OpenScreenWindow();
    }
    static void SetView(ScreenWindow& window, double a, double b, double c, float factor, float x, float y) {
        SetViewAngles(window, a, b, c);
        window.State.BildFaktor = factor;
        window.State.BildOffsetX = x;
        window.State.BildOffsetY = y;
    }
    static float Cell(int row, SceneColumn column) {
        return Scene.Points[column][static_cast<std::size_t>(row)];
    }
    static float ViewPoint(int row, std::size_t column) {
        return Scene.View[column][static_cast<std::size_t>(row)];
    }

    // The turn of the view as three turns of a plane, one after the other: about x by a, y by b, z by c.
    static Place3 Turned(const ScreenWindow& window, const Place3& p) {
        const long double a = ViewAngle(window, 1), b = ViewAngle(window, 2), c = ViewAngle(window, 3);
        const Place3 one = {p.X, std::cos(a) * p.Y + std::sin(a) * p.Z,
                            std::cos(a) * p.Z - std::sin(a) * p.Y};
        const Place3 two = {std::cos(b) * one.X - std::sin(b) * one.Z, one.Y,
                            std::sin(b) * one.X + std::cos(b) * one.Z};
        return {std::cos(c) * two.X + std::sin(c) * two.Y, std::cos(c) * two.Y - std::sin(c) * two.X, two.Z};
    }
    // The picture of a world point from which the centre of rotation has been taken off.
    static Place3 Pictured(const ScreenWindow& window, const Place3& p) {
        const Place3 turned = Turned(window, p);
        const long double F = window.State.BildFaktor;
        return {F * (turned.X + 200) + window.State.BildOffsetX,
                window.Screen.Height - (F * (200 - turned.Y) + window.State.BildOffsetY), -F * turned.Z};
    }
};
