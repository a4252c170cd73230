// Unsaved work on the desktop: the star in the title, the copy that follows by itself, ends by signals and
// kills, and the window of what was left. The program that ends is one of its own (ui/session.h).
#include <QApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMainWindow>
#include <QProcess>
#include <QTableView>
#include <QThread>
#include <csignal>
#include <filesystem>
#include <string>

#include "core/files.h"
#include "core/form_recovery.h"
#include "core/job.h"
#include "core/job_file.h"
#include "core/lock_file.h"
#include "core/platform.h"
#include "core/recovery.h"
#include "core/run.h"
#include "ui/desktop.h"
#include "ui/desktop_fixture.h"
#include "ui/qt_text.h"

using namespace corvinade;

namespace fs = std::filesystem;

namespace {

class RecoveryWindowTest : public DesktopTest {
protected:
    RecoveryWindowTest() { fs::copy_file(CORVINADE_SOURCE_DIR "/examples/robot_cell.cvn", job_); }
    ~RecoveryWindowTest() override { EndRecovery(); }
    std::string job_ = PathOf("cell.cvn");
    std::string copy_ = PathOf("Corvinade/recovery-1.cvn");

    static void Change(double to) {
        UserDid([to] { Dispatch([to] { Job.TraX = to; }); });
    }
    // A kill, seen from the next start: the copy stays, and the system drops the lock.
    static void Kill() {
        DropLock(Recovery.Lock);
        Recovery = RecoveryRecord{};
    }
    // Has to become true; what comes by itself comes within seconds.
    template <class Condition>
    static bool Comes(Condition condition) {
        for (int tries = 0; tries < kPatience_ms / 20; ++tries) {
            if (condition()) return true;
            QThread::msleep(20);
        }
        return false;
    }
    static double Kept(const std::string& path) {
        try {
            const FileBytes bytes = ReadFile(path);
            return ReadJobBytes(bytes.View(), "").Job.TraX;
        } catch (const PlatformError&) {
            return 0;
        }
    }
};

// The program, driven by name.
class DrivenProgram {
public:
    explicit DrivenProgram(const std::string& job) {
        process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        // What ignores a hang-up, as nohup does, hands that on.
        process_.setChildProcessModifier([] {
            for (const int signal : {SIGTERM, SIGHUP}) std::signal(signal, SIG_DFL);
        });
        process_.start(QApplication::applicationFilePath(), {QStringLiteral("session"), Q(job)});
    }
    ~DrivenProgram() {
        process_.kill();
        process_.waitForFinished(kPatience_ms);
    }
    DrivenProgram(const DrivenProgram&) = delete;
    DrivenProgram& operator=(const DrivenProgram&) = delete;

    QJsonObject Ask(const QJsonObject& request) {
        process_.write(QJsonDocument(request).toJson(QJsonDocument::Compact) + "\n");
        while (!process_.canReadLine())
            if (!process_.waitForReadyRead(kPatience_ms)) return {};
        return QJsonDocument::fromJson(process_.readLine()).object();
    }
    void Change(double to) {
        EXPECT_TRUE(Ask({{"do", "record"}, {"name", "TraX"}, {"value", to}})["ok"].toBool());
    }
    double Value() { return Ask({{"do", "record"}, {"name", "TraX"}})["value"].toDouble(); }
    bool HasStar() { return Ask({{"do", "title"}})["value"].toString().startsWith(QLatin1String("* ")); }
    bool Offers() { return Ask({{"do", "get"}, {"at", "FormRecovery"}})["loaded"].toBool(); }
    void Click(const char* at) { EXPECT_TRUE(Ask({{"do", "click"}, {"at", at}})["ok"].toBool()) << at; }

    // Ends by the signal.
    void Raise(int signal) {
        ::kill(static_cast<pid_t>(process_.processId()), signal);
        ASSERT_TRUE(process_.waitForFinished(kPatience_ms));
        EXPECT_EQ(process_.exitStatus(), QProcess::CrashExit);
        EXPECT_EQ(process_.exitCode(), signal);
    }

private:
    QProcess process_;
};

}  // namespace

TEST_F(RecoveryWindowTest, AStarInTheTitleComesAndGoesWithTheChanges) {
    Begin(job_);
    BeginRecovery();
    const double opened = Job.TraX;
    EXPECT_FALSE(Frame()->windowTitle().startsWith(QLatin1String("* ")));
    const auto look = [] {
        TendRecovery(Recovery.Looked_s + kBetweenLooks_s);
        ShowState();
        return Frame()->windowTitle().startsWith(QLatin1String("* "));
    };
    Change(7);
    EXPECT_TRUE(look());
    Change(opened);
    EXPECT_FALSE(look()) << "taken back";
    Change(8);
    EXPECT_TRUE(look());
    Trigger("MenuFileSave");
    EXPECT_FALSE(Frame()->windowTitle().startsWith(QLatin1String("* "))) << "saved";
    EXPECT_FALSE(fs::exists(copy_));
}

