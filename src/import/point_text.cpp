// Loading of point files, their lines, and counting of bytes.
#include "import/point_text.h"

#include <array>
#include <cstring>

#include "core/text.h"

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// A CR that no LF follows? The files of one system hold either none at all or none alone.
bool HasLoneReturn(std::string_view text) {
    const char* at = text.data();
    const char* const end = at + text.size();
    while (at != end) {
        at = static_cast<const char*>(std::memchr(at, '\r', static_cast<std::size_t>(end - at)));
        if (at == nullptr) return false;
        ++at;
        if (at == end || *at != '\n') return true;
    }
    return false;
}

void Look(PointText& file, std::string_view whole) {
    file.HasMark = whole.starts_with(kByteOrderMark);
    file.Text = file.HasMark ? whole.substr(kByteOrderMark.size()) : whole;
    file.Ascii = IsAscii(file.Text);
    file.LoneReturns = HasLoneReturn(file.Text);
}

}  // namespace

PointText LoadPointText(const std::string& path) {
    PointText file;
    file.Path = path;
    file.Bytes = ReadFile(path);
    Look(file, file.Bytes.View());
    return file;
}

void ReplacePointText(PointText& file, std::string content) {
    file.Changed = file.HasMark ? std::string(kByteOrderMark) + content : std::move(content);
    file.Bytes = FileBytes{};
    Look(file, file.Changed);
}

bool LineWalk::Next(std::string_view& line) {
    if (Rest.empty()) return false;
    ++Row;
    if (LoneReturns) return CutLine(Rest, line);
    const auto* lineFeed = static_cast<const char*>(std::memchr(Rest.data(), '\n', Rest.size()));
    if (lineFeed == nullptr) {
        line = Rest;
        Rest = {};
        return true;
    }
    const auto length = static_cast<std::size_t>(lineFeed - Rest.data());
    const bool returnBefore = length > 0 && lineFeed[-1] == '\r';
    line = Rest.substr(0, returnBefore ? length - 1 : length);
    Rest.remove_prefix(length + 1);
    return true;
}

std::string_view DecodedLine(const PointText& file, std::string_view line, std::string& scratch) {
    if (file.Ascii || IsAscii(line)) return line;
    scratch = DecodeText(line);
    return scratch;
}

std::int64_t CountByte(std::string_view text, char byte) {
    // Sixteen lanes of 8 bits, added up before any of them can run over.
    using Lanes = unsigned char __attribute__((vector_size(16)));
    constexpr std::size_t kLanes = 16, kBlock = kLanes * 255;
    const auto wanted = static_cast<unsigned char>(byte);
    const Lanes pattern = Lanes{} + wanted;
    std::int64_t count = 0;
    std::size_t at = 0;
    while (text.size() - at >= kLanes) {
        const std::size_t whole = (text.size() - at) / kLanes * kLanes;
        const std::size_t stop = at + (whole < kBlock ? whole : kBlock);
        Lanes sums{};
        for (; at < stop; at += kLanes) {
            Lanes lanes;
            std::memcpy(&lanes, text.data() + at, kLanes);
            sums -= reinterpret_cast<Lanes>(lanes == pattern);
        }
        for (std::size_t lane = 0; lane < kLanes; ++lane) count += sums[lane];
    }
    for (; at < text.size(); ++at) count += text[at] == byte ? 1 : 0;
    return count;
}
