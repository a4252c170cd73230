// The a-priori standard deviations of a job's coordinates.
#include "core/measurement_sigmas.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>
#include <system_error>

namespace corvinade::core {

namespace {

std::optional<SideAccuracy> SideOf(const JobRecord& job, std::string_view member) {
    for (const auto& [name, value] : job.OtherMembers)
        if (name == member) return SideFromText(value);
    return std::nullopt;
}

void PutSide(std::string_view member, const std::optional<SideAccuracy>& side, JobRecord& job) {
    std::erase_if(job.OtherMembers, [member](const auto& other) { return other.first == member; });
    if (!side) return;
    std::string text;
    for (const double sigma : *side) {
        std::array<char, 32> digits{};
        const auto [end, wrong] = std::to_chars(digits.data(), digits.data() + digits.size(), sigma);
        text.append(text.empty() ? "[" : ",").append(digits.data(), end);
    }
    job.OtherMembers.emplace_back(member, text + "]");
}

}  // namespace

MeasurementSigmas SigmasOf(const JobRecord& job) {
    return {SideOf(job, kStartSigmas), SideOf(job, kTargetSigmas)};
}

void PutSigmas(const MeasurementSigmas& sigmas, JobRecord& job) {
    PutSide(kStartSigmas, sigmas.Start, job);
    PutSide(kTargetSigmas, sigmas.Target, job);
}

void SwapSigmas(JobRecord& job) {
    const MeasurementSigmas sigmas = SigmasOf(job);
    if (sigmas.Any()) PutSigmas({sigmas.Target, sigmas.Start}, job);
}

std::optional<SideAccuracy> SideFromText(std::string_view value) {
    std::string bare;  // without blanks; none of these divides a number in a JSON value
    for (const char c : value)
        if (c != ' ' && c != '\t' && c != '\n' && c != '\r') bare += c;
    SideAccuracy side{};
    const char* at = bare.data();
    const char* const end = bare.data() + bare.size();
    for (std::size_t axis = 0; axis < side.size(); ++axis) {
        if (at == end || *at != (axis == 0 ? '[' : ',')) return std::nullopt;
        const auto [stop, wrong] = std::from_chars(at + 1, end, side[axis]);
        if (wrong != std::errc() || !(side[axis] >= 0) || !std::isfinite(side[axis])) return std::nullopt;
        at = stop;
    }
    if (at == end || *at != ']' || at + 1 != end) return std::nullopt;
    return side;
}

}  // namespace corvinade::core
