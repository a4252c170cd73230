// Pictures at a size of their own, the menu of a picture, and "What is this?", on the desktop.
#include <QAction>
#include <QContextMenuEvent>
#include <QImage>
#include <QMenu>
#include <QPrinter>
#include <QWhatsThis>

#include "analysis/form_grafik.h"
#include "core/files.h"
#include "core/form_main.h"
#include "core/run.h"
#include "graphics/form_picture.h"
#include "graphics/form_report.h"
#include "graphics/screen_window.h"
#include "ui/desktop.h"
#include "ui/desktop_fixture.h"
#include "ui/frame.h"
#include "ui/qt_text.h"
#include "ui/report_print.h"
#include "ui/screen_view.h"
#include "ui/screen_windows.h"

using namespace corvinade;

namespace {

constexpr const char* kExample = CORVINADE_SOURCE_DIR "/examples/robot_cell.cvn";

class PictureOnScreen : public DesktopTest {
protected:
    ~PictureOnScreen() override { ::Run.JobDirty = kFalse; }
    static int Pages(const std::string& pdf) {
        int count = 0;
        const std::string page = "/Type /Page\n";
        for (std::size_t at = pdf.find(page); at != std::string::npos; at = pdf.find(page, at + 1)) ++count;
        return count;
    }
};

}  // namespace

TEST_F(PictureOnScreen, OfAWindowIsSavedFromTheFields) {
    Begin(kExample);
    Trigger("MenueGraphics");
    Trigger("MenuEditPicture");
    ASSERT_TRUE(IsOpen("FormPicture"));
    Type("FormPicture.TextWidth", "127");
    Type("FormPicture.TextHeight", "101.6");
    Type("FormPicture.TextResolution", "100");
    ChooseNext(PathOf("cell.png"));
    Click("FormPicture.BtnSave");
    const QImage image(Q(PathOf("cell.png")));
    EXPECT_EQ(image.size(), QSize(500, 400));
    EXPECT_EQ(Screens().Open.size(), 1U);
    ChooseNext(PathOf("cell.svg"));
    Click("FormPicture.BtnSave");
    EXPECT_NE(std::string(ReadFile(PathOf("cell.svg")).View()).find("<svg"), std::string::npos);
}

TEST_F(PictureOnScreen, OfAChartHasItsSizeInEachForm) {
    Begin(kExample);
    const std::vector<ChartPoint> points = {{0, 0}, {1, 0.5}, {2, -0.25}, {3, 0.125}};
    UserDid([&points] { Dispatch([&points] { Grafik(points, 1, 3); }); });
    PictureOrder order{.Of = PictureSource::Chart, .Width_mm = 127, .Height_mm = 101.6, .Dots = 100};
    ASSERT_NE(PictureBy.Chart, nullptr);
    const std::string png = PictureBy.Chart(order, PictureFormat::Png);
    const QImage image =
        QImage::fromData(reinterpret_cast<const uchar*>(png.data()), static_cast<int>(png.size()), "PNG");
    ASSERT_EQ(image.size(), QSize(500, 400));
    int red = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QColor colour = image.pixelColor(x, y);
            red += colour.red() > 200 && colour.green() < 140 ? 1 : 0;
        }
    EXPECT_GT(red, 100) << "the line of the values";
    EXPECT_EQ(image.pixelColor(1, 1), QColor(Qt::white));
    EXPECT_NE(PictureBy.Chart(order, PictureFormat::Svg).find("<svg"), std::string::npos);
    EXPECT_EQ(Pages(PictureBy.Chart(order, PictureFormat::Pdf)), 1);
}

TEST_F(PictureOnScreen, TheMenuKeyOpensTheMenuOfThePicture) {
    Begin(kExample);
    Trigger("MenueGraphics");
    auto* menu = Frame()->findChild<QMenu*>(QStringLiteral("MenuPicture"));
    ASSERT_NE(menu, nullptr);
    EXPECT_TRUE(menu->actions().contains(Action("MenuGraphicsDistance")));
    QWidget* view = ViewOf(*Screens().Active);
    QContextMenuEvent key(QContextMenuEvent::Keyboard, QPoint(10, 10), view->mapToGlobal(QPoint(10, 10)));
    QApplication::sendEvent(view, &key);
    QApplication::processEvents();
    EXPECT_TRUE(menu->isVisible());
    menu->close();
}

TEST_F(PictureOnScreen, EachFieldOfTheResultSaysWhatItIs) {
    Begin(kExample);
    Trigger("MenuTransformationCalculation");
    EXPECT_TRUE(Widget("FormTrafoBerechnung.TextS0")->whatsThis().startsWith(QStringLiteral("s0,")));
    EXPECT_FALSE(Widget("FormTrafoBerechnung.TextSigmaTraX")->whatsThis().isEmpty());
    EXPECT_TRUE(Widget("FormTrafoBerechnung.BtnCalculate")->whatsThis().isEmpty());
    Trigger("_HelpWhatIs");
    EXPECT_TRUE(QWhatsThis::inWhatsThisMode());
    QWhatsThis::leaveWhatsThisMode();
}

TEST_F(PictureOnScreen, AReportPrintsThePagesThatWereChosen) {
    Report report{.Title = "Cell 4", .Made = "today"};
    ReportTable table{.Heads = {"point", "dx"}};
    for (int i = 0; i < 400; ++i) table.Rows.push_back({{"P" + std::to_string(i)}, {"0.125"}});
    report.Sections.push_back({.Title = "Points", .Tables = {table}});
    const auto print = [&](const std::string& name, int from, int to) {
        QPrinter printer(QPrinter::HighResolution);
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(Q(PathOf(name)));
        printer.setPageSize(QPageSize(QPageSize::A4));
        if (to > 0) printer.setFromTo(from, to);
        EXPECT_TRUE(PrintOn(printer, report));
        return Pages(std::string(ReadFile(PathOf(name)).View()));
    };
    const int all = print("all.pdf", 0, 0);
    EXPECT_GT(all, 3) << "the rows need more than three pages";
    EXPECT_EQ(print("two.pdf", 2, 3), 2);
}
