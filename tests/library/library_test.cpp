// The library as a user of its headers has it, linked as the shared library.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <nlohmann/json.hpp>
#include <random>
#include <sstream>
#include <thread>
#if defined(__GLIBC__)
#include <malloc.h>
#endif

#include "corvinade/corvinade.h"
#include "corvinade/fit.h"

using namespace corvinade;
using nlohmann::json;

namespace {

// A cell of marks and where the chain takes them, with errors of a tracker.
struct Cloud {
    std::vector<double> Start, Target;

    Cloud(const Chain& truth, int count, double noise, unsigned seed) {
        std::mt19937_64 random(seed);
        std::uniform_real_distribution<double> place(-2000, 2000);
        std::normal_distribution<double> error(0, 1);
        for (int i = 0; i < 3 * count; ++i) Start.push_back(place(random));
        Target.resize(Start.size());
        Apply(MatrixOf(truth), Start, Target);
        for (double& coordinate : Target) coordinate += noise * error(random);
    }
};

const Chain kTruth{
    .Translation = {1500, -300, 720}, .Rotation = {0.3, -0.7, 2.1}, .Scale = {1.002, 1.002, 1.002}};

std::string Written(const char* name, const std::vector<double>& rows) {
    const std::string path = testing::TempDir() + name +
                             std::to_string(::testing::UnitTest::GetInstance()->random_seed()) +
                             testing::UnitTest::GetInstance()->current_test_info()->name();
    std::ofstream file(path);
    file << "name;x;y;z\n";
    char line[200];
    for (std::size_t i = 0; i < rows.size(); i += 3) {
        std::snprintf(line, sizeof line, "P%02zu;%.17g;%.17g;%.17g\n", i / 3, rows[i], rows[i + 1],
                      rows[i + 2]);
        file << line;
    }
    return path;
}

json ByCommandLine(const Cloud& cloud, const std::string& options) {
    const std::string start = Written("start", cloud.Start), target = Written("target", cloud.Target);
    const std::string command =
        std::string(CORVINADE_CLI) + " fit " + start + " " + target + " --json " + options + " 2>/dev/null";
    std::string text;
    FILE* pipe = popen(command.c_str(), "r");
    char part[4096];
    while (const std::size_t size = std::fread(part, 1, sizeof part, pipe)) text.append(part, size);
    pclose(pipe);
    std::remove(start.c_str());
    std::remove(target.c_str());
    const json result = json::parse(text, nullptr, false);
    EXPECT_FALSE(result.is_discarded()) << command << "\n" << text;
    return result;
}

std::uint64_t BitsOf(double value) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

void ExpectSameBits(const FitResult& result, const json& other) {
    ASSERT_TRUE(other.is_object());
    for (std::size_t k = 0; k < kParameters; ++k) {
        const json& parameter = other["parameters"][k];
        EXPECT_EQ(parameter["name"], NameOf(static_cast<Parameter>(k)));
        EXPECT_EQ(BitsOf(parameter["value"]), BitsOf(result.Values[k])) << parameter["name"];
        if (result.State[k] == ParameterState::Floats && parameter["sigma"].is_number()) {
            EXPECT_EQ(BitsOf(parameter["sigma"]), BitsOf(result.Sigma[k])) << parameter["name"];
        }
    }
    const json& matrix = other["transformation"]["matrix"];
    for (std::size_t i = 0; i < 16; ++i)
        EXPECT_EQ(BitsOf(matrix[i / 4][i % 4]), BitsOf(result.Matrix[i])) << i;
    EXPECT_EQ(BitsOf(other["quality"]["s0_mm"]), BitsOf(result.S0));
    EXPECT_EQ(other["converged"], result.Converged);
    EXPECT_EQ(other["iterations"], result.Iterations);
}

std::string WhatOf(const std::function<void()>& work) {
    try {
        work();
    } catch (const InvalidInput& wrong) {
        return wrong.what();
    }
    return "";
}

#if defined(__GLIBC__)
TEST(Library, AMillionSmallFitsLeaveNoMemoryBehind) {
    const Cloud cloud(kTruth, 6, 0.01, 3);
    FitOptions options;
    const auto fits = [&](int count) {
        double sum = 0;
        for (int i = 0; i < count; ++i) sum += Fit(Points(cloud.Start), Points(cloud.Target), options).S0;
        return sum;
    };
    fits(1000);
    const std::size_t before = mallinfo2().uordblks;
    EXPECT_GT(fits(1000000), 0);
    // What the allocator keeps at hand counts as used; a byte a fit would be far more.
    EXPECT_LE(mallinfo2().uordblks, before + 65536);
}
#endif

}  // namespace

