// The search among candidates against the plain one: every combination, multiplied out and compared.
#include "fit/combination_search.h"

#include <cmath>
#include <limits>
#include <random>

#include "engine/transform.h"
#include "fit/matrix.h"
#include "support/fixture.h"

using namespace corvinade;

using CombinationSearch = Program;

namespace {

using PlainRow = std::array<double, 7>;

Mat3 ModelMatrix(const Vec3& rotation, const Vec3& shear, const Vec3& scale) {
    Mat3 R, K, D;
    RotMatrixXYZ(rotation(1), rotation(2), rotation(3), R);
    BuildShearMatrix(shear(1), shear(2), shear(3), K);
    for (int i = 1; i <= 3; ++i) D(i, i) = scale(i);
    return MatrixProduct(MatrixProduct(R, K), D);
}

template <class Action>
void ForEach(const Column& list, Action action) {
    for (std::size_t i = 1; i < list.size(); ++i) action(list[i]);
}

std::vector<PlainRow> PlainSearch(const Mat3& W, const Candidates& c) {
    std::vector<PlainRow> accepted;
    ForEach(c.RotX, [&](double x) {
        ForEach(c.RotY, [&](double y) {
            ForEach(c.RotZ, [&](double z) {
                ForEach(c.AngleXY, [&](double xy) {
                    ForEach(c.Azimuth, [&](double az) {
                        ForEach(c.AngleZtoXY, [&](double zt) {
                            double sum = 0;
                            bool equal = false;
                            MatrixCompare(ModelMatrix({x, y, z}, {xy, az, zt}, c.Scale), W, 1e-10, sum,
                                          equal);
                            if (sum < 1e-5) accepted.push_back({x, y, z, xy, az, zt, sum});
                        });
                    });
                });
            });
        });
    });
    std::vector<PlainRow> kept;
    for (const PlainRow& row : accepted) {
        bool differs = true;
        for (const PlainRow& other : kept) {
            bool some = false;
            for (std::size_t k = 0; k < 7; ++k) some |= std::fabs(row[k] - other[k]) > 1e-4;
            differs &= some;
        }
        if (differs) kept.push_back(row);
    }
    return kept;
}

void ExpectPlain(const Mat3& W, const Candidates& c, std::size_t least, std::size_t most) {
    const std::vector<PlainRow> expected = PlainSearch(W, c);
    EXPECT_GE(expected.size(), least);
    EXPECT_LE(expected.size(), most);
    Matrix rows;
    SearchCombinations(W, c, rows);
    ASSERT_EQ(rows.Rows, expected.empty() ? -1 : static_cast<int>(expected.size()));
    for (int i = 1; i <= rows.Rows; ++i)
        for (int k = 1; k <= 7; ++k)
            ASSERT_EQ(rows(i, k), expected[static_cast<std::size_t>(i - 1)][static_cast<std::size_t>(k - 1)])
                << i << ", " << k;
}

// Random lists that hold the truth and values near to it at random places.
Candidates Around(std::mt19937& random, const Vec3& rotation, const Vec3& shear, const Vec3& scale,
                  std::size_t shears, double width) {
    std::uniform_real_distribution<double> any(-3.1, 3.1), near(-width, width);
    std::bernoulli_distribution isNear(0.4);
    const auto list = [&](double truth, std::size_t n) {
        Column values(n + 1);
        for (std::size_t i = 1; i <= n; ++i) values[i] = isNear(random) ? truth + near(random) : any(random);
        values[1 + random() % n] = truth;
        return values;
    };
    return {list(rotation(1), 4),
            list(rotation(2), 2),
            list(rotation(3), 2),
            list(shear(1), shears),
            list(shear(2), shears),
            list(shear(3), shears),
            scale};
}

}  // namespace

TEST_F(CombinationSearch, AcceptsWhatThePlainSearchAcceptsWithTheSameSums) {
    std::mt19937 random(20);
    std::uniform_real_distribution<double> angle(-3, 3), factor(0.3, 2);
    for (int run = 0; run < 40; ++run) {
        SCOPED_TRACE(run);
        const Vec3 rotation(angle(random), angle(random), angle(random));
        const Vec3 shear(angle(random), angle(random), angle(random));
        const Vec3 scale(factor(random), factor(random), factor(random));
        const double width = run % 2 == 0 ? 1e-6 : 3e-6;
        ExpectPlain(ModelMatrix(rotation, shear, scale), Around(random, rotation, shear, scale, 8, width), 1,
                    1);
    }
}

