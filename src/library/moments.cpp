// Fits by the sums of their pairs.
#include "corvinade/moments.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <utility>

#include "fit/pair_moments.h"
#include "fit/statistics.h"

namespace corvinade {

struct Moments::Record {
    fit::PairMoments Of;
};

namespace {

// --- Bytes ------------------------------------------------------------------------------------------------

// A mark, the number of pairs, of each sum its sign, first digit and digits, and a check sum.
constexpr std::array<unsigned char, 8> kMark = {'C', 'V', 'N', 'S', 'U', 'M', 'S', 1};

void Put(std::uint64_t value, int bytes, std::vector<unsigned char>& to) {
    for (int i = 0; i < bytes; ++i) to.push_back(static_cast<unsigned char>(value >> (8 * i)));
}

// FNV-1a.
std::uint64_t CheckSumOf(std::span<const unsigned char> bytes) {
    std::uint64_t sum = 14695981039346656037U;
    for (const unsigned char byte : bytes) sum = (sum ^ byte) * 1099511628211U;
    return sum;
}

class ByteReader {
public:
    explicit ByteReader(std::span<const unsigned char> bytes) : bytes_(bytes) {}
    std::uint64_t Take(std::size_t count) {
        if (bytes_.size() < count) Refuse();
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < count; ++i) value |= std::uint64_t{bytes_[i]} << (8 * i);
        bytes_ = bytes_.subspan(count);
        return value;
    }
    bool AtEnd() const { return bytes_.empty(); }
    [[noreturn]] static void Refuse() {
        throw InvalidInput("the bytes of moments were expected, and these are damaged or none");
    }

private:
    std::span<const unsigned char> bytes_;
};

double Coordinate(const Points& points, std::size_t i, int axis) {
    return points.Data[static_cast<std::ptrdiff_t>(i) * points.PointStep + axis * points.AxisStep];
}

void CheckPoints(const Points& points, const char* what) {
    constexpr double kMost = 1e100;
    if (points.Count > 0 && points.Data == nullptr)
        throw InvalidInput("points were expected, and a null pointer came");
    for (std::size_t i = 0; i < points.Count; ++i)
        for (int axis = 0; axis < 3; ++axis)
            if (const double value = Coordinate(points, i, axis); !(std::fabs(value) <= kMost))
                throw InvalidInput("the coordinates of " + std::string(what) +
                                   " are finite numbers up to 1e100, and that of point " + std::to_string(i) +
                                   " along " + "xyz"[axis] + " is " + std::to_string(value) +
                                   " (points are counted from 0)");
}

void CheckOptions(const FitOptions& options) {
    const auto refuse = [](const char* what) {
        throw InvalidInput(std::string("moments are sums over all pairs: ") + what +
                           " does not go with them, but with the points");
    };
    if (options.Which != Norm::L2) refuse("another norm than l2");
    if (!options.InUse.empty()) refuse("what takes part of each pair");
    if (!options.StartSigma.empty() || !options.TargetSigma.empty()) refuse("a standard deviation");
    if (options.SeedPairs != FitOptions().SeedPairs) refuse("a choice of seed pairs");
}

// The figures of the pairs that stand in become those of all.
void TakeAll(std::uint64_t pairs, FitResult& result) {
    const auto count = static_cast<double>(pairs),
               each = count / (static_cast<double>(result.Residuals.size()) / 3);
    std::array<double, 3> squares{};
    for (std::size_t row = 0; row < result.Residuals.size(); ++row)
        squares[row % 3] += result.Residuals[row] * result.Residuals[row];
    double all = 0;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        squares[axis] *= each;
        all += squares[axis];
        result.SigmaOfAxis[axis] = fit::SigmaOfAxis(squares[axis], count);
    }
    const double s0 = fit::SigmaOfAxis(all, 3 * count);
    // Q of all is theirs by what each of them stands for.
    const double rise = result.S0 > 0 ? s0 / result.S0 * std::sqrt(1 / each) : 0;
    for (double& sigma : result.Sigma) sigma *= rise;
    result.S0 = s0;
    result.Residuals.clear();
    result.Observations = 3 * static_cast<std::size_t>(pairs);
    std::erase_if(result.Notes, [](const Note& note) { return note.Code == NoteCode::NoRedundancy; });
    if (result.Observations == result.Unknowns)
        result.Notes.push_back({NoteCode::NoRedundancy,
                                "no redundancy: sigma says nothing (" + std::to_string(result.Observations) +
                                    " observations for " + std::to_string(result.Unknowns) + " parameters)"});
}

}  // namespace

