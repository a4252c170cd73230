// The report as a PDF file: pages, text that can be selected, and bookmarks that a reader finds.
#include "paint/report_pdf.h"

#include <QBuffer>
#include <QImage>
#include <QPainter>
#include <cstdlib>
#include <regex>

#include "paint/pdf_marks.h"
#include "paint/report_pages.h"
#include "support/fixture.h"

using namespace corvinade;

namespace {

Report LongReport(int rows) {
    Report report{.Title = "Cell 4", .Made = "today"};
    report.Sections.push_back({.Title = "Result", .Lines = {"all is well"}});
    ReportSection points{.Title = "Points <&> \xC3\xBC"};
    ReportTable table{.Heads = {"point", "dx"}};
    for (int i = 0; i < rows; ++i) table.Rows.push_back({{"P" + std::to_string(i)}, {"0.125", i % 7 == 0}});
    points.Tables.push_back(table);
    report.Sections.push_back(points);
    report.Sections.push_back({.Title = "Notes", .Lines = {"none"}});
    return report;
}

int Count(const std::string& text, const std::string& part) {
    int count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
    return count;
}

// What stands behind the last "startxref" leads to a table whose entries lead to their objects.
void ExpectTableOfObjects(const std::string& pdf) {
    const std::size_t start = pdf.rfind("startxref\n");
    ASSERT_NE(start, std::string::npos);
    const auto table = static_cast<std::size_t>(std::atol(pdf.c_str() + start + 10));
    ASSERT_EQ(pdf.substr(table, 5), "xref\n");
    std::size_t at = table + 5;
    int seen = 0;
    while (pdf.compare(at, 7, "trailer") != 0) {
        char* behind = nullptr;
        const long first = std::strtol(pdf.c_str() + at, &behind, 10);
        const long count = std::strtol(behind, &behind, 10);
        at = static_cast<std::size_t>(behind - pdf.c_str()) + 1;
        for (long k = 0; k < count; ++k, at += 20, ++seen) {
            const auto place = static_cast<std::size_t>(std::atol(pdf.c_str() + at));
            const std::string head = std::to_string(first + k) + " 0 obj";
            EXPECT_EQ(pdf.substr(place, head.size()), head);
        }
    }
    EXPECT_GT(seen, 0);
}

}  // namespace

TEST(ReportPdf, HasABookmarkForEachSectionOnItsPage) {
    const std::string pdf = ReportPdf(LongReport(400));
    ASSERT_TRUE(pdf.starts_with("%PDF-"));
    EXPECT_GT(Count(pdf, "/Type /Page\n"), 3) << "the rows need more than three pages";
    EXPECT_EQ(Count(pdf, "/Dest ["), 3);
    // "Result", and "Points <&> ü" in UTF-16.
    EXPECT_NE(pdf.find("<FEFF0052006500730075006C0074>"), std::string::npos);
    EXPECT_NE(pdf.find("<FEFF0050006F0069006E007400730020003C0026003E002000FC>"), std::string::npos);
    ExpectTableOfObjects(pdf);
}

TEST(ReportPdf, HasLettersAndNoPicturesOfThem) {
    const std::string pdf = ReportPdf(LongReport(5));
    EXPECT_GT(Count(pdf, "/ToUnicode"), 0) << "a reader gets the text back";
    EXPECT_EQ(Count(pdf, "/Subtype /Image"), 0);
}

TEST(PdfMarks, AFileThatIsNotUnderstoodStaysAsItIs) {
    const std::vector<PdfMark> marks = {{"one", 0}};
    for (const std::string text : {"", "no PDF", "%PDF-1.4\n1 0 obj\n<<\n/Type /Page\n>>\nendobj\n"})
        EXPECT_EQ(WithPdfMarks(text, marks), text);
    const std::string pdf = ReportPdf(LongReport(5));
    EXPECT_EQ(WithPdfMarks(pdf, {{"beyond", 99}}), pdf);
}

TEST(ReportPdf, APictureIsAsWideAsItsPageTellsAndNoWider) {
    QImage red(62, 31, QImage::Format_RGB32);
    red.fill(Qt::red);
    QBuffer png;
    png.open(QIODevice::WriteOnly);
    red.save(&png, "PNG");
    Report report{.Title = "Cell 4"};
    report.Sections.push_back({.Title = "Pictures", .Pictures = {{"red", png.data().toStdString()}}});
    const ReportPages pages = PagesOf(report);
    EXPECT_EQ(pages.Count, 1);
    QImage page(pages.Width, pages.Height, QImage::Format_RGB32);
    page.fill(Qt::white);
    QPainter painter(&page);
    PaintPage(painter, pages, 0);
    painter.end();
    QRect place;
    for (int y = 0; y < page.height(); ++y)
        for (int x = 0; x < page.width(); ++x)
            if (page.pixel(x, y) == qRgb(255, 0, 0)) place |= QRect(x, y, 1, 1);
    // 620 pixels of a browser, the 96th part of an inch each, in dots of which 300 are one.
    EXPECT_NEAR(place.width(), 620 / 96.0 * 300, 4);
    EXPECT_NEAR(place.height(), 310 / 96.0 * 300, 4);
}
