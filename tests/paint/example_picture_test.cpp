// The picture of the job that the manual begins with.
#include <QImage>
#include <algorithm>
#include <cmath>

#include "core/job.h"
#include "core/job_file.h"
#include "core/settings.h"
#include "core/window.h"
#include "graphics/drawing.h"
#include "graphics/scene.h"
#include "graphics/screen_window.h"
#include "graphics/views.h"
#include "paint/image.h"
#include "paint/picture.h"
#include "support/fixture.h"

using namespace corvinade;

using ExamplePicture = Program;

TEST_F(ExamplePicture, ShowsEveryPointInItsColourWithItsName) {
    FillSurface = FillSurfaceWithPicture;
    OpenFile(CORVINADE_SOURCE_DIR "/examples/robot_cell.cvn");
    ASSERT_GT(Job.Pairs(), 0);
    Job.ViewAllMCS = kTrue;
    Job.ViewAllOCS = kFalse;  // the ends of the deviations would lie on top
    Settings.ShowPointNames = kTrue;
    ScreenWindow& window = OpenScreenWindow();
    FillSurface = nullptr;
    IsoView(window);
    GrafikAnpassen(window);
    const QImage bare = BarePictureOf(window), picture = PictureOf(window);
    for (int row = 1; row <= Job.Pairs(); ++row) {
        const auto k = static_cast<std::size_t>(row);
        const auto column = static_cast<int>(std::lround(Scene.PixelX[k]));
        const auto line = static_cast<int>(std::lround(Scene.PixelY[k]));
        ASSERT_TRUE(bare.rect().adjusted(1, 1, -1, -1).contains(column, line)) << row;
        // The axes begin on the first point, so a part of its square is enough.
        int painted = 0;
        for (int dy = -1; dy <= 1; ++dy)
            for (int dx = -1; dx <= 1; ++dx)
                painted += bare.pixel(column + dx, line + dy) ==
                                   PixelOf(static_cast<Colour>(Scene.Points[kSceneColour][k]))
                               ? 1
                               : 0;
        EXPECT_GE(painted, 3) << row;
        const auto label =
            std::find_if(window.Labels.begin(), window.Labels.end(), [k](const ScreenLabel& candidate) {
                return candidate.Text == Job.Target.Name[k] && candidate.X == Scene.PixelX[k] + 5;
            });
        ASSERT_NE(label, window.Labels.end()) << Job.Target.Name[k];
        const QRect place(static_cast<int>(label->X), static_cast<int>(label->Y), 20, 14);
        EXPECT_NE(picture.copy(place), bare.copy(place)) << label->Text;
    }
}
