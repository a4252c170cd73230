// The table of plotted points, filled from the job.
#include "graphics/scene.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "core/job.h"
#include "core/run.h"
#include "core/settings.h"
#include "graphics/projection.h"
#include "graphics/screen_window.h"
#include "graphics/tolerance.h"

namespace corvinade::graphics {

namespace {

struct SceneCounts {
    int Ident = 0, MCSOnly = 0, OCSOnly = 0;
    int Rows() const { return 2 * Ident + MCSOnly + OCSOnly; }
};

SceneCounts CountsOfJob() {
    if (!IsTrue(Run.JobDataValid)) return {};
    return {Job.Pairs(), Job.StartOnly(), Job.TargetOnly()};
}

float AsFloat(const TaggedValue& value) {
    return static_cast<float>(value.value_or(0));
}

void SizeTables(int rows) {
    const std::size_t size = static_cast<std::size_t>(rows) + 1;
    for (const int column :
         {kSceneX, kSceneY, kSceneZ, kSceneSize, kSceneClass, kSceneColour, kSceneVecX, kSceneVecY,
          kSceneVecZ, kScenePlotted, kSceneDevX, kSceneDevY, kSceneDevZ, kSceneInside})
        Scene.Points[static_cast<std::size_t>(column)].assign(size, 0.0F);
    Scene.Rows = rows;
}

// Rows `first` .. of one block, with the points from number `from` of one of the job's sets. While points are
// read the transformed ones may be fewer: what is not there yet stands at the origin.
void FillBlock(int first, int count, const PointSet& points, int from) {
    const int there = std::clamp(points.Count() - from + 1, 0, count);
    for (int k = there; k < count; ++k) {
        const auto row = static_cast<std::size_t>(first + k);
        Scene.Points[kSceneX][row] = Scene.Points[kSceneY][row] = Scene.Points[kSceneZ][row] = 0;
        Scene.Points[kSceneInside][row] = 1.0F;
    }
    for (int k = 0; k < there; ++k) {
        const auto row = static_cast<std::size_t>(first + k);
        const auto point = static_cast<std::size_t>(from + k);
        Scene.Points[kSceneX][row] = AsFloat(points.X[point]);
        Scene.Points[kSceneY][row] = AsFloat(points.Y[point]);
        Scene.Points[kSceneZ][row] = static_cast<float>(points.Z[point]);
        Scene.Points[kSceneInside][row] = 1.0F;
    }
}

// Raw deviations of the pairs and their lengths.
void FillDeviations() {
    for (int i = 1; i <= Scene.Ident; ++i) {
        const auto row = static_cast<std::size_t>(i);
        const Vec3 start = TransformedPoint(i), target = TargetPoint(i);
        const double x = start(1) - target(1), y = start(2) - target(2), z = start(3) - target(3);
        Scene.Points[kSceneDevX][row] = static_cast<float>(x);
        Scene.Points[kSceneDevY][row] = static_cast<float>(y);
        Scene.Points[kSceneDevZ][row] = static_cast<float>(z);
        Scene.Points[kSceneSize][row] = static_cast<float>(std::sqrt(x * x + y * y + z * z));
    }
}

bool AnyCoordinateInUse(int point) {
    return Used(point, 1) || Used(point, 2) || Used(point, 3);
}

// Column 12. The filters by use only ever switch the row of the start point on: they act as filters where the
// plot switch of these points is off.
void FillPlotted(const ScreenWindow& window) {
    std::vector<float>& plotted = Scene.Points[kScenePlotted];
    const std::vector<float>& classes = Scene.Points[kSceneClass];
    const auto begin = plotted.begin() + 1;
    const auto block = [begin](int first, int count, bool shown) {
        std::fill_n(begin + first, count, shown ? 1.0F : 0.0F);
    };
    const PictureLook look = LookOf(window);
    block(0, Scene.Ident, look.StartPoints);
    block(Scene.Ident, Scene.Ident, look.Targets);
    block(2 * Scene.Ident, Scene.MCSOnly, look.StartPointsAlone);
    block(2 * Scene.Ident + Scene.MCSOnly, Scene.OCSOnly, look.TargetsAlone);

    const bool used = IsTrue(Settings.ViewOnlyIfTrafo), unused = IsTrue(Settings.ViewOnlyIfNotTrafo);
    const bool hideOutside = IsTrue(Settings.DontViewOOT);
    if (!used && !unused && !hideOutside) return;
    const auto above = static_cast<float>(window.State.AnzKlassenPos);
    const auto below = -static_cast<float>(window.State.AnzKlassenNeg);
    for (int i = 1; i <= Scene.Ident; ++i) {
        const auto row = static_cast<std::size_t>(i);
        if (used || unused) {
            const bool inUse = AnyCoordinateInUse(i);
            if ((used && inUse) || (unused && !inUse)) plotted[row] = 1.0F;
        }
        if (hideOutside && (classes[row] > above || classes[row] < below)) plotted[row] = 0.0F;
    }
}

bool BuiltFromPresentJob() {
    const SceneCounts counts = CountsOfJob();
    return Scene.Ident == counts.Ident && Scene.MCSOnly == counts.MCSOnly &&
           Scene.OCSOnly == counts.OCSOnly && Scene.JobGeneration == Run.JobGeneration && Scene.Stamp != 0;
}

void SizeFlagIndex(ScreenWindow& window) {
    if (window.State.FlagIndex.size() == static_cast<std::size_t>(Scene.Rows)) return;
    window.State.FlagIndex.resize(static_cast<std::size_t>(Scene.Rows));
    window.State.FlagIndexShape.clear();
}

// The points of the table, without deviations, classes and view.
void FillPoints(ScreenWindow& window) {
    const SceneCounts counts = CountsOfJob();
    Scene.Ident = counts.Ident;
    Scene.MCSOnly = counts.MCSOnly;
    Scene.OCSOnly = counts.OCSOnly;
    Scene.JobGeneration = Run.JobGeneration;
    ++Scene.Stamp;
    Scene.PixelsOf = 0;
    SizeTables(counts.Rows());
    Scene.InsideOf = {};  // the next paint hides what is behind the planes
    SizeFlagIndex(window);
    FillBlock(1, Scene.Ident, Job.Transformed, 1);
    FillBlock(Scene.Ident + 1, Scene.Ident, Job.Target, 1);
    FillBlock(2 * Scene.Ident + 1, Scene.MCSOnly, Job.Transformed, Scene.Ident + 1);
    FillBlock(2 * Scene.Ident + Scene.MCSOnly + 1, Scene.OCSOnly, Job.Target, Scene.Ident + 1);
    ForgetClasses();
    Scene.PaintStale = true;
}

}  // namespace

const std::string& ScenePointName(int row) {
    static const std::string kNone;
    const auto name = [](const std::vector<std::string>& names, int point) -> const std::string& {
        return point >= 1 && point <= UpperBound(names) ? names[static_cast<std::size_t>(point)] : kNone;
    };
    if (row < 1 || row > Scene.Rows) return kNone;
    if (row <= Scene.Ident) return name(Job.Target.Name, row);
    if (row <= 2 * Scene.Ident) return name(Job.Target.Name, row - Scene.Ident);
    if (row <= 2 * Scene.Ident + Scene.MCSOnly) return name(Job.Transformed.Name, row - Scene.Ident);
    return name(Job.Target.Name, row - Scene.Ident - Scene.MCSOnly);
}

void Grafik_Festlegen(ScreenWindow& window) {
    FillPoints(window);
    Transform_dev_to_klasse(window);
    rechne_PixelCloud(window);
    FillDeviations();  // writes the plain lengths over the sizes that colour the points
    ForgetClasses();
    FillPlotted(window);
    Scene.PlottedFor = &window;
    Scene.PaintStale = true;
}

void SceneForWindow(ScreenWindow& window) {
    if (!BuiltFromPresentJob()) {
        FillPoints(window);
        FillDeviations();
    }
    SizeFlagIndex(window);
    Transform_dev_to_klasse(window);  // new classes leave column 12 to nobody
    if (Scene.PlottedFor == &window) return;
    FillPlotted(window);
    Scene.PlottedFor = &window;
    Scene.PaintStale = true;
}

}  // namespace corvinade::graphics
