// The import of large files: the frame stays in reach, the progress shows, and a cancelled import leaves the
// points of before.
#include <QElapsedTimer>
#include <QInputDialog>
#include <QProgressBar>
#include <QTableView>
#include <QTimer>
#include <cstdio>

#include "core/form_progress_bar.h"
#include "core/job.h"
#include "core/run.h"
#include "ui/desktop.h"
#include "ui/desktop_fixture.h"
#include "ui/qt_text.h"
#include "ui/work_time.h"

using namespace corvinade;

namespace {

class LargeImport : public DesktopTest {
protected:
    std::string start_ = Write("start.txt", "A;0;0;0\nB;1000;0;0\nC;0;2000;0\nD;0;0;3000\n");
    std::string target_ = Write("target.txt", "A;5;6;7\nB;1005;6;7\nC;5;2006;7\nD;5;6;3007\n");

    // Names in no order, those of the target in another one.
    std::string Points(const std::string& file, int count, int step) const {
        std::string text;
        text.reserve(static_cast<std::size_t>(count) * 32);
        for (int i = 0; i < count; ++i) {
            const auto number = static_cast<int>(static_cast<long long>(i) * step % count);
            char line[64];
            std::snprintf(line, sizeof line, "P%07d;%d.125;%d.5;%d.25\n", number, number % 1000,
                          number / 1000, number % 77);
            text += line;
        }
        return Write(file, text);
    }

    static void Import(const std::string& start, const std::string& target) {
        Trigger("MenuFileInputFiles");
        Type("FormInputFiles.TextNameMCS", start);
        Type("FormInputFiles.TextNameOCS", target);
        Click("FormInputFiles.BtnApply");
    }
};

}  // namespace

TEST_F(LargeImport, OfAMillionPointsLetsEventsInAndShowsHowFarItHasCome) {
    Begin();
    constexpr int kPoints = 1000000;
    const std::string start = Points("large_start.txt", kPoints, 700001);
    const std::string target = Points("large_target.txt", kPoints, 300007);
    QTimer watch;
    QElapsedTimer whole;
    WorkTime since;
    int longest_ms = 0;
    bool shown = false, inOrder = true;
    int value = 0, widestStep = 0;
    QObject::connect(&watch, &QTimer::timeout, &watch, [&] {
        if (since.isValid()) longest_ms = std::max(longest_ms, since.elapsed());
        since.start();
        if (!IsOpen("FormProgressBar")) return;
        shown = true;
        const int now = qobject_cast<QProgressBar*>(Widget("FormProgressBar.ProgressBar1"))->value();
        inOrder = inOrder && now >= value;
        widestStep = std::max(widestStep, now - value);
        value = now;
    });
    watch.start(10);
    Trigger("MenuFileInputFiles");
    Type("FormInputFiles.TextNameMCS", start);
    Type("FormInputFiles.TextNameOCS", target);
    whole.start();
    Click("FormInputFiles.BtnOK");
    std::printf("import of a million points: %d ms, longest gap between events %d ms, %d percent at most\n",
                static_cast<int>(whole.elapsed()), longest_ms, widestStep);
    RecordProperty("longest_gap_ms", longest_ms);
    EXPECT_TRUE(shown);
    EXPECT_TRUE(inOrder);
    EXPECT_GT(value, 60);
    EXPECT_LT(widestStep, 30) << "percent of the work without a look at the events";
    EXPECT_FALSE(IsOpen("FormProgressBar"));
    ASSERT_EQ(Job.Pairs(), kPoints);
    for (const std::size_t i : {1U, 2U, 500000U, 1000000U}) {
        const auto number = static_cast<int>(i) - 1;
        char name[16];
        std::snprintf(name, sizeof name, "P%07d", number);
        EXPECT_EQ(Job.Start.Name[i], name);
        EXPECT_EQ(Job.Target.Name[i], name);
        EXPECT_EQ(Job.Target.X[i], Job.Start.X[i]);
        EXPECT_EQ(Job.Target.Z[i], number % 77 + 0.25);
        EXPECT_EQ(*Job.Start.X[i], number % 1000 + 0.125);
    }
    ::Run.JobDirty = kFalse;
}

// How often events come in while half a million points are paired.
class LongPairing : public LargeImport {
protected:
    static constexpr int kPercentRead = 70;  // behind it the points are paired
    static constexpr int kFewLooks = 5;

    int Looks(const char* how, const std::string& start, const std::string& target, const char* option) {
        QTimer watch;
        WorkTime since;
        int longest_ms = 0, looks = 0;
        QObject::connect(&watch, &QTimer::timeout, &watch, [&] {
            if (since.isValid()) longest_ms = std::max(longest_ms, since.elapsed());
            since.start();
            if (IsOpen("FormProgressBar") && Progress.ProgressBar1.Value >= kPercentRead) ++looks;
        });
        watch.start(5);
        Trigger("MenuFileInputFiles");
        Type("FormInputFiles.TextNameMCS", start);
        Type("FormInputFiles.TextNameOCS", target);
        if (option != nullptr) Click(option);
        Click("FormInputFiles.BtnApply");
        std::printf("pairing %s: longest gap between events %d ms, %d looks\n", how, longest_ms, looks);
        ::Run.JobDirty = kFalse;
        return looks;
    }
};

