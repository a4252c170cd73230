// The block behind the fields of a job file: what it says, what is wrong with it, and what saving leaves of
// it.
#include "core/job_block.h"

#include <limits>

#include "cli/headless.h"
#include "core/files.h"
#include "core/job_bytes.h"
#include "core/job_file.h"
#include "core/job_tolerance.h"
#include "core/measurement_sigmas.h"
#include "core/notes.h"
#include "core/platform.h"
#include "core/window.h"
#include "support/fixture.h"

using namespace corvinade;

namespace {

class JobBlocks : public Program {
protected:
    JobBlocks() { ShowWindow("FormMain"); }
    static HandJob Example() {
        HandJob job = HandExample();
        job.AutoRecalc = false;  // as after opening
        return job;
    }
    static std::string Fields() { return HandFile(Example()); }
    static std::string Block(const std::string& text) {
        HandBytes out;
        out.Raw("CORVINADE-BLOCK").Whole(0x1a, 1).Whole(text.size(), 8).Raw(text).Whole(text.size(), 8);
        return out.Text;
    }
    static JobFileContent Read(const std::string& bytes) { return ReadJobBytes(bytes, "a.cvn"); }
    static std::string FaultOf(const std::string& text) { return Read(Fields() + Block(text)).BlockFault; }
    static std::string AtByte(std::size_t place) { return "\"a.cvn\", byte " + std::to_string(place) + ": "; }
    static std::vector<std::string> Codes() {
        std::vector<std::string> codes;
        for (const Note& note : Notes.List) codes.emplace_back(NoteKindOf(note.Code).Name);
        return codes;
    }
};

const std::string kMark = "{\"converged\":false}";

}  // namespace

TEST_F(JobBlocks, AJobWithNothingToSayIsTheFieldsAlone) {
    ExpectBytes(JobBytes(Read(Fields()).Job, {}), Fields());
    ExpectBytes(JobBytes(Read(Fields() + Block("{\"converged\":true}")).Job, {}), Fields());
    EXPECT_EQ(Read(Fields()).Job.Unconverged, kFalse);
}

TEST_F(JobBlocks, SigmasOfTheSidesStandInIt) {
    const std::string text = "{\"startSigmas\":[0.02,0,1e-05],\"targetSigmas\":[1,2,3]}";
    const JobRecord job = Read(Fields() + Block(text)).Job;
    const MeasurementSigmas sigmas = SigmasOf(job);
    EXPECT_EQ(sigmas.Start, (SideAccuracy{0.02, 0, 1e-5}));
    EXPECT_EQ(sigmas.Target, (SideAccuracy{1, 2, 3}));
    ExpectBytes(JobBytes(job, {}), Fields() + Block(text));
    JobRecord swapped = job;
    SwapSigmas(swapped);
    EXPECT_EQ(SigmasOf(swapped).Start, sigmas.Target);
    EXPECT_EQ(SigmasOf(swapped).Target, sigmas.Start);
    PutSigmas({}, swapped);
    ExpectBytes(JobBytes(swapped, {}), Fields());
    for (const char* wrong :
         {"[1,2]", "[1,2,3,4]", "[1,-2,3]", "[1,2,1e999]", "1", "[[1,2,3]]", "null", "[\"1\",2,3]"})
        EXPECT_NE(FaultOf(std::string("{\"startSigmas\":") + wrong + "}").find("three sigmas"),
                  std::string::npos)
            << wrong;
}

TEST_F(JobBlocks, TheToleranceStandsInItAndAJobWithoutOneHasNoBlock) {
    JobRecord job = Read(Fields()).Job;
    EXPECT_EQ(ToleranceOf(job), 0);
    PutTolerance(0.25, job);
    const std::string text = "{\"tolerance_mm\":0.25}";
    ExpectBytes(JobBytes(job, {}), Fields() + Block(text));
    EXPECT_EQ(ToleranceOf(Read(Fields() + Block(text)).Job), 0.25);
    EXPECT_EQ(UnknownMembers(job), "");
    for (const double none : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN()}) {
        JobRecord without = job;
        PutTolerance(none, without);
        ExpectBytes(JobBytes(without, {}), Fields());
    }
    for (const char* wrong : {"0", "-1", "1e999", "\"1\"", "[1]", "null", "true"})
        EXPECT_NE(FaultOf(std::string("{\"tolerance_mm\":") + wrong + "}").find("no length above 0"),
                  std::string::npos)
            << wrong;
}

