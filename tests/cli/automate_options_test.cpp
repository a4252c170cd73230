// Options and input statistic by names alone, as a script of a cell's commissioning drives them.
#include <cmath>
#include <nlohmann/json.hpp>

#include "cli/automate.h"
#include "support/fixture.h"

using namespace corvinade;

using nlohmann::json;

class OptionsByName : public Program {
protected:
    OptionsByName() {
        StartAutomation({});
        Get("Windows");
    }

    static json Ask(const json& request) {
        bool quit = false;
        return json::parse(AnswerLine(request.dump(), quit));
    }
    static json Get(const std::string& at) { return Ask({{"do", "get"}, {"at", at}}); }
    static json Click(const std::string& at) { return Ask({{"do", "click"}, {"at", at}}); }
    static json Set(const std::string& at, const json& value) {
        return Ask({{"do", "set"}, {"at", at}, {"value", value}});
    }
    static json Record(const char* name) { return Ask({{"do", "record"}, {"name", name}})["value"]; }
    static void Put(const char* name, const json& value) {
        EXPECT_EQ(Ask({{"do", "record"}, {"name", name}, {"value", value}})["ok"], true) << name;
    }
    static std::string TextOf(const std::string& at) { return Get(at)["text"].get<std::string>(); }
    std::string Stored(const std::string& key) const {
        const std::string text = Contents(folder_ + "/settings/Corvinade/Corvinade.ini");
        const std::size_t at = text.find("\r\n" + key + "=");
        if (at == std::string::npos) return "absent";
        const std::size_t value = at + key.size() + 3;
        return text.substr(value, text.find("\r\n", value) - value);
    }
};

TEST_F(OptionsByName, EachClipboardOptionIsChosenAndStored) {
    const std::vector<std::string> options = {"OptionNIX", "OptionALL", "OptionRobot", "OptionBMW",
                                              "OptionKuka"};
    for (std::size_t i = 0; i < options.size(); ++i) {
        EXPECT_EQ(Click("FormMain.MenueExtrasOptions")["ok"], true);
        EXPECT_EQ(Set("FormOptions." + options[i], true)["ok"], true);
        EXPECT_EQ(Get("FormOptions.CheckInverted")["visible"], options[i] == "OptionBMW");
        EXPECT_EQ(Get("FormOptions.CheckAdTCP")["visible"], options[i] == "OptionKuka");
        EXPECT_EQ(Click("FormOptions.BtnOK")["ok"], true);
        EXPECT_EQ(Record("ClipboardValue"), static_cast<int>(i) + 1);
        EXPECT_EQ(Stored("ClipboardValue"), std::to_string(i + 1));
        EXPECT_EQ(Get("Windows")["windows"], json({"FormMain"}));
    }
}

TEST_F(OptionsByName, EachBoxAndNumberIsChangedAndStored) {
    Click("FormMain.MenueExtrasOptions");
    EXPECT_EQ(Set("FormOptions.OptionBMW", true)["ok"], true);
    EXPECT_EQ(Set("FormOptions.CheckInverted", 1)["ok"], true);
    EXPECT_EQ(Set("FormOptions.OptionKuka", true)["ok"], true);
    EXPECT_EQ(Set("FormOptions.CheckAdTCP", 1)["ok"], true);
    EXPECT_EQ(Set("FormOptions.CheckTabelHeading", 1)["ok"], true);
    EXPECT_EQ(Set("FormOptions.TextSx", "0.01")["ok"], true);
    EXPECT_EQ(Set("FormOptions.TextSy", "0.02")["ok"], true);
    EXPECT_EQ(Set("FormOptions.TextSz", "0.03")["ok"], true);
    EXPECT_EQ(Set("FormOptions.TextMonteCarloRuns", "1")["ok"], true);
    EXPECT_EQ(Set("FormOptions.TextGimbalLock", "1.5")["ok"], true);
    EXPECT_EQ(Click("FormOptions.BtnOK")["ok"], true);
    for (const char* flag : {"InvertedBMW", "AdTCP", "TabelHeadMainSheet"}) {
        EXPECT_EQ(Record(flag), -1) << flag;
        EXPECT_EQ(Stored(flag), "True") << flag;
    }
    EXPECT_EQ(Record("SigmaX"), 0.01);
    EXPECT_EQ(Record("SigmaY"), 0.02);
    EXPECT_EQ(Record("SigmaZ"), 0.03);
    EXPECT_EQ(Record("MonteCarloRuns"), 2);
    EXPECT_NEAR(Record("GimbalLockBorder").get<double>(), std::acos(-1.0) / 120, 1e-15);
    EXPECT_EQ(Stored("sigmaX"), "0.01");
    EXPECT_EQ(Stored("sigmaY"), "0.02");
    EXPECT_EQ(Stored("sigmaZ"), "0.03");
    EXPECT_EQ(Stored("MonteCarloRuns"), "2");

    Click("FormMain.MenueExtrasOptions");
    EXPECT_EQ(TextOf("FormOptions.TextMonteCarloRuns"), "2");
    EXPECT_EQ(TextOf("FormOptions.TextGimbalLock"), "1.5000");
    EXPECT_EQ(Get("FormOptions.CheckTabelHeading")["value"], 1);
}

