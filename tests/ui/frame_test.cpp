// What the frame does beside its commands: files dropped onto it, questions before a file is overwritten,
// texts that change quickly, the busy pointer after errors.
#include <QClipboard>
#include <QDialog>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMessageBox>
#include <QMimeData>
#include <QTimer>
#include <QUrl>
#include <filesystem>
#include <fstream>
#include <map>

#include "core/controller.h"
#include "core/desktop_defaults.h"
#include "core/form_main.h"
#include "core/fresh_start.h"
#include "core/job.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/settings.h"
#include "engine/form_trafo_berechnung.h"
#include "import/form_input_files.h"
#include "ui/desktop.h"
#include "ui/desktop_fixture.h"
#include "ui/drops.h"
#include "ui/qt_text.h"

using namespace corvinade;

namespace {

class FrameTest : public DesktopTest {
protected:
    std::string start_ = Write("start.txt", "A;0;0;0\nB;1000;0;0\nC;0;2000;0\nD;0;0;3000\n");
    std::string target_ = Write("target.txt", "A;5;6;7\nB;1005;6;7\nC;5;2006;7\nD;5;6;3007\n");

    void Import() {
        Trigger("MenuFileInputFiles");
        Type("FormInputFiles.TextNameMCS", start_);
        Type("FormInputFiles.TextNameOCS", target_);
        Click("FormInputFiles.BtnOK");
        ASSERT_EQ(Job.Pairs(), 4);
    }

