// The tests of the desktop, on a screen that nobody sees.
#include <gtest/gtest.h>
#include <sys/prctl.h>

#include <QApplication>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <csignal>
#include <cstdio>
#include <string_view>

#include "core/fresh_start.h"
#include "ui/session.h"
#include "ui/theme.h"

using namespace corvinade;

namespace {

// A bus of their own, so that no test asks the desktop of whoever runs it; it ends with the tests however
// they end. Where it cannot be started there is none.
void StartBus(QProcess& daemon) {
    daemon.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGTERM); });
    daemon.start(QStringLiteral("dbus-daemon"), {QStringLiteral("--session"), QStringLiteral("--nofork"),
                                                 QStringLiteral("--print-address")});
    const bool runs = daemon.waitForStarted() && daemon.waitForReadyRead();
    const QByteArray address = runs ? daemon.readLine().trimmed() : QByteArray();
    qputenv("DBUS_SESSION_BUS_ADDRESS", address.isEmpty() ? "unix:path=/nonexistent" : address);
}

// A screen that nobody sees complains of what it is at every window.
void TellWhatMatters(QtMsgType, const QMessageLogContext&, const QString& message) {
    const bool usual = message.startsWith(QLatin1String("This plugin does not support")) ||
                       message.startsWith(QLatin1String("QStandardPaths: XDG_RUNTIME_DIR not set"));
    if (!usual) std::fprintf(stderr, "%s\n", qPrintable(message));
}

// A screen as people have one: the frame keeps to its screen, and the toolkit's own would be too small for
// the sizes that tests give it.
void DescribeScreen(const QTemporaryDir& folder) {
    // A test that needs other screens starts the program anew and says which.
    if (qgetenv("QT_QPA_PLATFORM").startsWith("offscreen:")) return;
    QFile screen(folder.filePath(QStringLiteral("screen.json")));
    const char* const described =
        R"({"screens": [{"name": "large", "x": 0, "y": 0, "width": 1920, "height": 1200,
                         "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})";
    if (screen.open(QIODevice::WriteOnly) && screen.write(described) > 0)
        qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + screen.fileName().toUtf8());
    else
        qputenv("QT_QPA_PLATFORM", "offscreen");
}

}  // namespace

int main(int argc, char** argv) {
    qInstallMessageHandler(TellWhatMatters);
    if (argc > 1 && std::string_view(argv[1]) == "session") return RunSession(argc - 1, argv + 1);
    const QTemporaryDir folder;
    DescribeScreen(folder);
    QProcess daemon;
    StartBus(daemon);
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    ApplyTheme(Theme::Light);
    FreshStart();
    testing::InitGoogleTest(&argc, argv);
    const int status = RUN_ALL_TESTS();
    daemon.terminate();
    daemon.waitForFinished();
    return status;
}
