// The window of the trumpet plot.
#include "analysis/form_trompete.h"

#include <memory>
#include <utility>

#include "analysis/form_distance_scale.h"
#include "analysis/pair_progress.h"
#include "core/job.h"
#include "core/platform.h"

namespace corvinade::analysis {

FormTrompete Trumpet;

namespace {

FormTrompete& w = Trumpet;

const ControlEntry kControls[] = {
    {"Trumpet", &w.Trumpet, Plot()},
    {"LabelPair", &w.LabelPair, Label("")},
};

// Steps of a few nanoseconds that a pair takes.
constexpr std::int64_t kStepsOfAPair = 2;

void TakePairUnderMouse(const TrumpetRaster::PairAt& pair) {
    w.Under = pair;
    SetText(w.LabelPair, pair.From == 0 ? "" : PairInWords(*DistanceScale.Points, pair.From, pair.To));
}

}  // namespace

const WindowEntry FormTrompete_Entry = {
    .Name = "FormTrompete",
    .State = &w.Window,
    .Controls = kControls,
    .Fresh = [] { w = FormTrompete{}; },
    .Load = FormTrompete::Form_Load,
    .Unload = FormTrompete::Form_Unload,
    .Escape = FormTrompete::Form_Escape,
};

void FormTrompete::Form_Load() {
    Trumpet_PointsChanged();
}

// Work on the picture that is under way finds no window any more.
void FormTrompete::Form_Unload() {
    ++w.Drawings;
}

void FormTrompete::Form_Escape() {
    UnloadWindow(FormTrompete_Entry.Name);
}

void Trumpet_PointsChanged() {
    if (!w.Window.Loaded) return;
    const BusyPointer busy;
    TakePairUnderMouse({});
    w.Drawn = w.Cut = w.RangeCut = false;
    ++w.Drawings;
    const std::shared_ptr<const DistancePoints> points = DistanceScale.Points;
    PairProgress progress("Trumpet Graph - Progress", kStepsOfAPair * points->Pairs());
    TrumpetRange range;
    const bool whole = RangeOfPairs(*points, range, [&](double share) {
        return progress.GoesOn(share) && w.Window.Loaded && DistanceScale.Points == points;
    });
    if (!w.Window.Loaded || DistanceScale.Points != points) return;
    w.Range = range;
    w.Cut = w.RangeCut = !whole;
}

void Trumpet_Resize(const TrumpetPlace& place) {
    if (place == w.Place) return;
    w.Place = place;
    w.Drawn = false;
}

void Trumpet_Draw() {
    if (!w.Window.Loaded || w.Drawn) return;
    const BusyPointer busy;
    const std::shared_ptr<const DistancePoints> points = DistanceScale.Points;
    const std::uint64_t drawing = ++w.Drawings;
    const TrumpetPlot plot = PlotOf(w.Range, w.Place);
    w.Drawn = true;  // looked at during a yield the picture is that of before
    PairProgress progress("Trumpet Graph - Progress", kStepsOfAPair * points->Pairs());
    TrumpetRaster raster = RasterOf(*points, plot, [&](double share) {
        return progress.GoesOn(share) && w.Window.Loaded && w.Drawings == drawing;
    });
    if (!w.Window.Loaded || w.Drawings != drawing) return;
    w.Cut = w.Cut || !raster.Whole;
    w.Raster = std::move(raster);
    ++w.Drawings;
}

void Trumpet_MouseMove(double x, double y) {
    if (!w.Window.Loaded || !w.Drawn) return;
    const TrumpetRaster::PairAt pair = PairNear(w.Raster, x, y, kTrumpetReach);
    if (pair.From != w.Under.From || pair.To != w.Under.To) TakePairUnderMouse(pair);
}

}  // namespace corvinade::analysis
