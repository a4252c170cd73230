// The tables above all rooms: every window, every record with mutable state, everything that follows a
// change, and what rooms above an import or a calculation do for it.
#include <algorithm>
#include <vector>

#include "analysis/analysis_changes.h"
#include "analysis/form_batch.h"
#include "analysis/form_change_dir.h"
#include "analysis/form_distance_scale.h"
#include "analysis/form_export.h"
#include "analysis/form_grafik.h"
#include "analysis/form_input_statistic.h"
#include "analysis/form_main_sheet.h"
#include "analysis/form_options.h"
#include "analysis/form_reliability.h"
#include "analysis/form_trompete.h"
#include "bundle/bundle_records.h"
#include "bundle/form_buendel.h"
#include "bundle/network.h"
#include "core/changes.h"
#include "core/controller.h"
#include "core/desktop_defaults.h"
#include "core/form_help_info.h"
#include "core/form_main.h"
#include "core/form_notes.h"
#include "core/form_progress_bar.h"
#include "core/form_recovery.h"
#include "core/form_start.h"
#include "core/form_units.h"
#include "core/fresh_start.h"
#include "core/job.h"
#include "core/notes.h"
#include "core/numbers.h"
#include "core/records.h"
#include "core/recovery.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/units.h"
#include "engine/adjustment.h"
#include "engine/best_fit.h"
#include "engine/calculation.h"
#include "engine/calculation_window.h"
#include "engine/engine_changes.h"
#include "engine/engine_records.h"
#include "engine/form_trafo_berechnung.h"
#include "engine/form_trafo_details.h"
#include "engine/inverse.h"
#include "engine/job_calculation.h"
#include "engine/monte_carlo.h"
#include "engine/noise.h"
#include "engine/norms.h"
#include "engine/result_state.h"
#include "engine/selection.h"
#include "engine/transform.h"
#include "engine/undo.h"
#include "graphics/ellipsoids.h"
#include "graphics/form_black_plane.h"
#include "graphics/form_color_bar.h"
#include "graphics/form_edit_fahne.h"
#include "graphics/form_graphics_options.h"
#include "graphics/form_picture.h"
#include "graphics/form_report.h"
#include "graphics/form_save_view.h"
#include "graphics/graphics_refresh.h"
#include "graphics/point_trust.h"
#include "graphics/scene.h"
#include "graphics/screen_window.h"
#include "graphics/tolerance.h"
#include "import/form_input_files.h"
#include "import/form_table.h"
#include "import/import_changes.h"
#include "import/input_tables.h"
#include "import/long_import.h"
#include "import/matching.h"
#include "import/readers_above.h"
#include "import/robot_files.h"
#include "paraboloid/form_stop_para_trafo.h"
#include "paraboloid/paraboloid.h"
#include "paraboloid/paraboloid_records.h"