TEST_F(OptionsByName, WhatIsHiddenIsOutOfReach) {
    Click("FormMain.MenueExtrasOptions");
    for (const char* at : {"FormOptions.Option1", "FormOptions.CheckInverted", "FormOptions.CheckAdTCP"})
        EXPECT_EQ(Set(at, 1)["ok"], false) << at;
}

TEST_F(OptionsByName, ATextThatIsNoNumberIsToldInTheReply) {
    Click("FormMain.MenueExtrasOptions");
    Set("FormOptions.OptionNIX", true);
    Set("FormOptions.TextSy", "half");
    const json reply = Click("FormOptions.BtnOK");
    EXPECT_NE(reply["platformError"].get<std::string>().find("half"), std::string::npos) << reply;
    EXPECT_EQ(Record("ClipboardValue"), 2);
    EXPECT_EQ(Stored("sigmaX"), "absent");
    EXPECT_EQ(Click("FormOptions.BtnCancel")["ok"], true);
}

TEST_F(OptionsByName, TheStatisticShowsAnImportAndTheSpansOfItsRobotProgram) {
    Click("FormMain.MenuFileInputFiles");
    Set("FormInputFiles.TextNameMCS", Write("start.txt", "A;0;0;0\nB;100;0;0\nC;0;200;0\nD;5;5;5\n"));
    Set("FormInputFiles.TextNameOCS", Write("target.txt", "A;5;6;7\nB;105;6;7\nC;5;206;7\nE;1;1;1\n"));
    EXPECT_EQ(Click("FormInputFiles.BtnOK")["ok"], true);
    EXPECT_EQ(Click("FormMain.MenüViewInputStatistic")["ok"], true);
    EXPECT_EQ(TextOf("FormInputStatistic.Text3"), "3");
    EXPECT_EQ(TextOf("FormInputStatistic.Text5"), "1");
    EXPECT_EQ(TextOf("FormInputStatistic.TextRangeA"), "not in use");
    EXPECT_EQ(Get("FormInputStatistic.TextRangeA")["enabled"], false);
    EXPECT_EQ(Set("FormInputStatistic.Text3", "9")["ok"], false);
    EXPECT_EQ(Ask({{"do", "close"}, {"at", "FormInputStatistic"}})["ok"], true);

    Put("IsKuka", -1);
    Put("SpanA", std::acos(-1.0));
    Put("SpanB", std::acos(-1.0) / 6);
    Put("SpanC", 0);
    Click("FormMain.MenüViewInputStatistic");
    EXPECT_EQ(TextOf("FormInputStatistic.FrameABCRange"), "ABC Range in degree");
    EXPECT_EQ(TextOf("FormInputStatistic.TextRangeA"), "180.0000");
    EXPECT_EQ(TextOf("FormInputStatistic.TextRangeB"), "30.0000");
    EXPECT_EQ(TextOf("FormInputStatistic.TextRangeC"), "0.0000");
}
