// `corvinade-cli fit --within`: pass or fail in every output, and nothing by the status.
#include <cmath>

#include "cli/fit_command.h"

namespace {

class FitWithin : public FitCommand {
protected:
    // The coordinates in use that deviate by more, by the residuals alone.
    static int Beyond(const json& points, double tolerance) {
        int beyond = 0;
        for (const json& point : points)
            for (std::size_t k = 0; k < 3; ++k)
                if (point["used"][k] && std::fabs(point["residual_mm"][k].get<double>()) > tolerance)
                    ++beyond;
        return beyond;
    }
    const std::vector<std::string> fit_ = {kMeasured, kNominal, "--leave-out", "F09"};
    std::vector<std::string> With(const std::vector<std::string>& more) const {
        std::vector<std::string> all = fit_;
        all.insert(all.end(), more.begin(), more.end());
        return all;
    }
};

}  // namespace

TEST_F(FitWithin, TheWordAndTheMarksOfEachPointStandInTheJson) {
    const json plain = FitJson(fit_);
    EXPECT_FALSE(plain.contains("tolerance"));
    EXPECT_FALSE(plain["points"][0].contains("beyond"));
    const int beyond = Beyond(plain["points"], 0.05);
    ASSERT_GT(beyond, 0);
    const json told = FitJson(With({"--within", "0.05"}));
    EXPECT_EQ(told["tolerance"]["verdict"], "fail");
    EXPECT_EQ(told["tolerance"]["tolerance_mm"], 0.05);
    EXPECT_EQ(told["tolerance"]["beyond"], beyond);
    EXPECT_EQ(told["tolerance"]["coordinates"], plain["counts"]["observations"]);
    for (const json& point : told["points"])
        for (std::size_t k = 0; k < 3; ++k)
            EXPECT_EQ(point["beyond"][k].get<bool>(),
                      point["used"][k] && std::fabs(point["residual_mm"][k].get<double>()) > 0.05)
                << point["name"];
    EXPECT_EQ(FitJson(With({"--within", "2"}))["tolerance"]["verdict"], "pass")
        << "F09 is 3 mm off, not in use";
}

TEST_F(FitWithin, TableAndPageSayItAndTheStatusIsNone) {
    const Outcome fail = Fit(With({"--within", "0.05"})), pass = Fit(With({"--within", "2"}));
    EXPECT_EQ(fail.Status, 0) << fail.Err;
    EXPECT_NE(fail.Out.find("0.05 millimeter: fail, "), std::string::npos) << fail.Out;
    EXPECT_NE(fail.Out.find("beyond in "), std::string::npos);
    EXPECT_NE(pass.Out.find("2 millimeter: pass, 0 of "), std::string::npos) << pass.Out;
    EXPECT_EQ(pass.Out.find("beyond in "), std::string::npos);
    EXPECT_EQ(Fit(With({"--within", "0.05", "--limit", "2"})).Status, 0);
    EXPECT_EQ(Fit(With({"--within", "2", "--limit", "0.05"})).Status, 5);
    const std::string page = PathOf("a.html");
    ASSERT_EQ(Fit(With({"--within", "0.05", "--report", page})).Status, 0);
    EXPECT_NE(Contents(page).find("0.05 millimeter: fail"), std::string::npos);
    EXPECT_NE(Contents(page).find("<td class=\"beyond\">"), std::string::npos);
}

TEST_F(FitWithin, SaveKeepsItAndAJobIsHeldAgainstItsOwn) {
    const std::string job = PathOf("a.cvn");
    ASSERT_EQ(Fit(With({"--within", "0.05", "--save", job})).Status, 0);
    const json own = FitJson({"--job", job});
    EXPECT_EQ(own["tolerance"]["tolerance_mm"], 0.05);
    EXPECT_EQ(own["tolerance"]["verdict"], "fail");
    EXPECT_EQ(FitJson({"--job", job, "--within", "2"})["tolerance"]["verdict"], "pass");
}

TEST_F(FitWithin, ALengthThatIsNoneIsRefused) {
    for (const char* text : {"0", "-1", "much", "nan"}) {
        const Outcome outcome = Fit(With({"--within", text}));
        EXPECT_EQ(outcome.Status, 2) << text;
    }
}
