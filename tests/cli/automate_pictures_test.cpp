// Pictures at a size of their own, distances and undo of flags, by names.
#include <filesystem>

#include "cli/screen_automation.h"

using namespace corvinade;

namespace {

using PicturesByNames = ScreenByNames;

// Of a PNG file: its header has both sides behind 16 bytes, the highest byte first.
std::pair<int, int> SizeOfPng(const std::string& bytes) {
    const auto number = [&bytes](std::size_t at) {
        int value = 0;
        for (std::size_t k = 0; k < 4; ++k)
            value = value * 256 + static_cast<unsigned char>(bytes.at(at + k));
        return value;
    };
    return {number(16), number(20)};
}

}  // namespace

TEST_F(PicturesByNames, APictureOfItsOwnSizeIsWrittenByItsEnding) {
    StartWithScreen();
    Click("FormMain.MenuEditPicture");
    EXPECT_EQ(Get("FormPicture.ComboSource")["items"], json({"Screen - DEFAULT"}));
    Set("FormPicture.TextWidth", "50.8");
    Set("FormPicture.TextHeight", "25.4");
    Set("FormPicture.TextResolution", "200");
    Answer("save", PathOf("plate.png"));
    Click("FormPicture.BtnSave");
    EXPECT_EQ(SizeOfPng(Contents(PathOf("plate.png"))), std::pair(400, 200));
    Answer("save", PathOf("plate.svg"));
    Click("FormPicture.BtnSave");
    EXPECT_NE(Contents(PathOf("plate.svg")).find("width=\"192\""), std::string::npos);
    Answer("save", PathOf("plate.pdf"));
    Click("FormPicture.BtnSave");
    EXPECT_TRUE(Contents(PathOf("plate.pdf")).starts_with("%PDF-"));
    Click("FormPicture.BtnCopy");
    const json picture = Good({{"do", "clipboard"}})["picture"];
    EXPECT_EQ(picture["width"], 400);
    EXPECT_EQ(picture["height"], 200);
    Set("FormPicture.TextWidth", "wide");
    EXPECT_EQ(Get("FormPicture.BtnSave")["enabled"], false);
    EXPECT_NE(Get("FormPicture.LabelProblem")["text"].get<std::string>().find("width"), std::string::npos);
}

TEST_F(PicturesByNames, TheDistanceOfTwoPointsIsTold) {
    StartWithScreen();
    Click("FormMain.MenuGraphicsDistance");
    for (const std::size_t row : {1U, 4U}) {
        const Pixel place = PixelOf(row);
        Mouse("click", place.X, place.Y);
    }
    // Before a calculation: from (0, 0, 0.3) to (100, 50, 0), the root of 12500.09.
    const std::string text = Get("FormMain.StatusBar.1")["text"];
    EXPECT_NE(text.find("A to D: 111.804 millimeter"), std::string::npos) << text;
}

TEST_F(PicturesByNames, ShiftAndTheRightButtonOpenTheMenuOfThePicture) {
    StartWithScreen();
    EXPECT_EQ(Get("FormMain.MenuPicture")["value"], 0);
    Mouse("click", 20, 20, {{"button", "right"}, {"shift", true}});
    EXPECT_EQ(Get("FormMain.MenuPicture")["value"], 1);
}

TEST_F(PicturesByNames, AFieldOfTheResultSaysWhatItIs) {
    Start();
    Click("FormMain.MenuTransformationCalculation");
    EXPECT_TRUE(Get("FormTrafoBerechnung.TextS0")["whatIs"].get<std::string>().starts_with("s0,"));
    EXPECT_FALSE(Get("FormTrafoBerechnung.BtnCalculate").contains("whatIs"));
}

TEST_F(PicturesByNames, FlagsAndDirectionAreUndoneByTheEntry) {
    StartWithScreen();
    Click("FormMain.MenüGlobalFlagsMode");
    const Pixel place = PixelOf(1);
    Mouse("click", place.X, place.Y);
    EXPECT_EQ(Number("FlagCount"), 1);
    EXPECT_EQ(Get("FormMain.MenuEditUndo")["text"], "&Undo Flags");
    Click("FormMain.MenuEditUndo");
    EXPECT_EQ(Number("FlagCount"), 0);
    Click("FormMain.MenuEditRedo");
    EXPECT_EQ(Number("FlagCount"), 1);
    Click("FormMain.MenuTransformationCalculation");
    Click("FormTrafoBerechnung.BtnSwitchMcsOcs");
    EXPECT_EQ(Get("FormMain.MenuEditUndo")["text"], "&Undo Direction");
    EXPECT_NE(Record("DirectionMCStoOCS"), -1);
    Click("FormMain.MenuEditUndo");
    EXPECT_EQ(Record("DirectionMCStoOCS"), -1);
    EXPECT_EQ(Get("FormMain.MenuEditUndo")["text"], "&Undo Flags");
}
