// How the outputs of a fit show parameters that the points leave open, and its notes.
#include <algorithm>

#include "cli/fit_command.h"
#include "core/notes.h"

using namespace corvinade;

namespace {

class OpenOutputs : public FitCommand {
protected:
    // About the line the object turns as it likes.
    std::string onLine_ = Write("line.txt", "A;0;0;0\nB;1000;0;0\nC;2000;0;0\nD;3500;0;0\n");
    std::string toLine_ = Write("to.txt", "A;5;6;7\nB;1005;6;7\nC;2005;6.01;7\nD;3505;6;7\n");

    static std::string Line(const std::string& text, const std::string& begin) {
        const std::size_t at = text.find("\n" + begin);
        return at == std::string::npos ? "" : text.substr(at + 1, text.find('\n', at + 1) - at - 1);
    }
    std::string Page(const std::string& start, const std::string& target) const {
        EXPECT_EQ(Fit({start, target, "--report", PathOf("page.html")}).Status, 0);
        return Contents(PathOf("page.html"));
    }
};

}  // namespace

TEST_F(OpenOutputs, TheTableAndThePageSayOpen) {
    const std::string table = Fit({onLine_, toLine_}).Out;
    EXPECT_TRUE(Line(table, "Rot x").find(" open ") != std::string::npos) << table;
    EXPECT_EQ(Line(table, "Rot y").find("open"), std::string::npos) << table;
    const std::string page = Page(onLine_, toLine_);
    EXPECT_NE(page.find("<td>-</td><td>open</td>"), std::string::npos);
    EXPECT_EQ(page.find("NaN"), std::string::npos);
}

TEST_F(OpenOutputs, ThePageEndsWithTheNotes) {
    const std::string page = Page(onLine_, toLine_);
    const std::size_t section = page.find("<h2>Notes</h2>");
    ASSERT_NE(section, std::string::npos);
    EXPECT_GT(section, page.find("<h2>Points</h2>"));
    EXPECT_NE(page.find("<td class=\"alarm\">warning</td>", section), std::string::npos);
    ASSERT_FALSE(Notes.List.empty());
    for (const Note& note : Notes.List)
        EXPECT_NE(page.find(note.Text, section), std::string::npos) << note.Text;
    EXPECT_EQ(Page(start_, target_).find("<h2>Notes</h2>"), std::string::npos);
}

TEST_F(OpenOutputs, ANoteOfTheImportHasItsPlaceOnThePage) {
    const std::string remarks =
        Write("remarks.txt", "A;0;0;0;<b>\nB;1000;0;0;b\nC;0;2000;0;c\nD;0;0;3000;d\nE;700;800;900;e\n");
    const std::string page = Page(remarks, target_);
    EXPECT_NE(page.find("<td>" + remarks + "</td><td>1</td><td>5</td>"), std::string::npos);
    EXPECT_NE(page.find("&lt;b&gt;"), std::string::npos);
    EXPECT_EQ(page.find("<b>;"), std::string::npos);
}

TEST_F(OpenOutputs, TheCsvNamesThemAndIsAsEverWithoutAny) {
    const std::string csv = Fit({onLine_, toLine_, "--csv"}).Out;
    EXPECT_EQ(csv.substr(csv.find("use_z"), 24), "use_z;open_parameters\r\nA") << csv;
    EXPECT_TRUE(csv.ends_with(";1;1;1;Rot x\r\n")) << csv;
    EXPECT_EQ(std::count(csv.begin(), csv.end(), '\n'), 5);
    const std::string whole = Fit({start_, target_, "--csv"}).Out;
    EXPECT_NE(whole.find(";use_z\r\n"), std::string::npos) << whole;
    EXPECT_TRUE(whole.ends_with(";1;1;1\r\n")) << whole;
}

TEST_F(OpenOutputs, TheProtocolHasTheNotesOfTheImportToo) {
    const std::string remarks = Write("remarks.txt", "A;0;0;0;x\nB;1000;0;0;x\nC;2000;0;0;x\nD;3500;0;0;x\n");
    const std::string text = Fit({remarks, toLine_, "--protocol"}).Out;
    const std::size_t section = text.find("\r\nNotes\r\n");
    ASSERT_NE(section, std::string::npos) << text;
    EXPECT_NE(text.find("\r\nnote\tFields behind z are not read", section), std::string::npos);
    EXPECT_NE(text.find(remarks + ", line 1; 4 times)", section), std::string::npos);
    EXPECT_NE(text.find("\r\nwarning\tThe points in use", section), std::string::npos);
    EXPECT_TRUE(Line(text, "Rotx ").ends_with("\topen\r")) << Line(text, "Rotx ");
    EXPECT_EQ(Fit({start_, target_, "--protocol"}).Out.find("\r\nNotes\r\n"), std::string::npos);
}