TEST_F(JobBlocks, TheMarkStandsBehindTheLastField) {
    JobRecord job = Read(Fields()).Job;
    job.Unconverged = kTrue;
    const std::string bytes = JobBytes(job, {});
    ExpectBytes(bytes, Fields() + Block(kMark));
    const JobFileContent again = Read(bytes);
    EXPECT_EQ(again.Job.Unconverged, kTrue);
    EXPECT_EQ(again.BlockFault, "");
    ExpectJob(again.Job, HandExample());
}

TEST_F(JobBlocks, OpenParametersAndACollapsedScaleStandThereToo) {
    const std::string open = "\"openParameters\":[4,6,17]", collapsed = "\"collapsedScale\":true";
    std::array<std::int16_t, 18> marks{};
    marks[4] = marks[6] = marks[17] = 1;
    for (const auto& text : {open, collapsed, open + "," + collapsed,
                             "\"converged\":false," + open + "," + collapsed + ",\"cell\":[4]"}) {
        const std::string bytes = Fields() + Block("{" + text + "}");
        const JobFileContent content = Read(bytes);
        EXPECT_EQ(content.BlockFault, "");
        EXPECT_EQ(content.Job.LeftOpen, text.find(open) != std::string::npos ? marks : decltype(marks){});
        EXPECT_EQ(content.Job.Collapsed, ToFlag(text.find(collapsed) != std::string::npos));
        EXPECT_EQ(content.Job.Unconverged, ToFlag(text.find("converged\"") != std::string::npos));
        ExpectJob(content.Job, HandExample());
        ExpectBytes(JobBytes(content.Job, {}), bytes);
    }
    const JobFileContent blanks =
        Read(Fields() + Block("{\"openParameters\": [ 17,\t6 ,\r\n4 ] , \"collapsedScale\" : false }"));
    EXPECT_EQ(blanks.Job.LeftOpen, marks) << blanks.BlockFault;
    EXPECT_EQ(blanks.Job.Collapsed, kFalse);
    ExpectBytes(JobBytes(Read(Fields() + Block("{\"openParameters\":[ ],\"collapsedScale\":false}")).Job, {}),
                Fields());
}

// No field has a place for the tool vector, and exports hand its tip on.
TEST_F(JobBlocks, TheToolVectorOfAResultStandsThere) {
    JobRecord job = Read(Fields()).Job;
    job.ParamText[kRvecX] = job.ParamText[kRvecY] = job.ParamText[kRvecZ] = kNotUsed;
    job.Rvec_x = -62.5;
    EXPECT_EQ(JobBytes(job, {}).find("toolVector"), std::string::npos) << "of another model";
    job.ParamText[kRvecX] = job.ParamText[kRvecY] = job.ParamText[kRvecZ] = kFloat;
    job.Rvec_y = 0.1 + 0.2;
    job.Rvec_z = -1e-7;
    const std::string bytes = JobBytes(job, {});
    EXPECT_NE(bytes.find("{\"toolVector_mm\":[-62.5,0.30000000000000004,-1e-07]}"), std::string::npos);
    const JobFileContent again = Read(bytes);
    EXPECT_EQ(again.BlockFault, "");
    EXPECT_EQ(again.Job.Rvec_x, -62.5);
    EXPECT_EQ(again.Job.Rvec_y, 0.1 + 0.2);
    EXPECT_EQ(again.Job.Rvec_z, -1e-7);
    ExpectBytes(JobBytes(again.Job, {}), bytes);
    job.Rvec_x = job.Rvec_y = job.Rvec_z = 0;
    EXPECT_EQ(JobBytes(job, {}).find("toolVector"), std::string::npos) << "nothing calculated yet";
    EXPECT_EQ(Read(Fields() + Block("{\"toolVector_mm\": [ 1 , 2.5 ,\t-3E1 ]}")).Job.Rvec_z, -30);
    for (const char* value :
         {"[1,2]", "[1,2,3,4]", "1", "[1,2,\"3\"]", "[1,2,null]", "[[1,2,3]]", "[1,2,1e999]"})
        EXPECT_NE(FaultOf(std::string("{\"toolVector_mm\":") + value + "}").find("no list of three numbers"),
                  std::string::npos)
            << value;
}

