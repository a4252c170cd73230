// Help where the user stands.
#include "ui/help.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QTextBrowser>
#include <QUrl>
#include <QVBoxLayout>
#include <QWhatsThis>
#include <array>
#include <string_view>

#include "core/form_main.h"
#include "engine/field_words.h"
#include "graphics/bindings_overlay.h"
#include "ui/desktop.h"
#include "ui/frame.h"
#include "ui/plain_text.h"
#include "ui/qt_text.h"

namespace corvinade::ui {

namespace {

struct ChapterRow {
    const char *Window, *Chapter;
};
constexpr ChapterRow kChapters[] = {
    {"FormMain", "01-first-job.md"},
    {"FormUnits", "08-settings.md"},
    {"FormMenuHelpInfo", "08-settings.md"},
    {"FormProgressBar", "03-calculation.md"},
    {"FormInputFiles", "02-points.md"},
    {"FormTable", "02-points.md"},
    {"FormInputStatistic", "07-output.md"},
    {"FormOptions", "08-settings.md"},
    {"FormTrafoBerechnung", "03-calculation.md"},
    {"FormTrafoDetails", "05-details.md"},
    {"FormMainSheet", "07-output.md"},
    {"FormColorBar", "11-3d-windows.md"},
    {"FormSaveView", "11-3d-windows.md"},
    {"FormDistanceScale", "14-distances.md"},
    {"FormTrompete", "14-distances.md"},
    {"FormStopParaTrafo", "12-paraboloid.md"},
    {"FormBündel", "13-bundle.md"},
    {"FormBatch", "15-batch-and-exports.md"},
    {"FormChangeDir", "15-batch-and-exports.md"},
    {"FormExport", "15-batch-and-exports.md"},
    {"FormReport", "15-batch-and-exports.md"},
    {"FormPicture", "15-batch-and-exports.md"},
    {"FormGraphicsOptions", "18-graphics-options.md"},
    {"FormBlackPlane", "17-black-planes.md"},
    {"FormGrafik", "19-graph-data.md"},
    {"FormEditFahne", "16-flags.md"},
    {"FormNotes", "20-notes.md"},
    {"FormReliability", "21-trust.md"},
    {"FormRecovery", "08-settings.md"},
    {"FormStart", "01-first-job.md"},
};
constexpr const char* kPictures = "11-3d-windows.md";
constexpr const char* kFirst = "01-first-job.md";

// The chapter of the form, or of a 3D window, that the widget belongs to.
QString ChapterAround(const QWidget* widget, const QMainWindow& frame) {
    for (const QWidget* at = widget; at != nullptr; at = at->parentWidget()) {
        for (const WindowEntry* window : AllWindows())
            if (window->Stand != WindowStand::Frame && WidgetOf(*window) == at)
                return QLatin1String(ChapterOf(*window));
        // A dialog's own widgets lie around its form.
        if (at->isWindow() && at != &frame)
            for (const WindowEntry* window : AllWindows())
                if (const QWidget* form = WidgetOf(*window); form != nullptr && form->window() == at)
                    return QLatin1String(ChapterOf(*window));
    }
    const QMdiSubWindow* active = AreaOf(frame).activeSubWindow();
    if (active == nullptr || active->widget() == nullptr) return QLatin1String(kFirst);
    for (const WindowEntry* window : AllWindows())
        if (WidgetOf(*window) == active->widget()) return QLatin1String(ChapterOf(*window));
    return QLatin1String(kPictures);
}

// One window for all of it, above whatever is in front.
QTextBrowser& Browser(QWidget* above) {
    static constexpr const char* kName = "_Help";
    for (QWidget* window : QApplication::topLevelWidgets())
        if (window->objectName() == QLatin1String(kName) && window->parentWidget() == above)
            if (auto* browser = window->findChild<QTextBrowser*>()) {
                window->show();
                window->raise();
                window->activateWindow();
                return *browser;
            }
    auto* dialog = new QDialog(above);
    dialog->setObjectName(QLatin1String(kName));
    dialog->setWindowTitle(QStringLiteral("Help"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    auto* layout = new QVBoxLayout(dialog);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* browser = new QTextBrowser(dialog);
    browser->setAccessibleName(QStringLiteral("Help"));
    browser->setOpenExternalLinks(false);
    layout->addWidget(browser);
    dialog->resize(760, 600);
    dialog->show();
    return *browser;
}

void ShowKeys(const QMainWindow& frame) {
    QString html = QStringLiteral("<h2>All keys</h2><table cellspacing=\"0\" cellpadding=\"3\">");
    QString where;
    for (const KeyLine& line : AllKeys(frame)) {
        if (line.Where != where)
            html +=
                QStringLiteral("<tr><td colspan=\"2\"><b>%1</b></td></tr>").arg(line.Where.toHtmlEscaped());
        where = line.Where;
        html += QStringLiteral("<tr><td>%1&nbsp;&nbsp;</td><td>%2</td></tr>")
                    .arg(line.Key.toHtmlEscaped(), line.Effect.toHtmlEscaped());
    }
    Browser(DialogParent()).setHtml(html + QStringLiteral("</table>"));
}

QString WithoutMark(QString caption) {
    caption.replace(QStringLiteral("&&"), QStringLiteral("\x01"));
    caption.remove('&');
    return caption.replace(QChar(1), '&').remove(QStringLiteral("..."));
}

// Buttons do what an entry of a menu does, whose key they name.
void NameKeysOfToolBars(const QMainWindow& frame) {
    for (const ControlEntry& button : FormMain_Entry.Controls) {
        if (button.Place->Kind != ControlKind::ToolButton || button.On.Click == nullptr) continue;
        for (const ControlEntry& entry : FormMain_Entry.Controls) {
            if (entry.Place->Kind != ControlKind::Menu || entry.On.Click != button.On.Click) continue;
            const auto* menu = frame.findChild<QAction*>(Q(std::string(entry.Name)));
            auto* action = frame.findChild<QAction*>(Q(std::string(button.Name)));
            if (menu == nullptr || action == nullptr || menu->shortcut().isEmpty()) continue;
            action->setProperty(kKeyOfTip, menu->shortcut().toString(QKeySequence::NativeText));
        }
    }
}

}  // namespace

const char* ChapterOf(const WindowEntry& window) {
    for (const ChapterRow& row : kChapters)
        if (std::string_view(row.Window) == window.Name) return row.Chapter;
    return "";
}

void ShowChapterFor(QWidget* widget) {
    const QString chapter = ChapterAround(widget, *Frame());
    Browser(DialogParent())
        .setSource(QUrl(QStringLiteral("qrc:/manual/") + chapter), QTextDocument::MarkdownResource);
}

QList<KeyLine> AllKeys(const QMainWindow& frame) {
    QList<KeyLine> lines;
    for (const QMenu* menu : frame.findChildren<QMenu*>())
        for (const QAction* action : menu->actions())
            if (!action->shortcut().isEmpty())
                lines.append({QStringLiteral("Menus"), action->shortcut().toString(QKeySequence::NativeText),
                              WithoutMark(action->text())});
    lines.append({QStringLiteral("Menus"), QStringLiteral("F5"), QStringLiteral("Calculate")});
    lines.append(
        {QStringLiteral("Menus"), QStringLiteral("Ctrl+W"), QStringLiteral("Close the window in front")});
    const QString tables = QStringLiteral("Tables");
    lines.append({tables, QStringLiteral("Ctrl+F"), QStringLiteral("Search")});
    lines.append({tables, QStringLiteral("Ctrl+C"), QStringLiteral("Copy what is marked")});
    lines.append({tables, QStringLiteral("Ctrl+Shift+C"), QStringLiteral("Copy it below its headings")});
    lines.append({tables, QStringLiteral("Ctrl+A"), QStringLiteral("Mark everything")});
    for (const Binding& binding : ScreenBindings())
        lines.append({QStringLiteral("3D windows"), QString::fromUtf8(binding.Keys),
                      QString::fromUtf8(binding.Effect)});
    return lines;
}

void FurnishHelp(QMainWindow& frame) {
    if (auto* keys = frame.findChild<QAction*>(QStringLiteral("_HelpKeys")))
        QObject::connect(keys, &QAction::triggered, &frame, [&frame] { ShowKeys(frame); });
    if (auto* chapter = frame.findChild<QAction*>(QStringLiteral("_HelpChapter")))
        QObject::connect(chapter, &QAction::triggered, &frame,
                         [] { ShowChapterFor(QApplication::focusWidget()); });
    if (auto* what = frame.findChild<QAction*>(QStringLiteral("_HelpWhatIs")))
        QObject::connect(what, &QAction::triggered, &frame, [] { QWhatsThis::enterWhatsThisMode(); });
    NameKeysOfToolBars(frame);
}

void TellWhatFieldsAre(const WindowEntry& window, const QWidget& form) {
    for (const ControlEntry& entry : window.Controls)
        if (const std::string words = WhatIs(*entry.Place); !words.empty())
            if (auto* widget = form.findChild<QWidget*>(Q(std::string(entry.Name))))
                widget->setWhatsThis(PlainAsMarkup(Q(words)));
}

}  // namespace corvinade::ui