TEST(Library, GivesTheBitsOfTheCommandLine) {
    const Cloud cloud(kTruth, 14, 0.05, 1);
    for (const char* parameters : {"level", "6", "7", "9", "12"})
        for (const char* norm : {"l2", "l1", "loo", "l1-exact", "minimax"}) {
            SCOPED_TRACE(std::string(parameters) + " " + norm);
            FitOptions options;
            options.Parameters = ChoiceByName(parameters);
            options.Which = NormByName(norm);
            ExpectSameBits(
                Fit(Points(cloud.Start), Points(cloud.Target), options),
                ByCommandLine(cloud, std::string("--parameters ") + parameters + " --norm " + norm));
        }
}

TEST(Library, GivesThemWithHeldValuesSigmasAndPointsLeftOut) {
    const Cloud cloud(kTruth, 20, 0.05, 2);
    FitOptions held;
    held.Parameters = ChoiceByName("7");
    held.Parameters.Hold(ParameterByName("trax"), 1500);
    ExpectSameBits(Fit(Points(cloud.Start), Points(cloud.Target), held),
                   ByCommandLine(cloud, "--parameters 7 --hold trax=1500"));

    // The first seed pair is among them.
    std::vector<unsigned char> use(60, 1);
    use[0] = use[1] = use[2] = use[17] = 0;
    FitOptions some;
    some.InUse = use;
    ExpectSameBits(Fit(Points(cloud.Start), Points(cloud.Target), some),
                   ByCommandLine(cloud, "--leave-out P00 --leave-out P05:z"));

    const std::array<double, 3> start{0.02, 0.03, 0.05}, target{0.1, 0.1, 0.2};
    FitOptions weighted;
    weighted.StartSigma = start;
    weighted.TargetSigma = target;
    ExpectSameBits(Fit(Points(cloud.Start), Points(cloud.Target), weighted),
                   ByCommandLine(cloud, "--start-sigma 0.02,0.03,0.05 --target-sigma 0.1,0.1,0.2"));
}

TEST(Library, ReadsPointsHoweverTheyLieInMemory) {
    const Cloud cloud(kTruth, 30, 0.05, 3);
    std::vector<double> columns(90), wide(30 * 7);
    for (std::size_t i = 0; i < 30; ++i)
        for (std::size_t k = 0; k < 3; ++k) {
            columns[30 * k + i] = cloud.Start[3 * i + k];
            wide[7 * i + 2 * k] = cloud.Target[3 * i + k];
        }
    const FitResult rows = Fit(Points(cloud.Start), Points(cloud.Target));
    const FitResult others = Fit({columns.data(), 30, 1, 30}, {wide.data(), 30, 7, 2});
    EXPECT_EQ(rows.Values, others.Values);
    EXPECT_EQ(rows.Residuals, others.Residuals);
}

TEST(Library, ResidualsAreTransformedStartMinusTarget) {
    const Cloud cloud(kTruth, 12, 0.5, 4);
    const FitResult result = Fit(Points(cloud.Start), Points(cloud.Target));
    std::vector<double> image(36);
    Apply(result.Matrix, cloud.Start, image);
    double squares = 0;
    for (std::size_t i = 0; i < 36; ++i) {
        EXPECT_NEAR(image[i] - cloud.Target[i], result.Residuals[i], 1e-9);
        squares += result.Residuals[i] * result.Residuals[i];
    }
    EXPECT_NEAR(result.S0, std::sqrt(squares / 35), 1e-9);
}

