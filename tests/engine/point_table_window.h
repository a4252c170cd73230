// The calculation window with four points in its point table.
#pragma once

#include "cli/headless.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/numbers.h"
#include "core/settings.h"
#include "core/units.h"
#include "core/window.h"
#include "engine/calculation.h"
#include "engine/calculation_window.h"
#include "engine/fit_job.h"
#include "engine/form_trafo_berechnung.h"
#include "support/fixture.h"

using namespace corvinade;

class PointTableWindow : public Program {
protected:
    PointTableWindow() {
        Run.SettingsFilePath = PathOf("Corvinade.ini");
        IniDateiAnlegen();
        IniLesen();
        BeginFit();
        Job.ParamText[1] = "";  // a fresh job
    }
    ~PointTableWindow() override { UnloadWindow("FormTrafoBerechnung"); }

    // Four points "P1" ... in a square, moved by (10, 20, 30) with a little unrest; the deviations before
    // any calculation are (-10 - 0.5 i, -20, -30 + i) with i from 1.
    static void FourPoints() {
        const double x[] = {0, 100, 100, 0}, y[] = {0, 0, 100, 100};
        for (int i = 0; i < 4; ++i) AddPair({x[i], y[i], 1.0 * i}, {x[i] + 10.5 + 0.5 * i, y[i] + 20, 29});
    }
    static void Open() { ShowWindow("FormTrafoBerechnung"); }
    void OpenWithFour() {
        FourPoints();
        Open();
    }

    static std::string Length(double value_mm) { return FormatNumber(value_mm, "0.000"); }
    static std::size_t At(int i) { return static_cast<std::size_t>(i); }
    static FormTrafoBerechnung& Window() { return TrafoWindow; }
    static GridState& Cells() { return TrafoWindow.Tabelle.Grid; }
    static std::string Cell(int row, int col) { return CellText(Cells(), row, col); }
    static std::int32_t Colour(int row, int col) { return CellBackColor(Cells(), row, col); }
    static std::vector<std::string> Row(int row) {
        std::vector<std::string> texts;
        for (int col = 0; col < 9; ++col) texts.push_back(Cell(row, col));
        return texts;
    }
    static std::vector<std::string> Col(int col) {
        std::vector<std::string> texts;
        LookAt(Cells());
        for (int row = 1; row < Cells().Rows; ++row) texts.push_back(Cell(row, col));
        return texts;
    }
    static int Rows() {
        LookAt(Cells());
        return Cells().Rows;
    }
    static std::vector<int> Flags() { return {Job.UseFlags.begin() + 1, Job.UseFlags.end()}; }
    static std::vector<int> FlagsOf(int point) {
        const auto first = Job.UseFlags.begin() + 3 * point - 2;
        return {first, first + 3};
    }
    static bool DblClick(int row, int col) { return UserDblClickCell(Window().Tabelle, row, col); }
    static bool Click(int row, int col) { return UserClickCell(Window().Tabelle, row, col, false); }
    static bool Select(const GridRect& rect) { return UserSelectCells(Window().Tabelle, rect); }
    static bool Key(const std::string& key) { return UserKey(Window().Tabelle, key); }
    static bool RightClick(int row, int col) { return UserRightClickCell(Window().Tabelle, row, col); }
    static std::vector<std::string> SeedNames() { return {Job.SeedName.begin() + 1, Job.SeedName.end()}; }
    using Texts = std::vector<std::string>;
    using Ints = std::vector<int>;

    static constexpr std::int32_t kGreen = 0x00FF00, kYellow = 0x00FFFF, kWhite = 0xFFFFFF;
};
