// `corvinade-cli fit --inverse`: the way back, in the table and as JSON.
#include <cmath>
#include <numbers>

#include "cli/fit_command.h"

using namespace corvinade;

namespace {

using Matrix4 = std::array<std::array<double, 4>, 4>;

class FitInverse : public FitCommand {
protected:
    // The start points carried by known formulas: scaled, turned about z, shifted.
    std::string Target(const std::string& name, double degrees, double sx, double sy, double sz) const {
        const double c = std::cos(degrees / 180 * std::numbers::pi),
                     s = std::sin(degrees / 180 * std::numbers::pi);
        std::string text;
        const double points[5][3] = {{0, 0, 0}, {1000, 0, 0}, {0, 2000, 0}, {0, 0, 3000}, {700, 800, 900}};
        for (int i = 0; i < 5; ++i) {
            const double x = sx * points[i][0], y = sy * points[i][1], z = sz * points[i][2];
            char line[200];
            // A frame turned by +c: the coordinates turn the other way.
            std::snprintf(line, sizeof line, "%c;%.12f;%.12f;%.12f\n", 'A' + i, 5 + c * x + s * y,
                          6 - s * x + c * y, 7 + z);
            text += line;
        }
        return Write(name, text);
    }
};

Matrix4 MatrixOf(const json& rows) {
    Matrix4 m{};
    for (std::size_t r = 0; r < 4; ++r)
        for (std::size_t c = 0; c < 4; ++c) m[r][c] = rows[r][c].get<double>();
    return m;
}

}  // namespace

TEST_F(FitInverse, MatrixTimesThatOfTheTransformationIsTheIdentity) {
    for (const char* parameters : {"6", "7", "9", "12"}) {
        SCOPED_TRACE(parameters);
        const json fit = FitJson({kMeasured, kNominal, "--parameters", parameters, "--inverse"});
        const Matrix4 there = MatrixOf(fit["transformation"]["matrix"]);
        const Matrix4 back = MatrixOf(fit["inverse"]["matrix"]);
        for (std::size_t r = 0; r < 4; ++r)
            for (std::size_t c = 0; c < 4; ++c) {
                double sum = 0;
                for (std::size_t k = 0; k < 4; ++k) sum += back[r][k] * there[k][c];
                EXPECT_NEAR(sum, r == c ? 1 : 0, c == 3 ? 1e-6 : 1e-10) << r << ", " << c;
            }
        for (std::size_t r = 0; r < 3; ++r) EXPECT_EQ(fit["inverse"]["translation_mm"][r], back[r][3]);
    }
}

TEST_F(FitInverse, ARigidFitHasTheSolutionThatTheFilesSwappedGive) {
    const json fit = FitJson({start_, Target("turned.txt", 30, 1, 1, 1), "--inverse"});
    const json& solutions = fit["inverse"]["solutions"];
    ASSERT_EQ(solutions.size(), 2u);
    const json swapped = FitJson({PathOf("turned.txt"), start_});
    bool found = false;
    for (const json& solution : solutions) {
        const json& rotation = solution["rotation"];
        double worst = 0;
        for (const char* angle : {"a_rad", "b_rad", "c_rad"})
            worst = std::max(worst, std::fabs(rotation[angle].get<double>() -
                                              swapped["transformation"]["rotation"][angle].get<double>()));
        found |= worst < 1e-8;
        EXPECT_EQ(solution["scales"], json({1.0, 1.0, 1.0}));
        EXPECT_EQ(solution["shear"], json({{"xy_rad", 0.0}, {"azimuth_rad", 0.0}, {"ztoxy_rad", 0.0}}));
    }
    EXPECT_TRUE(found);
    for (std::size_t r = 0; r < 3; ++r)
        EXPECT_NEAR(fit["inverse"]["translation_mm"][r].get<double>(),
                    swapped["transformation"]["translation_mm"][r].get<double>(), 1e-6);
}

TEST_F(FitInverse, TheTableShowsTranslationAndSolutions) {
    const Outcome outcome =
        Fit({start_, Target("turned.txt", 90.5, 0.5, 0.5, 0.5), "--parameters", "7", "--inverse"});
    EXPECT_EQ(outcome.Status, 0) << outcome.Err;
    EXPECT_EQ(outcome.Err, "");
    const std::size_t begin = outcome.Out.find("\nInverse ");
    ASSERT_NE(begin, std::string::npos) << outcome.Out;
    const std::string part = outcome.Out.substr(begin, outcome.Out.find("\nQuality ") - begin);
    // -W T by hand: twice the shift, turned back about z.
    const double c = std::cos(90.5 / 180 * std::numbers::pi), s = std::sin(90.5 / 180 * std::numbers::pi);
    char expected[80];
    std::snprintf(expected, sizeof expected, "%.3f", -2 * (5 * c - 6 * s));
    EXPECT_NE(part.find(expected), std::string::npos) << part;
    EXPECT_NE(part.find("-14.000  millimeter"), std::string::npos) << part;
    EXPECT_NE(part.find("solution 1"), std::string::npos);
    EXPECT_NE(part.find("solution 2"), std::string::npos);
    EXPECT_EQ(part.find("solution 3"), std::string::npos);
    EXPECT_NE(part.find("-90.5000"), std::string::npos) << part;
    EXPECT_NE(part.find("2.000000"), std::string::npos) << part;
    EXPECT_EQ(part.find("no solution"), std::string::npos);
}

TEST_F(FitInverse, WithoutASolutionTheTableSaysSoAndTheStatusStays) {
    const std::string target = Target("stretched.txt", 30, 2, 1, 1);
    const Outcome outcome = Fit({start_, target, "--parameters", "9", "--inverse"});
    EXPECT_EQ(outcome.Status, 0);
    EXPECT_NE(outcome.Out.find("no solution"), std::string::npos) << outcome.Out;
    EXPECT_EQ(outcome.Err,
              "No inverted Solutions found. Notice: A transformation with any scale in a SEPPARATE Axis does "
              "not have an inverted solution!\n");
    const json fit = FitJson({start_, target, "--parameters", "9", "--inverse"});
    EXPECT_EQ(fit["inverse"]["solutions"], json::array());
    EXPECT_NEAR(fit["inverse"]["translation_mm"][2].get<double>(), -7, 1e-6);
}

TEST_F(FitInverse, IsLeftOutWhereNobodyAskedForIt) {
    EXPECT_EQ(Fit({start_, target_}).Out.find("\nInverse "), std::string::npos);
    EXPECT_FALSE(FitJson({start_, target_}).contains("inverse"));
}

TEST_F(FitInverse, DoesNotGoWithTheTableOfPoints) {
    EXPECT_EQ(Fit({start_, target_, "--inverse", "--csv"}).Status, 2);
}
