// The job file of the present version: read from bytes put together by hand, and written as the same bytes.
#include <algorithm>
#include <bit>
#include <cstring>

#include "core/files.h"
#include "core/form_main.h"
#include "core/job_bytes.h"
#include "core/job_file.h"
#include "core/platform.h"
#include "core/units.h"
#include "support/fixture.h"

using namespace corvinade;

using JobFileFormat = Program;

namespace {

// A file as the program writes it: `AutoRecalc` is off after opening.
std::string Saved(HandJob job) {
    job.AutoRecalc = false;
    return HandFile(job);
}

std::string ErrorOfWriting(const JobRecord& job, const std::vector<std::string>& views = {}) {
    try {
        JobBytes(job, views);
    } catch (const PlatformError& error) {
        return error.What;
    }
    return "";
}

}  // namespace

TEST_F(JobFileFormat, EveryFieldIsReadFromItsPlace) {
    for (const HandJob& hand : {HandExample(), HandRobotExample(), HandParaboloidExample()}) {
        const JobFileContent content = ReadJobBytes(HandFile(hand), "a.cvn");
        ExpectJob(content.Job, hand);
        EXPECT_EQ(content.ViewNames, hand.ViewNames);
        EXPECT_EQ(content.Version, (JobVersion{2, 0, 64}));
        EXPECT_TRUE(content.HeadKnown);
        EXPECT_TRUE(content.Said.empty());
    }
}

TEST_F(JobFileFormat, AJobThatWasReadIsWrittenAsTheSameBytes) {
    for (const HandJob& hand : {HandExample(), HandRobotExample(), HandParaboloidExample()}) {
        const JobFileContent content = ReadJobBytes(HandFile(hand), "a.cvn");
        ExpectBytes(JobBytes(content.Job, content.ViewNames), Saved(hand));
    }
}

TEST_F(JobFileFormat, OpeningFillsTheJobAndSavingGivesTheSameBytes) {
    const HandJob hand = HandRobotExample();
    const std::string path = Write("a.cvn", HandFile(hand));
    OpenFile(path);
    ExpectJob(Job, hand);
    EXPECT_EQ(Main.ComboSaveView.Items, hand.ViewNames);
    EXPECT_EQ(Run.JobDataValid, kTrue);
    EXPECT_EQ(Run.TrafoValid, kFalse);
    EXPECT_EQ(Run.JobDirty, kFalse);
    EXPECT_TRUE(Messages().empty());
    SaveFileAs(PathOf("b.cvn"));
    ExpectBytes(Contents(PathOf("b.cvn")), Saved(hand));
    OpenFile(PathOf("b.cvn"));
    SaveFileAs(PathOf("c.cvn"));
    ExpectBytes(Contents(PathOf("c.cvn")), Contents(PathOf("b.cvn")));
}

TEST_F(JobFileFormat, TheUnitsOfTheFileAreInUseAfterOpening) {
    OpenFile(Write("a.cvn", HandFile(HandExample())));
    EXPECT_EQ(Units.LengthFactor, 1 / 25.4);
    EXPECT_EQ(Units.AngleFactor, 1000);
    EXPECT_EQ(Units.FmtLength, "0.00000");
    EXPECT_EQ(Units.FmtAngle, "0.00");
    EXPECT_EQ(Main.StatusBar_1.Text, "inch");
    EXPECT_EQ(Main.StatusBar_2.Text, "mrad");
}

TEST_F(JobFileFormat, AFreshJobIsWrittenWithElement0OfEveryArray) {
    HandJob hand;
    hand.LengthUnit = hand.AngleUnit = "";
    hand.LengthDigits = hand.AngleDigits = hand.NormType = 0;
    for (const std::size_t scale : {6, 7, 8, 9}) hand.Results[scale] = 1;
    ExpectBytes(JobBytes(JobRecord{}, {}), HandFile(hand));
    // 4 + 6 head; three times 4 + 2, 4 + 2, 4 + 2, 4 + 8; 12; 4 + 2; 36; 4; 104; 8; 8; 6; 8; 8; 16; 8; 2; 2;
    // 4
    EXPECT_EQ(HandFile(hand).size(),
              10U + 3 * 30 + 12 + 6 + 36 + 4 + 104 + 8 + 8 + 6 + 8 + 8 + 16 + 8 + 2 + 2 + 4);
    const JobFileContent content = ReadJobBytes(HandFile(hand), "a.cvn");
    EXPECT_FALSE(content.Job.Start.X[0].has_value());
    EXPECT_FALSE(content.Job.Transformed.Y[0].has_value());
}

