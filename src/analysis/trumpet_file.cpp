// The file of all pairs of points and their distances.
#include "analysis/trumpet_file.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string_view>

#include "core/files.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/text.h"
#include "core/units.h"

namespace corvinade::analysis {

namespace {

constexpr std::size_t kPart_bytes = 1 << 20;  // one write to the file
constexpr std::size_t kNumber_bytes = 400;    // the longest number by a picture string, and more

constexpr std::array<double, 11> kPowers = {1, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10};

// The names as bytes of one file: whether they are Windows-1252 or UTF-8 is a matter of all of them.
std::vector<std::string> EncodedNames(const std::vector<std::string>& names) {
    std::string all;
    for (const std::string& name : names) all += name;
    const std::string encoded = EncodeText(all);
    if (encoded == all) return names;
    std::vector<std::string> parts;
    parts.reserve(names.size());
    std::size_t at = 0;
    for (const std::string& name : names) {  // in Windows-1252 each character is one byte
        const auto length = static_cast<std::size_t>(CharacterCount(name));
        parts.push_back(encoded.substr(at, length));
        at += length;
    }
    return parts;
}

char* PutDigits(char* out, std::uint64_t number, int digits) {
    for (int k = digits - 1; k >= 0; --k) {
        out[k] = static_cast<char>('0' + number % 10);
        number /= 10;
    }
    return out + digits;
}

char* PutText(char* out, std::string_view text) {
    std::memcpy(out, text.data(), text.size());
    return out + text.size();
}

// The number's plain text form. A 32-bit float of 1e-4 to 1e7 times the power of ten that makes it seven
// digits long is a number of less than 53 bits, so nothing is lost before it is rounded half to even, as the
// conversion of every other number does.
char* PutPlain(char* out, float value, char decimal) {
    if (!(value >= 1e-4F && value < 1e6F)) return PutText(out, PlainText(value));
    int before = 0;  // digits before the point; below 1 the zeros behind it count against them
    while (before < 6 && value >= kPowers[static_cast<std::size_t>(before)]) ++before;
    if (before == 0)
        while (before > -3 && value * kPowers[static_cast<std::size_t>(1 - before)] < 1) --before;
    int behind = 7 - before;
    auto number = static_cast<std::uint64_t>(
        std::nearbyint(static_cast<double>(value) * kPowers[static_cast<std::size_t>(behind)]));
    while (behind > 0 && number % 10 == 0) {
        number /= 10;
        --behind;
    }
    const auto power = static_cast<std::uint64_t>(kPowers[static_cast<std::size_t>(behind)]);
    const std::uint64_t whole = number / power;
    int digits = 1;
    while (digits < 7 && static_cast<double>(whole) >= kPowers[static_cast<std::size_t>(digits)]) ++digits;
    out = PutDigits(out, whole, digits);
    if (behind == 0) return out;
    *out++ = decimal;
    return PutDigits(out, number % power, behind);
}

// A number by a picture string of `decimals` digits behind the point. Where it is not near the middle of two
// shown values its 15 digits round to the same one as the number itself does.
char* PutFormatted(char* out, double value, const std::string& picture, int decimals, char decimal) {
    constexpr double kMost = 1e9, kNearTheMiddle = 1e-4;
    const double size = std::fabs(value);
    const double scaled = decimals <= 6 ? size * kPowers[static_cast<std::size_t>(decimals)] : kMost;
    const double below = std::floor(scaled);
    if (!(scaled < kMost) || std::fabs(scaled - below - 0.5) < kNearTheMiddle)
        return PutText(out, FormatNumber(value, picture));
    const auto number = static_cast<std::uint64_t>(scaled - below > 0.5 ? below + 1 : below);
    if (value < 0 && number != 0) *out++ = '-';
    const auto power = static_cast<std::uint64_t>(kPowers[static_cast<std::size_t>(decimals)]);
    const std::uint64_t whole = number / power;
    int digits = 1;
    while (digits < 10 && static_cast<double>(whole) >= kPowers[static_cast<std::size_t>(digits)]) ++digits;
    out = PutDigits(out, whole, digits);
    if (decimals == 0) return out;
    *out++ = decimal;
    return PutDigits(out, number % power, decimals);
}

// Walks all pairs and makes their lines, a part of the file at a time.
class TrumpetLines {
public:
    TrumpetLines(const DistancePoints& points, const WorkGoesOn& goOn)
        : points_(points),
          goOn_(goOn),
          names_(EncodedNames(points.Names)),
          from_(static_cast<std::size_t>(points.Count())),
          to_(from_.size()) {
        const std::size_t point = picture_.find('.');
        decimals_ = point == std::string::npos ? 0 : static_cast<int>(picture_.size() - point - 1);
        std::size_t longest = 0;
        for (const std::string& name : names_) longest = std::max(longest, name.size());
        line_ = 2 * longest + 3 * kNumber_bytes + 8;
        part_.resize(kPart_bytes + line_);
    }

    std::optional<std::string_view> Next() {
        const auto pairs = static_cast<double>(std::max<std::int64_t>(points_.Pairs(), 1));
        if (goOn_ && !goOn_(static_cast<double>(done_) / pairs)) return std::nullopt;
        char* out = part_.data();
        const char* const full = part_.data() + kPart_bytes;
        while (out < full && i_ < points_.Count()) {
            if (j_ == i_ + 1) DistancesOfPoint(points_, i_, j_, from_.data(), to_.data());
            const auto first = static_cast<std::size_t>(i_) + 1;
            for (; j_ <= points_.Count() && out < full; ++j_, ++done_)
                out = PutLine(out, static_cast<std::size_t>(j_) - first);
            if (j_ > points_.Count()) {
                ++i_;
                j_ = i_ + 1;
            }
        }
        return std::string_view(part_.data(), static_cast<std::size_t>(out - part_.data()));
    }

private:
    char* PutLine(char* out, std::size_t k) const {
        out = PutText(out, names_[static_cast<std::size_t>(i_)]);
        *out++ = '\t';
        out = PutText(out, names_[static_cast<std::size_t>(j_)]);
        *out++ = '\t';
        out = PutPlain(out, static_cast<float>(from_[k]), decimal_);
        *out++ = '\t';
        out = PutPlain(out, static_cast<float>(to_[k]), decimal_);
        *out++ = '\t';
        const auto delta = static_cast<float>(to_[k] - from_[k]);
        out = PutFormatted(out, static_cast<double>(delta) * factor_, picture_, decimals_, decimal_);
        *out++ = '\r';
        *out++ = '\n';
        return out;
    }

    const DistancePoints& points_;
    const WorkGoesOn& goOn_;
    std::vector<std::string> names_;
    std::vector<double> from_, to_;  // of point i_ to those behind it
    std::string part_;
    std::size_t line_ = 0;
    // As they are at the start: the units may be changed while the file is written.
    std::string picture_ = Units.FmtLength;
    double factor_ = Units.LengthFactor;
    int decimals_ = 0;
    char decimal_ = SystemDecimal();
    int i_ = 1, j_ = 2;
    std::int64_t done_ = 0;
};

}  // namespace

bool WriteTrumpetFile(const std::string& path, const DistancePoints& points, const WorkGoesOn& goOn) {
    TrumpetLines lines(points, goOn);
    return WriteFileInParts(path, [&lines] { return lines.Next(); });
}

}  // namespace corvinade::analysis
