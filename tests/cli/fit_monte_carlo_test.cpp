// `corvinade-cli fit --monte-carlo`: what it tells, and what it refuses.
#include <cmath>

#include "cli/fit_command.h"

using namespace corvinade;

using FitMonteCarlo = FitCommand;

namespace {

int Count(const std::string& text, const std::string& part) {
    int count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
    return count;
}

// The corners of a cube about the origin, 2 m wide.
std::string Cube() {
    std::string text;
    for (int i = 0; i < 8; ++i)
        text += "P" + std::to_string(i) + (i % 2 == 0 ? ";-1000" : ";1000") +
                (i / 2 % 2 == 0 ? ";-1000" : ";1000") + (i / 4 == 0 ? ";-1000" : ";1000") + "\n";
    return text;
}

}  // namespace

TEST_F(FitMonteCarlo, TheSpreadOfACubeIsThatOfTheClosedForm) {
    const std::string start = Write("s.txt", Cube()), target = Write("t.txt", Cube());
    const json fit = FitJson({start, target, "--monte-carlo", "3000", "--sigma", "0.1,0.2,0.3"});
    const json& runs = fit["monteCarlo"];
    EXPECT_EQ(runs["runs"], 3000);
    EXPECT_EQ(runs["seed"], 5489);
    EXPECT_EQ(runs["noise_mm"], (json{0.1, 0.2, 0.3}));
    ASSERT_EQ(runs["parameters"].size(), 6u);
    const double bound = 5 / std::sqrt(2.0 * 2999);
    // A rotation takes the noise across its axis: two coordinates of each corner.
    const double rotation[3] = {std::hypot(0.2, 0.3), std::hypot(0.1, 0.3), std::hypot(0.1, 0.2)};
    for (std::size_t k = 0; k < 3; ++k) {
        const double shift = 0.1 * static_cast<double>(k + 1) / std::sqrt(8.0);
        EXPECT_NEAR(runs["parameters"][k]["spread"].get<double>(), shift, bound * shift);
        EXPECT_NEAR(runs["parameters"][k]["mean"].get<double>(), 0, 5 * shift / std::sqrt(3000.0));
        const double turn = rotation[k] * std::sqrt(8.0) / 16000;
        EXPECT_NEAR(runs["parameters"][k + 3]["spread"].get<double>(), turn, bound * turn);
        EXPECT_EQ(runs["parameters"][k + 3]["unit"], "rad");
    }
    EXPECT_EQ(runs["parameters"][5]["name"], "rotz");
    EXPECT_GT(runs["sigmaXYZ"]["mean_mm"].get<double>(), 0.1);
    EXPECT_NEAR(fit["quality"]["sxyz_mm"].get<double>(), 0, 1e-9) << "the result is that without noise";
}

