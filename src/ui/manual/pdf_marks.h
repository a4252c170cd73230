// Bookmarks and links of a finished PDF, which the writer of the toolkit has no way to make.
#pragma once

#include <QByteArray>
#include <QList>
#include <QRectF>
#include <QString>

// A heading, for the list of bookmarks beside the pages. Page from 0; the place is in points from the top of
// the page. Level 1 is a chapter, 2 a section of the chapter before it.
struct PdfBookmark {
    QString Text;
    int Level = 1;
    int Page = 0;
    double Top_pt = 0;
};

// A place on a page that leads to another one; the place in points from the top left of the page.
struct PdfLink {
    int Page = 0;
    QRectF Place_pt;
    int TargetPage = 0;
    double TargetTop_pt = 0;
};

// Adds marks to a PDF as an update behind its end, which leaves the bytes before it as they are. Returns an
// empty array where the file does not look like one of the toolkit's writer.
QByteArray WithMarks(const QByteArray& pdf, double pageHeight_pt, const QList<PdfBookmark>& bookmarks,
                     const QList<PdfLink>& links);
