// A network by the names of controls: from the input dialog to the job that is fitted.
#include "cli/automation.h"

using namespace corvinade;

namespace {

class BundleByName : public Automated {
protected:
    BundleByName() { StartAutomation({}); }
    static json Click(const std::string& at) { return Good({{"do", "click"}, {"at", at}}); }
    static json Get(const std::string& at) { return Good({{"do", "get"}, {"at", at}}); }
    static json Record(const std::string& name) { return Good({{"do", "record"}, {"name", name}})["value"]; }
    static json ReadHall() {
        Click("FormMain.MenuFileInputFiles");
        Good({{"do", "answer"},
              {"kind", "open"},
              {"value", std::string(CORVINADE_SOURCE_DIR) + "/examples/hall_network.txt"}});
        Click("FormInputFiles.Command2");
        return Click("FormInputFiles.BtnOK");
    }
};

}  // namespace

TEST_F(BundleByName, ANetworkIsReadAdjustedAndFitted) {
    EXPECT_EQ(Get("FormMain.MenuTransformationBundle")["enabled"], false);
    const json read = ReadHall();
    EXPECT_NE(read.dump().find("Found 6 Stations and 14 Object Points and 84 Distance Observations"),
              std::string::npos)
        << read;
    EXPECT_EQ(Record("nStations"), 6);
    EXPECT_EQ(Record("StationName")[2], "TH2");
    EXPECT_EQ(Record("DistancePair.2")[84], "T14");
    EXPECT_EQ(Record("DistancePair").size(), 85u);
    EXPECT_EQ(Record("DistancePair")[0], (json{"", "", ""}));
    EXPECT_EQ(Record("DistancePair")[84], (json{"", "TH6", "T14"}));
    EXPECT_EQ(Get("FormMain.MenuTransformationBundle")["enabled"], true);
    EXPECT_EQ(Get("FormBündel.TextReduce")["text"], "100");
    EXPECT_EQ(Get("FormBündel.CommandSTOP")["enabled"], false);
    Click("FormBündel.BtnCalculate");
    EXPECT_EQ(Record("nIdent"), 20);
    EXPECT_EQ(Record("PathMCS"), folder_ + "/settings/Corvinade/BündelMCS.txt");
    EXPECT_EQ(Record("JobDirty"), -1);
    Click("FormMain.MenuTransformationCalculation");
    Click("FormTrafoBerechnung.BtnCalculate");
    EXPECT_EQ(Record("TrafoValid"), -1);
    EXPECT_LT(Record("SigmaXYZ"), 12);
}

TEST_F(BundleByName, ThePairsOfTheDistancesCanBeWritten) {
    const json rows = {{"", "", ""}, {"", "S1", "P1"}, {"", "S2", "P1"}};
    Good({{"do", "record"}, {"name", "DistancePair"}, {"value", rows}});
    EXPECT_EQ(Record("DistancePair"), rows);
    EXPECT_EQ(Record("DistancePair.1"), (json{"", "S1", "S2"}));
    EXPECT_EQ(Record("DistancePair.2"), (json{"", "P1", "P1"}));
    for (const json& wrong : {json("x"), json{{"", "a"}}, json{{"", "a", 1}}, json{"a"}})
        EXPECT_EQ(Ask({{"do", "record"}, {"name", "DistancePair"}, {"value", wrong}})["ok"], false) << wrong;
    EXPECT_EQ(Record("DistancePair"), rows);
}

TEST_F(BundleByName, CountsThatTheListsDoNotHoldAreRefusedByTheCalculation) {
    ReadHall();
    Click("FormMain.MenuTransformationBundle");
    for (const auto& [count, stand] :
         {std::pair{"nDistances", 84}, {"nStations", 6}, {"nObjectPoints", 14}}) {
        Good({{"do", "record"}, {"name", count}, {"value", stand + 1}});
        const json reply = Ask({{"do", "click"}, {"at", "FormBündel.BtnCalculate"}});
        EXPECT_NE(reply.dump().find("do not fit its lists"), std::string::npos) << count << reply;
        Good({{"do", "record"}, {"name", count}, {"value", stand}});
    }
    Click("FormBündel.BtnCalculate");
    EXPECT_EQ(Record("nIdent"), 20);
}

TEST_F(BundleByName, TheCheckForGimbalLockIsARecord) {
    EXPECT_EQ(Record("CheckForGimbalLock"), 0);
    Good({{"do", "record"}, {"name", "CheckForGimbalLock"}, {"value", -1}});
    EXPECT_EQ(Record("CheckForGimbalLock"), -1);
}
