// Large imports: what cancelling them and events inside them leave behind.
#include <algorithm>
#include <numeric>

#include "cli/headless.h"
#include "core/form_main.h"
#include "core/form_progress_bar.h"
#include "core/job.h"
#include "core/run.h"
#include "import/form_input_files.h"
#include "import/name_order.h"
#include "import/point_file.h"
#include "support/fixture.h"

using namespace corvinade;

namespace {

constexpr int kMany = 150000;

class LongImports : public Program {
protected:
    std::string small_ = Write("small.txt", "A;0;0;0\r\nB;1;0;0\r\nC;0;1;0\r\n");
    std::string large_ = Write("large.txt", Many());

    static std::string Many() {
        std::string text;
        for (int i = kMany; i >= 1; --i)
            text += "Point_" + std::to_string(i) + ";" + std::to_string(i) + ".25;0.125;1000.0625\r\n";
        return text;
    }

    static void Apply(const std::string& start, const std::string& target) {
        ShowWindow("FormInputFiles");
        UserSetText(InputFiles.TextNameMCS, start);
        UserSetText(InputFiles.TextNameOCS, target);
        UserClick(InputFiles.BtnApply);
    }

    void ImportSmall() {
        Apply(small_, small_);
        ASSERT_EQ(Job.Pairs(), 3);
        Headless.Answers["message"].push_back("Yes");
    }

    void ExpectSmall() const {
        EXPECT_EQ(Job.Start.Name, (std::vector<std::string>{"", "A", "B", "C"}));
        EXPECT_EQ(Job.Target.Name, Job.Start.Name);
        EXPECT_EQ(Job.Transformed.Name, Job.Start.Name);
        EXPECT_EQ(Job.Target.X[2], TaggedValue(1.0));
        EXPECT_EQ(Job.Pairs(), 3);
        EXPECT_EQ(Job.PathMCS, small_);
        EXPECT_EQ(Run.JobDataValid, kTrue);
        EXPECT_TRUE(JobIsWhole(Job));
        EXPECT_TRUE(Main.MenuTransformation.Enabled);
    }
};

}  // namespace

TEST_F(LongImports, CancelledAtAnyYieldLeaveThePointsOfBefore) {
    Apply(large_, large_);
    const std::uint64_t yields = Headless.Yields;
    EXPECT_EQ(Job.Pairs(), kMany);
    EXPECT_EQ(Job.Start.Name[1], "Point_1");
    ASSERT_GT(yields, 60u);
    for (std::uint64_t at = 1; at <= yields; at += at < 6 || at + 6 > yields ? 1 : yields / 9) {
        Run.JobDataValid = kFalse;  // no question
        ImportSmall();
        Run.JobDirty = kFalse;
        const std::uint64_t before = Headless.Yields;
        Headless.OnYield = [=] {
            EXPECT_TRUE(IsLoaded("FormProgressBar"));
            if (Headless.Yields == before + at) UserClick(Progress.BtnCancel);
        };
        Apply(large_, large_);
        Headless.OnYield = nullptr;
        ASSERT_EQ(Headless.Yields, before + at) << "it ends at once";
        ExpectSmall();
        EXPECT_EQ(Run.JobDirty, kFalse);
        EXPECT_EQ(Run.StopRequested, kFalse);
        EXPECT_EQ(Run.WaitPointers, 0);
        EXPECT_FALSE(IsLoaded("FormProgressBar"));
    }
}

TEST_F(LongImports, TheFirstOneThatIsCancelledLeavesNoPoints) {
    Headless.OnYield = [] { Run.StopRequested = kTrue; };
    Apply(large_, large_);
    EXPECT_EQ(Run.JobDataValid, kFalse);
    EXPECT_EQ(Job.Start.Count(), 0);
    EXPECT_TRUE(JobIsWhole(Job));
    EXPECT_TRUE(Messages().empty());
}

TEST_F(LongImports, EndWhereAnotherImportHasReplacedThePoints) {
    for (const std::uint64_t at : {1U, 20U, 45U, 70U}) {
        Run.JobDataValid = kFalse;
        const std::uint64_t before = Headless.Yields;
        Headless.OnYield = [&] {
            if (Headless.Yields == before + at) Apply(small_, small_);
        };
        Apply(large_, large_);
        Headless.OnYield = nullptr;
        EXPECT_EQ(Job.Pairs(), 3) << at;
        EXPECT_EQ(Job.Start.Name, (std::vector<std::string>{"", "A", "B", "C"})) << at;
        EXPECT_EQ(Run.JobDataValid, kTrue);
        EXPECT_TRUE(JobIsWhole(Job));
        EXPECT_FALSE(IsLoaded("FormProgressBar"));
    }
}

TEST_F(LongImports, FailedOnesKeepWhatWasReadAsSmallOnesDo) {
    ImportSmall();
    const std::string damaged = Write("damaged.txt", Many() + "Point_0;zero;0.5;0.5\r\n");
    Headless.OnYield = nullptr;
    Apply(damaged, large_);
    EXPECT_NE(LastMessage().find("damaged.txt"), std::string::npos);
    EXPECT_EQ(Run.JobDataValid, kFalse);
    EXPECT_EQ(Job.Start.Count(), kMany + 1);
    EXPECT_EQ(Job.Target.Name.size(), 4u);
    EXPECT_TRUE(JobIsWhole(Job));
}

TEST_F(LongImports, OfMorePointsThatAreCancelledAddNone) {
    Apply(small_, small_);
    Headless.OnYield = [] { Run.StopRequested = kTrue; };
    EXPECT_FALSE(ReadMorePoints(large_, "", ""));
    ExpectSmall();
    Headless.OnYield = nullptr;
    EXPECT_TRUE(ReadMorePoints(large_, "m_", ""));
    EXPECT_EQ(Job.Start.Count(), kMany + 3);
    EXPECT_EQ(Job.Start.Name[4], "m_Point_" + std::to_string(kMany));
}

TEST_F(LongImports, SortNamesAsShortOnesDo) {
    std::vector<std::string> names(1);
    for (std::uint32_t i = 0; i < 200000; ++i) {
        const std::uint32_t mixed = i * 2654435761U;
        names.push_back((i % 3 == 0 ? "" : i % 3 == 1 ? "P" : "a longer name of ") + std::to_string(mixed));
    }
    // Indices in the order of the plain rule, by another sort.
    std::vector<std::int32_t> expected(names.size());
    std::iota(expected.begin(), expected.end(), 0);
    std::stable_sort(expected.begin() + 1, expected.end(), [&names](std::int32_t a, std::int32_t b) {
        return CompareNames(names[static_cast<std::size_t>(a)], names[static_cast<std::size_t>(b)]) < 0;
    });
    int calls = 0;
    EXPECT_EQ(SortNames(names, [&calls] { return ++calls > 0; }).Place, expected);
    EXPECT_GT(calls, 5);
    EXPECT_EQ(SortNames(names).Place, expected);
    EXPECT_TRUE(SortNames(names, [&calls] { return --calls > 3; }).Place.empty());
}