TEST_F(CombinationSearch, ThinsWhatIsAlikeInEveryColumnAndKeepsTheFirst) {
    // Small scales: the elements are small, so candidates far from each other are accepted side by side,
    // in chains that are closer than the limit from one to the next.
    std::mt19937 random(30);
    for (int run = 0; run < 20; ++run) {
        SCOPED_TRACE(run);
        const Vec3 rotation(0.3, -0.5, 1.2), shear(0.1, 0.7, 0.2), scale(0.01, 0.01, 0.01);
        ExpectPlain(ModelMatrix(rotation, shear, scale), Around(random, rotation, shear, scale, 8, 4e-4), 2,
                    1000);
    }
}

TEST_F(CombinationSearch, AMatrixOfNothingAcceptsEverything) {
    std::mt19937 random(40);
    const Vec3 rotation(0.3, -0.5, 1.2), shear(0.1, 0.7, 0.2), scale(1e-8, 1e-8, 1e-8);
    ExpectPlain(Mat3(), Around(random, rotation, shear, scale, 5, 2e-4), 500, 2000);
}

TEST_F(CombinationSearch, ANeutralMatrixIsFoundThoughItsFactorsAreZero) {
    const Candidates c = {{0, 0, 1}, {0, 1, 0}, {0, 0}, {0, 0, 0.5}, {0, 0, 0.3}, {0, 0, 0.2}, {1, 1, 1}};
    ExpectPlain(ModelMatrix({0, 0, 0}, {0, 0, 0}, {1, 1, 1}), c, 2, 2);
}

TEST_F(CombinationSearch, NothingAcceptedLeavesNoRows) {
    const Candidates c = {{0, 1}, {0, 1}, {0, 1}, {0, 0}, {0, 0}, {0, 0}, {1, 1, 1}};
    ExpectPlain(ModelMatrix({0, 0, 0}, {0, 0, 0}, {1, 1, 1}), c, 0, 0);
    ExpectPlain(ModelMatrix({0, 0, 0}, {0, 0, 0}, {1, 1, 1}),
                {{0}, {0}, {0}, {0, 0}, {0, 0}, {0, 0}, {1, 1, 1}}, 0, 0);
}

TEST_F(CombinationSearch, CandidatesThatAreNoNumbersArePassedOver) {
    const double none = std::numeric_limits<double>::quiet_NaN();
    Candidates c = {{0, none, 0.1}, {0, 0.2}, {0, none, 0.3}, {0, none, 0}, {0, 0}, {0, 0}, {1, 1, 1}};
    const Mat3 W = ModelMatrix({0.1, 0.2, 0.3}, {0, 0, 0}, {1, 1, 1});
    ExpectPlain(W, c, 1, 1);
    // Scales of 0 leave no element that would show it.
    c.Scale = {0, 0, 0};
    c.RotX = {0, none};
    Matrix rows;
    SearchCombinations(Mat3(), c, rows);
    EXPECT_EQ(rows.Rows, -1);
}

TEST_F(CombinationSearch, TheLargestSearchComesToItsEnd) {
    std::mt19937 random(50);
    std::uniform_real_distribution<double> any(-3.1, 3.1);
    const auto list = [&](std::size_t n) {
        Column values(n + 1);
        for (std::size_t i = 1; i <= n; ++i) values[i] = any(random);
        return values;
    };
    Candidates c = {list(4), list(2), list(2), list(32), list(32), list(32), {1e-9, 1e-9, 1e-9}};
    Matrix rows;
    SearchCombinations(Mat3(), c, rows);
    EXPECT_EQ(rows.Rows, 16 * 32 * 32 * 32) << "values far from each other, all accepted";
    // And all of them crowded together, where a row stands for thousands.
    std::uniform_real_distribution<double> crowded(0, 2e-4);
    for (Column* values : {&c.AngleXY, &c.Azimuth, &c.AngleZtoXY})
        for (double& value : *values) value = crowded(random);
    SearchCombinations(Mat3(), c, rows);
    EXPECT_LE(rows.Rows, 16 * 3 * 3 * 3 * 2);
}
