// Damaged job files: each is refused with the place and what is wrong there, and never leaves half a job.
#include <functional>

#include "cli/headless.h"
#include "core/files.h"
#include "core/form_main.h"
#include "core/job_bytes.h"
#include "core/job_file.h"
#include "core/platform.h"
#include "core/window.h"
#include "support/fixture.h"
#include "support/memory_use.h"

using namespace corvinade;

using JobFileDamage = Program;

namespace {

std::string ErrorOfReading(const std::string& file) {
    return ErrorOf([&] { ReadJobBytes(file, "a.cvn"); });
}

// The byte that an error names; -1 without one.
long PlaceOf(const std::string& error) {
    const std::string before = "\"a.cvn\", byte ";
    return error.starts_with(before) ? std::stol(error.substr(before.size())) : -1;
}

// Where each array of the example begins, put together in the same order once more.
struct Places {
    std::size_t McsName, McsX, McsY, McsZ, OcsName, TmcsName, TmcsZ, Counts, UseFlags, LengthUnit, Views;
};
Places PlacesOf(const HandJob& job) {
    HandBytes out;
    Places at{};
    out.Long("2.0.64");
    at.McsName = out.Text.size();
    at.McsX = out.Shorts(job.MCS.Name).Text.size();
    at.McsY = out.Taggeds(job.MCS.X).Text.size();
    at.McsZ = out.Taggeds(job.MCS.Y).Text.size();
    at.OcsName = out.F64s(job.MCS.Z).Text.size();
    at.TmcsName = out.Shorts(job.OCS.Name).Taggeds(job.OCS.X).Taggeds(job.OCS.Y).F64s(job.OCS.Z).Text.size();
    at.TmcsZ = out.Shorts(job.TMCS.Name).Taggeds(job.TMCS.X).Taggeds(job.TMCS.Y).Text.size();
    at.Counts = out.F64s(job.TMCS.Z).Text.size();
    at.UseFlags = at.Counts + 12;
    out.Raw(std::string(12 + 4 + 2 * job.UseFlags.size(), '\0'));
    for (const std::string& text : job.ParamText) out.Short(text);
    at.LengthUnit = out.Text.size() + 2 + 2 + 13 * 8 + 8;
    at.Views = HandFile(job).size() - 6;  // number of views, two flags
    return at;
}

std::string With(std::string file, std::size_t place, const HandBytes& bytes) {
    return file.replace(place, bytes.Text.size(), bytes.Text);
}

}  // namespace

TEST_F(JobFileDamage, AFileCutOffAnywhereIsRefusedWithThePlace) {
    HandJob job = HandExample();
    for (int i = 5; i <= 9; ++i) job.MCS.Add("P", 1, 2, 3);
    job.TMCS = job.MCS;
    job.nMCS = 9;
    HandJob robot = job, shape = job;
    robot.IsQuaternion = true;
    robot.RVecX = robot.RVecY = {{}, 1.0, 2.0, 3.0};
    robot.RVecZ = {0, 1, 2, 3};
    shape.Shape = {{{1, 2, 3}, {4, 5, 6}}};
    for (const std::string& file :
         {HandFile(robot), HandFile(shape), HandFile15(robot, "2.0.57"), HandFile46(shape, "2.0.46"),
          HandFile72(shape, "1.3.72"), HandFile71(job, "1.3.71"), HandFile68(job, "1.3.68"),
          HandFile40(job, "1.2.40")}) {
        ASSERT_EQ(ErrorOfReading(file), "");
        for (std::size_t length = 0; length < file.size(); ++length) {
            const std::string error = ErrorOfReading(file.substr(0, length));
            ASSERT_GE(PlaceOf(error), 0) << length << ": " << error;
            ASSERT_LE(PlaceOf(error), static_cast<long>(length)) << error;
        }
    }
}

TEST_F(JobFileDamage, AFileCutOffInsideItsViewsIsRefused) {
    const std::string file = HandFile(HandRobotExample());
    for (std::size_t length = 0; length < file.size(); length += length + 400 < file.size() ? 97 : 1) {
        const std::string error = ErrorOfReading(file.substr(0, length));
        ASSERT_GE(PlaceOf(error), 0) << length << ": " << error;
        ASSERT_LE(PlaceOf(error), static_cast<long>(length)) << error;
    }
}

