// A program with a settings file and a job of pairs whose distances are known, and short ways to read the
// table of the distance scale.
#pragma once

#include <random>
#include <string>
#include <vector>

#include "analysis/form_distance_scale.h"
#include "analysis/form_trompete.h"
#include "core/form_progress_bar.h"
#include "core/platform.h"
#include "core/settings.h"
#include "engine/calculation_job.h"

using namespace corvinade;

class DistanceJob : public CalculationJob {
protected:
    using Texts = std::vector<std::string>;
    using Point = reference::Point;

    DistanceJob() {
        Run.SettingsFilePath = PathOf("Corvinade.ini");
        IniDateiAnlegen();
        IniLesen();
        RhoFestlegung();
        Units.FmtLength = "0.000";
        Units.FmtScale = "0.000000";
    }
    ~DistanceJob() override {
        UnloadWindow("FormTrompete");
        UnloadWindow("FormDistanceScale");
    }

    // A pair; its transformed start point is a third point.
    static void Pair(const std::string& name, const Point& start, const Point& target, const Point& moved) {
        AddPair(start, target);
        Job.Start.Name.back() = Job.Target.Name.back() = Job.Transformed.Name.back() = name;
        Job.Transformed.X.back() = static_cast<double>(moved[0]);
        Job.Transformed.Y.back() = static_cast<double>(moved[1]);
        Job.Transformed.Z.back() = static_cast<double>(moved[2]);
        const std::size_t size = static_cast<std::size_t>(Job.Pairs()) + 1;
        Job.RVecX.resize(size);
        Job.RVecY.resize(size);
        Job.RVecZ.resize(size);
        Run.JobDataValid = kTrue;
    }
    static void Pair(const std::string& name, const Point& start, const Point& target) {
        Pair(name, start, target, start);
    }
    // Distances A B 5, A C 13, B C 12 at the start and 6, 16, 10 at the target: delta s 1, 3 and -2.
    static void Triangle() {
        Pair("A", {0, 0, 0}, {10, 0, 0});
        Pair("B", {3, 4, 0}, {16, 0, 0});
        Pair("C", {3, 4, 12}, {26, 0, 0});
    }
    // So many points in two clouds that differ by up to a millimetre.
    static void Cloud(int points) {
        std::mt19937 random(5);
        const auto value = [&random](double size) {
            return size * (static_cast<double>(random()) / 4294967296.0 - 0.5);
        };
        for (int i = 1; i <= points; ++i) {
            const Point start = {value(2000), value(2000), value(500)};
            Pair("P" + std::to_string(i), start,
                 {start[0] + value(2), start[1] + value(2), start[2] + value(2)});
        }
    }
    static void Open() { ASSERT_TRUE(UserClick(Main.MenuTransformationDistanceScale)); }
    static GridState& Cells() { return DistanceScaleWindow.TabelleScale.Grid; }
    static Texts Row(int row) {
        Texts texts;
        for (int col = 0; col < Cells().Cols; ++col) texts.push_back(CellText(Cells(), row, col));
        return texts;
    }
    static constexpr RunRecord& Run = ::Run;  // the base class has a procedure of that name
};
