// The picture of the colour scale in its dialog.
#include "ui/colour_sample.h"

#include <QEvent>
#include <QPainter>
#include <QWidget>
#include <vector>

#include "graphics/form_color_bar.h"
#include "ui/colours.h"
#include "ui/qt_text.h"

namespace corvinade::ui {

namespace {

constexpr const char* kPlace = "ScreenColorBar";
constexpr int kBarWidth = 26, kTick = 5, kBeside = 4;

struct Sample {
    std::vector<Colour> Colours;
    int Below = 0;
    std::string Upper, Lower;
    bool operator==(const Sample&) const = default;
};

Sample PresentSample() {
    Sample sample;
    sample.Colours = ColorBarSample(sample.Below);
    sample.Upper = ColorBarWindow.TextObereGrenze.Text;
    sample.Lower = ColorBarWindow.TextUntereGrenze.Text;
    return sample;
}

// Where class `index` from below begins, counted from the lower edge: each side of zero has one half, and
// all of it where the other has no class.
double EdgeOf(const Sample& sample, int index, double height) {
    const int above = static_cast<int>(sample.Colours.size()) - sample.Below;
    const double half = sample.Below == 0 ? 0 : above == 0 ? height : height / 2;
    if (index <= sample.Below) return sample.Below == 0 ? 0 : half * index / sample.Below;
    return half + (height - half) * (index - sample.Below) / above;
}

void PaintSample(QWidget& place, const Sample& sample) {
    QPainter painter(&place);
    const int text = place.fontMetrics().height();
    const QRectF bar(0, text / 2, kBarWidth, place.height() - text);
    const int count = static_cast<int>(sample.Colours.size());
    for (int i = 0; i < count; ++i) {
        const double from = EdgeOf(sample, i, bar.height()), to = EdgeOf(sample, i + 1, bar.height());
        painter.fillRect(QRectF(bar.left(), bar.bottom() - to, bar.width(), to - from),
                         ColourOf(sample.Colours[static_cast<std::size_t>(i)]));
    }
    const auto label = [&](double y, const QString& value) {
        painter.drawLine(QPointF(bar.right() + 1, y), QPointF(bar.right() + kTick, y));
        painter.drawText(QRectF(bar.right() + kTick + kBeside, y - text / 2.0,
                                place.width() - bar.right() - kTick - kBeside, text),
                         Qt::AlignLeft | Qt::AlignVCenter, value);
    };
    painter.setPen(place.palette().color(QPalette::WindowText));
    label(bar.top(), Q(sample.Upper));
    if (sample.Below > 0 && sample.Below < count)
        label(bar.bottom() - EdgeOf(sample, sample.Below, bar.height()), QStringLiteral("0"));
    label(bar.bottom(), sample.Below > 0 ? Q(sample.Lower) : QStringLiteral("0"));
}

class SampleEvents : public QObject {
public:
    explicit SampleEvents(QWidget& place) : QObject(&place) { setObjectName(QStringLiteral("_Sample")); }
    bool eventFilter(QObject* object, QEvent* event) override {
        if (event->type() != QEvent::Paint) return false;
        PaintSample(*static_cast<QWidget*>(object), shown);
        return true;
    }
    Sample shown = PresentSample();
};

}  // namespace

void AddColourSample(QWidget& form) {
    auto* place = form.findChild<QWidget*>(QLatin1String(kPlace));
    if (place != nullptr) place->installEventFilter(new SampleEvents(*place));
}

void ShowColourSample(const QWidget& form) {
    auto* place = form.findChild<QWidget*>(QLatin1String(kPlace));
    if (place == nullptr) return;
    auto* events = dynamic_cast<SampleEvents*>(place->findChild<QObject*>(QStringLiteral("_Sample")));
    Sample now = PresentSample();
    if (events == nullptr || now == events->shown) return;
    events->shown = std::move(now);
    place->update();
}

}  // namespace corvinade::ui
