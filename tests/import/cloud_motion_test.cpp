// The motion of clouds: directions, inverse, numbers in text.
#include <charconv>
#include <cmath>
#include <random>

#include "import/cloud_bytes.h"
#include "import/cloud_rows.h"

using namespace corvinade;

namespace {

using Nine = std::array<double, 9>;

Nine Product(const Nine& a, const Nine& b) {
    Nine c{};
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t k = 0; k < 3; ++k)
            for (std::size_t j = 0; j < 3; ++j) c[3 * i + k] += a[3 * i + j] * b[3 * j + k];
    return c;
}

// Of a unit quaternion, by the textbook.
Nine RotationOf(const std::array<double, 4>& q) {
    const auto [w, x, y, z] = q;
    return {1 - 2 * (y * y + z * z), 2 * (x * y - w * z),     2 * (x * z + w * y),
            2 * (x * y + w * z),     1 - 2 * (x * x + z * z), 2 * (y * z - w * x),
            2 * (x * z - w * y),     2 * (y * z + w * x),     1 - 2 * (x * x + y * y)};
}

std::array<double, 4> RandomTurn(std::mt19937& random) {
    std::normal_distribution<double> normal;
    std::array<double, 4> q = {normal(random), normal(random), normal(random), normal(random)};
    const double size = std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]);
    for (double& value : q) value /= q[0] < 0 ? -size : size;
    return q;
}

void ExpectNear(const Nine& a, const Nine& b, double most) {
    for (std::size_t i = 0; i < 9; ++i) EXPECT_NEAR(a[i], b[i], most) << i;
}

TEST(CloudMotionTest, ScalesAlongTheAxesLeaveTheRotation) {
    std::mt19937 random(1);
    for (int i = 0; i < 200; ++i) {
        const std::array<double, 4> q = RandomTurn(random);
        const Nine r = RotationOf(q), scale = {1e-3, 0, 0, 0, 2, 0, 0, 0, 900};
        const auto motion = MotionOf(Product(r, scale), {1, 2, 3});
        ASSERT_TRUE(motion);
        ExpectNear(motion->Turn, r, 1e-12);
        for (std::size_t k = 0; k < 4; ++k) EXPECT_NEAR(motion->Quaternion[k], q[k], 1e-12);
        EXPECT_FALSE(motion->Mirrors);
    }
}

TEST(CloudMotionTest, AMirrorStaysOne) {
    std::mt19937 random(2);
    const Nine r = RotationOf(RandomTurn(random)), mirror = {1, 0, 0, 0, 1, 0, 0, 0, -1};
    const auto motion = MotionOf(Product(r, mirror), {0, 0, 0});
    ASSERT_TRUE(motion);
    EXPECT_TRUE(motion->Mirrors);
    ExpectNear(motion->Turn, Product(r, mirror), 1e-14);
}

TEST(CloudMotionTest, TheInverseIsThatOfTheWholeMatrix) {
    std::mt19937 random(3);
    std::uniform_real_distribution<double> any(-5, 5);
    for (int i = 0; i < 100; ++i) {
        Nine m{};
        for (double& value : m) value = any(random);
        const auto motion = MotionOf(m, {100, -200, 300});
        ASSERT_TRUE(motion);
        const auto back = InverseOf(*motion);
        ASSERT_TRUE(back);
        const std::array<double, 3> point = {1, 2, 3}, there = back->Carry(motion->Carry(point));
        for (std::size_t k = 0; k < 3; ++k) EXPECT_NEAR(there[k], point[k], 1e-7);
        ExpectNear(Product(back->Turn, motion->Turn), {1, 0, 0, 0, 1, 0, 0, 0, 1}, 1e-9);
    }
}

TEST(CloudMotionTest, WhatMakesAPlaneIsNone) {
    EXPECT_FALSE(MotionOf({1, 0, 0, 0, 1, 0, 1, 1, 0}, {}));
    EXPECT_FALSE(MotionOf({0, 0, 0, 0, 0, 0, 0, 0, 0}, {}));
    EXPECT_FALSE(MotionOf({NAN, 0, 0, 0, 1, 0, 0, 0, 1}, {}));
    EXPECT_TRUE(MotionOf({1e-6, 0, 0, 0, 1e-6, 0, 0, 0, 1e-6}, {}));
}

TEST(CloudNumbers, AreRoundedAsTheLibraryRoundsThem) {
    std::mt19937_64 random(4);
    for (int i = 0; i < 200000; ++i) {
        const int decimals = static_cast<int>(random() % 13);
        double value = static_cast<double>(static_cast<std::int64_t>(random())) /
                       std::pow(10, static_cast<double>(random() % 25));
        // Also those in the middle of two.
        if (i % 4 == 0) value = static_cast<double>(static_cast<int>(random() % 2000001) - 1000000) / 2048;
        char buffer[400];
        const auto end = std::to_chars(buffer, buffer + 400, value, std::chars_format::fixed, decimals).ptr;
        std::string expected(buffer, static_cast<std::size_t>(end - buffer)), text;
        if (expected.find_first_of("123456789") == std::string::npos && expected[0] == '-')
            expected.erase(0, 1);
        AppendFixed(value, decimals, '.', text);
        ASSERT_EQ(text, expected) << i;
    }
}

TEST(CloudNumbers, AreReadAsTheLibraryReadsThem) {
    std::mt19937_64 random(5);
    const auto check = [](const std::string& text) {
        double value = 0, expected = 0;
        ASSERT_EQ(NumberOf(" " + text + "\t", '.', value), NumberKind::Finite) << text;
        std::from_chars(text.data(), text.data() + text.size(), expected);
        EXPECT_EQ(std::bit_cast<std::uint64_t>(value), std::bit_cast<std::uint64_t>(expected)) << text;
    };
    for (int i = 0; i < 100000; ++i) {
        std::string text = random() % 2 == 0 ? "-" : "";
        for (std::uint64_t k = random() % 12 + 1; k > 0; --k) text += static_cast<char>('0' + random() % 10);
        if (random() % 4 != 0) text += '.';
        for (std::uint64_t k = random() % 12; k > 0 && text.find('.') != std::string::npos; --k)
            text += static_cast<char>('0' + random() % 10);
        check(text);
    }
    double value = 0;
    for (const char* text : {"", " ", "-", "+", ".", "1,5", "1.5mm", "0x10", "1e", "--1", "+-1", "1 2", "e5"})
        EXPECT_EQ(NumberOf(text, '.', value), NumberKind::None) << text;
    EXPECT_EQ(NumberOf("+1.5e2", '.', value), NumberKind::Finite);
    EXPECT_EQ(value, 150);
    EXPECT_EQ(NumberOf("1,5", ',', value), NumberKind::Finite);
    EXPECT_EQ(NumberOf("1.5", ',', value), NumberKind::None);
    EXPECT_EQ(NumberOf("nan", '.', value), NumberKind::NotFinite);
    EXPECT_EQ(NumberOf("-Inf", '.', value), NumberKind::NotFinite);
    EXPECT_EQ(NumberOf("1e400", '.', value), NumberKind::OutOfRange);
    EXPECT_EQ(DecimalsOf("-1.250", '.'), 3);
    EXPECT_EQ(DecimalsOf("1.5e-3", '.'), 4);
    EXPECT_EQ(DecimalsOf("1.5E+03", '.'), 0);
}

}  // namespace
