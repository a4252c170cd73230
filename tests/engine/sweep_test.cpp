// The inverse of large matrices against the plain sweep, element by element and bit by bit.
#include "fit/sweep.h"

#include <cmath>
#include <cstring>

#include "support/fixture.h"

using namespace corvinade;

namespace {

using LargeInverse = Program;

// The sweep as it is defined: one step after the other, and every element of a step one after the other.
void PlainSweepByDefinition(Matrix& B, int n) {
    for (int k = 1; k <= n; ++k) {
        B(k, k) = 1 / (1e-12 + B(k, k));
        for (int j = 1; j <= n; ++j)
            if (j != k) B(k, j) = -B(k, j) * B(k, k);
        for (int i = 1; i <= n; ++i)
            for (int j = 1; j <= n; ++j)
                if (i != k && j != k) B(i, j) = B(i, j) + B(i, k) * B(k, j);
        for (int i = 1; i <= n; ++i)
            if (i != k) B(i, k) = B(i, k) * B(k, k);
    }
}

// No symmetry, so that rows and columns that were exchanged are found out; a diagonal that keeps it regular.
Matrix Uneven(int n) {
    Matrix M(n, n);
    for (int i = 1; i <= n; ++i)
        for (int j = 1; j <= n; ++j)
            M(i, j) = std::sin(0.37 * i * j + 3.0 * i - 7.0 * j) + (i == j ? n / 4.0 + 3 : 0);
    return M;
}

bool SameBits(const Matrix& a, const Matrix& b) {
    return a.Elements.size() == b.Elements.size() &&
           std::memcmp(a.Elements.data(), b.Elements.data(), a.Elements.size() * sizeof(double)) == 0;
}

std::vector<VectorWidth> Widths() {
    std::vector<VectorWidth> widths;
    for (const VectorWidth width : {VectorWidth::Two, VectorWidth::Four, VectorWidth::Eight})
        if (width <= WidestVectors()) widths.push_back(width);
    return widths;
}

}  // namespace

TEST_F(LargeInverse, IsThatOfThePlainSweepBitByBitForEverySizeAndVector) {
    for (const int n :
         {1, 2, 7, 8, 23, 24, 25, 47, 48, 49, 63, 64, 65, 71, 95, 96, 97, 100, 143, 144, 145, 200, 251}) {
        const Matrix A = Uneven(n);
        Matrix expected = A;
        PlainSweepByDefinition(expected, n);
        for (const VectorWidth width : Widths()) {
            Matrix B = A;
            EXPECT_TRUE(BlockedSweep(B, n, width, nullptr));
            EXPECT_TRUE(SameBits(B, expected)) << n << " with vectors of " << static_cast<int>(width);
        }
        Matrix B(n, n);
        MatrixInverse(A, n, n, B);
        EXPECT_TRUE(SameBits(B, expected)) << n;
    }
}

TEST_F(LargeInverse, OfASingularMatrixIsThatOfThePlainSweepToo) {
    for (const int n : {100, 150}) {
        Matrix A = Uneven(n);
        for (int j = 1; j <= n; ++j) A(n / 2, j) = A(3, j);
        A(n, n) = 0;
        Matrix zero(n, n);
        for (const Matrix& singular : {A, zero}) {
            Matrix expected = singular, B(n, n);
            PlainSweepByDefinition(expected, n);
            MatrixInverse(singular, n, n, B);
            EXPECT_TRUE(SameBits(B, expected)) << n;
        }
    }
}

TEST_F(LargeInverse, LeavesWhatIsOutsideThePartInUse) {
    const int n = 120, size = 131;
    const Matrix A = Uneven(size);
    Matrix B = A;
    MatrixInverse(B, n, n, B);
    Matrix part(n, n);
    for (int i = 1; i <= n; ++i)
        for (int j = 1; j <= n; ++j) part(i, j) = A(i, j);
    PlainSweepByDefinition(part, n);
    for (int i = 0; i <= size; ++i)
        for (int j = 0; j <= size; ++j) {
            const bool inside = i >= 1 && i <= n && j >= 1 && j <= n;
            ASSERT_EQ(B(i, j), inside ? part(i, j) : A(i, j)) << i << ", " << j;
        }
}

TEST_F(LargeInverse, TimesTheMatrixIsTheIdentity) {
    const int n = 300;
    const Matrix A = Uneven(n);
    Matrix B(n, n), I(n, n);
    MatrixInverse(A, n, n, B);
    MatrixMultiply(A, n, n, B, n, I);
    for (int i = 1; i <= n; ++i)
        for (int j = 1; j <= n; ++j) ASSERT_NEAR(I(i, j), i == j ? 1 : 0, 1e-10) << i << ", " << j;
}

TEST_F(LargeInverse, AsksAgainAndAgainWhetherToGoOnAndEndsWhenItShallNot) {
    const int n = 800;
    const Matrix A = Uneven(n);
    Matrix B(n, n), whole(n, n);
    int asked = 0;
    EXPECT_TRUE(MatrixInverse(A, n, n, whole, [&asked] { return ++asked > 0; }));
    EXPECT_GE(asked, 3);
    const int often = asked;
    asked = 0;
    EXPECT_FALSE(MatrixInverse(A, n, n, B, [&asked] { return ++asked < 2; }));
    EXPECT_EQ(asked, 2);
    EXPECT_LT(asked, often);
    MatrixInverse(A, n, n, B);
    EXPECT_TRUE(SameBits(B, whole));
}
