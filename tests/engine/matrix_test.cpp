// General matrix operations.
#include "fit/matrix.h"

#include <cmath>
#include <limits>

#include "support/fixture.h"

using namespace corvinade;

using Matrices = Program;

namespace {

Matrix Filled(int rows, int columns, std::initializer_list<double> values) {
    Matrix M(rows, columns);
    auto value = values.begin();
    for (int i = 1; i <= rows; ++i)
        for (int j = 1; j <= columns; ++j) M(i, j) = *value++;
    return M;
}

void ExpectMatrix(const Matrix& M, int rows, int columns, std::initializer_list<double> values) {
    auto value = values.begin();
    for (int i = 1; i <= rows; ++i)
        for (int j = 1; j <= columns; ++j) EXPECT_EQ(M(i, j), *value++) << i << ", " << j;
}

// A well-behaved matrix of any size, the same every time.
Matrix Dominant(int n) {
    Matrix M(n, n);
    for (int i = 1; i <= n; ++i)
        for (int j = 1; j <= n; ++j) M(i, j) = i == j ? n : std::sin(3.0 * i + 7.0 * j);
    return M;
}

}  // namespace

TEST_F(Matrices, MultiplyGivesTheProductAndItsSize) {
    const Matrix A = Filled(2, 3, {1, 2, 3, 4, 5, 6}), B = Filled(3, 2, {7, 8, 9, 10, 11, 12});
    Matrix C(2, 2);
    int rows = 0, columns = 0;
    MatrixMultiply(A, 2, 3, B, 2, C, rows, columns);
    ExpectMatrix(C, 2, 2, {58, 64, 139, 154});
    EXPECT_EQ(rows, 2);
    EXPECT_EQ(columns, 2);
}

TEST_F(Matrices, MultiplyUsesThePartOfALargerArray) {
    Matrix A(5, 5), B(5, 5), C(5, 5);
    A(1, 1) = 3;
    B(1, 1) = 4;
    A(5, 5) = B(5, 5) = C(2, 2) = 100;
    MatrixMultiply(A, 1, 1, B, 1, C);
    EXPECT_EQ(C(1, 1), 12);
    EXPECT_EQ(C(2, 2), 100);
}

TEST_F(Matrices, MultiplyLeavesOutTermsWithAZeroFactor) {
    const double undefined = std::numeric_limits<double>::quiet_NaN();
    Matrix C(1, 1);
    MatrixMultiply(Filled(1, 2, {0, 2}), 1, 2, Filled(2, 1, {undefined, 3}), 1, C);
    EXPECT_EQ(C(1, 1), 6);
    MatrixMultiply(Filled(1, 2, {undefined, 2}), 1, 2, Filled(2, 1, {0, 3}), 1, C);
    EXPECT_EQ(C(1, 1), 6);
}

TEST_F(Matrices, MultiplyTakesAColumnAsMatrixOfOneColumn) {
    Column x = {0, 5, 6}, y(3);
    MatrixMultiply(Filled(2, 2, {1, 2, 3, 4}), 2, 2, x, 1, y);
    EXPECT_EQ(y[1], 17);
    EXPECT_EQ(y[2], 39);
}

TEST_F(Matrices, AddSubtractTransposeAndScaleByADiagonal) {
    const Matrix A = Filled(2, 3, {1, 2, 3, 4, 5, 6}), B = Filled(2, 3, {10, 20, 30, 40, 50, 60});
    Matrix C(2, 3), T(3, 2);
    MatrixAdd(A, 2, 3, B, C);
    ExpectMatrix(C, 2, 3, {11, 22, 33, 44, 55, 66});
    MatrixSub(A, 2, 3, B, C);
    ExpectMatrix(C, 2, 3, {-9, -18, -27, -36, -45, -54});
    MatrixTranspose(A, 2, 3, T);
    ExpectMatrix(T, 3, 2, {1, 4, 2, 5, 3, 6});
    MatrixTimesDiagonal(A, 2, 3, {0, 1, 0, -2}, C);
    ExpectMatrix(C, 2, 3, {1, 0, -6, 4, 0, -12});
}

TEST_F(Matrices, ThreeByThreeAndGeneralShareOneImplementation) {
    Mat3 A, B;
    Matrix a(3, 3), b(3, 3), c(3, 3), inverse(3, 3);
    for (int i = 1; i <= 3; ++i)
        for (int j = 1; j <= 3; ++j) {
            a(i, j) = A(i, j) = std::sin(i + 2.0 * j);
            b(i, j) = B(i, j) = std::cos(3.0 * i - j);
        }
    MatrixMultiply(a, 3, 3, b, 3, c);
    MatrixInverse(a, 3, 3, inverse);
    Mat3 C = MatrixProduct(A, B), inverse3;
    MatrixInverse(A, 3, 3, inverse3);
    for (int i = 1; i <= 3; ++i)
        for (int j = 1; j <= 3; ++j) {
            EXPECT_EQ(C(i, j), c(i, j));
            EXPECT_EQ(inverse3(i, j), inverse(i, j));
        }
}

TEST_F(Matrices, InverseTimesMatrixIsTheIdentity) {
    for (const int n : {1, 2, 3, 7, 20}) {
        const Matrix A = Dominant(n);
        Matrix B(n, n), I(n, n);
        MatrixInverse(A, n, n, B);
        MatrixMultiply(A, n, n, B, n, I);
        for (int i = 1; i <= n; ++i)
            for (int j = 1; j <= n; ++j) EXPECT_NEAR(I(i, j), i == j ? 1 : 0, 1e-11) << n;
    }
}

TEST_F(Matrices, InverseInPlaceGivesTheSame) {
    Matrix A = Dominant(5), B(5, 5);
    MatrixInverse(A, 5, 5, B);
    MatrixInverse(A, 5, 5, A);
    EXPECT_EQ(A.Elements, B.Elements);
}

