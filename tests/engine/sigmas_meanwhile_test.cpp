// Standard deviations that come while a calculation runs which does not take them.
#include "core/measurement_sigmas.h"
#include "engine/calculation_job.h"

using namespace corvinade;

namespace {

class SigmasMeanwhile : public CalculationJob {};

}  // namespace

TEST_F(SigmasMeanwhile, AreRefusedWhereDistancesAreFittedAndEndNothingElse) {
    AddPairs(8);
    Open();
    UserSetValue(TrafoWindow.CheckRDist, 1);
    bool given = false;
    Headless.OnYield = [&given] {
        PutSigmas({.Target = SideAccuracy{}}, Job);
        given = true;
    };
    Calculate();
    Headless.OnYield = nullptr;
    ASSERT_TRUE(given);
    ASSERT_FALSE(Messages().empty());
    EXPECT_NE(LastMessage().find("do not go with the distance R_Dist"), std::string::npos) << LastMessage();
}
