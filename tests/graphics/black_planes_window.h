// A graphics window on points of known depths, or on a cloud, with black planes.
#pragma once

#include <cmath>
#include <random>
#include <set>
#include <vector>

#include "fit/vector.h"
#include "graphics/black_planes.h"
#include "graphics/input_window.h"

using namespace corvinade;

class BlackPlanesTest : public InputWindow {
protected:
    // Points at a place of the picture, each with a depth: straight on, its depth is minus its z.
    static ScreenWindow& OpenDepths(const std::vector<double>& depths) {
        double x = 50;
        for (const double depth : depths) AddPair({x += 10, 300, -depth}, {x + 5, 300, -depth});
        SizeRest();
        Job.ViewAllOCS = kTrue;
        return OpenStraight();
    }
    // A cloud of `count` pairs in a block of 400 mm about the middle of the picture.
    static ScreenWindow& OpenCloud(int count) {
        std::mt19937 random(7);
        const auto place = [&random] { return std::uniform_real_distribution<double>(-200, 200)(random); };
        for (int i = 0; i < count; ++i) {
            const double x = 400 + place(), y = 300 + place(), z = place();
            AddPair({x, y, z}, {x, y, z});
        }
        SizeRest();
        return OpenStraight();
    }
    static std::set<int> Seen() {
        std::set<int> rows;
        for (int row = 1; row <= Scene.Rows; ++row)
            if (Scene.Points[kSceneInside][static_cast<std::size_t>(row)] == 1.0F) rows.insert(row);
        return rows;
    }
    static void SetPlanes(ScreenWindow& window, double top, double thickness) {
        Initialisieren_BlackPlane(window, true, false);
        window.State.TopDepth = static_cast<float>(top);
        window.State.SlabThickness = thickness;
        Stelle_Grafik_dar(window);
    }
    // The two tests on pixels and depths of the present picture, one plane after the other.
    static std::set<int> SeenByPixels(const ScreenWindow& window, double unsure, std::set<int>& near) {
        const BlackPlanes planes = PlanesOf(window);
        std::set<int> rows;
        for (int row = 1; row <= Scene.Rows; ++row) {
            const auto i = static_cast<std::size_t>(row);
            const Vec3 p(Scene.PixelX[i], Scene.PixelY[i], Scene.PixelZ[i]);
            double first = 0, second = 0;
            PlaneDistance(planes.First, planes.Normal, p, first);
            PlaneDistance(planes.Second, planes.Normal, p, second);
            if (!(first > 0) && second > 0) rows.insert(row);
            if (std::abs(first) < unsure || std::abs(second) < unsure) near.insert(row);
        }
        return rows;
    }
};
