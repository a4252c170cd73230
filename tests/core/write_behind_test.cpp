// Writing by a thread of its own.
#include "core/write_behind.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <stdexcept>
#include <string>
#include <thread>

using namespace corvinade;

namespace {

std::string Piece(int i) {
    return std::to_string(i) + std::string(static_cast<std::size_t>(i % 7) * 100, 'x') + "\n";
}

TEST(WriteBehind, EverythingArrivesInItsOrder) {
    constexpr int kPieces = 3000;
    std::string made, written;
    {
        WriteBehind behind([&written](std::string_view bytes) { written += bytes; });
        for (int i = 0; i < kPieces; ++i) {
            const std::string piece = Piece(i);
            made += piece;
            behind.Write(piece);
        }
        behind.End();
    }
    EXPECT_EQ(written, made);
}

TEST(WriteBehind, ASlowDiskHoldsTheMakerUp) {
    std::atomic<int> begun{0}, most{0}, written{0};
    WriteBehind behind([&](std::string_view) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        ++written;
    });
    for (int i = 0; i < 20; ++i) {
        behind.Write("a");
        ++begun;
        most = std::max(most.load(), begun - written);
    }
    behind.End();
    EXPECT_EQ(written, 20);
    // One that is written, one that waits, and one that has come between the two counts.
    EXPECT_LE(most, 3);
}

TEST(WriteBehind, AFailureComesOutOfALaterWriteAndNothingIsWrittenBehindIt) {
    int written = 0;
    WriteBehind behind([&written](std::string_view bytes) {
        if (bytes == "bad") throw std::runtime_error("full");
        ++written;
    });
    behind.Write("good");
    behind.Write("bad");
    EXPECT_THROW(
        {
            for (int i = 0; i < 3; ++i) behind.Write("late");
        },
        std::runtime_error);
    EXPECT_THROW(behind.End(), std::runtime_error);
    EXPECT_EQ(written, 1);
}

TEST(WriteBehind, AFailureOfTheLastPieceComesOutOfTheEnd) {
    WriteBehind behind([](std::string_view) { throw std::runtime_error("full"); });
    behind.Write("bad");
    EXPECT_THROW(behind.End(), std::runtime_error);
}

TEST(WriteBehind, WithoutAnEndWhatWaitsIsDroppedAndTheThreadEnds) {
    std::atomic<int> written{0};
    {
        WriteBehind behind([&written](std::string_view) { ++written; });
        behind.Write("a");
        behind.Write("b");
    }
    const int then = written;
    EXPECT_LE(then, 2);
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    EXPECT_EQ(written, then);
}

}  // namespace
