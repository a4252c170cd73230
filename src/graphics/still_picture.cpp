// A picture of the scene in a size of its own.
#include "graphics/still_picture.h"

#include <algorithm>

#include "core/job.h"
#include "fit/require.h"
#include "graphics/black_planes.h"
#include "graphics/drawing.h"
#include "graphics/flags.h"
#include "graphics/picture_flags.h"
#include "graphics/projection.h"
#include "graphics/scene.h"
#include "graphics/view_values.h"

namespace corvinade::graphics {

StillPicture::StillPicture(const StillSetup& setup) : center_(Scene.RotCenter) {
    Window.Id = ++Screens().Count;
    Window.OwnLook = setup.Look;
    Window.BackColor = setup.BackColor;
    Window.Fill = setup.Fill;
    Surface& screen = Window.Screen;
    screen.Width = std::max(setup.Width, 1);
    screen.Height = std::max(setup.Height, 1);
    screen.Scale = setup.Scale;
    if (setup.Fill != nullptr) setup.Fill(screen);
}

// The tables of the scene are those of a window that is there no more.
StillPicture::~StillPicture() {
    if (Window.Screen.Close != nullptr) Window.Screen.Close(Window.Screen);
    if (Scene.PlottedFor == &Window) Scene.PlottedFor = nullptr;
    Scene.PixelsOf = 0;
    Scene.PaintStale = true;
    Scene.RotCenter = center_;
}

void TakeView(ScreenWindow& window, const ScreenRecord& view, bool withFlags) {
    window.State = view;
    MakeViewUsable(window.State);
    ScreenRecord& state = window.State;
    if (!withFlags) {
        state.FlagIndex.clear();
        state.Flags.clear();
        state.FlagCount = state.ActiveFlag = 0;
    }
    state.FlagIndex.resize(static_cast<std::size_t>(Scene.Rows));
    state.FlagIndexShape.clear();
}

void ScaleView(ScreenWindow& window, double width, double height) {
    ScreenRecord& state = window.State;
    const double W = PictureWidth(window), H = PictureHeight(window);
    const double ratio = std::min(W / width, H / height);
    state.BildOffsetX = static_cast<float>(W / 2 - (width / 2 - state.BildOffsetX) * ratio);
    state.BildOffsetY = static_cast<float>(H / 2 - (height / 2 - state.BildOffsetY) * ratio);
    state.BildFaktor = static_cast<float>(state.BildFaktor * ratio);
    state.Vec_Maßstab = static_cast<float>(state.Vec_Maßstab * ratio);
    MakeViewUsable(state);
    PlaceFlagsOfView(window, width, height, ratio);
}

void PaintWindow(StillPicture& picture, const ScreenWindow& shown) {
    ScreenWindow& window = picture.Window;
    SceneForWindow(window);
    TakeView(window, shown.State, true);
    window.State.ActiveFlag = 0;
    window.LabelFont = shown.LabelFont;
    window.Measure = shown.Measure;
    rechne_PixelCloud(window);
    ScaleView(window, PictureWidth(shown), PictureHeight(shown));
    Stelle_Grafik_dar(window);
}

void PaintSavedView(StillPicture& picture, int number) {
    Require(number >= 1 && number <= Job.nSavedViews);
    ScreenWindow& window = picture.Window;
    ScreenRecord view = Job.SavedView[static_cast<std::size_t>(number)];
    KeepPlanesInWorld(view, Vec3(), Scene.RotCenter);
    SceneForWindow(window);
    TakeView(window, view, true);
    window.State.ActiveFlag = 0;
    rechne_PixelCloud(window);
    const bool sized = view.WindowWidth > 0 && view.WindowHeight > 0;
    ScaleView(window, sized ? view.WindowWidth : PictureWidth(window),
              sized ? view.WindowHeight : PictureHeight(window));
    Stelle_Grafik_dar(window);
}

}  // namespace corvinade::graphics
