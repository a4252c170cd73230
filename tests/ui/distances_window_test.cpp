// The distance scale and its trumpet plot on the screen.
#include <QAbstractButton>
#include <QFile>
#include <QImage>
#include <QLabel>
#include <QMdiSubWindow>
#include <QTableView>

#include "analysis/form_distance_scale.h"
#include "analysis/form_trompete.h"
#include "core/job.h"
#include "core/run.h"
#include "core/units.h"
#include "ui/desktop.h"
#include "ui/desktop_fixture.h"
#include "ui/frame.h"
#include "ui/qt_text.h"
#include "ui/theme.h"

using namespace corvinade;

namespace {

class DistancesByHand : public DesktopTest {
protected:
    // Distances A B 5, A C 13, B C 12 at the start and 6, 16, 10 at the target.
    void Import() {
        Begin();
        Trigger("MenuFileInputFiles");
        Type("FormInputFiles.TextNameMCS", Write("start.txt", "A;0;0;0\nB;3;4;0\nC;3;4;12\n"));
        Type("FormInputFiles.TextNameOCS", Write("target.txt", "A;10;0;0\nB;16;0;0\nC;26;0;0\n"));
        Click("FormInputFiles.BtnOK");
        ASSERT_EQ(Job.Pairs(), 3);
    }
    void OpenPlot() {
        Import();
        Trigger("MenuTransformationDistanceScale");
        Click("FormDistanceScale.BtnTrumpetGraph");
        ASSERT_TRUE(IsOpen("FormTrompete"));
        WaitUntilDrawn();
    }
    static QWidget& Plot() { return *Widget("FormTrompete.Trumpet"); }
    static void WaitUntilDrawn() {
        EXPECT_TRUE(QTest::qWaitFor(
            [] {
                return Trumpet.Drawn && Trumpet.Place.Width == Plot().width() &&
                       Trumpet.Place.Height == Plot().height();
            },
            kPatience_ms));
        QTest::qWait(20);
    }
    static QPoint PlaceOf(double distance, double delta) {
        const TrumpetPlot plot = PlotOf(Trumpet.Range, Trumpet.Place);
        return QPointF(plot.X(distance), plot.Y(delta)).toPoint();
    }
    static std::string PairShown() {
        return S(qobject_cast<QLabel*>(Widget("FormTrompete.LabelPair"))->text());
    }
    static QImage Picture() { return Plot().grab().toImage(); }
    // Whether a pixel near the place has the colour of the points.
    static bool IsPoint(const QImage& picture, QPoint place) {
        const QColor colour = Plot().palette().color(QPalette::Link);
        return picture.pixelColor(place * picture.devicePixelRatio()) == colour;
    }
};

TEST_F(DistancesByHand, TheTableShowsItsRowsAndFollowsTheOptions) {
    Import();
    Trigger("MenuTransformationDistanceScale");
    ASSERT_TRUE(IsOpen("FormDistanceScale"));
    const auto* table = qobject_cast<QTableView*>(Widget("FormDistanceScale.TabelleScale"));
    ASSERT_EQ(table->model()->rowCount(), 3);
    EXPECT_EQ(table->model()->index(2, 0).data().toString(), QStringLiteral("C"));
    EXPECT_EQ(table->model()->index(2, 1).data().toString(), QStringLiteral("3.000"));
    EXPECT_EQ(table->model()->headerData(9, Qt::Horizontal).toString(),
              QStringLiteral("Schnitt Abs(delta s)"));
    Click("FormDistanceScale.OptionWithCal");
    EXPECT_EQ(DistanceScale.WithCal, kTrue);
    EXPECT_FALSE(qobject_cast<QAbstractButton*>(Widget("FormDistanceScale.OptionWithoutCal"))->isChecked());
}

TEST_F(DistancesByHand, TheFileIsNamedByADialog) {
    Import();
    Trigger("MenuTransformationDistanceScale");
    ChooseNext(PathOf("pairs.txt"));
    Click("FormDistanceScale.BtnSaveTrumpetData");
    QFile file(Q(PathOf("pairs.txt")));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(),
              QByteArray("A\tB\t5\t6\t1.000\r\nA\tC\t13\t16\t3.000\r\nB\tC\t12\t10\t-2.000\r\n"));
}

