// A report on pages, and as a PDF file with a bookmark for each section.
#include "paint/report_pages.h"

#include <QAbstractTextDocumentLayout>
#include <QBuffer>
#include <QFont>
#include <QMarginsF>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPalette>
#include <QPdfWriter>
#include <QTextBlock>
#include <QTextDocument>
#include <cmath>

#include "paint/gui.h"
#include "paint/pdf_marks.h"
#include "paint/report_pdf.h"

namespace corvinade::paint {

namespace {

constexpr double kInch_mm = 25.4;

int Dots(double length_mm) {
    return static_cast<int>(std::lround(length_mm / kInch_mm * kReportDots));
}

const int kWidth = Dots(210), kHeight = Dots(297);  // A4
const int kSide = Dots(16), kTop = Dots(16), kBottom = Dots(18);

// What texts are measured against; it lives as long as the program, as documents refer to it.
QImage& Measure() {
    static QImage image = [] {
        QImage one(8, 8, QImage::Format_RGB32);
        const int dots = static_cast<int>(std::lround(kReportDots / kInch_mm * 1000));
        one.setDotsPerMeterX(dots);
        one.setDotsPerMeterY(dots);
        return one;
    }();
    return image;
}

// Pixels of a page in a browser are the 96th part of an inch.
constexpr double kPixel = kReportDots / 96.0;

}  // namespace

ReportPages PagesOf(const Report& report) {
    EnsureGui();
    ReportPages pages{.Width = kWidth, .Height = kHeight, .Title = report.Title, .Made = report.Made};
    pages.Document = std::make_shared<QTextDocument>();
    QTextDocument& document = *pages.Document;
    document.documentLayout()->setPaintDevice(&Measure());
    document.setDocumentMargin(0);
    document.setDefaultFont(QFont(QStringLiteral("DejaVu Sans"), 9));
    document.setHtml(QString::fromStdString(ReportHtml(report, kPixel)));
    const double height = kHeight - kTop - kBottom;
    document.setPageSize(QSizeF(kWidth - 2 * kSide, height));
    pages.Count = document.pageCount();
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        if (block.blockFormat().headingLevel() != 2) continue;
        const double top = document.documentLayout()->blockBoundingRect(block).top();
        pages.Sections.push_back({block.text().toStdString(), static_cast<int>(top / height)});
    }
    return pages;
}

void PaintPage(QPainter& painter, const ReportPages& pages, int page) {
    const int inside = pages.Height - kTop - kBottom;
    painter.save();
    painter.fillRect(QRect(0, 0, pages.Width, pages.Height), Qt::white);
    painter.save();
    painter.translate(kSide, kTop - page * inside);
    const QRectF seen(0, static_cast<double>(page) * inside, pages.Width - 2 * kSide, inside);
    painter.setClipRect(seen);
    QAbstractTextDocumentLayout::PaintContext context;
    context.clip = seen;
    context.palette.setColor(QPalette::Text, QColor(0x1c, 0x27, 0x33));
    pages.Document->documentLayout()->draw(&painter, context);
    painter.restore();
    QFont small(QStringLiteral("DejaVu Sans"));
    small.setPixelSize(Dots(2.6));
    painter.setFont(small);
    painter.setPen(QColor(0x64, 0x70, 0x7d));
    const QRect foot(kSide, pages.Height - kBottom + Dots(5), pages.Width - 2 * kSide, Dots(6));
    painter.drawText(foot, Qt::AlignLeft | Qt::AlignVCenter, QString::fromStdString(pages.Title).left(90));
    painter.drawText(foot, Qt::AlignRight | Qt::AlignVCenter,
                     QStringLiteral("%1 / %2").arg(page + 1).arg(pages.Count));
    painter.restore();
}

std::string ReportPdf(const Report& report) {
    const ReportPages pages = PagesOf(report);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    {
        QPdfWriter writer(&buffer);
        writer.setResolution(kReportDots);
        writer.setPageSize(QPageSize(QPageSize::A4));
        writer.setPageMargins(QMarginsF(0, 0, 0, 0));
        writer.setTitle(QString::fromStdString(report.Title));
        writer.setCreator(QStringLiteral("Corvinade"));
        QPainter painter(&writer);
        for (int page = 0; page < pages.Count; ++page) {
            if (page > 0) writer.newPage();
            PaintPage(painter, pages, page);
        }
    }
    std::vector<PdfMark> marks;
    for (const ReportPages::Mark& section : pages.Sections) marks.push_back({section.Title, section.Page});
    return WithPdfMarks(buffer.data().toStdString(), marks);
}

}  // namespace corvinade::paint
