// The window that compares the distances between all pairs of identical points in the two systems.
#pragma once

#include <array>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "analysis/distance_pairs.h"
#include "core/arrays.h"
#include "core/records.h"
#include "core/rooms.h"
#include "core/window.h"

namespace corvinade::analysis {

struct FormDistanceScale {
    WindowState Window{.Caption = "Distance Scale"};

    Control OptionWithoutCal;
    Control OptionWithCal;
    Control BtnSaveTrumpetData;
    Control BtnTrumpetGraph;
    Control TabelleScale;

    static void Form_Load();
    static void Form_Escape();
    static void OptionWithoutCal_Click();
    static void OptionWithCal_Click();
    static void BtnSaveTrumpetData_Click();
    static void BtnTrumpetGraph_Click();
    static void TabelleScale_Click();
    static void TabelleScale_Key();
};
extern FormDistanceScale DistanceScaleWindow;
extern const WindowEntry FormDistanceScale_Entry;

inline constexpr int kDistanceScaleCols = 11;
extern const std::array<const char*, kDistanceScaleCols> kDistanceScaleHeadings;

// Measures all pairs of the job anew and fills the table. With many points it shows its progress; cancelled,
// it leaves the table without points.
void Distance_Calculation();
// The same where it or the trumpet plot is open, and the points are no longer those that were measured.
void DistanceScale_Refill();

// A cell of the table below its headings, with the present units and formats.
std::string DistanceScaleText(const DistancePoints& points, const DistanceExtremes& row, int point, int col);

// Outlives the windows: the trumpet plot stays when the table is closed.
struct DistanceScaleRecord {
    Flag WithCal = kFalse;  // the start points are the transformed ones
    std::shared_ptr<const DistancePoints> Points = std::make_shared<const DistancePoints>();
    std::vector<DistanceExtremes> Rows;  // by point, element 0 unused
    GridSort Sorting;
    std::uint64_t Calculations = 0;  // counts them; one that begins during a yield overtakes the other
};
inline DistanceScaleRecord DistanceScale;

// The room's records by name.
std::span<const RecordEntry> AnalysisRecords();

}  // namespace corvinade::analysis
