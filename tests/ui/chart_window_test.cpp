// The chart of a column of the main sheet on the screen.
#include <QChart>
#include <QChartView>
#include <QImage>
#include <QLineSeries>
#include <QMdiSubWindow>
#include <QScatterSeries>
#include <QValueAxis>

#include "analysis/form_grafik.h"
#include "analysis/form_main_sheet.h"
#include "core/job.h"
#include "ui/desktop.h"
#include "ui/desktop_fixture.h"
#include "ui/qt_text.h"
#include "ui/theme.h"

using namespace corvinade;

namespace {

class ChartByHand : public DesktopTest {
protected:
    // Deviations along x of 1, -2 and 3 mm.
    void OpenChart() {
        Begin();
        Trigger("MenuFileInputFiles");
        Type("FormInputFiles.TextNameMCS", Write("start.txt", "A;1;0;0\nB;98;4;0\nC;3;104;12\n"));
        Type("FormInputFiles.TextNameOCS", Write("target.txt", "A;0;0;0\nB;100;4;0\nC;0;104;12\n"));
        Click("FormInputFiles.BtnOK");
        ASSERT_EQ(Job.Pairs(), 3);
        Trigger("MenuVievMainSheet");
        UserDid([] { UserSelectCells(MainSheetWindow.MSFlexGrid1, {1, 7, 1, 7}); });
        Trigger("MenuEditGraphData");
        ASSERT_TRUE(IsOpen("FormGrafik"));
    }
    static void Serve() {
        for (int round = 0; round < 4; ++round) QApplication::processEvents();
    }
    static QChartView* View() { return Widget("FormGrafik.Chart")->findChild<QChartView*>(); }
};

}  // namespace

TEST_F(ChartByHand, TheChartShowsTheColumn) {
    OpenChart();
    ASSERT_NE(View(), nullptr);
    const QChart& chart = *View()->chart();
    EXPECT_EQ(S(chart.title()), "Datas Graph");
    EXPECT_GT(View()->width(), 600) << "nobody has stored a place yet";
    EXPECT_EQ(chart.plotAreaBackgroundBrush().color(), QColor(Qt::white));
    const auto* values = qobject_cast<QValueAxis*>(chart.axes(Qt::Vertical).value(0));
    ASSERT_NE(values, nullptr);
    EXPECT_EQ(S(values->titleText()), "[dev.]");
    EXPECT_EQ(values->min(), GrafikWindow.Min);
    EXPECT_EQ(values->max(), GrafikWindow.Max);
    EXPECT_EQ(S(chart.axes(Qt::Horizontal).value(0)->titleText()), "");
    ASSERT_EQ(chart.series().size(), 2);
    const auto* line = qobject_cast<QLineSeries*>(chart.series().at(0));
    const auto* markers = qobject_cast<QScatterSeries*>(chart.series().at(1));
    ASSERT_TRUE(line != nullptr && markers != nullptr);
    const QList<QPointF> expected = {{1, 1}, {2, -2}, {3, 3}};
    EXPECT_EQ(line->points(), expected);
    EXPECT_EQ(markers->points(), expected);
    EXPECT_EQ(line->pen().color(), QColor(255, 100, 100));
    EXPECT_EQ(markers->markerSize(), 7);
    EXPECT_EQ(markers->brush().color(), QColor(Qt::black));
}

TEST_F(ChartByHand, ItFillsTheWindowWhateverItsSize) {
    OpenChart();
    for (const QSize size : {QSize(500, 300), QSize(700, 520)}) {
        WidgetOf(FormGrafik_Entry)->parentWidget()->resize(size);
        Serve();
        const QWidget* form = WidgetOf(FormGrafik_Entry);
        EXPECT_EQ(View()->width(), form->width());
        EXPECT_EQ(View()->height(), form->height());
    }
}

TEST_F(ChartByHand, ItFollowsTheThemeAndTheData) {
    OpenChart();
    const auto picture = [] { return View()->grab().toImage(); };
    for (const Theme theme : {Theme::Light, Theme::Dark}) {
        UserDid([theme] { ApplyTheme(theme); });
        Serve();
        const QImage shown = picture();
        const QPalette palette = WidgetOf(FormGrafik_Entry)->palette();
        const int right = shown.width() - 4, middle = shown.height() / 2;
        for (const QPoint at : {QPoint(3, 3), QPoint(right, middle), QPoint(right - 14, 18)})
            EXPECT_EQ(shown.pixelColor(at), palette.color(QPalette::Window)) << at.x() << " " << at.y();
        EXPECT_EQ(View()->chart()->titleBrush().color(), palette.color(QPalette::WindowText));
        EXPECT_EQ(
            qobject_cast<QValueAxis*>(View()->chart()->axes(Qt::Vertical).value(0))->labelsBrush().color(),
            palette.color(QPalette::WindowText));
        const QRectF wall = View()->chart()->plotArea();
        const QPointF upperLeft = View()->chart()->mapToScene(wall.topLeft()) + QPointF(6, 6);
        EXPECT_EQ(shown.pixelColor((upperLeft * shown.devicePixelRatio()).toPoint()), QColor(Qt::white));
    }
    UserDid([] { UserSelectCells(MainSheetWindow.MSFlexGrid1, {1, 8, 1, 8}); });
    Trigger("MenuEditGraphData");
    EXPECT_EQ(qobject_cast<QLineSeries*>(View()->chart()->series().at(0))->points(),
              (QList<QPointF>{{1, 0}, {2, 0}, {3, 0}}));
}

TEST_F(ChartByHand, AMillionPointsStayInReach) {
    OpenChart();
    std::vector<ChartPoint> many;
    for (int i = 1; i <= 1000000; ++i)
        many.push_back({static_cast<double>(i), i == 777777 ? 5.0 : i % 7 * 0.1});
    UserDid([&] { Grafik(many, 0, static_cast<int>(many.size()) - 1); });
    const QList<QPointF> shown = qobject_cast<QLineSeries*>(View()->chart()->series().at(0))->points();
    EXPECT_LE(shown.size(), 4000);
    EXPECT_TRUE(shown.contains(QPointF(777777, 5))) << "what stands out is kept";
    EXPECT_TRUE(std::is_sorted(shown.begin(), shown.end(),
                               [](const QPointF& a, const QPointF& b) { return a.x() < b.x(); }));
}