namespace corvinade::core {

namespace {

const WindowEntry* const kWindows[] = {
    &FormMain_Entry,
    &FormUnits_Entry,
    &FormMenuHelpInfo_Entry,
    &FormProgressBar_Entry,
    &FormInputFiles_Entry,
    &FormInputStatistic_Entry,
    &FormOptions_Entry,
    &FormTrafoBerechnung_Entry,
    &FormTrafoDetails_Entry,
    &FormMainSheet_Entry,
    &FormColorBar_Entry,
    &FormSaveView_Entry,
    &FormDistanceScale_Entry,
    &FormTrompete_Entry,
    &FormStopParaTrafo_Entry,
    &FormBündel_Entry,
    &FormBatch_Entry,
    &FormChangeDir_Entry,
    &FormGraphicsOptions_Entry,
    &FormBlackPlane_Entry,
    &FormGrafik_Entry,
    &FormEditFahne_Entry,
    &FormNotes_Entry,
    &FormTable_Entry,
    &FormExport_Entry,
    &FormReport_Entry,
    &FormPicture_Entry,
    &FormReliability_Entry,
    &FormRecovery_Entry,
    &FormStart_Entry,
};

// Windows are records too; they are reset by way of their own table.
void (*const kRecords[])() = {
    [] { Job = JobRecord{}; },
    [] { Run = RunRecord{}; },
    [] { Changes = ChangesRecord{}; },
    [] {
        EndRecovery();
        Recovery = RecoveryRecord{};
    },
    [] { Notes = NotesRecord{}; },
    [] { Settings = SettingsRecord{}; },
    [] { DesktopDefaults = DesktopDefaultsRecord{}; },
    [] { WrittenNumbers = WrittenNumbersRecord{}; },
    [] { Units = UnitsRecord{}; },
    [] { Chain = ChainRecord{}; },
    [] { Selection = SelectionRecord{}; },
    [] { Adjustment = AdjustmentRecord{}; },
    [] { Calculation = CalculationRecord{}; },
    [] { CalculationWindow = CalculationWindowRecord{}; },
    [] { Norm = NormRecord{}; },
    [] { ShownResult = ResultStateRecord{}; },
    [] { Undo = UndoRecord{}; },
    [] { Certificate = CertificateRecord{}; },
    [] { MonteCarlo = MonteCarloRecord{}; },
    [] { Noise = NoiseRecord{}; },
    [] { Inverse = InverseRecord{}; },
    [] { Spezial = SpezialRecord{}; },
    [] { Tables = InputTablesRecord{}; },
    [] { Bundle = BundleRecord{}; },
    [] { LongImport = LongImportRecord{}; },
    [] { SigmasUnderWay = PairedSigmas{}; },
    [] { ProgramPoses = ProgramPosesRecord{}; },
    [] { MainSheet = MainSheetRecord{}; },
    [] { DistanceScale = DistanceScaleRecord{}; },
    [] {
        for (const auto& window : Screens().Open)
            if (window->Screen.Close != nullptr) window->Screen.Close(window->Screen);
        Screens() = ScreensRecord{};
    },
    [] { ParaboloidRun = ParaboloidRecord{}; },
    [] { Scene = SceneRecord{}; },
    [] { Tolerance = ToleranceRecord{}; },
    [] { PointTrust = PointTrustRecord{}; },
    [] { Ellipsoids = EllipsoidsRecord{}; },
    [] { SaveViewAnswer = SaveViewRecord{}; },
    [] { ChangeDirAnswer = ChangeDirRecord{}; },
    [] { ReportWish = ReportChoice{}; },
    [] { PictureWish = PictureOrder{}; },
};

}  // namespace

std::span<const WindowEntry* const> AllWindows() {
    return kWindows;
}

std::span<const std::span<const RecordEntry>> AllRecords() {
    static const std::span<const RecordEntry> kTables[] = {CoreRecords(), EngineRecords(), AnalysisRecords(),
                                                           ParaboloidRecords(), BundleRecords()};
    return kTables;
}

}  // namespace corvinade::core

namespace corvinade::import {

std::span<const ReaderAbove> AllReadersAbove() {
    static constexpr ReaderAbove kRows[] = {
        {FileAbove::Shape, TakeShape},
        {FileAbove::Network, [](const TargetFile& file) { ReadBundleFile(file.Path); }},
    };
    return kRows;
}

}  // namespace corvinade::import

namespace corvinade::engine {

std::span<const CalculationAbove> AllCalculationsAbove() {
    static constexpr CalculationAbove kRows[] = {
        {[] { return IsTrue(Job.IsParaboloid); }, CalculateParaboloid},
    };
    return kRows;
}

}  // namespace corvinade::engine

namespace corvinade::core {

std::span<const ChangeRow> AllChangeRows() {
    static const std::vector<ChangeRow> kRows = [] {
        std::vector<ChangeRow> rows;
        for (const auto room : {CoreChanges(), EngineChanges(), ImportChanges(), BundleChanges(),
                                AnalysisChanges(), GraphicsChanges()})
            rows.insert(rows.end(), room.begin(), room.end());
        std::ranges::stable_sort(rows, {}, &ChangeRow::Place);
        return rows;
    }();
    return kRows;
}

void FreshStart() {
    for (void (*const reset)() : kRecords) reset();
    for (const WindowEntry* window : kWindows) MakeFresh(*window);
}

}  // namespace corvinade::core
