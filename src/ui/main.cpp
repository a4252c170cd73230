// The desktop program.
#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>

#include "core/controller.h"
#include "core/desktop_defaults.h"
#include "core/file_writer.h"
#include "core/fresh_start.h"
#include "core/recovery.h"
#include "core/system_files.h"
#include "ui/desktop.h"
#include "ui/qt_text.h"
#include "ui/recovery_watch.h"
#include "ui/start_screen.h"
#include "ui/theme.h"

namespace corvinade::ui {

namespace {

void AddOptions(QCommandLineParser& parser) {
    parser.setApplicationDescription(
        QStringLiteral("Finds the least-squares 3D transformation between two point sets."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOption({QStringLiteral("no-splash"), QStringLiteral("Begin without the start screen.")});
    parser.addPositionalArgument(QStringLiteral("JOB"), QStringLiteral("Job file to open."),
                                 QStringLiteral("[JOB.cvn]"));
}

// Whether the program is only asked what it is, for which it needs no screen.
bool IsOnlyAsked(int argc, char** argv) {
    QStringList arguments;
    for (int i = 0; i < argc; ++i) arguments += QString::fromLocal8Bit(argv[i]);
    QCommandLineParser parser;
    AddOptions(parser);
    parser.parse(arguments);
    return parser.isSet(QStringLiteral("help")) || parser.isSet(QStringLiteral("help-all")) ||
           parser.isSet(QStringLiteral("version"));
}

}  // namespace

}  // namespace corvinade::ui

using namespace corvinade;

int main(int argc, char** argv) {
    LetTooLargeFilesRefuse();
    RemoveFilesBesideAtSignals();
    FreshStart();
    QCoreApplication::setApplicationName(QStringLiteral("Corvinade"));
    QCoreApplication::setApplicationVersion(Q(ProgramVersion()));
    QCommandLineParser parser;
    AddOptions(parser);
    if (IsOnlyAsked(argc, argv)) {
        const QCoreApplication application(argc, argv);
        parser.process(application);
    }

    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QGuiApplication::setDesktopFileName(QStringLiteral("corvinade"));
    parser.process(application);
    const QStringList jobs = parser.positionalArguments();
    if (parser.isSet(QStringLiteral("no-splash")) || !jobs.isEmpty()) SkipStartScreen();

    ApplyTheme(Theme::Desktop);
    OpenDesktop();
    WantDesktopDefaults();
    // The start-up takes the command line as a shell would hand it over that leaves the quotes on.
    const std::string job = jobs.isEmpty() ? "" : "\"" + S(QFileInfo(jobs.front()).absoluteFilePath()) + "\"";
    UserDid([&job] { StartUp(job); });
    WatchRecovery();
    const int status = QApplication::exec();
    EndRecovery();
    CloseDesktop();
    return status;
}