TEST_F(Matrices, InverseOfZeroHasHugeDiagonalAndReportsNothing) {
    Matrix B(2, 2);
    MatrixInverse(Matrix(2, 2), 2, 2, B);
    EXPECT_EQ(B(1, 1), 1 / 1e-12);
    EXPECT_EQ(B(2, 2), 1 / 1e-12);
    EXPECT_NEAR(B(1, 1), 1e12, 1);
    EXPECT_EQ(B(1, 2), 0);
    EXPECT_EQ(B(2, 1), 0);
    EXPECT_TRUE(Messages().empty());
}

TEST_F(Matrices, InverseAddsItsConstantToANegativePivotAsItStands) {
    Matrix B(1, 1);
    MatrixInverse(Filled(1, 1, {-1e-12}), 1, 1, B);
    EXPECT_TRUE(std::isinf(B(1, 1)));
    MatrixInverse(Filled(1, 1, {-2e-12}), 1, 1, B);
    EXPECT_NEAR(B(1, 1), -1e12, 1e3);
}

TEST_F(Matrices, CompareSumsTheDifferencesAndTestsEachOfThem) {
    double sum = 0;
    bool equal = false;
    const Matrix A = Filled(2, 2, {1, 2, 3, 4});
    MatrixCompare(A, Filled(2, 2, {1, 2.25, 3, 3.5}), 0.5, sum, equal);
    EXPECT_EQ(sum, 0.75);
    EXPECT_TRUE(equal);
    MatrixCompare(A, Filled(2, 2, {1, 2.25, 3, 3.5}), 0.4, sum, equal);
    EXPECT_FALSE(equal);
    MatrixCompare(A, Filled(1, 2, {100, 100}), 0.5, sum, equal);
    EXPECT_EQ(sum, 0);
    EXPECT_TRUE(equal);
}

TEST_F(Matrices, DeleteRowOrColumnMovesTheRestUp) {
    const Matrix A = Filled(3, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9});
    Matrix B(3, 3);
    int rows = 0, columns = 0;
    MatrixDeleteRowOrColumn(A, 3, 3, B, rows, columns, true, 2);
    EXPECT_EQ(rows, 2);
    EXPECT_EQ(columns, 3);
    ExpectMatrix(B, 2, 3, {1, 2, 3, 7, 8, 9});
    MatrixDeleteRowOrColumn(A, 3, 3, B, rows, columns, false, 1);
    EXPECT_EQ(rows, 3);
    EXPECT_EQ(columns, 2);
    ExpectMatrix(B, 3, 2, {2, 3, 5, 6, 8, 9});
}

TEST_F(Matrices, ArraysLoseAnElementOrTheirNearDuplicates) {
    Column array = {0, 1, 2, 3};
    ArrayRemoveElement(array, 2);
    EXPECT_EQ(array, (Column{0, 1, 3}));
    array = {0, 5, 1, 5 + 5e-9, 1 - 9e-9, 5 + 2e-8, 1};
    ArrayRemoveNearDuplicates(array);
    EXPECT_EQ(array, (Column{0, 5, 1, 5 + 2e-8}));
}

TEST_F(Matrices, SizesBeyondTheArrayOrThirtyTwoThousandAreABrokenPromise) {
    Matrix A(2, 2), B(2, 2);
    EXPECT_DEATH(MatrixInverse(A, 3, 3, B), "");
    Matrix wide(1, 32768), target(1, 32768);
    EXPECT_DEATH(MatrixAdd(wide, 1, 32768, wide, target), "");
    MatrixAdd(wide, 1, 32767, wide, target);
}

TEST_F(Matrices, SumsOfProductsRunUpwards) {
    // (1e16 + 1) - 1e16 is 0 in 64 bits, every other order gives 1 or 2.
    Matrix C(1, 1);
    MatrixMultiply(Filled(1, 3, {1e16, 1, -1e16}), 1, 3, Filled(3, 1, {1, 1, 1}), 1, C);
    EXPECT_EQ(C(1, 1), 0);
    MatrixMultiply(Filled(1, 3, {1e16, -1e16, 1}), 1, 3, Filled(3, 1, {1, 1, 1}), 1, C);
    EXPECT_EQ(C(1, 1), 1);
}

TEST_F(Matrices, InverseSearchesNoPivotAndAddsItsConstantToEachInTurn) {
    // A permutation: the first pivot is the constant alone, the second what the sweep has left.
    Matrix B(2, 2);
    MatrixInverse(Filled(2, 2, {0, 1, 1, 0}), 2, 2, B);
    EXPECT_NEAR(B(1, 2), 1, 1e-12);
    EXPECT_NEAR(B(2, 1), 1, 1e-12);
    EXPECT_NEAR(B(2, 2), -1e-12, 1e-24);
    EXPECT_NEAR(B(1, 1), 0, 1e-3);
    MatrixInverse(Filled(2, 2, {1, 0, 0, 1e-12}), 2, 2, B);
    EXPECT_EQ(B(1, 1), 1 / (1e-12 + 1));
    EXPECT_NEAR(B(2, 2), 5e11, 1);
}

TEST_F(Matrices, InverseSweepsTheFirstSizeAndCopiesTheSecond) {
    Matrix B(3, 2);
    MatrixInverse(Filled(3, 2, {2, 0, 0, 4, 7, 9}), 2, 3, B);
    EXPECT_NEAR(B(1, 1), 0.5, 1e-11);
    EXPECT_NEAR(B(2, 2), 0.25, 1e-11);
    EXPECT_EQ(B(3, 1), 7);
    EXPECT_EQ(B(3, 2), 9);
}
