// The desktop program.
#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>

#include "core/controller.h"
#include "ui/desktop.h"
#include "ui/qt_text.h"
#include "ui/start_screen.h"
#include "ui/theme.h"

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Corvinade"));
    QApplication::setApplicationVersion(Q(ProgramVersion()));
    QApplication::setQuitOnLastWindowClosed(false);

    QGuiApplication::setDesktopFileName(QStringLiteral("corvinade"));

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Finds the least-squares 3D transformation between two point sets."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOption({QStringLiteral("no-splash"), QStringLiteral("Begin without the start screen.")});
    parser.addPositionalArgument(QStringLiteral("JOB"), QStringLiteral("Job file to open."),
                                 QStringLiteral("[JOB.cvn]"));
    parser.process(application);
    const QStringList jobs = parser.positionalArguments();
    if (parser.isSet(QStringLiteral("no-splash")) || !jobs.isEmpty()) SkipStartScreen();

    ApplyTheme(Theme::Desktop);
    OpenDesktop();
    // The start-up takes the command line as a shell would hand it over that leaves the quotes on.
    const std::string job = jobs.isEmpty() ? "" : "\"" + S(QFileInfo(jobs.front()).absoluteFilePath()) + "\"";
    UserDid([&job] { StartUp(job); });
    const int status = QApplication::exec();
    CloseDesktop();
    return status;
}
