// Records whose type takes more than they do.
#include "cli/automation.h"
#include "core/job.h"

using namespace corvinade;

class RecordBounds : public Automated {
protected:
    static std::string ErrorOfSetting(const std::string& name, const json& value) {
        const json reply = Ask({{"do", "record"}, {"name", name}, {"value", value}});
        return reply["ok"] == true ? "" : reply["error"].get<std::string>();
    }
};

TEST_F(RecordBounds, ANumberOfSavedViewsIsOneThatAJobCanHave) {
    Job.nSavedViews = 2;
    for (const int number : {-5, -1, 51, 32767})
        EXPECT_EQ(ErrorOfSetting("nSavedViews", number), "nSavedViews: a number from 0 to 50 is expected");
    EXPECT_EQ(Job.nSavedViews, 2);
    EXPECT_EQ(ErrorOfSetting("nSavedViews", 50), "");
    EXPECT_EQ(Job.nSavedViews, 50);
}

TEST_F(RecordBounds, AUnitIsOneOfTheLists) {
    Job.LengthUnitName = "inch";
    EXPECT_EQ(ErrorOfSetting("LengthUnitName", "furlong"), "LengthUnitName: there is no such unit");
    EXPECT_EQ(Job.LengthUnitName, "inch");
    EXPECT_EQ(ErrorOfSetting("AngleUnitName", "mrad"), "");
    EXPECT_EQ(Job.AngleUnitName, "mrad");
}
