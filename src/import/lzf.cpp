// LZF.
#include "import/lzf.h"

#include <algorithm>
#include <array>
#include <vector>

namespace corvinade::import {

namespace {

constexpr std::size_t kFarthest = 8192;  // distance of a reference
constexpr std::size_t kLongest = 264;    // length of a reference
constexpr std::size_t kLongestRun = 32;  // of literal bytes
constexpr std::size_t kPiece = std::size_t{1} << 18;

}  // namespace

bool LzfDecode(const NextByte& next, std::uint64_t most, const WriteBytes& write) {
    std::string text;          // not handed on yet, behind what references still reach
    std::size_t handedOn = 0;  // of it
    std::uint64_t all = 0;
    const auto handOn = [&] {
        write(std::string_view(text).substr(handedOn));
        text.erase(0, text.size() - std::min(text.size(), kFarthest));
        handedOn = text.size();
    };
    for (int control = next(); control >= 0; control = next()) {
        std::size_t length = static_cast<std::size_t>(control) + 1;
        if (control < 32) {
            for (std::size_t i = 0; i < length; ++i) {
                const int byte = next();
                if (byte < 0) return false;
                text += static_cast<char>(byte);
            }
        } else {
            length = static_cast<std::size_t>(control >> 5);
            if (length == 7) {
                const int more = next();
                if (more < 0) return false;
                length += static_cast<std::size_t>(more);
            }
            length += 2;
            const int low = next();
            if (low < 0) return false;
            const std::size_t distance =
                (static_cast<std::size_t>(control & 31) << 8) + static_cast<std::size_t>(low) + 1;
            if (distance > text.size()) return false;
            // It may reach into what it gives itself.
            for (std::size_t i = 0; i < length; ++i) text += text[text.size() - distance];
        }
        all += length;
        if (all > most) return false;
        if (text.size() > kPiece) handOn();
    }
    handOn();
    return true;
}

void LzfEncode(std::string_view block, std::string& compressed) {
    constexpr std::size_t kNone = static_cast<std::size_t>(-1);
    std::vector<std::size_t> last(std::size_t{1} << 14, kNone);  // where three bytes of a hash stood
    const auto byteAt = [block](std::size_t i) {
        return static_cast<std::uint32_t>(static_cast<unsigned char>(block[i]));
    };
    const auto hashAt = [&](std::size_t i) {
        const std::uint32_t three = byteAt(i) << 16 | byteAt(i + 1) << 8 | byteAt(i + 2);
        return static_cast<std::size_t>((three * 2654435761u) >> 18);
    };
    std::size_t at = 0, run = 0;  // a run of literal bytes from `run` to `at`
    const auto writeRun = [&] {
        while (run < at) {
            const std::size_t length = std::min(at - run, kLongestRun);
            compressed += static_cast<char>(length - 1);
            compressed += block.substr(run, length);
            run += length;
        }
    };
    while (at + 2 < block.size()) {
        std::size_t& place = last[hashAt(at)];
        const std::size_t before = place;
        place = at;
        std::size_t length = 0;
        if (before != kNone && at - before <= kFarthest) {
            const std::size_t most = std::min(kLongest, block.size() - at);
            while (length < most && block[before + length] == block[at + length]) ++length;
        }
        if (length < 3) {
            ++at;
            continue;
        }
        writeRun();
        const std::size_t distance = at - before - 1, coded = length - 2;
        compressed += static_cast<char>(std::min<std::size_t>(coded, 7) << 5 | distance >> 8);
        if (coded >= 7) compressed += static_cast<char>(coded - 7);
        compressed += static_cast<char>(distance & 255);
        at += length;
        run = at;
    }
    at = block.size();
    writeRun();
}

}  // namespace corvinade::import
