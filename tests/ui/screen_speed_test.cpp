// A million points follow the mouse on the desktop.
#include <QBackingStore>
#include <ctime>
#include <iostream>

#include "core/controller.h"
#include "graphics/scene.h"
#include "ui/screen_fixture.h"

using namespace corvinade;

namespace {

constexpr int kPoints = 1000000;
constexpr int kSteps = 20;

// A plate of a million points, bent by up to 2 mm. Only what pictures need.
void FillJob() {
    Job = JobRecord{};
    const auto count = static_cast<std::size_t>(kPoints);
    for (PointSet* points : {&Job.Start, &Job.Target, &Job.Transformed}) points->Resize(kPoints);
    for (int i = 0; i < kPoints; ++i) {
        const double x = i % 1000 * 4.0, y = i / 1000 * 4.0, bent = x * x * 2 / 16e6;
        for (PointSet* points : {&Job.Start, &Job.Target, &Job.Transformed}) {
            points->Name[static_cast<std::size_t>(i) + 1] = "P";
            points->SetPoint(i + 1, x, y, points == &Job.Target ? 0 : bent);
        }
    }
    Job.UseFlags.assign(3 * count + 1, 1);
    for (auto* column : {&Job.RVecX, &Job.RVecY}) column->resize(count + 1);
    Job.RVecZ.resize(count + 1);
    Job.SetPairs(kPoints);
    Job.ViewAllMCS = kTrue;
    Job.LengthUnitName = "mm";
    ::Run.JobDataValid = kTrue;
    ++::Run.JobGeneration;
    ProgrammLogik();
}

double ProcessorSeconds() {
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

}  // namespace

TEST_F(ScreenByHand, AMillionPointsFollowTheMouse) {
    Begin();
    UserDid(FillJob);
    const ScreenWindow& window = OpenScreen();
    Frame()->resize(1720, 1240);
    Serve();
    Outer(window).setGeometry(0, 0, 1608, 1028);
    Serve();
    ASSERT_GE(window.Screen.Width, 1590);
    ScreenView& view = View(window);
    QTest::mousePress(&view, Qt::LeftButton, Qt::ShiftModifier, {400, 400});
    const auto paints = window.PaintCount;
    const double begin = ProcessorSeconds();
    for (int step = 1; step <= kSteps; ++step) {
        const QPointF at(400 + 5 * step, 400 + 4 * step);
        QMouseEvent move(QEvent::MouseMove, at, view.mapToGlobal(at), Qt::NoButton, Qt::LeftButton,
                         Qt::ShiftModifier);
        QApplication::sendEvent(&view, &move);
        Serve();
    }
    const double frame = (ProcessorSeconds() - begin) / kSteps;
    EXPECT_EQ(window.PaintCount, paints + kSteps);
    std::cout << "a frame of a million points: " << frame * 1000 << " ms\n";
}
