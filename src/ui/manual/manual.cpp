// Builds the manual: the chapters of a folder, in the order of their names, as one PDF with contents,
// pictures, page numbers, bookmarks and links.
//   corvinade-manual FOLDER FILE.pdf
#include <QAbstractTextDocumentLayout>
#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QMap>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextLayout>
#include <QTextTable>
#include <algorithm>
#include <cstdio>
#include <utility>

#include "ui/manual/pdf_marks.h"

namespace {

constexpr int kDpi = 600;         // letters are placed in these; pictures keep all their pixels
constexpr qreal kPixel_dpi = 96;  // the unit of sizes inside the text
constexpr qreal kMargin_mm = 20;
constexpr qreal kFooter = 40 * kDpi / kPixel_dpi;  // below the text, with the page number
constexpr qreal kHair = 2 * kDpi / kPixel_dpi;
// A window of usual size keeps about the proportions that it has on the screen beside the text.
constexpr qreal kPictureScale = 0.62;

constexpr QColor kInk(0x1d, 0x3a, 0x5c);  // of headings and links

int Fail(const QString& text) {
    std::fprintf(stderr, "corvinade-manual: %s\n", qPrintable(text));
    return 1;
}

void BreakBefore(const QTextBlock& block) {
    QTextBlockFormat format;
    format.setPageBreakPolicy(QTextFormat::PageBreak_AlwaysBefore);
    QTextCursor(block).mergeBlockFormat(format);
}

void StyleHeading(QTextCursor& cursor, int level) {
    QTextBlockFormat block;
    block.setTopMargin(level == 1 ? 0 : 20);
    block.setBottomMargin(level == 1 ? 12 : 6);
    cursor.mergeBlockFormat(block);
    QTextCharFormat letters;
    letters.setFontPointSize(level == 1 ? 20 : 12.5);
    letters.setFontWeight(QFont::DemiBold);
    letters.setForeground(kInk);
    cursor.select(QTextCursor::BlockUnderCursor);
    cursor.mergeCharFormat(letters);
}

// Each picture as wide as its window in proportion, at most as wide as the page.
bool ScalePictures(QTextDocument& text, const QTextBlock& block, const QDir& folder, qreal width) {
    for (auto part = block.begin(); !part.atEnd(); ++part) {
        const QTextFragment fragment = part.fragment();
        if (!fragment.charFormat().isImageFormat()) continue;
        QTextImageFormat format = fragment.charFormat().toImageFormat();
        // The same picture twice is one picture of the file.
        auto image = text.resource(QTextDocument::ImageResource, QUrl(format.name())).value<QImage>();
        if (image.isNull()) image.load(folder.filePath(format.name()));
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
        format.setHeaderRowCount(1);  // said again where a table goes on
        table->setFormat(format);
        for (int col = 0; col < table->columns(); ++col) {
            QTextTableCell head = table->cellAt(0, col);
            QTextTableCellFormat look = head.format().toTableCellFormat();
            look.setBackground(QColor(0xeef1f4));
            head.setFormat(look);
        }
    }
}

// Letters of programs and file names, a size smaller since they are wider; links in ink, without a line.
void StyleLetters(QTextDocument& text, const QTextBlock& block) {
    QList<std::pair<QTextFragment, QTextCharFormat>> changes;
    for (auto part = block.begin(); !part.atEnd(); ++part) {
        QTextCharFormat format = part.fragment().charFormat();
        if (format.isImageFormat()) continue;
        const bool code =
            format.fontFixedPitch() || block.blockFormat().hasProperty(QTextFormat::BlockCodeFence);
        if (code) format.setFontPointSize(8.5);
        if (format.isAnchor()) {
            format.setFontUnderline(false);
            format.setForeground(kInk);
        }
        if (code || format.isAnchor()) changes.append({part.fragment(), format});
    }
    for (const auto& [fragment, format] : changes) {
        QTextCursor cursor(&text);
        cursor.setPosition(fragment.position());
        cursor.setPosition(fragment.position() + fragment.length(), QTextCursor::KeepAnchor);
        cursor.setCharFormat(format);
    }
}

bool Style(QTextDocument& text, const QDir& folder, qreal width) {
    for (QTextBlock block = text.begin(); block.isValid(); block = block.next()) {
        QTextCursor cursor(block);
        const int level = block.blockFormat().headingLevel();
        if (level > 0) {
            StyleHeading(cursor, level);
            if (level == 1) BreakBefore(block);
        } else if (!block.begin().fragment().charFormat().isImageFormat()) {
            QTextBlockFormat format;
            format.setLineHeight(112, QTextBlockFormat::ProportionalHeight);
            cursor.mergeBlockFormat(format);
        }
        StyleLetters(text, block);
        if (!ScalePictures(text, block, folder, width)) return false;
    }
    StyleTables(*text.rootFrame());
    return true;
}

// --- Contents ---------------------------------------------------------------------------------------------

QList<QTextBlock> HeadingsOf(const QTextDocument& text) {
    QList<QTextBlock> headings;
    for (QTextBlock block = text.begin(); block.isValid(); block = block.next())
        if (block.blockFormat().headingLevel() > 0 && block.blockFormat().headingLevel() <= 2)
            headings.append(block);
    return headings;
}

int PageOf(const QTextDocument& text, const QTextBlock& block) {
    const qreal top = text.documentLayout()->blockBoundingRect(block).top();
    return static_cast<int>((top + kHair) / text.pageSize().height());
}

// Puts the title and a line for each heading in front of the chapters; the page numbers come when the pages
// are known. Returns the lines.
QList<QTextBlock> AddContents(QTextDocument& text, qreal width) {
    QList<std::pair<QString, bool>> headings;  // and whether of a chapter
    for (const QTextBlock& heading : HeadingsOf(text))
        headings.append({heading.text(), heading.blockFormat().headingLevel() == 1});
    QTextCursor cursor(&text);
    cursor.movePosition(QTextCursor::Start);
    cursor.insertBlock();  // the first block stays, the heading goes down
    cursor.movePosition(QTextCursor::Start);
    QTextCharFormat letters;
    letters.setFontPointSize(30);
    letters.setFontWeight(QFont::DemiBold);
    letters.setForeground(kInk);
    cursor.setBlockFormat({});
    cursor.insertText(QStringLiteral("Corvinade"), letters);
    QTextBlockFormat under;
    under.setBottomMargin(26);
    QTextCharFormat plain;
    plain.setFontPointSize(12);
    cursor.insertBlock(under, plain);
    cursor.insertText(QStringLiteral("The manual"), plain);
    for (const auto& [heading, chapter] : headings) {
        QTextBlockFormat line;
        line.setTopMargin(chapter ? 7 : 0);
        line.setTabPositions({QTextOption::Tab(width - 1, QTextOption::RightTab)});
        QTextCharFormat look;
        look.setFontPointSize(9.5);
        look.setFontWeight(chapter ? QFont::DemiBold : QFont::Normal);
        cursor.insertBlock(line, look);
        // The margin of a block with a tab moves the tab and not the text, so blanks make the step.
        cursor.insertText((chapter ? QString() : QString(2, QChar(0x2003))) + heading + "\t00", look);
    }
    QList<QTextBlock> lines;
    for (QTextBlock block = text.begin(); lines.size() < headings.size(); block = block.next())
        if (block.text().endsWith(QLatin1String("\t00"))) lines.append(block);
    return lines;
}

void NumberContents(const QTextDocument& text, const QList<QTextBlock>& lines) {
    const QList<QTextBlock> headings = HeadingsOf(text);
    for (qsizetype i = 0; i < lines.size(); ++i) {
        QTextCursor cursor(lines[i]);
        cursor.movePosition(QTextCursor::EndOfBlock);
        cursor.movePosition(QTextCursor::PreviousCharacter, QTextCursor::KeepAnchor, 2);
        cursor.insertText(QString::number(PageOf(text, headings[i]) + 1));
    }
}

// What the toolkit lays out anew after a change is not always all that moves with it.
void LayOutAgain(QTextDocument& text) {
    text.markContentsDirty(0, text.characterCount());
    text.documentLayout()->documentSize();
}

// A heading does not stand alone at the foot of a page.
void KeepHeadings(const QTextDocument& text) {
    for (const QTextBlock& heading : HeadingsOf(text))
        if (heading.next().isValid() && PageOf(text, heading.next()) != PageOf(text, heading))
            BreakBefore(heading);
}

// --- Marks ------------------------------------------------------------------------------------------------

constexpr double kPoint = 72.0 / kDpi;
constexpr double kMargin_pt = kMargin_mm / 25.4 * 72;

double Top_pt(const QTextDocument& text, const QTextBlock& block) {
    const qreal height = text.pageSize().height();
    return kMargin_pt +
           (text.documentLayout()->blockBoundingRect(block).top() - PageOf(text, block) * height) * kPoint;
}

QList<PdfBookmark> BookmarksOf(const QTextDocument& text) {
    QList<PdfBookmark> marks;
    for (const QTextBlock& heading : HeadingsOf(text))
        marks.append({heading.text(), heading.blockFormat().headingLevel(), PageOf(text, heading),
                      Top_pt(text, heading)});
    return marks;
}

// The places of a stretch of a block's text, one a line.
QList<PdfLink> LinksOver(const QTextDocument& text, const QTextBlock& block, int begin, int end,
                         const PdfBookmark& target) {
    QList<PdfLink> links;
    const QPointF origin = text.documentLayout()->blockBoundingRect(block).topLeft();
    const qreal height = text.pageSize().height();
    for (int i = 0; i < block.layout()->lineCount(); ++i) {
        const QTextLine line = block.layout()->lineAt(i);
        const int from = std::max(begin, line.textStart());
        const int to = std::min(end, line.textStart() + line.textLength());
        if (from >= to) continue;
        const qreal top = origin.y() + line.y();
        const int page = static_cast<int>((top + kHair) / height);
        const qreal left = origin.x() + line.cursorToX(from);
        links.append({page,
                      QRectF(kMargin_pt + left * kPoint, kMargin_pt + (top - page * height) * kPoint,
                             (line.cursorToX(to) - line.cursorToX(from)) * kPoint, line.height() * kPoint),
                      target.Page, target.Top_pt});
    }
    return links;
}

// From the contents to the headings, and between the chapters.
QList<PdfLink> LinksOf(const QTextDocument& text, const QList<QTextBlock>& contents, const QStringList& files,
                       const QList<PdfBookmark>& marks) {
    QList<PdfLink> links;
    for (qsizetype i = 0; i < contents.size(); ++i)
        links += LinksOver(text, contents[i], 0, contents[i].length(), marks[i]);
    QMap<QString, PdfBookmark> chapters;
    for (const PdfBookmark& mark : marks)
        if (mark.Level == 1) chapters[files.value(chapters.size())] = mark;
    for (QTextBlock block = text.begin(); block.isValid(); block = block.next())
        for (auto part = block.begin(); !part.atEnd(); ++part) {
            const QTextFragment fragment = part.fragment();
            const auto chapter = chapters.find(fragment.charFormat().anchorHref());
            if (chapter == chapters.end()) continue;
            const int begin = fragment.position() - block.position();
            links += LinksOver(text, block, begin, begin + fragment.length(), *chapter);
        }
    return links;
}

// --- Pages ------------------------------------------------------------------------------------------------

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
        if (number == 1) continue;  // the title
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
    const QStringList files = folder.entryList({QStringLiteral("*.md")}, QDir::Files, QDir::Name);
    for (const QString& name : files) {
        QFile file(folder.filePath(name));
        if (!file.open(QIODevice::ReadOnly)) return Fail(QStringLiteral("%1 cannot be read.").arg(name));
        chapters += QString::fromUtf8(file.readAll()) + QStringLiteral("\n\n");
    }
    if (chapters.isEmpty()) return Fail(QStringLiteral("%1 holds no chapter.").arg(folder.path()));

