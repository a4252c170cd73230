// The window that saves a picture: what it takes a picture of, what it refuses, and what it orders.
#include "graphics/form_picture.h"

#include <filesystem>

#include "cli/headless.h"
#include "graphics/flag_window.h"

using namespace corvinade;

namespace {

FormPicture& p = PictureWindow;

PictureOrder lastOrder;
std::string lastCopied;

class SavePicture : public FlagWindow {
protected:
    SavePicture() {
        lastOrder = {};
        lastCopied.clear();
        PictureBy.File = [](const PictureOrder& order, PictureFormat format) {
            lastOrder = order;
            return "file " + std::to_string(static_cast<int>(format));
        };
        PictureBy.Copy = [](const std::string& png) {
            lastCopied = png;
            return true;
        };
    }
    ~SavePicture() override { PictureBy = {}; }
    static void OpenForm() { ASSERT_TRUE(UserClick(Main.MenuEditPicture)); }
    void Save(const std::string& name) {
        Headless.Answers["save"].push_back(PathOf(name));
        UserClick(p.BtnSave);
    }
};

}  // namespace

TEST_F(SavePicture, WithoutAPictureItSaysSoAndFollowsTheWindowsThatOpen) {
    OpenFive();
    CloseScreenWindow(*Screens().Active);
    OpenForm();
    EXPECT_TRUE(p.LabelProblem.Visible);
    EXPECT_FALSE(p.BtnSave.Enabled);
    UserClick(Main.MenueGraphics);
    EXPECT_EQ(p.ComboSource.Items, std::vector<std::string>{"Screen - DEFAULT"});
    EXPECT_TRUE(p.BtnSave.Enabled);
    EXPECT_FALSE(p.LabelProblem.Visible);
    EXPECT_EQ(p.TextHeight.Text, "120") << "of 800 by 600 pixels";
}

TEST_F(SavePicture, TheWindowOnTopStandsFirstAndSavedViewsLast) {
    OpenFive();
    UserClick(Main.MenueGraphics);
    Job.nSavedViews = 1;
    Main.ComboSaveView.Items = {"front"};
    OpenForm();
    EXPECT_EQ(p.ComboSource.Items,
              (std::vector<std::string>{"Screen - 2", "Screen - DEFAULT", "Saved view: front"}));
    UserSetIndex(p.ComboSource, 2);
    Save("a.png");
    EXPECT_EQ(lastOrder.Of, PictureSource::SavedView);
    EXPECT_EQ(lastOrder.View, 1);
}

TEST_F(SavePicture, TheHeightIsThatOfTheWindowsShape) {
    const ScreenWindow& window = OpenFive();  // 800 by 600
    OpenForm();
    EXPECT_EQ(p.TextWidth.Text, "160");
    EXPECT_EQ(p.TextHeight.Text, "120");
    // 160 mm of 300 dots an inch are 1889.76, 120 mm are 1417.32.
    EXPECT_TRUE(p.LabelPixels.Text.starts_with("1890 x 1417 pixels")) << p.LabelPixels.Text;
    UserSetText(p.TextResolution, "96");
    UserSetValue(p.CheckBar, 0);
    UserSetValue(p.CheckAxes, 0);
    UserSetValue(p.CheckWhite, 0);
    Save("a.png");
    EXPECT_EQ(lastOrder, (PictureOrder{.Screen = window.Id,
                                       .Width_mm = 160,
                                       .Height_mm = 120,
                                       .Dots = 96,
                                       .Bar = false,
                                       .Axes = false,
                                       .White = false}));
}

TEST_F(SavePicture, WhatIsNoSizeIsToldAndNothingCanBeSavedThen) {
    OpenFive();
    OpenForm();
    for (const char* width : {"", "x", "9", "2001", "-5", "nan"}) {
        UserSetText(p.TextWidth, width);
        EXPECT_FALSE(p.BtnSave.Enabled) << width;
        EXPECT_NE(p.LabelProblem.Text.find("width"), std::string::npos) << width;
    }
    UserSetText(p.TextWidth, "100");
    EXPECT_TRUE(p.BtnSave.Enabled);
    UserSetText(p.TextResolution, "20");
    EXPECT_NE(p.LabelProblem.Text.find("resolution"), std::string::npos);
    UserSetText(p.TextWidth, "2000");
    UserSetText(p.TextHeight, "2000");
    UserSetText(p.TextResolution, "300");
    EXPECT_NE(p.LabelProblem.Text.find("100 million pixels"), std::string::npos) << p.LabelProblem.Text;
    EXPECT_FALSE(p.BtnCopy.Enabled);
}

TEST_F(SavePicture, IsWrittenInTheFormOfItsEndingAndNoOther) {
    OpenFive();
    OpenForm();
    Save("a.PNG");
    EXPECT_EQ(Contents(PathOf("a.PNG")), "file 0");
    Save("a.svg");
    EXPECT_EQ(Contents(PathOf("a.svg")), "file 1");
    Save("a.pdf");
    EXPECT_EQ(Contents(PathOf("a.pdf")), "file 2");
    Save("a.gif");
    EXPECT_FALSE(std::filesystem::exists(PathOf("a.gif")));
    UserClick(p.BtnCopy);
    EXPECT_EQ(lastCopied, "file 0");
}

TEST_F(SavePicture, SizeAndLookAreThoseOfTheLastTime) {
    OpenFive();
    OpenForm();
    UserSetText(p.TextWidth, "80");
    UserSetValue(p.CheckAxes, 0);
    UserClick(p.BtnClose);
    OpenForm();
    EXPECT_EQ(p.TextWidth.Text, "80");
    EXPECT_EQ(p.TextHeight.Text, "60") << "of the window's shape";
    EXPECT_EQ(p.CheckAxes.Value, 0);
}