TEST_F(JobFileDamage, TheErrorTellsTheFieldThatIsCut) {
    const std::string file = HandFile(HandExample());
    const Places at = PlacesOf(HandExample());
    EXPECT_EQ(ErrorOfReading(""),
              "\"a.cvn\", byte 0: Version: the file ends here or within the next 4 bytes");
    EXPECT_EQ(ErrorOfReading(file.substr(0, 7)),
              "\"a.cvn\", byte 4: Version: the file ends here or within the next 6 bytes");
    EXPECT_EQ(ErrorOfReading(file.substr(0, at.Counts + 5)),
              "\"a.cvn\", byte " + std::to_string(at.Counts + 4) +
                  ": nMCS: the file ends here or within the next 4 bytes");
    EXPECT_EQ(ErrorOfReading(file.substr(0, file.size() - 1)),
              "\"a.cvn\", byte " + std::to_string(file.size() - 2) +
                  ": IsQuaternion: the file ends here or within the next 2 bytes");
}

TEST_F(JobFileDamage, CountsThatCannotBeAreRefusedWhereTheyStand) {
    const std::string file = HandFile(HandExample());
    const Places at = PlacesOf(HandExample());
    const std::pair<std::size_t, const char*> arrays[] = {
        {at.McsName, "MCS_Name"}, {at.McsX, "MCS_X"},       {at.McsY, "MCS_Y"},
        {at.McsZ, "MCS_Z"},       {at.OcsName, "OCS_Name"}, {at.TmcsName, "TMCS_Name"},
        {at.TmcsZ, "TMCS_Z"},     {at.UseFlags, "UseFlags"}};
    for (const auto& [place, name] : arrays) {
        const std::string before = "\"a.cvn\", byte " + std::to_string(place) + ": " + name + ": ";
        for (const std::int64_t count : {-1LL, -2LL, -2147483648LL})
            EXPECT_EQ(ErrorOfReading(With(file, place, HandBytes().I32(count))),
                      before + "the upper bound " + std::to_string(count) + " is none");
        for (const std::int64_t count : {1000000LL, 2147483646LL, 2147483647LL})
            EXPECT_EQ(ErrorOfReading(With(file, place, HandBytes().I32(count))),
                      before + std::to_string(count + 1) + " elements cannot stand in the " +
                          std::to_string(file.size() - place - 4) + " bytes that are left");
        // One more or less moves everything behind it; it is refused somewhere.
        const int count = std::string(name).starts_with("OCS") ? 5 : name == arrays[7].second ? 9 : 4;
        for (const int off : {-1, 1}) {
            const std::string error = ErrorOfReading(With(file, place, HandBytes().I32(count + off)));
            EXPECT_GE(PlaceOf(error), static_cast<long>(place)) << name << off << error;
        }
    }
}

TEST_F(JobFileDamage, UnknownTagsAreRefusedWhereTheyStand) {
    const std::string file = HandFile(HandExample());
    const Places at = PlacesOf(HandExample());
    for (const int tag : {1, 6, 7, 9, 0x0500, 65535}) {
        EXPECT_EQ(ErrorOfReading(With(file, at.McsX + 4 + 2 + 10, HandBytes().I16(tag))),
                  "\"a.cvn\", byte " + std::to_string(at.McsX + 16) + ": MCS_X: the value tag " +
                      std::to_string(tag) + " is not known");
    }
}

TEST_F(JobFileDamage, TextsLongerThanTheFileAreRefused) {
    const std::string file = HandFile(HandExample());
    const Places at = PlacesOf(HandExample());
    const std::string place = "\"a.cvn\", byte " + std::to_string(at.LengthUnit) + ": LengthUnitName: ";
    const std::string left = std::to_string(file.size() - at.LengthUnit - 4);
    for (const std::int64_t length : {-1LL, -2147483648LL, 2147483647LL, 100000LL})
        EXPECT_EQ(
            ErrorOfReading(With(file, at.LengthUnit, HandBytes().I32(length))),
            place + "a text of " + std::to_string(length) + " characters, but " + left + " bytes are left");
    EXPECT_EQ(ErrorOfReading(With(file, at.McsName + 4, HandBytes().I16(65535))),
              "\"a.cvn\", byte " + std::to_string(at.McsName + 6) +
                  ": MCS_Name: the file ends here or within the next 65535 bytes");
}

