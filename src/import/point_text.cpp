// Loading of point files, their lines, and counting of bytes.
#include "import/point_text.h"

#include <array>
#include <bit>
#include <cstring>

#include "core/platform.h"
#include "core/text.h"
#include "fit/require.h"

namespace corvinade::import {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

using Lanes = unsigned char __attribute__((vector_size(16)));
constexpr std::size_t kLanes = 16;

Lanes Load(const char* at) {
    Lanes lanes;
    std::memcpy(&lanes, at, kLanes);
    return lanes;
}

// 1 in every lane for which `condition` holds, a comparison of lanes.
template <class Condition>
Lanes Ones(Condition condition) {
    return reinterpret_cast<Lanes>(condition) & (Lanes{} + 1);
}

// The sum of lanes that together stay below 256.
std::uint64_t SmallSum(Lanes lanes) {
    std::array<std::uint64_t, 2> halves{};
    std::memcpy(halves.data(), &lanes, kLanes);
    return ((halves[0] + halves[1]) * 0x0101010101010101U) >> 56;
}

// Counts the places i at which ones(i) has a 1 in its first lane; ones(i) covers the places i to i + 15,
// one(i) a single one. The lanes are added up before any of them can run over.
template <class OnesAt, class OneAt>
std::int64_t CountPlaces(std::size_t size, OnesAt ones, OneAt one) {
    std::int64_t count = 0;
    std::size_t at = 0;
    while (size - at >= kLanes) {
        const std::size_t whole = (size - at) / kLanes;
        const std::size_t stop = at + kLanes * (whole < 255 ? whole : 255);
        Lanes sums{};
        for (; at < stop; at += kLanes) sums += ones(at);
        for (std::size_t lane = 0; lane < kLanes; ++lane) count += sums[lane];
    }
    for (; at < size; ++at) count += one(at) ? 1 : 0;
    return count;
}

bool IsLineEnd(char c) {
    return c == '\n' || c == '\r';
}

// Is there a CR that no LF follows?
bool HasLoneReturn(std::string_view text) {
    if (text.empty()) return false;
    if (text.back() == '\r') return true;
    const char* const at = text.data();
    return CountPlaces(
               text.size() - 1,
               [at](std::size_t i) { return Ones((Load(at + i) == '\r') & (Load(at + i + 1) != '\n')); },
               [at](std::size_t i) { return at[i] == '\r' && at[i + 1] != '\n'; }) != 0;
}

// What the bytes of a text are. They are gone through block by block, so that all questions read the memory
// once.
struct ByteKinds {
    bool Zero = false, Ascii = true, Return = false;
};

ByteKinds LookAtBytes(std::string_view text) {
    constexpr std::size_t kBlock = 1 << 14;
    ByteKinds bytes;
    for (std::size_t at = 0; at < text.size(); at += kBlock) {
        const std::string_view block = text.substr(at, kBlock);
        bytes.Zero = bytes.Zero || std::memchr(block.data(), '\0', block.size()) != nullptr;
        bytes.Ascii = bytes.Ascii && IsAscii(block);
        bytes.Return = bytes.Return || std::memchr(block.data(), '\r', block.size()) != nullptr;
    }
    return bytes;
}

void Look(PointText& file, std::string_view whole, const ByteKinds& bytes) {
    file.Census = LineCensus{};
    file.HasMark = whole.starts_with(kByteOrderMark);
    file.Text = file.HasMark ? whole.substr(kByteOrderMark.size()) : whole;
    // The mark itself is not ASCII.
    file.Ascii = bytes.Ascii || (file.HasMark && IsAscii(file.Text));
    file.LoneReturns = bytes.Return && HasLoneReturn(file.Text);
}

// In the target file a field that is no number is passed over, so that bytes which are no text at all would
// turn into points without values and without a word.
void RefuseWhatIsNoText(const std::string& path, std::string_view bytes, const ByteKinds& found) {
    if (!found.Zero) return;
    const bool wide = bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF");
    throw PlatformError{"Cannot read \"" + path + "\": " +
                        (wide ? "it is a 16-bit text; please save it as UTF-8 or as single-byte text"
                              : "it is no text, it holds characters of code 0")};
}

}  // namespace

PointText LoadPointText(const std::string& path) {
    PointText file;
    file.Path = path;
    file.Bytes = ReadFile(path);
    const ByteKinds bytes = LookAtBytes(file.Bytes.View());
    RefuseWhatIsNoText(path, file.Bytes.View(), bytes);
    Look(file, file.Bytes.View(), bytes);
    return file;
}

void ReplacePointText(PointText& file, std::string content) {
    file.Changed = file.HasMark ? std::string(kByteOrderMark) + content : std::move(content);
    file.Bytes = FileBytes{};
    Look(file, file.Changed, LookAtBytes(file.Changed));
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
    const Lanes wanted = Lanes{} + static_cast<unsigned char>(byte);
    const char* const at = text.data();
    constexpr std::size_t kShort = 15 * kLanes;  // so that the sum of all lanes stays small
    if (text.size() < kLanes || text.size() > kShort)
        return CountPlaces(
            text.size(), [=](std::size_t i) { return Ones(Load(at + i) == wanted); },
            [=](std::size_t i) { return at[i] == byte; });
    // A line of usual length: its last lanes overlap those before them and count the rest alone.
    static constexpr std::array<unsigned char, 2 * kLanes> kRest = {
        0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1};
    Lanes sums{}, rest;
    std::size_t i = 0;
    for (; i + kLanes <= text.size(); i += kLanes) sums += Ones(Load(at + i) == wanted);
    std::memcpy(&rest, kRest.data() + (text.size() - i), kLanes);
    sums += Ones(Load(at + text.size() - kLanes) == wanted) & rest;
    return static_cast<std::int64_t>(SmallSum(sums));
}

