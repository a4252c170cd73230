#include "ui/session.h"

#include <QAbstractButton>
#include <QApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMainWindow>
#include <QMessageBox>
#include <QSocketNotifier>
#include <QStringList>
#include <QTimer>
#include <cstdio>
#include <iostream>
#include <string>
#include <string_view>

#include "core/controller.h"
#include "core/desktop_defaults.h"
#include "core/form_main.h"
#include "core/fresh_start.h"
#include "core/job.h"
#include "core/job_file.h"
#include "core/platform.h"
#include "core/recovery.h"
#include "core/run.h"
#include "core/system_files.h"
#include "ui/desktop.h"
#include "ui/qt_text.h"
#include "ui/recovery_watch.h"
#include "ui/start_screen.h"

using namespace corvinade;

namespace {

QStringList Answers;
QJsonArray Unanswered;

// What the program asks, it asks while it works on a request.
void AnswerMessage() {
    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    if (box == nullptr) return;
    if (Answers.isEmpty()) {
        Unanswered.append(box->text());
        box->reject();
        return;
    }
    const QString wanted = Answers.takeFirst();
    for (QAbstractButton* button : box->buttons())
        if (button->text().remove('&') == wanted) return button->click();
    Unanswered.append(box->text());
    box->reject();
}

Control* Named(const std::string& at) {
    const std::size_t dot = at.find('.');
    const WindowEntry* window = dot == std::string::npos ? nullptr : FindWindow(at.substr(0, dot));
    if (window == nullptr) return nullptr;
    for (const ControlEntry& entry : window->Controls)
        if (at.substr(dot + 1) == entry.Name) return entry.Place;
    return nullptr;
}

QJsonArray CellsOf(Control& control) {
    QJsonArray rows;
    for (int row = 0; row < control.Grid.Rows; ++row) {
        QJsonArray cells;
        for (int col = 0; col < control.Grid.Cols; ++col) cells.append(Q(CellText(control.Grid, row, col)));
        rows.append(cells);
    }
    return rows;
}

// Inside an event that waits for its dialog the job may stand half way.
std::string Fault() {
    if (IsInEvent()) return "";
    if (const std::string fault = JobFault(LengthsOf(Job)); !fault.empty()) return fault;
    if (Run.WaitPointers != 0) return "the busy pointer has stayed";
    if (!IsTrue(Run.JobDataValid)) return "";
    try {
        JobRecord job = Job;
        job.AutoRecalc = kFalse;  // a job that is opened does not calculate by itself
        const std::string saved = JobBytes(job, Main.ComboSaveView.Items);
        const JobFileContent again = ReadJobBytes(saved, "");
        return JobBytes(again.Job, again.ViewNames) == saved ? ""
                                                             : "a saved job is another one when it is read";
    } catch (const PlatformError& error) {
        return error.What.empty() ? "a refusal without a word" : "";
    }
}

QJsonObject Answered(const QJsonObject& request) {
    QJsonObject reply{{"ok", true}};
    const QString what = request["do"].toString();
    const std::string at = S(request["at"].toString());
    Control* const control = Named(at);
    if (what == "answer") {
        Answers.append(request["value"].toString());
    } else if (what == "record" && request.contains("value")) {
        UserDid([&request] { Dispatch([&request] { Job.TraX = request["value"].toDouble(); }); });
    } else if (what == "record" && request["name"] == "TraX") {
        reply["value"] = Job.TraX;
    } else if (what == "record" && request["name"] == "Pairs") {
        reply["value"] = Job.Pairs();
    } else if (what == "record" && request["name"] == "JobFilePath") {
        reply["value"] = Q(Run.JobFilePath);
    } else if (what == "click" && control != nullptr) {
        UserDid([control] { UserClick(*control); });
    } else if (what == "get" && control != nullptr) {
        reply["cells"] = CellsOf(*control);
    } else if (what == "get" && FindWindow(at) != nullptr) {
        reply["loaded"] = IsLoaded(at);
    } else if (what == "check") {
        reply["fault"] = Q(Fault());
    } else if (what == "title") {
        reply["value"] = Frame()->windowTitle();
    } else {
        reply["ok"] = false;
    }
    if (!Unanswered.isEmpty()) reply["unanswered"] = reply["dialogs"] = Unanswered;
    Unanswered = {};
    return reply;
}

void AnswerLine() {
    std::string line;
    if (!std::getline(std::cin, line)) return QApplication::quit();
    const QJsonObject request = QJsonDocument::fromJson(QByteArray::fromStdString(line)).object();
    std::cout << QJsonDocument(Answered(request)).toJson(QJsonDocument::Compact).constData() << std::endl;
}

}  // namespace

int RunSession(int argc, char** argv) {
    RemoveFilesBesideAtSignals();
    FreshStart();
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    SkipStartScreen();
    OpenDesktop();
    WantDesktopDefaults();
    const bool hands = argc > 1 && std::string_view(argv[1]) == "--hands";
    const int place = hands ? 2 : 1;
    const std::string job = argc > place ? "\"" + std::string(argv[place]) + "\"" : "";
    QTimer asked;
    QObject::connect(&asked, &QTimer::timeout, &asked, AnswerMessage);
    if (!hands) asked.start(20);
    UserDid([&job] { StartUp(job); });
    WatchRecovery();
    const QSocketNotifier lines(fileno(stdin), QSocketNotifier::Read);
    QObject::connect(&lines, &QSocketNotifier::activated, &lines, [] { AnswerLine(); });
    const int status = QApplication::exec();
    EndRecovery();
    CloseDesktop();
    return status;
}