TEST_F(DistancesByHand, AFileThatIsThereIsAskedForOnce) {
    Import();
    Trigger("MenuTransformationDistanceScale");
    Write("pairs.txt", "old");
    ChooseNext(PathOf("pairs.txt"));
    AnswerNext("Yes");
    Click("FormDistanceScale.BtnSaveTrumpetData");
    EXPECT_EQ(messages_, std::vector<std::string>{"File " + PathOf("pairs.txt") +
                                                  " is existing.\r\nWill you replace it?"});
    QFile file(Q(PathOf("pairs.txt")));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll().left(4), QByteArray("A\tB\t"));
}

TEST_F(DistancesByHand, EveryPairIsAPointOfThePlot) {
    OpenPlot();
    const QImage picture = Picture();
    EXPECT_TRUE(IsPoint(picture, PlaceOf(6, 1)));
    EXPECT_TRUE(IsPoint(picture, PlaceOf(16, 3)));
    EXPECT_TRUE(IsPoint(picture, PlaceOf(10, -2)));
    EXPECT_FALSE(IsPoint(picture, PlaceOf(8, 2)));
}

TEST_F(DistancesByHand, ThePointUnderTheMouseNamesItsPair) {
    OpenPlot();
    QTest::mouseMove(&Plot(), PlaceOf(16, 3) + QPoint(2, 1));
    EXPECT_TRUE(QTest::qWaitFor([] { return !PairShown().empty(); }, kPatience_ms));
    EXPECT_EQ(PairShown(), "A - C: distance 16.000, delta s 3.000 " + Job.LengthUnitName);
    QTest::mouseMove(&Plot(), PlaceOf(8, 2));
    EXPECT_TRUE(QTest::qWaitFor([] { return PairShown().empty(); }, kPatience_ms));
}

TEST_F(DistancesByHand, ThePlotFollowsItsSize) {
    OpenPlot();
    WidgetOf(FormTrompete_Entry)->parentWidget()->resize(700, 420);
    WaitUntilDrawn();
    EXPECT_TRUE(IsPoint(Picture(), PlaceOf(10, -2)));
}

TEST_F(DistancesByHand, ThePlotHasTheColoursOfTheTheme) {
    OpenPlot();
    const QColor light = Picture().pixelColor(2, 2);
    UserDid([] { StoreTheme(Theme::Dark); });
    ShowStoredTheme();
    ShowState();
    QTest::qWait(50);
    const QImage dark = Picture();
    EXPECT_NE(dark.pixelColor(2, 2), light);
    EXPECT_EQ(dark.pixelColor(2, 2), Plot().palette().color(QPalette::Base));
    EXPECT_TRUE(IsPoint(dark, PlaceOf(16, 3)));
}

TEST_F(DistancesByHand, OtherUnitsAreAtTheAxesAtOnce) {
    OpenPlot();
    const QImage before = Picture();
    Units.LengthFactor = 0.1;
    Job.LengthUnitName = "centimeter";
    ShowState();
    QTest::qWait(50);
    EXPECT_NE(Picture(), before);
}

// 3,000 points have 4.5 million pairs. Once they are painted, moving the mouse paints none of them.
TEST_F(DistancesByHand, MillionsOfPairsArePaintedOnce) {
    OpenPlot();
    auto points = std::make_shared<DistancePoints>();
    std::uint32_t random = 1;
    const auto next = [&random] {
        random = random * 1664525U + 1013904223U;
        return static_cast<double>(random) / 4294967296.0;
    };
    for (int i = 1; i <= 3000; ++i) {
        points->Names.push_back("P" + std::to_string(i));
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const double place = 5000 * next();
            points->From[axis].push_back(place);
            points->To[axis].push_back(place + next());
        }
    }
    DistanceScale.Points = points;
    UserDid([] { Trumpet_PointsChanged(); });
    WaitUntilDrawn();
    Picture();
    const auto drawings = Trumpet.Drawings;
    // Whoever painted the pairs again would find none any more.
    for (TrumpetRaster::PairAt& pair : Trumpet.Raster.Pixels) pair = {};
    const QImage before = Picture();
    constexpr int kMoves = 100;
    for (int k = 0; k < kMoves; ++k) {
        QTest::mouseMove(&Plot(), {100 + 4 * k, 100 + 2 * k});
        QApplication::processEvents();
        Plot().repaint();
    }
    EXPECT_EQ(Trumpet.Drawings, drawings);
    EXPECT_EQ(Picture(), before);
    int ofPairs = 0;
    for (int x = 0; x < before.width(); ++x)
        for (int y = 0; y < before.height(); ++y)
            ofPairs += before.pixelColor(x, y) == Plot().palette().color(QPalette::Link) ? 1 : 0;
    EXPECT_GT(ofPairs, 1000);
}

}  // namespace