TEST_F(JobBlocks, AllVersionsOfTheFieldsMayHaveOne) {
    const HandJob job = HandExample();
    for (const std::string& fields :
         {HandFile15(job, "2.0.50"), HandFile46(job, "2.0.46"), HandFile71(job, "1.3.70")})
        EXPECT_EQ(Read(fields + Block(kMark)).Job.Unconverged, kTrue);
}

TEST_F(JobBlocks, MembersOfAnotherVersionAreWrittenAgain) {
    const std::string text =
        "{\"converged\":false,\"sigmas\":[1.5,-2E+3,null,{\"a\\\"b\":[]}],\"\\u00e4\":\"x\\\\\",\"n\":-0.5}";
    JobFileContent content = Read(Fields() + Block(text));
    ASSERT_EQ(content.BlockFault, "");
    ExpectBytes(JobBytes(content.Job, {}), Fields() + Block(text));
    content.Job.Unconverged = kFalse;
    ExpectBytes(
        JobBytes(content.Job, {}),
        Fields() + Block("{\"sigmas\":[1.5,-2E+3,null,{\"a\\\"b\":[]}],\"\\u00e4\":\"x\\\\\",\"n\":-0.5}"));
}

TEST_F(JobBlocks, BlanksBetweenTheValuesAreNothing) {
    EXPECT_EQ(
        Read(Fields() + Block(" {\r\n \"converged\" :\tfalse , \"b\" : [ 1 , { } ] } \n")).Job.Unconverged,
        kTrue);
    EXPECT_EQ(FaultOf("{ }"), "");
}

TEST_F(JobBlocks, BytesThatAreNoHeadAreTheRestOfALongerFile) {
    for (const std::string& rest :
         {std::string("the tail of a longer job"), std::string("CORVINADE-BLOCK\x1b", 16) + Block(kMark),
          "#" + Block(kMark)}) {
        const JobFileContent content = Read(Fields() + rest);
        EXPECT_EQ(content.BlockFault, "");
        EXPECT_EQ(content.Job.Unconverged, kFalse);
    }
}

TEST_F(JobBlocks, OneThatIsCutOffAnywhereIsDamaged) {
    const std::string block = Block(kMark);
    for (std::size_t size = 1; size < block.size(); ++size) {
        const JobFileContent content = Read(Fields() + block.substr(0, size));
        EXPECT_NE(content.BlockFault, "") << size;
        EXPECT_EQ(content.Job.Unconverged, kFalse);
        ExpectJob(content.Job, HandExample());
    }
    EXPECT_NE(Read(Fields() + block + "x").BlockFault, "") << "it ends the file";
}

TEST_F(JobBlocks, DamageIsToldWithItsByte) {
    const std::size_t begin = Fields().size(), text = begin + 24;
    std::string bytes = Fields() + Block(kMark);
    bytes[begin + 16] = 99;
    EXPECT_TRUE(Read(bytes).BlockFault.starts_with(AtByte(begin + 16))) << Read(bytes).BlockFault;
    bytes = Fields() + Block(kMark);
    bytes[bytes.size() - 8] = 99;
    EXPECT_TRUE(Read(bytes).BlockFault.starts_with(AtByte(bytes.size() - 8))) << Read(bytes).BlockFault;
    const std::vector<std::pair<std::string, std::size_t>> cases = {
        {"", 0},
        {"[]", 0},
        {"{\"converged\":false", 18},
        {"{\"converged\":0}", 13},
        {"{\"converged\":false}}", 19},
        {"{\"collapsedScale\":1}", 18},
        {"{\"openParameters\":4}", 18},
        {"{\"openParameters\":true}", 18},
        {"{\"openParameters\":[0]}", 18},
        {"{\"openParameters\":[18]}", 18},
        {"{\"openParameters\":[-4]}", 18},
        {"{\"openParameters\":[4.0]}", 18},
        {"{\"openParameters\":[4e0]}", 18},
        {"{\"openParameters\":[4,4]}", 18},
        {"{\"openParameters\":[\"4\"]}", 18},
        {"{\"openParameters\":[[4]]}", 18},
        {"{\"openParameters\":[4,99999999999]}", 18},
        {"{\"openParameters\":[4],\"openParameters\":[4]}", 39},
        {"{\"a\":1,\"a\":2}", 11},
        {"{\"a\":01}", 7},
        {"{\"a\":tru}", 5},
        {"{\"a\":\"\x01\"}", 6},
        {"{\"a\" 1}", 5},
        {"{,}", 1},
        {"{\"a\":1,}", 7},
        {"{\"a\":[1,]}", 8},
        {"{\"a\":\"\\x\"}", 7},
        {"{\"a\":\"\\u12g4\"}", 10},
        {"{\"a\":1.}", 7},
        {"{\"a\":" + std::string(5000, '[') + "}", 5 + 64},
    };
    for (const auto& [json, place] : cases)
        EXPECT_TRUE(FaultOf(json).starts_with(AtByte(text + place))) << json.substr(0, 40) << "\n"
                                                                     << FaultOf(json);
}

