// The report on paper.
#include "ui/report_print.h"

#include <QApplication>
#include <QPageSize>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>
#include <algorithm>

#include "core/platform.h"
#include "paint/report_pages.h"
#include "ui/qt_text.h"

namespace corvinade::ui {

bool PrintOn(QPrinter& printer, const Report& report) {
    const ReportPages pages = PagesOf(report);
    const int first = std::max(printer.fromPage(), 1);
    const int last = printer.toPage() > 0 ? std::min(printer.toPage(), pages.Count) : pages.Count;
    printer.setDocName(Q(report.Title));
    printer.setFullPage(true);  // the pages have margins of their own
    QPainter painter;
    if (!painter.begin(&printer)) return false;
    const QRectF paper = printer.paperRect(QPrinter::DevicePixel);
    const double scale = std::min(paper.width() / pages.Width, paper.height() / pages.Height);
    for (int page = first; page <= last; ++page) {
        if (page > first && !printer.newPage()) return false;
        painter.save();
        painter.translate((paper.width() - scale * pages.Width) / 2, 0);
        painter.scale(scale, scale);
        PaintPage(painter, pages, page - 1);
        painter.restore();
    }
    return painter.end();
}

void PrintReport(const Report& report) {
    QPrinter printer(QPrinter::HighResolution);
    printer.setPageSize(QPageSize(QPageSize::A4));
    QPrintDialog dialog(&printer, QApplication::activeWindow());
    dialog.setWindowTitle(QStringLiteral("Print Report"));
    const Report printed = report;  // the dialog lets events be handled
    dialog.setMinMax(1, std::max(PagesOf(printed).Count, 1));
    if (dialog.exec() != QDialog::Accepted) return;
    if (!PrintOn(printer, printed))
        throw PlatformError{"The report cannot be printed on \"" + S(printer.printerName()) + "\""};
}

}  // namespace corvinade::ui
