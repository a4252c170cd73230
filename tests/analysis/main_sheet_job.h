// A program with a settings file and an empty job, and short ways to fill and read the main sheet.
#pragma once

#include "analysis/form_main_sheet.h"
#include "core/numbers.h"
#include "core/settings.h"
#include "engine/calculation_job.h"

using namespace corvinade;

class MainSheetJob : public CalculationJob {
protected:
    using Texts = std::vector<std::string>;

    MainSheetJob() {
        Run.SettingsFilePath = PathOf("Corvinade.ini");
        IniDateiAnlegen();
        IniLesen();
    }
    ~MainSheetJob() override { UnloadWindow("FormMainSheet"); }

    // Points without a partner; to be added behind the pairs.
    static void AddStart(const std::string& name, double x, double y, double z) {
        for (PointSet* points : {&Job.Start, &Job.Transformed}) points->Add(name, x, y, z);
        Run.JobDataValid = kTrue;
    }
    static void AddTarget(const std::string& name, double x, double y, double z) {
        Job.Target.Add(name, x, y, z);
        Run.JobDataValid = kTrue;
    }
    // Pairs "P1" to "P3", a start point "S" and a target point "T"; the deviations are (-1, 2, 0),
    // (0, -2, 0.5) and (3, 0, 0) until a transformation is calculated.
    static void FivePoints() {
        AddPair({100, 0, 0}, {101, -2, 0});
        AddPair({0, 200, 10}, {0, 202, 9.5});
        AddPair({30, 40, 50}, {27, 40, 50});
        AddStart("S", 1, 2, 3);
        AddTarget("T", 4, 5, 6);
        SizeRest();
    }
    // The arrays of the job that the sheet does not show.
    static void SizeRest() {
        const std::size_t size = static_cast<std::size_t>(Job.Pairs()) + 1;
        Job.RVecX.resize(size);
        Job.RVecY.resize(size);
        Job.RVecZ.resize(size);
        ASSERT_TRUE(JobIsWhole(Job));
    }
    static void NamedPairs(int pairs) {
        for (int i = 1; i <= pairs; ++i) AddPair({i * 1.0, 0, 0}, {i * 2.0, 1, 0});
        SizeRest();
    }
    static void Open() { ASSERT_TRUE(UserClick(Main.MenuVievMainSheet)); }
    static void Close() { UserClose(FormMainSheet_Entry); }

    static Control& Sheet() { return MainSheetWindow.MSFlexGrid1; }
    static GridState& Cells() { return Sheet().Grid; }
    static std::string Cell(int row, int col) { return CellText(Cells(), row, col); }
    static std::int32_t Colour(int row, int col) { return CellBackColor(Cells(), row, col); }
    static int Rows() { return Cells().Rows; }
    static Texts Row(int row) {
        Texts texts;
        for (int col = 0; col < Cells().Cols; ++col) texts.push_back(Cell(row, col));
        return texts;
    }
    static Texts Col(int col) {
        Texts texts;
        for (int row = 1; row < Rows(); ++row) texts.push_back(Cell(row, col));
        return texts;
    }
    static std::vector<int> YellowCols(int row) {
        std::vector<int> cols;
        for (int col = 1; col < Cells().Cols; ++col)
            if (Colour(row, col) == 0x00FFFF) cols.push_back(col);
        return cols;
    }
    // Of the cell as a number; the difference of directions and radii is taken by the caller.
    static double Number(int row, int col) {
        double value = 0;
        EXPECT_TRUE(TextToNumber(Cell(row, col), value)) << Cell(row, col);
        return value;
    }
    static bool Click(int row, int col) { return UserClickCell(Sheet(), row, col, false); }
    static bool Select(const GridRect& rect) { return UserSelectCells(Sheet(), rect); }
    static bool Key(const std::string& key) { return UserKey(Sheet(), key); }

    static constexpr RunRecord& Run = ::Run;  // the base class has a procedure of that name
    static constexpr std::int32_t kGreen = 0x00FF00, kYellow = 0x00FFFF, kOrange = 33023;
};