TEST(Library, TwoFitsAtOnceAreThoseOfOneAfterTheOther) {
    std::vector<Cloud> clouds;
    for (unsigned seed = 0; seed < 8; ++seed) clouds.emplace_back(kTruth, 50, 0.1, seed);
    const auto fitted = [&](std::size_t i) {
        FitOptions options;
        options.Parameters = ChoiceByName(i % 2 == 0 ? "7" : "12");
        options.Which = i % 3 == 0 ? Norm::L1 : Norm::L2;
        return Fit(Points(clouds[i].Start), Points(clouds[i].Target), options).Values;
    };
    std::vector<std::array<double, kParameters>> alone, together(clouds.size());
    for (std::size_t i = 0; i < clouds.size(); ++i) alone.push_back(fitted(i));
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < clouds.size(); ++i) threads.emplace_back([&, i] { together[i] = fitted(i); });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(together, alone);
}

TEST(Library, SaysWhatWasExpectedAndWhatCame) {
    const Cloud cloud(kTruth, 5, 0, 5);
    const Points start(cloud.Start), target(cloud.Target);
    EXPECT_EQ(WhatOf([&] { Fit(Points(cloud.Start.data(), 4), target); }),
              "both sets have as many points, and 4 and 5 came");
    EXPECT_EQ(WhatOf([&] { Fit(Points(), Points()); }), "points were expected, and none came");
    EXPECT_EQ(WhatOf([&] { Points(std::span<const double>(cloud.Start).first(7)); }),
              "points x y z x y z ... were expected, and 7 numbers came");
    std::vector<double> damaged = cloud.Start;
    damaged[7] = std::nan("");
    EXPECT_EQ(
        WhatOf([&] { Fit(Points(damaged), target); }),
        "the coordinates of the start points are finite numbers, and that of point 2 along y is nan (points are "
        "counted from 0)");
    EXPECT_EQ(WhatOf([&] { Fit(Points(cloud.Start.data(), 1), Points(cloud.Target.data(), 1)); }),
              "at least as many observations as unknowns were expected, and there are 3 for 6");
    EXPECT_EQ(WhatOf([] { ChoiceByName("8"); }),
              "a choice of parameters is one of level, 6, 7, 9, 12, and \"8\" came");
    EXPECT_NE(WhatOf([] { NormByName("l3"); }).find("minimax"), std::string::npos);
    EXPECT_NE(WhatOf([] { ParameterByName("rot"); }).find("rotx"), std::string::npos);
    EXPECT_NE(WhatOf([] { ChoiceByName("7").Hold(Parameter::ScaleXYZ, 0); }).find("other than 0"),
              std::string::npos);
    FitOptions options;
    options.SeedPairs = {0, 1, 5};
    EXPECT_NE(WhatOf([&] { Fit(start, target, options); }).find("seed pairs are among the 5"),
              std::string::npos);
    options = {};
    const std::array<double, 4> four{1, 1, 1, 1};
    options.StartSigma = four;
    EXPECT_NE(WhatOf([&] { Fit(start, target, options); }).find("3 a point, 15, and 4 came"),
              std::string::npos);
    const std::array<double, 3> none{0, 0, 0};
    options.StartSigma = none;
    EXPECT_NE(WhatOf([&] { Fit(start, target, options); }).find("no weight"), std::string::npos);
    const std::array<double, 3> below{1, -1, 1};
    options.StartSigma = below;
    EXPECT_NE(WhatOf([&] { Fit(start, target, options); }).find("not below 0"), std::string::npos);
}

TEST(Library, SaysWhatThePointsLeaveOpen) {
    // On one line, along which nothing tells the turn about it.
    std::vector<double> line, turned;
    for (int i = 0; i < 6; ++i) {
        line.insert(line.end(), {100.0 * i, 0, 0});
        turned.insert(turned.end(), {0, 100.0 * i, 0});
    }
    const FitResult result = Fit(Points(line), Points(turned));
    bool told = false;
    for (const Note& note : result.Notes) told = told || note.Code == NoteCode::OpenParameters;
    EXPECT_TRUE(told);
    EXPECT_TRUE(std::isnan(result.Sigma[static_cast<std::size_t>(Parameter::RotX)]));

    // A left hand and a right one.
    Cloud hand({.Scale = {1, 1, -1}}, 10, 0.001, 6);
    FitOptions affine;
    affine.Parameters = ChoiceByName("12");
    told = false;
    for (const Note& note : Fit(Points(hand.Start), Points(hand.Target), affine).Notes)
        told = told || note.Code == NoteCode::Mirrored;
    EXPECT_TRUE(told);
}