TEST_F(JobFileFormat, TheFirstBytesOfASmallJobStandAsTold) {
    HandJob hand;
    hand.MCS.Add("P", 1, -2, 0.5);
    hand.nMCS = 1;
    hand.TMCS = hand.MCS;
    const std::string bytes = JobBytes(ReadJobBytes(HandFile(hand), "a.cvn").Job, {});
    const unsigned char expected[] = {
        6, 0, 0, 0, '2', '.', '0',  '.',  '6', '4',                          // version
        1, 0, 0, 0, 0,   0,   1,    0,    'P',                               // MCS_Name, element 0 is empty
        1, 0, 0, 0, 0,   0,   5,    0,    0,   0,   0, 0, 0, 0, 0xF0, 0x3F,  // MCS_X
        1, 0, 0, 0, 0,   0,   5,    0,    0,   0,   0, 0, 0, 0, 0,    0xC0,  // MCS_Y
        1, 0, 0, 0, 0,   0,   0,    0,    0,   0,   0, 0,                    // MCS_Z
        0, 0, 0, 0, 0,   0,   0xE0, 0x3F,                                    // its element 1
        0, 0, 0, 0, 0,   0,                                                  // OCS_Name
    };
    ASSERT_GT(bytes.size(), sizeof expected);
    EXPECT_EQ(std::memcmp(bytes.data(), expected, sizeof expected), 0);
}

TEST_F(JobFileFormat, CoordinateArraysLongerThanTheNamesKeepTheirLength) {
    HandJob hand = HandExample();
    for (HandPoints* points : {&hand.MCS, &hand.OCS})  // as the search by distances leaves them
        for (int i = 0; i < 3; ++i) {
            points->X.emplace_back(1000 + i);
            points->Y.emplace_back(std::nullopt);
            points->Z.push_back(2000 + i);
        }
    const JobFileContent content = ReadJobBytes(HandFile(hand), "a.cvn");
    ExpectJob(content.Job, hand);
    EXPECT_TRUE(JobIsWhole(content.Job));
    ExpectBytes(JobBytes(content.Job, {}), Saved(hand));
}

TEST_F(JobFileFormat, AJobWithTargetPointsAloneIsReadAndWritten) {
    HandJob hand;
    hand.OCS.Add("T", 1, 2, 3);
    hand.nOCS = 1;
    const JobFileContent content = ReadJobBytes(HandFile(hand), "a.cvn");
    ExpectJob(content.Job, hand);
    EXPECT_TRUE(JobIsWhole(content.Job));
    ExpectBytes(JobBytes(content.Job, {}), Saved(hand));
}

// So a job is saved whose opening failed: the run counts no points, the arrays are still there.
TEST_F(JobFileFormat, ArraysLongerThanTheCountsAreReadAndWritten) {
    HandJob hand = HandExample();
    hand.nIdent = hand.nMCS = hand.nOCS = 0;
    const JobFileContent content = ReadJobBytes(HandFile(hand), "a.cvn");
    ExpectJob(content.Job, hand);
    ExpectBytes(JobBytes(content.Job, {}), Saved(hand));
}

TEST_F(JobFileFormat, ARobotJobWithoutPosesAndRVectorsIsReadAndWritten) {
    for (const bool kuka : {true, false}) {
        HandJob hand = HandExample();
        hand.IsKuka = kuka;
        hand.IsQuaternion = !kuka;
        hand.RVecX = hand.RVecY = {{}, {}, {}, {}};
        hand.RVecZ = {0, 0, 0, 0};
        hand.Robot = {{}};
        JobRecord job = ReadJobBytes(HandFile(hand), "a.cvn").Job;
        ExpectJob(job, hand);
        ExpectBytes(JobBytes(job, {}), Saved(hand));
        job.RobotABC = Matrix{};  // the kind was chosen and nothing has been imported
        ExpectBytes(JobBytes(job, {}), Saved(hand));
    }
}