std::int64_t CountFilledLines(std::string_view text) {
    if (text.empty()) return 0;
    // Each has one last character, which a line end follows.
    const char* const at = text.data();
    const auto ends = [at](std::size_t i) {
        const Lanes lanes = Load(at + i);
        return (lanes == '\n') | (lanes == '\r');
    };
    const std::int64_t count = CountPlaces(
        text.size() - 1, [&](std::size_t i) { return Ones(~ends(i) & ends(i + 1)); },
        [at](std::size_t i) { return !IsLineEnd(at[i]) && IsLineEnd(at[i + 1]); });
    return count + (IsLineEnd(text.back()) ? 0 : 1);
}

namespace {

using Word = std::uint64_t;

constexpr Word kOnes = 0x0101010101010101U;

// A bit for each of 64 characters, the first one lowest, that equals `wanted`.
Word MarksOf64(const char* at, char wanted) {
    Word marks = 0;
#if defined(__SSE2__)
    using Signs = char __attribute__((vector_size(16)));
    const Lanes character = Lanes{} + static_cast<unsigned char>(wanted);
    for (unsigned i = 0; i < 64; i += kLanes) {
        const auto equal = reinterpret_cast<Signs>(Load(at + i) == character);
        marks |= static_cast<Word>(static_cast<unsigned>(__builtin_ia32_pmovmskb128(equal))) << i;
    }
#else
    for (unsigned i = 0; i < 64; ++i) marks |= static_cast<Word>(at[i] == wanted) << i;
#endif
    return marks;
}

std::int64_t CountOnes(Word bits) {
    bits -= (bits >> 1) & 0x5555555555555555U;
    bits = (bits & 0x3333333333333333U) + ((bits >> 2) & 0x3333333333333333U);
    bits = (bits + (bits >> 4)) & 0x0F0F0F0F0F0F0F0FU;
    return static_cast<std::int64_t>((bits * kOnes) >> 56);
}

// Adds up a census line by line.
class Counting {
public:
    explicit Counting(LineCensus& census) : census_(census) {}

    void EndLine(bool empty, std::int64_t delimiters, std::int64_t marks) {
        ++row_;
        if (marks > census_.MostMarks) census_.MostMarks = marks;
        if (empty) return;
        if (delimiters < census_.FewestDelimiters) census_.FewestDelimiters = delimiters;
        if (delimiters > census_.MostDelimiters) census_.MostDelimiters = delimiters;
        if (census_.FewestDelimiters != census_.MostDelimiters && census_.FirstOther == 0)
            census_.FirstOther = row_;
    }

private:
    LineCensus& census_;
    std::int64_t row_ = 0;
};

// 64 characters at a time.
void TakeCensus(std::string_view text, LineCensus& census) {
    Counting counting(census);
    std::int64_t delimiters = 0, marks = 0;  // of the present line
    std::size_t begin = 0, at = 0;
    const auto endLine = [&](std::size_t end) {
        const std::size_t length = end - begin;
        counting.EndLine(length == 0 || (length == 1 && text[begin] == '\r'), delimiters, marks);
        delimiters = marks = 0;
        begin = end + 1;
    };
    for (; text.size() - at >= 64; at += 64) {
        const char* const block = text.data() + at;
        Word isDelimiter = MarksOf64(block, census.Delimiter), isMark = MarksOf64(block, census.Mark);
        for (Word lineFeeds = MarksOf64(block, '\n'); lineFeeds != 0; lineFeeds &= lineFeeds - 1) {
            const Word before = (lineFeeds & -lineFeeds) - 1;
            delimiters += CountOnes(isDelimiter & before);
            marks += CountOnes(isMark & before);
            isDelimiter &= ~before;
            isMark &= ~before;
            endLine(at + static_cast<std::size_t>(std::countr_zero(lineFeeds)));
        }
        delimiters += CountOnes(isDelimiter);
        marks += CountOnes(isMark);
    }
    for (; at < text.size(); ++at) {
        if (text[at] == '\n') {
            endLine(at);
        } else {
            delimiters += text[at] == census.Delimiter ? 1 : 0;
            marks += text[at] == census.Mark ? 1 : 0;
        }
    }
    if (begin < text.size()) endLine(text.size());
}

}  // namespace

const LineCensus& CensusOf(PointText& file, char delimiter, char mark) {
    Require(!file.LoneReturns);
    LineCensus& census = file.Census;
    if (census.Taken && census.Delimiter == delimiter && census.Mark == mark) return census;
    census = LineCensus{};
    census.Delimiter = delimiter;
    census.Mark = mark;
    census.Taken = true;
    TakeCensus(file.Text, census);
    return census;
}

}  // namespace corvinade::import