TEST_F(JobFileDamage, CountsThatDoNotFitTheArraysAreRefused) {
    const std::string file = HandFile(HandExample());
    const Places at = PlacesOf(HandExample());
    const std::string place = "\"a.cvn\", byte " + std::to_string(at.Counts) + ": counts: ";
    const auto error = [&](int nIdent, int nMCS, int nOCS) {
        return ErrorOfReading(With(file, at.Counts, HandBytes().I32(nIdent).I32(nMCS).I32(nOCS)));
    };
    EXPECT_EQ(error(3, 4, 5), "");
    EXPECT_EQ(error(-1, 4, 5), place + "nIdent = -1, nMCS = 4, nOCS = 5 are no counts");
    EXPECT_EQ(error(3, -4, 5), place + "nIdent = 3, nMCS = -4, nOCS = 5 are no counts");
    EXPECT_EQ(error(3, 4, -2147483647), place + "nIdent = 3, nMCS = 4, nOCS = -2147483647 are no counts");
    EXPECT_EQ(error(5, 4, 5), place + "5 pairs of 4 start points and 5 target points");
    EXPECT_EQ(error(3, 4, 2), place + "3 pairs of 4 start points and 2 target points");
    EXPECT_EQ(error(3, 5, 5), place + "MCS_Name ends at 4 and not at 5");
    EXPECT_EQ(error(3, 4, 6), place + "OCS_Name ends at 5 and not at 6");
    EXPECT_EQ(error(3, 2147483647, 5), place + "MCS_Name ends at 4 and not at 2147483647");
    EXPECT_EQ(error(4, 4, 5), place + "UseFlags ends at 9 and not at 12");
}

TEST_F(JobFileDamage, ArraysOfDifferentLengthAreRefused) {
    const std::string place = "\"a.cvn\", byte ";
    const auto error = [&](const std::function<void(HandJob&)>& change) {
        HandJob job = HandExample();
        change(job);
        const std::string text = ErrorOfReading(HandFile(job));
        const std::size_t colon = text.find("counts: ");
        return colon == std::string::npos ? text : text.substr(colon + 8);
    };
    EXPECT_EQ(error([](HandJob& job) { job.MCS.X.pop_back(); }), "MCS_X ends at 3 and not at 4");
    EXPECT_EQ(error([](HandJob& job) { job.MCS.Y.pop_back(); }), "MCS_Y ends at 3 and not at 4");
    EXPECT_EQ(error([](HandJob& job) { job.MCS.Z.pop_back(); }), "MCS_Z ends at 3 and not at 4");
    EXPECT_EQ(error([](HandJob& job) { job.OCS.X.pop_back(); }), "OCS_X ends at 4 and not at 5");
    EXPECT_EQ(error([](HandJob& job) { job.TMCS.Name.pop_back(); }), "TMCS_Name ends at 3 and not at 4");
    EXPECT_EQ(error([](HandJob& job) { job.TMCS.Z.pop_back(); }), "TMCS_Z ends at 3 and not at 4");
    EXPECT_EQ(error([](HandJob& job) { job.UseFlags.pop_back(); }), "UseFlags ends at 8 and not at 9");
    EXPECT_EQ(error([](HandJob& job) { job.nOCS = 0; }), "3 pairs of 4 start points and 0 target points");
}

TEST_F(JobFileDamage, CountsOfShapeAndPosesAreHeldAgainstTheFile) {
    for (const std::int64_t count : {-1LL, -2147483648LL, 1000LL, 2147483647LL}) {
        const std::string shape = HandFile(HandParaboloidExample());
        EXPECT_NE(ErrorOfReading(With(shape, shape.size() - 6 - 72 - 4, HandBytes().I32(count)))
                      .find(": ParaboloidShape: "),
                  std::string::npos);
        const std::string robot = HandFile(HandRobotExample());
        const std::size_t behind = HandBytes()
                                       .Taggeds(HandRobotExample().RVecX)
                                       .Taggeds(HandRobotExample().RVecY)
                                       .F64s(HandRobotExample().RVecZ)
                                       .Text.size();
        EXPECT_NE(ErrorOfReading(With(robot, robot.size() - behind - 96 - 4, HandBytes().I32(count)))
                      .find(": RobotABC: "),
                  std::string::npos);
    }
}

