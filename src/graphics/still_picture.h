// A picture of the scene in a size of its own, made beside the graphics windows: nothing of them, of the job
// or of the settings is changed by it.
#pragma once

#include "core/rooms.h"
#include "graphics/screen_window.h"

namespace corvinade::graphics {

struct StillSetup {
    int Width = 0, Height = 0;  // logical pixels
    double Scale = 1;           // pixels of the picture to one of these
    Colour BackColor = 0;
    PictureLook Look;
    void (*Fill)(Surface&) = nullptr;
};

class StillPicture {
public:
    explicit StillPicture(const StillSetup& setup);
    ~StillPicture();
    StillPicture(const StillPicture&) = delete;
    StillPicture& operator=(const StillPicture&) = delete;

    ScreenWindow Window;  // no graphics window that anybody can reach

private:
    Vec3 center_;
};

// Takes a view without painting it.
void TakeView(ScreenWindow& window, const ScreenRecord& view, bool withFlags);

// The window has taken the view of a picture of `width` by `height` pixels: it shows the same section of the
// scene in its own size, with the flags where they were beside their points.
void ScaleView(ScreenWindow& window, double width, double height);

// The view of an open graphics window, or a saved view of the job, painted.
void PaintWindow(StillPicture& picture, const ScreenWindow& shown);
void PaintSavedView(StillPicture& picture, int number);

}  // namespace corvinade::graphics