TEST_F(FitMonteCarlo, OneSigmaServesAllAxesAndEqualSeedsGiveEqualResults) {
    const auto runs = [this](const std::vector<std::string>& more) {
        std::vector<std::string> arguments = {kMeasured, kNominal, "--monte-carlo", "50", "--sigma"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return FitJson(arguments)["monteCarlo"];
    };
    const json usual = runs({"0.05"});
    EXPECT_EQ(usual["noise_mm"], (json{0.05, 0.05, 0.05}));
    EXPECT_EQ(runs({"0.05,0.05,0.05"}), usual);
    const json seven = runs({"0.05", "--seed", "7"});
    EXPECT_EQ(seven["seed"], 7);
    EXPECT_NE(seven["parameters"], usual["parameters"]);
    EXPECT_EQ(runs({"0.05", "--seed", "7"}), seven);
    EXPECT_EQ(runs({"0.05", "--seed", "4294967295"})["seed"], 4294967295u);
}

TEST_F(FitMonteCarlo, TheResultItselfStaysThatOfThePlainFit) {
    json with = FitJson({kMeasured, kNominal, "--monte-carlo", "20", "--sigma", "1"});
    with.erase("monteCarlo");
    EXPECT_EQ(with, FitJson({kMeasured, kNominal}));
}

TEST_F(FitMonteCarlo, TheTableShowsTheSpreadBesideSigma) {
    const Outcome outcome =
        Fit({kMeasured, kNominal, "--monte-carlo", "200", "--sigma", "0.05,0.05,0.1", "--hold", "rotz=0"});
    EXPECT_EQ(outcome.Status, 0) << outcome.Err;
    const std::size_t begin = outcome.Out.find("Monte Carlo");
    const std::size_t end = outcome.Out.find("(200 runs with noise of 0.05, 0.05, 0.1 mm in x, y, z");
    ASSERT_NE(begin, std::string::npos) << outcome.Out;
    ASSERT_NE(end, std::string::npos) << outcome.Out;
    const std::string section = outcome.Out.substr(begin, end - begin);
    for (const char* part : {"spread", "sigma", "Tra x", "Rot y", "mean error"})
        EXPECT_NE(section.find(part), std::string::npos) << part;
    EXPECT_EQ(section.find("Rot z"), std::string::npos) << "what is held has no spread";
    EXPECT_EQ(Fit({kMeasured, kNominal}).Out.find("Monte Carlo"), std::string::npos);
}

TEST_F(FitMonteCarlo, ThePageHasAPictureOfEachParameter) {
    const std::string path = PathOf("out.html");
    const Outcome outcome =
        Fit({kMeasured, kNominal, "--monte-carlo", "500", "--sigma", "0.05", "--report", path});
    EXPECT_EQ(outcome.Status, 0) << outcome.Err;
    const std::string page = Contents(path);
    EXPECT_EQ(Count(page, "<svg"), 5 + 7);
    EXPECT_EQ(Count(page, "<svg"), Count(page, "</svg>"));
    for (const char* part :
         {"500 runs with noise of 0.05, 0.05, 0.05 mm", "Tra x: spread ", "Rot z: spread "})
        EXPECT_NE(page.find(part), std::string::npos) << part;
    EXPECT_EQ(page.find("nan"), std::string::npos);
}

TEST_F(FitMonteCarlo, WithoutNoiseThePicturesStandAllTheSame) {
    const std::string path = PathOf("out.html");
    const Outcome outcome =
        Fit({start_, target_, "--monte-carlo", "10", "--sigma", "0", "--report", path, "--json"});
    EXPECT_EQ(outcome.Status, 0) << outcome.Err;
    EXPECT_EQ(Contents(path).find("nan"), std::string::npos);
    const json result = json::parse(outcome.Out);
    for (const json& parameter : result["monteCarlo"]["parameters"])
        EXPECT_NEAR(parameter["spread"].get<double>(), 0, 1e-9);
}

TEST_F(FitMonteCarlo, IsRefusedWhereItCannotBeMeant) {
    const std::vector<std::vector<std::string>> wrong = {
        {"--monte-carlo", "100"},
        {"--sigma", "0.1"},
        {"--seed", "3"},
        {"--monte-carlo", "1", "--sigma", "0.1"},
        {"--monte-carlo", "5000001", "--sigma", "0.1"},
        {"--monte-carlo", "99999999999", "--sigma", "0.1"},
        {"--monte-carlo", "ten", "--sigma", "0.1"},
        {"--monte-carlo", "100", "--sigma", "0.1,0.2"},
        {"--monte-carlo", "100", "--sigma", "0.1,0.2,0.3,0.4"},
        {"--monte-carlo", "100", "--sigma", "0.1,,0.3"},
        {"--monte-carlo", "100", "--sigma", "-0.1"},
        {"--monte-carlo", "100", "--sigma", "nan"},
        {"--monte-carlo", "100", "--sigma", "1e7"},
        {"--monte-carlo", "100", "--sigma", ""},
        {"--monte-carlo", "100", "--sigma", "0.1", "--seed", "-1"},
        {"--monte-carlo", "100", "--sigma", "0.1", "--seed", "4294967296"},
        {"--monte-carlo", "100", "--sigma", "0.1", "--csv"},
        {"--monte-carlo", "100", "--sigma", "0.1", "--norm", "l1"},
        {"--monte-carlo", "100", "--sigma", "0.1", "--norm", "loo"},
    };
    for (const auto& more : wrong) {
        std::vector<std::string> arguments = {kMeasured, kNominal};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const Outcome outcome = Fit(arguments);
        EXPECT_EQ(outcome.Status, 2) << testing::PrintToString(more);
        EXPECT_FALSE(outcome.Err.empty());
        EXPECT_TRUE(outcome.Out.empty());
    }
}
