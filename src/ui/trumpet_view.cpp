// The trumpet plot on the screen.
#include "ui/trumpet_view.h"

#include <QEvent>
#include <QImage>
#include <QMouseEvent>
#include <QPainter>
#include <QTimer>
#include <QWidget>
#include <algorithm>
#include <cmath>
#include <string>

#include "analysis/form_distance_scale.h"
#include "analysis/form_trompete.h"
#include "core/units.h"
#include "ui/desktop.h"
#include "ui/qt_text.h"

namespace {

constexpr const char* kPlace = "Trumpet";
constexpr int kAir = 8;      // between frame, numbers and titles, pixels
constexpr int kRing = 5;     // radius of the ring about the point under the mouse, pixels
constexpr int kDiscs = 500;  // so few points are round; more are set as small squares without corners

// What the picture was painted from.
struct Shown {
    std::uint64_t Drawings = 0;
    double LengthFactor = 0;
    std::string FmtLength, XTitle, YTitle;
    qint64 Palette = 0;
    QSize Size;
    double Scale = 0;
    bool operator==(const Shown&) const = default;
};

Shown PresentShown(const QWidget& place) {
    return {Trumpet.Drawings, Units.LengthFactor,         Units.FmtLength, TrumpetXTitle(),
            TrumpetYTitle(),  place.palette().cacheKey(), place.size(),    place.devicePixelRatioF()};
}

QColor Mixed(const QColor& a, const QColor& b, double share) {
    const auto mix = [share](int x, int y) { return static_cast<int>(x + share * (y - x)); };
    return {mix(a.red(), b.red()), mix(a.green(), b.green()), mix(a.blue(), b.blue())};
}

// Room for the numbers of the axes in the letters of the screen.
TrumpetPlace PlaceOf(const QWidget& widget) {
    const QFontMetrics letters = widget.fontMetrics();
    TrumpetPlace place;
    place.Width = widget.width();
    place.Height = widget.height();
    place.Scale = widget.devicePixelRatioF();
    place.Top = letters.height() + 2 * kAir;
    place.Bottom = 2 * letters.height() + 3 * kAir;
    place.Right = 3 * kAir;
    int widest = 0;
    for (const TrumpetTick& tick : PlotOf(Trumpet.Range, place).YTicks)
        widest = std::max(widest, letters.horizontalAdvance(Q(tick.Text)));
    place.Left = widest + 3 * kAir;
    return place;
}

void PaintAxes(QPainter& painter, const TrumpetPlot& plot, const QPalette& palette) {
    const QColor text = palette.color(QPalette::Text), base = palette.color(QPalette::Base);
    const TrumpetAxes& a = plot.Axes;
    const QRectF frame(QPointF(plot.X(a.XLow), plot.Y(a.YHigh)), QPointF(plot.X(a.XHigh), plot.Y(a.YLow)));
    const int letter = painter.fontMetrics().height();
    const auto line = [&painter](QPointF from, QPointF to, const QColor& colour) {
        painter.setPen(QPen(colour, 0));
        painter.drawLine(from, to);
    };
    const QColor faint = Mixed(base, text, 0.12);
    for (const TrumpetTick& tick : plot.XTicks) {
        const double x = plot.X(tick.Place);
        line({x, frame.top()}, {x, frame.bottom()}, faint);
        painter.setPen(text);
        painter.drawText(QRectF(x - 100, frame.bottom() + kAir / 2.0, 200, letter), Qt::AlignCenter,
                         Q(tick.Text));
    }
    for (const TrumpetTick& tick : plot.YTicks) {
        const double y = plot.Y(tick.Place);
        line({frame.left(), y}, {frame.right(), y}, faint);
        painter.setPen(text);
        painter.drawText(QRectF(0, y - letter / 2.0, frame.left() - kAir, letter),
                         Qt::AlignRight | Qt::AlignVCenter, Q(tick.Text));
    }
    if (a.YLow < 0 && a.YHigh > 0)
        line({frame.left(), plot.Y(0)}, {frame.right(), plot.Y(0)}, Mixed(base, text, 0.45));
    painter.setPen(QPen(Mixed(base, text, 0.6), 0));
    painter.drawRect(frame);
    painter.setPen(text);
    painter.drawText(
        QRectF(kAir, kAir / 2.0, plot.Place.Width - 2 * kAir, letter), Qt::AlignLeft,
        Q(TrumpetYTitle()) + (Trumpet.Cut ? QStringLiteral("   (cancelled: not all pairs)") : QString()));
    painter.drawText(QRectF(kAir, frame.bottom() + letter + kAir, frame.right() - kAir, letter),
                     Qt::AlignRight, Q(TrumpetXTitle()));
}

// Points in fine pixels, each as a square of `2 r + 1` without its corners.
void StampPoints(QImage& image, const TrumpetRaster& raster, int r, QRgb colour) {
    const int left = static_cast<int>(std::lround(raster.Left * raster.Scale));
    const int top = static_cast<int>(std::lround(raster.Top * raster.Scale));
    for (int y = 0; y < raster.Height; ++y)
        for (int x = 0; x < raster.Width; ++x) {
            if (raster.At(x, y).From == 0) continue;
            for (int dy = -r; dy <= r; ++dy) {
                const int row = top + y + dy;
                if (row < 0 || row >= image.height()) continue;
                auto* pixels = reinterpret_cast<QRgb*>(image.scanLine(row));
                const int half = r > 0 && std::abs(dy) == r ? r - 1 : r;
                const int from = std::max(left + x - half, 0);
                const int to = std::min(left + x + half, image.width() - 1);
                for (int col = from; col <= to; ++col) pixels[col] = colour;
            }
        }
}

void PaintDiscs(QPainter& painter, const TrumpetPlot& plot, const TrumpetRaster& raster,
                const QColor& colour) {
    const DistancePoints& points = *DistanceScale.Points;
    const double r = MarkRadius(points.Pairs());
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    for (const TrumpetRaster::PairAt& pixel : raster.Pixels) {
        if (pixel.From == 0 || pixel.To > points.Count()) continue;
        const TrumpetPair pair = PairOfPoints(points, pixel.From, pixel.To);
        painter.drawEllipse(QPointF(plot.X(pair.ToDistance), plot.Y(pair.DeltaS)), r, r);
    }
}

class TrumpetEvents : public QObject {
public:
    explicit TrumpetEvents(QWidget& place) : QObject(&place), place_(place) {
        setObjectName(QStringLiteral("_TrumpetEvents"));
        place.setMouseTracking(true);
        timer_.setSingleShot(true);
        timer_.setInterval(0);
        moves_.setSingleShot(true);
        moves_.setInterval(0);
        QObject::connect(&timer_, &QTimer::timeout, this, [this] { Draw(); });
        QObject::connect(&moves_, &QTimer::timeout, this, [this] { Moved(); });
    }