Moments::Moments() : record_(std::make_unique<Record>()) {}
Moments::Moments(const Moments& other) : record_(std::make_unique<Record>(*other.record_)) {}
Moments& Moments::operator=(const Moments& other) {
    *record_ = *other.record_;
    return *this;
}
// What was moved from is empty, and stays of use.
Moments::Moments(Moments&& other) noexcept : record_(std::move(other.record_)) {
    other.record_ = std::make_unique<Record>();
}
Moments& Moments::operator=(Moments&& other) noexcept {
    std::swap(record_, other.record_);
    return *this;
}
Moments::~Moments() = default;

void Moments::Add(const Points& start, const Points& target) {
    if (start.Count != target.Count)
        throw InvalidInput("both sets have as many points, and " + std::to_string(start.Count) + " and " +
                           std::to_string(target.Count) + " came");
    CheckPoints(start, "the start points");
    CheckPoints(target, "the target points");
    for (std::size_t i = 0; i < start.Count; ++i) {
        std::array<double, 6> pair;
        for (int axis = 0; axis < 3; ++axis) {
            pair[static_cast<std::size_t>(axis)] = Coordinate(start, i, axis);
            pair[static_cast<std::size_t>(axis + 3)] = Coordinate(target, i, axis);
        }
        fit::AddPair(pair, record_->Of);
    }
}

void Moments::Merge(const Moments& other) {
    record_->Of.Sums.Merge(other.record_->Of.Sums);
    record_->Of.Count += other.record_->Of.Count;
}

std::uint64_t Moments::Count() const {
    return record_->Of.Count;
}

std::vector<unsigned char> Moments::Bytes() const {
    std::vector<unsigned char> bytes(kMark.begin(), kMark.end());
    Put(record_->Of.Count, 8, bytes);
    for (int sum = 0; sum < fit::kPairSums; ++sum) {
        const fit::ExactSums::Digits digits = record_->Of.Sums.DigitsOf(sum);
        Put(digits.Negative ? 1 : 0, 1, bytes);
        Put(static_cast<std::uint64_t>(digits.First), 1, bytes);
        Put(digits.Of.size(), 1, bytes);
        for (const std::uint32_t digit : digits.Of) Put(digit, 4, bytes);
    }
    Put(CheckSumOf(bytes), 8, bytes);
    return bytes;
}

Moments Moments::FromBytes(std::span<const unsigned char> bytes) {
    if (bytes.size() < kMark.size() + 16 || !std::equal(kMark.begin(), kMark.end(), bytes.begin()))
        ByteReader::Refuse();
    const auto body = bytes.first(bytes.size() - 8);
    if (ByteReader(bytes.last(8)).Take(8) != CheckSumOf(body)) ByteReader::Refuse();
    ByteReader reader(body.subspan(kMark.size()));
    Moments moments;
    fit::PairMoments& of = moments.record_->Of;
    of.Count = reader.Take(8);
    for (int sum = 0; sum < fit::kPairSums; ++sum) {
        fit::ExactSums::Digits digits;
        digits.Negative = reader.Take(1) != 0;
        digits.First = static_cast<int>(reader.Take(1));
        digits.Of.resize(reader.Take(1));
        for (std::uint32_t& digit : digits.Of) digit = static_cast<std::uint32_t>(reader.Take(4));
        if (!of.Sums.SetDigits(sum, digits)) ByteReader::Refuse();
    }
    if (!reader.AtEnd()) ByteReader::Refuse();
    return moments;
}

FitResult Fit(const Moments& moments, const FitOptions& options) {
    CheckOptions(options);
    const std::uint64_t count = moments.Count();
    if (count == 0) throw InvalidInput("points were expected, and none came");
    std::size_t unknowns = 0;
    for (const ParameterState state : options.Parameters.State)
        unknowns += state == ParameterState::Floats ? 1 : 0;
    if (3 * count < unknowns)
        throw InvalidInput("at least as many observations as unknowns were expected, and there are " +
                           std::to_string(3 * count) + " for " + std::to_string(unknowns));
    const auto pairs = fit::StandInPairs(moments.record_->Of);
    // Coordinates side by side, and seeds that are far apart.
    const std::size_t standIns = pairs[0].size();
    std::vector<double> columns;
    for (const std::vector<double>& column : pairs)
        columns.insert(columns.end(), column.begin(), column.end());
    const auto step = static_cast<std::ptrdiff_t>(standIns);
    FitOptions of = options;
    of.SeedPairs = {0, std::max<std::size_t>(1, standIns / 3), std::max<std::size_t>(2, 2 * standIns / 3)};
    FitResult result = Fit(Points(columns.data(), standIns, 1, step),
                           Points(columns.data() + 3 * standIns, standIns, 1, step), of);
    TakeAll(count, result);
    return result;
}

}  // namespace corvinade
