// Files larger than the memory that they take.
#include <functional>

#include "import/cloud_bytes.h"
#include "support/memory_use.h"

using namespace corvinade;

namespace {

// A file of a head and many equal blocks, none of which ever stands in memory as a whole.
ReadBytes Repeated(std::string head, std::string block, std::size_t times) {
    return [head, block, times, at = std::size_t{0}](char* to, std::size_t most) mutable {
        if (at < head.size()) {
            const std::size_t count = head.copy(to, most, at);
            at += count;
            return count;
        }
        const std::size_t behind = at - head.size();
        if (behind >= times * block.size()) return std::size_t{0};
        const std::size_t count = block.copy(to, most, behind % block.size());
        at += count;
        return count;
    };
}

struct Streamed {
    CloudFacts Facts;
    std::size_t Bytes = 0, Peak = 0;
};

Streamed Stream(const std::string& path, ReadBytes read) {
    Streamed streamed;
    const MemoryUse memory;
    CloudInput in(path, std::move(read));
    CloudOutput out([&streamed](std::string_view bytes) { streamed.Bytes += bytes.size(); });
    CloudTask task = {in, out, &CloudTurn(), {}, {}, {}, 1};
    RunCloud(task);
    streamed.Facts = task.Facts;
    streamed.Peak = memory.Peak();
    return streamed;
}

constexpr std::size_t kMost_bytes = std::size_t{16} << 20;

TEST(CloudStream, MemoryDoesNotGrowWithABinaryFile) {
    constexpr int kPoints = 1000, kTimes = 10000;
    const std::string head =
        "ply\nformat binary_little_endian 1.0\nelement vertex " + std::to_string(kPoints * kTimes) +
        "\nproperty float x\nproperty float y\nproperty float z\nproperty uchar red\nend_header\n";
    std::string block;
    for (int i = 0; i < kPoints; ++i)
        block += Packed(static_cast<float>(i)) + Packed(2.0F) + Packed(3.0F) + "r";
    const Streamed streamed = Stream("a.ply", Repeated(head, block, kTimes));
    EXPECT_EQ(streamed.Facts.Points, kPoints * kTimes);
    EXPECT_EQ(streamed.Bytes, head.size() + block.size() * kTimes);
    EXPECT_LT(streamed.Peak, kMost_bytes);
}

TEST(CloudStream, NorWithAFileOfText) {
    std::string block;
    for (int i = 0; i < 1000; ++i) block += std::to_string(i) + ".250 2.500 3.125 200 \"a b\"\n";
    const Streamed streamed = Stream("a.xyz", Repeated("//X Y Z R n\n", block, 2000));
    EXPECT_EQ(streamed.Facts.Points, 2000000);
    EXPECT_GT(streamed.Bytes, block.size() * 2000);
    EXPECT_LT(streamed.Peak, kMost_bytes);
}

TEST(CloudStream, NorWithACompressedOne) {
    // Each field is one byte and a reference to it that is repeated: zeros, of which a point has 12 bytes.
    constexpr std::uint32_t kPoints = 4000000, kAll = 12 * kPoints, kReference = 264;
    static_assert((kAll - 1) % kReference != 0);
    std::string packed = std::string(1, '\0') + std::string(1, '\0');
    constexpr std::uint32_t kTimes = (kAll - 1) / kReference, kRest = (kAll - 1) % kReference;
    static_assert(kRest > 9);
    const std::string end = std::string("\xE0", 1) + static_cast<char>(kRest - 9) + std::string(1, '\0');
    const std::string reference("\xE0\xFF\0", 3);
    std::string head =
        "# .PCD v0.7\nFIELDS x y z\nSIZE 4 4 4\nTYPE F F F\nPOINTS 4000000\nDATA binary_compressed\n";
    head += Packed(static_cast<std::uint32_t>(packed.size() + end.size() + 3 * kTimes)) + Packed(kAll) +
            packed + end;
    const Streamed streamed = Stream("a.pcd", Repeated(head, reference, kTimes));
    EXPECT_EQ(streamed.Facts.Points, kPoints);
    EXPECT_LT(streamed.Peak, kMost_bytes);
}

TEST(CloudStream, NorWithoutLineEnds) {
    const MemoryUse memory;
    CloudInput in("a.xyz", Repeated("1 2 3\n", std::string(1000, '7'), 1000000));
    CloudOutput out({});
    CloudTask task = {in, out, &CloudTurn(), {}, {}, {}, 1};
    EXPECT_THROW(RunCloud(task), PlatformError);
    EXPECT_LT(memory.Peak(), std::size_t{200} << 20);
}

}  // namespace
