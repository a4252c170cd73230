// Copies of jobs with many points: written in slices between events, whole or not at all.
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "core/files.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/job_file.h"
#include "core/job_writer.h"
#include "core/lock_file.h"
#include "core/platform.h"
#include "core/recovery.h"
#include "support/fixture.h"

using namespace corvinade;

namespace fs = std::filesystem;

class RecoverySlices : public Program {
protected:
    RecoverySlices() {
        ::Run.SettingsFilePath = PathOf("Corvinade.ini");
        StartRecovery();
    }
    ~RecoverySlices() override { EndRecovery(); }

    static PointSet Points(int count, double shift) {
        PointSet points;
        for (int i = 1; i <= count; ++i)
            points.Add((i % 7 == 0 ? "Pä" : "P") + std::to_string(i), i + shift, i % 1000 / 8.0, -i);
        return points;
    }
    void Open(int count) {
        Job = JobRecord{};
        Job.Start = Points(count, 0);
        Job.Target = Points(count, 5);
        Job.Transformed = Points(count, 5);
        Job.UseFlags.assign(static_cast<std::size_t>(3 * count + 1), 1);
        Job.SetPairs(count);
        ::Run.JobDataValid = kTrue;
        ::Run.JobFilePath = PathOf("a.cvn");
        SaveFileAs(PathOf("a.cvn"));
        TendRecovery(0);
    }
    static void Change(double to) {
        Job.TraX = to;
        JobTouched();
    }
    // How many slices there are, from the first to the last.
    static int Slices(double now_s) {
        int count = 1;
        while (TendRecoverySlice(now_s)) ++count;
        return count;
    }
    double Kept() const {
        const FileBytes bytes = ReadFile(PathOf("recovery-1.cvn"));
        return ReadJobBytes(bytes.View(), "").Job.TraX;
    }
    // Files of the copy, whole or not.
    int Files() const {
        int count = 0;
        for (const auto& entry : fs::directory_iterator(folder_))
            count += entry.path().filename().string().starts_with("recovery-1.cvn") ? 1 : 0;
        return count;
    }
};

TEST_F(RecoverySlices, SlicesAreTheBytesOfTheWholeJob) {
    constexpr int kSlice = JobWriter::kElements;
    for (const int count : {0, 1, kSlice / 4, kSlice - 2, kSlice - 1, kSlice, 2 * kSlice - 1, 100000}) {
        Open(count);
        Job.OtherMembers.emplace_back("\"more\"", "[1, 2]");
        std::string bytes;
        JobWriter writer(Job, Main.ComboSaveView.Items, [&bytes](std::string_view more) { bytes += more; });
        int slices = 1;
        while (writer.Slice()) ++slices;
        EXPECT_TRUE(bytes == JobBytes(Job, Main.ComboSaveView.Items)) << count << " points";
        // The job has 15 arrays as long as the points, of which flags count threefold.
        EXPECT_GE(slices, 15 * (count / kSlice)) << count << " points";
    }
}

// R vectors that the job's file had fewer of than there are pairs are written as few, however they are cut.
TEST_F(RecoverySlices, ShortArraysStayShort) {
    Open(100000);
    Job.RVecX.assign(100001, {});
    Job.RVecInFile = {40000, -1, -1};
    std::string bytes;
    JobWriter writer(Job, {}, [&bytes](std::string_view more) { bytes += more; });
    while (writer.Slice()) {
    }
    EXPECT_TRUE(bytes == JobBytes(Job, {}));
}

TEST_F(RecoverySlices, AJobThatBecomesShorterBetweenSlicesIsRefused) {
    Open(100000);
    JobWriter writer(Job, {}, [](std::string_view) {});
    ASSERT_TRUE(writer.Slice());
    Job.Start.Resize(10);
    EXPECT_NE(ErrorOf([&] {
                  while (writer.Slice()) {
                  }
              }),
              "");
}