    QBuffer pdf;
    pdf.open(QIODevice::WriteOnly);
    QPdfWriter writer(&pdf);
    writer.setTitle(QStringLiteral("Corvinade, the manual"));
    writer.setCreator(QStringLiteral("Corvinade"));
    writer.setResolution(kDpi);
    writer.setPageSize(QPageSize(QPageSize::A4));
    writer.setPageMargins({kMargin_mm, kMargin_mm, kMargin_mm, kMargin_mm}, QPageLayout::Millimeter);
    const QSizeF page = writer.pageLayout().paintRectPixels(kDpi).size();

    QTextDocument text;
    text.documentLayout()->setPaintDevice(&writer);
    text.setDefaultFont(QFont(QStringLiteral("DejaVu Sans"), 9));
    text.setUseDesignMetrics(true);
    text.setDocumentMargin(0);
    text.setMarkdown(chapters, QTextDocument::MarkdownDialectGitHub);
    const qreal width = page.width() * kPixel_dpi / kDpi;
    if (!Style(text, folder, width)) return 1;
    const QList<QTextBlock> contents = AddContents(text, width);
    text.setPageSize({page.width(), page.height() - kFooter});
    KeepHeadings(text);
    LayOutAgain(text);
    NumberContents(text, contents);
    LayOutAgain(text);
    Print(text, writer, page);

    const QList<PdfBookmark> bookmarks = BookmarksOf(text);
    const double height_pt = writer.pageLayout().fullRect(QPageLayout::Point).height();
    const QByteArray marked =
        WithMarks(pdf.data(), height_pt, bookmarks, LinksOf(text, contents, files, bookmarks));
    if (marked.isEmpty()) return Fail(QStringLiteral("The bookmarks cannot be added."));
    QFile file(arguments[2]);
    if (!file.open(QIODevice::WriteOnly) || file.write(marked) != marked.size() || !file.flush())
        return Fail(QStringLiteral("%1 cannot be written.").arg(arguments[2]));
    return 0;
}
