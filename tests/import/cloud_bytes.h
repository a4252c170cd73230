// What the tests of clouds stand on: bytes written here, by their formats' descriptions, and a file that runs
// through.
#pragma once

#include <algorithm>
#include <bit>
#include <cstring>
#include <string>
#include <vector>

#include "core/notes.h"
#include "core/platform.h"
#include "import/cloud.h"
#include "support/fixture.h"

using namespace corvinade;

// The bytes of a number, the lowest first or last.
template <class T>
std::string Packed(T value, bool bigEndian = false) {
    std::string bytes(sizeof(T), '\0');
    std::memcpy(bytes.data(), &value, sizeof(T));
    if (bigEndian != (std::endian::native == std::endian::big)) std::reverse(bytes.begin(), bytes.end());
    return bytes;
}

// A turn about z whose cosine is 0.8 and whose sine 0.6, and a shift: of whole numbers it makes decimals that
// end.
inline const CloudMotion& CloudTurn() {
    static const CloudMotion motion = *MotionOf({0.8, -0.6, 0, 0.6, 0.8, 0, 0, 0, 1}, {10, 20, 30});
    return motion;
}

struct CloudRun {
    std::string Out, Error;
    CloudFacts Facts;
    std::vector<CloudPoint> Points;  // where it was read
};

// Carries a file, or reads it without `motion`; `most`: bytes that its source gives at a time.
inline CloudRun RunThrough(const std::string& bytes, const std::string& path, const CloudMotion* motion,
                           const CloudWish& wish = {}, std::size_t most = 1 << 20) {
    CloudRun run;
    std::size_t given = 0;
    CloudInput in(path, [&](char* to, std::size_t wanted) {
        const std::size_t count = bytes.copy(to, std::min(wanted, most), given);
        given += count;
        return count;
    });
    WriteBytes write;
    if (motion != nullptr) write = [&run](std::string_view text) { run.Out += text; };
    CloudOutput out(std::move(write));
    CloudTask task = {in, out, motion, {}, wish, {}, 1};
    task.Take = [&run](const CloudPoint& point) { run.Points.push_back(point); };
    try {
        RunCloud(task);
    } catch (const PlatformError& error) {
        run.Error = error.What;
    }
    run.Facts = task.Facts;
    return run;
}

inline CloudRun Carried(const std::string& bytes, const std::string& path, const CloudWish& wish = {}) {
    return RunThrough(bytes, path, &CloudTurn(), wish);
}

inline CloudRun ReadThrough(const std::string& bytes, const std::string& path, const CloudWish& wish = {}) {
    return RunThrough(bytes, path, nullptr, wish);
}
