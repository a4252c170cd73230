// The switches of all graphics windows by names: the dialog, its effect in two windows, the font.
#include "cli/screen_automation.h"

using namespace corvinade;

using GraphicsOptionsByNames = ScreenByNames;

TEST_F(GraphicsOptionsByNames, ASwitchIsTurnedForAllWindows) {
    Start();
    EXPECT_EQ(Get("FormMain.MenüGlobalGeneralGraphicsSettings")["enabled"], false);
    EXPECT_NE(ErrorOf({{"do", "click"}, {"at", "FormMain.MenüGlobalGeneralGraphicsSettings"}}), "");
    Click("FormMain.MenueGraphics");
    Click("FormMain.MenueGraphics");
    Click("FormMain.MenüGlobalGeneralGraphicsSettings");
    EXPECT_EQ(Get("FormGraphicsOptions")["loaded"], true);
    EXPECT_EQ(Get("FormGraphicsOptions.CheckPlotMCSIdent")["value"], 1);
    EXPECT_EQ(Get("FormGraphicsOptions.CheckPlotOCSIdent")["value"], 0);
    EXPECT_EQ(Get("FormGraphicsOptions.OptionVecDeviation")["value"], 1);

    const auto names = [](const std::string& at) {
        std::size_t count = 0;
        const json labels = Get(at)["labels"];
        for (const json& label : labels) {
            const auto text = label["text"].get<std::string>();
            count += text == "A" || text == "B" || text == "C" || text == "D" ? 1U : 0U;
        }
        return count;
    };
    EXPECT_EQ(names("Screen#1"), 0U);
    Set("FormGraphicsOptions.CheckShowPointNames", 1);
    EXPECT_EQ(names("Screen#1"), 0U);
    Click("FormGraphicsOptions.BtnApply");
    EXPECT_EQ(names("Screen#1"), 4U);
    EXPECT_EQ(names("Screen#2"), 4U);

    Set("FormGraphicsOptions.CheckAutoUpdate", 1);
    const auto paints = [](const std::string& at) { return Get(at + ".ScreenPixel")["paints"].get<int>(); };
    const int first = paints("Screen#1"), second = paints("Screen#2");
    Set("FormGraphicsOptions.CheckShowPointNames", 0);
    EXPECT_EQ(names("Screen#1"), 0U);
    EXPECT_EQ(paints("Screen#1"), first + 1);
    EXPECT_EQ(paints("Screen#2"), second + 1);
    Click("FormGraphicsOptions.BtnOK");
    EXPECT_EQ(Get("FormGraphicsOptions")["loaded"], false);
}

TEST_F(GraphicsOptionsByNames, TheDirectionTurnsTheVectorsRound) {
    StartWithScreen();
    Click("FormMain.MenüAnsichtVektorenVektorModeActive");
    const auto vector = [] {
        return std::pair(Record("VecPixelX")[2].get<double>(), Record("VecPixelY")[2].get<double>());
    };
    const auto before = vector();  // of B, 0.4 mm along y
    EXPECT_GT(std::abs(before.second), 1);
    Click("FormMain.MenüGlobalGeneralGraphicsSettings");
    Set("FormGraphicsOptions.OptionVecCorrection", 1);
    EXPECT_EQ(Get("FormGraphicsOptions.OptionVecDeviation")["value"], 0);
    EXPECT_EQ(vector(), before);
    Click("FormGraphicsOptions.BtnApply");
    EXPECT_EQ(vector(), std::pair(-before.first, -before.second));
    Set("FormGraphicsOptions.OptionVecDeviation", 1);
    Click("FormGraphicsOptions.BtnCancel");
    EXPECT_EQ(vector(), std::pair(-before.first, -before.second));
    Click("FormMain.MenüGlobalGeneralGraphicsSettings");
    EXPECT_EQ(Get("FormGraphicsOptions.OptionVecCorrection")["value"], 1);
}

TEST_F(GraphicsOptionsByNames, TheFontOfTheLabelsIsAnAnswer) {
    StartWithScreen();
    Click("FormMain.MenüGlobalGeneralGraphicsSettings");
    const json asDelivered = {{"name", ""}, {"size", 9.0}, {"bold", false}, {"italic", false}};
    EXPECT_EQ(Get("Screen#1")["labelFont"], asDelivered);
    const json chosen = {{"name", "DejaVu Serif"}, {"size", 14.5}, {"bold", true}, {"italic", false}};
    Answer("font", chosen);
    const json reply = Click("FormGraphicsOptions.BtnLabelFont");
    ASSERT_EQ(reply["dialogs"].size(), 1U);
    EXPECT_EQ(reply["dialogs"][0]["kind"], "font");
    EXPECT_EQ(reply["dialogs"][0]["default"], asDelivered);
    EXPECT_EQ(reply["dialogs"][0]["answer"], chosen);
    EXPECT_EQ(Get("Screen#1")["labelFont"], chosen);
    Answer("font", nullptr);
    EXPECT_EQ(Click("FormGraphicsOptions.BtnLabelFont")["dialogs"][0]["answer"], nullptr);
    EXPECT_EQ(Get("Screen#1")["labelFont"], chosen);
    EXPECT_EQ(Click("FormGraphicsOptions.BtnLabelFont")["unanswered"], true);
}

TEST_F(GraphicsOptionsByNames, AnAnswerThatIsNoFontIsRefused) {
    Start();
    for (const json& value :
         {json("Arial"), json({{"size", 0}}), json({{"size", 201}}), json({{"size", "9"}}),
          json({{"bold", 1}}), json({{"name", 1}}), json({{"colour", 1}}), json::array()})
        EXPECT_NE(ErrorOf({{"do", "answer"}, {"kind", "font"}, {"value", value}}), "") << value.dump();
}
