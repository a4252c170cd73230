// An import without a file leaves the job that is there, and what belongs to its result.
#include "core/job.h"
#include "import/input_dialog.h"

using namespace corvinade;

using NoFileNamed = InputDialog;

TEST_F(NoFileNamed, TheJobThatIsThereStays) {
    Import();
    ASSERT_EQ(Job.Pairs(), 4);
    const auto start = Names(Job.Start.Name), target = Names(Job.Target.Name);
    for (Control* const field : {&InputFiles.TextNameMCS, &InputFiles.TextNameOCS}) {
        Open();
        UserSetText(*field, "");
        const std::size_t told = Messages().size();
        for (int i = 0; i < 2; ++i) Answer("message", "Yes");
        UserClick(InputFiles.BtnOK);
        EXPECT_GT(Messages().size(), told);
        EXPECT_EQ(Job.Pairs(), 4);
        EXPECT_EQ(Names(Job.Start.Name), start);
        EXPECT_EQ(Names(Job.Target.Name), target);
        EXPECT_EQ(Job.Target.X[2].value_or(0), 105);
        EXPECT_EQ(Run.JobDataValid, kTrue);
        Headless.Answers.clear();
    }
}
