// Bookmarks and links of a finished PDF.
#include "ui/manual/pdf_marks.h"

#include <QMap>
#include <QRegularExpression>

namespace {

// The objects of an update, and where each of them begins in the file.
struct Update {
    QByteArray Bytes;
    QMap<int, qsizetype> Places;
    qsizetype Begin = 0;

    void Add(int number, const QByteArray& content) {
        Places[number] = Begin + Bytes.size();
        Bytes += QByteArray::number(number) + " 0 obj\n" + content + "\nendobj\n";
    }
};

QByteArray Reference(int number) {
    return QByteArray::number(number) + " 0 R";
}

QByteArray Number(double value) {
    return QByteArray::number(value, 'f', 2);
}

// A text in brackets. Names of chapters are plain; what is not goes as UTF-16.
QByteArray Text(const QString& text) {
    const QByteArray plain = text.toLatin1();
    if (QString::fromLatin1(plain) == text && !text.contains('\\') && !text.contains('(') &&
        !text.contains(')'))
        return "(" + plain + ")";
    QByteArray code = "<FEFF";
    for (const QChar c : text) code += QByteArray::number(c.unicode(), 16).rightJustified(4, '0');
    return code + ">";
}

QByteArray Destination(int page, double top_pt, double height_pt) {
    return "[" + Reference(page) + " /XYZ 0 " + Number(height_pt - top_pt) + " 0]";
}

// Object numbers of the pages, in their order.
QList<int> PagesOf(const QByteArray& pdf) {
    static const QRegularExpression kKids(QStringLiteral("/Kids\\s*\\[([^\\]]*)\\]"));
    const QRegularExpressionMatch kids = kKids.match(QString::fromLatin1(pdf));
    QList<int> pages;
    static const QRegularExpression kReference(QStringLiteral("(\\d+) 0 R"));
    for (auto all = kReference.globalMatch(kids.captured(1)); all.hasNext();)
        pages.append(all.next().captured(1).toInt());
    return pages;
}

// What stands between "n 0 obj" and "endobj", without the two.
QByteArray ObjectOf(const QByteArray& pdf, int number) {
    const QByteArray head = "\n" + QByteArray::number(number) + " 0 obj\n";
    const qsizetype begin = pdf.indexOf(head);
    const qsizetype end = pdf.indexOf("endobj", begin);
    if (begin < 0 || end < 0) return {};
    return pdf.mid(begin + head.size(), end - begin - head.size()).trimmed();
}

int NumberBehind(const QByteArray& text, const QByteArray& key) {
    const qsizetype at = text.lastIndexOf(key);
    return at < 0 ? 0 : text.mid(at + key.size(), 20).trimmed().split('\n')[0].split(' ')[0].toInt();
}

// The tree of bookmarks from object `root` on: chapters, closed, with their sections. Returns the number
// behind its last one.
int AddBookmarks(Update& update, int root, double height_pt, const QList<int>& pages,
                 const QList<PdfBookmark>& marks) {
    const auto object = [root](qsizetype mark) { return root + 1 + static_cast<int>(mark); };
    const auto next = [&](qsizetype mark) {  // of the same level, -1 where the chapter ends
        for (qsizetype i = mark + 1; i < marks.size() && marks[i].Level >= marks[mark].Level; ++i)
            if (marks[i].Level == marks[mark].Level) return i;
        return qsizetype{-1};
    };
    QList<qsizetype> chapters, previous(marks.size(), -1), parent(marks.size(), -1);
    for (qsizetype i = 0; i < marks.size(); ++i) {
        if (marks[i].Level == 1) chapters.append(i);
        if (marks[i].Level > 1 && !chapters.isEmpty()) parent[i] = chapters.last();
        if (next(i) >= 0) previous[next(i)] = i;
    }
    for (qsizetype i = 0; i < marks.size(); ++i) {
        QByteArray text = "<< /Title " + Text(marks[i].Text) + " /Parent " +
                          Reference(parent[i] < 0 ? root : object(parent[i])) + " /Dest " +
                          Destination(pages[marks[i].Page], marks[i].Top_pt, height_pt);
        if (previous[i] >= 0) text += " /Prev " + Reference(object(previous[i]));
        if (next(i) >= 0) text += " /Next " + Reference(object(next(i)));
        const auto children = parent.count(i);
        if (children > 0)
            text += " /First " + Reference(object(parent.indexOf(i))) + " /Last " +
                    Reference(object(parent.lastIndexOf(i))) + " /Count -" + QByteArray::number(children);
        update.Add(object(i), text + " >>");
    }
    update.Add(root, "<< /Type /Outlines /First " + Reference(object(chapters.first())) + " /Last " +
                         Reference(object(chapters.last())) + " /Count " +
                         QByteArray::number(chapters.size()) + " >>");
    return object(marks.size());
}

QByteArray Annotation(const PdfLink& link, double height_pt, const QList<int>& pages) {
    const QRectF& place = link.Place_pt;
    return "<< /Type /Annot /Subtype /Link /Border [0 0 0] /Rect [" + Number(place.left()) + " " +
           Number(height_pt - place.bottom()) + " " + Number(place.right()) + " " +
           Number(height_pt - place.top()) + "] /Dest " +
           Destination(pages[link.TargetPage], link.TargetTop_pt, height_pt) + " >>";
}

}  // namespace

QByteArray WithMarks(const QByteArray& pdf, double pageHeight_pt, const QList<PdfBookmark>& bookmarks,
                     const QList<PdfLink>& links) {
    const QList<int> pages = PagesOf(pdf);
    const int size = NumberBehind(pdf, "/Size ");
    const int root = NumberBehind(pdf, "/Root ");
    const int before = NumberBehind(pdf, "startxref\n");
    const QByteArray catalog = ObjectOf(pdf, root);
    if (pages.isEmpty() || bookmarks.isEmpty() || size == 0 || before == 0 || !catalog.endsWith(">>"))
        return {};

    Update update;
    update.Begin = pdf.size();
    const int end = AddBookmarks(update, size, pageHeight_pt, pages, bookmarks);
    update.Add(root, catalog.chopped(2) + "/Outlines " + Reference(size) +
                         "\n/PageMode /UseOutlines\n/Lang (en)\n>>");
    QMap<int, QByteArray> ofPage;
    for (const PdfLink& link : links) ofPage[link.Page] += Annotation(link, pageHeight_pt, pages) + "\n";
    for (auto page = ofPage.begin(); page != ofPage.end(); ++page) {
        const int list = NumberBehind(ObjectOf(pdf, pages[page.key()]), "/Annots ");
        if (list > 0) update.Add(list, "[\n" + page.value() + "]");
    }

    QByteArray table = "xref\n";
    for (auto place = update.Places.begin(); place != update.Places.end(); ++place)
        table += QByteArray::number(place.key()) + " 1\n" +
                 QByteArray::number(place.value()).rightJustified(10, '0') + " 00000 n \n";
    const qsizetype tableAt = pdf.size() + update.Bytes.size();
    const int info = NumberBehind(pdf, "/Info ");
    return pdf + update.Bytes + table + "trailer\n<< /Size " + QByteArray::number(end) + " /Root " +
           Reference(root) + (info > 0 ? " /Info " + Reference(info) : QByteArray()) + " /Prev " +
           QByteArray::number(before) + " >>\nstartxref\n" + QByteArray::number(tableAt) + "\n%%EOF\n";
}
