// Points of one file that bear the same name, wherever no pairing by names refuses them.
#include "cli/fit_command.h"
#include "core/notes.h"

using namespace corvinade;

namespace {

class DuplicateNames : public FitCommand {
protected:
    static std::vector<Note> Found() {
        std::vector<Note> found;
        for (const Note& note : Notes.List)
            if (note.Code == NoteCode::DuplicateName) found.push_back(note);
        return found;
    }
    static void Expect(const Note& note, const std::string& file, const std::string& text, int line,
                       int count) {
        EXPECT_EQ(note.File, file);
        EXPECT_EQ(note.Text, text);
        EXPECT_EQ(note.Line, line);
        EXPECT_EQ(note.Count, count);
    }
    // Five points no two of whose distances are equal, by their names.
    std::string Points(const std::string& file, const std::vector<std::string>& names) const {
        const std::vector<std::string> xyz = {";0;0;0\n", ";1000;0;10\n", ";0;810;20\n", ";940;700;500\n",
                                              ";310;420;-230\n"};
        std::string text;
        for (std::size_t i = 0; i < xyz.size(); ++i) text += names[i] + xyz[i];
        return Write(file, text);
    }
};

}  // namespace

TEST_F(DuplicateNames, AreNotedWhereOtherThanNamesMakeThePairs) {
    const std::string start = Points("s.txt", {"A", "B", "A", "D", "B"});
    const std::string target = Points("t.txt", {"P", "Q", "R", "S", "T"});
    for (const std::string match : {"distance", "coordinate"}) {
        FreshStart();
        Fit({start, target, "--match", match, "--tolerance", "0.1"});
        const std::vector<Note> found = Found();
        ASSERT_EQ(found.size(), 1u) << match;
        Expect(found[0], start, "The name \"A\" stands in line 1 and in line 3", 1, 2);
        FreshStart();
        Fit({target, start, "--match", match, "--tolerance", "0.1"});
        ASSERT_EQ(Found().size(), 1u) << match;
        Expect(Found()[0], start, "The name \"A\" stands in line 1 and in line 3", 1, 2);
        FreshStart();
        EXPECT_EQ(Fit({target, target, "--match", match, "--tolerance", "0.1"}).Status, 0);
        EXPECT_TRUE(Found().empty());
    }
    // By names they are refused, and their note is the one of the refusal.
    FreshStart();
    EXPECT_EQ(Fit({start, target}).Status, 3);
    ASSERT_EQ(Found().size(), 1u);
    EXPECT_EQ(Found()[0].Count, 1);
}

TEST_F(DuplicateNames, AreNotedOnceForEachFileThatIsTransformed) {
    const std::string job = PathOf("job.cvn");
    ASSERT_EQ(Fit({start_, target_, "--save", job}).Status, 0);
    std::string far = "P0;1;2;3\n";  // the two are far from each other, and the names are in no order
    for (int i = 40; i > 1; --i) far += "P" + std::to_string(i) + ";1;2;3\n";
    far += "P40;4;5;6\n";
    const std::string one = Write("one.txt", "A;1;2;3\nB;1;2;3\nA;4;5;6\nA;7;8;9\n");
    const std::string two = Write("two.txt", far);
    const std::string good = Write("good.txt", "P9;1;2;3\nP10;1;2;3\nP8;1;2;3\n");
    const Outcome outcome =
        FreshCommandLine({"transform", job, one, two, good, "--to", PathOf("out"), "--overwrite"});
    EXPECT_EQ(outcome.Status, 0);
    EXPECT_EQ(outcome.Err, "warning: The name \"A\" stands in line 1 and in line 3 (" + one +
                               ", line 1; 2 times)\nwarning: The name \"P40\" stands in line 2 and in line "
                               "41 (" +
                               two + ", line 2)\n3 of 3 files transformed\n");
    EXPECT_EQ(FreshCommandLine({"transform", job, one, "--to", PathOf("new"), "--strict"}).Status, 3);
    // Points without names are called by their lines.
    const std::string none = Write("none.txt", "1;2;3\n1;2;3\n1;2;3\n");
    EXPECT_EQ(FreshCommandLine({"transform", job, none, "--to", PathOf("new"), "--strict"}).Status, 0);
    EXPECT_TRUE(Found().empty());
}