TEST_F(JobBlocks, OpeningAsksBeforeItLeavesADamagedOneOut) {
    const std::string path = Write("a.cvn", Fields() + Block(kMark).substr(0, 40));
    Headless.Answers["message"].emplace_back("No");
    Run.JobFilePath = path;
    OpenFile(path);
    EXPECT_NE(LastMessage().find("byte " + std::to_string(Fields().size() + 16)), std::string::npos)
        << LastMessage();
    EXPECT_EQ(Run.JobDataValid, kFalse);
    EXPECT_EQ(Run.JobFilePath, kDefaultJobPath) << "nothing may be saved over it";
    EXPECT_EQ(Job.Pairs(), 0);
    Headless.Answers["message"].emplace_back("Yes");
    OpenFile(path);
    EXPECT_EQ(Run.JobDataValid, kTrue);
    ExpectJob(Job, HandExample());
    EXPECT_EQ(Codes(), std::vector<std::string>{"block-left-out"});
}

TEST_F(JobBlocks, OpeningAJobThatDidNotConvergeIsNoted) {
    const std::string path = Write("a.cvn", Fields() + Block(kMark));
    OpenFile(path);
    EXPECT_EQ(Job.Unconverged, kTrue);
    ASSERT_EQ(Codes(), std::vector<std::string>{"not-converged"});
    EXPECT_EQ(Notes.List[0].File, path);
    EXPECT_TRUE(Messages().empty());
    OpenFile(Write("b.cvn", Fields()));
    EXPECT_EQ(Job.Unconverged, kFalse) << "it is that of the job before";
    EXPECT_TRUE(Notes.List.empty());
}

TEST_F(JobBlocks, OpeningAJobWhoseResultIsNotDeterminedIsNoted) {
    const std::string bytes = Fields() + Block("{\"openParameters\":[1,4,6],\"collapsedScale\":true}");
    const std::string path = Write("a.cvn", bytes);
    OpenFile(path);
    ASSERT_EQ(Codes(), (std::vector<std::string>{"open-parameters", "collapsed-scale"}));
    EXPECT_NE(Notes.List[0].Text.find("leaves Tra x, Rot x and Rot z open"), std::string::npos)
        << Notes.List[0].Text;
    for (const Note& note : Notes.List) EXPECT_EQ(note.File, path);
    EXPECT_TRUE(Messages().empty());
    SaveFileAs(PathOf("again.cvn"));
    ExpectBytes(Contents(PathOf("again.cvn")), bytes);
    OpenFile(Write("b.cvn", Fields()));
    EXPECT_EQ(Job.LeftOpen, JobRecord{}.LeftOpen) << "they are those of the job before";
    EXPECT_EQ(Job.Collapsed, kFalse);
    EXPECT_TRUE(Notes.List.empty());
}

