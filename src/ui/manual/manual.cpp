// Builds the manual: the chapters of a folder, in the order of their names, as one PDF with pictures and
// page numbers.
//   corvinade-manual FOLDER FILE.pdf
#include <QAbstractTextDocumentLayout>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextTable>
#include <algorithm>
#include <cstdio>

namespace {

constexpr int kDpi = 600;         // letters are placed in these; pictures keep all their pixels
constexpr qreal kPixel_dpi = 96;  // the unit of sizes inside the text
constexpr qreal kMargin_mm = 20;
constexpr qreal kFooter = 40 * kDpi / kPixel_dpi;  // below the text, with the page number
constexpr qreal kHair = 2 * kDpi / kPixel_dpi;
// A window of usual size keeps about the proportions that it has on the screen beside the text.
constexpr qreal kPictureScale = 0.62;

int Fail(const QString& text) {
    std::fprintf(stderr, "corvinade-manual: %s\n", qPrintable(text));
    return 1;
}

void StyleHeading(QTextCursor& cursor, int level) {
    QTextBlockFormat block;
    block.setTopMargin(level == 1 ? 0 : 18);
    block.setBottomMargin(6);
    cursor.mergeBlockFormat(block);
    QTextCharFormat letters;
    letters.setFontPointSize(level == 1 ? 20 : 13);
    letters.setFontWeight(QFont::DemiBold);
    cursor.select(QTextCursor::BlockUnderCursor);
    cursor.mergeCharFormat(letters);
}

// Each picture as wide as its window in proportion, at most as wide as the page.
bool ScalePictures(QTextDocument& text, const QTextBlock& block, const QDir& folder, qreal width) {
    for (auto part = block.begin(); !part.atEnd(); ++part) {
        const QTextFragment fragment = part.fragment();
        if (!fragment.charFormat().isImageFormat()) continue;
        QTextImageFormat format = fragment.charFormat().toImageFormat();
        const QImage image(folder.filePath(format.name()));
        if (image.isNull()) {
            Fail(QStringLiteral("The picture %1 cannot be read.").arg(folder.filePath(format.name())));
            return false;
        }
        text.addResource(QTextDocument::ImageResource, QUrl(format.name()), image);
        const qreal scale = std::min(kPictureScale, width / image.width());
        format.setWidth(image.width() * scale);
        format.setHeight(image.height() * scale);
        QTextCursor cursor(&text);
        cursor.setPosition(fragment.position());
        cursor.setPosition(fragment.position() + fragment.length(), QTextCursor::KeepAnchor);
        cursor.setCharFormat(format);
        QTextBlockFormat around;
        around.setTopMargin(8);
        around.setBottomMargin(10);
        cursor.mergeBlockFormat(around);
        return true;  // the fragments of this block are new ones now; a picture stands alone in its block
    }
    return true;
}

void StyleTables(QTextFrame& root) {
    for (QTextFrame* frame : root.childFrames()) {
        auto* table = qobject_cast<QTextTable*>(frame);
        if (table == nullptr) continue;
        QTextTableFormat format = table->format();
        format.setBorderCollapse(true);
        format.setBorderBrush(QColor(0xb0b6bd));
        format.setBorder(0.5);
        format.setCellPadding(4);
        format.setCellSpacing(0);
        format.setTopMargin(6);
        format.setBottomMargin(10);
        table->setFormat(format);
    }
}

bool Style(QTextDocument& text, const QDir& folder, qreal width) {
    bool first = true;
    for (QTextBlock block = text.begin(); block.isValid(); block = block.next()) {
        QTextCursor cursor(block);
        const int level = block.blockFormat().headingLevel();
        if (level > 0) {
            StyleHeading(cursor, level);
            if (level == 1 && !first) {
                QTextBlockFormat format;
                format.setPageBreakPolicy(QTextFormat::PageBreak_AlwaysBefore);
                QTextCursor(block).mergeBlockFormat(format);
            }
            first = false;
        }
        if (!ScalePictures(text, block, folder, width)) return false;
    }
    StyleTables(*text.rootFrame());
    return true;
}

void Print(QTextDocument& text, QPdfWriter& writer, QSizeF page) {
    QPainter painter(&writer);
    const int pages = text.pageCount();
    const qreal height = text.pageSize().height();
    for (int number = 1; number <= pages; ++number) {
        if (number > 1) writer.newPage();
        painter.save();
        painter.translate(0, -height * (number - 1));
        QAbstractTextDocumentLayout::PaintContext context;
        context.palette.setColor(QPalette::Text, Qt::black);
        // A picture at the top of the next page may begin a hair above it.
        context.clip = QRectF(0, height * (number - 1), page.width(), height - kHair);
        painter.setClipRect(context.clip);
        text.documentLayout()->draw(&painter, context);
        painter.restore();
        painter.setFont(QFont(text.defaultFont().family(), 8));
        painter.setPen(QColor(0x60666d));
        const QRectF footer(0, page.height() - kFooter / 2, page.width(), kFooter / 2);
        painter.drawText(footer, Qt::AlignLeft | Qt::AlignBottom, writer.title());
        painter.drawText(footer, Qt::AlignRight | Qt::AlignBottom, QString::number(number));
    }
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    const QStringList arguments = QGuiApplication::arguments();
    if (arguments.size() != 3) return Fail(QStringLiteral("usage: corvinade-manual FOLDER FILE.pdf"));
    const QDir folder(arguments[1]);

    QString chapters;
    for (const QString& name : folder.entryList({QStringLiteral("*.md")}, QDir::Files, QDir::Name)) {
        QFile file(folder.filePath(name));
        if (!file.open(QIODevice::ReadOnly)) return Fail(QStringLiteral("%1 cannot be read.").arg(name));
        chapters += QString::fromUtf8(file.readAll()) + QStringLiteral("\n\n");
    }
    if (chapters.isEmpty()) return Fail(QStringLiteral("%1 holds no chapter.").arg(folder.path()));

    QPdfWriter writer(arguments[2]);
    writer.setTitle(QStringLiteral("Corvinade, the manual"));
    writer.setCreator(QStringLiteral("Corvinade"));
    writer.setResolution(kDpi);
    writer.setPageSize(QPageSize(QPageSize::A4));
    writer.setPageMargins({kMargin_mm, kMargin_mm, kMargin_mm, kMargin_mm}, QPageLayout::Millimeter);
    const QSizeF page = writer.pageLayout().paintRectPixels(kDpi).size();

    QTextDocument text;
    text.documentLayout()->setPaintDevice(&writer);
    text.setDefaultFont(QFont(QStringLiteral("DejaVu Sans"), 10));
    text.setUseDesignMetrics(true);
    text.setDocumentMargin(0);
    text.setMarkdown(chapters, QTextDocument::MarkdownDialectGitHub);
    if (!Style(text, folder, page.width() * kPixel_dpi / kDpi)) return 1;
    text.setPageSize({page.width(), page.height() - kFooter});
    Print(text, writer, page);
    return 0;
}
