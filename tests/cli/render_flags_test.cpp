// Flags in the pictures of `corvinade-cli render`.
#include <regex>

#include "cli/command_line.h"
#include "cli/screen_automation.h"
#include "core/files.h"

using namespace corvinade;

namespace {

class RenderFlags : public ScreenByNames {
protected:
    std::string Saved() {
        Answer("save", PathOf("plate.cvn"));
        Click("FormMain.MenuFileSaveAs");
        return PathOf("plate.cvn");
    }
    static std::string SvgOf(const std::string& job, const std::string& file,
                             const std::vector<std::string>& more) {
        std::vector<std::string> arguments = {"render", job, "--out", file};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const Outcome outcome = FreshCommandLine(arguments);
        EXPECT_EQ(outcome.Status, 0) << outcome.Err;
        return Contents(file);
    }
    static int Count(const std::string& text, const std::string& part) {
        int count = 0;
        for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
        return count;
    }
};

TEST_F(RenderFlags, AreOnTheWorstPairs) {
    Start();
    const std::string job = Saved();
    const std::string svg = SvgOf(job, PathOf("a.svg"), {"--flags", "--flag-count", "2"});
    EXPECT_EQ(Count(svg, ">Dev.<"), 2);
    EXPECT_EQ(Count(svg, ">A<"), 1);
    EXPECT_EQ(Count(svg, ">B<"), 1);
    EXPECT_EQ(Count(svg, ">0.400<"), 2);  // y and the whole deviation of B
    EXPECT_EQ(Count(SvgOf(job, PathOf("b.svg"), {}), ">Dev.<"), 0);
}

TEST_F(RenderFlags, OfASavedViewAreThoseThatItWasSavedWith) {
    StartWithScreen();
    Click("FormMain.MenüGlobalFlagsMode");
    Mouse("click", PixelOf(4).X, PixelOf(4).Y);
    Answer("form", json::array({{{"do", "set"}, {"at", "FormSaveView.TextNewName"}, {"value", "flags"}},
                                {{"do", "click"}, {"at", "FormSaveView.BtnOK"}}}));
    Click("FormMain.MenüViewSaveView");
    const std::string job = Saved();
    const std::string svg = SvgOf(job, PathOf("a.svg"), {"--view", "flags", "--flags"});
    EXPECT_EQ(Count(svg, ">D<"), 1);
    EXPECT_EQ(Count(svg, ">Dev.<"), 1);
    EXPECT_EQ(Count(SvgOf(job, PathOf("b.svg"), {"--view", "flags"}), ">Dev.<"), 0);
}

TEST_F(RenderFlags, AreInPicturesOfPixelsToo) {
    Start();
    const std::string job = Saved();
    const Outcome with =
        FreshCommandLine({"render", job, "--out", PathOf("a.png"), "--size", "600x400", "--flags"});
    const Outcome without = FreshCommandLine({"render", job, "--out", PathOf("b.png"), "--size", "600x400"});
    EXPECT_EQ(with.Status, 0) << with.Err;
    EXPECT_EQ(without.Status, 0) << without.Err;
    EXPECT_NE(Contents(PathOf("a.png")), Contents(PathOf("b.png")));
}

}  // namespace
