// A job file with numbers that are infinite or none: opening it says so.
#include <cmath>
#include <limits>

#include "core/job_bytes.h"
#include "core/job_file.h"
#include "core/notes.h"
#include "core/parameter_names.h"
#include "core/window.h"
#include "support/fixture.h"

using namespace corvinade;

namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN(),
                 kInfinity = std::numeric_limits<double>::infinity();

class NotFiniteJobs : public Program {
protected:
    NotFiniteJobs() { ShowWindow("FormMain"); }
    void Open(const HandJob& job) {
        path_ = Write("a.cvn", HandFile(job));
        ForgetNotes();
        OpenFile(path_);
    }
    // The text of the one note.
    std::string Noted(int count) const {
        EXPECT_EQ(Notes.List.size(), 1u);
        if (Notes.List.size() != 1) return "";
        const Note& note = Notes.List[0];
        EXPECT_STREQ(NoteKindOf(note.Code).Name, "not-finite");
        EXPECT_EQ(note.Weight, Severity::Warning);
        EXPECT_EQ(note.File, path_);
        EXPECT_EQ(note.Count, count);
        return note.Text;
    }
    std::string path_;
};

}  // namespace

TEST_F(NotFiniteJobs, WithNumbersAloneHaveNoNote) {
    for (const HandJob& job : {HandExample(), HandRobotExample(), HandParaboloidExample()}) {
        Open(job);
        EXPECT_TRUE(Notes.List.empty());
    }
    HandJob job = HandExample();
    job.OCS.Y[2] = std::nullopt;  // empty, which is 0
    job.OCS.Z[1] = std::numeric_limits<double>::max();
    job.OCS.Z[2] = std::numeric_limits<double>::denorm_min();
    Open(job);
    EXPECT_TRUE(Notes.List.empty());
}

TEST_F(NotFiniteJobs, AreNotedWithTheirSetTheirCountAndTheFirstPoint) {
    for (const double value : {kNan, -kNan, kInfinity, -kInfinity}) {
        HandJob job = HandExample();
        job.OCS.Y[2] = value;
        Open(job);
        EXPECT_EQ(Noted(1),
                  "Numbers of the job are infinite or none: 1 of the target system (the first of point \"" +
                      job.OCS.Name[2] + "\"); whatever is computed from them is none either");
    }
    HandJob job = HandExample();
    job.MCS.Z[3] = job.MCS.Z[4] = kNan;
    job.MCS.X[4] = kInfinity;
    job.OCS.X[1] = kNan;
    job.TMCS.X[1] = -kInfinity;
    Open(job);
    EXPECT_EQ(Noted(5),
              "Numbers of the job are infinite or none: 3 of the start system (the first of point \"" +
                  job.MCS.Name[3] + "\"), 1 of the target system (the first of point \"" + job.OCS.Name[1] +
                  "\"), 1 of the transformed points (the first of point \"" + job.TMCS.Name[1] +
                  "\"); whatever is computed from them is none either");
}

TEST_F(NotFiniteJobs, AreNotedForOrientationsAndShapesToo) {
    HandJob robot = HandRobotExample();
    robot.Robot[2][3] = kNan;
    Open(robot);
    EXPECT_NE(Noted(1).find(": 1 of the orientations (the first of row 2); "), std::string::npos);
    HandJob shape = HandParaboloidExample();
    ASSERT_TRUE(shape.Shape);
    (*shape.Shape)[1][2] = kInfinity;
    Open(shape);
    EXPECT_NE(Noted(1).find(": 1 of the shape (the first of row 1); "), std::string::npos);
}

TEST_F(NotFiniteJobs, AreNotedForTheResultAndItsRVectorsToo) {
    Open(HandExample());
    const JobRecord good = Job;
    int held = 0;
    for (int parameter = 1; parameter < kParameterEnd; ++parameter)
        for (const double value : {kNan, kInfinity, -kInfinity}) {
            JobRecord job = good;
            ParameterValue(job, parameter) = value;
            path_ = Write("a.cvn", JobBytes(job, {}));
            JobRecord read = ReadJobBytes(Contents(path_), path_).Job;
            if (std::isfinite(ParameterValue(read, parameter))) continue;  // the file has no field for it
            ++held;
            ForgetNotes();
            OpenFile(path_);
            EXPECT_EQ(Noted(1), std::string("Numbers of the job are infinite or none: 1 of the result (the "
                                            "first of ") +
                                    ParameterName(parameter) +
                                    "); whatever is computed from them is none either");
        }
    EXPECT_GE(held, 3 * 14);
    Open(HandRobotExample());  // the others have no field for them
    JobRecord job = Job;
    const auto size = static_cast<std::size_t>(job.Pairs()) + 1;
    job.RVecX.resize(size);
    job.RVecY.resize(size);
    job.RVecZ.resize(size);
    job.RVecInFile.fill(-1);
    ASSERT_GT(size, 2u);
    job.RVecX[1] = kNan;
    job.RVecZ[2] = kInfinity;
    path_ = Write("a.cvn", JobBytes(job, {}));
    ForgetNotes();
    OpenFile(path_);
    EXPECT_NE(Noted(2).find(": 2 of the R vectors (the first of row 1); "), std::string::npos);
}

TEST_F(NotFiniteJobs, ThatAreOpenedAgainWithoutThemHaveNoNote) {
    HandJob job = HandExample();
    job.OCS.Z[1] = kNan;
    Open(job);
    EXPECT_EQ(Notes.List.size(), 1u);
    Open(HandExample());
    EXPECT_TRUE(Notes.List.empty());
}