TEST_F(JobFileFormat, RVectorsReachThePairsWhateverTheFileHas) {
    HandJob hand = HandRobotExample();
    hand.RVecX = {{}, 1.0};
    hand.RVecY = {{}};
    hand.RVecZ = {0};
    const JobRecord job = ReadJobBytes(HandFile(hand), "a.cvn").Job;
    EXPECT_EQ(job.RVecX, (std::vector<TaggedValue>{{}, 1.0, {}, {}}));
    EXPECT_EQ(job.RVecY.size(), 4U);
    EXPECT_EQ(job.RVecZ.size(), 4U);
    EXPECT_TRUE(JobIsWhole(job));
    EXPECT_TRUE(JobIsWhole(ReadJobBytes(HandFile(HandExample()), "a.cvn").Job));
}

TEST_F(JobFileFormat, OnlyMinusOneIsATrueFlag) {
    const HandJob hand = HandExample();
    const std::string file = HandFile(hand);
    // The last 8 bytes: IsParaboloid, number of views, IsKuka, IsQuaternion.
    for (const int value : {0, 1, 2, -2, 32767}) {
        HandBytes flags;
        flags.I16(value).I16(0).I16(value).I16(value);
        const std::string changed = file.substr(0, file.size() - 8) + flags.Text;
        const JobRecord job = ReadJobBytes(changed, "a.cvn").Job;
        EXPECT_EQ(job.IsParaboloid, value);
        EXPECT_EQ(job.IsKuka, value);
        EXPECT_EQ(JobBytes(job, {}).substr(changed.size() - 8), flags.Text);
    }
}

TEST_F(JobFileFormat, NumbersKeepTheirBits) {
    const auto bits = [](std::uint64_t pattern) { return std::bit_cast<double>(pattern); };
    const double odd[] = {bits(0x7FF8000000000123), bits(0xFFF0000000000001), bits(0x7FF0000000000000),
                          bits(0x8000000000000000), bits(1)};
    HandJob hand = HandRobotExample();
    hand.Shape = {{{odd[0], odd[1], odd[2]}}};
    for (std::size_t i = 0; i < 4; ++i) {
        hand.MCS.X[i + 1] = odd[i];
        hand.MCS.Z[i + 1] = odd[i];
        hand.TMCS.Y[i + 1] = odd[i + 1];
        hand.Results[i] = odd[i];
        hand.Robot[1][i] = odd[i + 1];
    }
    hand.RDist = odd[1];
    hand.RVecX[1] = odd[1];
    hand.RVecZ[1] = odd[1];
    const JobFileContent content = ReadJobBytes(HandFile(hand), "a.cvn");
    ExpectBytes(JobBytes(content.Job, content.ViewNames), Saved(hand));
}

TEST_F(JobFileFormat, TextsOfTheFileAreSingleBytesAndUtf8InMemory) {
    HandJob hand = HandExample();
    hand.MCS.Name[1] = hand.TMCS.Name[1] = hand.OCS.Name[1] =
        "Pr\xFC"
        "fpunkt \x80";
    hand.ParamText[1] = "\xE4";
    hand.NameMCS =
        "Me\xDF"
        "system";
    hand.AngleUnit =
        "360\xB0"
        "60'60''";
    hand.SeedName[1] = "\xD6";
    hand.ViewNames = {
        "R\xFC"
        "ck"};
    const JobFileContent content = ReadJobBytes(HandFile(hand), "a.cvn");
    EXPECT_EQ(content.Job.Start.Name[1], "Prüfpunkt €");
    EXPECT_EQ(content.Job.ParamText[1], "ä");
    EXPECT_EQ(content.Job.NameMCS, "Meßsystem");
    EXPECT_EQ(content.Job.AngleUnitName, kDegreeMinuteSecond);
    EXPECT_EQ(content.Job.SeedName[1], "Ö");
    EXPECT_EQ(content.ViewNames[0], "Rück");
    ExpectBytes(JobBytes(content.Job, content.ViewNames), Saved(hand));
    // What has no place among the single bytes stands as UTF-8.
    JobRecord job = content.Job;
    job.NameMCS = "Ω";
    hand.NameMCS = "\xCE\xA9";
    ExpectBytes(JobBytes(job, content.ViewNames), Saved(hand));
}

