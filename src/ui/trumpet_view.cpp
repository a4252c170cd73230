// The trumpet plot on the screen.
#include "ui/trumpet_view.h"

#include <QEvent>
#include <QFontInfo>
#include <QMouseEvent>
#include <QPainter>
#include <QTimer>
#include <QWidget>
#include <algorithm>
#include <string>

#include "analysis/form_distance_scale.h"
#include "analysis/form_trompete.h"
#include "core/units.h"
#include "graphics/trumpet_paint.h"
#include "paint/image.h"
#include "paint/picture.h"
#include "ui/desktop.h"
#include "ui/qt_text.h"

namespace corvinade::ui {

namespace {

constexpr const char* kPlace = "Trumpet";
constexpr int kAir = 8;   // beside letters, pixels
constexpr int kRing = 5;  // radius of the ring about the point under the mouse, pixels

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

Colour ColourFrom(const QColor& colour) {
    return Rgb(colour.red(), colour.green(), colour.blue());
}

TrumpetLook LookOf(const QWidget& widget) {
    const QPalette palette = widget.palette();
    const QColor text = palette.color(QPalette::Text), base = palette.color(QPalette::Base);
    const QFont font = widget.font();
    const QFontInfo found(font);
    const QFontMetrics letters = widget.fontMetrics();
    TrumpetLook look;
    look.Colours = {ColourFrom(base),
                    ColourFrom(text),
                    ColourFrom(Mixed(base, text, 0.12)),
                    ColourFrom(Mixed(base, text, 0.45)),
                    ColourFrom(Mixed(base, text, 0.6)),
                    ColourFrom(palette.color(QPalette::Link))};
    constexpr float kPointsOfPixel = 0.75F;
    look.Letters.Font.Name = S(found.family());
    look.Letters.Font.Size = static_cast<float>(found.pixelSize()) * kPointsOfPixel;
    look.Letters.Font.Bold = font.bold();
    look.Letters.Font.Italic = font.italic();
    look.Letters.Ascent = letters.ascent();
    look.Letters.Height = letters.height();
    look.NotAllPairs = Trumpet.Cut;
    return look;
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

    ~TrumpetEvents() override { CloseSheet(); }
    TrumpetEvents(const TrumpetEvents&) = delete;
    TrumpetEvents& operator=(const TrumpetEvents&) = delete;

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
        if (sheet_.Own == nullptr || sheet_.Width != place_.width() || sheet_.Height != place_.height() ||
            sheet_.Scale != scale) {
            CloseSheet();
            sheet_.Width = place_.width();
            sheet_.Height = place_.height();
            sheet_.Scale = scale;
            FillSurfaceWithPicture(sheet_);
        }
        PaintTrumpet(sheet_, *DistanceScale.Points, PlotOf(Trumpet.Range, Trumpet.Place), Trumpet.Raster,
                     LookOf(place_));
    }
    void CloseSheet() {
        if (sheet_.Close != nullptr) sheet_.Close(sheet_);
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
        painter.drawImage(QPointF(), BarePictureOf(sheet_));
        ring_ = Trumpet.Under;
        if (ring_.From == 0 || !fits) return;
        const TrumpetPlot plot = PlotOf(Trumpet.Range, Trumpet.Place);
        const TrumpetPair pair = PairOfPoints(*DistanceScale.Points, ring_.From, ring_.To);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(place_.palette().color(QPalette::Text), 2));
        painter.drawEllipse(QPointF(plot.X(pair.ToDistance), plot.Y(pair.DeltaS)), kRing, kRing);
    }

    QWidget& place_;
    Surface sheet_;  // all but the ring
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

}  // namespace corvinade::ui