TEST_F(LongPairing, ByCoordinateLetsEventsIn) {
    Begin();
    constexpr int kPoints = 500000;
    const std::string start = Points("start_c.txt", kPoints, 300007);
    const std::string target = Points("target_c.txt", kPoints, 100003);
    QTimer answer;
    QObject::connect(&answer, &QTimer::timeout, &answer, [&answer] {
        auto* question = qobject_cast<QInputDialog*>(QApplication::activeModalWidget());
        if (question == nullptr) return;
        answer.stop();
        question->setTextValue(QStringLiteral("0.01"));
        question->accept();
    });
    answer.start(20);
    EXPECT_GE(Looks("by coordinate", start, target, "FormInputFiles.OptionByCoordinate"), kFewLooks);
    EXPECT_EQ(Job.Pairs(), kPoints);
}

TEST_F(LongPairing, OfLevelNamesLetsEventsIn) {
    Begin();
    constexpr int kPoints = 500000;
    std::string text;
    for (int i = 0; i < kPoints; ++i) {
        const int number = static_cast<int>(static_cast<long long>(i) * 300007 % kPoints);
        text += (number % 2 == 0 ? "0" : "") + std::to_string(number / 2) + ";1.5;2.5;" +
                std::to_string(number % 97) + "\n";
    }
    const std::string file = Write("level.txt", text);
    EXPECT_GE(Looks("of level names", file, file, nullptr), kFewLooks);
}

TEST_F(LargeImport, ThatIsCancelledAnywhereLeavesThePointsOfBeforeWhole) {
    Begin();
    Import(start_, target_);
    Click("FormInputFiles.BtnCancel");
    Trigger("MenuVievMainSheet");
    Trigger("MenuTransformationCalculation");
    Click("FormTrafoBerechnung.BtnCalculate");
    const JobRecord before = Job;
    ASSERT_EQ(before.Pairs(), 4);
    ASSERT_TRUE(IsTrue(::Run.TrafoValid));
    const std::string start = Points("large_start.txt", 200000, 70001);
    const std::string target = Points("large_target.txt", 200000, 30007);
    auto* table = qobject_cast<QTableView*>(Widget("FormMainSheet.MSFlexGrid1"));
    int cancelled = 0;
    for (const int percent : {1, 20, 40, 60, 71, 79}) {
        ::Run.JobDirty = kFalse;
        bool pressed = false;
        QTimer watch;
        QObject::connect(&watch, &QTimer::timeout, &watch, [&] {
            if (pressed || !IsOpen("FormProgressBar") || Progress.ProgressBar1.Value < percent) return;
            pressed = true;
            Click("FormProgressBar.BtnCancel");
        });
        watch.start(0);
        AnswerNext("Yes");
        Import(start, target);
        ASSERT_TRUE(pressed) << percent;
        if (Job.Pairs() == 200000) continue;  // the last step was over before
        ++cancelled;
        EXPECT_FALSE(IsOpen("FormProgressBar"));
        EXPECT_TRUE(IsOpen("FormInputFiles"));
        EXPECT_EQ(Job.Start.Name, before.Start.Name) << percent;
        EXPECT_EQ(Job.Target.Name, before.Target.Name);
        EXPECT_EQ(Job.Start.X, before.Start.X);
        EXPECT_EQ(Job.Target.Z, before.Target.Z);
        EXPECT_EQ(Job.Transformed.Name, before.Transformed.Name);
        EXPECT_EQ(Job.Transformed.X, before.Transformed.X);
        EXPECT_EQ(Job.UseFlags, before.UseFlags);
        EXPECT_EQ(Job.PathMCS, before.PathMCS);
        EXPECT_EQ(Job.Pairs(), 4);
        EXPECT_TRUE(JobIsWhole(Job));
        EXPECT_TRUE(IsTrue(::Run.JobDataValid));
        EXPECT_TRUE(IsTrue(::Run.TrafoValid));
        EXPECT_FALSE(IsTrue(::Run.JobDirty));
        EXPECT_EQ(QApplication::overrideCursor(), nullptr);
        EXPECT_EQ(table->model()->rowCount(), 4);
        EXPECT_EQ(S(table->model()->index(1, 0).data().toString()), "B");
        Click("FormInputFiles.BtnCancel");
    }
    EXPECT_GE(cancelled, 5);
    Click("FormTrafoBerechnung.BtnCalculate");
    EXPECT_EQ(Job.Pairs(), 4);
    ::Run.JobDirty = kFalse;
}
