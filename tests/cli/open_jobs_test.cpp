// Results that their points do not determine, from the job of a fit to every command that goes on with it.
#include <filesystem>

#include "cli/fit_command.h"
#include "core/job.h"
#include "core/job_file.h"
#include "core/notes.h"

using namespace corvinade;

namespace {

class OpenJobs : public FitCommand {
protected:
    struct MarkedJob {
        std::string Path;
        NoteCode Code;
        std::string Says;  // part of the note
    };

    // The job of a fit of these two files.
    std::string Saved(const std::string& name, std::vector<std::string> fit) const {
        fit.insert(fit.begin(), "fit");
        fit.insert(fit.end(), {"--save", PathOf(name)});
        EXPECT_EQ(FreshCommandLine(fit).Status, 0) << name;
        return PathOf(name);
    }
    // About the x axis, along which all points of the object lie, it turns as it likes.
    std::string SavedLine() const {
        return Saved("line.cvn", {Write("line.txt", "A;0;0;0\nB;1000;0;0\nC;2000;0;0\nD;3500;0;0\n"),
                                  Write("to.txt", "A;5;6;7\nB;1005;6;7\nC;2005;6.01;7\nD;3505;6;7\n")});
    }
    // Nothing in the plane z = 0 tells the scale in z.
    std::string SavedPlane() const {
        return Saved("plane.cvn",
                     {Write("plane.txt", "A;0;0;0\nB;1000;0;0\nC;0;800;0\nD;1000;800;0\nE;400;300;0\n"),
                      Write("there.txt", "A;5;6;7\nB;1005;6;7\nC;5;806;7\nD;1005;806;7\nE;405;306;7\n"),
                      "--parameters", "9"});
    }
    std::string SavedPlace(const std::string& parameters) const {
        return Saved("place" + parameters + ".cvn",
                     {start_, Write("place.txt", "A;5;5;5\nB;5;5;5\nC;5;5;5\nD;5;5;5\nE;5;5;5\n"),
                      "--parameters", parameters});
    }
    std::vector<MarkedJob> AllMarked() const {
        return {{SavedLine(), NoteCode::OpenParameters, "leaves Rot x open"},
                {SavedPlane(), NoteCode::OpenParameters, "leaves Scale z open"},
                {SavedPlace("7"), NoteCode::CollapsedScale, "collapsed"},
                {SavedPlace("9"), NoteCode::CollapsedScale, "collapsed"}};
    }
    static std::vector<Note> MarksNoted() {
        std::vector<Note> marks;
        for (const Note& note : Notes.List)
            if (note.Code == NoteCode::OpenParameters || note.Code == NoteCode::CollapsedScale)
                marks.push_back(note);
        return marks;
    }
    static json JsonOf(const std::vector<std::string>& command) {
        return json::parse(FreshCommandLine(command).Out);
    }

    std::string good_ = Saved("good.cvn", {start_, target_});
};

}  // namespace

TEST_F(OpenJobs, EveryUseOfTheJobIsNotedAndStrictEndsItBeforeAnythingIsWritten) {
    const std::string out = PathOf("out");
    const auto commands = [&](const std::string& job) -> std::vector<std::vector<std::string>> {
        return {{"info", job},
                {"convert", job, out + ".cvn"},
                {"convert", job, out + ".csv"},
                {"convert", job, out + ".json"},
                {"render", job, "--out", out + ".svg"},
                {"distances", job, "--with-result"},
                {"export", job, "--rocal", out + ".bas"},
                {"export", job, "--robcad", out + ".rf"},
                {"export", job, "--points", out + ".txt"},
                {"transform", job, start_, "--to", out}};
    };
    const auto written = [&] {
        std::size_t count = 0;
        for (const auto& entry : std::filesystem::directory_iterator(folder_))
            if (entry.path().stem() == "out") count += std::filesystem::remove_all(entry.path());
        return count;
    };
    for (const MarkedJob& marked : AllMarked())
        for (std::vector<std::string> command : commands(marked.Path)) {
            SCOPED_TRACE(command[0] + " " + command.back() + " of " + marked.Path);
            const Outcome usual = FreshCommandLine(command);
            EXPECT_EQ(usual.Status, 0) << usual.Err;
            const std::vector<Note> notes = MarksNoted();
            ASSERT_EQ(notes.size(), 1u);
            EXPECT_EQ(notes[0].Code, marked.Code);
            EXPECT_EQ(notes[0].Weight, Severity::Warning);
            EXPECT_EQ(notes[0].File, marked.Path);
            EXPECT_NE(notes[0].Text.find(marked.Says), std::string::npos) << notes[0].Text;
            EXPECT_NE(usual.Err.find("warning: " + notes[0].Text), std::string::npos) << usual.Err;
            EXPECT_EQ(written() > 0, command.size() > 2 && command[0] != "distances");
            command.emplace_back("--strict");
            const Outcome strict = FreshCommandLine(command);
            EXPECT_EQ(strict.Status, 3);
            EXPECT_EQ(strict.Out, "");
            EXPECT_EQ(written(), 0u);
        }
    for (const std::vector<std::string>& command : commands(good_)) {
        EXPECT_EQ(FreshCommandLine(command).Status, 0) << command[0];
        EXPECT_TRUE(MarksNoted().empty()) << command[0];
    }
}

TEST_F(OpenJobs, PointsAsMeasuredAreNoResult) {
    EXPECT_EQ(FreshCommandLine({"distances", SavedLine(), "--strict"}).Status, 0);
    EXPECT_TRUE(MarksNoted().empty());
}

