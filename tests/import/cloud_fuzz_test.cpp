// Whatever a cloud holds: it is refused, or comes out with as many points as went in, and never grows without
// bounds.
#include <cmath>
#include <random>

#include "import/cloud_bytes.h"

using namespace corvinade;

namespace {

std::string SmallPly(bool binary) {
    std::string text = std::string("ply\nformat ") + (binary ? "binary_little_endian" : "ascii") +
                       " 1.0\nelement vertex 3\nproperty float x\nproperty float y\nproperty float z\n"
                       "property float nx\nproperty float ny\nproperty float nz\nelement face 2\n"
                       "property list uchar int vertex_indices\nend_header\n";
    for (int i = 0; i < 3; ++i) {
        if (!binary) text += "1.5 2.5 " + std::to_string(i) + " 0 0 1\n";
        for (int k = 0; k < 6 && binary; ++k) text += Packed(static_cast<float>(i * k));
    }
    for (int i = 0; i < 2; ++i) {
        if (!binary) text += "3 0 1 2\n";
        if (binary) text += '\3' + Packed(0) + Packed(1) + Packed(2);
    }
    return text;
}

std::string SmallPcd(const std::string& data) {
    std::string text =
        "# .PCD v0.7\nVERSION 0.7\nFIELDS x y z\nSIZE 4 4 4\nTYPE F F F\nCOUNT 1 1 1\n"
        "WIDTH 3\nHEIGHT 1\nVIEWPOINT 0 0 0 1 0 0 0\nPOINTS 3\nDATA " +
        data + "\n";
    std::string values;
    for (int i = 0; i < 9; ++i) values += Packed(static_cast<float>(i % 2));
    if (data == "ascii") return text + "1 2 3\n4 5 6\n7 8 9\n";
    if (data == "binary") return text + values;
    // Four literal bytes, then references 8 back over the rest.
    const std::string packed =
        "\7" + values.substr(0, 8) + std::string("\xE0\x13\7", 3) + values.substr(0, 0);
    return text + Packed(static_cast<std::uint32_t>(packed.size())) + Packed(std::uint32_t{36}) + packed;
}

TEST(CloudFuzz, DamageIsRefusedOrHarmless) {
    const std::vector<std::array<std::string, 2>> seeds = {
        {"a.ply", SmallPly(true)},
        {"a.ply", SmallPly(false)},
        {"a.pcd", SmallPcd("ascii")},
        {"a.pcd", SmallPcd("binary")},
        {"a.pcd", SmallPcd("binary_compressed")},
        {"a.xyz", "//X Y Z nx ny nz\n1 2 3 0 0 1\n\"4\" 5,5 6\n"},
        {"a.txt", "name;x [m];y [m];z [m]\nA;1,5;2;3\n"},
        {"a.tum", "1.5 1 2 3 0 0 0 1\n"},
        {"a.points", "#CRS: x\nmapX,mapY,sourceX,sourceY,enable\n1,2,3,4,1\n"},
        {"a.xml",
         "<LandXML><Units><Metric linearUnit='meter'/></Units><!-- x --><CgPoint name=\"a&amp;b\">1 2 3"
         "</CgPoint></LandXML>"}};
    std::mt19937 random(11);
    const auto below = [&random](std::size_t n) { return static_cast<std::size_t>(random() % n); };
    int good = 0;
    for (const auto& [name, bytes] : seeds) {
        EXPECT_EQ(Carried(bytes, name).Error, "") << name;
        for (int round = 0; round < 1000; ++round) {
            std::string damaged = bytes;
            for (std::size_t i = below(4) + 1; i > 0; --i) {
                const std::size_t at = below(damaged.size());
                switch (below(5)) {
                    case 0:
                        damaged[at] = static_cast<char>(random());
                        break;
                    case 1:
                        damaged.erase(at, below(9) + 1);
                        break;
                    case 2:
                        damaged.insert(at, damaged.substr(below(damaged.size()), below(30)));
                        break;
                    case 3:
                        damaged.insert(at, std::string(below(12), "0123456789-. ,;\"\n\r\xFF"[below(19)]));
                        break;
                    default:
                        damaged.resize(at + 1);
                }
                if (damaged.empty()) damaged = "x";
            }
            const CloudRun run = RunThrough(damaged, name, &CloudTurn(), {}, below(50) + 1);
            const CloudRun read = RunThrough(damaged, name, nullptr);
            if (run.Error.empty()) {
                ++good;
                EXPECT_EQ(read.Error, "");
                EXPECT_EQ(read.Points.size() + static_cast<std::size_t>(read.Facts.Disabled),
                          static_cast<std::size_t>(run.Facts.Points));
                for (const CloudPoint& point : read.Points)
                    EXPECT_TRUE(std::isfinite(point.At[0] + point.At[1] + point.At[2]) ||
                                point.At[0] > 1e300 || std::fabs(point.At[1]) > 1e300 ||
                                std::fabs(point.At[2]) > 1e300);
            } else {
                EXPECT_TRUE(run.Error.starts_with("Cannot read \"" + name + "\"")) << run.Error;
            }
            EXPECT_LE(run.Out.size(), 4000 * (damaged.size() + 1));
        }
    }
    EXPECT_GT(good, 500);
}

}  // namespace
