// The solution of the normal equations against the general matrix operations.
#include "fit/normal_equations.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "engine/fit_job.h"
#include "fit/matrix.h"
#include "support/fixture.h"

using namespace corvinade;

using NormalSolution = Program;

TEST_F(NormalSolution, ItsInverseIsThatOfTheMatrixOperationsToTheLastBit) {
    for (int u = 1; u <= 18; ++u) {
        SCOPED_TRACE(u);
        Matrix A(u, u), N(u, u), Q(u, u), expected(u, u);
        Column w(static_cast<std::size_t>(u) + 1), x(w.size()), product(w.size());
        for (int i = 1; i <= u; ++i) {
            w[static_cast<std::size_t>(i)] = NextNumber();
            for (int j = 1; j <= u; ++j) A(i, j) = 1000 * NextNumber();
        }
        for (int i = 1; i <= u; ++i)
            for (int j = 1; j <= u; ++j)
                for (int k = 1; k <= u; ++k) N(i, j) += A(k, i) * A(k, j);
        if (u == 5)
            for (int j = 1; j <= u; ++j) N(3, j) = N(j, 3) = 0;  // an unknown that nothing is said about
        MatrixInverse(N, u, u, expected);
        MatrixMultiply(expected, u, u, w, 1, product);
        SolveNormalEquations(N, w, u, Q, x);
        for (int i = 1; i <= u; ++i) {
            EXPECT_EQ(x[static_cast<std::size_t>(i)], product[static_cast<std::size_t>(i)]);
            for (int j = 1; j <= u; ++j) EXPECT_EQ(Q(i, j), expected(i, j)) << i << ", " << j;
        }
    }
}

TEST_F(NormalSolution, WithoutTheInverseItIsTheSame) {
    for (int u = 1; u <= kMostSmall; ++u) {
        SCOPED_TRACE(u);
        Matrix A(u, u), N(u, u), Q(u, u);
        Column w(static_cast<std::size_t>(u) + 1), x(w.size()), expected(w.size());
        SmallEquations equations;
        for (auto& row : equations.N) row.fill(std::numeric_limits<double>::quiet_NaN());
        for (int i = 1; i <= u; ++i) {
            w[static_cast<std::size_t>(i)] = NextNumber();
            for (int j = 1; j <= u; ++j) A(i, j) = NextNumber() + (i == j ? 3 : 0);
        }
        for (int i = 1; i <= u; ++i)
            for (int j = 1; j <= u; ++j)
                for (int k = 1; k <= u; ++k) N(i, j) += A(k, i) * A(k, j);
        if (u == 5)
            for (int j = 1; j <= u; ++j) N(3, j) = N(j, 3) = 0;  // an unknown that nothing is said about
        for (std::size_t i = 0; i < static_cast<std::size_t>(u); ++i) {
            for (int j = 0; j < u; ++j)
                equations.N[i][static_cast<std::size_t>(j)] = N(static_cast<int>(i) + 1, j + 1);
            equations.N[i][static_cast<std::size_t>(u)] = w[i + 1];
        }
        MatrixInverse(N, u, u, Q);
        MatrixMultiply(Q, u, u, w, 1, expected);
        SolveSmall(equations, u, x);
        for (std::size_t i = 1; i < x.size(); ++i)
            EXPECT_NEAR(x[i], expected[i], 1e-11 * std::max(1.0, std::fabs(expected[i]))) << i;
    }
}

TEST_F(NormalSolution, OneWeightThatIsNotOneIsSeenWhereverItStands) {
    for (const int points : {1, 400, 2000})
        for (const int place : {1, 3 * points / 2 + 1, 3 * points})
            for (const double weight : {0.0, 0.5, -1.0}) {
                Column P(static_cast<std::size_t>(3 * points) + 1, 1);
                GatheredPoints gathered;
                gathered.Count = points;
                gathered.Padded = WholeLanes(points);
                SetWeights(P, gathered);
                EXPECT_TRUE(gathered.AllInUse && gathered.OnlyInUse);
                P[static_cast<std::size_t>(place)] = weight;
                SetWeights(P, gathered);
                EXPECT_FALSE(gathered.AllInUse);
                EXPECT_EQ(gathered.OnlyInUse, weight == 0);
                EXPECT_EQ(gathered.Weight[static_cast<std::size_t>((place - 1) % 3)]
                                         [static_cast<std::size_t>((place - 1) / 3)],
                          weight);
            }
}