TEST(Library, EndsAFitWhenTold) {
    const Cloud cloud(kTruth, 100, 1, 7);
    FitOptions options;
    options.StopIsWanted = [] { return true; };
    EXPECT_THROW(Fit(Points(cloud.Start), Points(cloud.Target), options), Stopped);
}

TEST(Transformations, GoToTheirPartsAndBack) {
    const Chain chain{.Translation = {10, -20, 30},
                      .Rotation = {0.4, -1.1, 2.9},
                      .Scale = {1.5, 0.7, 2},
                      .Shear = {0.02, 0.5, 0.01}};
    const Matrix4 matrix = MatrixOf(chain), again = MatrixOf(ChainOf(matrix));
    for (std::size_t i = 0; i < 16; ++i) EXPECT_NEAR(again[i], matrix[i], 1e-12) << i;
    const Matrix4 one = Compose(Invert(matrix), matrix);
    for (std::size_t i = 0; i < 16; ++i) EXPECT_NEAR(one[i], Identity()[i], 1e-12) << i;
    // R of the chain is passive: a quarter turn of the frame about z takes the x axis to -y.
    const std::vector<double> x{1, 0, 0};
    std::vector<double> image(3);
    Apply(MatrixOf({.Rotation = {0, 0, std::acos(0.0)}}), x, image);
    EXPECT_NEAR(image[1], -1, 1e-15);
    const Quaternion q = QuaternionOf({.Rotation = {0, 0, std::acos(0.0)}});
    EXPECT_NEAR(q.W, std::sqrt(0.5), 1e-15);
    EXPECT_NEAR(q.Z, -std::sqrt(0.5), 1e-15);
    const std::array<double, 3> angles = AnglesOf(QuaternionOf(chain));
    Chain turned = chain;
    turned.Rotation = angles;
    const Matrix4 same = MatrixOf(turned);
    for (std::size_t i = 0; i < 16; ++i) EXPECT_NEAR(same[i], matrix[i], 1e-12) << i;
    EXPECT_THROW(AnglesOf({0, 0, 0, 0}), InvalidInput);
    Matrix4 flat = Identity();
    flat[10] = 0;
    EXPECT_NE(WhatOf([&] { Invert(flat); }).find("no inverse"), std::string::npos);
}

TEST(LibraryForC, GivesWhatTheOtherFaceGives) {
    const Cloud cloud(kTruth, 14, 0.05, 8);
    corvinade_error error;
    corvinade_options* options = corvinade_options_new();
    ASSERT_EQ(corvinade_set_parameters(options, "7", &error), CORVINADE_OK) << error.text;
    ASSERT_EQ(corvinade_hold(options, "rotx", 0.3, &error), CORVINADE_OK) << error.text;
    corvinade_result* result = nullptr;
    ASSERT_EQ(corvinade_fit(cloud.Start.data(), cloud.Target.data(), 14, options, &result, &error),
              CORVINADE_OK);
    FitOptions same;
    same.Parameters = ChoiceByName("7");
    same.Parameters.Hold(Parameter::RotX, 0.3);
    const FitResult other = Fit(Points(cloud.Start), Points(cloud.Target), same);
    for (std::size_t i = 0; i < 16; ++i) EXPECT_EQ(corvinade_result_matrix(result)[i], other.Matrix[i]);
    for (std::size_t i = 0; i < 42; ++i) EXPECT_EQ(corvinade_result_residuals(result)[i], other.Residuals[i]);
    EXPECT_EQ(corvinade_result_s0(result), other.S0);
    EXPECT_EQ(corvinade_result_note_count(result), other.Notes.size());
    corvinade_result_free(result);
    result = nullptr;
    EXPECT_EQ(corvinade_fit(cloud.Start.data(), nullptr, 14, options, &result, &error),
              CORVINADE_INVALID_INPUT);
    EXPECT_STREQ(error.text, "points were expected, and a null pointer came");
    EXPECT_EQ(result, nullptr);
    EXPECT_EQ(corvinade_set_norm(options, "l3", nullptr), CORVINADE_INVALID_INPUT);
    corvinade_options_free(options);
}