TEST_F(JobBlocks, SavingOverOneCutsItOff) {
    OpenFile(Write("a.cvn", Fields()));
    const std::string now = JobBytes(Job, {});
    // Behind the same job, behind a shorter place, and damaged.
    for (const std::string& old :
         {now + Block(kMark), now + std::string(1000, '#') + Block(kMark),
          now.substr(0, 50) + std::string(now.size(), '#') + Block(kMark).substr(0, 30)}) {
        const std::string path = Write("old.cvn", old);
        SaveFileAs(path);
        ExpectBytes(Contents(path), now);
    }
    const std::string path = Write("old.cvn", now + "the tail of a longer job");
    SaveFileAs(path);
    ExpectBytes(Contents(path), now + "the tail of a longer job");
    Job.Unconverged = kTrue;
    SaveFileAs(path);
    ExpectBytes(Contents(path), now + Block(kMark));
    Job.Unconverged = kFalse;
    SaveFileAs(path);
    ExpectBytes(Contents(path), now);
}

// --- What else a file may hold that does not fit ----------------------------------------------------------

TEST_F(JobBlocks, FlagsOfMorePairsThanAreCountedAreNoted) {
    HandJob job = Example();
    job.UseFlags.insert(job.UseFlags.end(), {1, 0, 1});
    const std::string path = Write("a.cvn", HandFile(job));
    OpenFile(path);
    ASSERT_EQ(Codes(), std::vector<std::string>{"flags-beyond-pairs"});
    EXPECT_NE(Notes.List[0].Text.find("counts 3 pairs, which have 9 use flags, and has 12"),
              std::string::npos)
        << Notes.List[0].Text;
    EXPECT_EQ(Notes.List[0].File, path);
    EXPECT_EQ(Job.Pairs(), 3);
    ExpectBytes(JobBytes(Job, {}), HandFile(job));
}

TEST_F(JobBlocks, RVectorsThatAreShorterThanThePairsStayAsShort) {
    HandJob job = HandRobotExample();
    job.RVecX = {{}, 5.5};
    job.RVecY = {{}, -5.5, {}};
    job.RVecZ = {0};
    job.AutoRecalc = false;
    const JobFileContent content = Read(HandFile(job));
    ExpectBytes(JobBytes(content.Job, content.ViewNames), HandFile(job));
    EXPECT_TRUE(JobIsWhole(content.Job)) << "in memory they reach the pairs";
    // What has come to stand behind them is written too.
    JobRecord more = content.Job;
    more.RVecX[3] = 7;
    more.RVecZ[2] = -1;
    const JobRecord again = Read(JobBytes(more, content.ViewNames)).Job;
    EXPECT_EQ(again.RVecX, more.RVecX);
    EXPECT_EQ(again.RVecZ, more.RVecZ);
}

TEST_F(JobBlocks, SigmasOfEachPointStandInIt) {
    const int starts = Read(Fields()).Job.Start.Count(), targets = Read(Fields()).Job.Target.Count();
    const auto list = [](int count) {
        std::string text;
        for (int i = 1; i <= count; ++i)
            text += std::string(text.empty() ? "[" : ",") + "[" + std::to_string(i) + ",0.5,1e-07]";
        return text + "]";
    };
    const std::string text = "{\"startSigmas\":" + list(starts) + ",\"targetSigmas\":" + list(targets) + "}";
    JobRecord job = Read(Fields() + Block(text)).Job;
    const MeasurementSigmas sigmas = SigmasOf(job);
    ASSERT_NE(sigmas.StartOfEach, nullptr);
    EXPECT_FALSE(sigmas.Start.has_value());
    EXPECT_EQ(sigmas.StartOfEach->Count(), static_cast<std::size_t>(starts));
    EXPECT_EQ(sigmas.StartOfEach->Of[0].back(), starts);
    EXPECT_EQ(sigmas.TargetOfEach->Of[2].front(), 1e-7);
    ExpectBytes(JobBytes(job, {}), Fields() + Block(text));
    // One more or less than there are points is damage.
    for (const int wrong : {starts - 1, starts + 1})
        EXPECT_NE(FaultOf("{\"startSigmas\":" + list(wrong) + "}").find("each point"), std::string::npos);
    EXPECT_NE(FaultOf("{\"startSigmas\":[[1,2,3],4]}").find("each point"), std::string::npos);
    // New points join without errors.
    job.Start.Resize(starts + 2);
    ReachNewPoints(job);
    EXPECT_EQ(SigmasOf(job).StartOfEach->Count(), static_cast<std::size_t>(starts) + 2);
    EXPECT_EQ(SigmasOf(job).StartOfEach->Of[1].back(), 0);
}
