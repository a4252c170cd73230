// The preview of the report.
#include "ui/report_view.h"

#include <QPaintEvent>
#include <QPainter>
#include <QScrollArea>
#include <QWidget>

#include "graphics/form_report.h"
#include "paint/report_pages.h"

namespace corvinade::ui {

namespace {

constexpr const char* kPlace = "_Preview";
constexpr const char* kPaper = "_Paper";
constexpr int kBetween = 12;  // pixels between pages, and around them

// All pages below each other, as wide as the place is.
class Paper : public QWidget {
public:
    explicit Paper(QScrollArea& place) : QWidget(&place), place_(place) {
        setObjectName(QLatin1String(kPaper));
        setAccessibleName(QStringLiteral("Preview of the report"));
        place.viewport()->installEventFilter(this);
    }

    void Show() {
        if (turn_ == ReportWindow.Turn) return;
        turn_ = ReportWindow.Turn;
        pages_ = ReportWindow.Made.Sections.empty() ? ReportPages{} : PagesOf(ReportWindow.Made);
        Fit();
        update();
    }

protected:
    bool eventFilter(QObject* object, QEvent* event) override {
        if (object == place_.viewport() && event->type() == QEvent::Resize) Fit();
        return false;
    }

    void paintEvent(QPaintEvent* event) override {
        if (pages_.Count == 0) return;
        QPainter painter(this);
        painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing |
                               QPainter::SmoothPixmapTransform);
        for (int page = 0; page < pages_.Count; ++page) {
            const QRect rect = PageRect(page);
            if (!rect.intersects(event->rect())) continue;
            painter.save();
            painter.setClipRect(rect);
            painter.translate(rect.topLeft());
            const double scale = static_cast<double>(rect.width()) / pages_.Width;
            painter.scale(scale, scale);
            PaintPage(painter, pages_, page);
            painter.restore();
            painter.setPen(palette().color(QPalette::Mid));
            painter.drawRect(rect);
        }
    }

private:
    QRect PageRect(int page) const {
        const int width = std::max(this->width() - 2 * kBetween, 50);
        const int height = pages_.Width == 0 ? 0 : width * pages_.Height / pages_.Width;
        return {kBetween, kBetween + page * (height + kBetween), width, height};
    }
    void Fit() {
        resize(place_.viewport()->width(), 10);
        const QRect last = PageRect(std::max(pages_.Count - 1, 0));
        resize(place_.viewport()->width(), last.bottom() + kBetween);
    }

    QScrollArea& place_;
    ReportPages pages_;
    std::uint64_t turn_ = 0;
};

}  // namespace

void AddReportPreview(QWidget& form) {
    auto* place = form.findChild<QScrollArea*>(QLatin1String(kPlace));
    if (place == nullptr) return;
    place->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    place->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    place->setWidgetResizable(false);
    place->setWidget(new Paper(*place));
}

void ShowReportPreview(const QWidget& form) {
    auto* place = form.findChild<QScrollArea*>(QLatin1String(kPlace));
    if (place == nullptr) return;
    if (auto* paper = dynamic_cast<Paper*>(place->widget())) paper->Show();
}

}  // namespace corvinade::ui