TEST_F(RecoverySlices, TheCopyIsThereBehindTheLastSlice) {
    Open(300000);
    Change(7);
    EXPECT_FALSE(TendRecoverySlice(kBetweenLooks_s / 2)) << "not with each event of a series";
    // Hashed and written: twice the 15 arrays.
    EXPECT_GE(Slices(10), 2 * 15 * (300000 / static_cast<int>(JobWriter::kElements)));
    EXPECT_TRUE(Recovery.Changed);
    EXPECT_EQ(Kept(), 7);
    EXPECT_EQ(Files(), 1);
    EXPECT_FALSE(TendRecoverySlice(20)) << "no event has run";
    JobTouched();
    const auto written = fs::last_write_time(PathOf("recovery-1.cvn"));
    EXPECT_LT(Slices(30), 20 * (300000 / static_cast<int>(JobWriter::kElements) + 1)) << "only hashed";
    EXPECT_EQ(fs::last_write_time(PathOf("recovery-1.cvn")), written) << "it holds that already";
}

TEST_F(RecoverySlices, AnEventBetweenThemBeginsAnewAndLeavesNothingHalf) {
    Open(100000);
    Change(7);
    Slices(10);
    ASSERT_EQ(Kept(), 7);
    // However far the slices have come, the copy is the whole one of before.
    Change(8);
    const int slices = Slices(20);
    ASSERT_EQ(Kept(), 8);
    for (int done = 1; done < slices; ++done) {
        Change(100 + done);
        for (int slice = 0; slice < done; ++slice) ASSERT_TRUE(TendRecoverySlice(100 * done)) << done;
        Change(1);
        ASSERT_EQ(Files(), 1) << done;
        ASSERT_EQ(Kept(), 8) << done;
    }
    // What comes next has it all.
    Change(9);
    EXPECT_EQ(Slices(100000), slices);
    EXPECT_EQ(Kept(), 9);
    // A save in between leaves no copy behind.
    Change(10);
    for (int slice = 1; slice < slices; ++slice) ASSERT_TRUE(TendRecoverySlice(200000));
    SaveFileAs(PathOf("a.cvn"));
    EXPECT_FALSE(TendRecoverySlice(300000) && Files() != 0);
    EXPECT_EQ(Files(), 0);
}

TEST_F(RecoverySlices, ASeriesWithoutTimeForThemIsCopiedOnceAMinute) {
    Open(kPointsAtOnce + 1);
    double now = 10, last = 0;
    fs::file_time_type read;  // of the copy that was read last
    for (int i = 1; i <= 1500; ++i) {
        now += 0.1;
        TendRecovery(now);  // before each event
        if (Files() == 1) {
            const auto written = fs::last_write_time(PathOf("recovery-1.cvn"));
            if (written != read) last = Kept();
            read = written;
        }
        ASSERT_LE((i - 1 - last) * 0.1, kInSeries_s + 0.11) << i;
        Change(i);
        TendRecoverySlice(now);  // all that there is time for
    }
    EXPECT_GT(last, 1) << "it was never written";
    // A series of few points is never further behind than the time between looks.
    Open(1000);
    Change(-1);
    TendRecovery(now + kBetweenLooks_s);
    EXPECT_EQ(Kept(), -1);
}

TEST_F(RecoverySlices, AKillBetweenThemLeavesTheCopyOfBefore) {
    Open(100000);
    Change(7);
    const int slices = Slices(10);
    Change(8);
    for (int slice = 1; slice < slices; ++slice) ASSERT_TRUE(TendRecoverySlice(20));
    EXPECT_EQ(Files(), 2);
    // The kill: the system drops the locks, and the file beside stays.
    std::string half;
    for (const auto& entry : fs::directory_iterator(folder_))
        if (entry.path().filename().string().starts_with("recovery-1.cvn.")) half = entry.path().string();
    const std::string bytes = Contents(half);
    DropLock(Recovery.Lock);
    Recovery.Lock = -1;
    Recovery.On = false;
    JobTouched();
    WriteFile(half, bytes);
    Recovery = RecoveryRecord{};
    StartRecovery();
    const std::vector<LeftBehind> left = LeftBehindCopies();
    ASSERT_EQ(left.size(), 1U);
    EXPECT_EQ(left[0].Fault, "");
    Headless.Answers["message"].push_back("No");
    RestoreCopy(left[0]);
    EXPECT_EQ(Job.TraX, 7);
    EXPECT_EQ(Files(), 0) << "and neither does the half one stay";
}