TEST_F(JobFileFormat, TaggedValuesOfEveryKindAreReadAsNumbers) {
    HandJob hand;
    for (int i = 1; i <= 9; ++i) hand.MCS.Add("P" + std::to_string(i), 0, 0, 0);
    hand.nMCS = 9;
    hand.TMCS = hand.MCS;
    const std::string before = HandBytes().Long("2.0.64").Shorts(hand.MCS.Name).Text;
    const std::string after =
        HandFile(hand).substr(before.size() + HandBytes().Taggeds(hand.MCS.X).Text.size());
    HandBytes values;
    values.I32(9).I16(0);         // element 0
    values.I16(5).F64(0.1);       // f64
    values.I16(2).I16(-300);      // i16
    values.I16(3).I32(-70000);    // i32
    values.I16(4).F32(0.1F);      // 32-bit float
    values.I16(8).Short("12.5");  // texts
    values.I16(8).Short(" -1,25 ");
    values.I16(8).Short("twelve");
    values.I16(8).Short("");
    values.I16(0);  // nothing
    const JobRecord job = ReadJobBytes(before + values.Text + after, "a.cvn").Job;
    const std::vector<TaggedValue> expected = {{},   0.1,   -300.0, -70000.0, static_cast<double>(0.1F),
                                               12.5, -1.25, {},     {},       {}};
    EXPECT_EQ(job.Start.X, expected);
    // They are written back as f64 or nothing.
    hand.MCS.X.assign(expected.begin(), expected.end());
    ExpectBytes(JobBytes(job, {}), HandFile(hand));
}

TEST_F(JobFileFormat, ATextThatTheFileCannotHoldIsRefused) {
    JobRecord job = ReadJobBytes(HandFile(HandExample()), "a.cvn").Job;
    job.Start.Name[1] = std::string(65535, 'x');
    EXPECT_EQ(ReadJobBytes(JobBytes(job, {}), "a.cvn").Job.Start.Name[1].size(), 65535U);
    job.Start.Name[1] += 'x';
    EXPECT_EQ(ErrorOfWriting(job),
              "This job cannot be saved: MCS_Name: a text of 65536 bytes is too long, 65535 is the most");
    // The bytes of the file count: here half as many as in memory.
    job.Start.Name[1].clear();
    for (int i = 0; i < 65535; ++i) job.Start.Name[1] += "ä";
    EXPECT_EQ(ReadJobBytes(JobBytes(job, {}), "a.cvn").Job.Start.Name[1], job.Start.Name[1]);
    // Long strings have no such bound.
    job.PathMCS = std::string(70000, 'p');
    EXPECT_EQ(ReadJobBytes(JobBytes(job, {}), "a.cvn").Job.PathMCS, job.PathMCS);
}

TEST_F(JobFileFormat, AJobThatCouldNotBeReadBackIsNotWritten) {
    const JobRecord good = ReadJobBytes(HandFile(HandRobotExample()), "a.cvn").Job;
    const std::vector<std::string> views = {"Front", "Side"};
    EXPECT_EQ(ErrorOfWriting(good, views), "");
    JobRecord job = good;
    job.UseFlags.resize(9);
    EXPECT_EQ(ErrorOfWriting(job, views),
              "This job cannot be saved: counts: UseFlags ends at 8 and not at 9");
    job = good;
    job.RVecX.clear();
    EXPECT_EQ(ErrorOfWriting(job, views), "This job cannot be saved: RVecX: its element 0 is missing");
    job = good;
    job.RobotABC = Matrix(2, 2);
    EXPECT_EQ(ErrorOfWriting(job, views),
              "This job cannot be saved: RobotABC: the second index runs to 2 and not to 3");
    EXPECT_EQ(ErrorOfWriting(good, {"Front"}),
              "This job cannot be saved: SavedView: 1 names stand against 2 saved views");
    EXPECT_EQ(ErrorOfWriting(good, {}), "");  // no list, no views
}