    // Drags addresses over a widget and drops them there. False where they are not taken.
    static bool Drop(QWidget* onto, const std::vector<QUrl>& urls) {
        QMimeData data;
        data.setUrls(QList<QUrl>(urls.begin(), urls.end()));
        const QPoint middle = onto->rect().center();
        QDragEnterEvent enter(middle, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(onto, &enter);
        if (!enter.isAccepted()) return false;
        QDropEvent drop(middle, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(onto, &drop);
        QApplication::processEvents();
        return drop.isAccepted();
    }
    static QUrl Local(const std::string& path) { return QUrl::fromLocalFile(Q(path)); }

    std::string SavedJob() {
        Import();
        ChooseNext(PathOf("cell.cvn"));
        Trigger("MenuFileSaveAs");
        return PathOf("cell.cvn");
    }

    // It ends behind its version.
    std::string DamagedJob() const { return Write("damaged.cvn", std::string("\6\0\0\0", 4) + "2.0.64"); }

    static std::string InField(const char* field) {
        return S(qobject_cast<QLineEdit*>(Widget(field))->text());
    }

    static void ExpectPlainPointer(const char* after) {
        EXPECT_EQ(::Run.WaitPointers, 0) << after;
        EXPECT_EQ(QApplication::overrideCursor(), nullptr) << after;
    }
};

using Dropped = FrameTest;
using BusyPointerOnScreen = FrameTest;
using QuickTexts = FrameTest;
using Keyboard = FrameTest;

}  // namespace

TEST_F(Dropped, TwoPointFilesGoToTheInputDialogWhereverTheyFall) {
    Begin();
    ASSERT_TRUE(Drop(Frame()->centralWidget(), {Local(start_), Local(target_)}));
    ASSERT_TRUE(IsOpen("FormInputFiles"));
    EXPECT_EQ(InField("FormInputFiles.TextNameMCS"), start_);
    EXPECT_EQ(InField("FormInputFiles.TextNameOCS"), target_);
    Click("FormInputFiles.BtnOK");
    EXPECT_EQ(Job.Pairs(), 4);
    // A field of a window inside the frame does not take the address as its text.
    Trigger("MenuTransformationCalculation");
    auto* field = qobject_cast<QLineEdit*>(Widget("FormTrafoBerechnung.TextTraX"));
    const QString before = field->text();
    ASSERT_TRUE(Drop(field, {Local(target_)}));
    EXPECT_EQ(field->text(), before);
    EXPECT_EQ(InField("FormInputFiles.TextNameMCS"), target_);
}

TEST_F(Dropped, AFileIsTakenByTheFieldOfTheInputDialogThatItFallsOn) {
    Begin();
    Trigger("MenuFileInputFiles");
    ASSERT_TRUE(Drop(Widget("FormInputFiles.TextNameOCS"), {Local(target_)}));
    EXPECT_EQ(InField("FormInputFiles.TextNameOCS"), target_);
    EXPECT_EQ(InField("FormInputFiles.TextNameMCS"), "");
    ASSERT_TRUE(Drop(Widget("FormInputFiles.FrameIdentify"), {Local(start_)}));
    EXPECT_EQ(InField("FormInputFiles.TextNameMCS"), start_);
    EXPECT_EQ(InputFiles.TextNameMCS.Text, start_);
    EXPECT_FALSE(Drop(Frame(), {Local(start_)})) << "a dialog stands in front of it";
}

TEST_F(Dropped, AJobIsOpenedAndAChangedOneAskedForFirst) {
    Begin();
    const std::string path = SavedJob();
    ::Run.JobDirty = kTrue;
    AnswerNext("No");
    ASSERT_TRUE(Drop(Frame()->centralWidget(), {Local(path)}));
    ASSERT_EQ(messages_.size(), 1u);
    EXPECT_NE(messages_[0].find("Do you want to save it?"), std::string::npos);
    EXPECT_EQ(::Run.JobFilePath, path);
    EXPECT_EQ(Job.Pairs(), 4);
}

TEST_F(Dropped, WhatIsNoJobAndNoPairOfPointFilesIsRefused) {
    Begin();
    const std::string job = SavedJob();
    QWidget* area = Frame()->centralWidget();
    EXPECT_FALSE(Drop(area, {Local(folder_)})) << "a folder";
    EXPECT_FALSE(Drop(area, {Local(PathOf("missing.txt"))}));
    EXPECT_FALSE(Drop(area, {QUrl(QStringLiteral("https://example.org/points.txt"))}));
    EXPECT_FALSE(Drop(area, {Local(start_), Local(target_), Local(start_)}));
    EXPECT_FALSE(Drop(area, {Local(job), Local(start_)}));
    EXPECT_FALSE(IsOpen("FormInputFiles"));
    Trigger("MenuFileInputFiles");
    EXPECT_FALSE(Drop(Widget("FormInputFiles.TextNameMCS"), {Local(job)}));
    OpenDropped({folder_});
    EXPECT_EQ(::Run.JobFilePath, job);
}

TEST_F(FrameTest, AJobThatTheTypedNameWouldOverwriteIsAskedForWithoutItsExtensionToo) {
    Begin();
    const std::string job = SavedJob();
    const auto before = std::filesystem::last_write_time(job);
    bool asked = false;
    QTimer::singleShot(100, [&] {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        QTimer::singleShot(100, [&] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            asked = box != nullptr;
            if (box != nullptr) box->reject();
        });
        dialog->findChild<QLineEdit*>()->setText(Q(PathOf("cell")));
        QMetaObject::invokeMethod(dialog, "accept");
        dialog->reject();
    });
    Trigger("MenuFileSaveAs");
    EXPECT_TRUE(asked);
    EXPECT_EQ(std::filesystem::last_write_time(job), before);
}

TEST_F(FrameTest, AJobThatCannotBeOpenedAtTheStartIsToldOverTheFrame) {
    const std::string path = DamagedJob();
    bool frameShown = false;
    QTimer::singleShot(300, [&] { frameShown = Frame() != nullptr && Frame()->isVisible(); });
    QTimer::singleShot(400, [this] { AnswerNext("OK"); });
    Begin(path);
    EXPECT_TRUE(frameShown);
    ASSERT_EQ(messages_.size(), 1u);
    EXPECT_NE(messages_[0].find("damaged.cvn"), std::string::npos) << messages_[0];
    EXPECT_TRUE(Frame()->isVisible());
}

TEST_F(QuickTexts, OfALoopReachTheStatusBarAndTheClipboardAFewTimesASecondAndTheLastOneAlways) {
    Begin();
    auto* panel = Frame()->findChild<QLabel*>(QStringLiteral("StatusBar.3"));
    ASSERT_NE(panel, nullptr);
    int copies = 0, shown = 0, steps = 0;
    const auto counting = QObject::connect(QApplication::clipboard(), &QClipboard::dataChanged,
                                           QApplication::instance(), [&copies] { ++copies; });
    QElapsedTimer time;
    time.start();
    QString last;
    constexpr int kTexts = 5, kMostSteps = 20000000;
    UserDid([&] {
        while ((shown < kTexts || steps <= 100) && steps < kMostSteps) {
            const std::string text = "Iteration " + std::to_string(++steps);
            SetStatus(3, text);
            SetClipboardText(text);
            EXPECT_EQ(ClipboardText(), text);
            YieldToEvents();
            if (panel->text() != last) ++shown;
            last = panel->text();
        }
    });
    QObject::disconnect(counting);
    const std::string final = "Iteration " + std::to_string(steps);
    EXPECT_GE(shown, kTexts);
    // One each tenth of a second and no more; a busy machine shows fewer.
    const int tenths = static_cast<int>(time.elapsed() / 100);
    EXPECT_LE(shown, tenths + 1);
    EXPECT_LE(copies, tenths + 2);
    EXPECT_EQ(S(panel->text()), final);
    EXPECT_EQ(S(QApplication::clipboard()->text()), final);
}

TEST_F(QuickTexts, ThatStillWaitGiveWayToACopyOfSomebodyElse) {
    Begin();
    UserDid([] {
        SetClipboardText("ours, put");
        SetClipboardText("ours, waiting");
        QApplication::clipboard()->setText(QStringLiteral("theirs"));
    });
    EXPECT_EQ(S(QApplication::clipboard()->text()), "theirs");
}

TEST_F(BusyPointerOnScreen, IsGoneAfterEveryError) {
    Begin();
    Import();
    ::Run.JobDirty = kFalse;
    AnswerNext("OK");
    OpenDropped({DamagedJob()});
    ASSERT_EQ(messages_.size(), 1u);
    ExpectPlainPointer("a damaged job");

    Import();
    Trigger("MenuFileInputFiles");
    Type("FormInputFiles.TextNameMCS", Write("bad.txt", "A;0;0;0\nB;x;0;0\n"));
    AnswerNext("Yes");
    QTimer::singleShot(200, [this] { AnswerNext("OK"); });
    Click("FormInputFiles.BtnApply");
    ASSERT_EQ(messages_.size(), 3u);
    EXPECT_NE(messages_[2].find("bad.txt"), std::string::npos) << messages_[2];
    ExpectPlainPointer("a field that is no number");
    Type("FormInputFiles.TextNameMCS", PathOf("missing.txt"));
    AnswerNext("OK");
    Click("FormInputFiles.BtnApply");
    ASSERT_EQ(messages_.size(), 4u);
    ExpectPlainPointer("a missing file");
    Settings.Editor = PathOf("no such program");
    AnswerNext("OK");
    Click("FormInputFiles.BtnEditMCS");
    ASSERT_EQ(messages_.size(), 5u);
    ExpectPlainPointer("a program that is not there");
    Click("FormInputFiles.BtnCancel");

    Import();
    AnswerNext("OK");
    ::Run.JobFilePath = PathOf("no such folder/cell.cvn");
    Trigger("MenuFileSave");
    ASSERT_EQ(messages_.size(), 6u);
    ExpectPlainPointer("a folder that is not there");
    ::Run.JobDirty = kFalse;
}

TEST_F(Keyboard, NoLetterStandsForTwoThingsOfADialog) {
    for (const char* name : {"FormInputFiles", "FormUnits", "FormMenuHelpInfo"}) {
        std::map<char, std::string> keys;
        for (const ControlEntry& entry : FindWindow(name)->Controls) {
            const std::string& caption = entry.Place->Text;
            const std::size_t mark = caption.find('&');
            if (mark == std::string::npos || mark + 1 >= caption.size()) continue;
            const char key = static_cast<char>(std::tolower(static_cast<unsigned char>(caption[mark + 1])));
            EXPECT_TRUE(keys.emplace(key, entry.Name).second)
                << name << ": " << key << " of " << entry.Name << " and " << keys[key];
        }
    }
}

TEST_F(Keyboard, NoTwoEntriesOfAMenuAndNoTwoCommandsShareAKey) {
    Begin();
    std::map<std::string, std::map<char, std::string>> menus;
    std::map<std::string, std::string> shortcuts;
    for (const ControlEntry& entry : FormMain_Entry.Controls) {
        if (entry.Place->Kind != ControlKind::Menu) continue;
        const std::string& caption = entry.Place->Text;
        const std::size_t mark = caption.find('&');
        if (mark != std::string::npos) {
            const char key = static_cast<char>(std::tolower(static_cast<unsigned char>(caption[mark + 1])));
            auto& menu = menus[entry.Parent == nullptr ? "" : entry.Parent];
            EXPECT_TRUE(menu.emplace(key, entry.Name).second) << entry.Name << " and " << menu[key];
        }
        const auto* action = Frame()->findChild<QAction*>(QString::fromUtf8(entry.Name));
        if (action == nullptr || action->shortcut().isEmpty()) continue;
        const std::string shortcut = S(action->shortcut().toString());
        EXPECT_TRUE(shortcuts.emplace(shortcut, entry.Name).second) << shortcut << " of " << entry.Name;
    }
    EXPECT_EQ(shortcuts["Ctrl+O"], "MenuFileOpen");
    EXPECT_EQ(shortcuts["Ctrl+S"], "MenuFileSave");
    EXPECT_EQ(shortcuts["Ctrl+N"], "MenuFileNew");
}

// --- As people find it ------------------------------------------------------------------------------------

TEST_F(FrameTest, BehindAWindowThatClosesComesTheOneUsedLast) {
    Begin();
    Import();
    Trigger("MenuTransformationCalculation");
    Trigger("MenuVievMainSheet");
    Trigger("MenüViewInputStatistic");
    auto* area = Frame()->findChild<QMdiArea*>();
    const auto of = [](const char* window) {
        return qobject_cast<QMdiSubWindow*>(WidgetOf(*FindWindow(window))->parentWidget());
    };
    area->setActiveSubWindow(of("FormTrafoBerechnung"));
    area->setActiveSubWindow(of("FormInputStatistic"));
    QApplication::processEvents();
    area->closeActiveSubWindow();
    QApplication::processEvents();
    EXPECT_EQ(area->activeSubWindow(), of("FormTrafoBerechnung"));
}

TEST_F(FrameTest, AJobThatIsOpenedShowsItsResultAndAnImportItsStatistic) {
    WantDesktopDefaults();
    Begin(std::string(CORVINADE_SOURCE_DIR) + "/examples/robot_cell.cvn");
    ASSERT_TRUE(IsOpen("FormTrafoBerechnung"));
    auto* word = qobject_cast<QLabel*>(Widget("FormTrafoBerechnung.LabelResultState"));
    EXPECT_TRUE(word->isVisible());
    EXPECT_EQ(word->text(), "stored");
    EXPECT_EQ(S(qobject_cast<QLineEdit*>(Widget("FormTrafoBerechnung.TextSigmaTraX"))->text()).empty(),
              false);
    Click("FormTrafoBerechnung.BtnCalculate");
    EXPECT_FALSE(word->isVisible());
    Click("FormTrafoBerechnung.CheckTraX");
    EXPECT_TRUE(word->isVisible());
    EXPECT_EQ(word->text(), "out of date");
    ::Run.JobDirty = kFalse;
}