TEST_F(JobFileDamage, ADamagedFileLeavesNoHalfJobAndIsItselfUntouched) {
    OpenFile(Write("good.cvn", HandFile(HandRobotExample())));
    Run.JobDirty = kTrue;
    HandJob other = HandParaboloidExample();
    other.MCS.Name[1] = other.TMCS.Name[1] = "other";
    const std::string whole = HandFile(other);
    for (const std::size_t length :
         {std::size_t{0}, std::size_t{3}, std::size_t{50}, whole.size() / 2, whole.size() - 1}) {
        SCOPED_TRACE(length);
        const std::string path = Write("bad.cvn", whole.substr(0, length));
        Run.JobFilePath = path;
        EXPECT_FALSE(Dispatch([&] { OpenFile(path); }));
        EXPECT_TRUE(LastMessage().starts_with("\"" + path + "\", byte ")) << LastMessage();
        EXPECT_EQ(Run.JobDataValid, kFalse);
        EXPECT_EQ(Run.TrafoValid, kFalse);
        EXPECT_FALSE(Main.MenuTransformation.Enabled);
        // The job before has no points any more; nothing of the file stands in its place.
        EXPECT_EQ(Job.Start.Count(), 0);
        EXPECT_EQ(Job.Pairs(), 0);
        EXPECT_EQ(Job.Start.Name, HandRobotExample().MCS.Name);
        EXPECT_EQ(Job.LengthUnitName, "inch");
        EXPECT_EQ(Job.IsParaboloid, kFalse);
        EXPECT_EQ(Job.IsKuka, kTrue);
        EXPECT_TRUE(Main.ComboSaveView.Items.empty());
        EXPECT_EQ(Job.nSavedViews, 0);
        EXPECT_EQ(Run.JobDirty, kTrue);
        EXPECT_EQ(Run.WaitPointers, 0);
        EXPECT_EQ(Contents(path), whole.substr(0, length));
    }
    // What is left can be saved, and opened again.
    SaveFileAs(PathOf("left.cvn"));
    OpenFile(PathOf("left.cvn"));
    EXPECT_EQ(Run.JobDataValid, kTrue);
    EXPECT_EQ(Job.Start.Count(), 0);
}

TEST_F(JobFileDamage, AnUnreadableFileIsToldAndLeavesNoData) {
    const std::string path = Write("a.cvn", HandFile(HandExample()));
    FileFaults.Refuse = [](const std::string& operation, const std::string&) {
        return operation == "read" ? "Input/output error" : "";
    };
    EXPECT_FALSE(Dispatch([&] { OpenFile(path); }));
    EXPECT_EQ(LastMessage(), "Cannot read \"" + path + "\": Input/output error");
    EXPECT_EQ(Run.JobDataValid, kFalse);
}

TEST_F(JobFileDamage, NoCountTakesMoreMemoryThanASmallMultipleOfTheFile) {
    constexpr std::size_t kFile = 1 << 20;
    // Arrays that the file can just hold, as their smallest elements: empty texts and empty values, flags.
    const std::string zeros(kFile, '\0');
    const auto boundOf = [](std::size_t elementSize) {
        return HandBytes().I32(static_cast<std::int64_t>((kFile - 100) / elementSize));
    };
    std::vector<std::string> files;
    for (const std::size_t elementSize : {2, 14, 16}) {
        files.push_back(HandBytes().Long("2.0.64").Raw(boundOf(elementSize).Text).Text + zeros);
        files.push_back(HandBytes().Long("2.0.64").I32(0).I16(0).Raw(boundOf(elementSize).Text).Text + zeros);
    }
    HandJob views = HandExample();
    views.ViewNames = {"a"};
    const std::string file = HandFile(views);
    for (const int dimension : {1, 2})
        files.push_back(file.substr(0, PlacesOf(HandExample()).Views) +
                        HandBytes().I16(1).I32(0).Short("a").Text + std::string(26, '\0') +
                        HandBytes().I16(dimension).I32(1 << 14).I32(1).Text + zeros);
    for (const std::string& damaged : files) {
        const MemoryUse memory;
        ErrorOfReading(damaged);
        EXPECT_LT(memory.Peak(), 10 * damaged.size());
    }
}

TEST_F(JobFileDamage, APointTakesNoMemoryOfItsOwnBeyondALongName) {
    HandJob job;
    for (int i = 1; i <= 10000; ++i) job.MCS.Add("Point " + std::to_string(i), i, i, i);
    job.OCS = job.TMCS = job.MCS;
    job.nIdent = job.nMCS = job.nOCS = 10000;
    job.UseFlags.assign(30001, 1);
    job.RVecX.assign(10001, {});
    const std::string file = HandFile(job);
    const MemoryUse reading;
    const JobRecord record = ReadJobBytes(file, "a.cvn").Job;
    EXPECT_LT(reading.Allocations(), 200U);
    EXPECT_LT(reading.Peak(), 3 * file.size());
    const MemoryUse writing;
    const std::string written = JobBytes(record, {});
    EXPECT_LT(writing.Allocations(), 200U);
    EXPECT_LT(writing.Peak(), file.size() + file.size() / 2);
    ExpectBytes(written, file);
}