TEST_F(OpenJobs, InfoTellsIt) {
    const json line = JsonOf({"info", SavedLine(), "--json"}),
               place = JsonOf({"info", SavedPlace("7"), "--json"}), good = JsonOf({"info", good_, "--json"});
    EXPECT_EQ(line["openParameters"], json::array({"rotx"}));
    EXPECT_EQ(line["collapsedScale"], false);
    EXPECT_EQ(place["collapsedScale"], true);
    EXPECT_EQ(good["openParameters"], json::array());
    EXPECT_EQ(good["collapsedScale"], false);
    JobRecord plain = ReadJobBytes(Contents(good_), good_).Job;
    plain.ParamText.fill("");
    const json none = JsonOf({"info", Write("p.cvn", JobBytes(plain, {})), "--json"});
    EXPECT_TRUE(none["openParameters"].is_null());
    EXPECT_TRUE(none["collapsedScale"].is_null());
    EXPECT_NE(FreshCommandLine({"info", SavedLine()}).Out.find("\nresult        leaves Rot x open\n"),
              std::string::npos);
    EXPECT_NE(FreshCommandLine({"info", SavedPlace("7")}).Out.find("\nresult        a scale has collapsed\n"),
              std::string::npos);
    EXPECT_EQ(FreshCommandLine({"info", good_}).Out.find("\nresult "), std::string::npos);
}

TEST_F(OpenJobs, CopiesKeepIt) {
    for (const MarkedJob& marked : AllMarked()) {
        const std::string copy = PathOf("copy.cvn");
        ASSERT_EQ(FreshCommandLine({"convert", marked.Path, copy}).Status, 0);
        EXPECT_EQ(Contents(copy), Contents(marked.Path));
    }
    const auto csv = [this](const std::string& job) {
        EXPECT_EQ(FreshCommandLine({"convert", job, PathOf("a.csv")}).Status, 0);
        return Contents(PathOf("a.csv"));
    };
    const std::string line = csv(SavedLine()), place = csv(SavedPlace("7")), good = csv(good_);
    EXPECT_NE(line.find("use_z;open_parameters\r\n"), std::string::npos) << line;
    EXPECT_TRUE(line.ends_with(";1;1;1;Rot x\r\n")) << line;
    EXPECT_NE(place.find("use_z;collapsed_scale\r\n"), std::string::npos) << place;
    EXPECT_TRUE(place.ends_with(";1;1;1;1\r\n")) << place;
    EXPECT_NE(good.find("use_z\r\n"), std::string::npos) << good;
    ASSERT_EQ(FreshCommandLine({"convert", SavedLine(), PathOf("a.json")}).Status, 0);
    const json records = json::parse(Contents(PathOf("a.json")))["records"];
    EXPECT_EQ(records["LeftOpen"], json::array({0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(records["Collapsed"], 0);
}

TEST_F(OpenJobs, TheCsvOfTheFitSaysThatAScaleHasCollapsed) {
    SavedPlace("7");
    const std::string text = FreshCommandLine({"fit", start_, PathOf("place.txt"), "--csv"}).Out;
    EXPECT_EQ(text.find("collapsed"), std::string::npos) << "6 parameters have no scale";
    const std::string csv =
        FreshCommandLine({"fit", start_, PathOf("place.txt"), "--parameters", "7", "--csv"}).Out;
    EXPECT_NE(csv.find(";collapsed_scale\r\n"), std::string::npos) << csv;
    EXPECT_TRUE(csv.ends_with(";1\r\n")) << csv;
}

TEST_F(OpenJobs, TheNextFitOfTheJobMarksItAnew) {
    // Shifts alone are determined by a line, and by a place.
    for (const std::string& job : {SavedLine(), SavedPlace("7")}) {
        const std::string again = Saved("again.cvn", {"--job", job, "--parameters", "6", "--hold", "rotx=0",
                                                      "--hold", "roty=0", "--hold", "rotz=0"});
        EXPECT_EQ(Contents(again).find("CORVINADE-BLOCK"), std::string::npos);
        EXPECT_EQ(FreshCommandLine({"info", again, "--strict"}).Status, 0);
    }
    // The two points that are left are one line, along x.
    const std::string two =
        Saved("two.cvn", {"--job", good_, "--leave-out", "C", "--leave-out", "D", "--leave-out", "E"});
    EXPECT_EQ(FreshCommandLine({"info", two}).Status, 0);
    ASSERT_EQ(MarksNoted().size(), 1u);
    EXPECT_NE(MarksNoted()[0].Text.find("leaves Rot x open"), std::string::npos) << MarksNoted()[0].Text;
}

// The angles alone are open, what the result does to points is not.
TEST_F(OpenJobs, GimbalLockAndAnAzimuthWithoutEffectAreNoMarks) {
    const auto noted = [](NoteCode code) {
        return std::any_of(Notes.List.begin(), Notes.List.end(),
                           [code](const Note& note) { return note.Code == code; });
    };
    // (z, y, -x)
    const std::string turned = Saved(
        "turned.cvn",
        {start_, Write("turned.txt", "A;0;0;0\nB;0;0;-1000\nC;0;2000;0\nD;3000;0;0\nE;900;800;-700\n")});
    EXPECT_TRUE(noted(NoteCode::GimbalLock));
    const std::string all = Saved("all.cvn", {start_, target_, "--parameters", "12"});
    EXPECT_TRUE(noted(NoteCode::NoEffect)) << "of the azimuth";
    for (const std::string& job : {turned, all}) {
        EXPECT_EQ(Contents(job).find("CORVINADE-BLOCK"), std::string::npos);
        EXPECT_EQ(FreshCommandLine({"info", job, "--strict"}).Status, 0);
    }
}