TEST_F(RecoveryWindowTest, TheCopyFollowsByItselfAndAKillLeavesItToTheNextStart) {
    {
        DrivenProgram program(job_);
        EXPECT_FALSE(program.HasStar());
        program.Change(4711);
        // No further event: the timer has to see to it.
        EXPECT_TRUE(Comes([&] { return Kept(copy_) == 4711; }));
        EXPECT_TRUE(Comes([&] { return program.HasStar(); }));
        program.Raise(SIGKILL);
    }
    DrivenProgram next(job_);
    EXPECT_NE(next.Value(), 4711);
    ASSERT_TRUE(next.Offers());
    next.Click("FormRecovery.BtnRestore");
    EXPECT_EQ(next.Value(), 4711);
    EXPECT_FALSE(next.Offers());
    EXPECT_TRUE(next.HasStar());
    next.Click("FormMain.MenuFileSave");
    EXPECT_FALSE(next.HasStar());
    EXPECT_EQ(Kept(job_), 4711);
    EXPECT_FALSE(fs::exists(copy_));
}

TEST_F(RecoveryWindowTest, ATerminationAndAHangUpWriteTheCopyFirst) {
    for (const int signal : {SIGTERM, SIGHUP}) {
        DrivenProgram program(job_);
        program.Change(100 + signal);  // no time for the timer
        program.Raise(signal);
        EXPECT_EQ(Kept(copy_), 100 + signal);
        fs::remove(copy_);
    }
    // Without a change nothing is left behind.
    DrivenProgram program(job_);
    program.Value();
    program.Raise(SIGTERM);
    for (const auto& entry : fs::directory_iterator(PathOf("Corvinade")))
        EXPECT_FALSE(entry.path().filename().string().starts_with("recovery-")) << entry.path();
}

TEST_F(RecoveryWindowTest, WhatWasLeftIsRestoredOrDiscardedWithTheMouse) {
    Begin(job_);
    BeginRecovery();
    Change(4711);
    KeepRecoveryCopy();
    Kill();
    BeginRecovery();
    QApplication::processEvents();
    ShowState();
    ASSERT_TRUE(IsOpen("FormRecovery"));
    auto* table = qobject_cast<QTableView*>(Widget("FormRecovery.GridRecovery"));
    ASSERT_EQ(table->model()->rowCount(), 1);
    EXPECT_EQ(S(table->model()->index(0, kRecoveryJob).data().toString()), job_);
    Click("FormRecovery.BtnClose");
    EXPECT_FALSE(IsOpen("FormRecovery"));
    EXPECT_TRUE(fs::exists(copy_)) << "left for later";
    // The menu brings it again.
    Trigger("MenuFileRecovery");
    ASSERT_TRUE(IsOpen("FormRecovery"));
    AnswerNext("No");
    Click("FormRecovery.BtnDiscard");
    ASSERT_EQ(messages_.size(), 1U);
    EXPECT_NE(messages_[0].find(job_), std::string::npos);
    EXPECT_TRUE(fs::exists(copy_));
    Job.TraX = 0;
    AnswerNext("No");  // what is open counts as changed
    Click("FormRecovery.BtnRestore");
    EXPECT_EQ(Job.TraX, 4711);
    EXPECT_EQ(::Run.JobFilePath, job_);
    EXPECT_FALSE(IsOpen("FormRecovery"));
    EXPECT_FALSE(fs::exists(copy_));
    // With nothing left it says so, and has nothing to press.
    Trigger("MenuFileRecovery");
    ASSERT_TRUE(IsOpen("FormRecovery"));
    EXPECT_FALSE(Widget("FormRecovery.BtnRestore")->isEnabled());
    EXPECT_FALSE(Widget("FormRecovery.BtnDiscard")->isEnabled());
    EXPECT_EQ(RecoveryWindow.LabelSummary.Text, "Nothing was left behind.");
}

// tools/kill-trial runs as many as one likes.
TEST_F(RecoveryWindowTest, NoKillTakesMoreThanSecondsOfWorkNorBringsBackAWrongJob) {
    QProcess trial;
    trial.setProcessChannelMode(QProcess::MergedChannels);
    trial.start(QStringLiteral("python3"),
                {QStringLiteral(CORVINADE_SOURCE_DIR "/tools/kill-trial"),
                 QApplication::applicationFilePath(), QStringLiteral("5"), QStringLiteral("3")});
    ASSERT_TRUE(trial.waitForFinished(-1));
    const std::string told = trial.readAll().toStdString();
    EXPECT_EQ(trial.exitCode(), 0) << told;
    EXPECT_NE(told.find("5 kills"), std::string::npos) << told;
}