    bool eventFilter(QObject*, QEvent* event) override {
        switch (event->type()) {
            case QEvent::Paint:
                Paint();
                return true;
            case QEvent::Resize:
                timer_.start();
                return false;
            case QEvent::MouseMove:
                // Moves come faster than a busy machine shows them: the last one counts.
                mouse_ = static_cast<QMouseEvent*>(event)->position();
                if (!moves_.isActive()) moves_.start();
                return false;
            case QEvent::Leave:
                mouse_ = {-1e6, -1e6};
                if (!moves_.isActive()) moves_.start();
                return false;
            default:
                return false;
        }
    }

    void ShowPresent() {
        if (!Trumpet.Drawn && !timer_.isActive()) timer_.start();
        if (PresentShown(place_) != shown_ || Trumpet.Under.From != ring_.From ||
            Trumpet.Under.To != ring_.To)
            place_.update();
    }

private:
    // Drawn from the event loop: a drawing of many pairs serves events itself.
    void Draw() {
        if (!Trumpet.Window.Loaded || !place_.isVisible()) return;
        UserDid([this] {
            Dispatch([this] {
                Trumpet_Resize(PlaceOf(place_));
                Trumpet_Draw();
            });
        });
    }
    void Moved() {
        UserDid([this] { Dispatch([this] { Trumpet_MouseMove(mouse_.x(), mouse_.y()); }); });
    }

    void PaintPicture() {
        const double scale = place_.devicePixelRatioF();
        const QPalette palette = place_.palette();
        picture_ = QImage(place_.size() * scale, QImage::Format_RGB32);
        picture_.fill(palette.color(QPalette::Base));
        picture_.setDevicePixelRatio(scale);
        const TrumpetPlot plot = PlotOf(Trumpet.Range, Trumpet.Place);
        {
            QPainter painter(&picture_);
            painter.setFont(place_.font());
            PaintAxes(painter, plot, palette);
        }
        const TrumpetRaster& raster = Trumpet.Raster;
        const QColor colour = palette.color(QPalette::Link);
        if (raster.Pixels.empty()) return;
        if (DistanceScale.Points->Pairs() <= kDiscs) {
            QPainter painter(&picture_);
            PaintDiscs(painter, plot, raster, colour);
        } else {
            const double radius = MarkRadius(DistanceScale.Points->Pairs()) * scale;
            StampPoints(picture_, raster, static_cast<int>(std::lround(radius)), colour.rgb());
        }
    }

    void Paint() {
        // Between a change of the size and the drawing for it the picture of before stands.
        const Shown now = PresentShown(place_);
        const bool fits = Trumpet.Drawn && Trumpet.Place.Width == place_.width() &&
                          Trumpet.Place.Height == place_.height() && Trumpet.Place.Scale == now.Scale;
        if (!fits) timer_.start();
        if (fits && !(now == shown_)) {
            PaintPicture();
            shown_ = now;
        }
        QPainter painter(&place_);
        painter.fillRect(place_.rect(), place_.palette().color(QPalette::Base));
        painter.drawImage(QPointF(), picture_);
        ring_ = Trumpet.Under;
        if (ring_.From == 0 || !fits) return;
        const TrumpetPlot plot = PlotOf(Trumpet.Range, Trumpet.Place);
        const TrumpetPair pair = PairOfPoints(*DistanceScale.Points, ring_.From, ring_.To);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(place_.palette().color(QPalette::Text), 2));
        painter.drawEllipse(QPointF(plot.X(pair.ToDistance), plot.Y(pair.DeltaS)), kRing, kRing);
    }

    QWidget& place_;
    QImage picture_;  // all but the ring
    Shown shown_;
    TrumpetRaster::PairAt ring_;
    QPointF mouse_;
    QTimer timer_, moves_;
};

}  // namespace

void AddTrumpet(QWidget& form) {
    auto* place = form.findChild<QWidget*>(QLatin1String(kPlace));
    if (place != nullptr) place->installEventFilter(new TrumpetEvents(*place));
}

void ShowTrumpet(const QWidget& form) {
    auto* place = form.findChild<QWidget*>(QLatin1String(kPlace));
    if (place == nullptr) return;
    if (auto* events =
            dynamic_cast<TrumpetEvents*>(place->findChild<QObject*>(QStringLiteral("_TrumpetEvents"))))
        events->ShowPresent();
}
