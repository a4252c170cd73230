// The chart of a column of the main sheet on the screen.
#include "ui/chart_view.h"

#include <QBuffer>
#include <QChart>
#include <QChartView>
#include <QEvent>
#include <QGraphicsScene>
#include <QGuiApplication>
#include <QImage>
#include <QLineSeries>
#include <QMarginsF>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QPen>
#include <QScatterSeries>
#include <QSvgGenerator>
#include <QTimer>
#include <QVBoxLayout>
#include <QValueAxis>
#include <QWidget>
#include <algorithm>
#include <cmath>
#include <exception>

#include "analysis/form_grafik.h"
#include "core/window.h"
#include "ui/desktop.h"
#include "ui/plain_text.h"
#include "ui/qt_text.h"

namespace corvinade::ui {

namespace {

constexpr const char* kPlace = "Chart";
constexpr const char* kView = "_ChartView";
constexpr const char* kShownFilling = "_filling";
constexpr const char* kShownPalette = "_palette";

constexpr qreal kMarker = 7;  // pixels
// More points than this are a band of ink: of each group the lowest and the highest stand for all, which
// leaves the same picture and a window that can be sized.
constexpr std::size_t kMostPoints = 4000;

const QColor kSeries(255, 100, 100), kWall(Qt::white);

QList<QPointF> ShownPoints() {
    const std::vector<ChartPoint>& points = GrafikWindow.Points;
    QList<QPointF> shown;
    const auto add = [&shown](const ChartPoint& point) { shown.append({point.Index, point.Value}); };
    if (points.size() <= kMostPoints) {
        std::for_each(points.begin(), points.end(), add);
        return shown;
    }
    const std::size_t groups = kMostPoints / 2;
    for (std::size_t group = 0; group < groups; ++group) {
        const auto first = points.begin() + static_cast<std::ptrdiff_t>(points.size() * group / groups);
        const auto end = points.begin() + static_cast<std::ptrdiff_t>(points.size() * (group + 1) / groups);
        const auto [low, high] = std::minmax_element(
            first, end, [](const ChartPoint& a, const ChartPoint& b) { return a.Value < b.Value; });
        add(*std::min(low, high));
        if (low != high) add(*std::max(low, high));
    }
    return shown;
}

// Whole numbers at the axis of the indices, few enough to be read.
void ShowIndices(QValueAxis& axis, const QList<QPointF>& points) {
    const double first = points.isEmpty() ? 1 : points.first().x();
    const double last = std::max(points.isEmpty() ? 1 : points.last().x(), first + 1);
    constexpr double kMostTicks = 12;
    const double rough = (last - first) / kMostTicks;
    const double power = std::pow(10.0, std::floor(std::log10(std::max(rough, 1.0))));
    double step = 10 * power;
    for (const double part : {5.0, 2.0, 1.0})
        if (part * power >= rough) step = part * power;
    axis.setTickType(QValueAxis::TicksDynamic);
    axis.setTickAnchor(0);
    axis.setTickInterval(step);
    axis.setLabelFormat(QStringLiteral("%.0f"));
    axis.setRange(first - 0.5, last + 0.5);
}

QValueAxis* AddAxis(QChart& chart, Qt::Alignment side, const std::string& title, const QColor& text) {
    auto* axis = new QValueAxis;
    chart.addAxis(axis, side);
    axis->setTitleText(PlainAsMarkup(Q(title)));
    axis->setTitleBrush(text);
    axis->setLabelsBrush(text);
    axis->setLinePenColor(Qt::darkGray);
    axis->setGridLinePen(QPen(QColor(225, 225, 225), 1));
    return axis;
}

// The wall is white in every palette; what stands around it has the colours of the screen.
QChart* NewChart(const QPalette& palette) {
    const FormGrafik& w = GrafikWindow;
    auto* chart = new QChart;
    const QColor text = palette.color(QPalette::WindowText);
    chart->setBackgroundVisible(false);
    chart->setPlotAreaBackgroundBrush(kWall);
    chart->setPlotAreaBackgroundVisible(true);
    chart->setTitle(PlainAsMarkup(Q(w.Title)));
    chart->setTitleBrush(text);
    chart->legend()->hide();
    if (w.Min == w.Max) return chart;

    QValueAxis* values = AddAxis(*chart, Qt::AlignLeft, w.ValueTitle, text);
    QValueAxis* indices = AddAxis(*chart, Qt::AlignBottom, w.CategoryTitle, text);
    const QList<QPointF> points = ShownPoints();
    constexpr int kTicks = 5;
    values->setRange(w.Min, w.Max);
    values->setTickCount(kTicks);
    ShowIndices(*indices, points);

    auto* line = new QLineSeries;
    line->setPen(QPen(kSeries, 1.5));
    auto* markers = new QScatterSeries;
    markers->setMarkerShape(QScatterSeries::MarkerShapeCircle);
    markers->setMarkerSize(kMarker);
    markers->setBrush(Qt::black);
    markers->setPen(QPen(kSeries, 1));
    line->replace(points);
    markers->replace(points);
    for (QXYSeries* series : {static_cast<QXYSeries*>(line), static_cast<QXYSeries*>(markers)}) {
        chart->addSeries(series);
        series->attachAxis(values);
        series->attachAxis(indices);
    }
    return chart;
}

class ChartView : public QChartView {
public:
    using QChartView::QChartView;
    QSize sizeHint() const override { return {760, 440}; }

protected:
    // Another theme reaches the widgets after the screen has been brought up to date.
    void changeEvent(QEvent* event) override {
        QChartView::changeEvent(event);
        if (event->type() == QEvent::PaletteChange && parentWidget() != nullptr)
            QTimer::singleShot(0, this, [this] { ShowChart(*parentWidget()); });
    }
};

QChartView* ViewOf(const QWidget& form) {
    return form.findChild<QChartView*>(QLatin1String(kView));
}

}  // namespace

void AddChart(QWidget& form) {
    auto* place = form.findChild<QWidget*>(QLatin1String(kPlace));
    if (place == nullptr) return;
    auto* layout = new QVBoxLayout(place);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* view = new ChartView(place);
    view->setObjectName(QLatin1String(kView));
    view->setRenderHint(QPainter::Antialiasing);
    view->setFrameShape(QFrame::NoFrame);
    layout->addWidget(view);
    ShowChart(form);
}

void ShowChart(const QWidget& form) {
    QChartView* view = ViewOf(form);
    if (view == nullptr) return;
    const QPalette& palette = view->palette();
    const QVariant filling = QVariant::fromValue<qulonglong>(GrafikWindow.Fillings),
                   colours = palette.cacheKey();
    if (view->property(kShownFilling) == filling && view->property(kShownPalette) == colours) return;
    view->setProperty(kShownFilling, filling);
    view->setProperty(kShownPalette, colours);
    view->setBackgroundBrush(palette.color(QPalette::Window));
    try {
        const QChart* before = view->chart();
        view->setChart(NewChart(palette));
        delete before;
    } catch (const std::exception&) {
        // From the event loop, since the screen is just being brought up to date.
        QTimer::singleShot(0, view, [] { UserDid([] { Dispatch(Grafik_Failed); }); });
    }
}

std::string ChartFile(const PictureOrder& order, PictureFormat format) {
    constexpr double kScreenDots = 96, kInch_mm = 25.4, kInch_m = 0.0254;
    const QSizeF size(order.Width_mm / kInch_mm * kScreenDots, order.Height_mm / kInch_mm * kScreenDots);
    // Black on white is the chart of a light screen.
    QPalette palette = QGuiApplication::palette();
    if (order.White) {
        palette.setColor(QPalette::WindowText, Qt::black);
        palette.setColor(QPalette::Window, Qt::white);
    }
    QGraphicsScene scene;
    auto* chart = NewChart(palette);
    scene.addItem(chart);
    chart->resize(size);
    const auto paint = [&](QPaintDevice& device, double scale) {
        QPainter painter(&device);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(scale, scale);
        painter.fillRect(QRectF(QPointF(), size), palette.color(QPalette::Window));
        scene.render(&painter, QRectF(QPointF(), size), QRectF(QPointF(), size), Qt::IgnoreAspectRatio);
    };
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    if (format == PictureFormat::Svg) {
        QSvgGenerator svg;
        svg.setOutputDevice(&buffer);
        svg.setSize(size.toSize());
        svg.setViewBox(QRectF(QPointF(), size));
        svg.setResolution(static_cast<int>(kScreenDots));
        svg.setTitle(Q(GrafikWindow.Title));
        paint(svg, 1);
    } else if (format == PictureFormat::Pdf) {
        constexpr int kPageDots = 1200;
        QPdfWriter pdf(&buffer);
        pdf.setResolution(kPageDots);
        pdf.setPageSize(QPageSize(QSizeF(order.Width_mm, order.Height_mm), QPageSize::Millimeter, QString(),
                                  QPageSize::ExactMatch));
        pdf.setPageMargins(QMarginsF(0, 0, 0, 0));
        pdf.setTitle(Q(GrafikWindow.Title));
        paint(pdf, kPageDots / kScreenDots);
    } else {
        const double scale = order.Dots / kScreenDots;
        QImage image((size * scale).toSize(), QImage::Format_RGB32);
        if (image.isNull()) return "";
        image.setDotsPerMeterX(static_cast<int>(std::lround(order.Dots / kInch_m)));
        image.setDotsPerMeterY(image.dotsPerMeterX());
        paint(image, scale);
        image.save(&buffer, "PNG");
    }
    return bytes.toStdString();
}

}  // namespace corvinade::ui
